// `xuntemplate register TEMPLATE [-o OUT] [--page N]`: the library's save with registration, and
// what it found for every OMR region against the printed grid.
#include <algorithm>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "commands.h"
#include "tool.h"

namespace xuntool {
namespace {

namespace fs = std::filesystem;

struct RegisterArgs {
  std::string input, output;
  int32_t page = 0;  // 0: every page
};

// A region's state before the save: where its first bubble is printed.
struct Before {
  std::shared_ptr<xun::clsXUNField> field;
  xun::BubbleRect printed;
};

// The grid the region describes without its registration: StartCol/StartRow, the gaps and a
// bubble of half the pitch.
xun::BubbleRect PrintedFirstBubble(const xun::clsXUNField& field) {
  const std::shared_ptr<xun::clsXUNField> plain = field.Copy();
  if (plain->Extra()) plain->Extra()->ReplaceUnnamedValues({});
  return xun::BubbleGrid::Of(*plain).Bubble(1, 1);
}

std::string Edges(const xun::BubbleRect& r) {
  return "left " + std::to_string(r.Left) + ", top " + std::to_string(r.Top) + " (" +
         std::to_string(r.Right - r.Left) + " x " + std::to_string(r.Bottom - r.Top) + ")";
}

std::string Signed(int32_t value) {
  return (value > 0 ? "+" : "") + std::to_string(value);
}

// The blank fills of a registered region: the last NumRows * NumCols of its registration values
// (layout in docs/recognition.md).
std::string BlankFills(const xun::clsXUNField& field) {
  const std::vector<int16_t> values = field.Extra()->UnnamedValues();
  const size_t count = static_cast<size_t>(field.NumRows()) * static_cast<size_t>(field.NumCols());
  if (count == 0 || values.size() < count) return "none";
  const auto first = values.end() - static_cast<std::ptrdiff_t>(count);
  const auto [low, high] = std::minmax_element(first, values.end());
  double sum = 0;
  for (auto it = first; it != values.end(); ++it)
    sum += *it;
  std::ostringstream out;
  out << "min " << *low << "%, mean " << std::fixed << std::setprecision(1)
      << sum / static_cast<double>(count) << "%, max " << *high << "%";
  return out.str();
}

// What the library said about the region while saving, as the reason it was not registered; ""
// when it said nothing.
std::string Complaint(const RegistrationNotes& notes, int32_t page_number,
                      const std::string& name) {
  const std::string page = std::to_string(page_number);
  for (const auto& message : notes.messages) {
    if (message.text.find("templage page " + page + " is invalid") != std::string::npos)
      return "the page image is missing or cannot be loaded";
    const std::string region = "\r\nPage: " + page + "\r\nRegion: " + name;
    if (message.text.size() < region.size() ||
        message.text.compare(message.text.size() - region.size(), region.size(), region) != 0)
      continue;
    if (message.title == "Invalid Region Registration")
      return "the region has no rectangle or grid to look for";
    // Without an engine every check comes back empty, which reads as a grid that does not fit.
    if (!notes.failures.empty()) return "the library reported a failure (see the warnings)";
    return "the engine could not fit the region's grid on the page image";
  }
  return "";
}

void Register(const RegisterArgs& args, int& status) {
  auto t = OpenTemplate(args.input, true);
  TemplateGuard guard(t);
  if (args.page != 0) RequirePage(*t, args.input, args.page);
  const int32_t pages = t->NumPages();

  // The printed grid first: registration writes the found offsets back into StartCol/StartRow.
  std::vector<std::vector<Before>> before;
  for (const auto& page : *t->Pages()) {
    before.emplace_back();
    if (!page->Fields()) continue;
    for (const auto& field : *page->Fields())
      if (field->RecognitionType() == xun::xunRecogTypeOMR)
        before.back().push_back({field, PrintedFirstBubble(*field)});
  }

  // Without -o the registered template is written to a scratch file and thrown away: the save is
  // what registers.
  RegistrationNotes notes;
  const bool keep = !args.output.empty();
  std::string target = args.output;
  if (!keep) {
    target = xun::basPublic::GetUniqueFileName("xun-register", ".omr",
                                               fs::temp_directory_path().string());
    if (target.empty()) throw ToolError("xuntemplate: error: no scratch file can be made");
  }
  const bool valid = SaveTemplateAs(*t, target, KeptEncoding(args.input), &notes);
  if (!keep) {
    std::error_code ec;
    fs::remove(target, ec);
  }

  int32_t regions = 0, registered = 0;
  for (int32_t p = 1; p <= pages; ++p) {
    if (args.page != 0 && p != args.page) continue;
    const std::shared_ptr<xun::clsXUNPage> page = t->Pages()->Item(p);
    std::cout << "page " << p << ": ";
    if (page->ImageFile().empty()) {
      std::cout << "no page image, nothing to register\n";
      continue;
    }
    std::cout << "image " << page->ImageWidth() << " x " << page->ImageHeight() << " px at "
              << page->XDPI() << " x " << page->YDPI() << " dpi, "
              << Plural(static_cast<int64_t>(before[p - 1].size()), "OMR region", "OMR regions")
              << "\n";
    for (const Before& region : before[p - 1]) {
      ++regions;
      const xun::clsXUNField& field = *region.field;
      std::cout << "  " << field.FieldName() << ": ";
      const std::string complaint = Complaint(notes, p, field.FieldName());
      const xun::BubbleGrid grid = xun::BubbleGrid::Of(field);
      if (!complaint.empty() || !grid.Registered()) {
        std::cout << "not registered (" << field.NumRows() << " x " << field.NumCols()
                  << " bubbles asked for): "
                  << (complaint.empty() ? "the library registered nothing" : complaint) << "\n";
        continue;
      }
      ++registered;
      const xun::BubbleRect found = grid.Bubble(1, 1);
      std::cout << "registered, " << grid.NumRows() << " x " << grid.NumCols()
                << " bubbles (rows x columns)\n";
      std::cout << "    first bubble printed    " << Edges(region.printed) << "\n";
      std::cout << "    first bubble registered " << Edges(found) << ", moved "
                << Signed(found.Left - region.printed.Left) << ", "
                << Signed(found.Top - region.printed.Top) << "\n";
      std::cout << "    bubble size " << grid.BubbleWidth() << " x " << grid.BubbleHeight()
                << ", blank fill " << BlankFills(field) << "\n";
    }
  }
  std::cout << registered << " of " << Plural(regions, "OMR region", "OMR regions")
            << " registered";
  if (keep) std::cout << "; saved to " << args.output;
  std::cout << "\n";
  // Failures the library trapped on the way (an engine that cannot be found, say) explain a
  // region that was not registered.
  std::vector<std::string> said;
  for (const std::string& failure : notes.failures) {
    if (std::find(said.begin(), said.end(), failure) != said.end()) continue;
    said.push_back(failure);
    std::cerr << "xuntemplate: warning: the library reported a failure in " << failure << "\n";
  }
  if (keep && !valid)
    std::cerr << "xuntemplate: warning: " << args.output
              << ": not valid for reading (see xuntemplate check)\n";
  status = registered == regions ? kExitOk : kExitWarnings;
}

}  // namespace

void AddRegisterCommand(CLI::App& app, int& status) {
  auto* cmd = app.add_subcommand("register", "Register the OMR regions against the page images");
  cmd->footer(Wrap(
      "Register every OMR region of every page that has a page image, as the library does when "
      "it saves with registration: the recognition engine finds each region's bubble grid on the "
      "image, and the grid found becomes the region's registration. Prints, per region, whether "
      "it was registered (and why not), the grid found, the first bubble where the template "
      "prints it and where it was found, the bubble size and the blank fills. With -o the "
      "registered template is saved there (OUT may be TEMPLATE); without it nothing is written. "
      "Exit status 1 when a region was not registered."));
  auto args = std::make_shared<RegisterArgs>();
  cmd->add_option("TEMPLATE", args->input, "Template file to read (.omr, plain or zipped)")
      ->required();
  cmd->add_option("-o,--output", args->output, "Template file to write, registered");
  cmd->add_option("--page", args->page, "Report only this page, from 1 (every page registers)");
  cmd->callback([args, &status] { Register(*args, status); });
}

}  // namespace xuntool
