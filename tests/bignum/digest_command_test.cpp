// `ulmira digest` and `ulmira rsa` as a user calls them.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/vector_blocks.h"
#include "tools/support/process.h"

namespace {

std::string withLineEnds(const std::string& text) {
  std::string made;
  for (auto next = text.begin(); next != text.end(); ++next) {
    made += *next != '\\' ? *next : *++next == 'n' ? '\n' : *next;
  }
  return made + '\n';
}

TEST(DigestAndRsaCommands, PrintAndRefuse) {
  const std::string command = (ulm::tools::programFolder() / "ulmira").string();
  for (auto& block : ulm::test::readVectorBlocks(ULM_TEST_DATA "/bignum/commands.txt")) {
    const std::string lines =
        "f=$(mktemp -d) && cd $f && trap 'rm -r $f' EXIT\nprintf abc >abc\nU=" + command + "\n{ " +
        block.text("Run") + "\n} 2>&1";
    const auto result = ulm::tools::runProcess("/bin/sh", {"-c", lines});
    if (const auto part = block.find("Tells")) {
      EXPECT_NE(result.output.find(*part), std::string::npos) << block.where() << result.output;
    } else {
      EXPECT_EQ(result.output, withLineEnds(block.text("Prints"))) << block.where();
    }
    EXPECT_EQ(result.exitCode, std::stoi(block.find("Status").value_or("0"))) << block.where();
    block.expectAllUsed();
  }
}

}  // namespace
