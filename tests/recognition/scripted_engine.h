// A recognition engine driven by the test: it answers scripted codes and out-values and records
// every call, so a test can check what the library asked and in which order.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "xun/xun.h"

namespace xun::testing {

class ScriptedEngine : public IRecognitionEngine {
 public:
  // Codes answered by each operation.
  int16_t load_code = 0, unload_code = 0, search_code = 0, check_code = 0, image_code = 0,
          align_code = 0, marks_code = 0;
  // What the search answers in the row and column counts (-1: leaves them).
  int16_t found_rows = -1, found_cols = -1;
  // The check answers a regular grid over the rectangle unless told to answer another size.
  int16_t grid_rows_delta = 0;
  int32_t filled_pixels = 4321;
  int16_t align_dx = 0, align_dy = 0;
  std::vector<xunReadArea> marks;
  // The operation ("load", "check", ...) that throws instead of answering.
  std::string throw_on;
  // Sleeps inside every call, to give another thread the chance to interleave.
  std::chrono::microseconds pause{0};

  std::vector<std::string> Calls() const {
    const std::lock_guard lock(mutex_);
    return calls_;
  }
  bool Interleaved() const { return interleaved_; }

  int16_t LoadImage(const char* file, int32_t reserved, int16_t xdpi, int16_t ydpi, int16_t width,
                    int16_t height) override {
    if (loaded_.exchange(true)) interleaved_ = true;
    Record("load " + std::string(file) + " " + Numbers({reserved, xdpi, ydpi, width, height}));
    return load_code;
  }
  int16_t UnloadImage() override {
    Record("unload");
    loaded_ = false;
    return unload_code;
  }
  int16_t SearchOMRField(int16_t l, int16_t t, int16_t r, int16_t b, int16_t& rows,
                         int16_t& cols) override {
    Record("search " + Numbers({l, t, r, b, rows, cols}));
    if (found_rows >= 0) rows = found_rows;
    if (found_cols >= 0) cols = found_cols;
    return search_code;
  }
  int16_t CheckOMRField(int16_t rows, int16_t cols, int16_t l, int16_t t, int16_t r, int16_t b,
                        int16_t* results) override {
    Record("check " + Numbers({rows, cols, l, t, r, b}));
    if (check_code == 0) WriteGrid(rows, cols, l, t, r, b, results);
    return check_code;
  }
  int16_t CheckOMRFieldFill(int16_t rows, int16_t cols, int16_t l, int16_t t, int16_t r, int16_t b,
                            int16_t* results, int16_t* fill) override {
    Record("checkfill " + Numbers({rows, cols, l, t, r, b}));
    if (check_code != 0) return check_code;
    WriteGrid(rows, cols, l, t, r, b, results);
    // Bubble (row, col) holds 10 * row + col, stored with the row index running fastest.
    for (int c = 1; c <= cols; ++c)
      for (int rr = 1; rr <= rows; ++rr)
        fill[(rr - 1) + (c - 1) * rows] = static_cast<int16_t>(10 * rr + c);
    return 0;
  }
  int16_t CheckImageField(int16_t l, int16_t t, int16_t r, int16_t b, int32_t& filled) override {
    Record("image " + Numbers({l, t, r, b}));
    if (image_code == 0) filled = filled_pixels;
    return image_code;
  }
  int16_t AlignOMRField(int16_t l, int16_t t, int16_t r, int16_t b, int16_t rows, int16_t cols,
                        int16_t distance, int16_t& nl, int16_t& nt, int16_t& nr,
                        int16_t& nb) override {
    Record("align " + Numbers({l, t, r, b, rows, cols, distance, nl, nt, nr, nb}));
    if (align_code != 0) return align_code;
    nl = static_cast<int16_t>(l + align_dx);
    nr = static_cast<int16_t>(r + align_dx);
    nt = static_cast<int16_t>(t + align_dy);
    nb = static_cast<int16_t>(b + align_dy);
    return 0;
  }
  int16_t GetMarkAreas(int16_t l, int16_t t, int16_t r, int16_t b, int16_t min_width,
                       int16_t min_height, int16_t max_marks, int16_t& count,
                       xunReadArea* found) override {
    Record("marks " + Numbers({l, t, r, b, min_width, min_height, max_marks}));
    if (marks_code != 0) return marks_code;
    count = static_cast<int16_t>(marks.size());
    for (size_t i = 0; i < marks.size(); ++i)
      found[i] = marks[i];
    return 0;
  }

 private:
  static std::string Numbers(std::initializer_list<int32_t> values) {
    std::string text;
    for (const int32_t v : values)
      text += (text.empty() ? "" : " ") + std::to_string(v);
    return text;
  }
  void Record(const std::string& call) {
    std::this_thread::sleep_for(pause);
    {
      const std::lock_guard lock(mutex_);
      calls_.push_back(call);
    }
    const std::string op = call.substr(0, call.find(' '));
    if (!throw_on.empty() && op == throw_on) throw std::runtime_error("engine failure");
  }
  // Columns and rows spread evenly over the rectangle, each bubble half its cell.
  void WriteGrid(int16_t rows, int16_t cols, int16_t l, int16_t t, int16_t r, int16_t b,
                 int16_t* results) const {
    const int cell_w = (r - l) / cols, cell_h = (b - t) / rows;
    results[0] = static_cast<int16_t>(rows + grid_rows_delta);
    results[1] = cols;
    results[2] = static_cast<int16_t>(cell_w / 2);
    results[3] = static_cast<int16_t>(cell_h / 2);
    results[4] = 99;
    for (int c = 0; c < cols; ++c)
      results[5 + c] = static_cast<int16_t>(l + c * cell_w + cell_w / 4);
    for (int rr = 0; rr < rows; ++rr)
      results[5 + cols + rr] = static_cast<int16_t>(t + rr * cell_h + cell_h / 4);
  }

  mutable std::mutex mutex_;
  std::vector<std::string> calls_;
  std::atomic<bool> loaded_{false};
  std::atomic<bool> interleaved_{false};
};

// Installs an engine for the life of the object.
class ScopedEngine {
 public:
  explicit ScopedEngine(std::shared_ptr<IRecognitionEngine> engine)
      : previous_(basExterns::SetEngine(std::move(engine))) {}
  ~ScopedEngine() { basExterns::SetEngine(previous_); }
  ScopedEngine(const ScopedEngine&) = delete;
  ScopedEngine& operator=(const ScopedEngine&) = delete;

 private:
  std::shared_ptr<IRecognitionEngine> previous_;
};

}  // namespace xun::testing
