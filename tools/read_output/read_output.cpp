#include "read_output.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace xuntool {
namespace {

using xun::reading::FormRecord;

std::string Cell(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + "\"";
}

double Rounded(double value) {
  return std::round(value * 1000) / 1000;
}

// What a person must look at and why, the form's own error first, then page by page.
std::string Message(const FormRecord& record) {
  std::string message;
  for (const auto& reason : record.review)
    message += (message.empty() ? "" : "; ") +
               (reason.page > 0 ? "page " + std::to_string(reason.page) + ": " : std::string()) +
               (reason.name.empty() ? std::string() : reason.name + ": ") + reason.why;
  return message;
}

std::string Points(double value) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%.10g", Rounded(value));
  return buffer;
}

}  // namespace

bool FormRead(const FormRecord& record) {
  return record.error.empty() && std::all_of(record.pages.begin(), record.pages.end(),
                                             [](const auto& page) { return page.registered; });
}

std::string FormStatus(const FormRecord& record) {
  if (!FormRead(record)) return "error";
  return record.NeedsReview() ? "review" : "read";
}

std::vector<std::vector<std::string>> ResultsTable(const std::vector<FormRecord>& records,
                                                   bool scores) {
  std::vector<std::vector<std::string>> table;
  std::vector<std::string> header = {"form", "status", "message"};
  if (scores) header.emplace_back("score");
  if (!records.empty())
    for (const auto& answer : records.front().answers)
      header.push_back(answer.name);
  table.push_back(std::move(header));
  for (const FormRecord& record : records) {
    std::vector<std::string> row = {record.images.empty() ? std::string() : record.images.front(),
                                    FormStatus(record), Message(record)};
    if (scores) row.push_back(record.score.scored ? Points(record.score.total) : std::string());
    for (const auto& answer : record.answers)
      row.push_back(answer.value);
    table.push_back(std::move(row));
  }
  return table;
}

std::string ResultsCsv(const std::vector<FormRecord>& records, bool scores) {
  std::string csv;
  for (const auto& row : ResultsTable(records, scores)) {
    for (size_t i = 0; i < row.size(); ++i)
      csv += (i ? "," : "") + Cell(row[i]);
    csv += "\r\n";
  }
  return csv;
}

nlohmann::ordered_json RecordJson(const FormRecord& record) {
  nlohmann::ordered_json form;
  form["form"] = record.images.empty() ? std::string() : record.images.front();
  form["images"] = record.images;
  form["status"] = FormStatus(record);
  form["needs_review"] = record.NeedsReview();
  if (!record.error.empty()) form["error"] = record.error;
  if (!record.respondent.empty()) form["respondent"] = record.respondent;
  form["pages"] = nlohmann::ordered_json::array();
  for (const auto& page : record.pages) {
    nlohmann::ordered_json p;
    p["page"] = page.page;
    p["image"] = page.image;
    p["registered"] = page.registered;
    if (page.registered) {
      p["registered_by"] = page.registered_by;
      p["model"] = page.model;
      p["fit_error"] = Rounded(page.fit_error);
    }
    p["bubbles_found"] = page.bubbles_found;
    p["bubbles_printed"] = page.bubbles_printed;
    if (!page.error.empty()) p["error"] = page.error;
    form["pages"].push_back(std::move(p));
  }
  form["answers"] = nlohmann::ordered_json::array();
  for (const auto& answer : record.answers) {
    nlohmann::ordered_json a;
    a["item"] = answer.item;
    a["name"] = answer.name;
    a["page"] = answer.page;
    a["value"] = answer.value;
    a["status"] = xun::reading::StatusName(answer.status);
    a["confidence"] = Rounded(answer.confidence);
    if (!answer.why.empty()) a["why"] = answer.why;
    if (!answer.clip.empty()) a["clip"] = answer.clip;
    form["answers"].push_back(std::move(a));
  }
  form["review"] = nlohmann::ordered_json::array();
  for (const auto& reason : record.review) {
    nlohmann::ordered_json r;
    r["page"] = reason.page;
    if (reason.item > 0) r["item"] = reason.item;
    if (!reason.name.empty()) r["name"] = reason.name;
    r["why"] = reason.why;
    form["review"].push_back(std::move(r));
  }
  const auto& score = record.score;
  if (score.scored || !score.error.empty()) {
    nlohmann::ordered_json s;
    s["scored"] = score.scored;
    if (!score.error.empty()) s["error"] = score.error;
    if (!score.version.empty()) s["version"] = score.version;
    s["total"] = Rounded(score.total);
    s["possible"] = Rounded(score.possible);
    s["items"] = nlohmann::ordered_json::array();
    for (const auto& item : score.items) {
      nlohmann::ordered_json i;
      i["item"] = item.item;
      i["name"] = item.name;
      i["result"] = item.result;
      i["points"] = Rounded(item.points);
      if (item.extra_credit) i["extra_credit"] = true;
      if (item.provisional) i["provisional"] = true;
      s["items"].push_back(std::move(i));
    }
    form["score"] = std::move(s);
  }
  return form;
}

std::string ResultsJsonLines(const std::vector<FormRecord>& records) {
  std::string lines;
  for (const FormRecord& record : records)
    lines +=
        RecordJson(record).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
  return lines;
}

}  // namespace xuntool
