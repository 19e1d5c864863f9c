// PNG straight to grey with libpng, row by row (imagefile/grey_readers.h).
#include <png.h>

#include <cstring>
#include <string>
#include <vector>

#include "imagefile/decode_error.h"
#include "imagefile/grey_readers.h"
#include "imagefile/luma.h"

namespace xun::imagefile {
namespace {

struct Source {
  std::string_view bytes;
  std::size_t at = 0;
  char why[160] = "damaged PNG data";
};

void ReadData(png_structp png, png_bytep out, std::size_t length) {
  auto* source = static_cast<Source*>(png_get_io_ptr(png));
  if (source->bytes.size() - source->at < length) png_error(png, "the file ends early");
  std::memcpy(out, source->bytes.data() + source->at, length);
  source->at += length;
}

void OnError(png_structp png, png_const_charp message) {
  auto* source = static_cast<Source*>(png_get_error_ptr(png));
  std::snprintf(source->why, sizeof source->why, "%s", message);
  png_longjmp(png, 1);
}

// A warning is about an ancillary chunk, which libpng skips: the pixels are whole.
void OnWarning(png_structp, png_const_charp) {}

// libpng gives up by a long jump: each step runs under its own, in a frame that holds no C++
// object, and says whether it went through.
bool ReadHeader(png_structp png, png_infop info) {
  if (setjmp(png_jmpbuf(png))) return false;
  png_read_info(png, info);
  return true;
}

bool PrepareRows(png_structp png, png_infop info) {
  if (setjmp(png_jmpbuf(png))) return false;
  png_set_expand(png);    // palette to colour, 1, 2 and 4 bits to 8, transparency to alpha
  png_set_scale_16(png);  // 16 bits to 8, rounded
  png_read_update_info(png, info);
  return true;
}

bool ReadRow(png_structp png, png_bytep row) {
  if (setjmp(png_jmpbuf(png))) return false;
  png_read_row(png, row, nullptr);
  return true;
}

bool ReadEnd(png_structp png) {
  if (setjmp(png_jmpbuf(png))) return false;
  png_read_end(png, nullptr);
  return true;
}

void ToGrey(const uint8_t* in, int channels, int32_t width, uint8_t* out) {
  switch (channels) {
    case 1:
      std::memcpy(out, in, static_cast<std::size_t>(width));
      break;
    case 2:
      for (int32_t x = 0; x < width; ++x, in += 2)
        out[x] = OnPaper(in[0], in[1]);
      break;
    case 3:
      for (int32_t x = 0; x < width; ++x, in += 3)
        out[x] = Luma(in[0], in[1], in[2]);
      break;
    default:
      for (int32_t x = 0; x < width; ++x, in += 4)
        out[x] = Luma(OnPaper(in[0], in[3]), OnPaper(in[1], in[3]), OnPaper(in[2], in[3]));
      break;
  }
}

class Reader {
 public:
  Reader() {
    png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, &source_, OnError, OnWarning);
    if (png_) info_ = png_create_info_struct(png_);
    if (!png_ || !info_) throw DecodeError(DecodeFailure::kOutOfMemory, "out of memory");
  }
  ~Reader() { png_destroy_read_struct(&png_, info_ ? &info_ : nullptr, nullptr); }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  bool Read(std::string_view bytes, const Limits& limits, const GreyTarget& target) {
    source_.bytes = bytes;
    png_set_read_fn(png_, &source_, ReadData);
    // libpng's own limits as well, so no chunk it keeps can grow past them.
    png_set_user_limits(png_, kMaxSide, kMaxSide);
    if (!ReadHeader(png_, info_)) Fail();
    const auto width = static_cast<int32_t>(png_get_image_width(png_, info_));
    const auto height = static_cast<int32_t>(png_get_image_height(png_, info_));
    if (png_get_interlace_type(png_, info_) != PNG_INTERLACE_NONE) return false;
    CheckPageSize(width, height, limits);
    if (!PrepareRows(png_, info_)) Fail();
    const int channels = png_get_channels(png_, info_);
    if (channels < 1 || channels > 4 || png_get_bit_depth(png_, info_) != 8)
      throw DecodeError(DecodeFailure::kNotAnImage, "unexpected PNG pixel layout");
    std::vector<uint8_t> row(png_get_rowbytes(png_, info_));
    const GreyRows out = target(width, height);
    for (int32_t y = 0; y < height; ++y) {
      if (!ReadRow(png_, row.data())) Fail();
      ToGrey(row.data(), channels, width, out.first + static_cast<std::size_t>(y) * out.stride);
    }
    if (!ReadEnd(png_)) Fail();
    return true;
  }

 private:
  [[noreturn]] void Fail() const { throw DecodeError(DecodeFailure::kNotAnImage, source_.why); }

  Source source_;
  png_structp png_ = nullptr;
  png_infop info_ = nullptr;
};

}  // namespace

bool ReadPngGrey(std::string_view bytes, const Limits& limits, const GreyTarget& target) {
  Reader reader;
  return reader.Read(bytes, limits, target);
}

}  // namespace xun::imagefile
