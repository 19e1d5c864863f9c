// `xuntemplate info FILE`: what the template is, at a glance.
#include <iostream>

#include "commands.h"
#include "template_summary.h"
#include "tool.h"

namespace xuntool {
namespace {

// Reading as the form-reading program would is the only true test of "valid for reading".
std::string ReadableVerdict(const std::string& path) {
  try {
    auto t = OpenTemplate(path, false);
    TemplateGuard guard(t);
    return "yes";
  } catch (const ToolError&) {
    const auto diag = xun::basTemplate::LastReadDiagnostic();
    return "no (" + diag.title + ": " + OneLine(diag.text) + ")";
  }
}

void PrintInfo(const std::string& path) {
  auto t = OpenTemplate(path, true);
  TemplateGuard guard(t);
  std::ostream& out = std::cout;
  out << path << ": " << (t->Name().empty() ? "(no name)" : t->Name()) << "\n";
  out << "  File:            " << FileKindName(KindOfFile(path)) << ", version " << t->Version()
      << ", compatible version "
      << (t->CompatibleVersion().empty() ? "not given" : t->CompatibleVersion()) << "\n";
  out << "  Valid for reading: " << ReadableVerdict(path) << "\n";
  PrintSummary(out, *t);
}

}  // namespace

void AddInfoCommand(CLI::App& app, int& status) {
  auto* cmd = app.add_subcommand("info", "Describe a template at a glance");
  cmd->footer(
      Wrap("Describe a template: size and orientation, read type, pages with their image facts, "
           "regions by kind, questions, items (graded, subjective), identification regions and "
           "whether they are valid, link groups, file encoding and version, and whether it is "
           "valid for reading."));
  auto file = std::make_shared<std::string>();
  cmd->add_option("FILE", *file, "Template file (.omr, plain or zipped)")->required();
  cmd->callback([file, &status] {
    PrintInfo(*file);
    status = kExitOk;
  });
}

}  // namespace xuntool
