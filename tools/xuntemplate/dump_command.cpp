// `xuntemplate dump FILE`: the whole tree as JSON.
#include <filesystem>
#include <iostream>

#include "commands.h"
#include "json_document.h"
#include "tool.h"

namespace xuntool {
namespace {

struct DumpArgs {
  std::string file, output, images;
};

void Dump(const DumpArgs& args) {
  auto t = OpenTemplate(args.file, true);
  TemplateGuard guard(t);
  DumpOptions options;
  options.images_folder = args.images;
  options.document_folder =
      args.output.empty() ? "." : std::filesystem::path(args.output).parent_path().string();
  // Invalid UTF-8 cannot come out of the library, but a dump must never stop half-way.
  const std::string text =
      DumpTemplate(*t, options).dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
  if (args.output.empty() || args.output == "-") {
    std::cout << text;
    return;
  }
  WriteOutputFile(args.output, text);
}

}  // namespace

void AddDumpCommand(CLI::App& app, int& status) {
  auto* cmd = app.add_subcommand("dump", "Write the whole template tree as JSON");
  cmd->footer(Wrap(
      "Write the whole template tree as JSON: every stored property of the template, its "
      "pages, regions, questions, choices, codes, timing marks, extra values, database settings "
      "and attributes, plus computed values (counts, Version, Valid) for reading only. "
      "`xuntemplate build` turns the JSON back into a template."));
  auto args = std::make_shared<DumpArgs>();
  cmd->add_option("FILE", args->file, "Template file (.omr, plain or zipped)")->required();
  cmd->add_option("-o,--output", args->output, "Write the JSON here instead of standard output");
  cmd->add_option("--images", args->images,
                  "Copy the page images into this folder and name them in the JSON, so that "
                  "build puts them back (without it, ImageFile is empty and HasImage tells)");
  cmd->callback([args, &status] {
    Dump(*args);
    status = kExitOk;
  });
}

}  // namespace xuntool
