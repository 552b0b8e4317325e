// Rows of steps for a test process, and the lines that they should print (script.h). Each row runs
// in a process of its own. Files of rows lie under tests/data: "[name]", then "> process step step
// ...", then the lines; '#' starts a line for people, "layer: "
// and "windows: " a line of one system, and a blank line ends a row.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "command/support/process.h"
#include "tests/support/system_names.h"

namespace ulm::test {

struct ProbeRow {
  std::string name;
  std::string probe;
  std::vector<std::string> steps;
  std::string expected;  // lines
};

inline void PrintTo(const ProbeRow& row, std::ostream* out) { *out << row.name; }
inline std::string rowName(const testing::TestParamInfo<ProbeRow>& info) { return info.param.name; }

inline std::vector<ProbeRow> readRows(const std::string& file) {
  std::ifstream in(file);
  std::vector<ProbeRow> rows;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#' || !standsHere(line)) continue;
    if (line[0] == '[') {
      rows.push_back({line.substr(1, line.size() - 2), "", {}, ""});
    } else if (line[0] == '>') {
      std::istringstream words(line.substr(1));
      words >> rows.back().probe;
      for (std::string step; words >> step;) rows.back().steps.push_back(step);
    } else {
      rows.back().expected += line + '\n';
    }
  }
  return rows;
}

// Each of `environment` is "NAME=value", put before what this process has.
inline void runRow(const ProbeRow& row, const std::vector<std::string>& environment = {}) {
  const tools::ProcessResult result =
      tools::runProcess(tools::programFolder() / row.probe, row.steps, environment);
  EXPECT_EQ(result.ending, "");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.output, row.expected);
}

}  // namespace ulm::test
