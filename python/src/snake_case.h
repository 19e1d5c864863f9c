// Python names for the library's member names.
#pragma once

#include <cctype>
#include <string>
#include <string_view>

namespace xunpy {

// "QuestionName" -> "question_name", "RDDName" -> "rdd_name", "XDPI" -> "xdpi".
inline std::string SnakeCase(std::string_view name) {
  std::string out;
  for (size_t i = 0; i < name.size(); ++i) {
    const auto c = static_cast<unsigned char>(name[i]);
    if (std::isupper(c) && i > 0) {
      const auto before = static_cast<unsigned char>(name[i - 1]);
      const bool next_lower =
          i + 1 < name.size() && std::islower(static_cast<unsigned char>(name[i + 1]));
      if (std::islower(before) || std::isdigit(before) || (std::isupper(before) && next_lower))
        out += '_';
    }
    out += static_cast<char>(std::tolower(c));
  }
  return out;
}

}  // namespace xunpy
