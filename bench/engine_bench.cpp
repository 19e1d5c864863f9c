// The recognition engine on a letter page at 300 dpi with 200 bubbles (ten grids of five
// questions by four choices), one core: loading and registering the page, and the dark-pixel
// count of one rectangle.
#include <benchmark/benchmark.h>
#include <opencv2/core.hpp>

#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "engine/synthetic_page.h"
#include "engine/xunrec.h"

namespace {

using xun::testing::GridSpec;
using xun::testing::SyntheticPage;

constexpr int kDpi = 300;

std::vector<GridSpec> Grids() {
  std::vector<GridSpec> grids;
  for (int i = 0; i < 10; ++i) {
    GridSpec g;
    g.left = 100 + (i % 2) * 350;
    g.top = 150 + (i / 2) * 180;
    g.rows = 5;
    g.cols = 4;
    g.marks = {{{i % 5, i % 4}, 0}};
    grids.push_back(g);
  }
  return grids;
}

// The page, drawn once per format.
const std::string& Page(const std::string& format) {
  static std::map<std::string, std::string> files;
  std::string& file = files[format];
  if (file.empty()) {
    cv::setNumThreads(1);
    SyntheticPage page(8.5, 11, kDpi);
    for (const GridSpec& g : Grids())
      page.DrawGrid(g);
    for (int i = 0; i < 40; ++i)
      page.FillBox({20, 100.0 + i * 25, 25, 8});
    page.DrawClutter({100, 60, 600, 60}, 1);
    file = (std::filesystem::temp_directory_path() / ("xun-engine-bench." + format)).string();
    page.Save(file, format);
  }
  return file;
}

void LoadAndRegister(benchmark::State& state, const std::string& format) {
  const std::string& file = Page(format);
  const std::vector<GridSpec> grids = Grids();
  std::vector<int16_t> results(4 + 5 + 5), fill(20);
  for (auto _ : state) {
    if (XUNREC_load_image(file.c_str(), 0, kDpi, kDpi, 0, 0) != XUNREC_OK)
      state.SkipWithError("load failed");
    for (const GridSpec& g : grids)
      if (XUNREC_check_omr_field_fill(5, 4, static_cast<int16_t>(g.left),
                                      static_cast<int16_t>(g.top), g.Right(), g.Bottom(),
                                      results.data(), fill.data()) != XUNREC_OK)
        state.SkipWithError("check failed");
    XUNREC_unload_image();
  }
  state.SetLabel("pages");
}
BENCHMARK_CAPTURE(LoadAndRegister, one_bit_pcx, std::string("pcx"))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LoadAndRegister, grey_png, std::string("png"))->Unit(benchmark::kMillisecond);

void DarkPixelCount(benchmark::State& state) {
  XUNREC_load_image(Page("pcx").c_str(), 0, kDpi, kDpi, 0, 0);
  std::mt19937 random(1);
  std::uniform_int_distribution<int> x(0, 800), y(0, 1050);
  int32_t pixels = 0;
  for (auto _ : state) {
    const int16_t l = static_cast<int16_t>(x(random)), t = static_cast<int16_t>(y(random));
    XUNREC_check_image_field(l, t, static_cast<int16_t>(l + 50), static_cast<int16_t>(t + 50),
                             &pixels);
    benchmark::DoNotOptimize(pixels);
  }
  XUNREC_unload_image();
}
BENCHMARK(DarkPixelCount);

}  // namespace
BENCHMARK_MAIN();
