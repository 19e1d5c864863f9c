// Zip archives for template files: recognising one, unpacking one safely into a folder, and
// building one in memory. Internal to the library.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace xun::zip {

// Limits an archive must keep to be unpacked; an archive is a template and its page images,
// never more.
inline constexpr int64_t kMaxEntries = 64;
inline constexpr uint64_t kMaxEntrySize = uint64_t{64} << 20;
inline constexpr uint64_t kMaxTotalSize = uint64_t{256} << 20;

// True when the bytes start like a zip archive: a local file header, or the end record of an
// empty archive.
bool LooksLikeZip(std::string_view bytes);

// True when an entry of this name may be unpacked: relative, "/" separated, no "." or ".."
// parts, no backslash, no drive letter.
bool IsSafeEntryName(std::string_view name);

// Unpacks every entry of the archive into `folder`, which must exist. Encrypted entries are
// opened with `password`. Anything that could reach outside the folder, a link, an entry or a
// total over the limits, damaged data (a CRC error) or a name given twice is refused with a
// RuntimeError (5 for refused content, 75 for an archive that cannot be read); what was unpacked
// before the refusal stays in `folder` for the caller to remove.
void ExtractArchive(const std::string& archive_path, const std::string& folder,
                    const std::string& password);

// One entry to store: its name in the archive and its content.
using Entry = std::pair<std::string, std::string>;

// The bytes of a new archive holding `entries`, each encrypted with `password` (AES-256 where
// this libzip supports it, else traditional PKWARE; none for an empty password). An entry the
// extractor would refuse is error 5, so an archive built here can always be read back.
std::string BuildArchive(const std::vector<Entry>& entries, const std::string& password);

}  // namespace xun::zip
