// The stored properties of each object of the tree, listed once: name, value type, getter and
// setter. The template file's section tables (xun/templatefile/section_keys.h) and the
// xuntemplate tool's JSON document are both built on these lists, so a property cannot be known
// to one and forgotten by the other.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "xun/model/field.h"
#include "xun/model/field_db.h"
#include "xun/model/page.h"
#include "xun/model/question.h"
#include "xun/model/template.h"

namespace xun::properties {

template <class O, class T>
struct Accessor {
  T (*get)(const O&);
  void (*set)(O&, T);
};

// Enumerations are held as whole numbers of the width the template file reads them with.
template <class O>
using AnyAccessor = std::variant<Accessor<O, std::string>, Accessor<O, bool>, Accessor<O, int16_t>,
                                 Accessor<O, int32_t>, Accessor<O, float>, Accessor<O, double>>;

template <class O>
struct Property {
  std::string_view name;
  AnyAccessor<O> access;
};

// clang-format off
#define XUN_PROPERTY(O, T, name)                                           \
  Property<O>{#name, Accessor<O, T>{[](const O& o) -> T { return o.name(); }, \
                                    [](O& o, T v) { o.name(std::move(v)); }}}
#define XUN_ENUM_PROPERTY(O, T, E, name)                                                  \
  Property<O>{#name, Accessor<O, T>{[](const O& o) -> T { return static_cast<T>(o.name()); }, \
                                    [](O& o, T v) { o.name(static_cast<E>(v)); }}}
// clang-format on

// In the order of the tool's JSON document, which is also the order a build sets them in:
// RecognitionType comes before Threshold because setting OCR also sets the threshold.
inline constexpr Property<clsXUNTemplate> kTemplate[] = {
    XUN_PROPERTY(clsXUNTemplate, std::string, Name),
    XUN_PROPERTY(clsXUNTemplate, std::string, Description),
    XUN_PROPERTY(clsXUNTemplate, std::string, Manufacturer),
    XUN_PROPERTY(clsXUNTemplate, std::string, RDDName),
    XUN_PROPERTY(clsXUNTemplate, std::string, Tag),
    XUN_PROPERTY(clsXUNTemplate, double, PageWidth),
    XUN_PROPERTY(clsXUNTemplate, double, PageHeight),
    XUN_ENUM_PROPERTY(clsXUNTemplate, int16_t, xunOrientationType, Orientation),
    XUN_ENUM_PROPERTY(clsXUNTemplate, int16_t, xunTemplateReadType, ReadType),
    XUN_PROPERTY(clsXUNTemplate, bool, Duplex),
    XUN_PROPERTY(clsXUNTemplate, bool, SelfScore),
    XUN_PROPERTY(clsXUNTemplate, float, ColumnWidth),
    XUN_PROPERTY(clsXUNTemplate, int16_t, Columns),
    XUN_PROPERTY(clsXUNTemplate, float, RowTopMargin),
    XUN_PROPERTY(clsXUNTemplate, float, RowBottomMargin),
    XUN_PROPERTY(clsXUNTemplate, int16_t, HeaderCount),
    XUN_PROPERTY(clsXUNTemplate, int16_t, HeaderPageCount),
    XUN_PROPERTY(clsXUNTemplate, int16_t, HeaderItemCount),
};

inline constexpr Property<clsXUNPage> kPage[] = {
    XUN_PROPERTY(clsXUNPage, std::string, Key),
    XUN_PROPERTY(clsXUNPage, std::string, Tag),
    XUN_PROPERTY(clsXUNPage, float, ColumnWidth),
    XUN_PROPERTY(clsXUNPage, int16_t, XDPI),
    XUN_PROPERTY(clsXUNPage, int16_t, YDPI),
    XUN_PROPERTY(clsXUNPage, int16_t, ImageWidth),
    XUN_PROPERTY(clsXUNPage, int16_t, ImageHeight),
    XUN_PROPERTY(clsXUNPage, int16_t, DropOutThreshold),
    XUN_ENUM_PROPERTY(clsXUNPage, int32_t, xunTemplateDropOutColor, DropOutColor),
    XUN_PROPERTY(clsXUNPage, int16_t, WeightedRotate),
    XUN_PROPERTY(clsXUNPage, int32_t, FilledPixels),
};

inline constexpr Property<clsXUNField> kField[] = {
    XUN_PROPERTY(clsXUNField, std::string, Key),
    XUN_PROPERTY(clsXUNField, std::string, FieldName),
    XUN_PROPERTY(clsXUNField, std::string, Tag),
    XUN_ENUM_PROPERTY(clsXUNField, int16_t, xunRecogType, RecognitionType),
    XUN_ENUM_PROPERTY(clsXUNField, int16_t, xunFieldType, FieldType),
    XUN_ENUM_PROPERTY(clsXUNField, int16_t, xunDataType, DataType),
    XUN_ENUM_PROPERTY(clsXUNField, int16_t, xunOrientationType, Orient),
    XUN_PROPERTY(clsXUNField, bool, Read),
    XUN_PROPERTY(clsXUNField, int16_t, Left),
    XUN_PROPERTY(clsXUNField, int16_t, Top),
    XUN_PROPERTY(clsXUNField, int16_t, Right),
    XUN_PROPERTY(clsXUNField, int16_t, Bottom),
    XUN_PROPERTY(clsXUNField, int16_t, StartRow),
    XUN_PROPERTY(clsXUNField, int16_t, RowGap),
    XUN_PROPERTY(clsXUNField, int16_t, StartCol),
    XUN_PROPERTY(clsXUNField, int16_t, ColGap),
    XUN_PROPERTY(clsXUNField, int16_t, NumRows),
    XUN_PROPERTY(clsXUNField, int16_t, NumCols),
    XUN_PROPERTY(clsXUNField, int16_t, Threshold),
    XUN_PROPERTY(clsXUNField, std::string, Pattern),
    XUN_PROPERTY(clsXUNField, int16_t, LinkGroup),
    XUN_PROPERTY(clsXUNField, bool, LinkStart),
    XUN_ENUM_PROPERTY(clsXUNField, int16_t, xunImageClipType, ImageClipType),
    XUN_ENUM_PROPERTY(clsXUNField, int16_t, xunImageClipCompression, ImageClipCompression),
    XUN_PROPERTY(clsXUNField, std::string, ImageClipFile),
    XUN_PROPERTY(clsXUNField, bool, ImageClipAddColumn),
    XUN_PROPERTY(clsXUNField, bool, ImageFillPrompt),
    XUN_PROPERTY(clsXUNField, std::string, ImageLinkValue),
    XUN_PROPERTY(clsXUNField, std::string, ImageLinkQuestionKey),
    XUN_PROPERTY(clsXUNField, std::string, BarcodeDelimiter),
    XUN_PROPERTY(clsXUNField, int16_t, BarcodeDistance),
    XUN_PROPERTY(clsXUNField, int16_t, BarcodeLength),
    XUN_PROPERTY(clsXUNField, bool, AutoDetect),
    XUN_PROPERTY(clsXUNField, bool, AutoIncrement),
    XUN_PROPERTY(clsXUNField, bool, AutoIncrementSpansTemplates),
    XUN_PROPERTY(clsXUNField, std::string, DefaultFill),
};

inline constexpr Property<clsXUNFieldDB> kFieldDB[] = {
    XUN_PROPERTY(clsXUNFieldDB, std::string, Name),
    XUN_PROPERTY(clsXUNFieldDB, std::string, Catalog),
    XUN_PROPERTY(clsXUNFieldDB, std::string, Table),
    XUN_PROPERTY(clsXUNFieldDB, std::string, LookupField),
    XUN_PROPERTY(clsXUNFieldDB, std::string, ReplaceField),
    XUN_PROPERTY(clsXUNFieldDB, int16_t, DBType),
    XUN_PROPERTY(clsXUNFieldDB, std::string, Connect),
    XUN_PROPERTY(clsXUNFieldDB, bool, DirectoryBased),
    XUN_PROPERTY(clsXUNFieldDB, bool, DSNBased),
    XUN_PROPERTY(clsXUNFieldDB, std::string, DSNName),
    XUN_PROPERTY(clsXUNFieldDB, std::string, User),
    XUN_PROPERTY(clsXUNFieldDB, std::string, Password),
    XUN_PROPERTY(clsXUNFieldDB, bool, Valid),
    XUN_PROPERTY(clsXUNFieldDB, bool, Unicode),
};

inline constexpr Property<clsXUNQuestion> kQuestion[] = {
    XUN_PROPERTY(clsXUNQuestion, std::string, Key),
    XUN_PROPERTY(clsXUNQuestion, std::string, QuestionName),
    XUN_PROPERTY(clsXUNQuestion, std::string, QuestionText),
    XUN_PROPERTY(clsXUNQuestion, std::string, Tag),
    XUN_ENUM_PROPERTY(clsXUNQuestion, int16_t, xunIDType, IDType),
    XUN_PROPERTY(clsXUNQuestion, std::string, IDValue),
    XUN_PROPERTY(clsXUNQuestion, bool, IDAdd),
    XUN_PROPERTY(clsXUNQuestion, bool, TestVersionID),
    XUN_PROPERTY(clsXUNQuestion, bool, RespondentID),
    XUN_PROPERTY(clsXUNQuestion, bool, Required),
    XUN_PROPERTY(clsXUNQuestion, bool, Discriminate),
    XUN_PROPERTY(clsXUNQuestion, bool, Tally),
    XUN_PROPERTY(clsXUNQuestion, int16_t, MultsAllowed),
    XUN_PROPERTY(clsXUNQuestion, int16_t, NAChoice),
    XUN_PROPERTY(clsXUNQuestion, std::string, MultsReturn),
    XUN_PROPERTY(clsXUNQuestion, std::string, BlanksReturn),
    XUN_ENUM_PROPERTY(clsXUNQuestion, int16_t, xunBlanksFlag, BlanksFlag),
    XUN_PROPERTY(clsXUNQuestion, std::string, DuplicateReturn),
    XUN_PROPERTY(clsXUNQuestion, std::string, ErrorReturn),
    XUN_PROPERTY(clsXUNQuestion, bool, Grade),
    XUN_PROPERTY(clsXUNQuestion, double, Correct),
    XUN_PROPERTY(clsXUNQuestion, double, Incorrect),
    XUN_PROPERTY(clsXUNQuestion, double, NoResponse),
    XUN_PROPERTY(clsXUNQuestion, bool, ExtraCredit),
    XUN_PROPERTY(clsXUNQuestion, bool, Rubric),
    XUN_PROPERTY(clsXUNQuestion, bool, SubjectiveField),
    XUN_PROPERTY(clsXUNQuestion, double, SubjectivePoints),
};

#undef XUN_PROPERTY
#undef XUN_ENUM_PROPERTY

// The property of `table` named `name`; a name that is not there does not compile where the
// lookup is constant-evaluated (the section tables look their properties up so).
template <class O, size_t N>
constexpr const Property<O>* Find(const Property<O> (&table)[N], std::string_view name) {
  for (const Property<O>& property : table)
    if (property.name == name) return &property;
  throw "no such property";  // not a constant expression: a misspelt name fails to compile
}

}  // namespace xun::properties
