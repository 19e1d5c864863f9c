// Reading a batch file: each member template is read on its own, the members are merged, and
// only a merge that succeeds replaces the content of the template being filled.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "xun/model/pages.h"
#include "xun/model/template.h"
#include "xun/support/runtime_error.h"
#include "xun/support/trap.h"
#include "xun/templatefile/bas_template.h"
#include "xun/templatefile/batch_file.h"
#include "xun/templatefile/replace_content.h"
#include "xun/templatefile/text_decoding.h"

namespace xun::basTemplate {
namespace {

namespace fs = std::filesystem;

constexpr const char* kLocation = "basTemplate.ReadBatch";

bool IsFile(const fs::path& path) {
  std::error_code ec;
  return fs::is_regular_file(path, ec);
}

std::string ReadBatchBytes(const std::string& path) {
  if (!IsFile(path)) Raise(kErrFileNotFound);
  std::ifstream in(path, std::ios::binary);
  if (!in) Raise(kErrPermissionDenied);
  std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  if (in.bad()) Raise(kErrDeviceIO);
  return bytes;
}

// A path that is not absolute is looked for in the default template folder first, then beside
// the batch file; empty when it is in neither.
std::string Resolve(const std::string& path, const std::string& default_dir,
                    const std::string& batch_file) {
  const fs::path written(path);
  if (written.is_absolute()) return IsFile(written) ? path : std::string();
  std::vector<fs::path> candidates;
  if (!default_dir.empty()) candidates.push_back(fs::path(default_dir) / written);
  candidates.push_back(fs::path(batch_file).parent_path() / written);
  for (const fs::path& candidate : candidates)
    if (IsFile(candidate)) return candidate.string();
  return {};
}

// The members, freed (deleting the page images they own) however the read ends.
class Members {
 public:
  Members() = default;
  Members(const Members&) = delete;
  Members& operator=(const Members&) = delete;
  ~Members() {
    for (const std::shared_ptr<clsXUNTemplate>& member : list_)
      member->Free();
  }
  std::vector<std::shared_ptr<clsXUNTemplate>>& list() { return list_; }

 private:
  std::vector<std::shared_ptr<clsXUNTemplate>> list_;
};

bool CannotRead(const std::string& path) {
  detail::ShowBatchMessage(
      "Invalid Template",
      "An error occurred attempting to read the specified template file [" + path + "].",
      kLocation);
  return false;
}

}  // namespace

bool ReadBatch(clsXUNTemplate& oTemplate, const std::string& sBatchFile,
               const std::string& sDefaultTemplateDir) {
  return Trap(kLocation, false, [&] {
    const std::string bytes = ReadBatchBytes(sBatchFile);
    const detail::DecodedText decoded = detail::DecodeText(bytes, detail::EncodingByMark(bytes));
    const detail::BatchMembers named = detail::ParseBatchText(decoded.text());
    // A batch without a form template names nothing that could be read.
    if (named.form.empty()) return CannotRead(sBatchFile);

    std::vector<std::string> paths = named.headers;
    paths.push_back(named.form);
    Members members;
    for (const std::string& path : paths) {
      const std::string file = Resolve(path, sDefaultTemplateDir, sBatchFile);
      if (file.empty()) return CannotRead(path);
      members.list().push_back(clsXUNTemplate::Create());
      // For reading: a batch is what forms are read with, so every member must be valid.
      if (!ReadTemplate(file, *members.list().back(), false)) return CannotRead(path);
    }

    Members merged;
    merged.list().push_back(clsXUNTemplate::Create());
    if (!MergeTemplates(members.list(), *merged.list().front())) return false;
    detail::ReplaceContent(*merged.list().front(), oTemplate);
    return true;
  });
}

}  // namespace xun::basTemplate
