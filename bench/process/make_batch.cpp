// A batch of filled forms to read from outside: the letter form of 200 bubbles (letter_form.h)
// saved as FOLDER/form.omr, and COUNT scans of it at 300 dpi (FOLDER/form-001.png, ...), each
// marked by another made-up respondent and turned, scaled, moved, blurred and noisy as a scanner
// would. bench/process/read_batch.sh times `xuntemplate read` on them.
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>

#include "letter_form.h"
#include "synthscan/answers.h"
#include "synthscan/image_files.h"
#include "synthscan/printed_page.h"
#include "synthscan/synthetic_scan.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: make_batch FOLDER COUNT\n");
    return 2;
  }
  constexpr int kDpi = 300;
  const std::filesystem::path folder = argv[1];
  const int count = std::stoi(argv[2]);
  std::filesystem::create_directories(folder);
  const auto form = xunbench::LetterForm();
  if (!form->Save((folder / "form.omr").string(), false)) {
    std::fprintf(stderr, "make_batch: cannot save %s\n", (folder / "form.omr").c_str());
    return 1;
  }
  const cv::Mat printed = xun::synthscan::PrintedPage(*form, 1, kDpi);
  std::mt19937 random(91);
  auto between = [&](double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
  };
  for (int i = 1; i <= count; ++i) {
    xun::synthscan::Distortions d;
    d.rotate = between(-3, 3);
    d.scale = between(0.98, 1.02);
    d.shift_x = between(-30, 30);
    d.shift_y = between(-30, 30);
    d.blur = between(0, 1);
    d.noise = between(0, 6);
    const auto seed = static_cast<uint32_t>(i);
    const xun::synthscan::Scan scan = xun::synthscan::MakeScan(
        *form, 1, printed, kDpi, xun::synthscan::RandomMarks(*form->Pages()->Item(1), seed), d,
        seed);
    char name[32];
    std::snprintf(name, sizeof name, "form-%03d.png", i);
    xun::synthscan::WriteGreyImage((folder / name).string(), scan.image, kDpi, false, 0);
  }
  return 0;
}
