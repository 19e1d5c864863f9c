// `xuntemplate render FILE -o OUT.svg`: one page drawn as SVG.
#include <iostream>

#include "commands.h"
#include "svg_render.h"
#include "tool.h"

namespace xuntool {
namespace {

struct RenderArgs {
  std::string file, output;
  int32_t page = 1;
};

void Render(const RenderArgs& args) {
  auto t = OpenTemplate(args.file, true);
  TemplateGuard guard(t);
  RequirePage(*t, args.file, args.page);
  const int32_t pages = t->NumPages();
  std::vector<std::string> notes;
  const std::string svg = RenderPageSvg(*t, args.page, notes);
  WriteOutputFile(args.output, svg);
  for (const std::string& note : notes)
    std::cerr << "xuntemplate: note: " << args.file << ": " << note << "\n";
  std::cout << args.output << ": page " << args.page << " of " << pages << "\n";
}

}  // namespace

void AddRenderCommand(CLI::App& app, int& status) {
  auto* cmd = app.add_subcommand("render", "Draw one page as SVG");
  cmd->footer(
      Wrap("Draw one page as SVG: the page outline at its size, the page image underneath when the "
           "template has one, every region's rectangle coloured by kind (OMR blue, image green, "
           "barcode orange, OCR purple) with its name, each OMR region's bubble grid, timing marks "
           "in black, identification regions dashed and link groups joined by a dashed red line."));
  auto args = std::make_shared<RenderArgs>();
  cmd->add_option("FILE", args->file, "Template file (.omr, plain or zipped)")->required();
  cmd->add_option("--page", args->page, "Page to draw, from 1")->capture_default_str();
  cmd->add_option("-o,--output", args->output, "SVG file to write")->required();
  cmd->callback([args, &status] {
    Render(*args);
    status = kExitOk;
  });
}

}  // namespace xuntool
