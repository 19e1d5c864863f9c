// synthscan: a filled-in, scanned page of a template and its truth file (docs/synthscan.md).
//   synthscan TEMPLATE -o SCAN.png (--marks MARKS.csv | --random SEED) [options]
#include <CLI/CLI.hpp>

#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "synthscan/answers.h"
#include "synthscan/image_files.h"
#include "synthscan/printed_page.h"
#include "synthscan/synthetic_scan.h"
#include "synthscan/truth_file.h"
#include "xun/xun.h"

namespace {

using namespace xun::synthscan;

struct Options {
  std::string template_file, output, printed, marks;
  std::optional<uint32_t> random;
  int page = 1, dpi = 200;
  uint32_t seed = 1;
  Distortions distortions;
};

int Run(const Options& o) {
  // Refuse what cannot be written before any work.
  if (FormatOfFileName(o.output) == ImageFormat::kJpeg && o.distortions.dither)
    throw std::invalid_argument(o.output + ": a black-and-white scan is saved as PNG or TIFF");
  const std::string refusal = Refusal(o.distortions);
  if (!refusal.empty()) throw std::invalid_argument(refusal);

  auto form = xun::clsXUNTemplate::Create();
  if (!form->Read(o.template_file, false))
    throw std::runtime_error(o.template_file + ": cannot be read as a template");
  // Asked of the list only when it is there, so the library has no failure to report.
  const auto pages = form->Pages();
  const auto page =
      pages && o.page >= 1 && o.page <= pages->Count() ? pages->Item(o.page) : nullptr;
  if (!page) throw std::runtime_error(o.template_file + ": has no page " + std::to_string(o.page));

  const cv::Mat printed = o.printed.empty() ? PrintedPage(*form, o.page, o.dpi)
                                            : PrintedPageFile(o.printed, *form, o.dpi);
  const MarkPlan plan = o.random ? RandomMarks(*page, *o.random) : ReadMarksFile(o.marks, *page);
  const Scan scan = MakeScan(*form, o.page, printed, o.dpi, plan, o.distortions, o.seed);
  form->Free();

  WriteGreyImage(o.output, scan.image, o.dpi, o.distortions.dither,
                 o.distortions.jpeg > 0 ? o.distortions.jpeg : 90);
  const std::string marks = o.random ? "random " + std::to_string(*o.random) : std::string(o.marks);
  WriteTruthFile(TruthFileFor(o.output), TruthDocument(scan, o.template_file, marks));
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"Makes a filled-in, scanned page of a template and the truth about its bubbles."};
  app.name("synthscan");
  Options o;
  app.add_option("template", o.template_file, "the template (.omr)")->required();
  app.add_option("-o,--output", o.output, "the scan: .png, .jpg/.jpeg or .tif/.tiff")->required();
  app.add_option("--page", o.page, "the page of the template (1-based)")->capture_default_str();
  app.add_option("--dpi", o.dpi, "the resolution of the print and the scan")
      ->check(CLI::IsMember({150, 200, 300, 600}))
      ->capture_default_str();
  app.add_option("--printed", o.printed,
                 "the printed page (a PNG from 'xuntemplate print' at --dpi); printed here when "
                 "not given");
  auto* marks = app.add_option("--marks", o.marks, "a file of region,row,col,kind lines");
  auto* random = app.add_option("--random", o.random, "make up the marks from this seed");
  marks->excludes(random);
  app.add_option("--seed", o.seed, "the seed of the hand that marks and of the noise")
      ->capture_default_str();
  app.add_option("--rotate", o.distortions.rotate, "degrees counter-clockwise, up to 3");
  app.add_option("--scale", o.distortions.scale, "size factor, 0.98 to 1.02");
  app.add_option("--shift-x", o.distortions.shift_x, "page units (1/100 inch) right, up to 30");
  app.add_option("--shift-y", o.distortions.shift_y, "page units down, up to 30");
  app.add_option("--blur", o.distortions.blur, "Gaussian blur, sigma in pixels");
  app.add_option("--noise", o.distortions.noise, "Gaussian noise, sigma in grey levels");
  app.add_option("--contrast", o.distortions.contrast, "share of contrast kept: 0.5 halves it");
  app.add_option("--jpeg", o.distortions.jpeg, "JPEG compression at this quality (1 to 100)");
  app.add_flag("--dither", o.distortions.dither, "black and white by error diffusion (1-bit)");
  CLI11_PARSE(app, argc, argv);
  if (o.marks.empty() && !o.random) {
    std::cerr << "synthscan: error: give the marks: --marks FILE or --random SEED\n";
    return 2;
  }
  try {
    return Run(o);
  } catch (const std::exception& e) {
    std::cerr << "synthscan: error: " << e.what() << "\n";
    return 2;
  }
}
