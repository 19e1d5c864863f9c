#include "read_output.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

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

// Why a form was not read: its own error and each page's, in page order.
std::string Message(const FormRecord& record) {
  std::string message = record.error;
  for (const auto& page : record.pages)
    if (!page.error.empty())
      message +=
          (message.empty() ? "" : "; ") + ("page " + std::to_string(page.page) + ": ") + page.error;
  return message;
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

std::string ResultsCsv(const std::vector<FormRecord>& records) {
  std::string csv = "form,status,message";
  if (!records.empty())
    for (const auto& answer : records.front().answers)
      csv += "," + Cell(answer.name);
  csv += "\r\n";
  for (const FormRecord& record : records) {
    csv += Cell(record.images.empty() ? std::string() : record.images.front()) + "," +
           FormStatus(record) + "," + Cell(Message(record));
    for (const auto& answer : record.answers)
      csv += "," + Cell(answer.value);
    csv += "\r\n";
  }
  return csv;
}

std::string ResultsJsonLines(const std::vector<FormRecord>& records) {
  std::string lines;
  for (const FormRecord& record : records) {
    nlohmann::ordered_json form;
    form["form"] = record.images.empty() ? std::string() : record.images.front();
    form["images"] = record.images;
    form["status"] = FormStatus(record);
    form["needs_review"] = record.NeedsReview();
    if (!record.error.empty()) form["error"] = record.error;
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
    lines += form.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
  }
  return lines;
}

}  // namespace xuntool
