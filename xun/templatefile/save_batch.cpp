// Writing a batch file: it names the member templates, which must exist, by their full paths.
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "xun/support/runtime_error.h"
#include "xun/support/text.h"
#include "xun/support/trap.h"
#include "xun/templatefile/bas_template.h"
#include "xun/templatefile/batch_file.h"
#include "xun/templatefile/file_layer.h"

namespace xun::basTemplate {
namespace {

namespace fs = std::filesystem;

constexpr const char* kLocation = "basTemplate.SaveBatch";
constexpr const char* kTitle = "Template Does Not Exist";

bool IsFile(const std::string& path) {
  std::error_code ec;
  return !path.empty() && fs::is_regular_file(path, ec);
}

std::string FullPath(const std::string& path) {
  return fs::absolute(fs::path(path)).lexically_normal().string();
}

// A batch file always has the extension ".rbf": another extension is replaced, none is added.
std::string BatchFileName(const std::string& sBatchTemplate) {
  if (sBatchTemplate.empty()) Raise(kErrInvalidCall);
  fs::path target(sBatchTemplate);
  if (text::ToUpper(target.extension().string()) != ".RBF") target.replace_extension(".rbf");
  return target.string();
}

// Windows-1252 unless a path needs more; then UTF-16LE with its byte-order mark, as template
// files do.
std::string Encode(const std::string& text) {
  if (text::FitsWindows1252(text)) return text::Utf8ToWindows1252(text);
  return std::string("\xFF\xFE", 2) + text::Utf8ToUtf16LEBytes(text);
}

}  // namespace

bool SaveBatch(const std::string& sBatchTemplate, const std::string& sTemplate,
               const std::vector<std::string>& vHeaderTemplates) {
  return Trap(kLocation, false, [&] {
    for (const std::string& header : vHeaderTemplates)
      if (!IsFile(header)) {
        detail::ShowBatchMessage(kTitle,
                                 "An error saving the batch template. The specified header "
                                 "template does not exist.\r\n\r\nHeader Template: " +
                                     header,
                                 kLocation);
        return false;
      }
    if (!IsFile(sTemplate)) {
      detail::ShowBatchMessage(kTitle,
                               "An error saving the batch template. The specified template does "
                               "not exist.\r\n\r\nTemplate: " +
                                   sTemplate,
                               kLocation);
      return false;
    }
    std::vector<std::string> headers;
    for (const std::string& header : vHeaderTemplates)
      headers.push_back(FullPath(header));
    detail::ReplaceFileContent(BatchFileName(sBatchTemplate),
                               Encode(detail::BatchFileText(FullPath(sTemplate), headers)));
    return true;
  });
}

}  // namespace xun::basTemplate
