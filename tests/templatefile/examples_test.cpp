#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "common/test_support.h"
#include "common/tree_description.h"
#include "xun/xun.h"

namespace xun {
namespace {

// The .omr files of a folder, in name order so failures name the same file every run.
std::vector<std::string> TemplatesIn(const std::string& folder) {
  std::vector<std::string> files;
  std::error_code ec;
  for (const auto& entry : std::filesystem::directory_iterator(folder, ec))
    if (entry.path().extension() == ".omr") files.push_back(entry.path().string());
  std::sort(files.begin(), files.end());
  return files;
}

// An engine that finds nothing and fails at nothing, so saving a template with page images
// (which counts their filled pixels) reports nothing on a machine without the real one.
class QuietEngine : public IRecognitionEngine {
 public:
  int16_t LoadImage(const char*, int32_t, int16_t, int16_t, int16_t, int16_t) override { return 0; }
  int16_t UnloadImage() override { return 0; }
  int16_t SearchOMRField(int16_t, int16_t, int16_t, int16_t, int16_t&, int16_t&) override {
    return 0;
  }
  int16_t CheckOMRField(int16_t, int16_t, int16_t, int16_t, int16_t, int16_t, int16_t*) override {
    return 0;
  }
  int16_t CheckOMRFieldFill(int16_t, int16_t, int16_t, int16_t, int16_t, int16_t, int16_t*,
                            int16_t*) override {
    return 0;
  }
  int16_t CheckImageField(int16_t, int16_t, int16_t, int16_t, int32_t&) override { return 0; }
  int16_t AlignOMRField(int16_t, int16_t, int16_t, int16_t, int16_t, int16_t, int16_t, int16_t&,
                        int16_t&, int16_t&, int16_t&) override {
    return 0;
  }
  int16_t GetMarkAreas(int16_t, int16_t, int16_t, int16_t, int16_t, int16_t, int16_t, int16_t&,
                       xunReadArea*) override {
    return 0;
  }
};

// Installs the quiet engine while alive.
class ScopedQuietEngine {
 public:
  ScopedQuietEngine() : previous_(basExterns::SetEngine(std::make_shared<QuietEngine>())) {}
  ~ScopedQuietEngine() { basExterns::SetEngine(previous_); }

 private:
  std::shared_ptr<IRecognitionEngine> previous_;
};

// Reads `file` for editing. When it reads, save (without registering: the regions are not
// moved by an engine here) → read must give the same tree (as far as a
// file holds it) and a second save the same bytes; an archive, whose zip headers carry times and
// random salts, must give the same tree once more instead. Returns whether it read; never fails
// the test for a file that does not read.
bool ReadsAndSavesStably(const std::string& file) {
  auto first = clsXUNTemplate::Create();
  if (!first->Read(file, true)) return false;
  testing::TempFolder folder;
  EXPECT_TRUE(first->Save(folder.File("a.omr"), false, nullptr, false));
  auto second = clsXUNTemplate::Create();
  EXPECT_TRUE(second->Read(folder.File("a.omr"), true)) << basTemplate::LastReadDiagnostic().text;
  const std::string saved_tree = testing::DescribeTree(*first, true);
  EXPECT_EQ(testing::DescribeTree(*second, true), saved_tree);
  EXPECT_TRUE(second->Save(folder.File("b.omr"), false, nullptr, false));
  const std::string first_bytes = testing::ReadFileBytes(folder.File("a.omr"));
  if (first_bytes.rfind("PK", 0) != 0) {
    EXPECT_EQ(first_bytes, testing::ReadFileBytes(folder.File("b.omr")));
  } else {
    auto third = clsXUNTemplate::Create();
    EXPECT_TRUE(third->Read(folder.File("b.omr"), true));
    EXPECT_EQ(testing::DescribeTree(*third, true), saved_tree);
    third->Free();
  }
  first->Free();
  second->Free();
  return true;
}

TEST(Examples, ReadForReadingAndSaveStably) {
  const auto files = TemplatesIn(XUN_EXAMPLES_DIR);
  ASSERT_GE(files.size(), 2u);
  ScopedQuietEngine engine;
  for (const std::string& file : files) {
    SCOPED_TRACE(file);
    testing::ScopedHandler handler;
    auto form = clsXUNTemplate::Create();
    ASSERT_TRUE(form->Read(file, false)) << basTemplate::LastReadDiagnostic().text;
    EXPECT_TRUE(form->Valid());
    EXPECT_GT(form->NumItems(), 0);
    EXPECT_TRUE(ReadsAndSavesStably(file));
    EXPECT_TRUE(handler.reports().empty()) << handler.reports().front().description;
    form->Free();
  }
}

// The scanned exam is an archive: the template and its printed page as the page's own image.
TEST(Examples, ScannedExamReadsWithItsPageImage) {
  const std::string file = std::string(XUN_EXAMPLES_DIR) + "/scanned.omr";
  EXPECT_EQ(testing::ReadFileBytes(file).substr(0, 2), "PK");
  auto form = clsXUNTemplate::Create();
  ASSERT_TRUE(form->Read(file, false)) << basTemplate::LastReadDiagnostic().text;
  const auto page = form->Pages()->Item(1);
  ASSERT_FALSE(page->ImageFile().empty());
  EXPECT_EQ(testing::ReadFileBytes(page->ImageFile()).substr(0, 1), "\x0A") << "a PCX image";
  EXPECT_EQ(page->XDPI(), 100);
  EXPECT_EQ(page->ImageWidth(), 850);
  EXPECT_EQ(page->ImageHeight(), 1100);
  const std::string image = page->ImageFile();
  form->Free();
  EXPECT_FALSE(std::filesystem::exists(image)) << "the page's own copy goes with the page";
}

// The exam's student number is one question over six columns of ten digits: a host sizing its
// data column from Schema must get six characters, and the question all 60 bubbles.
TEST(Examples, ExamStudentNumberCoversItsWholeGrid) {
  testing::ScopedHandler handler;
  auto form = clsXUNTemplate::Create();
  ASSERT_TRUE(form->Read(std::string(XUN_EXAMPLES_DIR) + "/exam.omr", false));
  const auto student = form->Pages()->Item(1)->Fields()->Item(2);
  ASSERT_EQ(student->FieldName(), "Student");
  const auto question = student->Questions()->Item(1);
  EXPECT_EQ(question->Schema(), "Student,Numeric,6");
  int16_t first_row = 0, last_row = 0, first_col = 0, last_col = 0;
  ASSERT_TRUE(question->Plot(first_row, last_row, first_col, last_col));
  EXPECT_EQ((std::vector<int16_t>{first_row, last_row, first_col, last_col}),
            (std::vector<int16_t>{1, 10, 1, 6}));
  int16_t top = 0, left = 0, bottom = 0, right = 0;
  ASSERT_TRUE(question->Locate(top, left, bottom, right));
  const BubbleRect all = BubbleGrid::Of(*student).Enclosing(1, 10, 1, 6);
  EXPECT_EQ((std::vector<int16_t>{top, left, bottom, right}),
            (std::vector<int16_t>{all.Top, all.Left, all.Bottom, all.Right}));
  EXPECT_EQ(right - left, 5 * student->ColGap() + student->ColGap() / 2) << "six columns wide";
  EXPECT_TRUE(handler.reports().empty());
  form->Free();
}

// The survey carries text Windows-1252 cannot hold, so it must stay UTF-16 through a save.
TEST(Examples, SurveyKeepsItsNonLatinText) {
  const std::string file = std::string(XUN_EXAMPLES_DIR) + "/survey.omr";
  EXPECT_EQ(testing::ReadFileBytes(file).substr(0, 2), "\xFF\xFE");
  auto form = clsXUNTemplate::Create();
  ASSERT_TRUE(form->Read(file, false));
  EXPECT_EQ(form->Attributes()->Item("Title"), Variant("Ερωτηματολόγιο / アンケート"));
  EXPECT_EQ(form->Attributes()->Item("Owner"), Variant("Marketing | Research"));
  EXPECT_EQ(form->Attributes()->Item("Formula"), Variant("score=a+b"));
  EXPECT_EQ(form->NumPages(), 2);
}

// The shipped batch names its members relative to its own folder.
TEST(Examples, BatchReadsIntoOneTemplate) {
  testing::ScopedHandler handler;
  auto form = clsXUNTemplate::Create();
  ASSERT_TRUE(form->ReadBatch(std::string(XUN_EXAMPLES_DIR) + "/batch.rbf", ""));
  EXPECT_TRUE(handler.reports().empty());
  std::vector<std::string> page_ids;
  for (const auto& page : *form->Pages())
    page_ids.push_back(page->Fields()->Item(1)->Questions()->Item(1)->IDValue());
  EXPECT_EQ(page_ids, (std::vector<std::string>{"COVER", "ROSTER", "QUIZ-1", "QUIZ-2"}));
  EXPECT_EQ(form->HeaderItemCount(), 6);  // the session and the five roster rows
  EXPECT_EQ(form->HeaderCount(), 2);
  EXPECT_EQ(form->HeaderPageCount(), 2);
  form->Free();
}

// Inputs the fuzzer once broke: no crash, and a stable save when they read.
TEST(Regressions, ReadWithoutCrashAndSaveStably) {
  for (const std::string& file : TemplatesIn(XUN_REGRESSIONS_DIR)) {
    SCOPED_TRACE(file);
    testing::ScopedHandler handler;
    testing::ScopedMessageCapture messages;
    ReadsAndSavesStably(file);
  }
}

// Damaged copies of the examples: a report at most, never a crash, and a stable save for every
// copy that still reads. The seed is fixed so a failure repeats.
std::string Mutate(std::string bytes, std::mt19937& rng) {
  const bool utf16 = bytes.rfind("\xFF\xFE", 0) == 0;
  const std::string line_end = utf16 ? std::string("\n\0", 2) : "\n";
  const auto pick = [&rng](size_t n) { return std::uniform_int_distribution<size_t>(0, n)(rng); };
  // The start of a line near a random position (0 when there is none before it).
  const auto line_start = [&](size_t at) {
    const size_t found = bytes.rfind(line_end, at);
    return found == std::string::npos ? size_t{0} : found + line_end.size();
  };
  const auto line_length = [&](size_t start) {
    const size_t found = bytes.find(line_end, start);
    return (found == std::string::npos ? bytes.size() : found + line_end.size()) - start;
  };
  if (bytes.empty()) return bytes;
  switch (pick(3)) {
    case 0:
      for (size_t n = 1 + pick(3); n > 0; --n)
        bytes[pick(bytes.size() - 1)] ^= static_cast<char>(1 << pick(7));
      break;
    case 1: {
      const size_t start = line_start(pick(bytes.size() - 1));
      bytes.erase(start, line_length(start));
      break;
    }
    case 2: {
      const size_t start = line_start(pick(bytes.size() - 1));
      bytes.insert(start, bytes.substr(start, line_length(start)));
      break;
    }
    default: {
      std::string header = "[Field]\r\n";
      if (utf16) {
        std::string wide;
        for (char c : header)
          wide += std::string{c, '\0'};
        header = wide;
      }
      bytes.insert(line_start(pick(bytes.size() - 1)), header);
      break;
    }
  }
  return bytes;
}

TEST(Mutations, FixedSeedNeverCrashes) {
  testing::ScopedHandler handler;
  testing::ScopedMessageCapture messages;
  testing::TempFolder folder;
  std::mt19937 rng(20240611);
  int read = 0, total = 0;
  for (const std::string& example : TemplatesIn(XUN_EXAMPLES_DIR)) {
    const std::string original = testing::ReadFileBytes(example);
    for (int i = 0; i < 100; ++i, ++total) {
      SCOPED_TRACE(example + ", mutation " + std::to_string(i));
      const std::string input = folder.File("mutated-" + std::to_string(total) + ".omr");
      testing::WriteFileBytes(input, Mutate(original, rng));
      if (ReadsAndSavesStably(input)) ++read;
      if (HasFailure()) return;  // the trace names the first broken copy; keep the log short
    }
  }
  // Most damage is local: a suite where nothing reads any more tests nothing.
  EXPECT_GT(read, 0);
  EXPECT_LT(read, total);
}

}  // namespace
}  // namespace xun
