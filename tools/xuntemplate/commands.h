// The tool's commands. Each adds its subcommand to the application; its callback runs the command
// and leaves the exit code in `status`, or throws ToolError.
#pragma once

#include <CLI/CLI.hpp>

namespace xuntool {

void AddInfoCommand(CLI::App& app, int& status);
void AddCheckCommand(CLI::App& app, int& status);
void AddDumpCommand(CLI::App& app, int& status);
void AddBuildCommand(CLI::App& app, int& status);
void AddConvertCommand(CLI::App& app, int& status);
void AddBatchCommand(CLI::App& app, int& status);
void AddRenderCommand(CLI::App& app, int& status);
void AddPrintCommand(CLI::App& app, int& status);
void AddRegisterCommand(CLI::App& app, int& status);
void AddReadCommand(CLI::App& app, int& status);

}  // namespace xuntool
