// A stand-in host as a process of its own: `ulmira host` runs it and shows what it prints, one JSON
// object. Errors are one line on the error stream and the exit code 1.
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <nlohmann/json.hpp>

#include "tools/host/module_run.h"

namespace {

nlohmann::ordered_json toJson(const ulm::tools::RunReport& report) {
  using nlohmann::ordered_json;
  ordered_json record;  // null where the host took none
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
  return {{"apiVersion", report.apiVersion},
          {"modulePath", report.modulePath},
          {"record", record},
          {"wld", report.wld ? ordered_json(*report.wld) : ordered_json()},
          {"pathBefore", report.pathBefore},
          {"pathAfter", report.pathAfter},
          {"loads", loads},
          {"started", report.started},
          {"unbalanced", report.unbalanced}};
}

}  // namespace

int main(int argc, char** argv) {
  try {
    ulm::tools::RunOptions options;
    CLI::App app("A stand-in host process for one life of ULM_Main");
    app.add_option("--module", options.moduleFile, "the library to take up")->required();
    app.add_option("--without", options.without, "host libraries to leave out")->take_all();
    CLI11_PARSE(app, argc, argv);
    const ulm::tools::RunReport report = ulm::tools::runModule(options);
    std::cout << toJson(report).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace)
              << '\n';
    return std::cout.flush() ? 0 : 1;
  } catch (const std::exception& error) {
    std::cerr << "ulmira host: " << error.what() << '\n';
    return 1;
  }
}
