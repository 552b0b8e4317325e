// `ulmira host`: runs the stand-in host process and prints its report about the module.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "command/commands.h"
#include "command/support/process.h"
#include "command/support/program.h"

namespace ulm::tools {
namespace {

using Json = nlohmann::ordered_json;

struct HostOptions {
  std::string module;
  std::vector<std::string> without;
  bool debugMonitor = false;
  bool json = false;
};

constexpr const char* kIndent = "  ";
constexpr int kLabelWidth = 16;

// Starts a line of the report. The value follows on the returned stream.
std::ostream& label(const char* text) {
  return std::cout << kIndent << std::left << std::setw(kLabelWidth) << text;
}

void printRecord(const Json& record) {
  if (record.is_null()) {
    label("identity") << "not published: no library of the host accepts it\n";
    return;
  }
  label("identity") << "published\n";
  for (const Json& entry : record) {
    std::cout << kIndent;
    label(entry[0].get_ref<const std::string&>().c_str())
        << entry[1].get_ref<const std::string&>() << '\n';
  }
}

std::string textOr(const Json& text, const char* none) {
  return text.is_null() ? none : text.get<std::string>();
}

// Prints what the module finds in the process before it starts.
void printSurroundings(const Json& report) {
  label("main instance") << textOr(report["mainInstance"], "none") << '\n';
  label("translation") << textOr(report["translation"], "none")
                       << "; second choice: " << textOr(report["secondTranslation"], "none")
                       << '\n';
  std::string switches;
  for (const auto& [key, state] : report["switches"].items()) {
    if (!state["inFile"].get<bool>()) continue;
    switches += (switches.empty() ? "" : ", ") + key;
    switches += state["on"].get<bool>() ? " on" : " off, since no debug monitor runs";
  }
  label("mt.ini") << (switches.empty() ? "all switches off" : switches) << '\n';
}

void printPath(const Json& report) {
  const std::string before = report["pathBefore"], after = report["pathAfter"];
  const std::string kept = textOr(report["pathKept"], "");
  if (kept == "listed") {
    label("PATH") << "unchanged: the module's folder is in it already\n";
  } else if (kept == "too long") {
    label("PATH") << "unchanged: with the module's folder it would be too long\n";
  } else if (before == after) {
    label("PATH") << "unchanged by the module\n";
  } else if (after.compare(0, before.size(), before) == 0) {
    label("PATH") << "added at the end: " << after.substr(before.size()) << '\n';
  } else {
    label("PATH") << "changed to: " << after << '\n';
  }
}

void printLoads(const Json& loads) {
  label("modules") << loads.size() << " load calls\n";
  std::size_t number = 0;
  for (const Json& load : loads) {
    std::cout << kIndent << kIndent << std::right << std::setw(2) << ++number << "  " << std::left
              << std::setw(4) << load["engine"].get_ref<const std::string&>() << ' '
              << load["file"].get_ref<const std::string&>() << "  (" << load["number"].get<int>()
              << ")\n";
  }
}

void printReport(const Json& report) {
  const Json& version = report["apiVersion"];
  std::cout << "Loaded\n";
  label("API version") << version[0] << '.' << version[1] << '.' << version[2] << '.' << version[3]
                       << '\n';
  label("module path") << report["modulePath"].get_ref<const std::string&>() << '\n';
  printSurroundings(report);
  std::cout << "Started\n";
  printRecord(report["record"]);
  label(".wld file") << textOr(report["wld"], "none") << '\n';
  printPath(report);
  printLoads(report["loads"]);
  label("initApp result") << (report["started"].get<bool>() ? "true" : "false") << '\n';
  std::cout << "Stopped and unloaded\n";
  label("references");
  if (report["unbalanced"].empty()) std::cout << "all released";
  for (const Json& name : report["unbalanced"]) {
    std::cout << name.get_ref<const std::string&>() << " not released; ";
  }
  std::cout << '\n';
}

// Returns the path of a file that belongs to this program: in the same folder, or in the folder of
// an installation.
std::filesystem::path findCompanion(const std::string& name) {
  const std::filesystem::path folder = programFolder();
  const std::filesystem::path installed = folder / ULMIRA_LIBRARY_FOLDER / name;
  return exists(folder / name) || !exists(installed) ? folder / name : installed;
}

int runHost(const HostOptions& options) {
  // The user's file name is relative to the current folder. It is not searched for.
  const std::filesystem::path module = options.module.empty()
                                           ? findCompanion(ULMIRA_MODULE)
                                           : std::filesystem::absolute(fileNamed(options.module));
  std::vector<std::string> arguments{"--module=" + textOf(module)};
  for (const std::string& name : options.without) arguments.push_back("--without=" + name);
  if (options.debugMonitor) arguments.emplace_back("--debug-monitor");
  const ProcessResult result = runProcess(findCompanion(ULMIRA_HOST), arguments);
  if (!result.ending.empty()) {
    throw std::runtime_error("the host process failed: " + result.ending);
  }
  if (result.exitCode != 0) return 1;  // the host process printed the reason
  const Json report = Json::parse(result.output, nullptr, false);
  if (!report.is_object()) throw std::runtime_error("the host process ended without a report");
  if (options.json) {
    std::cout << result.output;
  } else {
    printReport(report);
  }
  return 0;
}

constexpr const char* kFooter = R"(EXAMPLES
  ulmira host                           one life of the module, and its effects
  ulmira host --without qlview --without qlsupport
  ulmira host --module ./ULM_Main.so --json | jq .switches
)";

}  // namespace

void addHostCommand(CLI::App& app, int& status) {
  const auto options = std::make_shared<HostOptions>();
  CLI::App* command =
      app.add_subcommand("host", "Load ULM_Main into a stand-in host and report every effect");
  command->add_option("--module", options->module,
                      "The library to load; without it, the built ULM_Main");
  command
      ->add_option("--without", options->without,
                   "Run without a host library: QlHostApp (no identity is published), qlview "
                   "(QlHostApp is the main instance), qlsupport (there is no second choice for "
                   "translation), qlhostcmd (no modules are loaded)")
      ->check(CLI::IsMember({"QlHostApp", "qlview", "qlsupport", "qlhostcmd"}))
      ->take_all()
      ->allow_extra_args(false);
  command->add_flag("--debug-monitor", options->debugMonitor,
                    "Run as if a debug monitor were there, so that mqlassert of mt.ini is read");
  command->add_flag("--json", options->json, "Print one JSON object");
  command->footer(kFooter);
  command->callback([options, &status] { status = runHost(*options); });
}

}  // namespace ulm::tools
