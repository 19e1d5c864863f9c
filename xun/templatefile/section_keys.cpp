#include "xun/templatefile/section_keys.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <type_traits>
#include <unordered_map>
#include <variant>
#include <vector>

#include "xun/model/timing_marks.h"
#include "xun/support/numeric.h"
#include "xun/support/text.h"
#include "xun/support/value_helpers.h"
#include "xun/templatefile/bas_template.h"
#include "xun/templatefile/clean_text.h"
#include "xun/templatefile/number_text.h"
#include "xun/templatefile/password_keys.h"

namespace xun::basTemplate::detail {
namespace {

using properties::Find;
using T = clsXUNTemplate;
using P = clsXUNPage;
using F = clsXUNField;
using D = clsXUNFieldDB;
using Q = clsXUNQuestion;
using S = std::string;

// The code lists as strings once, not once per value.
const S kNoCodes;
const S kNameCodes = kIllegalNameCharacters;
const S kLabelCodes = kIllegalLabelCharacters;
const S kValueCodes = kIllegalValueCharacters;

// ---- Values of their own form --------------------------------------------------------------

// Attributes: "key|value" entries separated by tabs. Keys and values are cleaned like text, so
// no tab inside one can split an entry; an entry whose key cleans to nothing, or to a key
// already written, is left out, since reading it would fail the whole line.
S AttributeLine(const DictionaryPtr& attributes) {
  if (!attributes) return {};
  const DictionaryPtr written = Dictionary::Create();
  S line;
  for (const S& key : attributes->Keys()) {
    const Variant item = attributes->Item(key);
    if (!(item.IsNumber() || item.Kind() == VariantKind::String)) continue;
    const S clean_key = FileText(key, true, kNoCodes);
    if (clean_key.empty() || written->Exists(clean_key)) continue;
    written->Add(clean_key, Variant(true));
    if (!line.empty()) line += '\t';
    line += clean_key + "|" + FileText(item.ToText(), true, kNoCodes);
  }
  return line;
}
DictionaryPtr ReadAttributes(std::string_view value) {
  DictionaryPtr attributes = Dictionary::Create();
  basPublic::StringToDictionary(S(value), attributes, "\t", "|");
  return attributes;
}

// Each item cleaned on its own (tabs too, since a tab separates the items).
S ItemLine(const std::shared_ptr<clsXUNStringItems>& items, const S& codes) {
  if (!items) return {};
  S line;
  bool first = true;
  for (const S& item : *items) {
    if (!first) line += '\t';
    first = false;
    line += FileText(item, true, codes);
  }
  return line;
}
void ReadItems(clsXUNStringItems& items, std::string_view value, const S& codes) {
  using xun::detail::StringItemsInternals;
  items.RemoveAll();
  const std::string_view line = text::Trim(value);
  if (line.empty()) return;
  StringItemsInternals::Reserve(
      items, 1 + static_cast<size_t>(std::count(line.begin(), line.end(), '\t')));
  for (size_t start = 0;;) {
    const size_t tab = line.find('\t', start);
    StringItemsInternals::Append(items, FileText(line.substr(start, tab - start), true, codes));
    if (tab == std::string_view::npos) break;
    start = tab + 1;
  }
}

xunDataType DataTypeValue(std::string_view value) {
  const S word = text::ToUpper(text::Trim(value));
  if (word == "TEXT") return xunDataTypeText;
  if (word == "NUMERIC") return xunDataTypeNumeric;
  return static_cast<xunDataType>(Int16Value(value));
}

S UnscramblePassword(std::string_view value) {
  const S scrambled(text::Trim(value));
  if (scrambled.empty()) return {};
  return basPublic::HexToUnicode(
      basPublic::Decrypt(scrambled, kPasswordKey1, kPasswordKey2, kPasswordKey3));
}

// The unnamed extra values: the registration layout.
Written WriteExtra(const F& f) {
  S line;
  if (f.Extra())
    for (const int16_t item : f.Extra()->UnnamedValues())
      line += (line.empty() ? "" : "\t") + std::to_string(item);
  return line;
}
bool ReadExtra(F& f, std::string_view value, ReaderContext&) {
  const auto parsed = clsXUNFieldExtra::Create();
  // A piece out of the 16-bit range is reported and ends the values there.
  parsed->AddDelimitedString(S(text::Trim(value)), "\t");
  f.Extra()->ReplaceUnnamedValues(parsed->UnnamedValues());
  return true;
}

// An older region key kept as a named extra value: written back as its own key when the region
// holds it. A value that is no 16-bit whole number is not kept (docs/template-reader.md).
template <const char* const* Name>
Written WriteNamed(const F& f) {
  if (!f.Extra() || !f.Extra()->Exists(*Name)) return std::nullopt;
  return std::to_string(f.Extra()->Item(*Name));
}
std::optional<int16_t> NamedValueOf(std::string_view value, bool exact_text) {
  const std::string_view trimmed = text::Trim(value);
  const double number = Val(trimmed);
  if (!(number >= -32768 && number <= 32767) || number != std::trunc(number)) return std::nullopt;
  const auto whole = static_cast<int16_t>(number);
  // A text setting is kept only when it is the number's own text, or it would change on the
  // way back.
  if (exact_text && trimmed != std::to_string(whole)) return std::nullopt;
  return whole;
}
void KeepNamed(F& f, const char* name, std::string_view value, bool exact_text) {
  if (const std::optional<int16_t> number = NamedValueOf(value, exact_text))
    f.Extra()->SetNamed(name, *number);
}
bool ReadRegionIDAdd(F& f, std::string_view v, ReaderContext& ctx) {
  ctx.region_carried.id_add = v;
  KeepNamed(f, kExtraIDAdd, v, false);
  return true;
}
bool ReadRegionIDType(F& f, std::string_view v, ReaderContext& ctx) {
  ctx.region_carried.id_type = v;
  KeepNamed(f, kExtraIDType, v, false);
  return true;
}
bool ReadRegionIDValue(F& f, std::string_view v, ReaderContext& ctx) {
  ctx.region_carried.id_value = v;
  KeepNamed(f, kExtraIDValue, v, true);
  return true;
}
bool ReadRegionTestVersionID(F& f, std::string_view v, ReaderContext& ctx) {
  ctx.region_carried.test_version_id = v;
  KeepNamed(f, kExtraTestVersionID, v, false);
  return true;
}
// Only an image region keeps it; the kind is known here since RecogType comes first.
bool ReadImageFillValue(F& f, std::string_view v, ReaderContext&) {
  if (f.RecognitionType() == xunRecogTypeImage) KeepNamed(f, kExtraImageFillValue, v, false);
  return true;
}

constexpr const char* kNotValidText =
    "The specified template is not valid for reading. Please open the template in the Template "
    "Editor and correct all problems before attempting to open the template for reading.\r\n\r\n"
    "Operation aborted.";

// A template marked not valid is read only for editing.
bool ReadValid(T& t, std::string_view value, ReaderContext& ctx) {
  const bool valid = FlagValue(value);
  xun::detail::TemplateInternals::SetValid(t, valid);
  if (valid || ctx.for_edit) return true;
  FailRead("Form Error", kNotValidText, "basTemplate.ReadForm", ctx.section_line);
  return false;
}

// ---- The tables ----------------------------------------------------------------------------

#define PROPERTY(table, name) Find(properties::table, name)

constexpr const char* kFormatVersion = "8";

constexpr SectionKey<T> kFormKeys[] = {
    {"Attributes", "", nullptr, ValueForm::kCustom, kEveryKind,
     [](const T& t) -> Written { return AttributeLine(t.Attributes()); },
     [](T& t, std::string_view v, ReaderContext&) {
       t.Attributes(ReadAttributes(v));
       return true;
     }},
    {"Columns", "", PROPERTY(kTemplate, "Columns")},
    {"ColumnWidth", "", PROPERTY(kTemplate, "ColumnWidth")},
    {"Description", "", PROPERTY(kTemplate, "Description")},
    {"Duplex", "", PROPERTY(kTemplate, "Duplex")},
    {"HeaderCount", "", PROPERTY(kTemplate, "HeaderCount")},
    {"HeaderItemCount", "", PROPERTY(kTemplate, "HeaderItemCount")},
    {"HeaderPageCount", "", PROPERTY(kTemplate, "HeaderPageCount")},
    {"Name", "", PROPERTY(kTemplate, "Name"), ValueForm::kInfo},
    {"NumPages", "", nullptr, ValueForm::kInfo, kEveryKind,
     [](const T& t) -> Written { return std::to_string(t.NumPages()); }},
    {"NumFields", "", nullptr, ValueForm::kInfo, kEveryKind,
     [](const T& t) -> Written { return std::to_string(t.NumFields()); }},
    {"NumItems", "", nullptr, ValueForm::kInfo, kEveryKind,
     [](const T& t) -> Written { return std::to_string(t.NumItems()); }},
    {"Orientation", "", PROPERTY(kTemplate, "Orientation")},
    {"PageHeight", "", PROPERTY(kTemplate, "PageHeight")},
    {"PageWidth", "", PROPERTY(kTemplate, "PageWidth")},
    {"RDDName", "", PROPERTY(kTemplate, "RDDName")},
    {"ReadType", "", PROPERTY(kTemplate, "ReadType")},
    {"RowBottomMargin", "", PROPERTY(kTemplate, "RowBottomMargin")},
    {"RowTopMargin", "", PROPERTY(kTemplate, "RowTopMargin")},
    {"SelfScore", "", PROPERTY(kTemplate, "SelfScore")},
    {"Tag", "", PROPERTY(kTemplate, "Tag")},
    {"Version", "", nullptr, ValueForm::kCustom, kEveryKind,
     [](const T&) -> Written { return kFormatVersion; },
     [](T& t, std::string_view v, ReaderContext&) {
       xun::detail::TemplateInternals::SetVersion(t, FileText(v, true, kNoCodes));
       return true;
     }},
    {"CompatibleVersion", "", nullptr, ValueForm::kCustom, kEveryKind,
     [](const T&) -> Written { return kFormatVersion; },
     [](T& t, std::string_view v, ReaderContext&) {
       xun::detail::TemplateInternals::SetCompatibleVersion(t, FileText(v, true, kNoCodes));
       return true;
     }},
    {"Valid", "", nullptr, ValueForm::kCustom, kEveryKind,
     [](const T& t) -> Written { return t.Valid() ? "-1" : "0"; }, ReadValid},
    // Older files name their maker; never written.
    {"Manufacturer", "", PROPERTY(kTemplate, "Manufacturer"), ValueForm::kValue, 0},
};

constexpr SectionKey<P> kPageKeys[] = {
    {"Attributes", "", nullptr, ValueForm::kCustom, kEveryKind,
     [](const P& p) -> Written { return AttributeLine(p.Attributes()); },
     [](P& p, std::string_view v, ReaderContext&) {
       p.Attributes(ReadAttributes(v));
       return true;
     }},
    // A page with width 0 takes the template's when it is added to one: written so, it reads
    // back as it was used.
    {"ColumnWidth", "", PROPERTY(kPage, "ColumnWidth"), ValueForm::kCustom, kEveryKind,
     [](const P& p) -> Written {
       const std::shared_ptr<T> owner = p.ColumnWidth() == 0 ? p.Template() : nullptr;
       return ShortestDecimal(owner ? owner->ColumnWidth() : p.ColumnWidth());
     },
     [](P& p, std::string_view v, ReaderContext&) {
       p.ColumnWidth(SingleValue(v));
       return true;
     }},
    {"DropOutColor", "", PROPERTY(kPage, "DropOutColor")},
    {"DropOutThreshold", "", PROPERTY(kPage, "DropOutThreshold")},
    {"Key", "", PROPERTY(kPage, "Key")},
    {"LargeField", "", nullptr, ValueForm::kInfo, kEveryKind,
     [](const P& p) -> Written { return std::to_string(p.LargeField()); }},
    {"NumFields", "", nullptr, ValueForm::kInfo, kEveryKind,
     [](const P& p) -> Written { return std::to_string(p.NumFields()); }},
    {"NumItems", "", nullptr, ValueForm::kInfo, kEveryKind,
     [](const P& p) -> Written { return std::to_string(p.NumItems()); }},
    {"Tag", "", PROPERTY(kPage, "Tag")},
    {"TimingMarks", "", nullptr, ValueForm::kCustom, kEveryKind,
     [](const P& p) -> Written {
       return p.TimingMarks() ? p.TimingMarks()->AsString("\t", ",") : "";
     },
     [](P& p, std::string_view v, ReaderContext&) {
       // A fresh list: the list's own RemoveAll is the library's, and a new page has no marks.
       p.TimingMarks(clsXUNTimingMarks::Create());
       p.TimingMarks()->AddDelimitedString(S(text::Trim(v)), "\t", ",");
       return true;
     }},
    {"WeightedRotate", "", PROPERTY(kPage, "WeightedRotate"), ValueForm::kFlag},
    {"XDPI", "", PROPERTY(kPage, "XDPI")},
    {"YDPI", "", PROPERTY(kPage, "YDPI")},
    {"ImageWidth", "", PROPERTY(kPage, "ImageWidth")},
    {"ImageHeight", "", PROPERTY(kPage, "ImageHeight")},
    {"FilledPixels", "", PROPERTY(kPage, "FilledPixels")},
};

// Which kinds write which keys: docs/template-file.md. Keys with two placements are listed
// twice, for kinds that do not overlap, so every region writes each key at most once.
constexpr uint8_t kGrid = kKindOMR | kKindOCR;
constexpr uint8_t kEntry = kKindOCR | kKindBarcode | kKindImageEntry;
constexpr uint8_t kClip = kKindImageClip | kKindImageEntry;
constexpr uint8_t kFirstExtra = kEveryKind & ~kEntry;

constexpr SectionKey<F> kFieldKeys[] = {
    {"Attributes", "", nullptr, ValueForm::kCustom, kEveryKind,
     [](const F& f) -> Written { return AttributeLine(f.Attributes()); },
     [](F& f, std::string_view v, ReaderContext&) {
       f.Attributes(ReadAttributes(v));
       return true;
     }},
    {"Name", "FIELDNAME", PROPERTY(kField, "FieldName"), ValueForm::kName},
    {"NumItems", "", nullptr, ValueForm::kInfo, kEveryKind,
     [](const F& f) -> Written {
       return std::to_string(f.Questions() ? f.Questions()->Count() : 0);
     }},
    {"RecogType", "", PROPERTY(kField, "RecognitionType")},
    {"FieldType", "", PROPERTY(kField, "FieldType")},
    {"DataType", "", PROPERTY(kField, "DataType"), ValueForm::kCustom, kEveryKind,
     [](const F& f) -> Written { return std::to_string(f.DataType()); },
     [](F& f, std::string_view v, ReaderContext&) {
       f.DataType(DataTypeValue(v));
       return true;
     }},
    {"Orient", "", PROPERTY(kField, "Orient")},
    {"Read", "", PROPERTY(kField, "Read")},
    {"Key", "", PROPERTY(kField, "Key")},
    {"Tag", "", PROPERTY(kField, "Tag")},
    {"Extra", "", nullptr, ValueForm::kCustom, kFirstExtra, WriteExtra, ReadExtra},
    {"ColGap", "", PROPERTY(kField, "ColGap"), ValueForm::kValue, kGrid},
    {"NumCols", "", PROPERTY(kField, "NumCols"), ValueForm::kValue, kGrid},
    {"NumRows", "", PROPERTY(kField, "NumRows"), ValueForm::kValue, kGrid},
    {"RowGap", "", PROPERTY(kField, "RowGap"), ValueForm::kValue, kGrid},
    {"StartCol", "", PROPERTY(kField, "StartCol"), ValueForm::kValue, kGrid},
    {"StartRow", "", PROPERTY(kField, "StartRow"), ValueForm::kValue, kGrid},
    {"Threshold", "", PROPERTY(kField, "Threshold"), ValueForm::kValue, kKindOMR},
    {"Pattern", "", PROPERTY(kField, "Pattern"), ValueForm::kValue, kGrid},
    {"LinkValue", "IMAGELINKVALUE", PROPERTY(kField, "ImageLinkValue"), ValueForm::kValue,
     kKindImageEntry},
    {"LinkQuestionKey", "", PROPERTY(kField, "ImageLinkQuestionKey"), ValueForm::kValue,
     kKindImageEntry},
    {"ImageFillPrompt", "", PROPERTY(kField, "ImageFillPrompt"), ValueForm::kValue,
     kKindImageEntry},
    {"ImageClipFile", "", PROPERTY(kField, "ImageClipFile"), ValueForm::kValue, kClip},
    {"ImageClipType", "", PROPERTY(kField, "ImageClipType"), ValueForm::kValue, kClip},
    {"ImageClipCompression", "", PROPERTY(kField, "ImageClipCompression"), ValueForm::kValue,
     kClip},
    {"ImageClipAddColumn", "", PROPERTY(kField, "ImageClipAddColumn"), ValueForm::kValue, kClip},
    {"DefaultFill", "FILL", PROPERTY(kField, "DefaultFill"), ValueForm::kValue, kEntry},
    {"AutoIncrement", "", PROPERTY(kField, "AutoIncrement"), ValueForm::kValue, kEntry},
    {"AutoIncrementSpansTemplates", "", PROPERTY(kField, "AutoIncrementSpansTemplates"),
     ValueForm::kValue, kEntry},
    {"AutoDetect", "", PROPERTY(kField, "AutoDetect"), ValueForm::kValue, kEntry},
    {"Extra", "", nullptr, ValueForm::kCustom, kEntry, WriteExtra, ReadExtra},
    {"Threshold", "", PROPERTY(kField, "Threshold"), ValueForm::kValue, kEntry},
    {"NumCols", "", PROPERTY(kField, "NumCols"), ValueForm::kValue, kEntry & ~kKindOCR},
    // Escaped, never cleaned: the tokens keep line breaks out, and cleaning would trim a blank
    // delimiter away.
    {"BarcodeDelimiter", "", PROPERTY(kField, "BarcodeDelimiter"), ValueForm::kCustom, kKindBarcode,
     [](const F& f) -> Written { return GetBarcodeDelimiter(f); },
     [](F& f, std::string_view v, ReaderContext&) {
       SetBarcodeDelimiter(f, S(v));
       return true;
     }},
    {"BarcodeDistance", "", PROPERTY(kField, "BarcodeDistance"), ValueForm::kValue, kKindBarcode},
    {"BarcodeLength", "", PROPERTY(kField, "BarcodeLength"), ValueForm::kValue, kKindBarcode},
    {"IDAdd", "", nullptr, ValueForm::kCustom, kEveryKind, WriteNamed<&kExtraIDAdd>,
     ReadRegionIDAdd},
    {"IDType", "", nullptr, ValueForm::kCustom, kEveryKind, WriteNamed<&kExtraIDType>,
     ReadRegionIDType},
    {"IDValue", "", nullptr, ValueForm::kCustom, kEveryKind, WriteNamed<&kExtraIDValue>,
     ReadRegionIDValue},
    {"TestVersionID", "", nullptr, ValueForm::kCustom, kEveryKind, WriteNamed<&kExtraTestVersionID>,
     ReadRegionTestVersionID},
    {"ImageFillValue", "", nullptr, ValueForm::kCustom, kImageKinds,
     WriteNamed<&kExtraImageFillValue>, ReadImageFillValue},
    {"Left", "LOWERX", PROPERTY(kField, "Left")},
    {"Right", "UPPERX", PROPERTY(kField, "Right")},
    {"Top", "LOWERY", PROPERTY(kField, "Top")},
    {"Bottom", "UPPERY", PROPERTY(kField, "Bottom")},
};

constexpr SectionKey<D> kDatabaseKeys[] = {
    {"DBName", "", PROPERTY(kFieldDB, "Name")},
    {"DBCatalog", "", PROPERTY(kFieldDB, "Catalog")},
    {"DBTable", "", PROPERTY(kFieldDB, "Table")},
    {"DBField", "", PROPERTY(kFieldDB, "LookupField")},
    {"DBReplace", "", PROPERTY(kFieldDB, "ReplaceField"), ValueForm::kTabsKept},
    {"DBReturn", "", nullptr, ValueForm::kCustom, kEveryKind,
     [](const D& d) -> Written { return ItemLine(d.ReturnFields(), kNoCodes); },
     [](D& d, std::string_view v, ReaderContext&) {
       ReadItems(*d.ReturnFields(), v, kNoCodes);
       return true;
     }},
    {"DBType", "", PROPERTY(kFieldDB, "DBType")},
    {"DBDSNBased", "", PROPERTY(kFieldDB, "DSNBased")},
    {"DBDirectoryBased", "", PROPERTY(kFieldDB, "DirectoryBased")},
    {"DBDSNName", "", PROPERTY(kFieldDB, "DSNName")},
    {"DBUser", "", PROPERTY(kFieldDB, "User")},
    // Scrambled (upper-case hex), so the password never stands in the file in clear.
    {"DBPassword", "", PROPERTY(kFieldDB, "Password"), ValueForm::kCustom, kEveryKind,
     [](const D& d) -> Written {
       bool hex = false;
       return basPublic::Encrypt(d.Password(), kPasswordKey1, kPasswordKey2, kPasswordKey3, hex);
     },
     [](D& d, std::string_view v, ReaderContext&) {
       d.Password(UnscramblePassword(v));
       return true;
     }},
    {"DBConnect", "", PROPERTY(kFieldDB, "Connect")},
    {"DBUnicode", "", PROPERTY(kFieldDB, "Unicode")},
};

// OMR questions carry their choices before the return values, every other kind after them.
constexpr uint8_t kChoicesFirst = kKindOMR;
constexpr uint8_t kChoicesLast = kEveryKind & ~kKindOMR;
constexpr SectionKey<Q> kChoices = {
    "Choices",
    "",
    nullptr,
    ValueForm::kCustom,
    kChoicesFirst,
    [](const Q& q) -> Written { return ItemLine(q.Choices(), kLabelCodes); },
    [](Q& q, std::string_view v, ReaderContext&) {
      ReadItems(*q.Choices(), v, kLabelCodes);
      return true;
    }};
constexpr SectionKey<Q> kCodes = {
    "Codes",
    "",
    nullptr,
    ValueForm::kCustom,
    kChoicesFirst,
    [](const Q& q) -> Written { return ItemLine(q.Codes(), kValueCodes); },
    [](Q& q, std::string_view v, ReaderContext&) {
      ReadItems(*q.Codes(), v, kValueCodes);
      return true;
    }};
constexpr SectionKey<Q> kMultsAllowed = {"MultsAllowed", "", PROPERTY(kQuestion, "MultsAllowed"),
                                         ValueForm::kValue, kChoicesFirst};
constexpr SectionKey<Q> Later(SectionKey<Q> key) {
  key.kinds = kChoicesLast;
  return key;
}

constexpr SectionKey<Q> kQuestionKeys[] = {
    {"QuestionText", "", PROPERTY(kQuestion, "QuestionText")},
    {"QuestionName", "", PROPERTY(kQuestion, "QuestionName"), ValueForm::kName},
    {"Key", "", PROPERTY(kQuestion, "Key")},
    {"Tag", "", PROPERTY(kQuestion, "Tag")},
    kChoices,
    kCodes,
    kMultsAllowed,
    {"BlanksFlag", "", PROPERTY(kQuestion, "BlanksFlag")},
    {"BlanksReturn", "", PROPERTY(kQuestion, "BlanksReturn")},
    {"DuplicateReturn", "", PROPERTY(kQuestion, "DuplicateReturn")},
    {"ErrorReturn", "", PROPERTY(kQuestion, "ErrorReturn")},
    {"MultsReturn", "", PROPERTY(kQuestion, "MultsReturn")},
    Later(kChoices),
    Later(kCodes),
    Later(kMultsAllowed),
    {"Discriminate", "", PROPERTY(kQuestion, "Discriminate")},
    {"NAChoice", "", PROPERTY(kQuestion, "NAChoice")},
    {"IDType", "", PROPERTY(kQuestion, "IDType")},
    {"IDValue", "", PROPERTY(kQuestion, "IDValue")},
    {"IDAdd", "", PROPERTY(kQuestion, "IDAdd")},
    {"Required", "", PROPERTY(kQuestion, "Required")},
    {"Tally", "", PROPERTY(kQuestion, "Tally")},
    {"Grade", "", PROPERTY(kQuestion, "Grade")},
    {"Correct", "", PROPERTY(kQuestion, "Correct")},
    {"Incorrect", "", PROPERTY(kQuestion, "Incorrect")},
    {"ExtraCredit", "", PROPERTY(kQuestion, "ExtraCredit")},
    {"NoResponse", "", PROPERTY(kQuestion, "NoResponse")},
    {"RespondentID", "", PROPERTY(kQuestion, "RespondentID")},
    {"Rubric", "", PROPERTY(kQuestion, "Rubric")},
    {"SubjectiveField", "", PROPERTY(kQuestion, "SubjectiveField")},
    {"SubjectivePoints", "", PROPERTY(kQuestion, "SubjectivePoints")},
    {"TestVersionID", "", PROPERTY(kQuestion, "TestVersionID")},
};

#undef PROPERTY

// Upper-case key and synonym to entry; the first entry of a key with two placements answers
// for both, as they read alike.
template <class O>
class KeyTable {
 public:
  explicit KeyTable(std::span<const SectionKey<O>> keys) {
    names_.reserve(keys.size() * 2);
    for (const SectionKey<O>& entry : keys) {
      if (entry.form == ValueForm::kInfo) continue;
      names_.push_back(text::ToUpper(entry.key));
      const auto [it, added] = index_.try_emplace(names_.back(), order_.size());
      if (!added) continue;
      order_.push_back({names_.back(), &entry});
      if (!entry.synonym.empty()) index_.try_emplace(entry.synonym, it->second);
    }
  }
  const SectionKey<O>* Find(std::string_view key, KeyHint* hint) const {
    if (key.size() > kLongestKey) return nullptr;
    if (hint && hint->next < order_.size() && IsKeyIgnoringCase(key, order_[hint->next].name))
      return order_[hint->next++].entry;
    const auto found = index_.find(text::ToUpper(key));
    if (found == index_.end()) return nullptr;
    if (hint) hint->next = found->second + 1;
    return order_[found->second].entry;
  }

 private:
  struct Named {
    std::string_view name;
    const SectionKey<O>* entry;
  };
  std::vector<S> names_;      // reserved up front: the views below point into it
  std::vector<Named> order_;  // each key once, in table order
  std::unordered_map<std::string_view, size_t> index_;  // key or synonym to its place in order_
};

const S& CodesOf(ValueForm form) {
  return form == ValueForm::kName ? kNameCodes : kNoCodes;
}

}  // namespace

uint8_t RegionKindOf(const clsXUNField& field) {
  switch (field.RecognitionType()) {
    case xunRecogTypeOMR:
      return kKindOMR;
    case xunRecogTypeOCR:
      return kKindOCR;
    case xunRecogTypeBarcode:
      return kKindBarcode;
    case xunRecogTypeImage:
      if (field.FieldType() == xunFieldTypeImageClip ||
          field.FieldType() == xunFieldTypeImageClipData)
        return kKindImageClip;
      if (field.FieldType() == xunFieldTypeImageDataEntry) return kKindImageEntry;
      return kKindImageOther;
    default:
      return kKindOther;
  }
}

std::span<const SectionKey<T>> FormKeys() {
  return kFormKeys;
}
std::span<const SectionKey<P>> PageKeys() {
  return kPageKeys;
}
std::span<const SectionKey<F>> FieldKeys() {
  return kFieldKeys;
}
std::span<const SectionKey<D>> DatabaseKeys() {
  return kDatabaseKeys;
}
std::span<const SectionKey<Q>> QuestionKeys() {
  return kQuestionKeys;
}

const SectionKey<T>* FindFormKey(std::string_view key, KeyHint* hint) {
  static const KeyTable<T> index(kFormKeys);
  return index.Find(key, hint);
}
const SectionKey<P>* FindPageKey(std::string_view key, KeyHint* hint) {
  static const KeyTable<P> index(kPageKeys);
  return index.Find(key, hint);
}
const SectionKey<F>* FindFieldKey(std::string_view key, KeyHint* hint) {
  static const KeyTable<F> index(kFieldKeys);
  return index.Find(key, hint);
}
const SectionKey<D>* FindDatabaseKey(std::string_view key, KeyHint* hint) {
  static const KeyTable<D> index(kDatabaseKeys);
  return index.Find(key, hint);
}
const SectionKey<Q>* FindQuestionKey(std::string_view key, KeyHint* hint) {
  static const KeyTable<Q> index(kQuestionKeys);
  return index.Find(key, hint);
}

template <class O>
bool ReadKeyValue(const SectionKey<O>& entry, O& object, std::string_view value,
                  ReaderContext& ctx) {
  if (entry.form == ValueForm::kCustom) return entry.read ? entry.read(object, value, ctx) : true;
  if (entry.form == ValueForm::kInfo || !entry.property) return true;
  const auto& access = entry.property->access;
  if (const auto* text = std::get_if<properties::Accessor<O, S>>(&access)) {
    text->set(object, FileText(value, entry.form != ValueForm::kTabsKept, CodesOf(entry.form)));
  } else if (const auto* flag = std::get_if<properties::Accessor<O, bool>>(&access)) {
    flag->set(object, FlagValue(value));
  } else if (const auto* int16 = std::get_if<properties::Accessor<O, int16_t>>(&access)) {
    if (entry.form == ValueForm::kFlag)
      int16->set(object, FlagValue(value) ? int16_t{-1} : int16_t{0});
    else
      int16->set(object, Int16Value(value));
  } else if (const auto* int32 = std::get_if<properties::Accessor<O, int32_t>>(&access)) {
    int32->set(object, Int32Value(value));
  } else if (const auto* single = std::get_if<properties::Accessor<O, float>>(&access)) {
    single->set(object, SingleValue(value));
  } else if (const auto* number = std::get_if<properties::Accessor<O, double>>(&access)) {
    number->set(object, NumberValue(value));
  }
  return true;
}

template <class O>
void WriteKeys(TemplateText& out, std::span<const SectionKey<O>> keys, const O& object,
               uint8_t kind) {
  for (const SectionKey<O>& entry : keys) {
    if (!(entry.kinds & kind)) continue;
    if (entry.write) {
      if (const Written written = entry.write(object)) out.Raw(entry.key, *written);
      continue;
    }
    std::visit(
        [&](const auto& accessor) {
          const auto held = accessor.get(object);
          using V = std::remove_cvref_t<decltype(held)>;
          if constexpr (std::is_same_v<V, S>) {
            out.Raw(entry.key,
                    FileText(held, entry.form != ValueForm::kTabsKept, CodesOf(entry.form)));
          } else if constexpr (std::is_same_v<V, bool>) {
            out.Bool(entry.key, held);
          } else if constexpr (std::is_integral_v<V>) {
            out.Int(entry.key, held);  // a flag held as a number too: written as held
          } else {
            out.Number(entry.key, held);
          }
        },
        entry.property->access);
  }
}

template bool ReadKeyValue(const SectionKey<T>&, T&, std::string_view, ReaderContext&);
template bool ReadKeyValue(const SectionKey<P>&, P&, std::string_view, ReaderContext&);
template bool ReadKeyValue(const SectionKey<F>&, F&, std::string_view, ReaderContext&);
template bool ReadKeyValue(const SectionKey<D>&, D&, std::string_view, ReaderContext&);
template bool ReadKeyValue(const SectionKey<Q>&, Q&, std::string_view, ReaderContext&);
template void WriteKeys(TemplateText&, std::span<const SectionKey<T>>, const T&, uint8_t);
template void WriteKeys(TemplateText&, std::span<const SectionKey<P>>, const P&, uint8_t);
template void WriteKeys(TemplateText&, std::span<const SectionKey<F>>, const F&, uint8_t);
template void WriteKeys(TemplateText&, std::span<const SectionKey<D>>, const D&, uint8_t);
template void WriteKeys(TemplateText&, std::span<const SectionKey<Q>>, const Q&, uint8_t);

}  // namespace xun::basTemplate::detail
