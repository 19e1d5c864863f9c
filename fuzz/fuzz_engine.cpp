// The recognition engine's entry points: the input's first bytes choose the resolution and the
// rectangles and counts of every call, the rest is the image file. No call may crash, leak or
// write past what it was given; every answer is a code.
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "engine/image_file.h"
#include "engine/xunrec.h"

namespace {

constexpr size_t kControlBytes = 48;

class Controls {
 public:
  Controls(const uint8_t* data, size_t size) : data_(data), size_(std::min(size, kControlBytes)) {}
  int16_t Next() {
    int16_t v = 0;
    if (at_ + 2 <= size_) std::memcpy(&v, data_ + at_, 2);
    at_ += 2;
    return v;
  }
  // A value in [low, high].
  int16_t Between(int16_t low, int16_t high) {
    const int span = high - low + 1;
    return static_cast<int16_t>(low + (static_cast<uint16_t>(Next()) % span));
  }

 private:
  const uint8_t* data_;
  size_t size_, at_ = 0;
};

std::string ScratchFile() {
  const std::string folder = std::filesystem::is_directory("/dev/shm")
                                 ? "/dev/shm"
                                 : std::filesystem::temp_directory_path().string();
  return folder + "/xun-fuzz-engine-" + std::to_string(getpid());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // Small images only: a page the size of the limit takes seconds, and the limit itself is tested.
  static const bool limited = (xunrec::SetMaxPixels(2'000'000), true);
  (void)limited;
  static const std::string file = ScratchFile();
  {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    if (size > kControlBytes)
      out.write(reinterpret_cast<const char*>(data + kControlBytes),
                static_cast<std::streamsize>(size - kControlBytes));
  }
  Controls c(data, size);
  const int16_t xdpi = c.Between(-10, 700), ydpi = c.Between(-10, 700);
  if (XUNREC_load_image(file.c_str(), 0, xdpi, ydpi, 0, 0) != XUNREC_OK) {
    XUNREC_unload_image();
    return 0;
  }
  const auto rect = [&] {
    struct {
      int16_t l, t, r, b;
    } r{c.Next(), c.Next(), c.Next(), c.Next()};
    return r;
  };
  auto r = rect();
  int16_t rows = c.Between(-2, 40), cols = c.Between(-2, 40);
  XUNREC_search_omr_field(r.l, r.t, r.r, r.b, &rows, &cols);

  // The arrays exactly as large as the counts say, so a write past them is caught.
  r = rect();
  const int16_t n_rows = c.Between(-2, 60), n_cols = c.Between(-2, 60);
  const size_t cells = n_rows > 0 && n_cols > 0 ? static_cast<size_t>(n_rows * n_cols) : 0;
  std::vector<int16_t> results(static_cast<size_t>(std::max(0, n_rows + n_cols)) + 5);
  std::vector<int16_t> fill(std::max<size_t>(cells, 1));
  XUNREC_check_omr_field(n_rows, n_cols, r.l, r.t, r.r, r.b, results.data());
  XUNREC_check_omr_field_fill(n_rows, n_cols, r.l, r.t, r.r, r.b, results.data(), fill.data());

  r = rect();
  int32_t pixels = 0;
  XUNREC_check_image_field(r.l, r.t, r.r, r.b, &pixels);

  r = rect();
  int16_t l = 0, t = 0, rr = 0, b = 0;
  XUNREC_align_omr_field(r.l, r.t, r.r, r.b, c.Between(-2, 40), c.Between(-2, 40),
                         c.Between(-5, 200), &l, &t, &rr, &b);

  r = rect();
  const int16_t max_marks = c.Between(-2, 64);
  std::vector<XUNREC_MarkArea> marks(static_cast<size_t>(std::max<int16_t>(max_marks, 1)));
  int16_t count = 0;
  XUNREC_get_mark_areas(r.l, r.t, r.r, r.b, c.Between(-2, 50), c.Between(-2, 50), max_marks, &count,
                        marks.data());
  XUNREC_unload_image();
  return 0;
}
