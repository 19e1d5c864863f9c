#include "pcx_image.h"

#include <fstream>
#include <iterator>
#include <vector>

namespace xuntool {
namespace {

constexpr std::size_t kHeaderSize = 128;
// Beyond this a page image is not a scanned page but a damaged or hostile header.
constexpr int64_t kMaxPixels = int64_t{80} * 1000 * 1000;

uint16_t U16(const std::string& b, std::size_t at) {
  return static_cast<uint16_t>(static_cast<unsigned char>(b[at]) |
                               (static_cast<unsigned char>(b[at + 1]) << 8));
}

void Put16(std::string& out, uint32_t v) {
  out += static_cast<char>(v & 0xFF);
  out += static_cast<char>((v >> 8) & 0xFF);
}
void Put32(std::string& out, uint32_t v) {
  Put16(out, v & 0xFFFF);
  Put16(out, v >> 16);
}

// A bottom-up BMP with a palette of `colours` BGRA entries (none for 24 bits per pixel).
std::string BmpHeader(int32_t width, int32_t height, int bits, const std::string& palette,
                      uint32_t image_size) {
  const uint32_t offset = 14 + 40 + static_cast<uint32_t>(palette.size());
  std::string out = "BM";
  Put32(out, offset + image_size);
  Put32(out, 0);
  Put32(out, offset);
  Put32(out, 40);
  Put32(out, static_cast<uint32_t>(width));
  Put32(out, static_cast<uint32_t>(height));
  Put16(out, 1);
  Put16(out, static_cast<uint32_t>(bits));
  Put32(out, 0);  // uncompressed
  Put32(out, image_size);
  Put32(out, 3937);  // 100 dpi in pixels per metre; the SVG scales the image anyway
  Put32(out, 3937);
  Put32(out, static_cast<uint32_t>(palette.size() / 4));
  Put32(out, 0);
  return out + palette;
}

}  // namespace

std::optional<BitmapImage> PcxToBmp(const std::string& path, std::string* why) {
  auto fail = [why](const std::string& reason) -> std::optional<BitmapImage> {
    if (why) *why = reason;
    return std::nullopt;
  };
  std::ifstream in(path, std::ios::binary);
  if (!in) return fail("cannot be opened");
  const std::string data{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  if (data.size() < kHeaderSize || data[0] != 0x0A) return fail("not a PCX image");
  const int bits = static_cast<unsigned char>(data[3]);
  const int planes = static_cast<unsigned char>(data[65]);
  const int32_t width = U16(data, 8) - U16(data, 4) + 1;
  const int32_t height = U16(data, 10) - U16(data, 6) + 1;
  const std::size_t line_bytes = U16(data, 66);
  if (width <= 0 || height <= 0 || int64_t{width} * height > kMaxPixels)
    return fail("PCX image of an unusable size");
  const bool mono = bits == 1 && planes == 1;
  const bool indexed = bits == 8 && planes == 1;
  const bool rgb = bits == 8 && planes == 3;
  if (!mono && !indexed && !rgb) return fail("PCX colour layout not supported");
  if (line_bytes * 8 < static_cast<std::size_t>(width) * static_cast<std::size_t>(bits))
    return fail("PCX line length too short");

  // Run-length decoding of the whole picture; white where the data ends early.
  const std::size_t total = line_bytes * static_cast<std::size_t>(planes) * height;
  std::vector<unsigned char> pixels;
  pixels.reserve(total);
  std::size_t at = kHeaderSize;
  while (pixels.size() < total && at < data.size()) {
    const auto c = static_cast<unsigned char>(data[at++]);
    if ((c & 0xC0) == 0xC0) {
      if (at >= data.size()) break;
      const auto value = static_cast<unsigned char>(data[at++]);
      for (int n = c & 0x3F; n > 0 && pixels.size() < total; --n)
        pixels.push_back(value);
    } else {
      pixels.push_back(c);
    }
  }
  pixels.resize(total, 0xFF);

  BitmapImage image;
  image.width = width;
  image.height = height;
  image.xdpi = U16(data, 12);
  image.ydpi = U16(data, 14);
  if (mono) {
    // Monochrome PCX: 0 is black, 1 is white, packed like BMP's own rows.
    const std::size_t row = (static_cast<std::size_t>(width) + 31) / 32 * 4;
    const std::string palette("\0\0\0\0\xFF\xFF\xFF\0", 8);
    image.bmp = BmpHeader(width, height, 1, palette, static_cast<uint32_t>(row * height));
    for (int32_t y = height - 1; y >= 0; --y) {
      std::string out(row, '\0');
      for (std::size_t i = 0; i < row && i < line_bytes; ++i)
        out[i] = static_cast<char>(pixels[static_cast<std::size_t>(y) * line_bytes + i]);
      image.bmp += out;
    }
  } else if (indexed) {
    // The 256-colour palette follows a 12 byte at the end; without one, grey levels.
    std::string palette;
    const bool has_palette = data.size() >= kHeaderSize + 769 && data[data.size() - 769] == 0x0C;
    for (int i = 0; i < 256; ++i) {
      unsigned char r = static_cast<unsigned char>(i), g = r, b = r;
      if (has_palette) {
        const std::size_t p = data.size() - 768 + static_cast<std::size_t>(i) * 3;
        r = static_cast<unsigned char>(data[p]);
        g = static_cast<unsigned char>(data[p + 1]);
        b = static_cast<unsigned char>(data[p + 2]);
      }
      palette += static_cast<char>(b);
      palette += static_cast<char>(g);
      palette += static_cast<char>(r);
      palette += '\0';
    }
    const std::size_t row = (static_cast<std::size_t>(width) + 3) / 4 * 4;
    image.bmp = BmpHeader(width, height, 8, palette, static_cast<uint32_t>(row * height));
    for (int32_t y = height - 1; y >= 0; --y) {
      std::string out(row, '\0');
      for (int32_t x = 0; x < width; ++x)
        out[static_cast<std::size_t>(x)] =
            static_cast<char>(pixels[static_cast<std::size_t>(y) * line_bytes + x]);
      image.bmp += out;
    }
  } else {
    const std::size_t row = (static_cast<std::size_t>(width) * 3 + 3) / 4 * 4;
    image.bmp = BmpHeader(width, height, 24, "", static_cast<uint32_t>(row * height));
    for (int32_t y = height - 1; y >= 0; --y) {
      std::string out(row, '\0');
      const std::size_t base = static_cast<std::size_t>(y) * line_bytes * 3;
      for (int32_t x = 0; x < width; ++x) {
        out[static_cast<std::size_t>(x) * 3] = static_cast<char>(pixels[base + 2 * line_bytes + x]);
        out[static_cast<std::size_t>(x) * 3 + 1] = static_cast<char>(pixels[base + line_bytes + x]);
        out[static_cast<std::size_t>(x) * 3 + 2] = static_cast<char>(pixels[base + x]);
      }
      image.bmp += out;
    }
  }
  return image;
}

std::string Base64(const std::string& bytes) {
  static const char* const kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  out.reserve((bytes.size() + 2) / 3 * 4);
  std::size_t i = 0;
  for (; i + 2 < bytes.size(); i += 3) {
    const uint32_t n = (static_cast<unsigned char>(bytes[i]) << 16) |
                       (static_cast<unsigned char>(bytes[i + 1]) << 8) |
                       static_cast<unsigned char>(bytes[i + 2]);
    out += kDigits[(n >> 18) & 63];
    out += kDigits[(n >> 12) & 63];
    out += kDigits[(n >> 6) & 63];
    out += kDigits[n & 63];
  }
  if (i < bytes.size()) {
    uint32_t n = static_cast<unsigned char>(bytes[i]) << 16;
    if (i + 1 < bytes.size()) n |= static_cast<unsigned char>(bytes[i + 1]) << 8;
    out += kDigits[(n >> 18) & 63];
    out += kDigits[(n >> 12) & 63];
    out += i + 1 < bytes.size() ? kDigits[(n >> 6) & 63] : '=';
    out += '=';
  }
  return out;
}

}  // namespace xuntool
