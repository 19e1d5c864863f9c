// Telling whether a file lies in the temporary folder.
#include <filesystem>
#include <string>

#include "xun/support/file_helpers.h"
#include "xun/support/text.h"
#include "xun/support/trap.h"

namespace xun::basPublic {
namespace {

namespace fs = std::filesystem;

// The path as text without a trailing separator (the root itself keeps its one).
std::u16string FolderText(const fs::path& folder) {
  std::string text = folder.lexically_normal().string();
  while (text.size() > 1 && text.back() == '/')
    text.pop_back();
  return text::Utf8ToUtf16(text);
}

}  // namespace

bool IsTempFile(const std::string& sPath) {
  return Trap("basPublic.IsTempFile", false, [&] {
    const std::u16string temp = FolderText(fs::temp_directory_path());
    const std::u16string parent = FolderText(fs::path(sPath).parent_path());
    // Only the leading part of the parent is compared, so files in subfolders of the temporary
    // folder count as well. Lengths are in characters, so letter case cannot shift the cut.
    return text::EqualsText(text::Utf16ToUtf8(parent.substr(0, temp.size())),
                            text::Utf16ToUtf8(temp));
  });
}

}  // namespace xun::basPublic
