#include <gtest/gtest.h>

#include <cstdlib>

#include <filesystem>
#include <set>
#include <string>

#include "common/test_support.h"
#include "xun/templatefile/password_keys.h"
#include "xun/templatefile/template_reader.h"
#include "xun/xun.h"

namespace xun {
namespace {

using testing::ScopedHandler;
using testing::ScopedMessageCapture;
using testing::TempFolder;
using testing::WriteFileBytes;

// The files are written with CR LF line ends, as the writer does.
std::string WithCrLf(const std::string& text) {
  return text::ReplaceAll(text, "\n", "\r\n");
}

struct ReadResult {
  bool ok = false;
  std::shared_ptr<clsXUNTemplate> tmpl;
};

ReadResult ReadBytes(const std::string& bytes, bool for_edit = false) {
  TempFolder folder;
  const std::string path = folder.File("form.omr");
  WriteFileBytes(path, bytes);
  ReadResult result;
  result.tmpl = clsXUNTemplate::Create();
  result.ok = basTemplate::ReadTemplate(path, *result.tmpl, for_edit);
  return result;
}

ReadResult ReadText(const std::string& text, bool for_edit = false) {
  return ReadBytes(WithCrLf(text), for_edit);
}

constexpr const char* kForm = "[Form]\nVersion=8\nValid=-1\n";
constexpr const char* kOmrRegion =
    "[Field]\nName=R\nRecogType=1\nFieldType=1\nOrient=1\nNumCols=2\nNumRows=1\n"
    "[Question]\nChoices=A\tB\nCodes=1\t2\n";

std::string Password() {
  bool hex = false;
  return basPublic::Encrypt("s3cr=t", basTemplate::detail::kPasswordKey1,
                            basTemplate::detail::kPasswordKey2, basTemplate::detail::kPasswordKey3,
                            hex);
}

TEST(ReadTemplate, ReadsAWholeTemplate) {
  ScopedMessageCapture messages;
  const std::string file = std::string("stray=1 before any header\n") +
                           "  [form]  \n"
                           "Version=8\nCompatibleVersion=7\nValid=-1\nDuplex=1\n"
                           "PageWidth=8.28\nPageHeight=11.72\nDescription= A = B \n"
                           "Attributes=Owner|Ann\tDept|Math\nColumns=3\nNAME=ignored\n"
                           "[Page]\nKey=P1\nXDPI=200\nWeightedRotate=0\n"
                           "TimingMarks=10,20,30,40\t10,900,30,40\nAttributes=Side|Front\n"
                           "\nYDPI=999\n"
                           "[Link]\nLinkedFields=2\n"
                           "[Field]\nName=A.(1)\nRecogType=1\nFieldType=1\nDataType=text\n"
                           "Orient=1\nNumCols=2\nNumRows=1\nExtra=5\t6\t7\nLowerX=15\n"
                           "IDType=2\nIDValue=V\nBarcodeDelimiter=<--@CRLF--><--@TAB-->\n"
                           "Key=R1\n"
                           "[Question]\nQuestionName=Q(1)\nChoices=A,\t\"B\"\nCodes=1\t(2)\n"
                           "Key=Q1\nCorrect=2.5\n"
                           "[Field]\nFieldName=B\nRecogType=1\nFieldType=1\nDataType=Numeric\n"
                           "Orient=2\nNumCols=1\nNumRows=2\nIDType=2\n"
                           "[Question]\nChoices=A\tB\nCodes=1\t2\nIDType=3\n"
                           "[JOIN]\nJOINEDFIELDS=1\n"
                           "[Field]\nName=Bar\nRecogType=3\nNumRows=0\nFill=x\n"
                           "ImageFillValue=y\nDBPassword=" +
                           Password() + "\nDBReturn=C1\tC2\nDBUnicode=-1\n";
  const ReadResult r = ReadText(file);
  ASSERT_TRUE(r.ok) << (messages.messages().empty() ? "" : messages.messages()[0].text);
  EXPECT_TRUE(messages.messages().empty());
  EXPECT_EQ(basTemplate::LastReadDiagnostic().title, "");
  const clsXUNTemplate& t = *r.tmpl;

  EXPECT_EQ(t.Version(), "8");
  EXPECT_EQ(t.CompatibleVersion(), "7");
  EXPECT_TRUE(t.Valid());
  EXPECT_TRUE(t.Duplex());
  EXPECT_DOUBLE_EQ(t.PageWidth(), 8.268);  // the older rounded size, corrected
  EXPECT_DOUBLE_EQ(t.PageHeight(), 11.693);
  EXPECT_EQ(t.Description(), "A = B");
  EXPECT_EQ(t.Attributes()->Item("Dept").ToText(), "Math");
  EXPECT_EQ(t.Columns(), 3);
  EXPECT_EQ(t.Name(), "");

  ASSERT_EQ(t.Pages()->Count(), 1);
  const auto page = t.Pages()->Item(1);
  EXPECT_EQ(page->Key(), "P1");
  EXPECT_EQ(page->XDPI(), 200);
  EXPECT_EQ(page->YDPI(), 0) << "the empty line ends the section";
  EXPECT_EQ(page->WeightedRotate(), 0);
  EXPECT_EQ(page->TimingMarks()->AsString(), "10,20,30,40\t10,900,30,40");
  EXPECT_EQ(page->Attributes()->Item("Side").ToText(), "Front");

  ASSERT_EQ(page->Fields()->Count(), 3);
  const auto a = page->Fields()->Item(1);
  const auto b = page->Fields()->Item(2);
  const auto bar = page->Fields()->Item(3);
  EXPECT_EQ(a->FieldName(), "A1");
  EXPECT_EQ(a->Key(), "R1");
  EXPECT_EQ(a->DataType(), xunDataTypeText);
  EXPECT_EQ(b->DataType(), xunDataTypeNumeric);
  // The older region key IDType is kept as a named value after the layout; IDValue "V" is no
  // 16-bit number and is not.
  EXPECT_EQ(a->Extra()->UnnamedValues(), (std::vector<int16_t>{5, 6, 7}));
  EXPECT_EQ(a->Extra()->AsString(), "5\t6\t7\t2");
  EXPECT_EQ(a->Extra()->KeyOf(4), "IDType");
  EXPECT_FALSE(a->Extra()->Exists("IDValue"));
  EXPECT_EQ(a->Left(), 15);
  EXPECT_EQ(a->BarcodeDelimiter(), "\r\n\t");
  // [Link] with 2 puts A and B in group 1; the older [JOIN] opens group 2.
  EXPECT_EQ(a->LinkGroup(), 1);
  EXPECT_TRUE(a->LinkStart());
  EXPECT_EQ(b->LinkGroup(), 1);
  EXPECT_FALSE(b->LinkStart());
  EXPECT_EQ(bar->LinkGroup(), 2);
  EXPECT_TRUE(bar->LinkStart());

  const auto q1 = a->Questions()->Item(1);
  EXPECT_EQ(q1->Key(), "Q1");
  EXPECT_EQ(q1->QuestionName(), "Q1");
  EXPECT_EQ(q1->Choices()->AsString(), "A\tB");
  EXPECT_EQ(q1->Codes()->AsString(), "1\t2");
  EXPECT_DOUBLE_EQ(q1->Correct(), 2.5);
  // Region-level identification keys of older files move to the questions...
  EXPECT_EQ(q1->IDType(), 2);
  EXPECT_EQ(q1->IDValue(), "V");
  // ...unless the question has its own.
  EXPECT_EQ(b->Questions()->Item(1)->IDType(), 3);

  EXPECT_EQ(bar->DefaultFill(), "x");
  EXPECT_FALSE(bar->Extra()->Exists("ImageFillValue")) << "only an image region keeps it";
  EXPECT_EQ(bar->DB()->Password(), "s3cr=t");
  EXPECT_EQ(bar->DB()->ReturnFields()->AsString(), "C1\tC2");
  EXPECT_TRUE(bar->DB()->Unicode());
}

TEST(ReadTemplate, ValueForms) {
  ScopedMessageCapture messages;
  auto read = [](const std::string& form_keys) {
    return ReadText(std::string(kForm) + form_keys + "[Page]\n" + kOmrRegion);
  };
  EXPECT_FALSE(read("Duplex=True\n").tmpl->Duplex());
  EXPECT_TRUE(read("Duplex=-1\n").tmpl->Duplex());
  const ReadResult letter = read("PageWidth=8.5\nPageHeight=11\n");
  EXPECT_DOUBLE_EQ(letter.tmpl->PageWidth(), 8.5);
  EXPECT_DOUBLE_EQ(letter.tmpl->PageHeight(), 11);
  EXPECT_DOUBLE_EQ(read("PageWidth=6.96\nPageHeight=9.88\n").tmpl->PageWidth(), 7.165);
  EXPECT_EQ(read("Tag=a=b=c\n").tmpl->Tag(), "a=b=c");
  // Valid=0 is fine for editing only.
  EXPECT_TRUE(ReadText(std::string("[Form]\nVersion=8\nValid=0\n[Page]\n") + kOmrRegion, true).ok);
}

// Keys are matched in any case and any order: the reader expects the written order and must
// still find every key when a file has another.
TEST(ReadTemplate, KeysMatchInAnyCaseAndOrder) {
  ScopedMessageCapture messages;
  const ReadResult r = ReadText(
      "[form]\nvalid=-1\nVERSION=8\n[Page]\n"
      "[Field]\nname=R\nrecogtype=1\nFieldType=1\nOrient=1\nnumcols=2\nNumRows=2\n"
      "[Question]\ncodes=1\t2\nCHOICES=A\tB\nquestionname=Q\nCorrect=3\nmultsallowed=1\n"
      "[Question]\nChoices=C\tD\nCodes=3\t4\nTAG=t\n" +
      std::string(300, 'K') + "=ignored, not matched\n");
  ASSERT_TRUE(r.ok) << (messages.messages().empty() ? "" : messages.messages()[0].text);
  const auto questions = r.tmpl->Pages()->Item(1)->Fields()->Item(1)->Questions();
  ASSERT_EQ(questions->Count(), 2);
  const auto first = questions->Item(1);
  EXPECT_EQ(first->QuestionName(), "Q");
  EXPECT_EQ(first->Choices()->AsString(), "A\tB");
  EXPECT_EQ(first->Codes()->AsString(), "1\t2");
  EXPECT_DOUBLE_EQ(first->Correct(), 3);
  EXPECT_EQ(first->MultsAllowed(), 1);
  EXPECT_EQ(questions->Item(2)->Choices()->AsString(), "C\tD");
  EXPECT_EQ(questions->Item(2)->Tag(), "t");
}

TEST(ReadTemplate, DecodesWindows1252AndUtf16) {
  ScopedMessageCapture messages;
  const std::string ansi =
      WithCrLf(std::string(kForm) + "Description=\x80\x93\x9F\n[Page]\n" + kOmrRegion);
  const ReadResult r = ReadBytes(ansi);
  ASSERT_TRUE(r.ok);
  EXPECT_EQ(r.tmpl->Description(), "\u20AC\u201C\u0178");

  // UTF-16LE with a byte-order mark; a lone high surrogate reads as U+FFFD.
  const std::string before = text::Utf8ToUtf16LEBytes(WithCrLf(std::string(kForm) + "Tag=A"));
  const std::string after =
      text::Utf8ToUtf16LEBytes(WithCrLf("B\n[Page]\n" + std::string(kOmrRegion)));
  const std::string bom = "\xFF\xFE";
  const ReadResult u = ReadBytes(bom + before + std::string("\x00\xD8", 2) + after);
  ASSERT_TRUE(u.ok);
  EXPECT_EQ(u.tmpl->Tag(), "A\uFFFDB");

  // Half a code unit at the end cannot be decoded: the read fails.
  EXPECT_FALSE(ReadBytes(bom + before + after + "x").ok);
  EXPECT_EQ(basTemplate::LastReadDiagnostic().title, "Load Error");
}

TEST(ReadTemplate, LeavesNoTemporaryCopy) {
  ScopedMessageCapture messages;
  // A private temporary folder: tests running in parallel make and remove their own copies.
  testing::TempFolder private_tmp;
  const testing::ScopedTmpdir tmpdir(private_tmp.path());
  auto omr_files = [] {
    std::set<std::string> names;
    for (const auto& entry :
         std::filesystem::directory_iterator(std::filesystem::temp_directory_path()))
      if (entry.path().extension() == ".omr") names.insert(entry.path().string());
    return names;
  };
  const std::set<std::string> before = omr_files();
  EXPECT_TRUE(ReadText(std::string(kForm) + "[Page]\n" + kOmrRegion).ok);
  EXPECT_FALSE(ReadText("[Form]\nValid=0\n").ok);
  EXPECT_FALSE(ReadBytes("PK\x03\x04 an archive").ok);
  EXPECT_EQ(omr_files(), before);
}

struct FailureCase {
  const char* name;
  std::string file;
  const char* title;
  std::string text;
  const char* location;
  int32_t line;
};

const std::string kReadError = "An error occurred reading the template file. ";
const std::string kLoadText =
    "An error occurred attempting to load the specified template file. Please make sure the file "
    "is not currently in use by another application and that it is a valid template file.";

class ReadFailure : public ::testing::TestWithParam<FailureCase> {};

TEST_P(ReadFailure, ShowsAndReportsTheMessage) {
  const FailureCase& c = GetParam();
  ScopedMessageCapture messages;
  ScopedHandler handler;
  auto t = clsXUNTemplate::Create();
  bool ok = true;
  if (c.file.empty()) {
    ok = basTemplate::ReadTemplate("/nonexistent/form.omr", *t, false);
  } else {
    ok = ReadText(c.file).ok;
  }
  EXPECT_FALSE(ok);
  ASSERT_EQ(messages.messages().size(), 1u);
  EXPECT_EQ(messages.messages()[0].title, c.title);
  EXPECT_EQ(messages.messages()[0].text, c.text);
  EXPECT_EQ(messages.messages()[0].icon, MessageBoxIcon::Exclamation);
  ASSERT_EQ(handler.reports().size(), 1u);
  EXPECT_EQ(handler.reports()[0].kind, 2);
  EXPECT_EQ(handler.reports()[0].title, c.title);
  EXPECT_EQ(handler.reports()[0].description, c.text);
  EXPECT_EQ(handler.Locations()[0], c.location);
  const basTemplate::ReadDiagnostic d = basTemplate::LastReadDiagnostic();
  EXPECT_EQ(d.title, c.title);
  EXPECT_EQ(d.text, c.text);
  EXPECT_EQ(d.line, c.line);
}

INSTANTIATE_TEST_SUITE_P(
    Messages, ReadFailure,
    ::testing::Values(
        FailureCase{"MissingFile", "", "Load Error", kLoadText, "basTemplate.ReadTemplate", 0},
        FailureCase{"NotValid", "junk\n[Form]\nVersion=8\nValid=0\n[Page]\n", "Form Error",
                    "The specified template is not valid for reading. Please open the template "
                    "in the Template Editor and correct all problems before attempting to open "
                    "the template for reading.\r\n\r\nOperation aborted.",
                    "basTemplate.ReadForm", 2},
        // A width no Single holds would read as an infinity that no save could write back.
        FailureCase{"ColumnWidthBeyondSingle",
                    "[Form]\nVersion=8\nColumnWidth=1e39\n[Page]\n" + std::string(kOmrRegion),
                    "Load Error", kLoadText, "basTemplate.ReadTemplate", 0},
        FailureCase{"NoVersion", "[Form]\nValid=-1\n[Page]\n" + std::string(kOmrRegion),
                    "Form Error", kReadError + "The template version is unsupported.",
                    "basTemplate.ReadTemplate", 0},
        FailureCase{"NoPages", kForm, "Form Error",
                    kReadError + "The template does not contain any pages.",
                    "basTemplate.ReadTemplate", 0},
        FailureCase{"NoRegions", std::string(kForm) + "[Page]\n", "Form Error",
                    kReadError + "The template does not contain any regions.",
                    "basTemplate.ReadTemplate", 0},
        FailureCase{"NoItems",
                    // One item, hidden by the identification type its region carries.
                    std::string(kForm) + "[Page]\n[Field]\nName=R\nRecogType=1\nFieldType=1\n"
                                         "Orient=1\nNumCols=2\nNumRows=1\nIDType=1\n"
                                         "[Question]\nChoices=A\tB\nCodes=1\t2\n",
                    "Form Error", kReadError + "The template does not contain any items.",
                    "basTemplate.ReadTemplate", 0},
        FailureCase{"RegionWithoutName",
                    std::string(kForm) + "[Page]\n[Page]\n" + kOmrRegion + "[Field]\nRecogType=3\n",
                    "Region Error",
                    "An error occurred reading the [Field] section of the template file. One or "
                    "more region parameters are missing or invalid.\r\n\r\nRegion: 2\r\nPage: 2",
                    "basTemplate.ReadRegion", 16},
        FailureCase{"OmrRegionOrient3",
                    std::string(kForm) + "[Page]\n[Field]\nName=R\nRecogType=1\nOrient=3\n"
                                         "NumCols=1\nNumRows=1\n",
                    "Region Error",
                    "An error occurred reading the [Field] section of the template file. One or "
                    "more region parameters are missing or invalid.\r\n\r\nRegion: 1\r\nPage: 1",
                    "basTemplate.ReadRegion", 5},
        FailureCase{
            "QuestionWithoutCodes",
            std::string(kForm) + "[Page]\n" + kOmrRegion + "[Question]\nChoices=A\tB\nCodes=\n",
            "Question Error",
            "An error occurred reading the [Question] section of the template file. One "
            "or more question parameters are missing or invalid.\r\n\r\nRegion Name: "
            "R\r\n\r\nPage: 1\r\nRegion: 1\r\nQuestion: 2.",
            "basTemplate.ReadQuestion", 15}),
    [](const ::testing::TestParamInfo<FailureCase>& param_info) {
      return std::string(param_info.param.name);
    });

}  // namespace
}  // namespace xun
