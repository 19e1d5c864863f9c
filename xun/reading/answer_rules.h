// From marks to a question's value: what every OMR field type returns, and how a question's
// settings treat blanks, several marks and duplicates (docs/reading.md, "Answers").
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "xun/model/enums.h"
#include "xun/model/fwd.h"
#include "xun/reading/export.h"

namespace xun::reading {

// How a bubble was judged. Doubtful: neither clearly marked nor clearly empty.
enum class MarkState : uint8_t { Unmarked, Doubtful, Marked };

struct BubbleRead {
  MarkState state = MarkState::Unmarked;
  int16_t fill = 0;         // net fill in percent: its darkness less its printed blank's
  double confidence = 1.0;  // 0 (a coin toss) to 1 (far from every threshold)
};

enum class AnswerStatus : uint8_t {
  Clear,     // read as it stands
  Blank,     // nothing marked
  Multiple,  // more marks than the question allows
  Doubtful,  // a mark could not be judged, or the page could not be read well
  Error,     // not read at all (the page was not registered, the region lies off the image)
};

XUN_READING_API const char* StatusName(AnswerStatus status);

struct AnswerValue {
  std::string value;
  AnswerStatus status = AnswerStatus::Clear;
  double confidence = 1.0;
  std::string why;  // for a person reviewing it; empty when clear
};

// What of a question turns marks into its value.
struct XUN_READING_API QuestionRules {
  xunFieldType type = xunFieldTypeOMRMult;
  std::vector<std::string> codes;  // the codes of a line's bubbles, in order
  int16_t mults_allowed = 0;
  std::string mults_return, blanks_return, duplicate_return, error_return;
  xunBlanksFlag blanks_flag = xunBlanksFlagAll;

  // The question's settings; the codes across its link group when its region is linked.
  static QuestionRules Of(const clsXUNQuestion& question);
};

// The value of one question from its bubbles, line by line (a line is a row of a region read by
// rows, a column of one read by columns), each line in the order of the codes. A multiple-choice,
// rank or boolean question has one line; grid, add, binary and list questions have them all.
// Doubtful bubbles count as unmarked for the value, and make the answer doubtful.
XUN_READING_API AnswerValue AnswerOf(const QuestionRules& rules,
                                     const std::vector<std::vector<BubbleRead>>& lines);

// The value of a question that could not be read: its ErrorReturn, with why.
XUN_READING_API AnswerValue ErrorAnswer(const QuestionRules& rules, std::string why);

// Rank questions of one region that gave the same rank: each becomes its DuplicateReturn.
XUN_READING_API void MarkDuplicateRanks(const std::vector<QuestionRules>& rules,
                                        std::vector<AnswerValue>& answers);

}  // namespace xun::reading
