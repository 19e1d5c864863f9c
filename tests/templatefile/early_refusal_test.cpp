// What the reader refuses before it reads: files over the size limit and files that plainly are no
// template, judged on their first 64 KiB. Every valid encoding must still read, however large.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <zip.h>

#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "common/test_support.h"
#include "common/tree_description.h"
#include "xun/templatefile/source_file.h"
#include "xun/templatefile/template_head.h"
#include "xun/xun.h"

namespace xun {
namespace {

namespace fs = std::filesystem;
using basTemplate::detail::kMaxTemplateFileSize;
using basTemplate::detail::kTemplateHeadSize;
using basTemplate::detail::SourceFile;
using testing::ReadFileBytes;
using testing::ScopedMessageCapture;
using testing::TempFolder;
using testing::WriteFileBytes;

const std::string kExam = std::string(XUN_EXAMPLES_DIR) + "/exam.omr";
const std::string kSurvey = std::string(XUN_EXAMPLES_DIR) + "/survey.omr";

std::string RandomBytes(size_t size, unsigned seed) {
  std::mt19937 random(seed);
  std::string bytes(size, '\0');
  for (char& c : bytes)
    c = static_cast<char>(random() & 0xFF);
  return bytes;
}

// Lines the reader skips (no "=", no "["), `size` bytes in all; `size` is 0 or at least 3.
std::string Padding(size_t size) {
  const std::string line = "; " + std::string(60, 'x') + "\r\n";
  std::string pad;
  while (pad.size() + line.size() + 3 <= size)
    pad += line;
  if (pad.size() < size) pad += ";" + std::string(size - pad.size() - 3, 'x') + "\r\n";
  return pad;
}

std::string Utf16Bytes(const std::string& utf8, bool big_endian) {
  std::string bytes = text::Utf8ToUtf16LEBytes(utf8);
  if (big_endian)
    for (size_t i = 0; i + 1 < bytes.size(); i += 2)
      std::swap(bytes[i], bytes[i + 1]);
  return bytes;
}

struct Outcome {
  bool ok = false;
  std::string description;  // of the tree read
  basTemplate::ReadDiagnostic diagnostic;
};

Outcome ReadFile(const std::string& path) {
  ScopedMessageCapture messages;
  auto t = clsXUNTemplate::Create();
  Outcome outcome;
  outcome.ok = basTemplate::ReadTemplate(path, *t, false);
  outcome.description = testing::DescribeTree(*t, true);
  outcome.diagnostic = basTemplate::LastReadDiagnostic();
  t->Free();
  return outcome;
}

// An archive holding one template, `content`, stored as it is.
void WriteArchive(const std::string& path, const std::string& content) {
  int error = 0;
  zip_t* archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
  ASSERT_NE(archive, nullptr);
  zip_source_t* source = zip_source_buffer(archive, content.data(), content.size(), 0);
  ASSERT_GE(zip_file_add(archive, "form.omr", source, 0), 0);
  ASSERT_EQ(zip_close(archive), 0);
}

Outcome ReadBytes(const std::string& bytes) {
  TempFolder folder;
  WriteFileBytes(folder.File("form.omr"), bytes);
  return ReadFile(folder.File("form.omr"));
}

bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

bool RefusedAsNoTemplate(const Outcome& outcome) {
  return !outcome.ok && outcome.diagnostic.title == "Load Error" &&
         Contains(outcome.diagnostic.text, "It is not a template file: its first 64 KiB");
}

// The private temporary folder of a test, so it sees every copy a read leaves behind.
class EarlyRefusal : public ::testing::Test {
 protected:
  void SetUp() override {
    fs::create_directory(outer_.File("tmp"));
    tmpdir_.emplace(outer_.File("tmp"));
  }
  void TearDown() override { tmpdir_.reset(); }
  bool TemporaryFolderEmpty() const { return fs::is_empty(outer_.File("tmp")); }
  std::string File(const std::string& name) const { return outer_.File(name); }

  TempFolder outer_;
  std::optional<testing::ScopedTmpdir> tmpdir_;
};

TEST_F(EarlyRefusal, FileOverTheLimitIsRefusedWithItsSize) {
  // Sparse: no disk space, and nothing of it is read.
  const std::string path = File("huge.omr");
  WriteFileBytes(path, "[Form]\r\nVersion=8\r\n");
  fs::resize_file(path, kMaxTemplateFileSize + 1);
  const Outcome over = ReadFile(path);
  EXPECT_FALSE(over.ok);
  EXPECT_EQ(over.diagnostic.title, "Load Error");
  EXPECT_EQ(over.diagnostic.line, 0);
  EXPECT_TRUE(Contains(over.diagnostic.text, "The file is 268435457 bytes long"))
      << over.diagnostic.text;
  EXPECT_TRUE(Contains(over.diagnostic.text, "at most 268435456 bytes (256 MiB)"));

  // At the limit the size is fine; zeros are still no template, and are refused as such.
  WriteFileBytes(File("zeros.omr"), "");
  fs::resize_file(File("zeros.omr"), kMaxTemplateFileSize);
  EXPECT_TRUE(RefusedAsNoTemplate(ReadFile(File("zeros.omr"))));
  EXPECT_TRUE(TemporaryFolderEmpty());
}

TEST_F(EarlyRefusal, RandomBytesAreRefusedBeforeTheyAreCopied) {
  const std::string random = RandomBytes(3 * kTemplateHeadSize, 7);
  for (const std::string& bytes : {random, "\xFF\xFE" + random, "\xFE\xFF" + random,
                                   "\xEF\xBB\xBF" + random, std::string(200000, 'a')}) {
    const Outcome outcome = ReadBytes(bytes);
    EXPECT_TRUE(RefusedAsNoTemplate(outcome)) << outcome.diagnostic.text;
  }
  EXPECT_TRUE(TemporaryFolderEmpty());
}

TEST_F(EarlyRefusal, SmallFilesAreReadAsBefore) {
  // Small enough to be looked at whole: no early refusal, the reader's own verdict.
  for (const std::string& bytes : {std::string(), RandomBytes(kTemplateHeadSize, 3)}) {
    const Outcome outcome = ReadBytes(bytes);
    EXPECT_FALSE(outcome.ok);
    EXPECT_EQ(outcome.diagnostic.title, "Form Error");
    EXPECT_TRUE(Contains(outcome.diagnostic.text, "version is unsupported"));
  }
}

TEST_F(EarlyRefusal, TheFirstSectionMustStartInTheHead) {
  const std::string exam = ReadFileBytes(kExam);
  const std::string expected = ReadFile(kExam).description;
  // "[Form]\r\n" as the last whole line of the head, then the rest of the template.
  const std::string tail = exam.substr(exam.find("\r\n") + 2);
  const std::string header = "[Form]\r\n";
  const Outcome inside = ReadBytes(Padding(kTemplateHeadSize - header.size()) + header + tail);
  ASSERT_TRUE(inside.ok) << inside.diagnostic.text;
  EXPECT_EQ(inside.description, expected);

  // The head ends just after "[Form]" of a longer line: that is no header, and the real one comes
  // too late.
  const std::string cut = "[Form]";
  EXPECT_TRUE(RefusedAsNoTemplate(
      ReadBytes(Padding(kTemplateHeadSize - cut.size()) + cut + "er\r\n" + exam)));
  EXPECT_TRUE(RefusedAsNoTemplate(ReadBytes(Padding(kTemplateHeadSize + 10) + exam)));
}

// Every encoding the reader takes, small and larger than the head (the padding after the last
// section), gives the same tree.
TEST_F(EarlyRefusal, EveryEncodingStillReads) {
  const std::string expected = ReadFile(kSurvey).description;
  const std::string survey = ReadFileBytes(kSurvey);
  ASSERT_EQ(survey.substr(0, 2), "\xFF\xFE");
  const std::string utf8 = text::Utf16LEBytesToUtf8(survey.substr(2));
  for (const std::string& padding : {std::string(), "\r\n" + Padding(3 * kTemplateHeadSize)}) {
    const std::string text = utf8 + padding;
    const struct {
      const char* name;
      std::string bytes;
    } variants[] = {
        {"UTF-16LE with its mark", "\xFF\xFE" + Utf16Bytes(text, false)},
        {"UTF-16BE with its mark", "\xFE\xFF" + Utf16Bytes(text, true)},
        {"UTF-16LE without a mark", Utf16Bytes(text, false)},
        {"UTF-16BE without a mark", Utf16Bytes(text, true)},
    };
    for (const auto& variant : variants) {
      const Outcome outcome = ReadBytes(variant.bytes);
      EXPECT_TRUE(outcome.ok) << variant.name << " " << padding.size() << ": "
                              << outcome.diagnostic.text;
      EXPECT_EQ(outcome.description, expected) << variant.name << " " << padding.size();
    }
  }

  // Windows-1252 with characters outside ASCII, in the values and after the head.
  bool lossless = false;
  const std::string ansi = text::Utf8ToWindows1252(
      text::ReplaceAll(ReadFileBytes(kExam),
                       "Description=", "Description=Caf\xC3\xA9 \xE2\x82\xAC"),
      &lossless);
  ASSERT_TRUE(lossless);
  const Outcome small = ReadBytes(ansi);
  ASSERT_TRUE(small.ok) << small.diagnostic.text;
  EXPECT_TRUE(Contains(small.description, "Description=\"Caf\xC3\xA9 \xE2\x82\xAC\""));
  const Outcome large = ReadBytes(ansi + "\r\n; \xE9\xE9\r\n" + Padding(3 * kTemplateHeadSize));
  ASSERT_TRUE(large.ok) << large.diagnostic.text;
  EXPECT_EQ(large.description, small.description);
}

TEST_F(EarlyRefusal, ArchivesAreJudgedByTheTemplateInside) {
  const std::string exam = ReadFileBytes(kExam);
  const std::string expected = ReadFile(kExam).description;
  WriteArchive(File("big.omr"), Utf16Bytes(exam + Padding(kTemplateHeadSize), true));
  const Outcome inner_utf16 = ReadFile(File("big.omr"));
  ASSERT_TRUE(inner_utf16.ok) << inner_utf16.diagnostic.text;
  EXPECT_EQ(inner_utf16.description, expected);

  WriteArchive(File("noise.omr"), RandomBytes(2 * kTemplateHeadSize, 11));
  EXPECT_TRUE(RefusedAsNoTemplate(ReadFile(File("noise.omr"))));
  EXPECT_TRUE(TemporaryFolderEmpty());
}

TEST_F(EarlyRefusal, TheReadRecordsWhereSectionsBegin) {
  const std::string text =
      "; a template\n[Form]\nVersion=8\nValid=-1\n[Page]\n[Link]\nLinkedFields=1\n"
      "[Field]\nName=R\nRecogType=1\nFieldType=1\nOrient=1\nNumCols=2\nNumRows=1\n"
      "[Question]\nChoices=A\tB\nCodes=1\t2\n\n  [question]  \nChoices=A\tB\nCodes=1\t2\n";
  for (const std::string& bytes : {text, Utf16Bytes(text, true)}) {
    ASSERT_TRUE(ReadBytes(bytes).ok);
    const basTemplate::ReadSectionLines lines = basTemplate::LastReadSectionLines();
    EXPECT_EQ(lines.pages, std::vector<int32_t>{5});
    EXPECT_EQ(lines.links, std::vector<int32_t>{6});
    EXPECT_EQ(lines.regions, std::vector<int32_t>{8});
    EXPECT_EQ(lines.questions, (std::vector<int32_t>{15, 19}));
  }
  ReadBytes(std::string(100000, 'x'));
  EXPECT_TRUE(basTemplate::LastReadSectionLines().questions.empty());
}

TEST_F(EarlyRefusal, TheCopyStopsPastItsLimit) {
  const std::string bytes = RandomBytes(10000, 5);
  WriteFileBytes(File("source"), bytes);
  const SourceFile source(File("source"));
  EXPECT_EQ(source.size(), bytes.size());
  EXPECT_EQ(source.Head(100), bytes.substr(0, 100));
  EXPECT_EQ(source.Head(20000), bytes);

  EXPECT_TRUE(source.CopyTo(File("exact"), bytes.size()));
  EXPECT_EQ(ReadFileBytes(File("exact")), bytes);
  EXPECT_EQ(fs::status(File("exact")).permissions() & fs::perms::all,
            fs::perms::owner_read | fs::perms::owner_write);
  // A file that is (or grew) larger than the limit leaves no partial copy.
  EXPECT_FALSE(source.CopyTo(File("short"), bytes.size() - 1));
  EXPECT_FALSE(fs::exists(File("short")));
  // The copy never takes another's file.
  EXPECT_EQ(testing::RaisedError([&] { source.CopyTo(File("exact"), bytes.size()); }), 58);
  EXPECT_EQ(ReadFileBytes(File("exact")), bytes);

  WriteFileBytes(File("empty"), "");
  EXPECT_TRUE(SourceFile(File("empty")).CopyTo(File("empty copy"), 0));
  EXPECT_TRUE(fs::is_empty(File("empty copy")));
}

TEST_F(EarlyRefusal, OnlyRegularFilesAreOpened) {
  // A FIFO with no writer would block an open that waits; it is refused at once.
  ASSERT_EQ(::mkfifo(File("fifo").c_str(), 0600), 0);
  EXPECT_EQ(testing::RaisedError([&] { SourceFile{File("fifo")}; }), 75);
  EXPECT_EQ(testing::RaisedError([&] { SourceFile{outer_.path()}; }), 75);
  EXPECT_EQ(testing::RaisedError([&] { SourceFile{File("missing")}; }), 53);
  const Outcome fifo = ReadFile(File("fifo"));
  EXPECT_FALSE(fifo.ok);
  EXPECT_EQ(fifo.diagnostic.title, "Load Error");
}

}  // namespace
}  // namespace xun
