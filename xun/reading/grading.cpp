#include "xun/reading/grading.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "xun/model/field.h"
#include "xun/model/fields.h"
#include "xun/model/page.h"
#include "xun/model/pages.h"
#include "xun/model/question.h"
#include "xun/model/questions.h"
#include "xun/model/template.h"
#include "xun/reading/form_reader.h"

namespace xun::reading {
namespace {

std::string Trimmed(const std::string& text) {
  const size_t first = text.find_first_not_of(" \t");
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::string Lower(std::string text) {
  for (char& c : text)
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

// One CSV record: the cells, trimmed, trailing empty ones dropped (spreadsheets pad rows).
// Quotes as RFC 4180 has them; a record does not span lines.
std::vector<std::string> Cells(const std::string& line, const std::string& where) {
  std::vector<std::string> cells;
  std::string cell;
  bool quoted = false, was_quoted = false;
  for (size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (quoted) {
      if (c == '"' && i + 1 < line.size() && line[i + 1] == '"') {
        cell += '"';
        ++i;
      } else if (c == '"') {
        quoted = false;
      } else {
        cell += c;
      }
    } else if (c == '"' && Trimmed(cell).empty()) {
      quoted = was_quoted = true;
      cell.clear();
    } else if (c == ',') {
      cells.push_back(was_quoted ? cell : Trimmed(cell));
      cell.clear();
      was_quoted = false;
    } else {
      cell += c;
    }
  }
  if (quoted) throw std::runtime_error(where + ": a quote is not closed");
  cells.push_back(was_quoted ? cell : Trimmed(cell));
  while (!cells.empty() && cells.back().empty())
    cells.pop_back();
  return cells;
}

// Whatever the template says of a question that grading needs, for every question.
template <class Visit>
void EachQuestion(const clsXUNTemplate& form, Visit&& visit) {
  if (!form.Pages()) return;
  for (const auto& page : *form.Pages()) {
    if (!page->Fields()) continue;
    for (const auto& field : *page->Fields()) {
      if (!field->Questions()) continue;
      for (const auto& question : *field->Questions())
        visit(*question);
    }
  }
}

// The graded items a key can score: Grade on, and not subjective (a person scores those).
std::map<int32_t, Grader::Points> GradedItems(const clsXUNTemplate& form) {
  std::map<int32_t, Grader::Points> graded;
  EachQuestion(form, [&](const clsXUNQuestion& q) {
    const int32_t item = q.ReturnIndex(true);
    if (item <= 0 || !q.Grade() || q.SubjectiveField()) return;
    graded.emplace(item, Grader::Points{q.QuestionName(), q.Correct(), q.Incorrect(),
                                        q.NoResponse(), q.ExtraCredit(), q.BlanksReturn()});
  });
  return graded;
}

std::string VersionQuestion(const clsXUNTemplate& form) {
  std::string name;
  EachQuestion(form, [&](const clsXUNQuestion& q) {
    if (name.empty() && q.TestVersionID() && q.ReturnIndex(true) > 0) name = q.QuestionName();
  });
  return name;
}

const ItemAnswer* AnswerNamed(const FormRecord& record, const std::string& name) {
  for (const ItemAnswer& answer : record.answers)
    if (answer.name == name) return &answer;
  return nullptr;
}

}  // namespace

AnswerKey AnswerKey::FromCsv(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw std::runtime_error(file + ": cannot be read");
  std::ostringstream text;
  text << in.rdbuf();
  return FromCsvText(text.str(), file);
}

AnswerKey AnswerKey::FromCsvText(const std::string& text, const std::string& source) {
  AnswerKey key;
  key.source = source;
  std::istringstream lines(text);
  std::string line;
  int32_t number = 0;
  bool first = true, versioned = false;
  while (std::getline(lines, line)) {
    ++number;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (number == 1 && line.rfind("\xEF\xBB\xBF", 0) == 0) line.erase(0, 3);  // a byte-order mark
    const std::string where = source + ":" + std::to_string(number);
    if (Trimmed(line).empty() || Trimmed(line)[0] == '#') continue;
    std::vector<std::string> cells = Cells(line, where);
    if (first) {
      first = false;
      const std::string head = cells.empty() ? std::string() : Lower(cells[0]);
      if (head == "question") continue;
      if (head == "version") {
        if (cells.size() < 2 || Lower(cells[1]) != "question")
          throw std::runtime_error(where +
                                   ": a key by version has the columns version, question, "
                                   "answer...");
        versioned = true;
        continue;
      }
    }
    std::string version;
    if (versioned) {
      if (cells.empty() || cells[0].empty()) throw std::runtime_error(where + ": no test version");
      version = cells[0];
      cells.erase(cells.begin());
    }
    if (cells.empty() || cells[0].empty()) throw std::runtime_error(where + ": no question name");
    const std::string name = cells[0];
    cells.erase(cells.begin());
    cells.erase(std::remove(cells.begin(), cells.end(), std::string()), cells.end());
    if (cells.empty())
      throw std::runtime_error(where + ": question '" + name + "' has no right answer");
    auto& questions = key.versions[version];
    if (const auto at = questions.find(name); at != questions.end())
      throw std::runtime_error(where + ": question '" + name + "' is given again (first on line " +
                               std::to_string(at->second.line) + ")");
    questions[name] = Entry{std::move(cells), number};
  }
  if (key.versions.empty()) throw std::runtime_error(source + ": no answers in the key");
  return key;
}

AnswerKey AnswerKey::FromSheets(const clsXUNTemplate& form, const FormReader& reader,
                                const std::vector<std::vector<std::string>>& sheets,
                                std::vector<std::string>& problems) {
  AnswerKey key;
  if (sheets.empty() || sheets[0].empty()) throw std::runtime_error("no key sheet");
  key.source = sheets[0][0];
  const std::map<int32_t, Grader::Points> graded = GradedItems(form);
  const std::string version_question = VersionQuestion(form);
  for (const auto& sheet : sheets) {
    const std::string name = sheet.empty() ? std::string() : sheet[0];
    const FormRecord record = reader.Read(sheet);
    for (const ReviewReason& reason : record.review)
      if (reason.item == 0) problems.push_back(name + ": " + reason.why);
    std::string version;
    if (sheets.size() > 1) {
      const ItemAnswer* answer =
          version_question.empty() ? nullptr : AnswerNamed(record, version_question);
      if (!answer || answer->status != AnswerStatus::Clear)
        throw std::runtime_error(
            name + ": " +
            (answer
                 ? "its test version is not clear (" + std::string(StatusName(answer->status)) + ")"
                 : std::string("several key sheets need a test version question")) +
            ": it cannot be told which version it is the key of");
      version = answer->value;
      if (key.versions.count(version))
        throw std::runtime_error(name + ": a second key sheet of test version '" + version + "'");
    }
    auto& questions = key.versions[version];
    for (const ItemAnswer& answer : record.answers) {
      if (!graded.count(answer.item)) continue;
      if (answer.status == AnswerStatus::Clear) {
        questions[answer.name] = Entry{{answer.value}, 0};
        continue;
      }
      std::string why = StatusName(answer.status);
      if (!answer.why.empty()) why += ", " + answer.why;
      problems.push_back(name + ": " + answer.name + ": " + why + ": left out of the key");
    }
  }
  return key;
}

Grader::Grader(const clsXUNTemplate& form, AnswerKey key)
    : key_(std::move(key)), graded_(GradedItems(form)), version_question_(VersionQuestion(form)) {
  std::map<std::string, bool> names;  // every question's name: graded or not
  EachQuestion(form, [&](const clsXUNQuestion& q) { names.emplace(q.QuestionName(), false); });
  for (const auto& [item, points] : graded_)
    names[points.name] = true;
  for (const auto& [version, questions] : key_.versions)
    for (const auto& [name, entry] : questions) {
      const std::string where =
          key_.source + (entry.line > 0 ? ":" + std::to_string(entry.line) : std::string());
      const auto known = names.find(name);
      if (known == names.end())
        throw std::runtime_error(where + ": the template has no question '" + name + "'");
      if (!known->second)
        throw std::runtime_error(where + ": question '" + name + "' is not graded");
    }
  if (!key_.versions.count("") && version_question_.empty())
    throw std::runtime_error(key_.source +
                             ": a key by test version, but the template has no test version "
                             "question");
  for (const auto& [version, questions] : key_.versions)
    for (const auto& [item, points] : graded_)
      if (!questions.count(points.name))
        notes_.push_back("no key for question '" + points.name + "'" +
                         (version.empty() ? std::string() : " of test version '" + version + "'") +
                         ": not scored");
}

void Grader::Score(FormRecord& record) const {
  FormScore& score = record.score;
  score = FormScore{};
  // A page not read is for review already; its answers say nothing of what was known.
  if (!record.error.empty() ||
      std::any_of(record.pages.begin(), record.pages.end(),
                  [](const PageReading& page) { return !page.registered; })) {
    score.error = "not every page was read: not scored";
    return;
  }
  const std::map<std::string, AnswerKey::Entry>* key = nullptr;
  if (const auto every = key_.versions.find(""); every != key_.versions.end()) {
    key = &every->second;
  } else {
    const ItemAnswer* version = AnswerNamed(record, version_question_);
    if (!version || version->status != AnswerStatus::Clear) {
      score.error = "the test version is not clear: not scored";
    } else if (const auto at = key_.versions.find(version->value); at == key_.versions.end()) {
      score.error = "no key for test version '" + version->value + "': not scored";
    } else {
      key = &at->second;
      score.version = version->value;
    }
  }
  if (!key) {
    record.review.push_back({0, 0, version_question_, {}, score.error});
    return;
  }
  score.scored = true;
  for (const ItemAnswer& answer : record.answers) {
    const auto graded = graded_.find(answer.item);
    if (graded == graded_.end()) continue;
    const Points& points = graded->second;
    const auto right = key->find(points.name);
    if (right == key->end()) continue;
    ItemScore item{answer.item,
                   answer.name,
                   "incorrect",
                   points.incorrect,
                   points.extra_credit,
                   answer.status != AnswerStatus::Clear && answer.status != AnswerStatus::Blank};
    const std::vector<std::string>& values = right->second.values;
    if (answer.status == AnswerStatus::Blank ||
        (answer.status == AnswerStatus::Doubtful && answer.value == points.blanks_return)) {
      item.result = "no response";
      item.points = points.no_response;
    } else if ((answer.status == AnswerStatus::Clear || answer.status == AnswerStatus::Doubtful) &&
               std::find(values.begin(), values.end(), answer.value) != values.end()) {
      item.result = "correct";
      item.points = points.correct;
    }
    score.total += item.points;
    if (!points.extra_credit) score.possible += points.correct;
    score.items.push_back(std::move(item));
  }
}

}  // namespace xun::reading
