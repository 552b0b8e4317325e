// The stand-in host process. `ulmira host` runs it and formats its output, one JSON object. An
// error is one line on the error stream and the exit code 1.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <iostream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

#include "command/support/program.h"
#include "standin/host/module_run.h"

namespace {

nlohmann::ordered_json orNull(const std::optional<std::string>& text) {
  return text ? nlohmann::ordered_json(*text) : nlohmann::ordered_json();
}

nlohmann::ordered_json toJson(const ulm::tools::RunReport& report) {
  using nlohmann::ordered_json;
  ordered_json record;  // null if no record was published
  if (report.record) {
    record = ordered_json::array();
    for (const auto& [key, value] : *report.record) {
      record.push_back(ordered_json::array({key, value}));
    }
  }
  ordered_json loads = ordered_json::array();
  for (const auto& load : report.loads) {
    loads.push_back({{"file", load.file}, {"engine", load.engine}, {"number", load.number}});
  }
  ordered_json switches = ordered_json::object();
  for (const auto& found : report.switches) {
    switches[found.key] = {{"on", found.on}, {"inFile", found.inFile}};
  }
  constexpr const char* kPathKept[] = {nullptr, "listed", "too long", "by the module"};
  const char* const pathKept = kPathKept[static_cast<std::size_t>(report.pathKept)];
  return {{"apiVersion", report.apiVersion},
          {"modulePath", report.modulePath},
          {"mainInstance", orNull(report.mainInstance)},
          {"translation", orNull(report.translation)},
          {"secondTranslation", orNull(report.secondTranslation)},
          {"switches", switches},
          {"record", record},
          {"wld", orNull(report.wld)},
          {"pathBefore", report.pathBefore},
          {"pathAfter", report.pathAfter},
          {"pathKept", pathKept == nullptr ? ordered_json() : ordered_json(pathKept)},
          {"loads", loads},
          {"started", report.started},
          {"unbalanced", report.unbalanced}};
}

}  // namespace

int main(int argc, char** argv) {
  try {
    ulm::tools::ProgramArguments arguments(argc, argv);
    ulm::tools::RunOptions options;
    CLI::App app("A stand-in host process for one life of ULM_Main");
    app.allow_windows_style_options(false);
    app.add_option("--module", options.moduleFile, "the library to take up")->required();
    app.add_option("--without", options.without, "host libraries to leave out")->take_all();
    app.add_flag("--debug-monitor", options.debugMonitor, "open a debug monitor's window");
    CLI11_PARSE(app, arguments.count(), arguments.values());
    std::FILE* const output = ulm::tools::takeStandardOutput();
    const std::string report = toJson(ulm::tools::runModule(options))
                                   .dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    std::fprintf(output, "%s\n", report.c_str());
    if (std::fclose(output) != 0) throw std::runtime_error("the report cannot be written");
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "ulmira host: " << error.what() << '\n';
    return 1;
  }
}
