#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "xun/model/page.h"
#include "xun/model/pages.h"
#include "xun/model/question.h"
#include "xun/model/template.h"
#include "xun/recognition/save_registration.h"
#include "xun/support/file_helpers.h"
#include "xun/support/runtime_error.h"
#include "xun/support/text.h"
#include "xun/support/trap.h"
#include "xun/support/zip_archive.h"
#include "xun/templatefile/archive_password.h"
#include "xun/templatefile/bas_template.h"
#include "xun/templatefile/check_required.h"
#include "xun/templatefile/clean_text.h"
#include "xun/templatefile/file_layer.h"
#include "xun/templatefile/write_sections.h"

namespace xun::basTemplate {
namespace {

// A list's members, held while the file is built; an unset list has none.
template <class List>
auto Members(const std::shared_ptr<List>& list) {
  std::vector<std::shared_ptr<typename std::remove_cvref_t<decltype(*list->begin())>::element_type>>
      members;
  if (list)
    for (const auto& member : *list)
      members.push_back(member);
  return members;
}

// One role's summary keys; the respondent role has no value key.
struct IDKeys {
  xunIDType role;
  const char* prefix;
  bool has_value;
};
constexpr IDKeys kIDRoles[] = {{xunIDTypeForm, "Form", true},
                               {xunIDTypePage, "Page", true},
                               {xunIDTypeRespondent, "Respondent", false}};

void RemoveKey(Dictionary& attributes, const std::string& key) {
  if (attributes.Exists(key)) attributes.Remove(key);
}

// The region holding the first question of `role` in template order, and that question's index.
std::pair<std::shared_ptr<clsXUNField>, int16_t> FirstIDQuestion(const clsXUNTemplate& form,
                                                                 xunIDType role) {
  for (const auto& page : Members(form.Pages()))
    for (const auto& field : Members(page->Fields()))
      if (const int16_t index = field->IDQuestion(role); index > 0) return {field, index};
  return {nullptr, 0};
}

// The template's Attributes carry a summary of its identification regions, rebuilt on each save.
void StoreIdentificationSummary(clsXUNTemplate& form) {
  DictionaryPtr attributes = form.Attributes();
  if (!attributes) {
    attributes = Dictionary::Create();
    form.Attributes(attributes);
  }
  for (const IDKeys& keys : kIDRoles)
    RemoveKey(*attributes, std::string(keys.prefix) + "IDFieldsValid");
  for (const IDKeys& keys : kIDRoles)
    for (const char* suffix : {"IDField", "IDQuestion", "IDIndex", "IDValue", "IDAdd"})
      RemoveKey(*attributes, std::string(keys.prefix) + suffix);

  for (const IDKeys& keys : kIDRoles) {
    const std::string prefix = keys.prefix;
    const bool valid = form.IDFieldsValid(keys.role, false, nullptr);
    attributes->Add(prefix + "IDFieldsValid", Variant(valid));
    if (!valid) continue;
    const auto [field, index] = FirstIDQuestion(form, keys.role);
    if (!field) continue;
    const std::shared_ptr<clsXUNQuestion> question = field->Questions()->Item(index);
    // The region's name as the file holds it, so the summary still names it after a read.
    attributes->Add(prefix + "IDField", Variant(detail::FileText(field->FieldName(), true,
                                                                 detail::kIllegalNameCharacters)));
    attributes->Add(prefix + "IDQuestion", Variant(index));
    attributes->Add(prefix + "IDIndex", Variant(question->ReturnIndex(true)));
    if (keys.has_value) attributes->Add(prefix + "IDValue", Variant(question->IDValue()));
    attributes->Add(prefix + "IDAdd", Variant(question->IDAdd()));
  }
}

std::string BuildFileText(const clsXUNTemplate& form) {
  detail::TemplateText out;
  detail::WriteFormSection(out, form);
  for (const auto& page : Members(form.Pages())) {
    detail::WritePageSection(out, *page);
    const auto fields = Members(page->Fields());
    for (size_t i = 0; i < fields.size(); ++i) {
      // The reader puts the N regions after a [Link] into one group, so a group is written as
      // runs of neighbouring regions (see docs/template-file.md).
      const int16_t group = fields[i]->LinkGroup();
      if (group > 0 && (i == 0 || fields[i - 1]->LinkGroup() != group)) {
        size_t end = i + 1;
        while (end < fields.size() && fields[end]->LinkGroup() == group)
          ++end;
        detail::WriteLinkSection(out, static_cast<int32_t>(end - i));
      }
      detail::WriteFieldSection(out, *fields[i]);
      for (const auto& question : Members(fields[i]->Questions()))
        detail::WriteQuestionSection(out, *question, *fields[i]);
    }
  }
  return out.str();
}

// Keeps the existing file's encoding unless the text needs more than Windows-1252 holds; then
// UTF-16LE, so no character is lost.
std::string EncodeFileText(const std::string& target, bool target_exists, const std::string& text) {
  bool unicode = target_exists && basPublic::IsUnicodeFile(target);
  if (!unicode && !text::FitsWindows1252(text)) unicode = true;
  if (unicode) return std::string("\xFF\xFE", 2) + text::Utf8ToUtf16LEBytes(text);
  return text::Utf8ToWindows1252(text);
}

std::string ReadImageBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) Raise(kErrPermissionDenied);
  std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  if (in.bad()) Raise(kErrDeviceIO);
  return bytes;
}

// The page images a template carries: "<page Key>.pcx" for every page whose image file exists.
std::vector<zip::Entry> PageImages(const clsXUNTemplate& form) {
  std::vector<zip::Entry> images;
  for (const auto& page : Members(form.Pages())) {
    std::error_code ec;
    if (page->ImageFile().empty() || !std::filesystem::is_regular_file(page->ImageFile(), ec))
      continue;
    images.emplace_back(page->Key() + ".pcx", ReadImageBytes(page->ImageFile()));
  }
  return images;
}

// A template with page images is saved as an archive of "<stem>.omr" and the images, so the
// images travel with it; one without stays a plain text file.
std::string FileContent(const std::string& target, const clsXUNTemplate& form,
                        std::string text_bytes) {
  std::vector<zip::Entry> entries = PageImages(form);
  if (entries.empty()) return text_bytes;
  const std::string name = std::filesystem::path(target).stem().string() + ".omr";
  entries.insert(entries.begin(), zip::Entry(name, std::move(text_bytes)));
  return zip::BuildArchive(entries, detail::ArchivePassword());
}

}  // namespace

bool SaveTemplate(const std::string& sTemplateFile, clsXUNTemplate& oTemplate, bool bVerbose,
                  bool* bInvalid, bool bRegister) {
  return Trap("basTemplate.SaveTemplate", false, [&] {
    StoreIdentificationSummary(oTemplate);
    // Registers the regions (when asked) and counts each page image's filled pixels, one load
    // per page. What could not be registered is reported; validity stays the file's own rule.
    xun::detail::RegisterForSave(oTemplate, bRegister, bVerbose);

    // The reader's own checks, so a file written as valid is always read for reading.
    const bool valid = detail::TemplateIsValid(oTemplate);
    xun::detail::TemplateInternals::SetValid(oTemplate, valid);
    if (bInvalid) *bInvalid = !valid;

    const std::string file_text = BuildFileText(oTemplate);
    std::error_code ec;
    const bool exists = std::filesystem::is_regular_file(sTemplateFile, ec);
    const std::string bytes =
        FileContent(sTemplateFile, oTemplate, EncodeFileText(sTemplateFile, exists, file_text));
    // The backup reports its own failure; a save without its backup does not go ahead.
    if (exists && !basPublic::FileBackup(sTemplateFile)) return false;
    detail::ReplaceFileContent(sTemplateFile, bytes);
    xun::detail::TemplateInternals::SetVersion(oTemplate, "8");
    xun::detail::TemplateInternals::SetCompatibleVersion(oTemplate, "8");
    return true;
  });
}

}  // namespace xun::basTemplate
