// The records of `read` as a CSV table and as JSON Lines.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "xun/reading/form_record.h"

namespace xuntool {

// Whether every page of the form was read (a form with doubtful answers was read).
bool FormRead(const xun::reading::FormRecord& record);

// "read", "review" or "error".
std::string FormStatus(const xun::reading::FormRecord& record);

// A header row (form, status, message, score when `scores`, then the items by name in item
// order) and one row a form: its first image, its status, why it was not read or what needs
// review, its total score (empty when it was not scored), and the value of every item.
std::vector<std::vector<std::string>> ResultsTable(
    const std::vector<xun::reading::FormRecord>& records, bool scores = false);

// The results table as CSV: RFC 4180 quoting, CRLF line ends.
std::string ResultsCsv(const std::vector<xun::reading::FormRecord>& records, bool scores = false);

// One form as a JSON object: its images, status, error, respondent, every page's registration,
// every answer with its status, confidence and why, the review reasons, and the score with each
// graded item's points when a key was applied.
nlohmann::ordered_json RecordJson(const xun::reading::FormRecord& record);

// One JSON object (RecordJson) a line and a form: its images, status, error, respondent, every
// page's registration, every answer with its status, confidence and why, the review reasons, and
// the score with each graded item's points when a key was applied.
std::string ResultsJsonLines(const std::vector<xun::reading::FormRecord>& records);

}  // namespace xuntool
