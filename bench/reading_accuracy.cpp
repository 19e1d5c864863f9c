// How right the reading is, over many generated sheets: every answer sheet of a made-up class is
// printed, marked, put through a scanner at every resolution and distortion of the generator,
// read, and compared bubble by bubble and answer by answer with the truth the generator wrote.
//   reading_accuracy [SHEETS]   (default 500)
// Prints the confusion table of bubbles (truth x judgement), the answers right, wrong and
// flagged, and the review rate. Exits 1 when a bubble the generator did not make ambiguous is
// judged the other way, or a wrong answer is not flagged.
#include <opencv2/core.hpp>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <string>

#include "common/expected_answers.h"
#include "synthscan/image_files.h"
#include "synthscan/printed_page.h"
#include "synthscan/synthetic_scan.h"
#include "xun/reading/form_reader.h"
#include "xun/xun.h"

namespace {

namespace ss = xun::synthscan;
using xun::reading::AnswerStatus;
using xun::reading::MarkState;

// The scanner for sheet i: the resolutions in turn, a random turn, scale and shift within the
// generator's limits, and one of the harder treatments in turn.
ss::Distortions ScannerFor(int i, std::mt19937& random, int& dpi, std::string& name) {
  static const int kDpis[] = {150, 200, 300, 600};
  dpi = kDpis[i % 4];
  std::uniform_real_distribution<double> turn(-3, 3), scale(0.98, 1.02), shift(-30, 30),
      blur(0, 1.5), noise(0, 8);
  ss::Distortions d;
  d.rotate = turn(random);
  d.scale = scale(random);
  d.shift_x = shift(random);
  d.shift_y = shift(random);
  d.blur = blur(random);
  d.noise = noise(random);
  switch ((i / 4) % 5) {
    case 0:
      name = "plain";
      break;
    case 1:
      d.jpeg = 60;
      name = "jpeg60";
      break;
    case 2:
      d.jpeg = 15;
      name = "jpeg15";
      break;
    case 3:
      d.contrast = 0.5;
      name = "contrast0.5";
      break;
    default:
      d.dither = true;
      name = "dithered";
      break;
  }
  return d;
}

}  // namespace

int main(int argc, char** argv) {
  const int sheets = argc > 1 ? std::atoi(argv[1]) : 500;
  auto exam = xun::clsXUNTemplate::Create();
  if (!exam->Read(std::string(XUN_EXAMPLES_DIR) + "/exam.omr")) return 2;
  const xun::reading::FormReader reader(*exam);
  std::map<int, cv::Mat> printed;
  const std::string file =
      (std::filesystem::temp_directory_path() / "xun-reading-accuracy.png").string();
  std::mt19937 random(2026);

  // confusion[truth][judgement]
  std::map<ss::Truth, std::map<MarkState, long>> confusion;
  long answers = 0, right = 0, wrong_flagged = 0, wrong_silent = 0, flagged = 0, unread = 0;
  long sheets_to_review = 0;
  double least_found = 1;  // the smallest share of the printed bubbles a registration found
  for (int i = 0; i < sheets; ++i) {
    int dpi = 0;
    std::string scanner;
    const ss::Distortions d = ScannerFor(i, random, dpi, scanner);
    cv::Mat& print = printed[dpi];
    if (print.empty()) print = ss::PrintedPage(*exam, 1, dpi);
    const uint32_t seed = static_cast<uint32_t>(1000 + i);
    const ss::Scan scan =
        ss::MakeScan(*exam, 1, print, dpi, ss::RandomMarks(*exam->Pages()->Item(1), seed), d, seed);
    ss::WriteGreyImage(file, scan.image, dpi, d.dither, 0);
    const xun::reading::FormRecord record = reader.Read({file});
    if (!record.pages[0].registered) {
      ++unread;
      std::printf("sheet %d (%d dpi, %s): not read: %s\n", i, dpi, scanner.c_str(),
                  record.pages[0].error.c_str());
      continue;
    }
    if (record.NeedsReview()) ++sheets_to_review;
    least_found = std::min(least_found, static_cast<double>(record.pages[0].bubbles_found) /
                                            record.pages[0].bubbles_printed);
    std::map<std::tuple<std::string, int, int>, MarkState> judged;
    std::map<std::tuple<std::string, int, int>, int> fills;
    for (const auto& b : record.pages[0].bubbles) {
      judged[{b.region, b.row, b.col}] = b.state;
      fills[{b.region, b.row, b.col}] = b.fill;
    }
    for (const ss::BubbleTruth& b : scan.bubbles) {
      const MarkState state = judged[{b.at.region, b.at.row, b.at.col}];
      ++confusion[b.truth][state];
      const bool misjudged = (b.truth == ss::Truth::kMarked && state == MarkState::Unmarked) ||
                             (b.truth == ss::Truth::kUnmarked && state == MarkState::Marked);
      if (b.truth != ss::Truth::kAmbiguous && state == MarkState::Doubtful)
        std::printf("sheet %d (%d dpi, %s): %s %d,%d (%s, net fill %d) doubtful\n", i, dpi,
                    scanner.c_str(), b.at.region.c_str(), b.at.row, b.at.col,
                    ss::MarkName(b.mark).c_str(), fills[{b.at.region, b.at.row, b.at.col}]);
      if (misjudged)
        std::printf("sheet %d (%d dpi, %s): %s %d,%d (%s) judged the other way\n", i, dpi,
                    scanner.c_str(), b.at.region.c_str(), b.at.row, b.at.col,
                    ss::MarkName(b.mark).c_str());
    }
    // An answer is right when it is what the unambiguous marks give; it is checked only when
    // none of its bubbles is ambiguous.
    const std::map<std::string, std::string> expected = xun::testing::ExpectedAnswers(*exam, scan);
    for (const auto& a : record.answers) {
      ++answers;
      const bool is_flagged = a.status == AnswerStatus::Doubtful || a.status == AnswerStatus::Error;
      if (is_flagged) ++flagged;
      const auto it = expected.find(a.name);
      if (it == expected.end()) continue;
      if (a.value == it->second) {
        ++right;
      } else if (is_flagged) {
        ++wrong_flagged;
      } else {
        ++wrong_silent;
        std::printf("sheet %d (%d dpi, %s): %s read '%s', truth '%s', not flagged\n", i, dpi,
                    scanner.c_str(), a.name.c_str(), a.value.c_str(), it->second.c_str());
      }
    }
  }
  std::filesystem::remove(file);

  std::printf("\n%d sheets, %ld not read; the fewest bubbles a registration found: %.1f%%\n",
              sheets, unread, 100 * least_found);
  std::printf("\nbubbles: truth x judgement\n");
  std::printf("%-10s %10s %10s %10s\n", "", "unmarked", "doubtful", "marked");
  for (const ss::Truth t : {ss::Truth::kUnmarked, ss::Truth::kMarked, ss::Truth::kAmbiguous})
    std::printf("%-10s %10ld %10ld %10ld\n", ss::TruthName(t).c_str(),
                confusion[t][MarkState::Unmarked], confusion[t][MarkState::Doubtful],
                confusion[t][MarkState::Marked]);
  const long checked = right + wrong_flagged + wrong_silent;
  std::printf(
      "\nanswers: %ld, of them %ld without an ambiguous bubble: %ld right (%.3f%%), %ld "
      "wrong and flagged, %ld wrong and not flagged\n",
      answers, checked, right, checked ? 100.0 * right / checked : 0.0, wrong_flagged,
      wrong_silent);
  std::printf("flagged answers: %ld (%.1f%%); sheets to review: %ld (%.1f%%)\n", flagged,
              answers ? 100.0 * flagged / answers : 0.0, sheets_to_review,
              sheets ? 100.0 * sheets_to_review / sheets : 0.0);
  const long misjudged = confusion[ss::Truth::kMarked][MarkState::Unmarked] +
                         confusion[ss::Truth::kUnmarked][MarkState::Marked];
  exam->Free();
  return misjudged == 0 && wrong_silent == 0 && unread == 0 ? 0 : 1;
}
