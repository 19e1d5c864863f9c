#include "xun/reading/identification.h"

#include <algorithm>

#include "xun/model/enums.h"

namespace xun::reading::detail {
namespace {

std::string Quoted(const std::string& value) {
  return "'" + value + "'";
}

void Flag(FormRecord& record, const IdentificationReading& id, std::string why) {
  record.review.push_back(
      {id.answer.page, id.answer.item, id.answer.name, id.region, std::move(why)});
}

}  // namespace

std::vector<size_t> PageOrder(
    const std::vector<std::string>& page_ids,
    const std::function<std::optional<std::string>(size_t image, size_t page)>& read_id) {
  const size_t pages = page_ids.size();
  std::vector<size_t> image_of(pages, pages);
  bool moved = false;
  for (size_t image = 0; image < pages; ++image) {
    // Its own page first: an image in its place costs one reading.
    std::vector<size_t> tries{image};
    for (size_t page = 0; page < pages; ++page)
      if (page != image) tries.push_back(page);
    for (size_t page : tries) {
      std::optional<std::string> id = read_id(image, page);
      if (!id) continue;
      const auto named = std::find(page_ids.begin(), page_ids.end(), *id);
      if (named == page_ids.end()) break;  // no page of this form: Identify says so
      const size_t is = static_cast<size_t>(named - page_ids.begin());
      // Read as another page, it names its own: it must read so as that page too.
      if (is != page) id = read_id(image, is);
      if (id != page_ids[is]) break;
      if (image_of[is] != pages) return {};  // two images of one page
      image_of[is] = image;
      moved = moved || is != image;
      break;
    }
  }
  if (!moved || std::count(image_of.begin(), image_of.end(), pages) != 0) return {};
  return image_of;
}

void Identify(FormRecord& record) {
  std::vector<std::string> page_ids;
  for (const IdentificationReading& id : record.identification)
    if (id.role == xunIDTypePage) page_ids.push_back(id.expected);
  const IdentificationReading* tracker = nullptr;
  for (const IdentificationReading& id : record.identification) {
    if (id.answer.status != AnswerStatus::Clear) continue;  // unclear ones are listed as such
    const std::string& read = id.answer.value;
    switch (id.role) {
      case xunIDTypeForm:
        if (read != id.expected)
          Flag(record, id,
               "wrong form: read " + Quoted(read) + ", expected " + Quoted(id.expected));
        break;
      case xunIDTypePage:
        if (read == id.expected) break;
        if (const auto other = std::find(page_ids.begin(), page_ids.end(), read);
            other != page_ids.end())
          Flag(record, id,
               "page ID reads " + Quoted(read) + ", page " +
                   std::to_string(other - page_ids.begin() + 1) + "'s: this image is not page " +
                   std::to_string(id.answer.page));
        else
          Flag(record, id,
               "a page of another form: page ID reads " + Quoted(read) + ", expected " +
                   Quoted(id.expected));
        break;
      case xunIDTypeRespondent:
        if (!tracker) {
          tracker = &id;
          record.respondent = read;
        } else if (read != tracker->answer.value) {
          Flag(record, id,
               "respondent tracker reads " + Quoted(read) + " here and " +
                   Quoted(tracker->answer.value) + " on page " +
                   std::to_string(tracker->answer.page));
        }
        break;
      case xunIDTypeReadHeadCheck:
        if (read != id.expected)
          Flag(record, id,
               "read-head check read " + Quoted(read) + ", expected " + Quoted(id.expected));
        break;
      default:
        break;
    }
  }
}

}  // namespace xun::reading::detail
