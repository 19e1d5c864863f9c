#include "check_warnings.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "template_walk.h"
#include "tool.h"

namespace xuntool {
namespace {

std::string Rect(const xun::clsXUNField& f) {
  return "(" + std::to_string(f.Left()) + "," + std::to_string(f.Top()) + ")-(" +
         std::to_string(f.Right()) + "," + std::to_string(f.Bottom()) + ")";
}

std::string Where(const RegionRef& ref) {
  return "region '" + RegionLabel(ref) + "' on page " + std::to_string(ref.page);
}

std::string Folded(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) {
    return static_cast<char>(c >= 'a' && c <= 'z' ? c - 32 : c);
  });
  return text;
}

// The bubbles along each question of an OMR region of field type 1 to 7, as many as it should
// have choices: the number of choices the library's own Update gives every question (a row of
// NumCols for Orient 1, a column of NumRows for Orient 2, one for a Boolean question), asked of a
// copy so the template stays as read. Nothing for other regions.
std::optional<int32_t> BubblesAlongAQuestion(const xun::clsXUNField& f) {
  if (f.RecognitionType() != xun::xunRecogTypeOMR || f.FieldType() < xun::xunFieldTypeOMRMult ||
      f.FieldType() > xun::xunFieldTypeOMRRank)
    return std::nullopt;
  const std::shared_ptr<xun::clsXUNField> copy = f.Copy(false, false, false);
  if (!copy || !copy->Questions()->Update() || copy->Questions()->Count() == 0) return std::nullopt;
  const auto choices = copy->Questions()->Item(1)->Choices();
  return choices ? choices->Count() : 0;
}

// The reader takes any count of choices; one that disagrees with the bubbles leaves bubbles
// without a label or labels without a bubble. Empty when the count agrees.
std::string ChoicesAgainstBubbles(const xun::clsXUNField& f, std::optional<int32_t> bubbles,
                                  int32_t choices) {
  if (!bubbles || *bubbles == choices) return {};
  const std::string held = Plural(*bubbles, "bubble", "bubbles");
  if (f.FieldType() == xun::xunFieldTypeOMRBoolean) return "a Boolean question has " + held;
  return std::string("its ") + (f.Orient() == xun::xunOrientationTypeOMRRow ? "row" : "column") +
         " holds " + held;
}

bool Overlap(const xun::clsXUNField& a, const xun::clsXUNField& b) {
  return std::max(a.Left(), b.Left()) < std::min(a.Right(), b.Right()) &&
         std::max(a.Top(), b.Top()) < std::min(a.Bottom(), b.Bottom());
}

}  // namespace

std::vector<Warning> CollectWarnings(const xun::clsXUNTemplate& t, const SectionLines& lines) {
  std::vector<Warning> out;
  const std::vector<RegionRef> regions = AllRegions(t);
  const PageExtent page = ExtentOf(t);

  std::map<const xun::clsXUNQuestion*, std::size_t> question_index;
  std::size_t next_question = 0;
  for (std::size_t i = 0; i < regions.size(); ++i) {
    const RegionRef& ref = regions[i];
    const xun::clsXUNField& f = *ref.field;
    const int32_t line = LineAt(lines.regions, i);
    if (f.Right() <= f.Left() || f.Bottom() <= f.Top()) {
      out.push_back({line, Where(ref) + " has an empty rectangle " + Rect(f)});
    } else if (page.width > 0 && page.height > 0 &&
               (f.Left() < 0 || f.Top() < 0 || f.Right() > page.width ||
                f.Bottom() > page.height)) {
      out.push_back({line, Where(ref) + " " + Rect(f) + " lies outside the page (" +
                               std::to_string(static_cast<int>(page.width)) + " x " +
                               std::to_string(static_cast<int>(page.height)) + ")"});
    }
    // Regions earlier on the same page that this one overlaps; named once, at the later one.
    for (std::size_t j = 0; j < i; ++j) {
      if (regions[j].page != ref.page || !Overlap(*regions[j].field, f)) continue;
      out.push_back({line, Where(ref) + " " + Rect(f) + " overlaps region '" +
                               RegionLabel(regions[j]) + "' " + Rect(*regions[j].field)});
    }
    const std::optional<int32_t> bubbles = BubblesAlongAQuestion(f);
    for (const auto& q : *f.Questions()) {
      const std::size_t index = next_question++;
      question_index[q.get()] = index;
      const int32_t choices = q->Choices() ? q->Choices()->Count() : 0;
      const int32_t codes = q->Codes() ? q->Codes()->Count() : 0;
      const std::string question = "question '" + q->QuestionName() + "' of " + Where(ref);
      if (choices != codes)
        out.push_back({LineAt(lines.questions, index),
                       question + " has " + Plural(choices, "choice", "choices") + " but " +
                           Plural(codes, "code", "codes")});
      if (const std::string mismatch = ChoicesAgainstBubbles(f, bubbles, choices);
          !mismatch.empty())
        out.push_back(
            {LineAt(lines.questions, index),
             question + " has " + Plural(choices, "choice", "choices") + " but " + mismatch});
    }
  }

  // Duplicate names are judged on the data columns, so linked regions (which share their
  // first region's items) do not count twice.
  const auto names = t.GetActualNames();
  const auto questions = t.GetActualQuestions();
  std::map<std::string, int32_t> first_item;
  if (names.IsAllocated()) {
    for (int32_t item = names.LBound(); item <= names.UBound(); ++item) {
      const std::string& name = names[item];
      const auto [seen, fresh] = first_item.emplace(Folded(name), item);
      if (fresh) continue;
      int32_t line = 0;
      if (questions.IsAllocated() && item <= questions.UBound() && questions[item]) {
        const auto found = question_index.find(questions[item].get());
        if (found != question_index.end()) line = LineAt(lines.questions, found->second);
      }
      out.push_back({line, "duplicate question name '" + name + "' (items " +
                               std::to_string(seen->second) + " and " + std::to_string(item) +
                               ")"});
    }
  }

  // The reader numbers link groups 1, 2, ... in file order, one per [Link] section.
  const auto groups = LinkGroups(t);
  const int32_t last = groups.empty() ? 0 : groups.rbegin()->first;
  for (int32_t number = 1; number <= std::max<int32_t>(last, lines.links.size()); ++number) {
    const auto found = groups.find(number);
    const int32_t line = LineAt(lines.links, static_cast<std::size_t>(number - 1));
    if (found == groups.end())
      out.push_back({line, "link group " + std::to_string(number) + " holds no region"});
    else if (found->second.size() == 1)
      out.push_back({line, "link group " + std::to_string(number) + " holds only " +
                               Where(found->second.front()) + ", so it links nothing"});
  }
  // In file order; warnings without a line keep their order at the end.
  auto key = [](const Warning& w) { return w.line > 0 ? w.line : INT32_MAX; };
  std::stable_sort(out.begin(), out.end(),
                   [&](const Warning& a, const Warning& b) { return key(a) < key(b); });
  return out;
}

}  // namespace xuntool
