// The `ulmira` command: a way into the system for people at a terminal.
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <new>
#include <string>

#include "module/product_version.h"
#include "tools/support/program.h"
#include "tools/support/streams.h"
#include "tools/ulmira/commands.h"

#define ULM_TEXT_OF(number) #number
#define ULM_VERSION_TEXT(a, b, c, d) \
  ULM_TEXT_OF(a) "." ULM_TEXT_OF(b) "." ULM_TEXT_OF(c) "." ULM_TEXT_OF(d)

namespace {

constexpr int kUsageError = 2;

// "font subset" for a call of that subcommand; empty where none was read yet.
std::string calledSubcommand(const CLI::App& app) {
  std::string names;
  for (const CLI::App* at = &app; !at->get_subcommands().empty();) {
    at = at->get_subcommands().front();
    names += (names.empty() ? "" : " ") + at->get_name();
  }
  return names;
}

// Parsing runs the subcommand that is called.
int run(CLI::App& app, ulm::tools::ProgramArguments& arguments) {
  int status = 0;
  app.set_version_flag("--version",
                       "ulmira " ULM_VERSION_TEXT(ULM_VERSION_MAJOR, ULM_VERSION_MINOR,
                                                  ULM_VERSION_BUILD, ULM_VERSION_REVISION));
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
  } catch (const CLI::Success& answer) {  // --help and --version
    app.exit(answer);
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
  CLI::App app("Ulmira: the main module's host and the libraries beside it");
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
