// `xuntemplate build FILE.json -o OUT.omr`: a template from its JSON form.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "commands.h"
#include "json_document.h"
#include "tool.h"

namespace xuntool {
namespace {

struct BuildArgs {
  std::string file, output, encoding;
};

Json ParseDocument(const std::string& path) {
  RequireInputFile(path);
  std::ifstream in(path, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  if (in.bad()) throw ToolError("xuntemplate: error: " + path + ": cannot be read");
  try {
    return Json::parse(text);
  } catch (const Json::parse_error& e) {
    // "[json.exception.parse_error.101] parse error at line 2, ..." without the bracketed id.
    std::string what = e.what();
    const auto close = what.find("] ");
    if (close != std::string::npos) what = what.substr(close + 2);
    throw ToolError("xuntemplate: error: " + path + ": not valid JSON: " + what);
  }
}

void Build(const BuildArgs& args) {
  std::optional<Encoding> encoding;
  if (!args.encoding.empty()) encoding = ParseEncoding(args.encoding);
  const Json document = ParseDocument(args.file);
  const std::string folder = std::filesystem::path(args.file).parent_path().string();
  auto t = BuildTemplate(document, folder, args.file);
  TemplateGuard guard(t);
  const bool valid = SaveTemplateAs(*t, args.output, encoding);
  std::cout << args.output << ": " << Plural(t->NumPages(), "page", "pages") << ", "
            << Plural(t->NumFields(), "region", "regions") << ", "
            << Plural(t->NumItems(), "item", "items") << "\n";
  if (!valid)
    std::cerr << "xuntemplate: warning: " << args.output
              << ": not valid for reading yet (see xuntemplate check)\n";
}

}  // namespace

void AddBuildCommand(CLI::App& app, int& status) {
  auto* cmd = app.add_subcommand("build", "Make a template from JSON");
  cmd->footer(Wrap(
      "Make a template file from JSON written by `xuntemplate dump` (or by a script: absent "
      "keys keep their defaults, unknown keys are refused, computed values are ignored). Image "
      "paths are relative to the JSON file; a template with page images is saved as a zip "
      "archive."));
  auto args = std::make_shared<BuildArgs>();
  cmd->add_option("FILE", args->file, "JSON file")->required();
  cmd->add_option("-o,--output", args->output, "Template file to write (.omr)")->required();
  cmd->add_option("--encoding", args->encoding,
                  "Text encoding of the template: ansi (Windows-1252, the default) or utf16")
      ->check(CLI::IsMember({"ansi", "utf16"}));
  cmd->callback([args, &status] {
    Build(*args);
    status = kExitOk;
  });
}

}  // namespace xuntool
