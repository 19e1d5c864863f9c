// Telling a UTF-16 text file by its byte-order mark.
#include <filesystem>
#include <fstream>
#include <string>

#include "xun/support/file_helpers.h"
#include "xun/support/runtime_error.h"
#include "xun/support/trap.h"

namespace xun::basPublic {

bool IsUnicodeFile(const std::string& sPath) {
  return Trap("basPublic.IsUnicodeFile", false, [&] {
    const std::filesystem::path path(sPath);
    if (!std::filesystem::exists(path)) Raise(kErrFileNotFound);
    if (std::filesystem::is_directory(path)) Raise(kErrPathFileAccess);
    std::ifstream in(path, std::ios::binary);
    if (!in) Raise(kErrPermissionDenied);
    unsigned char mark[2] = {};
    in.read(reinterpret_cast<char*>(mark), sizeof mark);
    if (in.gcount() < 2) return false;
    // Little-endian is what the writer produces; big-endian is accepted as well.
    return (mark[0] == 0xFF && mark[1] == 0xFE) || (mark[0] == 0xFE && mark[1] == 0xFF);
  });
}

}  // namespace xun::basPublic
