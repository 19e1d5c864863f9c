// One list of the stored properties of each object, walked by the JSON dump (which reads each
// value) and by the build (which sets it), so the two cannot drift apart. The order is the order
// of the dump and of the setting; RecognitionType comes before Threshold because setting OCR
// also sets the threshold.
#pragma once

#include <cstdint>
#include <string>

#include "xun/xun.h"

namespace xuntool::props {

// A visitor offers Text, Bool, Int16, Int32, Float and Double, each called with the key, the
// current value and a setter.
#define XUN_PROP(kind, name, object, type) \
  v.kind(#name, object.name(), [&object](type value) { object.name(value); })
#define XUN_ENUM(name, object, type) \
  v.Int32(#name, object.name(), [&object](int32_t value) { object.name(static_cast<type>(value)); })

template <class V>
void Template(V& v, xun::clsXUNTemplate& t) {
  XUN_PROP(Text, Name, t, std::string);
  XUN_PROP(Text, Description, t, std::string);
  XUN_PROP(Text, Manufacturer, t, std::string);
  XUN_PROP(Text, RDDName, t, std::string);
  XUN_PROP(Text, Tag, t, std::string);
  XUN_PROP(Double, PageWidth, t, double);
  XUN_PROP(Double, PageHeight, t, double);
  XUN_ENUM(Orientation, t, xun::xunOrientationType);
  XUN_ENUM(ReadType, t, xun::xunTemplateReadType);
  XUN_PROP(Bool, Duplex, t, bool);
  XUN_PROP(Bool, SelfScore, t, bool);
  XUN_PROP(Float, ColumnWidth, t, float);
  XUN_PROP(Int16, Columns, t, int16_t);
  XUN_PROP(Float, RowTopMargin, t, float);
  XUN_PROP(Float, RowBottomMargin, t, float);
  XUN_PROP(Int16, HeaderCount, t, int16_t);
  XUN_PROP(Int16, HeaderPageCount, t, int16_t);
  XUN_PROP(Int16, HeaderItemCount, t, int16_t);
}

// Computed or set only by reading and saving: dumped for people, ignored by the build.
template <class V>
void TemplateReadOnly(V& v, const xun::clsXUNTemplate& t) {
  v.ReadOnly("Version", t.Version());
  v.ReadOnly("CompatibleVersion", t.CompatibleVersion());
  v.ReadOnly("Valid", t.Valid());
  v.ReadOnly("Editable", t.Editable());
  v.ReadOnly("NumPages", t.NumPages());
  v.ReadOnly("NumFields", t.NumFields());
  v.ReadOnly("NumQuestions", t.NumQuestions());
  v.ReadOnly("NumItems", t.NumItems());
  v.ReadOnly("NumGradedItems", t.NumGradedItems());
  v.ReadOnly("NumSubjectiveItems", t.NumSubjectiveItems());
  v.ReadOnly("NumDBVerify", t.NumDBVerify());
}

template <class V>
void Page(V& v, xun::clsXUNPage& p) {
  XUN_PROP(Text, Key, p, std::string);
  XUN_PROP(Text, Tag, p, std::string);
  XUN_PROP(Float, ColumnWidth, p, float);
  XUN_PROP(Int16, XDPI, p, int16_t);
  XUN_PROP(Int16, YDPI, p, int16_t);
  XUN_PROP(Int16, ImageWidth, p, int16_t);
  XUN_PROP(Int16, ImageHeight, p, int16_t);
  XUN_PROP(Int16, DropOutThreshold, p, int16_t);
  XUN_ENUM(DropOutColor, p, xun::xunTemplateDropOutColor);
  XUN_PROP(Int16, WeightedRotate, p, int16_t);
  XUN_PROP(Int32, FilledPixels, p, int32_t);
}

template <class V>
void PageReadOnly(V& v, const xun::clsXUNPage& p) {
  v.ReadOnly("NumFields", p.NumFields());
  v.ReadOnly("NumQuestions", p.NumQuestions());
  v.ReadOnly("NumItems", p.NumItems());
  v.ReadOnly("NumGradedItems", p.NumGradedItems());
  v.ReadOnly("NumSubjectiveItems", p.NumSubjectiveItems());
  v.ReadOnly("NumTimingMarks", p.NumTimingMarks());
  v.ReadOnly("LargeField", p.LargeField());
}

template <class V>
void Field(V& v, xun::clsXUNField& f) {
  XUN_PROP(Text, Key, f, std::string);
  XUN_PROP(Text, FieldName, f, std::string);
  XUN_PROP(Text, Tag, f, std::string);
  XUN_ENUM(RecognitionType, f, xun::xunRecogType);
  XUN_ENUM(FieldType, f, xun::xunFieldType);
  XUN_ENUM(DataType, f, xun::xunDataType);
  XUN_ENUM(Orient, f, xun::xunOrientationType);
  XUN_PROP(Bool, Read, f, bool);
  XUN_PROP(Int16, Left, f, int16_t);
  XUN_PROP(Int16, Top, f, int16_t);
  XUN_PROP(Int16, Right, f, int16_t);
  XUN_PROP(Int16, Bottom, f, int16_t);
  XUN_PROP(Int16, StartRow, f, int16_t);
  XUN_PROP(Int16, RowGap, f, int16_t);
  XUN_PROP(Int16, StartCol, f, int16_t);
  XUN_PROP(Int16, ColGap, f, int16_t);
  XUN_PROP(Int16, NumRows, f, int16_t);
  XUN_PROP(Int16, NumCols, f, int16_t);
  XUN_PROP(Int16, Threshold, f, int16_t);
  XUN_PROP(Text, Pattern, f, std::string);
  XUN_PROP(Int16, LinkGroup, f, int16_t);
  XUN_PROP(Bool, LinkStart, f, bool);
  XUN_ENUM(ImageClipType, f, xun::xunImageClipType);
  XUN_ENUM(ImageClipCompression, f, xun::xunImageClipCompression);
  XUN_PROP(Text, ImageClipFile, f, std::string);
  XUN_PROP(Bool, ImageClipAddColumn, f, bool);
  XUN_PROP(Bool, ImageFillPrompt, f, bool);
  XUN_PROP(Text, ImageLinkValue, f, std::string);
  XUN_PROP(Text, ImageLinkQuestionKey, f, std::string);
  XUN_PROP(Text, BarcodeDelimiter, f, std::string);
  XUN_PROP(Int16, BarcodeDistance, f, int16_t);
  XUN_PROP(Int16, BarcodeLength, f, int16_t);
  XUN_PROP(Bool, AutoDetect, f, bool);
  XUN_PROP(Bool, AutoIncrement, f, bool);
  XUN_PROP(Bool, AutoIncrementSpansTemplates, f, bool);
  XUN_PROP(Text, DefaultFill, f, std::string);
}

template <class V>
void FieldReadOnly(V& v, const xun::clsXUNField& f) {
  v.ReadOnly("NumItems", f.NumItems());
  v.ReadOnly("NumMarks", f.NumMarks());
  v.ReadOnly("DBVerify", f.DBVerify());
}

template <class V>
void FieldDB(V& v, xun::clsXUNFieldDB& d) {
  XUN_PROP(Text, Name, d, std::string);
  XUN_PROP(Text, Catalog, d, std::string);
  XUN_PROP(Text, Table, d, std::string);
  XUN_PROP(Text, LookupField, d, std::string);
  XUN_PROP(Text, ReplaceField, d, std::string);
  XUN_PROP(Int16, DBType, d, int16_t);
  XUN_PROP(Text, Connect, d, std::string);
  XUN_PROP(Bool, DirectoryBased, d, bool);
  XUN_PROP(Bool, DSNBased, d, bool);
  XUN_PROP(Text, DSNName, d, std::string);
  XUN_PROP(Text, User, d, std::string);
  XUN_PROP(Text, Password, d, std::string);
  XUN_PROP(Bool, Valid, d, bool);
  XUN_PROP(Bool, Unicode, d, bool);
}

template <class V>
void Question(V& v, xun::clsXUNQuestion& q) {
  XUN_PROP(Text, Key, q, std::string);
  XUN_PROP(Text, QuestionName, q, std::string);
  XUN_PROP(Text, QuestionText, q, std::string);
  XUN_PROP(Text, Tag, q, std::string);
  XUN_ENUM(IDType, q, xun::xunIDType);
  XUN_PROP(Text, IDValue, q, std::string);
  XUN_PROP(Bool, IDAdd, q, bool);
  XUN_PROP(Bool, TestVersionID, q, bool);
  XUN_PROP(Bool, RespondentID, q, bool);
  XUN_PROP(Bool, Required, q, bool);
  XUN_PROP(Bool, Discriminate, q, bool);
  XUN_PROP(Bool, Tally, q, bool);
  XUN_PROP(Int16, MultsAllowed, q, int16_t);
  XUN_PROP(Int16, NAChoice, q, int16_t);
  XUN_PROP(Text, MultsReturn, q, std::string);
  XUN_PROP(Text, BlanksReturn, q, std::string);
  XUN_ENUM(BlanksFlag, q, xun::xunBlanksFlag);
  XUN_PROP(Text, DuplicateReturn, q, std::string);
  XUN_PROP(Text, ErrorReturn, q, std::string);
  XUN_PROP(Bool, Grade, q, bool);
  XUN_PROP(Double, Correct, q, double);
  XUN_PROP(Double, Incorrect, q, double);
  XUN_PROP(Double, NoResponse, q, double);
  XUN_PROP(Bool, ExtraCredit, q, bool);
  XUN_PROP(Bool, Rubric, q, bool);
  XUN_PROP(Bool, SubjectiveField, q, bool);
  XUN_PROP(Double, SubjectivePoints, q, double);
}

template <class V>
void QuestionReadOnly(V& v, xun::clsXUNQuestion& q) {
  v.ReadOnly("Schema", q.Schema(true));
  v.ReadOnly("NAChoiceAll", q.NAChoiceAll());
}

#undef XUN_PROP
#undef XUN_ENUM

}  // namespace xuntool::props
