#include <gtest/gtest.h>
#include <sys/stat.h>
#include <zip.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "common/test_support.h"
#include "xun/xun.h"

namespace xun {
namespace {

namespace fs = std::filesystem;
using testing::ReadFileBytes;
using testing::ScopedMessageCapture;
using testing::TempFolder;
using testing::WriteFileBytes;

constexpr const char* kTemplateText =
    "[Form]\r\nVersion=8\r\nValid=-1\r\n[Page]\r\n"
    "[Field]\r\nName=R\r\nRecogType=1\r\nFieldType=1\r\nOrient=1\r\nNumCols=2\r\nNumRows=1\r\n"
    "[Question]\r\nChoices=A\tB\r\nCodes=1\t2\r\n";

// Points the library's temporary folder at a private one, so a test can see every file a read
// leaves there (and nothing else's).
class ArchiveTest : public ::testing::Test {
 protected:
  void SetUp() override {
    temp_ = outer_.File("tmp");
    fs::create_directory(temp_);
    tmpdir_.emplace(temp_);
  }
  void TearDown() override { tmpdir_.reset(); }

  // Everything below the folder holding the files under test and the temporary folder.
  std::set<std::string> Listing() const {
    std::set<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(outer_.path()))
      names.insert(entry.path().string());
    return names;
  }

  TempFolder outer_;  // files of the test live here; the library's temporary folder is inside
  std::string temp_;
  std::optional<testing::ScopedTmpdir> tmpdir_;
};

std::string PseudoImage(size_t size, unsigned seed) {
  std::string bytes(size, '\0');
  for (char& c : bytes) {
    seed = seed * 1103515245u + 12345u;
    c = static_cast<char>(seed >> 16);
  }
  return bytes;
}

std::shared_ptr<clsXUNTemplate> TwoPageTemplate() {
  auto t = clsXUNTemplate::Create();
  for (int i = 0; i < 2; ++i) {
    auto page = clsXUNPage::Create();
    t->Pages()->Add(page);
    auto field = clsXUNField::Create();
    field->FieldName("R" + std::to_string(i));
    field->RecognitionType(xunRecogTypeOMR);
    field->FieldType(xunFieldTypeOMRMult);
    field->Orient(xunOrientationTypeOMRRow);
    field->NumRows(1);
    field->NumCols(2);
    page->Fields()->Add(field);
    field->Questions()->Update();
  }
  return t;
}

TEST_F(ArchiveTest, PageImagesTravelInAnEncryptedArchive) {
  ScopedMessageCapture messages;
  auto original = TwoPageTemplate();
  const std::string target = outer_.File("form.omr");
  ASSERT_TRUE(original->Save(target, false));
  EXPECT_NE(ReadFileBytes(target).substr(0, 2), "PK") << "no images: stays a text file";

  // Larger than one read buffer, with every byte value.
  const std::vector<std::string> images = {PseudoImage(200000, 1), PseudoImage(70000, 2)};
  std::vector<std::string> keys;
  for (int i = 0; i < 2; ++i) {
    const auto page = original->Pages()->Item(i + 1);
    WriteFileBytes(outer_.File("img" + std::to_string(i) + ".pcx"), images[i]);
    page->ImageFile(outer_.File("img" + std::to_string(i) + ".pcx"));
    keys.push_back(page->Key());
  }
  ASSERT_TRUE(original->Save(target, false));

  int error = 0;
  zip_t* archive = zip_open(target.c_str(), ZIP_CHECKCONS | ZIP_RDONLY, &error);
  ASSERT_NE(archive, nullptr);
  std::set<std::string> names;
  for (zip_int64_t i = 0; i < zip_get_num_entries(archive, 0); ++i) {
    zip_stat_t stat;
    ASSERT_EQ(zip_stat_index(archive, static_cast<zip_uint64_t>(i), 0, &stat), 0);
    names.insert(stat.name);
    EXPECT_NE(stat.encryption_method, ZIP_EM_NONE) << stat.name;
  }
  zip_discard(archive);
  EXPECT_EQ(names, (std::set<std::string>{"form.omr", keys[0] + ".pcx", keys[1] + ".pcx"}));

  const std::set<std::string> before = Listing();
  auto read = clsXUNTemplate::Create();
  ASSERT_TRUE(read->Read(target, true)) << basTemplate::LastReadDiagnostic().text;
  ASSERT_EQ(read->Pages()->Count(), 2);
  std::vector<std::string> copies;
  for (int i = 0; i < 2; ++i) {
    const std::string copy = read->Pages()->Item(keys[i])->ImageFile();
    EXPECT_EQ(fs::path(copy).parent_path(), fs::path(temp_));
    EXPECT_EQ(fs::path(copy).extension(), ".pcx");
    EXPECT_EQ(ReadFileBytes(copy), images[i]);
    copies.push_back(copy);
  }
  std::set<std::string> expected = before;
  expected.insert(copies.begin(), copies.end());
  EXPECT_EQ(Listing(), expected) << "the images are the only files the read leaves";

  // The pages own their copies; the originals stay with the template they came from.
  read->Free();
  for (const std::string& copy : copies)
    EXPECT_FALSE(fs::exists(copy));
  EXPECT_EQ(ReadFileBytes(outer_.File("img0.pcx")), images[0]);
  original->Free();
}

// One entry of a hand-made archive.
struct RawEntry {
  std::string name;
  std::string data;
  zip_uint32_t unix_mode = S_IFREG | 0644;
  const char* password = nullptr;
};

void WriteRawArchive(const std::string& path, const std::vector<RawEntry>& entries) {
  int error = 0;
  zip_t* archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
  ASSERT_NE(archive, nullptr);
  for (const RawEntry& entry : entries) {
    zip_source_t* source = zip_source_buffer(archive, entry.data.data(), entry.data.size(), 0);
    const zip_int64_t index = zip_file_add(archive, entry.name.c_str(), source, 0);
    ASSERT_GE(index, 0) << entry.name;
    const auto at = static_cast<zip_uint64_t>(index);
    // Stored, so the test can find the data in the file and damage it.
    zip_set_file_compression(archive, at, ZIP_CM_STORE, 0);
    zip_file_set_external_attributes(archive, at, 0, ZIP_OPSYS_UNIX, entry.unix_mode << 16);
    if (entry.password) zip_file_set_encryption(archive, at, ZIP_EM_TRAD_PKWARE, entry.password);
  }
  ASSERT_EQ(zip_close(archive), 0);
}

TEST_F(ArchiveTest, HostileArchivesFailToLoadAndWriteNothing) {
  const RawEntry good{"form.omr", kTemplateText};
  std::vector<RawEntry> too_many{good};
  for (int i = 0; i < 64; ++i)
    too_many.push_back({"extra" + std::to_string(i) + ".txt", "x"});
  const std::vector<std::pair<std::string, std::vector<RawEntry>>> cases = {
      {"parent", {good, {"../evil.omr", kTemplateText}}},
      {"absolute", {good, {"/abs.omr", kTemplateText}}},
      {"backslash", {{"a\\b.omr", kTemplateText}}},
      {"drive", {good, {"C:evil.omr", kTemplateText}}},
      {"symlink", {{"link.omr", kTemplateText, S_IFLNK | 0777}}},
      {"crc", {{"form.omr", kTemplateText}}},
      {"too many", too_many},
      {"wrong password", {{"form.omr", kTemplateText, S_IFREG | 0644, "not ours"}}},
  };
  ScopedMessageCapture messages;
  for (const auto& [name, entries] : cases) {
    SCOPED_TRACE(name);
    const std::string path = outer_.File("hostile.omr");
    WriteRawArchive(path, entries);
    if (name == "crc") {
      std::string bytes = ReadFileBytes(path);
      const size_t at = bytes.find("Version=8");
      ASSERT_NE(at, std::string::npos);
      bytes[at + 8] = '9';  // still a readable template, but not the bytes the CRC covers
      WriteFileBytes(path, bytes);
    }
    const std::set<std::string> before = Listing();
    auto t = clsXUNTemplate::Create();
    EXPECT_FALSE(t->Read(path, true));
    EXPECT_EQ(basTemplate::LastReadDiagnostic().title, "Load Error");
    EXPECT_EQ(Listing(), before);
    EXPECT_FALSE(fs::exists("/abs.omr"));
    t->Free();
  }
  // The control: the same hand-made archive, unharmed, reads.
  WriteRawArchive(outer_.File("plain.omr"), {good});
  EXPECT_TRUE(clsXUNTemplate::Create()->Read(outer_.File("plain.omr"), true))
      << basTemplate::LastReadDiagnostic().text;
}

}  // namespace
}  // namespace xun
