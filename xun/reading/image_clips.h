// Image-clip regions: the region's cut written to a file a person or another program reads,
// named by the region's pattern, in the format it asks (docs/reading.md, "Image clips").
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "imagefile/page_writer.h"
#include "xun/reading/region_image.h"
#include "xun/reading/region_plan.h"
#include "xun/reading/region_value.h"

namespace xun::reading::detail {

// What a clip's file name may say.
struct ClipNames {
  // The name of the file of the form's first page, without folder and extension ("_" and the
  // page's number in the file added when it is not the file's first).
  std::string form;
  int32_t page = 0;
};

struct ClipFormat {
  imagefile::CutFormat cut;
  std::string extension;  // with its dot
};

// The format a region's clip type and compression ask for: TIF (uncompressed, Group 3, Group 4,
// LZW; LZW when not set), JPG, PCX (black and white) or PDF; TIF when the type is not set. Nothing,
// with `why`, for a type or compression that is none of those.
std::optional<ClipFormat> ClipFormatOf(xunImageClipType type, xunImageClipCompression compression,
                                       std::string& why);

// The file name `pattern` gives (with {form}, {page}, {region} and {item} replaced; "{form}_
// {region}" when empty), with characters a file name cannot hold replaced by "_" and the
// format's extension added unless it ends with it already.
std::string ClipFileName(const std::string& pattern, const ClipNames& names,
                         const std::string& region, int32_t item, const std::string& extension);

// Writes `cut` as `name` in `folder` (made when missing), replacing any file of that name in one
// step, so a failure never leaves half a file. Gives its path; throws std::runtime_error with
// why when it cannot.
std::string WriteClip(const RegionCut& cut, const ClipFormat& format, const std::string& folder,
                      const std::string& name);

// One value for each of the region's parts: an image clip gives its file name when it adds a
// column, else nothing; an image clip with data gives first the data a person keys in from the
// clip, then its file name when it adds a column. `item` is the region's first item.
std::vector<RegionValue> ClipRegion(const RegionCut& cut, const RegionPlan& region,
                                    const ClipNames& names, int32_t item,
                                    const std::string& folder);

}  // namespace xun::reading::detail
