#include <errno.h>  // program_invocation_short_name
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <set>
#include <string>

#include "common/test_support.h"
#include "xun/support/file_helpers.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
namespace bp = xun::basPublic;
using xun::testing::ReadFileBytes;
using xun::testing::ScopedHandler;
using xun::testing::TempFolder;
using xun::testing::WriteFileBytes;

::testing::AssertionResult ReportedOnce(ScopedHandler& handler, int32_t number,
                                        const std::string& location) {
  const auto reports = handler.reports();
  const auto locations = handler.Locations();
  handler->reports.clear();
  if (reports.size() != 1) return ::testing::AssertionFailure() << reports.size() << " reports";
  if (locations[0] != location || !(reports[0].number == xun::Variant(number)))
    return ::testing::AssertionFailure() << reports[0].number.ToText() << " at " << locations[0];
  return ::testing::AssertionSuccess();
}

TEST(FileHelpersUniqueName, NamesAFreePathOfTheRightForm) {
  ScopedHandler handler;
  TempFolder folder;
  for (int i = 0; i < 40; ++i) {
    const fs::path p = bp::GetUniqueFileName("frm", ".omr", folder.path());
    EXPECT_EQ(p.parent_path(), fs::path(folder.path()));
    EXPECT_TRUE(std::regex_match(p.filename().string(),
                                 std::regex(R"(frm[0-9a-f]{1,3}[0-9A-F]{1,5}\.omr)")));
    EXPECT_FALSE(fs::exists(fs::symlink_status(p))) << p;
    // Occupy the name, alternately with a file and a folder.
    i % 2 ? (void)fs::create_directory(p) : WriteFileBytes(p.string(), "x");
  }
  // Empty arguments: the temporary folder, the program's name, a random extension.
  const std::string prefix = std::string(program_invocation_short_name).substr(0, 5);
  std::set<std::string> extensions;
  for (int i = 0; i < 20; ++i) {
    const fs::path p = bp::GetUniqueFileName("", "", "");
    EXPECT_EQ(p.parent_path(), fs::temp_directory_path().lexically_normal());
    EXPECT_EQ(p.filename().string().rfind(prefix, 0), 0u) << p;
    EXPECT_TRUE(std::regex_match(p.extension().string(), std::regex(R"(\.[0-9a-f]{1,3})")));
    extensions.insert(p.extension().string());
  }
  EXPECT_GT(extensions.size(), 1u);  // drawn afresh for each name
  EXPECT_TRUE(handler.reports().empty());
}

TEST(FileHelpersUniqueName, RandomNumberStaysWithinInclusiveBounds) {
  ScopedHandler handler;
  std::set<int32_t> drawn;
  for (int i = 0; i < 1000; ++i)
    drawn.insert(bp::RandomNumber(-2, 1));
  EXPECT_EQ(drawn, (std::set<int32_t>{-2, -1, 0, 1}));
  EXPECT_EQ(bp::RandomNumber(2, 1), 0);
  EXPECT_TRUE(ReportedOnce(handler, 5, "basPublic.RandomNumber"));
}

TEST(FileHelpersTempFile, ComparesTheLeadingPartOfTheFolderIgnoringCase) {
  TempFolder folder;
  const std::string temp = fs::temp_directory_path().string();
  EXPECT_TRUE(bp::IsTempFile(folder.File("sub/deeper/x.omr")));
  EXPECT_TRUE(bp::IsTempFile(xun::text::ToUpper(temp) + "/x.omr"));
  EXPECT_FALSE(bp::IsTempFile("/work/x.omr"));
  EXPECT_FALSE(bp::IsTempFile("x.omr"));
}

TEST(FileHelpersBackup, CopiesTheExactBytesOverAnOlderBackup) {
  ScopedHandler handler;
  TempFolder folder;
  const std::string file = folder.File("x.omr");
  const std::string bytes = "\xFF\xFE[\0T\0]\0\r\0\n\0\x80\0"s;
  WriteFileBytes(file, bytes);
  WriteFileBytes(file + ".old", "an older, longer backup that must go");
  EXPECT_TRUE(bp::FileBackup(file));
  EXPECT_EQ(ReadFileBytes(file + ".old"), bytes);
  EXPECT_EQ(ReadFileBytes(file), bytes);
  EXPECT_TRUE(handler.reports().empty());

  EXPECT_FALSE(bp::FileBackup(folder.File("missing.omr")));
  EXPECT_TRUE(ReportedOnce(handler, 53, "basPublic.FileBackup"));
}

TEST(FileHelpersUnicode, KnowsAFileByItsByteOrderMark) {
  const std::pair<std::string, bool> cases[] = {
      {"\xFF\xFEZ\0"s, true},      {"\xFE\xFF\0A"s, true}, {"Name=ANSI \xE9", false},
      {"\xEF\xBB\xBFName", false}, {"\xFF", false},        {"", false}};
  ScopedHandler handler;
  TempFolder folder;
  for (const auto& [bytes, expected] : cases) {
    WriteFileBytes(folder.File("f.omr"), bytes);
    EXPECT_EQ(bp::IsUnicodeFile(folder.File("f.omr")), expected) << bytes;
  }
  EXPECT_TRUE(handler.reports().empty());
  EXPECT_FALSE(bp::IsUnicodeFile(folder.File("missing.omr")));
  EXPECT_TRUE(ReportedOnce(handler, 53, "basPublic.IsUnicodeFile"));
}

}  // namespace
