// The `ulmira` command: the module and the libraries for users at a terminal.
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include "command/commands.h"
#include "command/support/program.h"
#include "command/support/streams.h"

namespace {

constexpr int kUsageError = 2;
constexpr const char* kPrefixArguments = " OPERATION NUMBER...";  // of ulmira num
constexpr const char* kFooter = R"(EXAMPLES
  ulmira num modpow 3 100 7
  ulmira digest sha1 *.ttf >SUMS; ulmira digest sha1 --check SUMS
  ulmira font subset serif.ttf -o small.ttf --text 'Hello'
  ulmira SUBCOMMAND --help              more examples

FILES
  - is standard input where a file is read, and standard output where one is written; a file of
  that name is ./-

EXIT CODES
  0  everything was done
  1  something could not be read, computed or written, or a check failed; each is reported in one
     line on the error stream
  2  a wrong call)";

// The help of CLI11, without its remarks about which option needs or excludes which, and with the
// arguments that a subcommand reads itself in its usage line.
class HelpFormatter : public CLI::Formatter {
 public:
  std::string make_option_opts(const CLI::Option* option) const override {
    if (!option->get_option_text().empty()) return ' ' + option->get_option_text();
    if (option->get_type_size() == 0) return "";
    // The names of checks follow the type and a colon. An argument's name says enough.
    const std::string type = option->get_type_name();
    return (option->nonpositional() ? ' ' + type.substr(0, type.find(':')) : "") +
           (option->get_expected_max() > 1 ? " ..." : "") +
           (option->get_required() && option->nonpositional() ? " (required)" : "");
  }
  std::string make_option_usage(const CLI::Option* option) const override {
    const std::string name = option->get_name(true) + (option->get_expected_max() > 1 ? "..." : "");
    return option->get_required() ? name : '[' + name + ']';
  }
  std::string make_usage(const CLI::App* app, std::string name) const override {
    std::string usage = Formatter::make_usage(app, std::move(name));
    if (app->get_prefix_command()) usage.insert(usage.find_last_not_of('\n') + 1, kPrefixArguments);
    return usage;
  }
};

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
  app.name("ulmira");
  app.formatter(std::make_shared<HelpFormatter>());
  app.footer(kFooter);
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
    const std::string called = calledSubcommand(app);
    std::cerr << "Run ulmira " << called << (called.empty() ? "" : " ")
              << "--help for more information.\n";
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
