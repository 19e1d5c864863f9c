// Small file-system routines for the template reader and writer and the page object: unique
// temporary names, telling temporary files apart, backups before overwriting, and sniffing the
// encoding of a text file.
//
// Every routine reports its own failures (at "basPublic.<name>") and then returns its empty
// result (empty text, 0 or false); none of them throws to the caller.
#pragma once

#include <cstdint>
#include <string>

#include "xun/export.h"

namespace xun::basPublic {

// A full path in `sFolder` (empty: the temporary folder) named prefix + a three-character process
// tag + a random upper-case hex number + `sExtension` (with its leading "."), which names neither
// a file nor a folder at the moment of the call. An empty prefix is the start of the program's
// name; an empty extension is a random one ("." and one to three lower-case hex digits). The file
// is not created, so two calls may give the same name.
XUN_API std::string GetUniqueFileName(const std::string& sPrefix, const std::string& sExtension,
                                      const std::string& sFolder);

// A pseudo-random whole number from `lLower` to `lUpper`, both included. `lLower` greater than
// `lUpper` is error 5.
XUN_API int32_t RandomNumber(int32_t lLower, int32_t lUpper);

// True when the file's folder is the temporary folder or lies below it (letter case ignored).
XUN_API bool IsTempFile(const std::string& sPath);

// Copies the file to `sPath` + ".old" in the same folder, replacing an older backup. Deleting and
// copying are retried for a few seconds while another process still holds the file. A missing
// file is error 53.
XUN_API bool FileBackup(const std::string& sPath);

// True when the file starts with a UTF-16 byte-order mark (FF FE, or FE FF). A missing file is
// error 53.
XUN_API bool IsUnicodeFile(const std::string& sPath);

}  // namespace xun::basPublic
