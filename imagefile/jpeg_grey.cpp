// JPEG straight to grey with libjpeg, row by row (imagefile/grey_readers.h).
#include <cstdio>
// jpeglib.h needs FILE and size_t declared first.
#include <jpeglib.h>

#include <csetjmp>
#include <cstring>
#include <vector>

#include "imagefile/decode_error.h"
#include "imagefile/grey_readers.h"
#include "imagefile/luma.h"

namespace xun::imagefile {
namespace {

struct Errors {
  jpeg_error_mgr manager{};  // first, so libjpeg's pointer to it is a pointer to this
  std::jmp_buf jump{};
  bool damaged = false;  // libjpeg warned of corrupt data and went on
  char why[JMSG_LENGTH_MAX] = "damaged JPEG data";
};

void OnError(j_common_ptr jpeg) {
  auto* errors = reinterpret_cast<Errors*>(jpeg->err);
  (*jpeg->err->format_message)(jpeg, errors->why);
  std::longjmp(errors->jump, 1);
}

// Level -1 is a warning: libjpeg met corrupt data (a truncated file among them) and made
// something up. Higher levels are trace messages.
void OnMessage(j_common_ptr jpeg, int level) {
  auto* errors = reinterpret_cast<Errors*>(jpeg->err);
  if (level >= 0 || errors->damaged) return;
  errors->damaged = true;
  (*jpeg->err->format_message)(jpeg, errors->why);
}

// libjpeg gives up by a long jump: each step runs under its own, in a frame that holds no C++
// object, and says whether it went through.
bool ReadHeader(jpeg_decompress_struct* jpeg, Errors* errors) {
  if (setjmp(errors->jump)) return false;
  jpeg_read_header(jpeg, TRUE);
  return true;
}

bool Start(jpeg_decompress_struct* jpeg, Errors* errors) {
  if (setjmp(errors->jump)) return false;
  jpeg->out_color_space = jpeg->num_components == 1 ? JCS_GRAYSCALE : JCS_RGB;
  jpeg_start_decompress(jpeg);
  return true;
}

bool ReadRow(jpeg_decompress_struct* jpeg, Errors* errors, JSAMPROW row) {
  if (setjmp(errors->jump)) return false;
  return jpeg_read_scanlines(jpeg, &row, 1) == 1;
}

bool Finish(jpeg_decompress_struct* jpeg, Errors* errors) {
  if (setjmp(errors->jump)) return false;
  jpeg_finish_decompress(jpeg);
  return true;
}

class Reader {
 public:
  Reader() {
    jpeg_.err = jpeg_std_error(&errors_.manager);
    errors_.manager.error_exit = OnError;
    errors_.manager.emit_message = OnMessage;
    jpeg_create_decompress(&jpeg_);
  }
  ~Reader() { jpeg_destroy_decompress(&jpeg_); }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  bool Read(std::string_view bytes, const Limits& limits, const GreyTarget& target) {
    jpeg_mem_src(&jpeg_, reinterpret_cast<const unsigned char*>(bytes.data()),
                 static_cast<unsigned long>(bytes.size()));
    if (!ReadHeader(&jpeg_, &errors_)) Fail();
    if (jpeg_.jpeg_color_space == JCS_CMYK || jpeg_.jpeg_color_space == JCS_YCCK) return false;
    const auto width = static_cast<int32_t>(jpeg_.image_width);
    const auto height = static_cast<int32_t>(jpeg_.image_height);
    CheckPageSize(width, height, limits);
    if (!Start(&jpeg_, &errors_)) Fail();
    const int channels = jpeg_.output_components;
    if (channels != 1 && channels != 3)
      throw DecodeError(DecodeFailure::kNotAnImage, "unexpected JPEG pixel layout");
    std::vector<JSAMPLE> row(static_cast<std::size_t>(width) * static_cast<std::size_t>(channels));
    const GreyRows out = target(width, height);
    for (int32_t y = 0; y < height; ++y) {
      if (!ReadRow(&jpeg_, &errors_, row.data())) Fail();
      uint8_t* to = out.first + static_cast<std::size_t>(y) * out.stride;
      if (channels == 1) {
        std::memcpy(to, row.data(), static_cast<std::size_t>(width));
      } else {
        const JSAMPLE* in = row.data();
        for (int32_t x = 0; x < width; ++x, in += 3)
          to[x] = Luma(in[0], in[1], in[2]);
      }
    }
    if (!Finish(&jpeg_, &errors_)) Fail();
    if (errors_.damaged) Fail();
    return true;
  }

 private:
  [[noreturn]] void Fail() const { throw DecodeError(DecodeFailure::kNotAnImage, errors_.why); }

  Errors errors_;
  jpeg_decompress_struct jpeg_{};
};

}  // namespace

bool ReadJpegGrey(std::string_view bytes, const Limits& limits, const GreyTarget& target) {
  Reader reader;
  return reader.Read(bytes, limits, target);
}

}  // namespace xun::imagefile
