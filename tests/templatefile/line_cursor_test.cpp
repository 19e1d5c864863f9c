#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "xun/templatefile/section_reader.h"

namespace xun::basTemplate::detail {
namespace {

// Every line with its number, as the section readers see them.
std::vector<std::string> Walk(std::string_view text) {
  std::vector<std::string> lines;
  for (LineCursor cursor(text); !cursor.AtEnd(); cursor.Next())
    lines.push_back(std::to_string(cursor.LineNumber()) + ":" + std::string(cursor.Current()));
  return lines;
}

TEST(LineCursor, EndsLinesAtCrLfLfAndLoneCr) {
  using Lines = std::vector<std::string>;
  EXPECT_EQ(Walk("a\r\nb\nc\rd"), (Lines{"1:a", "2:b", "3:c", "4:d"}));
  EXPECT_EQ(Walk("a\r\n\r\nb"), (Lines{"1:a", "2:", "3:b"})) << "an empty line is a line";
  EXPECT_EQ(Walk("a\r\r\nb"), (Lines{"1:a", "2:", "3:b"})) << "CR then CR LF: two line ends";
  EXPECT_EQ(Walk("a\n\rb"), (Lines{"1:a", "2:", "3:b"})) << "LF CR is not one line end";
  EXPECT_EQ(Walk("a\r\n"), (Lines{"1:a"})) << "a final line end opens no line";
  EXPECT_EQ(Walk("\r"), (Lines{"1:"}));
  EXPECT_TRUE(Walk("").empty());
  EXPECT_TRUE(Walk(std::string_view()).empty());
}

}  // namespace
}  // namespace xun::basTemplate::detail
