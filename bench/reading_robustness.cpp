// Whether a scanner's distortions change what is read: sheets of the letter form (letter_form.h)
// marked with clear marks only (one full mark a question, a few questions left blank), scanned
// straight at 300 dpi and then turned, scaled, moved, blurred, compressed and flattened to the
// generator's limits. Every answer of a distorted scan is compared with the straight scan's.
// Then an unmarked sheet (every answer must be blank) and pictures that are not the form (each
// must be refused with a reason).
//   reading_robustness [SHEETS]   (default 10)
// Prints the answers changed under each distortion; exits 1 when any changed, the blank sheet
// read a mark, or a picture was read.
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "letter_form.h"
#include "synthscan/image_files.h"
#include "synthscan/printed_page.h"
#include "synthscan/synthetic_scan.h"
#include "xun/reading/form_reader.h"

namespace {

namespace ss = xun::synthscan;
using xun::reading::AnswerStatus;
using xun::reading::FormRecord;

constexpr int kDpi = 300;

struct Condition {
  const char* name;
  ss::Distortions d;
};

std::vector<Condition> Conditions() {
  std::vector<Condition> all;
  const auto add = [&all](const char* name, auto change) {
    ss::Distortions d;
    change(d);
    all.push_back({name, d});
  };
  add("turned 1 degree", [](ss::Distortions& d) { d.rotate = 1; });
  add("turned 3 degrees", [](ss::Distortions& d) { d.rotate = 3; });
  add("turned -3 degrees", [](ss::Distortions& d) { d.rotate = -3; });
  add("scaled 98%", [](ss::Distortions& d) { d.scale = 0.98; });
  add("scaled 102%", [](ss::Distortions& d) { d.scale = 1.02; });
  add("moved 1% (0.085 inch)", [](ss::Distortions& d) { d.shift_x = d.shift_y = 8.5; });
  add("moved 0.3 inch", [](ss::Distortions& d) { d.shift_x = d.shift_y = 30; });
  add("moved -0.3 inch", [](ss::Distortions& d) { d.shift_x = d.shift_y = -30; });
  add("blurred (1.5 pixels)", [](ss::Distortions& d) { d.blur = 1.5; });
  add("JPEG quality 15", [](ss::Distortions& d) { d.jpeg = 15; });
  add("contrast halved", [](ss::Distortions& d) { d.contrast = 0.5; });
  add("all of them at once", [](ss::Distortions& d) {
    d.rotate = -3;
    d.scale = 1.02;
    d.shift_x = 30;
    d.shift_y = -30;
    d.blur = 1.5;
    d.noise = 6;
    d.jpeg = 15;
    d.contrast = 0.5;
  });
  return all;
}

// One full mark in each question's row, a tenth of the questions left blank.
ss::MarkPlan ClearMarks(uint32_t seed) {
  std::mt19937 random(seed);
  ss::MarkPlan plan;
  for (const char* region : {"Left", "Right"})
    for (int row = 1; row <= 20; ++row)
      if (random() % 10 != 0)
        plan[{region, row, static_cast<int>(random() % 5) + 1}] = {ss::MarkKind::kFull, 0};
  return plan;
}

std::string Write(const std::filesystem::path& folder, const std::string& name,
                  const cv::Mat& image, int jpeg) {
  const std::string file = (folder / (name + (jpeg ? ".jpg" : ".png"))).string();
  ss::WriteGreyImage(file, image, kDpi, false, jpeg);
  return file;
}

}  // namespace

int main(int argc, char** argv) {
  const int sheets = argc > 1 ? std::atoi(argv[1]) : 10;
  cv::setNumThreads(1);
  const auto form = xunbench::LetterForm();
  const xun::reading::FormReader reader(*form);
  const cv::Mat printed = ss::PrintedPage(*form, 1, kDpi);
  const auto folder = std::filesystem::temp_directory_path() / "xun-reading-robustness";
  std::filesystem::create_directories(folder);
  bool failed = false;

  const std::vector<Condition> conditions = Conditions();
  std::vector<int> changed(conditions.size(), 0), unread(conditions.size(), 0);
  int answers = 0;
  for (int sheet = 0; sheet < sheets; ++sheet) {
    const auto seed = static_cast<uint32_t>(100 + sheet);
    const ss::MarkPlan marks = ClearMarks(seed);
    const auto scan = [&](const ss::Distortions& d, const std::string& name) {
      const ss::Scan made = ss::MakeScan(*form, 1, printed, kDpi, marks, d, seed);
      return reader.Read({Write(folder, name, made.image, d.jpeg)});
    };
    const FormRecord straight = scan({}, "straight");
    for (const auto& a : straight.answers)
      if (a.status != AnswerStatus::Clear && a.status != AnswerStatus::Blank) {
        std::printf("sheet %d, straight: %s reads %s (%s)\n", sheet, a.name.c_str(),
                    a.value.c_str(), a.why.c_str());
        failed = true;
      }
    answers += static_cast<int>(straight.answers.size());
    for (size_t c = 0; c < conditions.size(); ++c) {
      const FormRecord record = scan(conditions[c].d, "distorted");
      if (!record.pages[0].registered) {
        unread[c] += static_cast<int>(straight.answers.size());
        continue;
      }
      for (size_t i = 0; i < record.answers.size(); ++i)
        if (record.answers[i].value != straight.answers[i].value ||
            record.answers[i].status != straight.answers[i].status)
          ++changed[c];
    }
  }
  std::printf(
      "%d sheets of %d answers each, clear marks, 300 dpi: answers changed against the "
      "straight scan\n",
      sheets, sheets ? answers / sheets : 0);
  for (size_t c = 0; c < conditions.size(); ++c) {
    std::printf("  %-24s %4d changed, %4d not read\n", conditions[c].name, changed[c], unread[c]);
    failed = failed || changed[c] || unread[c];
  }

  // An unmarked sheet, through the harshest scanner.
  ss::Distortions harsh = conditions.back().d;
  const ss::Scan blank = ss::MakeScan(*form, 1, printed, kDpi, {}, harsh, 7);
  const FormRecord empty = reader.Read({Write(folder, "blank", blank.image, harsh.jpeg)});
  int marked = 0;
  for (const auto& a : empty.answers)
    if (a.status != AnswerStatus::Blank) ++marked;
  std::printf("unmarked sheet: %d of %zu answers not blank%s\n", marked, empty.answers.size(),
              empty.pages[0].registered ? "" : " (not registered)");
  failed = failed || marked || !empty.pages[0].registered;

  // Pictures that are not this form: noise, a smooth gradient, a page of text-like lines, a blank
  // page, and the form's page turned upside down.
  cv::Mat noise(3300, 2550, CV_8UC1), gradient(3300, 2550, CV_8UC1),
      lines(3300, 2550, CV_8UC1, cv::Scalar(255));
  cv::randu(noise, 0, 256);
  for (int y = 0; y < gradient.rows; ++y)
    gradient.row(y).setTo(cv::Scalar(y * 255 / gradient.rows));
  std::mt19937 random(3);
  for (int y = 150; y < 3150; y += 60)
    for (int x = 150; x < 2400; x += 40 + static_cast<int>(random() % 80))
      cv::rectangle(lines, cv::Rect(x, y, 20 + static_cast<int>(random() % 30), 30), cv::Scalar(0),
                    cv::FILLED);
  cv::Mat upside_down;
  cv::rotate(ss::MakeScan(*form, 1, printed, kDpi, ClearMarks(1), {}, 1).image, upside_down,
             cv::ROTATE_180);
  const std::vector<std::pair<const char*, cv::Mat>> pictures = {
      {"noise", noise},
      {"gradient", gradient},
      {"text-like lines", lines},
      {"blank paper", cv::Mat(3300, 2550, CV_8UC1, cv::Scalar(250))},
      {"the form upside down", upside_down}};
  for (const auto& [name, picture] : pictures) {
    const FormRecord record = reader.Read({Write(folder, "picture", picture, 0)});
    std::printf("%-22s %s\n", name,
                record.pages[0].registered ? "READ AS THE FORM"
                                           : ("refused: " + record.pages[0].error).c_str());
    failed = failed || record.pages[0].registered;
  }
  std::filesystem::remove_all(folder);
  return failed ? 1 : 0;
}
