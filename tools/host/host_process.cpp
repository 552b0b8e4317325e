// A stand-in host as a process of its own: `ulmira host` runs it and shows what it prints, one JSON
// object. Errors are one line on the error stream and the exit code 1.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <iostream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

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

// The standard output as it was handed over; from then on what a library prints goes to the error
// stream, so that the report stands alone.
std::FILE* takeStandardOutput() {
  const int own = ::dup(STDOUT_FILENO);
  std::FILE* report = own >= 0 ? ::fdopen(own, "w") : nullptr;
  if (report == nullptr || ::dup2(STDERR_FILENO, STDOUT_FILENO) < 0) {
    throw std::runtime_error("there is no standard output to report to");
  }
  return report;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    ulm::tools::RunOptions options;
    CLI::App app("A stand-in host process for one life of ULM_Main");
    app.add_option("--module", options.moduleFile, "the library to take up")->required();
    app.add_option("--without", options.without, "host libraries to leave out")->take_all();
    CLI11_PARSE(app, argc, argv);
    std::FILE* const output = takeStandardOutput();
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
