#include "xun/templatefile/template_reader.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "xun/model/template.h"
#include "xun/support/error_reporter.h"
#include "xun/support/file_helpers.h"
#include "xun/support/message_box.h"
#include "xun/support/numeric.h"
#include "xun/support/runtime_error.h"
#include "xun/templatefile/bas_template.h"
#include "xun/templatefile/text_decoding.h"

namespace xun::basTemplate {
namespace {

namespace fs = std::filesystem;

constexpr const char* kLocation = "basTemplate.ReadTemplate";
constexpr const char* kFormError = "Form Error";
constexpr const char* kLoadError = "Load Error";
constexpr const char* kLoadErrorText =
    "An error occurred attempting to load the specified template file. Please make sure the "
    "file is not currently in use by another application and that it is a valid template file.";

thread_local ReadDiagnostic last_diagnostic;

// Removes the temporary copy however the read ends.
class TemporaryCopy {
 public:
  explicit TemporaryCopy(std::string path) : path_(std::move(path)) {}
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

std::string ReadAllBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) Raise(kErrPermissionDenied);
  std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  if (in.bad()) Raise(kErrDeviceIO);
  return bytes;
}

// Template archives (a zip holding the .omr file and its page images) start with a local file
// header. Archives are not read by this build yet: such a file fails as a load error.
bool IsZipArchive(std::string_view bytes) {
  return bytes.size() >= 4 && bytes.substr(0, 4) == std::string_view("PK\x03\x04", 4);
}

bool Dispatch(detail::ReaderContext& ctx) {
  while (!ctx.cursor.AtEnd()) {
    const std::string header = detail::HeaderOf(ctx.cursor.Current());
    bool go = true;
    if (header == "[QUESTION]") {
      go = detail::ReadQuestion(ctx);
    } else if (header == "[FIELD]") {
      go = detail::ReadRegion(ctx);
    } else if (header == "[FORM]") {
      go = detail::ReadForm(ctx);
    } else if (header == "[PAGE]") {
      go = detail::ReadPage(ctx);
    } else if (header == "[LINK]" || header == "[JOIN]") {
      go = detail::ReadLink(ctx);
      ++ctx.next_link_group;
    } else {
      ctx.cursor.Next();
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

bool ReadCopy(const std::string& sTemplateFile, clsXUNTemplate& oTemplate, bool bForEdit) {
  if (!fs::is_regular_file(sTemplateFile)) {
    detail::FailRead(kLoadError, kLoadErrorText, kLocation, 0);
    return false;
  }
  // Read a private copy, so a file another program is still writing cannot change under us.
  const TemporaryCopy copy(basPublic::GetUniqueFileName("", ".omr", ""));
  if (copy.path().empty()) Raise(kErrPathFileAccess);
  fs::copy_file(sTemplateFile, copy.path());
  std::error_code ec;
  fs::permissions(copy.path(), fs::perms::owner_read | fs::perms::owner_write,
                  fs::perm_options::add, ec);

  const std::string bytes = ReadAllBytes(copy.path());
  if (IsZipArchive(bytes)) {
    detail::FailRead(kLoadError, kLoadErrorText, kLocation, 0);
    return false;
  }
  const detail::DecodedLines decoded = detail::DecodeTemplateText(bytes);
  if (decoded.odd_trailing_byte) {
    detail::FailRead(kLoadError, kLoadErrorText, kLocation, 0);
    return false;
  }

  // A file without a Version key must read as version 0, not keep the object's default.
  xun::detail::TemplateInternals::SetVersion(oTemplate, "");
  detail::ReaderContext ctx(oTemplate, detail::LineCursor(decoded.lines), bForEdit);
  if (!Dispatch(ctx)) return false;
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

bool ReadTemplate(const std::string& sTemplateFile, clsXUNTemplate& oTemplate, bool bForEdit) {
  last_diagnostic = ReadDiagnostic{};
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
