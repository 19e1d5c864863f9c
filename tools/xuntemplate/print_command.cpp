// `xuntemplate print FILE -o OUT.png`: the blank form of one page as a printable image.
#include <iostream>

#include "commands.h"
#include "tool.h"
#include "xun/printing/print_page.h"

namespace xuntool {
namespace {

struct PrintArgs {
  std::string file, output;
  int32_t page = 1;
  int32_t dpi = 300;
};

void Print(const PrintArgs& args) {
  auto t = OpenTemplate(args.file, true);
  TemplateGuard guard(t);
  RequirePage(*t, args.file, args.page);
  const int32_t pages = t->NumPages();
  LibrarySession session;
  if (!xun::PrintPage(*t, args.page, args.output, args.dpi))
    throw ToolError("xuntemplate: error: " + args.output + ": " +
                    session.LastWord("the page could not be printed"));
  std::cout << args.output << ": page " << args.page << " of " << pages << " at " << args.dpi
            << " dpi\n";
}

}  // namespace

void AddPrintCommand(CLI::App& app, int& status) {
  auto* cmd = app.add_subcommand("print", "Print one page's blank form as a PNG image");
  cmd->footer(
      Wrap("Print the blank form of one page as a grey PNG image at the page's size: timing marks, "
           "every OMR bubble where the template places it with its choice inside, barcode, OCR, "
           "image and identification regions outlined (an identification barcode printed with "
           "its value), over the page's own image when the template has one."));
  auto args = std::make_shared<PrintArgs>();
  cmd->add_option("FILE", args->file, "Template file (.omr, plain or zipped)")->required();
  cmd->add_option("--page", args->page, "Page to print, from 1")->capture_default_str();
  cmd->add_option("--dpi", args->dpi, "Resolution in dots per inch")
      ->check(CLI::Range(50, 1200))
      ->capture_default_str();
  cmd->add_option("-o,--output", args->output, "PNG file to write")->required();
  cmd->callback([args, &status] {
    Print(*args);
    status = kExitOk;
  });
}

}  // namespace xuntool
