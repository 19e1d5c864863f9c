// A random template built through the public setters, as a host builds one: every region kind,
// every question setting, link groups, identification, and text with tabs, line breaks, the
// file's own syntax characters and non-Latin letters. Whatever is built must save, read back for
// editing as the same tree (as far as a file holds it), and save again to the same bytes.
#include <fuzzer/FuzzedDataProvider.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <vector>

#include "fuzz/fuzz_common.h"

namespace xun::fuzz {
namespace {

// Pieces of text, each valid UTF-8, so the built text is too (the library holds UTF-8).
constexpr std::array<const char*, 24> kPieces = {
    "a", "Z", "7", " ",        "\t",       "\r\n",         "\n",       "\r",
    "=", "[", "]", "|",        ",",        "\"",           "(",        ")",
    ".", "!", "'", "\xC3\xA9", "\xD0\x96", "\xE4\xB8\xAD", "\xD8\xB9", "<--@TAB-->"};

class TreeBuilder {
 public:
  explicit TreeBuilder(FuzzedDataProvider& in) : in_(in) {}

  std::string Text(size_t max_pieces = 6) {
    std::string text;
    const size_t pieces = in_.ConsumeIntegralInRange<size_t>(0, max_pieces);
    for (size_t i = 0; i < pieces; ++i)
      text += kPieces[in_.ConsumeIntegralInRange<size_t>(0, kPieces.size() - 1)];
    return text;
  }
  // Names keep at least one letter after the writer removes the characters names may not hold.
  std::string Name() { return "N" + Text(4); }
  bool Flag() { return in_.ConsumeBool(); }
  int16_t Small(int16_t low, int16_t high) { return in_.ConsumeIntegralInRange(low, high); }
  int16_t Int16() { return in_.ConsumeIntegral<int16_t>(); }
  template <class T>
  T Pick(std::initializer_list<T> values) {
    const size_t index = in_.ConsumeIntegralInRange<size_t>(0, values.size() - 1);
    return *(values.begin() + index);
  }
  // Finite values in the file's shortest decimal form; a quarter of them plain small numbers.
  double Real() {
    if (Flag()) return Small(-100, 100) / 4.0;
    const double value = in_.ConsumeFloatingPoint<double>();
    return std::isfinite(value) ? value : 0.0;
  }
  float Single() {
    const float value = in_.ConsumeFloatingPoint<float>();
    return std::isfinite(value) ? value : 0.25F;
  }

  void Attributes(const DictionaryPtr& attributes) {
    const int count = Small(0, 3);
    for (int i = 0; i < count; ++i) {
      // A "|" separates a key from its value in the file's one-line form, so no key holds one
      // (docs/template-reader.md); everything else may stand in a key.
      std::string key = "K" + std::to_string(i) + Text(2);
      std::erase(key, '|');
      if (Flag())
        attributes->Add(key, Variant(Text()));
      else
        attributes->Add(key, Variant(int32_t{Int16()}));
    }
  }

  std::shared_ptr<clsXUNTemplate> Template() {
    auto t = clsXUNTemplate::Create();
    t->Description(Text());
    t->Tag(Text());
    t->RDDName(Text());
    t->Name(Text());
    t->Manufacturer(Text());
    // Not the four old rounded paper sizes, which the reader corrects on purpose.
    t->PageWidth(Pick({8.5, 8.27, 11.0, 4.0, 14.0}));
    t->PageHeight(Pick({11.0, 11.69, 8.5, 14.0, 6.0}));
    t->Orientation(Pick({xunOrientationTypeFormPortrait, xunOrientationTypeFormLandscape}));
    t->ReadType(Pick({xunTemplateReadTypeNone, xunTemplateReadTypeOffice,
                      xunTemplateReadTypeClassic, xunTemplateReadTypeHybrid}));
    t->Duplex(Flag());
    t->SelfScore(Flag());
    t->ColumnWidth(Single());
    t->Columns(Int16());
    t->RowTopMargin(Single());
    t->RowBottomMargin(Single());
    t->HeaderCount(Small(0, 5));
    t->HeaderPageCount(Small(0, 5));
    t->HeaderItemCount(Small(0, 5));
    Attributes(t->Attributes());
    const int pages = Small(1, 3);
    for (int i = 0; i < pages; ++i)
      t->Pages()->Add(Page());
    return t;
  }

 private:
  std::shared_ptr<clsXUNPage> Page() {
    auto page = clsXUNPage::Create();
    page->Tag(Text());
    page->ColumnWidth(Flag() ? 0.0F : Single());
    page->DropOutColor(
        Pick({xunTemplateDropOutColorNone, xunTemplateDropOutColorRed, xunTemplateDropOutColorGreen,
              xunTemplateDropOutColorBlue, xunTemplateDropOutColorAll}));
    page->DropOutThreshold(Small(0, 100));
    page->WeightedRotate(Pick<int16_t>({-1, 0}));
    page->XDPI(Small(0, 600));
    page->YDPI(Small(0, 600));
    page->ImageWidth(Int16());
    page->ImageHeight(Int16());
    page->FilledPixels(in_.ConsumeIntegral<int32_t>());
    const int marks = Small(0, 3);
    for (int i = 0; i < marks; ++i)
      page->TimingMarks()->AddMark(Int16(), Int16(), Small(0, 50), Small(0, 50));
    Attributes(page->Attributes());
    const int regions = Small(1, 4);
    std::vector<std::shared_ptr<clsXUNField>> omr;
    for (int i = 0; i < regions; ++i) {
      auto field = Region();
      page->Fields()->Add(field);
      field->Questions()->Update();
      for (const auto& question : *field->Questions())
        Question(*question);
      if (field->RecognitionType() == xunRecogTypeOMR) omr.push_back(field);
    }
    // Links the first OMR regions when the fuzzer asks; a refused link changes nothing.
    if (omr.size() >= 2 && Flag()) page->Link({omr[0], omr[1]}, false);
    return page;
  }

  std::shared_ptr<clsXUNField> Region() {
    auto f = clsXUNField::Create();
    f->FieldName(Name());
    f->Tag(Text());
    const auto kind =
        Pick({xunRecogTypeOMR, xunRecogTypeImage, xunRecogTypeBarcode, xunRecogTypeOCR});
    f->RecognitionType(kind);
    switch (kind) {
      case xunRecogTypeOMR:
        f->FieldType(static_cast<xunFieldType>(Small(1, 7)));
        f->Orient(Pick({xunOrientationTypeOMRRow, xunOrientationTypeOMRCol}));
        break;
      case xunRecogTypeImage:
        f->FieldType(static_cast<xunFieldType>(Small(1, 3)));
        break;
      case xunRecogTypeBarcode:
        f->FieldType(static_cast<xunFieldType>(Small(1, 23)));
        f->Orient(Pick({xunOrientationTypeBarcodeHorizontal, xunOrientationTypeBarcodeVertical}));
        break;
      default:
        f->FieldType(static_cast<xunFieldType>(Small(1, 3)));
        break;
    }
    f->DataType(Pick({xunDataTypeNumeric, xunDataTypeText, xunDataTypeAlphaNumeric}));
    f->Read(Flag());
    f->Left(Small(0, 800));
    f->Top(Small(0, 1000));
    f->Right(static_cast<int16_t>(f->Left() + Small(1, 300)));
    f->Bottom(static_cast<int16_t>(f->Top() + Small(1, 300)));
    // Every setting a host can give any kind; what the kind does not keep, the file does not hold.
    f->NumRows(Small(1, 6));
    f->NumCols(Small(1, 6));
    f->StartRow(Small(0, 30));
    f->StartCol(Small(0, 30));
    f->RowGap(Small(0, 40));
    f->ColGap(Small(0, 40));
    f->Threshold(Int16());
    f->Pattern(Text());
    f->DefaultFill(Text());
    f->AutoIncrement(Flag());
    f->AutoIncrementSpansTemplates(Flag());
    f->AutoDetect(Flag());
    f->ImageClipFile(Text());
    f->ImageClipType(static_cast<xunImageClipType>(Small(-1, 3)));
    f->ImageClipCompression(static_cast<xunImageClipCompression>(Small(-1, 4)));
    f->ImageClipAddColumn(Flag());
    f->ImageFillPrompt(Flag());
    f->ImageLinkValue(Text());
    f->ImageLinkQuestionKey(Text());
    f->BarcodeDelimiter(Pick<std::string>({"", ",", "\r\n", "\t", " ", "\r", "\n", "|"}));
    f->BarcodeDistance(Int16());
    f->BarcodeLength(Small(0, 40));
    const int extras = Small(0, 4);
    for (int i = 0; i < extras; ++i)
      f->Extra()->Add(Int16());
    if (Flag()) {
      auto db = f->DB();
      db->Name(Text());
      db->Catalog(Text());
      db->Table("T" + Text());
      db->LookupField("L" + Text());
      db->ReplaceField(Text());
      db->Connect("C" + Text());
      db->DSNName(Text());
      db->User(Text());
      db->Password(Text());
      db->DBType(Small(0, 9));
      db->DSNBased(Flag());
      db->DirectoryBased(Flag());
      db->Unicode(Flag());
      const int columns = Small(0, 2);
      for (int i = 0; i < columns; ++i)
        db->ReturnFields()->Add("R" + Text(3));
    }
    Attributes(f->Attributes());
    return f;
  }

  void Question(clsXUNQuestion& q) {
    if (Flag()) q.QuestionName(Name());
    q.QuestionText(Text());
    q.Tag(Text());
    // Labels and codes edited in place; Update gave an OMR question one of each per bubble.
    for (const auto& items : {q.Choices(), q.Codes()})
      for (int32_t i = 1; i <= items->Count(); ++i)
        if (Flag()) items->Item(i, Text(3));
    q.MultsAllowed(Small(-2, 1));
    q.BlanksFlag(static_cast<xunBlanksFlag>(Small(0, 4)));
    q.BlanksReturn(Text());
    q.DuplicateReturn(Text());
    q.ErrorReturn(Text());
    q.MultsReturn(Text());
    q.Discriminate(Flag());
    q.NAChoice(Small(0, 4));
    q.IDType(static_cast<xunIDType>(Small(0, 4)));
    q.IDValue(Text());
    q.IDAdd(Flag());
    q.Required(Flag());
    q.Tally(Flag());
    q.Grade(Flag());
    q.Correct(Real());
    q.Incorrect(Real());
    q.ExtraCredit(Flag());
    q.NoResponse(Real());
    q.RespondentID(Flag());
    q.Rubric(Flag());
    q.SubjectiveField(Flag());
    q.SubjectivePoints(Small(0, 40) / 2.0);
    q.TestVersionID(Flag());
  }

  FuzzedDataProvider& in_;
};

// Says which step failed and, for two descriptions, the first line that differs, so a failing
// input explains itself when it is run again.
[[noreturn]] void Fail(const char* step, const std::string& expected = {},
                       const std::string& actual = {}) {
  std::fprintf(stderr, "fuzz_build_tree: %s\n", step);
  if (actual.empty() && !expected.empty()) std::fprintf(stderr, "  %s\n", expected.c_str());
  size_t line_start = 0;
  for (size_t i = 0; i < expected.size() && i < actual.size(); ++i) {
    if (expected[i] != actual[i]) {
      const auto line = [&](const std::string& text) {
        return text.substr(line_start, text.find('\n', line_start) - line_start);
      };
      std::fprintf(stderr, "  saved: %s\n  read:  %s\n", line(expected).c_str(),
                   line(actual).c_str());
      break;
    }
    if (expected[i] == '\n') line_start = i + 1;
  }
  std::abort();
}

}  // namespace
}  // namespace xun::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const xun::fuzz::Scratch scratch;
  FuzzedDataProvider in(data, size);
  xun::fuzz::TreeBuilder builder(in);
  const auto built = builder.Template();
  const std::string first = scratch.Fresh("built.omr");
  bool invalid = false;
  if (!built->Save(first, false, &invalid)) xun::fuzz::Fail("Save of the built tree failed");
  // A tree that breaks one of the format's refusing rules (an OMR question whose choices or codes
  // clean away, a form whose only items are hidden identification questions) is saved as invalid
  // and may not read back (docs/template-reader.md). Any other must.
  auto read = xun::clsXUNTemplate::Create();
  if (!read->Read(first, true)) {
    if (!invalid)
      xun::fuzz::Fail("a file saved as valid does not read for editing",
                      xun::basTemplate::LastReadDiagnostic().title + ": " +
                          xun::basTemplate::LastReadDiagnostic().text);
    built->Free();
    read->Free();
    return 0;
  }
  const std::string saved = xun::testing::DescribeTree(*built, true);
  const std::string read_back = xun::testing::DescribeTree(*read, true);
  if (read_back != saved) xun::fuzz::Fail("the tree read back differs", saved, read_back);
  // The form's Name is written for information and never read back (docs/template-reader.md):
  // given back by hand, so the bytes compare whole.
  read->Name(built->Name());
  const std::string second = scratch.Fresh("again.omr");
  if (!read->Save(second, false)) xun::fuzz::Fail("the second Save failed");
  const std::string first_bytes = xun::fuzz::ReadBytes(first);
  const std::string second_bytes = xun::fuzz::ReadBytes(second);
  if (second_bytes != first_bytes)
    xun::fuzz::Fail("the second Save wrote other bytes", first_bytes, second_bytes);
  built->Free();
  read->Free();
  return 0;
}
