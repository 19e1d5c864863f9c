// The [Question] section: a new question at the end of the current region.
#include <optional>
#include <string>

#include "xun/model/template.h"
#include "xun/support/runtime_error.h"
#include "xun/templatefile/bas_template.h"
#include "xun/templatefile/section_keys.h"
#include "xun/templatefile/template_reader.h"

namespace xun::basTemplate {
namespace detail {
namespace {

constexpr const char* kQuestionErrorText =
    "An error occurred reading the [Question] section of the template file. One or more question "
    "parameters are missing or invalid.";

// Older files keep these on the region; the question's own key wins.
void TakeRegionValue(clsXUNQuestion& q, const std::optional<std::string>& region_value, bool own,
                     const char* key, ReaderContext& ctx) {
  if (!region_value || own) return;
  if (const SectionKey<clsXUNQuestion>* entry = FindQuestionKey(key))
    ReadKeyValue(*entry, q, *region_value, ctx);
}

}  // namespace

bool ReadQuestion(ReaderContext& ctx) {
  ctx.section_line = ctx.cursor.LineNumber();
  const auto pages = ctx.tmpl.Pages();
  const std::shared_ptr<clsXUNPage> page =
      pages && pages->Count() > 0 ? pages->Item(pages->Count()) : nullptr;
  const auto fields = page ? page->Fields() : nullptr;
  const std::shared_ptr<clsXUNField> field =
      fields && fields->Count() > 0 ? fields->Item(fields->Count()) : nullptr;
  if (!field) Raise(kErrObjectNotSet);  // a [Question] before any [Field]: not a template file

  const std::shared_ptr<clsXUNQuestion> question = clsXUNQuestion::Create();
  const RegionCarriedValues& region = ctx.region_carried;
  const bool carried = region.id_add || region.id_type || region.id_value || region.test_version_id;
  bool own_id_add = false, own_id_type = false, own_id_value = false, own_test_version = false;
  KeyHint hint;
  ReadSectionKeys(ctx.cursor, [&](std::string_view key, std::string_view value) {
    const SectionKey<clsXUNQuestion>* entry = FindQuestionKey(key, &hint);
    if (!entry) return true;
    if (carried) {
      own_id_add |= entry->key == "IDAdd";
      own_id_type |= entry->key == "IDType";
      own_id_value |= entry->key == "IDValue";
      own_test_version |= entry->key == "TestVersionID";
    }
    return ReadKeyValue(*entry, *question, value, ctx);
  });
  TakeRegionValue(*question, region.id_add, own_id_add, "IDADD", ctx);
  TakeRegionValue(*question, region.id_type, own_id_type, "IDTYPE", ctx);
  TakeRegionValue(*question, region.id_value, own_id_value, "IDVALUE", ctx);
  TakeRegionValue(*question, region.test_version_id, own_test_version, "TESTVERSIONID", ctx);

  // Added after the keys: a question's key cannot change once it is in the list.
  xun::detail::QuestionsInternals::Add(*field->Questions(), question);
  if (!CheckQuestionRequired(*question)) {
    FailRead("Question Error",
             std::string(kQuestionErrorText) + "\r\n\r\nRegion Name: " + field->FieldName() +
                 "\r\n\r\nPage: " + std::to_string(pages->Count()) +
                 "\r\nRegion: " + std::to_string(fields->Count()) +
                 "\r\nQuestion: " + std::to_string(field->Questions()->Count()) + ".",
             "basTemplate.ReadQuestion", ctx.section_line);
    return false;
  }
  return true;
}

}  // namespace detail

}  // namespace xun::basTemplate
