// The codes of a link group's questions: one numbering that runs on from region to region, so
// the group answers as one region (the rule is in docs/linking.md).
#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "xun/model/field.h"
#include "xun/model/page.h"
#include "xun/model/question.h"
#include "xun/model/questions.h"
#include "xun/model/string_items.h"
#include "xun/support/numeric.h"
#include "xun/support/trap.h"
#include "xun/templatefile/bas_template.h"
#include "xun/templatefile/link_groups.h"

namespace xun::basTemplate {
namespace {

// How codes are counted on from the group's first code: whole numbers (keeping the zero padding
// of a code such as "01"), or letters of the alphabet that become numbers after Z.
struct CodeScheme {
  bool letters = false;
  int64_t first = 0;  // the first number, or the first letter's place in the alphabet (A = 1)
  bool lower = false;
  size_t width = 0;  // zero-padded width of numbers, 0 for none
};

bool IsWholeNumber(const std::string& code) {
  const size_t digits_from = !code.empty() && code[0] == '-' ? 1 : 0;
  const size_t digits = code.size() - digits_from;
  if (digits == 0 || digits > 9) return false;
  return std::all_of(code.begin() + static_cast<std::ptrdiff_t>(digits_from), code.end(),
                     [](char c) { return c >= '0' && c <= '9'; });
}

bool IsAsciiLetter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

CodeScheme SchemeFrom(const std::string& first_code, bool numeric) {
  CodeScheme scheme;
  if (IsWholeNumber(first_code)) {
    scheme.first = std::stoll(first_code);
    if (first_code.size() > 1 && first_code[0] == '0') scheme.width = first_code.size();
  } else if (first_code.size() == 1 && IsAsciiLetter(first_code[0])) {
    const char c = first_code[0];
    scheme.letters = true;
    scheme.lower = c >= 'a';
    scheme.first = scheme.lower ? c - 'a' + 1 : c - 'A' + 1;
  } else {
    // Nothing to count on from: the labels a new region's questions get.
    scheme.letters = !numeric;
    scheme.first = numeric ? 0 : 1;
  }
  return scheme;
}

// The code of the k-th choice (1-based) across the group.
std::string CodeAt(const CodeScheme& scheme, int32_t k) {
  const int64_t value = scheme.first + k - 1;
  if (scheme.letters) {
    if (value <= 26)
      return std::string(1, static_cast<char>((scheme.lower ? 'a' : 'A') + value - 1));
    return std::to_string(value);
  }
  std::string text = std::to_string(value);
  if (text.size() < scheme.width) text.insert(0, scheme.width - text.size(), '0');
  return text;
}

int32_t CountOf(const std::shared_ptr<clsXUNStringItems>& list) {
  return list ? list->Count() : 0;
}

}  // namespace

namespace detail {

std::vector<std::string> FirstCodes(const std::vector<std::shared_ptr<clsXUNField>>& regions) {
  std::vector<std::string> first_codes;
  for (const std::shared_ptr<clsXUNField>& region : regions) {
    const std::shared_ptr<clsXUNQuestions> questions = region->Questions();
    if (!questions) continue;
    int32_t position = 0;
    for (const std::shared_ptr<clsXUNQuestion>& question : *questions) {
      if (first_codes.size() <= static_cast<size_t>(position)) first_codes.emplace_back();
      if (first_codes[position].empty() && CountOf(question->Codes()) > 0)
        first_codes[position] = question->Codes()->Item(1);
      ++position;
    }
  }
  return first_codes;
}

void RenumberCodes(const std::vector<std::shared_ptr<clsXUNField>>& regions,
                   const std::vector<std::string>& first_codes) {
  if (regions.empty()) return;
  // Linked regions share one data type, so the first region speaks for all.
  const bool numeric = regions.front()->DataType() == xunDataTypeNumeric;
  int32_t most_questions = 0;
  for (const std::shared_ptr<clsXUNField>& region : regions)
    if (const auto questions = region->Questions())
      most_questions = std::max(most_questions, questions->Count());

  // Every new list is worked out before any is changed.
  std::vector<std::pair<std::shared_ptr<clsXUNQuestion>, std::string>> renumbered;
  for (int32_t q = 1; q <= most_questions; ++q) {
    const std::string first_code =
        static_cast<size_t>(q) <= first_codes.size() ? first_codes[q - 1] : std::string();
    const CodeScheme scheme = SchemeFrom(first_code, numeric);
    int32_t k = 0;
    for (const std::shared_ptr<clsXUNField>& region : regions) {
      const auto questions = region->Questions();
      const auto question = questions ? questions->Item(q) : nullptr;
      if (!question) continue;
      // One code per choice; a question without choices keeps its number of codes.
      const int32_t choices = CountOf(question->Choices());
      const int32_t count = choices > 0 ? choices : CountOf(question->Codes());
      std::string line;
      for (int32_t i = 0; i < count; ++i) {
        if (i > 0) line += '\t';
        line += CodeAt(scheme, ++k);
      }
      renumbered.emplace_back(question, std::move(line));
    }
  }
  for (auto& [question, line] : renumbered) {
    std::shared_ptr<clsXUNStringItems> codes = question->Codes();
    if (!codes) {
      codes = clsXUNStringItems::Create();
      question->Codes(codes);
    }
    codes->RemoveAll();
    codes->AddDelimitedString(line, "\t");
  }
}

void RenumberGroupCodes(const clsXUNPage& page, int16_t group) {
  const std::vector<std::shared_ptr<clsXUNField>> members = GroupMembers(page, group);
  RenumberCodes(members, FirstCodes(members));
}

}  // namespace detail

bool ResetCodes(clsXUNPage& oPage, int16_t iLinkGroup) {
  return Trap("basTemplate.ResetCodes", false, [&] {
    detail::RenumberGroupCodes(oPage, iLinkGroup);
    return true;
  });
}

}  // namespace xun::basTemplate
