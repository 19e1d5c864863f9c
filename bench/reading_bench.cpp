// Reading a filled form at 300 dpi: the letter form of 200 bubbles (letter_form.h), printed,
// marked by a made-up respondent and scanned turned and noisy. What the reading costs
// (registration, every region, the record) against decoding its image file alone, one core.
#include <benchmark/benchmark.h>
#include <opencv2/core.hpp>

#include <filesystem>
#include <string>

#include "engine/image_file.h"
#include "letter_form.h"
#include "synthscan/image_files.h"
#include "synthscan/printed_page.h"
#include "synthscan/synthetic_scan.h"
#include "xun/reading/form_reader.h"
#include "xun/xun.h"

namespace {

constexpr int kDpi = 300;

struct Fixture {
  std::shared_ptr<xun::clsXUNTemplate> form = xunbench::LetterForm();
  std::string png, jpeg;
  Fixture() {
    cv::setNumThreads(1);
    xun::synthscan::Distortions d;
    d.rotate = 1.5;
    d.shift_x = 12;
    d.noise = 5;
    d.blur = 0.8;
    const xun::synthscan::Scan scan =
        xun::synthscan::MakeScan(*form, 1, xun::synthscan::PrintedPage(*form, 1, kDpi), kDpi,
                                 xun::synthscan::RandomMarks(*form->Pages()->Item(1), 3), d, 3);
    const auto folder = std::filesystem::temp_directory_path();
    png = (folder / "xun-reading-bench.png").string();
    jpeg = (folder / "xun-reading-bench.jpg").string();
    xun::synthscan::WriteGreyImage(png, scan.image, kDpi, false, 0);
    xun::synthscan::WriteGreyImage(jpeg, scan.image, kDpi, false, 85);
  }
};

Fixture& Shared() {
  static Fixture fixture;
  return fixture;
}

const std::string& FileOf(const benchmark::State& state) {
  return state.range(0) ? Shared().jpeg : Shared().png;
}

void DecodeOnly(benchmark::State& state) {
  const std::string& file = FileOf(state);
  for (auto _ : state)
    benchmark::DoNotOptimize(xunrec::DecodeGrey(file));
  state.SetLabel(state.range(0) ? "jpeg" : "png");
}
BENCHMARK(DecodeOnly)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void ReadForm(benchmark::State& state) {
  const std::string& file = FileOf(state);
  const xun::reading::FormReader reader(*Shared().form);
  for (auto _ : state) {
    const xun::reading::FormRecord record = reader.Read({file});
    if (!record.pages[0].registered) state.SkipWithError(record.pages[0].error.c_str());
    benchmark::DoNotOptimize(record);
  }
  state.SetLabel(state.range(0) ? "jpeg" : "png");
}
BENCHMARK(ReadForm)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace
BENCHMARK_MAIN();
