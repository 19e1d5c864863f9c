#include "xun/templatefile/write_sections.h"

#include <memory>

#include "xun/model/page.h"
#include "xun/model/question.h"
#include "xun/model/template.h"
#include "xun/model/timing_marks.h"
#include "xun/support/value_helpers.h"
#include "xun/templatefile/bas_template.h"
#include "xun/templatefile/number_text.h"
#include "xun/templatefile/password_keys.h"
#include "xun/templatefile/section_reader.h"

namespace xun::basTemplate::detail {
namespace {

// The code lists as strings once, not once per value written.
const std::string kNoCodes;
const std::string kNameCodes = kIllegalNameCharacters;
const std::string kLabelCodes = kIllegalLabelCharacters;
const std::string kValueCodes = kIllegalValueCharacters;

std::string AttributeLine(const DictionaryPtr& attributes) {
  if (!attributes) return {};
  // Attribute items may hold line breaks; the whole line is cleaned, tabs kept as separators.
  return CleanTemplateValues(basPublic::DictionaryToString(attributes, "\t", "|", false), false,
                             "");
}

// Each item cleaned on its own (tabs too, since a tab separates the items).
std::string ItemLine(const std::shared_ptr<clsXUNStringItems>& items, const std::string& strip) {
  if (!items) return {};
  std::string line;
  bool first = true;
  for (const std::string& item : *items) {
    if (!first) line += '\t';
    first = false;
    line += CleanText(item, true, strip);
  }
  return line;
}

bool IsOMR(const clsXUNField& field) {
  return field.RecognitionType() == xunRecogTypeOMR;
}
bool IsImage(const clsXUNField& field) {
  return field.RecognitionType() == xunRecogTypeImage;
}
bool IsBarcode(const clsXUNField& field) {
  return field.RecognitionType() == xunRecogTypeBarcode;
}
bool IsEntry(const clsXUNField& field) {
  return IsBarcode(field) || field.RecognitionType() == xunRecogTypeOCR;
}

void WriteDatabaseKeys(TemplateText& out, const clsXUNFieldDB& db) {
  out.Text("DBName", db.Name());
  out.Text("DBCatalog", db.Catalog());
  out.Text("DBTable", db.Table());
  out.Text("DBField", db.LookupField());
  out.Text("DBReplace", db.ReplaceField());
  out.Raw("DBReturn", ItemLine(db.ReturnFields(), ""));
  out.Int("DBType", db.DBType());
  out.Bool("DBDSNBased", db.DSNBased());
  out.Bool("DBDirectoryBased", db.DirectoryBased());
  out.Text("DBDSNName", db.DSNName());
  out.Text("DBUser", db.User());
  bool hex = false;
  // Stored as scrambled (upper-case hex) so the password never stands in the file in clear.
  out.Raw("DBPassword",
          basPublic::Encrypt(db.Password(), kPasswordKey1, kPasswordKey2, kPasswordKey3, hex));
  out.Text("DBConnect", db.Connect());
  out.Bool("DBUnicode", db.Unicode());
}

}  // namespace

void TemplateText::Section(std::string_view header) {
  text_ += header;
  text_ += "\r\n";
}

void TemplateText::Raw(std::string_view key, std::string_view value) {
  text_ += key;
  text_ += '=';
  text_ += value;
  text_ += "\r\n";
}

void TemplateText::Text(std::string_view key, const std::string& value) {
  Raw(key, CleanText(value, false, kNoCodes));
}

void TemplateText::Bool(std::string_view key, bool value) {
  Raw(key, value ? "-1" : "0");
}

void TemplateText::Int(std::string_view key, int32_t value) {
  Raw(key, std::to_string(value));
}

void TemplateText::Number(std::string_view key, double value) {
  Raw(key, ShortestDecimal(value));
}

void TemplateText::Number(std::string_view key, float value) {
  Raw(key, ShortestDecimal(value));
}

void WriteFormSection(TemplateText& out, const clsXUNTemplate& form, bool valid) {
  out.Section("[Form]");
  out.Raw("Attributes", AttributeLine(form.Attributes()));
  out.Int("Columns", form.Columns());
  out.Number("ColumnWidth", form.ColumnWidth());
  out.Text("Description", form.Description());
  out.Bool("Duplex", form.Duplex());
  out.Int("HeaderCount", form.HeaderCount());
  out.Int("HeaderItemCount", form.HeaderItemCount());
  out.Int("HeaderPageCount", form.HeaderPageCount());
  out.Text("Name", form.Name());
  out.Int("NumPages", form.NumPages());
  out.Int("NumFields", form.NumFields());
  out.Int("NumItems", form.NumItems());
  out.Int("Orientation", form.Orientation());
  out.Number("PageHeight", form.PageHeight());
  out.Number("PageWidth", form.PageWidth());
  out.Text("RDDName", form.RDDName());
  out.Int("ReadType", form.ReadType());
  out.Number("RowBottomMargin", form.RowBottomMargin());
  out.Number("RowTopMargin", form.RowTopMargin());
  out.Bool("SelfScore", form.SelfScore());
  out.Text("Tag", form.Tag());
  out.Raw("Version", "8");
  out.Raw("CompatibleVersion", "8");
  out.Bool("Valid", valid);
}

void WritePageSection(TemplateText& out, const clsXUNPage& page) {
  out.Section("[Page]");
  out.Raw("Attributes", AttributeLine(page.Attributes()));
  // A page with width 0 takes the template's: written so, it reads back as it was used (a page
  // read with 0 would take the template's width as it is added, so a save would not be stable).
  const float own_width = page.ColumnWidth();
  const std::shared_ptr<clsXUNTemplate> owner = own_width == 0 ? page.Template() : nullptr;
  out.Number("ColumnWidth", owner ? owner->ColumnWidth() : own_width);
  out.Int("DropOutColor", page.DropOutColor());
  out.Int("DropOutThreshold", page.DropOutThreshold());
  out.Text("Key", page.Key());
  out.Int("LargeField", page.LargeField());
  out.Int("NumFields", page.NumFields());
  out.Int("NumItems", page.NumItems());
  out.Text("Tag", page.Tag());
  out.Raw("TimingMarks", page.TimingMarks() ? page.TimingMarks()->AsString("\t", ",") : "");
  out.Int("WeightedRotate", page.WeightedRotate());
  out.Int("XDPI", page.XDPI());
  out.Int("YDPI", page.YDPI());
  out.Int("ImageWidth", page.ImageWidth());
  out.Int("ImageHeight", page.ImageHeight());
  out.Int("FilledPixels", page.FilledPixels());
}

void WriteLinkSection(TemplateText& out, int32_t linked_fields) {
  out.Section("[Link]");
  out.Int("LinkedFields", linked_fields);
}

// The by-kind groups and which regions write them are listed in docs/template-file.md.
void WriteFieldSection(TemplateText& out, const clsXUNField& field) {
  const std::string extra = field.Extra() ? field.Extra()->AsString("\t") : "";
  out.Section("[Field]");
  out.Raw("Attributes", AttributeLine(field.Attributes()));
  out.Raw("Name", CleanText(field.FieldName(), true, kNameCodes));
  out.Int("NumItems", field.Questions() ? field.Questions()->Count() : 0);
  out.Int("RecogType", field.RecognitionType());
  out.Int("FieldType", field.FieldType());
  out.Int("DataType", field.DataType());
  out.Int("Orient", field.Orient());
  out.Bool("Read", field.Read());
  out.Text("Key", field.Key());
  out.Text("Tag", field.Tag());
  if (!IsEntry(field)) out.Raw("Extra", extra);
  if (IsOMR(field)) {
    out.Int("ColGap", field.ColGap());
    out.Int("NumCols", field.NumCols());
    out.Int("NumRows", field.NumRows());
    out.Int("RowGap", field.RowGap());
    out.Int("StartCol", field.StartCol());
    out.Int("StartRow", field.StartRow());
    out.Int("Threshold", field.Threshold());
    out.Text("Pattern", field.Pattern());
  }
  const int32_t type = field.FieldType();
  if (IsImage(field) && type == xunFieldTypeImageDataEntry) {
    out.Text("LinkValue", field.ImageLinkValue());
    out.Text("LinkQuestionKey", field.ImageLinkQuestionKey());
    out.Bool("ImageFillPrompt", field.ImageFillPrompt());
  }
  if (IsImage(field) && type >= xunFieldTypeImageClip && type <= xunFieldTypeImageDataEntry) {
    out.Text("ImageClipFile", field.ImageClipFile());
    out.Int("ImageClipType", field.ImageClipType());
    out.Int("ImageClipCompression", field.ImageClipCompression());
    out.Bool("ImageClipAddColumn", field.ImageClipAddColumn());
  }
  if (IsEntry(field)) {
    out.Text("DefaultFill", field.DefaultFill());
    out.Bool("AutoIncrement", field.AutoIncrement());
    out.Bool("AutoIncrementSpansTemplates", field.AutoIncrementSpansTemplates());
    out.Bool("AutoDetect", field.AutoDetect());
    out.Raw("Extra", extra);
    out.Int("Threshold", field.Threshold());
    out.Int("NumCols", field.NumCols());
  }
  if (IsBarcode(field)) {
    // The escape tokens already keep line breaks out; cleaning would trim a blank delimiter.
    out.Raw("BarcodeDelimiter", GetBarcodeDelimiter(field));
    out.Int("BarcodeDistance", field.BarcodeDistance());
    out.Int("BarcodeLength", field.BarcodeLength());
    // Threshold was written with the entry keys above: once per region is enough.
  }
  out.Int("Left", field.Left());
  out.Int("Right", field.Right());
  out.Int("Top", field.Top());
  out.Int("Bottom", field.Bottom());
  if (field.DBVerify() && field.DB()) WriteDatabaseKeys(out, *field.DB());
}

void WriteQuestionSection(TemplateText& out, const clsXUNQuestion& question,
                          const clsXUNField& field) {
  // OMR questions carry their choices before the return values, every other kind after them.
  const bool choices_first = IsOMR(field);
  const auto choices = [&] {
    out.Raw("Choices", ItemLine(question.Choices(), kLabelCodes));
    out.Raw("Codes", ItemLine(question.Codes(), kValueCodes));
    out.Int("MultsAllowed", question.MultsAllowed());
  };
  out.Section("[Question]");
  out.Text("QuestionText", question.QuestionText());
  out.Raw("QuestionName", CleanText(question.QuestionName(), true, kNameCodes));
  out.Text("Key", question.Key());
  out.Text("Tag", question.Tag());
  if (choices_first) choices();
  out.Int("BlanksFlag", question.BlanksFlag());
  out.Text("BlanksReturn", question.BlanksReturn());
  out.Text("DuplicateReturn", question.DuplicateReturn());
  out.Text("ErrorReturn", question.ErrorReturn());
  out.Text("MultsReturn", question.MultsReturn());
  if (!choices_first) choices();
  out.Bool("Discriminate", question.Discriminate());
  out.Int("NAChoice", question.NAChoice());
  out.Int("IDType", question.IDType());
  out.Text("IDValue", question.IDValue());
  out.Bool("IDAdd", question.IDAdd());
  out.Bool("Required", question.Required());
  out.Bool("Tally", question.Tally());
  out.Bool("Grade", question.Grade());
  out.Number("Correct", question.Correct());
  out.Number("Incorrect", question.Incorrect());
  out.Bool("ExtraCredit", question.ExtraCredit());
  out.Number("NoResponse", question.NoResponse());
  out.Bool("RespondentID", question.RespondentID());
  out.Bool("Rubric", question.Rubric());
  out.Bool("SubjectiveField", question.SubjectiveField());
  out.Number("SubjectivePoints", question.SubjectivePoints());
  out.Bool("TestVersionID", question.TestVersionID());
}

}  // namespace xun::basTemplate::detail
