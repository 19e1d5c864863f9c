#include "xun/reading/region_value.h"

namespace xun::reading::detail {

AnswerValue AnswerFrom(const QuestionRules& rules, const RegionValue& value) {
  AnswerValue answer;
  answer.status = value.status;
  answer.confidence = value.confidence;
  answer.why = value.why;
  switch (value.kind) {
    case RegionValue::Kind::Text:
      answer.value = value.text;
      break;
    case RegionValue::Kind::Blank:
      answer.value = rules.blanks_return;
      answer.status = AnswerStatus::Blank;
      break;
    case RegionValue::Kind::Multiple:
      answer.value = rules.mults_return;
      answer.status = AnswerStatus::Multiple;
      break;
    case RegionValue::Kind::Unread:
      answer.value = rules.error_return;
      break;
  }
  return answer;
}

}  // namespace xun::reading::detail
