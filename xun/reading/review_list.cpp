#include "xun/reading/review_list.h"

#include <algorithm>
#include <set>

namespace xun::reading::detail {
namespace {

std::string WhyOf(const ItemAnswer& answer) {
  std::string why = StatusName(answer.status);
  if (!answer.why.empty()) why += ": " + answer.why;
  return why;
}

}  // namespace

void ListForReview(FormRecord& record) {
  std::vector<ReviewReason>& review = record.review;
  if (!record.error.empty()) review.push_back({0, 0, {}, {}, record.error});
  // A page not read is one reason, not one for each of its items.
  std::set<int32_t> unread;
  for (const PageReading& page : record.pages)
    if (!page.registered) {
      unread.insert(page.page);
      review.push_back({page.page, 0, {}, {}, page.error.empty() ? "not read" : page.error});
    }
  const auto add = [&](const ItemAnswer& answer, const std::string& region) {
    if (answer.status == AnswerStatus::Clear || answer.status == AnswerStatus::Blank) return;
    if (unread.count(answer.page)) return;
    review.push_back({answer.page, answer.item, answer.name, region, WhyOf(answer)});
  };
  // An item's bubbles carry its number; a hidden identification question is found by region.
  for (const ItemAnswer& answer : record.answers)
    add(answer, {});
  for (const IdentificationReading& id : record.identification)
    if (!id.adds_item) add(id.answer, id.region);
  std::stable_sort(review.begin(), review.end(),
                   [](const ReviewReason& a, const ReviewReason& b) { return a.page < b.page; });
}

}  // namespace xun::reading::detail
