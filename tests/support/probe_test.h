// Rows of steps for a test process, and the lines that they should print (script.h). Each row runs
// in a process of its own.
#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "tools/support/process.h"

namespace ulm::test {

struct ProbeCase {
  const char* name;
  std::vector<std::string> steps;
  std::string expected;  // lines
  std::string probe = {};
};

inline void PrintTo(const ProbeCase& tested, std::ostream* out) { *out << tested.name; }
inline std::string caseName(const testing::TestParamInfo<ProbeCase>& info) {
  return info.param.name;
}

inline void runProbe(const std::string& probe, const std::vector<std::string>& steps,
                     const std::string& expected) {
  const tools::ProcessResult result = tools::runProcess(tools::programFolder() / probe, steps);
  EXPECT_EQ(result.ending, "");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.output, expected);
}

}  // namespace ulm::test
