// What reading a barcode, OCR or image-clip region gives for one of its items, before the item's
// question turns it into an answer with its own returns for blanks, several values and errors.
#pragma once

#include <string>

#include "xun/reading/answer_rules.h"

namespace xun::reading::detail {

struct RegionValue {
  enum class Kind : uint8_t {
    Text,      // `text` is the value
    Blank,     // nothing there: the question's BlanksReturn
    Multiple,  // more than the item holds: its MultsReturn
    Unread,    // there but not read, or not readable: its ErrorReturn
  };
  Kind kind = Kind::Text;
  std::string text;
  AnswerStatus status = AnswerStatus::Clear;  // of Text and Unread values
  double confidence = 1.0;
  std::string why;
  std::string clip;  // the file a person can look at, when one was written

  static RegionValue Of(std::string text, double confidence = 1.0) {
    return {Kind::Text, std::move(text), AnswerStatus::Clear, confidence, {}, {}};
  }
  static RegionValue Blank() { return {Kind::Blank, {}, AnswerStatus::Blank, 1.0, {}, {}}; }
  static RegionValue Several(std::string why) {
    return {Kind::Multiple, {}, AnswerStatus::Multiple, 0.0, std::move(why), {}};
  }
  // Status Doubtful when a person can read it, Error when nothing could be done.
  static RegionValue Unread(AnswerStatus status, std::string why) {
    return {Kind::Unread, {}, status, 0.0, std::move(why), {}};
  }
};

// The answer of a question whose region gave `value`.
AnswerValue AnswerFrom(const QuestionRules& rules, const RegionValue& value);

}  // namespace xun::reading::detail
