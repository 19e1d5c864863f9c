#include "read_key.h"

#include <algorithm>
#include <cctype>
#include <iostream>

#include "tool.h"

namespace xuntool {

xun::reading::Grader GraderFor(const xun::clsXUNTemplate& form,
                               const xun::reading::FormReader& reader,
                               const std::vector<std::string>& keys) {
  std::string first = keys.front();
  std::transform(first.begin(), first.end(), first.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  const bool csv = first.size() > 4 && first.compare(first.size() - 4, 4, ".csv") == 0;
  xun::reading::AnswerKey key;
  if (csv) {
    if (keys.size() > 1) throw ToolError("xuntemplate: error: --key: one CSV file, or key sheets");
    RequireInputFile(keys.front());
    key = xun::reading::AnswerKey::FromCsv(keys.front());
  } else {
    const size_t pages = static_cast<size_t>(std::max(reader.NumPages(), 1));
    if (keys.size() % pages != 0)
      throw ToolError("xuntemplate: error: --key: " +
                      Plural(static_cast<int64_t>(keys.size()), "image", "images") +
                      " for key sheets of " + Plural(static_cast<int64_t>(pages), "page", "pages"));
    std::vector<std::vector<std::string>> sheets;
    for (size_t i = 0; i < keys.size(); i += pages) {
      for (size_t k = i; k < i + pages; ++k)
        RequireInputFile(keys[k]);
      sheets.emplace_back(keys.begin() + static_cast<std::ptrdiff_t>(i),
                          keys.begin() + static_cast<std::ptrdiff_t>(i + pages));
    }
    std::vector<std::string> problems;
    key = xun::reading::AnswerKey::FromSheets(form, reader, sheets, problems);
    for (const std::string& problem : problems)
      std::cerr << "xuntemplate: warning: key sheet " << problem << "\n";
  }
  xun::reading::Grader grader(form, std::move(key));
  for (const std::string& note : grader.Notes())
    std::cerr << "xuntemplate: warning: " << keys.front() << ": " << note << "\n";
  return grader;
}

}  // namespace xuntool
