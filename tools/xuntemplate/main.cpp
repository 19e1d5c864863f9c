// xuntemplate: the daily work on form templates from the command line.
#include <algorithm>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "commands.h"
#include "tool.h"

int main(int argc, char** argv) {
  using namespace xuntool;
  int status = kExitOk;
  try {
    LibrarySession session;
    CLI::App app{
        "Describes, checks, converts, merges, draws, prints and registers form templates "
        "(.omr files), and reads filled forms with them."};
    app.name("xuntemplate");
    app.require_subcommand(1);
    AddInfoCommand(app, status);
    AddCheckCommand(app, status);
    AddDumpCommand(app, status);
    AddBuildCommand(app, status);
    AddConvertCommand(app, status);
    AddBatchCommand(app, status);
    AddRenderCommand(app, status);
    AddPrintCommand(app, status);
    AddRegisterCommand(app, status);
    AddReadCommand(app, status);
    // CLI11 would call an unknown command a missing one.
    bool known = argc < 2 || argv[1][0] == '-';
    for (const CLI::App* sub : app.get_subcommands({}))
      if (argc > 1 && sub->get_name() == argv[1]) known = true;
    if (!known) {
      std::cerr << "xuntemplate: error: unknown command '" << argv[1]
                << "' (see xuntemplate --help)\n";
      return kExitError;
    }
    try {
      app.parse(argc, argv);
    } catch (const CLI::CallForHelp& e) {
      return app.exit(e);
    } catch (const CLI::CallForAllHelp& e) {
      return app.exit(e);
    } catch (const CLI::ParseError& e) {
      // CLI11's own report takes two lines; one is enough.
      std::cerr << "xuntemplate: error: " << e.what() << " (see xuntemplate --help)\n";
      return kExitError;
    }
    // Failures the library trapped inside a command that still finished, such as a count that
    // overflowed, are worth knowing about.
    std::vector<std::string> said;
    for (const auto& failure : session.failures()) {
      if (std::find(said.begin(), said.end(), failure) != said.end()) continue;
      said.push_back(failure);
      std::cerr << "xuntemplate: warning: the library reported a failure in " << failure << "\n";
    }
  } catch (const ToolError& e) {
    std::cerr << e.what() << "\n";
    return kExitError;
  } catch (const std::bad_alloc&) {
    std::cerr << "xuntemplate: error: out of memory\n";
    return kExitError;
  } catch (const std::exception& e) {
    std::cerr << "xuntemplate: error: " << e.what() << "\n";
    return kExitError;
  } catch (...) {
    std::cerr << "xuntemplate: error: unexpected failure\n";
    return kExitError;
  }
  return status;
}
