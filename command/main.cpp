// The `ulmira` command: a way into the system for people at a terminal.
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>

#include "command/commands.h"
#include "command/support/program.h"
#include "module/product_version.h"

#define ULM_TEXT_OF(number) #number
#define ULM_VERSION_TEXT(a, b, c, d) \
  ULM_TEXT_OF(a) "." ULM_TEXT_OF(b) "." ULM_TEXT_OF(c) "." ULM_TEXT_OF(d)

namespace {

constexpr int kUsageError = 2;

}  // namespace

int main(int argc, char** argv) {
  try {
    int status = 0;
    ulm::tools::ProgramArguments arguments(argc, argv);
    CLI::App app("Ulmira: the main module's host and the libraries beside it");
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
    } catch (const CLI::ParseError& error) {
      return app.exit(error) == 0 ? 0 : kUsageError;  // --help and --version come this way too
    }
    return status;
  } catch (const std::exception& error) {
    std::cerr << "ulmira: " << error.what() << '\n';
    return 1;
  }
}
