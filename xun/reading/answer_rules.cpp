#include "xun/reading/answer_rules.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <utility>

#include "xun/model/field.h"
#include "xun/model/question.h"
#include "xun/model/string_items.h"
#include "xun/support/numeric.h"

namespace xun::reading {
namespace {

// Under "select the best", the fullest mark wins when it leads the next by this many points.
constexpr int kBestLead = 25;

std::vector<std::string> ItemsOf(const std::shared_ptr<clsXUNStringItems>& items) {
  std::vector<std::string> out;
  if (items)
    for (const std::string& item : *items)
      out.push_back(item);
  return out;
}

std::string CodeAt(const QuestionRules& rules, size_t i) {
  return i < rules.codes.size() ? rules.codes[i] : std::string();
}

// A whole number without a point, others with as few digits as say them exactly.
std::string Number(double value) {
  if (std::fabs(value) < 1e15 && value == std::floor(value)) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.0f", value);
    return buffer;
  }
  char buffer[32];
  for (int digits = 1; digits <= 17; ++digits) {
    std::snprintf(buffer, sizeof buffer, "%.*g", digits, value);
    if (std::strtod(buffer, nullptr) == value) break;
  }
  return buffer;
}

struct LineMarks {
  std::vector<size_t> marked;  // indexes in code order
  bool doubtful = false;
  double confidence = 1.0;
};

LineMarks MarksOf(const std::vector<BubbleRead>& line) {
  LineMarks marks;
  for (size_t i = 0; i < line.size(); ++i) {
    if (line[i].state == MarkState::Marked) marks.marked.push_back(i);
    if (line[i].state == MarkState::Doubtful) marks.doubtful = true;
    marks.confidence = std::min(marks.confidence, line[i].confidence);
  }
  return marks;
}

// Doubt overrides what the marks alone would say: a person must look.
AnswerValue Finish(AnswerValue answer, bool doubtful, double confidence) {
  answer.confidence = confidence;
  if (doubtful) {
    answer.status = AnswerStatus::Doubtful;
    if (answer.why.empty()) answer.why = "a mark that is neither clearly made nor clearly empty";
  }
  return answer;
}

// One line answered by one code, several under MultsAllowed, or the returns.
AnswerValue LineAnswer(const QuestionRules& rules, const std::vector<BubbleRead>& line) {
  const LineMarks marks = MarksOf(line);
  AnswerValue answer;
  if (marks.marked.empty()) {
    answer.value = rules.blanks_return;
    answer.status = AnswerStatus::Blank;
  } else if (marks.marked.size() == 1) {
    answer.value = CodeAt(rules, marks.marked[0]);
  } else if (rules.mults_allowed == xunOMRMultsAllowAll ||
             (rules.mults_allowed > 1 &&
              static_cast<int>(marks.marked.size()) <= rules.mults_allowed)) {
    for (size_t i : marks.marked)
      answer.value += CodeAt(rules, i);
  } else {
    answer.value = rules.mults_return;
    answer.status = AnswerStatus::Multiple;
    answer.why = std::to_string(marks.marked.size()) + " marks";
    if (rules.mults_allowed == xunOMRMultsSelectBest) {
      std::vector<size_t> by_fill = marks.marked;
      std::sort(by_fill.begin(), by_fill.end(),
                [&](size_t a, size_t b) { return line[a].fill > line[b].fill; });
      if (line[by_fill[0]].fill - line[by_fill[1]].fill >= kBestLead) {
        answer.value = CodeAt(rules, by_fill[0]);
        answer.status = AnswerStatus::Clear;
        answer.why.clear();
      }
    }
  }
  return Finish(std::move(answer), marks.doubtful, marks.confidence);
}

// Grid: one code a line; blank lines as the blanks flag says, a blank inside kept as a space.
AnswerValue GridAnswer(const QuestionRules& rules,
                       const std::vector<std::vector<BubbleRead>>& lines) {
  std::vector<std::string> parts;
  bool doubtful = false, multiple = false;
  double confidence = 1.0;
  for (const auto& line : lines) {
    QuestionRules one_line = rules;
    one_line.blanks_return.clear();
    const AnswerValue part = LineAnswer(one_line, line);
    confidence = std::min(confidence, part.confidence);
    if (part.status == AnswerStatus::Doubtful) doubtful = true;
    if (part.status == AnswerStatus::Multiple) multiple = true;
    parts.push_back(part.value);
  }
  size_t first = 0, last = parts.size();
  while (first < last && parts[first].empty())
    ++first;
  while (last > first && parts[last - 1].empty())
    --last;
  AnswerValue answer;
  if (multiple) {
    answer.value = rules.mults_return;
    answer.status = AnswerStatus::Multiple;
    answer.why = "several marks in one line";
  } else if (first == last) {
    answer.value = rules.blanks_return;
    answer.status = AnswerStatus::Blank;
  } else {
    const xunBlanksFlag flag = rules.blanks_flag;
    const bool keep_leading = flag == xunBlanksFlagAll || flag == xunBlanksFlagIgnoreTrailing;
    const bool keep_trailing = flag == xunBlanksFlagAll || flag == xunBlanksFlagIgnoreLeading;
    const size_t from = keep_leading ? 0 : first, to = keep_trailing ? parts.size() : last;
    for (size_t i = from; i < to; ++i) {
      if (!parts[i].empty())
        answer.value += parts[i];
      else if (flag != xunBlanksFlagIgnoreAll)
        answer.value += ' ';
    }
  }
  return Finish(std::move(answer), doubtful, confidence);
}

// Add, binary and list: every marked bubble of the grid counts, in reading order.
AnswerValue WholeGridAnswer(const QuestionRules& rules,
                            const std::vector<std::vector<BubbleRead>>& lines) {
  bool doubtful = false, any = false;
  double confidence = 1.0, sum = 0;
  std::string list;
  size_t bits = 0;
  for (const auto& line : lines)
    bits += line.size();
  std::vector<bool> binary;
  for (const auto& line : lines) {
    const LineMarks marks = MarksOf(line);
    doubtful = doubtful || marks.doubtful;
    confidence = std::min(confidence, marks.confidence);
    for (size_t i = 0; i < line.size(); ++i) {
      const bool marked = line[i].state == MarkState::Marked;
      binary.push_back(marked);
      if (!marked) continue;
      any = true;
      sum += Val(CodeAt(rules, i));
      list += CodeAt(rules, i);
    }
  }
  AnswerValue answer;
  if (!any) {
    answer.value = rules.blanks_return;
    answer.status = AnswerStatus::Blank;
  } else if (rules.type == xunFieldTypeOMRAdd) {
    answer.value = Number(sum);
  } else if (rules.type == xunFieldTypeOMRList) {
    answer.value = list;
  } else if (bits > 53) {
    // Beyond what a double holds exactly: not a number anyone can use.
    answer.value = rules.error_return;
    answer.status = AnswerStatus::Error;
    answer.why = "more than 53 bubbles in a binary region";
  } else {
    double value = 0;
    for (const bool bit : binary)
      value = value * 2 + (bit ? 1 : 0);
    answer.value = Number(value);
  }
  return Finish(std::move(answer), doubtful, confidence);
}

}  // namespace

const char* StatusName(AnswerStatus status) {
  switch (status) {
    case AnswerStatus::Clear:
      return "clear";
    case AnswerStatus::Blank:
      return "blank";
    case AnswerStatus::Multiple:
      return "multiple";
    case AnswerStatus::Doubtful:
      return "doubtful";
    case AnswerStatus::Error:
      return "error";
  }
  return "error";
}

QuestionRules QuestionRules::Of(const clsXUNQuestion& question) {
  QuestionRules rules;
  if (const auto field = question.Field()) rules.type = field->FieldType();
  const bool linked = question.Field() && question.Field()->LinkGroup() != 0;
  rules.codes = ItemsOf(linked ? question.AllCodes() : question.Codes());
  rules.mults_allowed = question.MultsAllowed();
  rules.mults_return = question.MultsReturn();
  rules.blanks_return = question.BlanksReturn();
  rules.duplicate_return = question.DuplicateReturn();
  rules.error_return = question.ErrorReturn();
  rules.blanks_flag = question.BlanksFlag();
  return rules;
}

AnswerValue AnswerOf(const QuestionRules& rules,
                     const std::vector<std::vector<BubbleRead>>& lines) {
  switch (rules.type) {
    case xunFieldTypeOMRGrid:
      return GridAnswer(rules, lines);
    case xunFieldTypeOMRAdd:
    case xunFieldTypeOMRBinary:
    case xunFieldTypeOMRList:
      return WholeGridAnswer(rules, lines);
    default:
      break;
  }
  // Multiple choice, rank and boolean: one line (the first, should there be more).
  if (lines.empty()) return ErrorAnswer(rules, "the question has no bubbles");
  return LineAnswer(rules, lines.front());
}

AnswerValue ErrorAnswer(const QuestionRules& rules, std::string why) {
  AnswerValue answer;
  answer.value = rules.error_return;
  answer.status = AnswerStatus::Error;
  answer.confidence = 0;
  answer.why = std::move(why);
  return answer;
}

void MarkDuplicateRanks(const std::vector<QuestionRules>& rules,
                        std::vector<AnswerValue>& answers) {
  std::map<std::string, std::vector<size_t>> by_rank;
  for (size_t i = 0; i < answers.size() && i < rules.size(); ++i)
    if (rules[i].type == xunFieldTypeOMRRank && answers[i].status == AnswerStatus::Clear)
      by_rank[answers[i].value].push_back(i);
  for (const auto& [rank, questions] : by_rank) {
    if (questions.size() < 2) continue;
    for (size_t i : questions) {
      answers[i].value = rules[i].duplicate_return;
      answers[i].why = "rank " + rank + " given " + std::to_string(questions.size()) + " times";
    }
  }
}

}  // namespace xun::reading
