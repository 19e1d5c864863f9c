// `xuntemplate batch write|info`: batch files that join header templates with a form template.
#include <filesystem>
#include <iostream>
#include <vector>

#include "commands.h"
#include "template_summary.h"
#include "tool.h"

namespace xuntool {
namespace {

namespace fs = std::filesystem;

struct BatchArgs {
  std::string output, form, file;
  std::vector<std::string> headers;
};

// The batch file names its members by full path, so it works from any folder.
std::string Absolute(const std::string& path) {
  std::error_code ec;
  const fs::path absolute = fs::absolute(path, ec);
  return ec ? path : absolute.lexically_normal().string();
}

void WriteBatch(const BatchArgs& args) {
  LibrarySession session;
  auto t = xun::clsXUNTemplate::Create();
  TemplateGuard guard(t);
  std::vector<std::string> headers;
  for (const std::string& h : args.headers)
    headers.push_back(Absolute(h));
  if (!t->SaveBatch(args.output, Absolute(args.form), headers))
    throw ToolError("xuntemplate: error: " + args.output + ": " +
                    session.LastWord("the batch file could not be written"));
  std::cout << args.output << ": form " << Absolute(args.form) << ", "
            << Plural(static_cast<int64_t>(headers.size()), "header", "headers") << "\n";
}

void BatchInfo(const BatchArgs& args) {
  RequireInputFile(args.file);
  LibrarySession session;
  auto t = xun::clsXUNTemplate::Create();
  TemplateGuard guard(t);
  fs::path folder = fs::path(args.file).parent_path();
  if (folder.empty()) folder = ".";
  if (!t->ReadBatch(args.file, folder.string()))
    throw ToolError("xuntemplate: error: " + args.file + ": " +
                    session.LastWord("the batch could not be read"));
  std::ostream& out = std::cout;
  out << args.file << ": batch, merged template " << (t->Name().empty() ? "(no name)" : t->Name())
      << "\n";
  out << "  Headers:         " << t->HeaderCount() << " (" << t->HeaderPageCount() << " pages, "
      << t->HeaderItemCount() << " items)\n";
  PrintSummary(out, *t);
}

}  // namespace

void AddBatchCommand(CLI::App& app, int& status) {
  auto* batch = app.add_subcommand("batch", "Write and describe batch files (.rbf)");
  batch->footer(
      Wrap("A batch file names header templates (cover sheets) and a form template that are "
           "read as one template: the header pages first, then the form pages."));
  batch->require_subcommand(1);
  auto args = std::make_shared<BatchArgs>();

  auto* write = batch->add_subcommand(
      "write", "Write a batch file naming the form template and its header templates in order.");
  write->add_option("OUT", args->output, "Batch file to write (.rbf)")->required();
  write->add_option("--form", args->form, "The form template (.omr)")->required();
  write->add_option("--header", args->headers,
                    "A header template (.omr); repeat for several, in the order they precede "
                    "the form");
  write->callback([args, &status] {
    WriteBatch(*args);
    status = kExitOk;
  });

  auto* info = batch->add_subcommand("info", "Describe the merged template of a batch file");
  info->footer(
      Wrap("Read a batch file, merge its header templates and form template, and describe the "
           "merged template as `info` does."));
  info->add_option("FILE", args->file, "Batch file (.rbf)")->required();
  info->callback([args, &status] {
    BatchInfo(*args);
    status = kExitOk;
  });
}

}  // namespace xuntool
