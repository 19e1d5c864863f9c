#include "xun/templatefile/write_sections.h"

#include <memory>

#include "xun/model/field.h"
#include "xun/templatefile/number_text.h"
#include "xun/templatefile/section_keys.h"

namespace xun::basTemplate::detail {

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

void WriteFormSection(TemplateText& out, const clsXUNTemplate& form) {
  out.Section("[Form]");
  WriteKeys(out, FormKeys(), form);
}

void WritePageSection(TemplateText& out, const clsXUNPage& page) {
  out.Section("[Page]");
  WriteKeys(out, PageKeys(), page);
}

void WriteLinkSection(TemplateText& out, int32_t linked_fields) {
  out.Section("[Link]");
  out.Int("LinkedFields", linked_fields);
}

void WriteFieldSection(TemplateText& out, const clsXUNField& field) {
  out.Section("[Field]");
  WriteKeys(out, FieldKeys(), field, RegionKindOf(field));
  if (field.DBVerify() && field.DB()) WriteKeys(out, DatabaseKeys(), *field.DB());
}

void WriteQuestionSection(TemplateText& out, const clsXUNQuestion& question,
                          const clsXUNField& field) {
  out.Section("[Question]");
  WriteKeys(out, QuestionKeys(), question, RegionKindOf(field));
}

}  // namespace xun::basTemplate::detail
