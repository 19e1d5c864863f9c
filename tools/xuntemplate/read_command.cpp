// `xuntemplate read TEMPLATE SCANS... -o results.csv`: filled forms read into one row each.
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <iostream>
#include <mutex>
#include <optional>
#include <sstream>
#include <thread>

#include "commands.h"
#include "read_key.h"
#include "read_output.h"
#include "read_review.h"
#include "tool.h"
#include "xun/reading/form_reader.h"

namespace xuntool {
namespace {

struct ReadArgs {
  std::string file, output, json, clips, review;
  std::vector<std::string> scans, keys;
  int32_t jobs = 0;
};

// One line on a terminal, rewritten as forms are read; nothing when standard error is a file.
class Progress {
 public:
  explicit Progress(size_t total) : total_(total), shown_(isatty(STDERR_FILENO) != 0) {}
  void Done() {
    const size_t done = ++done_;
    if (!shown_) return;
    const std::lock_guard lock(mutex_);
    const size_t width = 30, filled = total_ ? width * done / total_ : width;
    std::cerr << "\r[" << std::string(filled, '#') << std::string(width - filled, ' ') << "] "
              << done << "/" << total_ << " forms" << std::flush;
    if (done == total_) std::cerr << "\n";
  }

 private:
  size_t total_;
  bool shown_;
  std::atomic<size_t> done_{0};
  std::mutex mutex_;
};

void Read(const ReadArgs& args) {
  auto t = OpenTemplate(args.file, false);
  TemplateGuard guard(t);
  xun::reading::ReadOptions options;
  // Clips go beside the results unless asked elsewhere.
  options.clip_folder = !args.clips.empty()
                            ? args.clips
                            : std::filesystem::absolute(args.output).parent_path().string();
  const xun::reading::FormReader reader(*t, {}, options);
  std::optional<xun::reading::Grader> grader;
  if (!args.keys.empty()) grader.emplace(GraderFor(*t, reader, args.keys));
  const size_t pages = static_cast<size_t>(std::max(reader.NumPages(), 1));
  // The scans of a form are its pages in page order (an image file a page, or a multi-page
  // TIFF), form after form.
  const std::vector<xun::reading::ScanPage> scanned = xun::reading::PagesOf(args.scans);
  std::vector<std::vector<xun::reading::ScanPage>> forms;
  for (size_t i = 0; i < scanned.size(); i += pages)
    forms.emplace_back(
        scanned.begin() + static_cast<std::ptrdiff_t>(i),
        scanned.begin() + static_cast<std::ptrdiff_t>(std::min(scanned.size(), i + pages)));

  // Each worker reads with images of its own: the reader keeps no image between forms.
  const size_t jobs = std::clamp<size_t>(
      args.jobs > 0 ? static_cast<size_t>(args.jobs) : std::thread::hardware_concurrency(), 1,
      std::max<size_t>(forms.size(), 1));
  xun::reading::SetImageThreads(1);  // the forms are spread over the cores instead
  std::vector<xun::reading::FormRecord> records(forms.size());
  std::atomic<size_t> next{0};
  Progress progress(forms.size());
  std::vector<std::thread> workers;
  for (size_t w = 0; w < jobs; ++w)
    workers.emplace_back([&] {
      for (size_t i = next++; i < forms.size(); i = next++) {
        records[i] = reader.ReadPages(forms[i]);
        if (grader) grader->Score(records[i]);
        progress.Done();
      }
    });
  for (std::thread& worker : workers)
    worker.join();

  WriteOutputFile(args.output, ResultsCsv(records, grader.has_value()));
  if (!args.json.empty()) WriteOutputFile(args.json, ResultsJsonLines(records));
  if (!args.review.empty()) WriteReviewPictures(args.review, records);
  size_t review = 0, failed = 0;
  for (const auto& record : records) {
    if (record.NeedsReview()) ++review;
    if (!FormRead(record)) ++failed;
  }
  std::cout << args.output << ": " << Plural(static_cast<int64_t>(records.size()), "form", "forms")
            << ", " << review << " to review, " << failed << " not read\n";
}

}  // namespace

void AddReadCommand(CLI::App& app, int& status) {
  auto* cmd = app.add_subcommand("read", "Read filled, scanned forms into a CSV file");
  cmd->footer(Wrap(
      "Read filled forms: each form is one scanned page a page of the template, in page "
      "order, form after form; a multi-page TIFF gives all its pages. One row a form, in the "
      "order given, with the template's items as columns; with --json, one JSON record a form "
      "with every answer's status and confidence, what needs review and why, and the score. A "
      "file that cannot be read or a page that cannot be registered gives a row with an error "
      "status and the reason; it never stops the others. With --key (a CSV file of "
      "question,answer lines, or filled key sheets) the graded questions are scored: a score "
      "column, and each item's points in the JSON. With --review DIR, every form to review gets "
      "a picture, DIR/FIRSTIMAGE.svg: its scans with the bubbles as judged and what to look at "
      "outlined."));
  auto args = std::make_shared<ReadArgs>();
  cmd->add_option("TEMPLATE", args->file, "Template file (.omr, plain or zipped)")->required();
  cmd->add_option("SCANS", args->scans, "Scanned images (PNG, JPEG, TIFF, PCX, DCX)")->required();
  cmd->add_option("-o,--output", args->output, "CSV file to write")->required();
  cmd->add_option("--json", args->json, "JSON Lines file to write as well");
  cmd->add_option("--clips", args->clips,
                  "Folder for image clips and the clips of OCR answers to check (default: the "
                  "results file's)");
  cmd->add_option("--key", args->keys,
                  "Answer key: KEY.csv, or key sheet images (one sheet a test version)");
  cmd->add_option("--review", args->review, "Folder for the review pictures (SVG)");
  cmd->add_option("-j,--jobs", args->jobs, "Forms read at once (default: one a core)")
      ->check(CLI::Range(1, 256));
  cmd->callback([args, &status] {
    Read(*args);
    status = kExitOk;
  });
}

}  // namespace xuntool
