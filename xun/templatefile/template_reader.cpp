#include "xun/templatefile/template_reader.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "xun/model/page.h"
#include "xun/model/pages.h"
#include "xun/model/template.h"
#include "xun/support/error_reporter.h"
#include "xun/support/file_helpers.h"
#include "xun/support/message_box.h"
#include "xun/support/numeric.h"
#include "xun/support/runtime_error.h"
#include "xun/support/text.h"
#include "xun/support/zip_archive.h"
#include "xun/templatefile/archive_password.h"
#include "xun/templatefile/bas_template.h"
#include "xun/templatefile/mapped_file.h"
#include "xun/templatefile/section_headers.h"
#include "xun/templatefile/source_file.h"
#include "xun/templatefile/template_head.h"
#include "xun/templatefile/text_decoding.h"

namespace xun::basTemplate {
namespace {

namespace fs = std::filesystem;

constexpr const char* kLocation = "basTemplate.ReadTemplate";
constexpr const char* kFormError = "Form Error";
constexpr const char* kLoadError = "Load Error";
// The load error's first sentence, which the size and "not a template" refusals go on from.
constexpr const char* kLoadErrorLead =
    "An error occurred attempting to load the specified template file. ";
const std::string kLoadErrorText =
    std::string(kLoadErrorLead) +
    "Please make sure the file is not currently in use by another application and that it is a "
    "valid template file.";

thread_local ReadDiagnostic last_diagnostic;
thread_local ReadSectionLines last_sections;

// Removes the temporary copy however the read ends.
class TemporaryCopy {
 public:
  explicit TemporaryCopy(std::string path) noexcept : path_(std::move(path)) {}
  TemporaryCopy(const TemporaryCopy&) = delete;
  TemporaryCopy& operator=(const TemporaryCopy&) = delete;
  ~TemporaryCopy() {
    std::error_code ec;
    if (!path_.empty()) fs::remove(path_, ec);
  }
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

// A folder of our own for unpacking an archive, removed with everything in it however the read
// ends.
class TemporaryFolder {
 public:
  TemporaryFolder() : path_(basPublic::GetUniqueFileName("", "", "")) {
    // The name is checked free, not reserved: a folder that appeared since is someone else's.
    if (path_.empty() || !fs::create_directory(path_)) {
      path_.clear();
      Raise(kErrPathFileAccess);
    }
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ec;
    if (!path_.empty()) fs::remove_all(path_, ec);
  }
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

// The template inside an unpacked archive: the first "*.omr" of the folder by name, so the same
// archive always gives the same template. Empty when there is none.
std::string FirstTemplateIn(const std::string& folder) {
  std::vector<fs::path> found;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    const fs::path& path = entry.path();
    if (entry.is_regular_file() && text::ToUpper(path.extension().string()) == ".OMR")
      found.push_back(path);
  }
  if (found.empty()) return {};
  return std::min_element(found.begin(), found.end())->string();
}

// Gives each page whose image "<Key>.pcx" came in the archive its own copy of it, which the page
// then owns (its Free deletes it) after the unpacked folder is gone.
void AdoptPageImages(clsXUNTemplate& oTemplate, const std::string& folder) {
  const auto pages = oTemplate.Pages();
  if (!pages) return;
  for (const auto& page : *pages) {
    if (page->Key().empty()) continue;
    const fs::path image = fs::path(folder) / (page->Key() + ".pcx");
    std::error_code ec;
    if (!fs::is_regular_file(fs::symlink_status(image, ec))) continue;
    const std::string own = basPublic::GetUniqueFileName("", ".pcx", "");
    if (own.empty()) Raise(kErrPathFileAccess);
    if (!fs::copy_file(image, own, ec)) {
      fs::remove(own, ec);
      Raise(kErrPathFileAccess);
    }
    page->ImageFile(own);
  }
}

bool Dispatch(detail::ReaderContext& ctx) {
  ReadSectionLines& lines = last_sections;
  while (!ctx.cursor.AtEnd()) {
    const std::optional<detail::Section> section = detail::SectionOpenedBy(ctx.cursor.Current());
    if (!section) {
      ctx.cursor.Next();
      continue;
    }
    const int32_t line = ctx.cursor.LineNumber();
    bool go = true;
    switch (*section) {
      case detail::Section::Question:
        lines.questions.push_back(line);
        go = detail::ReadQuestion(ctx);
        break;
      case detail::Section::Region:
        lines.regions.push_back(line);
        go = detail::ReadRegion(ctx);
        break;
      case detail::Section::Form:
        go = detail::ReadForm(ctx);
        break;
      case detail::Section::Page:
        lines.pages.push_back(line);
        go = detail::ReadPage(ctx);
        break;
      case detail::Section::Link:
        lines.links.push_back(line);
        go = detail::ReadLink(ctx);
        ++ctx.next_link_group;
        break;
    }
    if (!go) return false;
  }
  return true;
}

bool CheckContent(const clsXUNTemplate& oTemplate) {
  auto fail = [](const char* what) {
    detail::FailRead(kFormError,
                     std::string("An error occurred reading the template file. ") + what, kLocation,
                     0);
    return false;
  };
  // CompatibleVersion is deliberately not consulted: only a version below 1 is refused.
  if (Val(oTemplate.Version()) < 1) return fail("The template version is unsupported.");
  const auto pages = oTemplate.Pages();
  if (!pages || pages->Count() == 0) return fail("The template does not contain any pages.");
  if (oTemplate.NumFields() == 0) return fail("The template does not contain any regions.");
  if (oTemplate.NumItems() == 0) return fail("The template does not contain any items.");
  return true;
}

// A file over the size limit: the text names its size, or says it grew past the limit while it
// was copied.
bool FailTooLarge(std::optional<uint64_t> size) {
  const std::string limit = std::to_string(detail::kMaxTemplateFileSize) + " bytes (" +
                            std::to_string(detail::kMaxTemplateFileSize >> 20) + " MiB)";
  const std::string what = size ? "The file is " + std::to_string(*size) +
                                      " bytes long; a template file may be at most " + limit + "."
                                : "The file grew past " + limit +
                                      ", the most a template file may be, while it was read.";
  detail::FailRead(kLoadError, kLoadErrorLead + what, kLocation, 0);
  return false;
}

bool FailNotATemplate() {
  detail::FailRead(kLoadError,
                   kLoadErrorLead + std::string("It is not a template file: its first ") +
                       std::to_string(detail::kTemplateHeadSize >> 10) +
                       " KiB hold no section header ([Form], [Page], [Field], [Question], [Link] "
                       "or [Join]).",
                   kLocation, 0);
  return false;
}

bool ReadCopy(const std::string& sTemplateFile, clsXUNTemplate& oTemplate, bool bForEdit) {
  // Read a private copy, so a file another program is still writing cannot change under us. What
  // is plainly no template is refused from its size and first bytes, before anything is copied or
  // decoded: a large file of anything else costs no more than a small one.
  std::string copy_path = basPublic::GetUniqueFileName("", ".omr", "");
  if (copy_path.empty()) Raise(kErrPathFileAccess);
  {
    const detail::SourceFile source(sTemplateFile);
    if (source.size() > detail::kMaxTemplateFileSize) return FailTooLarge(source.size());
    const std::string head = source.Head(detail::kTemplateHeadSize);
    if (!zip::LooksLikeZip(head) && detail::LookAtHead(head, source.size()).plainly_not_a_template)
      return FailNotATemplate();
    if (!source.CopyTo(copy_path, detail::kMaxTemplateFileSize)) return FailTooLarge(std::nullopt);
  }
  const TemporaryCopy copy(std::move(copy_path));

  // A template archive holds the .omr file and the page images; a refused or damaged archive
  // throws, which ReadTemplate turns into the load error.
  std::optional<TemporaryFolder> unpacked;
  // The private copy and, for an archive, the template inside it: files of our own, mapped
  // rather than read into a buffer.
  std::optional<detail::MappedFile> file(std::in_place, copy.path());
  if (zip::LooksLikeZip(file->bytes())) {
    unpacked.emplace();
    zip::ExtractArchive(copy.path(), unpacked->path(), detail::ArchivePassword());
    const std::string inner = FirstTemplateIn(unpacked->path());
    if (inner.empty()) {
      detail::FailRead(kLoadError, kLoadErrorText, kLocation, 0);
      return false;
    }
    file.emplace(inner);
  }
  // Looked at again: the copy is what is read, and an archive's template is seen only now.
  const detail::TemplateHead head = detail::LookAtHead(file->bytes(), file->bytes().size());
  if (head.plainly_not_a_template) return FailNotATemplate();
  const detail::DecodedText decoded = detail::DecodeText(file->bytes(), head.encoding);
  if (decoded.odd_trailing_byte()) {
    detail::FailRead(kLoadError, kLoadErrorText, kLocation, 0);
    return false;
  }

  // A file without a Version key must read as version 0, not keep the object's default.
  xun::detail::TemplateInternals::SetVersion(oTemplate, "");
  detail::ReaderContext ctx(oTemplate, detail::LineCursor(decoded.text()), bForEdit);
  const bool read = Dispatch(ctx);
  // The images are taken even from a read that stopped early: the pages read so far own them,
  // and clearing the template deletes them with the pages.
  if (unpacked) AdoptPageImages(oTemplate, unpacked->path());
  if (!read) return false;
  return CheckContent(oTemplate);
}

}  // namespace

namespace detail {

void FailRead(const std::string& title, const std::string& text, const std::string& location,
              int32_t line) {
  last_diagnostic = ReadDiagnostic{title, text, line};
  basError::ShowMessage(title, text, MessageBoxIcon::Exclamation, MessageBoxButtons::OK);
  basError::ReportError(0, Variant::Missing(), basError::kKindValidation, text, location, title);
}

}  // namespace detail

ReadDiagnostic LastReadDiagnostic() {
  return last_diagnostic;
}

ReadSectionLines LastReadSectionLines() {
  return last_sections;
}

bool ReadTemplate(const std::string& sTemplateFile, clsXUNTemplate& oTemplate, bool bForEdit) {
  last_diagnostic = ReadDiagnostic{};
  last_sections = ReadSectionLines{};
  try {
    return ReadCopy(sTemplateFile, oTemplate, bForEdit);
  } catch (const HostError&) {
    throw;
  } catch (...) {
    detail::FailRead(kLoadError, kLoadErrorText, kLocation, 0);
    return false;
  }
}

}  // namespace xun::basTemplate
