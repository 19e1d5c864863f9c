// Save then Read gives the tree that was saved, for templates that use every region kind and
// every setting the file holds; a second Save gives the same bytes.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <initializer_list>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

#include "common/test_support.h"
#include "common/tree_description.h"
#include "xun/xun.h"

namespace xun {
namespace {

std::shared_ptr<clsXUNField> Region(const std::string& name, xunRecogType recognition,
                                    xunFieldType type, int16_t left, int16_t top) {
  auto field = clsXUNField::Create();
  field->FieldName(name);
  field->RecognitionType(recognition);
  field->FieldType(type);
  field->DataType(xunDataTypeText);
  field->Left(left);
  field->Top(top);
  field->Right(static_cast<int16_t>(left + 300));
  field->Bottom(static_cast<int16_t>(top + 120));
  field->Tag("tag of " + name);
  return field;
}

// Names the region's questions (made by Update, as a host gets them) and gives each a text.
void NameQuestions(clsXUNField& field, const std::string& name) {
  int i = 0;
  for (const auto& q : *field.Questions()) {
    q->QuestionName(name + "_" + std::to_string(++i));
    q->QuestionText("Text of " + q->QuestionName());
  }
}

// An OMR region of `type` with `questions` rows (or columns) of five bubbles each.
std::shared_ptr<clsXUNField> OmrRegion(const std::string& name, xunFieldType type, int16_t top,
                                       int questions, xunOrientationType orient) {
  auto field = Region(name, xunRecogTypeOMR, type, 100, top);
  field->Orient(orient);
  field->NumRows(static_cast<int16_t>(orient == xunOrientationTypeOMRRow ? questions : 5));
  field->NumCols(static_cast<int16_t>(orient == xunOrientationTypeOMRRow ? 5 : questions));
  field->StartRow(12);
  field->RowGap(25);
  field->StartCol(14);
  field->ColGap(40);
  field->Threshold(4);
  field->Pattern("#,##0");
  field->Extra()->AddDelimitedString("3\t-7\t11");
  field->Questions()->Update();
  NameQuestions(*field, name);
  return field;
}

// A region of another kind with its one question.
std::shared_ptr<clsXUNField> OneQuestionRegion(const std::string& name, xunRecogType recognition,
                                               xunFieldType type, int16_t top) {
  auto field = Region(name, recognition, type, 200, top);
  field->Questions()->Update();
  NameQuestions(*field, name + "Q");
  return field;
}

// Every region kind, every question setting, identification and linked regions, attributes of
// every kind the file holds with the characters its syntax uses.
std::shared_ptr<clsXUNTemplate> KitchenSink(const std::string& script) {
  auto t = clsXUNTemplate::Create();
  t->PageWidth(8.5);
  t->PageHeight(11);
  t->Duplex(true);
  t->SelfScore(true);
  t->Tag("form tag");
  t->ReadType(xunTemplateReadTypeHybrid);
  t->Columns(3);
  t->ColumnWidth(1.25F);
  t->RowTopMargin(0.5F);
  t->RowBottomMargin(0.75F);
  t->Manufacturer("Maker " + script);
  t->Description("A form = [with] ; the syntax's own characters, \"quoted\" | piped");
  t->RDDName("results.rdd");
  t->Attributes()->Add("Text", Variant("Ünïcode | pipes = [brackets] ; " + script));
  t->Attributes()->Add("Whole", Variant(int32_t{-42}));
  t->Attributes()->Add("Real", Variant(2.75));
  t->Attributes()->Add("Flag", Variant(true));

  auto page1 = clsXUNPage::Create();
  page1->Tag("first page");
  page1->XDPI(200);
  page1->YDPI(300);
  page1->ImageWidth(1700);
  page1->ImageHeight(3300);
  page1->DropOutThreshold(128);
  page1->DropOutColor(xunTemplateDropOutColorRed);
  page1->WeightedRotate(0);  // a Boolean in the file: -1 or 0 come back as they went
  page1->FilledPixels(123456);
  page1->ColumnWidth(2.5F);
  page1->Attributes()->Add("Side", Variant("front " + script));
  page1->TimingMarks()->AddMark(10, 20, 30, 40);
  page1->TimingMarks()->AddMark(10, 220, 30, 40);
  t->Pages()->Add(page1);

  const xunFieldType omr_types[] = {
      xunFieldTypeOMRMult,   xunFieldTypeOMRGrid, xunFieldTypeOMRAdd, xunFieldTypeOMRBoolean,
      xunFieldTypeOMRBinary, xunFieldTypeOMRList, xunFieldTypeOMRRank};
  int16_t top = 100;
  for (const xunFieldType type : omr_types) {
    const auto orient = type % 2 ? xunOrientationTypeOMRRow : xunOrientationTypeOMRCol;
    page1->Fields()->Add(OmrRegion("Omr" + std::to_string(type) + script, type, top, 2, orient));
    top = static_cast<int16_t>(top + 150);
  }
  // Two neighbouring regions linked into one group, then an unlinked one.
  auto linked1 = OmrRegion("LinkedA", xunFieldTypeOMRMult, 1200, 2, xunOrientationTypeOMRRow);
  auto linked2 = OmrRegion("LinkedB", xunFieldTypeOMRMult, 1350, 3, xunOrientationTypeOMRRow);
  linked1->LinkGroup(1);
  linked1->LinkStart(true);
  linked2->LinkGroup(1);
  page1->Fields()->Add(linked1);
  page1->Fields()->Add(linked2);

  // Every question setting, on one question each so a setting read into the wrong property
  // shows.
  const std::function<void(clsXUNQuestion&)> setters[] = {
      [](clsXUNQuestion& q) { q.Required(true); },
      [](clsXUNQuestion& q) { q.Discriminate(true); },
      [](clsXUNQuestion& q) { q.Tally(true); },
      [](clsXUNQuestion& q) {
        q.Grade(true);
        q.Correct(2.5);
        q.Incorrect(-0.25);
        q.NoResponse(0.1);
      },
      [](clsXUNQuestion& q) { q.ExtraCredit(true); },
      [](clsXUNQuestion& q) {
        q.SubjectiveField(true);
        q.SubjectivePoints(7.5);
        q.Rubric(true);
      },
      [](clsXUNQuestion& q) { q.MultsAllowed(1); },
      [](clsXUNQuestion& q) { q.NAChoice(3); },
      [](clsXUNQuestion& q) { q.BlanksFlag(xunBlanksFlagIgnoreTrailing); },
      [](clsXUNQuestion& q) {
        q.BlanksReturn("_");
        q.DuplicateReturn("D");
        q.MultsReturn("*");
        q.ErrorReturn("?");
      },
      [](clsXUNQuestion& q) { q.Tag("question tag"); },
      [](clsXUNQuestion& q) { q.TestVersionID(true); },
  };
  auto settings = OmrRegion("Settings", xunFieldTypeOMRMult, 1500,
                            static_cast<int>(std::size(setters)), xunOrientationTypeOMRRow);
  int n = 0;
  for (const auto& set : setters) {
    const auto q = settings->Questions()->Item(++n);
    q->Choices()->RemoveAll();
    q->Choices()->AddDelimitedString("Yes\tNo\tMaybe\tNever\tAlways");
    set(*q);
  }
  settings->Read(false);
  page1->Fields()->Add(settings);

  // Identification: form, page and respondent.
  const xunIDType roles[] = {xunIDTypeForm, xunIDTypePage, xunIDTypeRespondent};
  auto ids = OmrRegion("Ids", xunFieldTypeOMRMult, 2900, 3, xunOrientationTypeOMRCol);
  for (const xunIDType role : roles) {
    const auto q = ids->Questions()->Item(static_cast<int32_t>(role));
    q->IDType(role);
    if (role != xunIDTypeRespondent) q->IDValue(std::to_string(role * 11));
    q->IDAdd(role == xunIDTypePage);
    q->RespondentID(role == xunIDTypeRespondent);
  }
  page1->Fields()->Add(ids);

  auto page2 = clsXUNPage::Create();
  page2->Tag("second page " + script);
  page2->DropOutColor(xunTemplateDropOutColorAll);
  t->Pages()->Add(page2);

  const xunFieldType barcode_types[] = {xunFieldTypeBarcodeCode39, xunFieldTypeBarcodeCode128,
                                        xunFieldTypeBarcodePDF417, xunFieldTypeBarcodeQRCode};
  const char* delimiters[] = {"\r\n", "\t", " ", "|"};
  top = 100;
  for (size_t i = 0; i < std::size(barcode_types); ++i) {
    auto barcode = OneQuestionRegion("Barcode" + std::to_string(barcode_types[i]),
                                     xunRecogTypeBarcode, barcode_types[i], top);
    barcode->Orient(i % 2 ? xunOrientationTypeBarcodeVertical
                          : xunOrientationTypeBarcodeHorizontal);
    barcode->BarcodeDelimiter(delimiters[i]);
    barcode->BarcodeDistance(static_cast<int16_t>(i + 2));
    barcode->BarcodeLength(static_cast<int16_t>(8 + i));
    barcode->Threshold(5);
    barcode->DefaultFill("fill" + std::to_string(i));
    barcode->AutoIncrement(i == 1);
    barcode->AutoIncrementSpansTemplates(i == 1);
    barcode->AutoDetect(i == 2);
    barcode->Extra()->AddDelimitedString("4\t5");
    page2->Fields()->Add(barcode);
    top = static_cast<int16_t>(top + 150);
  }

  const xunFieldType ocr_types[] = {xunFieldTypeOCRSimple, xunFieldTypeOCRMODI,
                                    xunFieldTypeOCRTesseract};
  const xunDataType data_types[] = {xunDataTypeNumeric, xunDataTypeText, xunDataTypeAlphaNumeric};
  for (size_t i = 0; i < std::size(ocr_types); ++i) {
    auto ocr =
        OneQuestionRegion("Ocr" + std::to_string(i) + script, xunRecogTypeOCR, ocr_types[i], top);
    ocr->DataType(data_types[i]);
    ocr->NumCols(static_cast<int16_t>(10 + i));
    ocr->DefaultFill("-");
    ocr->Questions()->Item(1)->QuestionText(script + " " + script);
    page2->Fields()->Add(ocr);
    top = static_cast<int16_t>(top + 150);
  }

  const xunFieldType image_types[] = {xunFieldTypeImageClip, xunFieldTypeImageClipData,
                                      xunFieldTypeImageDataEntry};
  for (size_t i = 0; i < std::size(image_types); ++i) {
    auto image =
        OneQuestionRegion("Image" + std::to_string(i), xunRecogTypeImage, image_types[i], top);
    image->ImageClipFile("clip" + std::to_string(i) + ".tif");
    image->ImageClipType(xunImageClipTypeTIF);
    image->ImageClipCompression(xunImageClipCompressionGroup4);
    image->ImageClipAddColumn(i != 1);
    image->Extra()->AddDelimitedString("9");
    if (image_types[i] == xunFieldTypeImageDataEntry) {
      image->ImageLinkValue("link value");
      image->ImageLinkQuestionKey("LINKKEY");
      image->ImageFillPrompt(true);
    }
    page2->Fields()->Add(image);
    top = static_cast<int16_t>(top + 150);
  }

  // A region verified against a database, with every database setting.
  auto lookup = OneQuestionRegion("Lookup", xunRecogTypeOCR, xunFieldTypeOCRSimple, top);
  auto db = lookup->DB();
  db->Name("students.db");
  db->Catalog("school");
  db->Table("pupils");
  db->LookupField("id");
  db->ReplaceField("name");
  db->ReturnFields()->AddDelimitedString("name\tclass\tyear");
  db->DBType(2);
  db->DirectoryBased(true);
  db->DSNName("dsn " + script);
  db->User("reader");
  db->Password("s3cret " + script);
  db->Unicode(true);
  page2->Fields()->Add(lookup);
  return t;
}

// Compares two tree descriptions line by line, so a failure names only the properties that
// differ.
void ExpectSameTree(const std::string& read, const std::string& saved) {
  const auto read_lines = text::Split(read, "\n");
  const auto saved_lines = text::Split(saved, "\n");
  int reported = 0;
  for (size_t i = 0; i < std::max(read_lines.size(), saved_lines.size()) && reported < 20; ++i) {
    const std::string_view r = i < read_lines.size() ? read_lines[i] : "(none)";
    const std::string_view s = i < saved_lines.size() ? saved_lines[i] : "(none)";
    if (r != s) {
      ADD_FAILURE() << "read back: " << r << "\nsaved:     " << s;
      ++reported;
    }
  }
}

// Saves `t`, reads it back and compares every property; then saves the read tree and compares
// bytes. Returns the first file's bytes.
std::string ExpectRoundTrip(clsXUNTemplate& t) {
  testing::TempFolder folder;
  EXPECT_TRUE(t.Save(folder.File("a.omr"), false));
  auto read = clsXUNTemplate::Create();
  EXPECT_TRUE(read->Read(folder.File("a.omr"), true)) << basTemplate::LastReadDiagnostic().text;
  // The save itself adds the identification summary to the attributes, so the tree is compared
  // as it stands after the save.
  ExpectSameTree(testing::DescribeTree(*read), testing::DescribeTree(t));
  EXPECT_TRUE(read->Save(folder.File("b.omr"), false));
  const std::string first = testing::ReadFileBytes(folder.File("a.omr"));
  EXPECT_EQ(first, testing::ReadFileBytes(folder.File("b.omr")));
  read->Free();
  return first;
}

// ---- What a file holds: text, every kind's settings, older region keys ----------------------

// Saves `t`, reads it back for editing and compares both trees as far as a file holds them;
// then saves the tree read: the same bytes. Returns the first file's text.
std::string ExpectFileRoundTrip(clsXUNTemplate& t) {
  testing::TempFolder folder;
  EXPECT_TRUE(t.Save(folder.File("a.omr"), false));
  auto read = clsXUNTemplate::Create();
  EXPECT_TRUE(read->Read(folder.File("a.omr"), true)) << basTemplate::LastReadDiagnostic().text;
  ExpectSameTree(testing::DescribeTree(*read, true), testing::DescribeTree(t, true));
  EXPECT_TRUE(read->Save(folder.File("b.omr"), false));
  const std::string first = testing::ReadFileBytes(folder.File("a.omr"));
  EXPECT_EQ(first, testing::ReadFileBytes(folder.File("b.omr")));
  read->Free();
  return first;
}

// Sets every property of the library's list for `object` but those in `skip`: text with tabs,
// line breaks and blanks at both ends, flags true, numbers each its own. A property added to the
// list later is covered without a change here.
template <class O, size_t N>
void SetEveryProperty(O& object, const properties::Property<O> (&table)[N], const std::string& seed,
                      std::initializer_list<std::string_view> skip) {
  int n = 0;
  for (const properties::Property<O>& property : table) {
    ++n;
    if (std::find(skip.begin(), skip.end(), property.name) != skip.end()) continue;
    std::visit(
        [&](const auto& accessor) {
          using T = decltype(accessor.get(object));
          if constexpr (std::is_same_v<T, std::string>)
            accessor.set(object, " \t" + std::string(property.name) + seed + "\tx\r\ny\rz\n \t");
          else if constexpr (std::is_same_v<T, bool>)
            accessor.set(object, true);
          else
            accessor.set(object, static_cast<T>(n + 2));
        },
        property.access);
  }
}

// One region of every kind, every property set, attributes and list items with tabs and line
// breaks too.
std::shared_ptr<clsXUNTemplate> EverySetting() {
  auto t = clsXUNTemplate::Create();
  // Not the form's Name: files hold it for people only, and reading does not take it back.
  SetEveryProperty(*t, properties::kTemplate, "", {"Name"});
  t->Attributes()->Add(" \tForm\tkey\r\n", Variant("a\tb\r\nc "));
  auto page = clsXUNPage::Create();
  SetEveryProperty(*page, properties::kPage, "P", {"WeightedRotate"});
  page->Attributes()->Add("Side", Variant("\tfront\nback\t"));
  t->Pages()->Add(page);

  struct Kind {
    xunRecogType recognition;
    xunFieldType type;
  };
  const Kind kinds[] = {{xunRecogTypeOMR, xunFieldTypeOMRMult},
                        {xunRecogTypeOCR, xunFieldTypeOCRSimple},
                        {xunRecogTypeBarcode, xunFieldTypeBarcodeCode128},
                        {xunRecogTypeImage, xunFieldTypeImageClip},
                        {xunRecogTypeImage, xunFieldTypeImageClipData},
                        {xunRecogTypeImage, xunFieldTypeImageDataEntry},
                        {xunRecogTypeImage, static_cast<xunFieldType>(0)},
                        {static_cast<xunRecogType>(0), static_cast<xunFieldType>(0)}};
  int number = 0;
  for (const Kind& kind : kinds) {
    const std::string seed = "R" + std::to_string(++number);
    auto field = clsXUNField::Create();
    field->RecognitionType(kind.recognition);
    field->FieldType(kind.type);
    SetEveryProperty(*field, properties::kField, seed,
                     {"RecognitionType", "FieldType", "LinkGroup", "LinkStart", "Orient", "NumRows",
                      "NumCols", "ImageClipAddColumn"});
    field->Orient(xunOrientationTypeOMRRow);
    field->NumRows(2);
    field->NumCols(3);
    field->BarcodeDelimiter("\r\n");
    field->Attributes()->Add("Note", Variant(" \t" + seed + "\r\n"));
    field->Extra()->AddDelimitedString("1\t-2\t3");
    SetEveryProperty(*field->DB(), properties::kFieldDB, seed, {});
    field->DB()->ReturnFields()->AddDelimitedString(" a\tb \r\nc|");
    page->Fields()->Add(field);
    EXPECT_TRUE(field->Questions()->Update());
    for (const auto& q : *field->Questions()) {
      SetEveryProperty(*q, properties::kQuestion, seed, {"Key", "IDType"});
      q->Choices()->RemoveAll();
      q->Choices()->AddDelimitedString(" \tA(1)\r\n|B, \"2\" |C ", "|");
      q->Codes()->RemoveAll();
      q->Codes()->AddDelimitedString(" 1\t|(2)\n|3 ", "|");
    }
  }
  return t;
}

TEST(RoundTrip, EverySettingOfEveryRegionKindAsFarAsTheFileHoldsIt) {
  auto t = EverySetting();
  const std::string file = ExpectFileRoundTrip(*t);
  // Only lists hold tabs, and no section writes a key twice.
  std::set<std::string> keys;
  for (const std::string_view line : text::Split(file, "\r\n")) {
    if (line.starts_with("[")) {
      keys.clear();
      continue;
    }
    const std::string key(line.substr(0, line.find('=')));
    EXPECT_TRUE(keys.insert(key).second) << "written twice: " << key;
    static const std::set<std::string> lists = {"Attributes",  "Choices",  "Codes",    "Extra",
                                                "TimingMarks", "DBReturn", "DBReplace"};
    if (!lists.count(key)) {
      EXPECT_EQ(line.find('\t'), std::string_view::npos) << line;
    }
  }
  t->Free();
}

TEST(RoundTrip, TextIsHeldCleanedSoTheFirstSaveIsAlreadyFinal) {
  auto t = KitchenSink("x");
  const auto region = t->Pages()->Item(2)->Fields()->Item(1);
  const auto question = region->Questions()->Item(1);
  t->Tag("\tform\ttag\t");
  t->Description("line one\r\nline two\rthree\nfour ");
  region->Tag(" a\tb ");
  question->BlanksReturn("\t");
  question->QuestionText("\tWhat\tnow?\t");
  const std::string file = ExpectFileRoundTrip(*t);
  EXPECT_NE(file.find("Tag=form tag\r\n"), std::string::npos);
  EXPECT_NE(file.find("Description=line one line two three four\r\n"), std::string::npos);
  EXPECT_NE(file.find("Tag=a b\r\n"), std::string::npos);
  EXPECT_NE(file.find("BlanksReturn=\r\n"), std::string::npos);
  EXPECT_NE(file.find("QuestionText=What now?\r\n"), std::string::npos);
  t->Free();
}

// A file of an older program: identification settings and the image fill value on the region.
constexpr const char* kOlderRegionKeys =
    "[Form]\r\nVersion=8\r\n"
    "[Page]\r\nKey=P1\r\n"
    "[Field]\r\nName=Grid\r\nRecogType=1\r\nFieldType=1\r\nOrient=1\r\nIDADD=-1\r\nIDTYPE=2\r\n"
    "Left=100\r\nRight=200\r\nTop=100\r\nBottom=200\r\nNumRows=2\r\nNumCols=2\r\n"
    "Extra=2\t2\t10\t12\t5\t45\t7\t37\t0\t0\t0\t0\r\nIDVALUE=42\r\nTESTVERSIONID=-1\r\n"
    "IMAGEFILLVALUE=255\r\n"
    "[Question]\r\nQuestionName=Q1\r\nChoices=A\tB\r\nCodes=1\t2\r\n"
    "[Question]\r\nQuestionName=Q2\r\nChoices=A\tB\r\nCodes=1\t2\r\nIDType=0\r\nIDValue=own\r\n"
    "[Field]\r\nName=Clip\r\nRecogType=2\r\nFieldType=1\r\nIDValue=A12\r\n"
    "ImageFillValue=128\r\nLeft=10\r\nRight=20\r\nTop=10\r\nBottom=20\r\n"
    "[Question]\r\nQuestionName=ClipQ\r\n";

// The field section of `name` in a file's text.
std::string FieldSection(const std::string& file, const std::string& name) {
  const size_t at = file.find("[Field]\r\nAttributes=\r\nName=" + name + "\r\n");
  if (at == std::string::npos) return {};
  return file.substr(at, file.find("[Question]", at) - at);
}

TEST(RoundTrip, OlderRegionKeysAreKeptAsNamedExtrasAndWrittenBack) {
  testing::TempFolder folder;
  testing::WriteFileBytes(folder.File("old.omr"), kOlderRegionKeys);
  auto t = clsXUNTemplate::Create();
  ASSERT_TRUE(t->Read(folder.File("old.omr"), true)) << basTemplate::LastReadDiagnostic().text;
  const auto grid = t->Pages()->Item(1)->Fields()->Item(1);
  const auto clip = t->Pages()->Item(1)->Fields()->Item(2);

  // Kept in the tree, the registration layout undisturbed.
  const auto named = [](const clsXUNField& f) {
    std::string out;
    for (int32_t i = 1; i <= f.Extra()->Count(); ++i)
      if (const auto key = f.Extra()->KeyOf(i))
        out += *key + "=" + std::to_string(f.Extra()->Item(i)) + " ";
    return out;
  };
  EXPECT_EQ(named(*grid), "IDAdd=-1 IDType=2 IDValue=42 TestVersionID=-1 ");
  EXPECT_EQ(grid->Extra()->UnnamedValues().size(), 12u);
  EXPECT_TRUE(grid->IsRegistered());
  // An image region keeps the fill value; an IDValue that is no 16-bit number is not kept.
  EXPECT_EQ(named(*clip), "ImageFillValue=128 ");
  EXPECT_EQ(clip->DefaultFill(), "");

  // Still applied to the questions; a question's own key wins.
  const auto q1 = grid->Questions()->Item(1), q2 = grid->Questions()->Item(2);
  EXPECT_TRUE(q1->IDAdd());
  EXPECT_EQ(q1->IDType(), xunIDTypePage);
  EXPECT_EQ(q1->IDValue(), "42");
  EXPECT_TRUE(q1->TestVersionID());
  EXPECT_EQ(q2->IDType(), xunIDTypeNone);
  EXPECT_EQ(q2->IDValue(), "own");
  EXPECT_TRUE(q2->IDAdd());
  EXPECT_EQ(clip->Questions()->Item(1)->IDValue(), "A12");

  // Written back as region keys of their own, the Extra line holding the layout alone.
  const std::string file = ExpectFileRoundTrip(*t);
  const std::string grid_section = FieldSection(file, "Grid");
  EXPECT_NE(grid_section.find("Extra=2\t2\t10\t12\t5\t45\t7\t37\t0\t0\t0\t0\r\n"),
            std::string::npos)
      << grid_section;
  for (const char* line :
       {"IDAdd=-1\r\n", "IDType=2\r\n", "IDValue=42\r\n", "TestVersionID=-1\r\n"})
    EXPECT_NE(grid_section.find(line), std::string::npos) << line;
  EXPECT_EQ(grid_section.find("ImageFillValue"), std::string::npos);
  EXPECT_NE(FieldSection(file, "Clip").find("ImageFillValue=128\r\n"), std::string::npos);
  t->Free();
}

TEST(RoundTrip, NamedExtrasAnywhereLeaveARegistrationStanding) {
  auto field = clsXUNField::Create();
  field->RecognitionType(xunRecogTypeOMR);
  field->Right(100);
  field->Bottom(100);
  field->NumRows(1);
  field->NumCols(1);
  field->Extra()->Add(7, std::string("IDType"));
  field->Extra()->AddDelimitedString("1\t1\t10\t10\t5\t5\t0");  // 4 + 1 + 1 + 1 values
  field->Extra()->Add(1, std::string("IDAdd"), Index(3));
  EXPECT_TRUE(field->IsRegistered());
  // A copy keeps the names; replacing the layout keeps them too, after the layout.
  const auto copy = field->Copy();
  EXPECT_EQ(copy->Extra()->Item("IDType"), 7);
  EXPECT_TRUE(copy->IsRegistered());
  EXPECT_TRUE(copy->Extra()->ReplaceUnnamedValues({1, 1, 9, 9, 4, 4, 0}));
  EXPECT_EQ(copy->Extra()->AsString(","), "1,1,9,9,4,4,0,7,1");
  EXPECT_EQ(copy->Extra()->KeyOf(9), "IDAdd");
  EXPECT_TRUE(copy->IsRegistered());
  copy->Free();
  field->Free();
}

TEST(RoundTrip, EveryKindAndSettingSurvivesInBothEncodings) {
  {
    SCOPED_TRACE("Latin text: the file stays Windows-1252");
    auto t = KitchenSink("Größe");
    EXPECT_NE(ExpectRoundTrip(*t).substr(0, 2), "\xFF\xFE");
    t->Free();
  }
  {
    SCOPED_TRACE("non-Latin text: the file becomes UTF-16");
    auto t = KitchenSink("東京 Αθήνα القاهرة");
    EXPECT_EQ(ExpectRoundTrip(*t).substr(0, 2), "\xFF\xFE");
    t->Free();
  }
}

TEST(RoundTrip, LinkGroupsComeBackAsGroups) {
  auto t = KitchenSink("x");
  testing::TempFolder folder;
  ASSERT_TRUE(t->Save(folder.File("a.omr"), false));
  auto read = clsXUNTemplate::Create();
  ASSERT_TRUE(read->Read(folder.File("a.omr"), true));
  std::shared_ptr<clsXUNField> a, b;
  for (const auto& field : *read->Pages()->Item(1)->Fields()) {
    if (field->FieldName() == "LinkedA") a = field;
    if (field->FieldName() == "LinkedB") b = field;
  }
  ASSERT_TRUE(a && b);
  EXPECT_NE(a->LinkGroup(), 0);
  EXPECT_EQ(a->LinkGroup(), b->LinkGroup());
  EXPECT_TRUE(a->LinkStart());
  EXPECT_FALSE(b->LinkStart());
  EXPECT_EQ(b->NumItems(), 0);  // only the group's first region counts items
  read->Free();
  t->Free();
}

// Found by the tree-building fuzzer: the identification summary a save stores in the form's
// attributes is judged and written as the file holds the region, so reading the file and saving
// it again gives the same summary (a name the name list cleans, an ID value of blanks and tabs).
TEST(RoundTrip, IdentificationSummaryIsTheSameAfterARead) {
  for (const std::string& id_value : {std::string("\t"), std::string("17")}) {
    auto t = clsXUNTemplate::Create();
    auto page = clsXUNPage::Create();
    t->Pages()->Add(page);
    auto field = Region("Form.(ID)", xunRecogTypeBarcode, xunFieldTypeBarcodeCode39, 100, 100);
    page->Fields()->Add(field);
    ASSERT_TRUE(field->Questions()->Update());
    field->Questions()->Item(1)->IDType(xunIDTypeForm);
    field->Questions()->Item(1)->IDAdd(true);
    field->Questions()->Item(1)->IDValue(id_value);
    ExpectFileRoundTrip(*t);
    const bool has_value = id_value == "17";
    EXPECT_EQ(t->Attributes()->Item("FormIDFieldsValid").ToText(), has_value ? "True" : "False")
        << id_value;
    if (has_value) {
      EXPECT_EQ(t->Attributes()->Item("FormIDField").ToText(), "FormID");
    }
    t->Free();
  }
}

}  // namespace
}  // namespace xun
