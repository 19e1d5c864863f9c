// `xuntemplate check FILE...`: opens each file as the form-reading program would and reports what
// fails, then what is accepted but likely wrong.
#include <algorithm>
#include <iostream>
#include <vector>

#include "check_warnings.h"
#include "commands.h"
#include "tool.h"

namespace xuntool {
namespace {

int CheckFile(const std::string& path) {
  try {
    RequireInputFile(path);
  } catch (const ToolError& e) {
    std::cerr << e.what() << "\n";
    return kExitError;
  }
  std::shared_ptr<xun::clsXUNTemplate> t;
  try {
    t = OpenTemplate(path, false);
  } catch (const ToolError& e) {
    std::cout << e.what() << "\n";
    return kExitError;
  }
  TemplateGuard guard(t);
  // Taken from the read itself: the file is not opened a second time.
  const auto warnings = CollectWarnings(*t, xun::basTemplate::LastReadSectionLines());
  for (const Warning& w : warnings)
    std::cout << Diagnostic(path, w.line, "warning", "", w.text) << "\n";
  if (warnings.empty()) std::cout << path << ": ok\n";
  return warnings.empty() ? kExitOk : kExitWarnings;
}

}  // namespace

void AddCheckCommand(CLI::App& app, int& status) {
  auto* cmd = app.add_subcommand("check", "Check templates as the form-reading program opens them");
  cmd->footer(
      Wrap("Open each template for reading, as the form-reading program does, and print every "
           "problem as FILE:LINE: error: TITLE: TEXT, then warnings the library accepts: regions "
           "outside the page, overlapping regions, duplicate question names, choices and codes of "
           "different lengths, choices that do not match the bubbles along a question, link groups "
           "that link nothing. Exit status: 0 clean, 1 warnings only, 2 errors."));
  auto files = std::make_shared<std::vector<std::string>>();
  cmd->add_option("FILE", *files, "Template files (.omr, plain or zipped)")->required();
  cmd->callback([files, &status] {
    int worst = kExitOk;
    for (const std::string& path : *files)
      worst = std::max(worst, CheckFile(path));
    status = worst;
  });
}

}  // namespace xuntool
