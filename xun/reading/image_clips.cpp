#include "xun/reading/image_clips.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include "engine/page_image.h"

namespace xun::reading::detail {
namespace {

namespace fs = std::filesystem;
using Compression = imagefile::CutFormat::Compression;

std::string Lower(std::string text) {
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return text;
}

void Replace(std::string& text, const std::string& token, const std::string& by) {
  for (size_t at = text.find(token); at != std::string::npos; at = text.find(token, at + by.size()))
    text.replace(at, token.size(), by);
}

// Writes all of `bytes` to a descriptor; false on the first failure.
bool WriteAll(int fd, const std::string& bytes) {
  for (size_t done = 0; done < bytes.size();) {
    const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    done += static_cast<size_t>(n);
  }
  return true;
}

}  // namespace

std::optional<ClipFormat> ClipFormatOf(xunImageClipType type, xunImageClipCompression compression,
                                       std::string& why) {
  switch (type) {
    case xunImageClipTypeUnknown:
    case xunImageClipTypeTIF:
      switch (compression) {
        case xunImageClipCompressionUnknown:
        case xunImageClipCompressionLZW:
          return ClipFormat{{"TIFF", Compression::kLzw, false}, ".tif"};
        case xunImageClipCompressionUncompressed:
          return ClipFormat{{"TIFF", Compression::kNone, false}, ".tif"};
        case xunImageClipCompressionGroup3:
          return ClipFormat{{"TIFF", Compression::kGroup3, true}, ".tif"};
        case xunImageClipCompressionGroup4:
          return ClipFormat{{"TIFF", Compression::kGroup4, true}, ".tif"};
        default:
          why = "image clip compression " + std::to_string(compression) + " is not one of TIF's";
          return std::nullopt;
      }
    case xunImageClipTypeJPG:
      return ClipFormat{{"JPEG", Compression::kDefault, false}, ".jpg"};
    case xunImageClipTypePCXDCX:
      // Black and white, as the library keeps page images: the image library's PCX writer fails
      // on grey pages.
      return ClipFormat{{"PCX", Compression::kDefault, true}, ".pcx"};
    case xunImageClipTypePDF:
      return ClipFormat{{"PDF", Compression::kJpeg, false}, ".pdf"};
  }
  why = "image clip type " + std::to_string(type) + " is not a format clips are written in";
  return std::nullopt;
}

std::string ClipFileName(const std::string& pattern, const ClipNames& names,
                         const std::string& region, int32_t item, const std::string& extension) {
  std::string name = pattern.empty() ? std::string("{form}_{region}") : pattern;
  Replace(name, "{form}", names.form);
  Replace(name, "{page}", std::to_string(names.page));
  Replace(name, "{region}", region);
  Replace(name, "{item}", std::to_string(item));
  // One file in the folder: no separators, no control characters, nothing a shell or another
  // system chokes on.
  for (char& c : name)
    if (c == '/' || c == '\\' || c == ':' || c == '*' || c == '?' || c == '"' || c == '<' ||
        c == '>' || c == '|' || static_cast<unsigned char>(c) < 32)
      c = '_';
  if (name.find_first_not_of('.') == std::string::npos) name = "clip" + name;
  if (name.size() < extension.size() ||
      Lower(name.substr(name.size() - extension.size())) != extension)
    name += extension;
  return name;
}

std::string WriteClip(const RegionCut& cut, const ClipFormat& format, const std::string& folder,
                      const std::string& name) {
  cv::Mat pixels = cut.image;
  if (format.cut.bilevel) {
    // The engine's own black and white, which judges ink against the paper around it.
    const cv::Mat dark = xunrec::Binarise(cut.image, static_cast<int>(cut.Dpi() + 0.5));
    pixels = cv::Mat(dark.size(), CV_8UC1, cv::Scalar(255));
    pixels.setTo(0, dark);
  }
  if (!pixels.isContinuous()) pixels = pixels.clone();
  const std::string bytes =
      imagefile::EncodeCut(pixels.cols, pixels.rows, pixels.data, cut.Dpi(), format.cut);

  std::error_code ec;
  fs::create_directories(folder, ec);
  const fs::path target = fs::path(folder) / name;
  // A name no other thread or process writes: with 0666 the clip is as readable as any file
  // the user makes (mkstemp's would be private).
  static std::atomic<uint64_t> counter{0};
  const std::string temp = (fs::path(folder) / ("." + name + "." + std::to_string(::getpid()) +
                                                "." + std::to_string(counter++) + ".tmp"))
                               .string();
  const int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (fd < 0) throw std::runtime_error("cannot write in " + folder + ": " + std::strerror(errno));
  bool written = WriteAll(fd, bytes) && ::fsync(fd) == 0;
  written = ::close(fd) == 0 && written;
  if (written) {
    fs::rename(temp, target, ec);
    written = !ec;
  }
  if (!written) {
    const std::string why = ec ? ec.message() : std::strerror(errno);
    ::unlink(temp.c_str());
    throw std::runtime_error("cannot write " + target.string() + ": " + why);
  }
  return target.string();
}

std::vector<RegionValue> ClipRegion(const RegionCut& cut, const RegionPlan& region,
                                    const ClipNames& names, int32_t item,
                                    const std::string& folder) {
  const size_t parts = static_cast<size_t>(std::max(1, region.parts));
  const auto all = [&](const RegionValue& value) { return std::vector<RegionValue>(parts, value); };
  if (folder.empty())
    return all(RegionValue::Unread(AnswerStatus::Error, "no folder to write image clips in"));
  std::string why;
  const std::optional<ClipFormat> format =
      ClipFormatOf(region.clip_type, region.clip_compression, why);
  if (!format) return all(RegionValue::Unread(AnswerStatus::Error, why));
  const std::string name =
      ClipFileName(region.clip_file, names, region.name, item, format->extension);
  std::string path;
  try {
    path = WriteClip(cut, *format, folder, name);
  } catch (const std::exception& e) {
    return all(RegionValue::Unread(AnswerStatus::Error, e.what()));
  }
  RegionValue file = RegionValue::Of(region.add_column ? name : std::string());
  file.clip = path;
  std::vector<RegionValue> values;
  if (region.type != xunFieldTypeImageClip) {
    // The data is keyed in by a person from the clip: the reader cannot give it.
    RegionValue data = RegionValue::Unread(AnswerStatus::Doubtful, "to be keyed in from its clip");
    data.kind = RegionValue::Kind::Text;
    data.confidence = 0;
    data.clip = path;
    values.push_back(std::move(data));
  }
  while (values.size() < parts)
    values.push_back(file);
  values.resize(parts);
  return values;
}

}  // namespace xun::reading::detail
