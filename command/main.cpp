// The `ulmira` command: the module and the libraries for users at a terminal.
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <new>
#include <string>

#include "command/commands.h"
#include "command/support/program.h"
#include "command/support/streams.h"

namespace {

constexpr int kUsageError = 2;

// Returns the name of the called subcommand, as "font subset"; empty if none was parsed yet.
std::string calledSubcommand(const CLI::App& app) {
  std::string names;
  for (const CLI::App* command = &app; !command->get_subcommands().empty();) {
    command = command->get_subcommands().front();
    names += (names.empty() ? "" : " ") + command->get_name();
  }
  return names;
}

// Runs the called subcommand and returns the exit code. Parsing calls its callback.
int run(CLI::App& app, ulm::tools::ProgramArguments& arguments) {
  int status = 0;
  app.set_version_flag("--version", "ulmira " ULMIRA_VERSION);
  app.require_subcommand(1);
  app.allow_windows_style_options(false);  // "/a/b" is a file on every system
  ulm::tools::addHostCommand(app, status);
  ulm::tools::addNumCommand(app, status);
  ulm::tools::addDigestCommand(app, status);
  ulm::tools::addRsaCommand(app, status);
  ulm::tools::addClipCommand(app, status);
  ulm::tools::addFontCommand(app, status);
  try {
    app.parse(arguments.count(), arguments.values());
  } catch (const CLI::Success& request) {  // --help and --version
    app.exit(request);
  } catch (const CLI::ParseError& error) {
    ulm::tools::printMessage(calledSubcommand(app), error.what());
    std::cerr << "Run with --help for more information.\n";
    status = kUsageError;
  }
  ulm::tools::flushStandardOutput();
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Ulmira: a host for the main module, and its libraries");
  try {
    ulm::tools::ProgramArguments arguments(argc, argv);
    return run(app, arguments);
  } catch (const std::bad_alloc&) {
    ulm::tools::printMessage(calledSubcommand(app), "there is not enough memory");
  } catch (const std::exception& error) {
    ulm::tools::printMessage(calledSubcommand(app), error.what());
  }
  return 1;
}
