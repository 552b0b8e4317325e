// `ulmira num` as a user calls it: what it prints and the exit code it leaves.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <string>

#include "tests/support/vector_blocks.h"

namespace {

// Both streams, a '/' for each line's end, and the exit code.
std::string run(const std::string& script) {
  FILE* pipe = popen(("{ " + script + "\n} 2>&1").c_str(), "r");
  if (pipe == nullptr) return "no pipe";
  std::string output;
  for (int c = std::getc(pipe); c != EOF; c = std::getc(pipe)) {
    output += c == '\n' ? '/' : static_cast<char>(c);
  }
  return output + std::to_string(WEXITSTATUS(pclose(pipe)));
}

TEST(NumCommand, PrintsResultsAndReasons) {
  for (auto& block : ulm::test::readVectorBlocks(ULM_TEST_DATA "/bignum/num_command.txt")) {
    const std::string output = run("num() { " ULM_COMMAND " num \"$@\"; }; " + block.text("Run"));
    if (const auto reason = block.find("Reason")) {
      EXPECT_NE(output.find(*reason), std::string::npos) << output << '\n' << block.where();
      EXPECT_EQ(output.substr(output.size() - 2), '/' + block.text("Status")) << block.where();
    } else {
      EXPECT_EQ(output, block.text("Prints") + '0') << block.where();
    }
    block.expectAllUsed();
  }
}

}  // namespace
