// `xuntemplate convert IN OUT`: read and save again, which normalises a template file.
#include <iostream>

#include "commands.h"
#include "tool.h"

namespace xuntool {
namespace {

struct ConvertArgs {
  std::string input, output, encoding;
};

void Convert(const ConvertArgs& args) {
  auto t = OpenTemplate(args.input, true);
  TemplateGuard guard(t);
  const std::optional<Encoding> encoding =
      args.encoding.empty() ? KeptEncoding(args.input) : ParseEncoding(args.encoding);
  const bool valid = SaveTemplateAs(*t, args.output, encoding);
  std::cout << args.output << ": " << FileKindName(KindOfFile(args.output)) << ", "
            << Plural(t->NumPages(), "page", "pages") << ", "
            << Plural(t->NumFields(), "region", "regions") << ", "
            << Plural(t->NumItems(), "item", "items") << "\n";
  if (!valid)
    std::cerr << "xuntemplate: warning: " << args.output
              << ": not valid for reading (see xuntemplate check)\n";
}

}  // namespace

void AddConvertCommand(CLI::App& app, int& status) {
  auto* cmd = app.add_subcommand("convert", "Read a template and save it again");
  cmd->footer(Wrap(
      "Read a template and save it again: values cleaned, counts and identification summary "
      "recomputed, keys in the writer's order. A template with page images stays a zip archive. "
      "OUT may be IN."));
  auto args = std::make_shared<ConvertArgs>();
  cmd->add_option("IN", args->input, "Template file to read (.omr, plain or zipped)")->required();
  cmd->add_option("OUT", args->output, "Template file to write")->required();
  cmd->add_option("--encoding", args->encoding,
                  "Text encoding to write: ansi (Windows-1252) or utf16; default: that of IN")
      ->check(CLI::IsMember({"ansi", "utf16"}));
  cmd->callback([args, &status] {
    Convert(*args);
    status = kExitOk;
  });
}

}  // namespace xuntool
