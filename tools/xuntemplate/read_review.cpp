#include "read_review.h"

#include <filesystem>
#include <set>

#include "tool.h"
#include "xun/reading/review_picture.h"

namespace xuntool {

std::vector<std::string> ReviewNames(const std::vector<xun::reading::FormRecord>& records) {
  std::vector<std::string> names;
  std::set<std::string> taken;
  for (const auto& record : records) {
    const std::string stem = record.images.empty()
                                 ? std::string("form")
                                 : std::filesystem::path(record.images.front()).stem().string();
    std::string name = stem + ".svg";
    for (int n = 2; taken.count(name); ++n)
      name = stem + "-" + std::to_string(n) + ".svg";
    taken.insert(name);
    names.push_back(name);
  }
  return names;
}

size_t WriteReviewPictures(const std::string& dir,
                           const std::vector<xun::reading::FormRecord>& records) {
  std::error_code ec;
  std::filesystem::create_directories(dir, ec);
  if (ec) throw ToolError("xuntemplate: error: " + dir + ": " + ec.message());
  const std::vector<std::string> names = ReviewNames(records);
  size_t written = 0;
  for (size_t i = 0; i < records.size(); ++i) {
    if (!records[i].NeedsReview()) continue;
    WriteOutputFile((std::filesystem::path(dir) / names[i]).string(),
                    xun::reading::ReviewSvg(records[i]));
    ++written;
  }
  return written;
}

}  // namespace xuntool
