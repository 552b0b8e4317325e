// `ulmira num` as a user calls it: what it prints and the exit code it leaves.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <string>

namespace {

struct Outcome {
  std::string output;  // both streams
  int status;
};

Outcome run(const std::string& arguments) {
  Outcome outcome{"", -1};
  FILE* pipe = popen(("{ " ULM_COMMAND " num " + arguments + "\n} 2>&1").c_str(), "r");
  if (pipe == nullptr) return outcome;
  char part[256];
  while (std::fgets(part, sizeof part, pipe) != nullptr) outcome.output += part;
  outcome.status = WEXITSTATUS(pclose(pipe));
  return outcome;
}

TEST(NumCommand, PrintsResults) {
  const std::pair<const char*, const char*> cases[] = {
      {"add -5 3", "-2\n"},
      {"sub 5 -- -3", "8\n"},
      {"mul --radix 16 -0x1F 1b", "-1Fh\n"},
      {"--radix=2 div -7 2", "-11b\n"},
      {"rem -7 2", "-1\n"},
      {"pow -2 3", "-8\n"},
      {"pow -1 99999999999", "-1\n"},
      {"modpow 2 10 1000", "24\n"},
      {"gcd -6 4", "-2\n"},
      {"egcd 240 46", "2 -9 47\n"},
      {"sqrt 16", "4\n"},
      {"isprime 53", "true\n"},
      {"isprime 49", "false\n"},
      {"nextprime 24", "29\n"},
      {"convert 0x12h 17O --radix=8", "22o\n17o\n"},
      {"add - <<'E'\n1\n-2\n0xff\n1\nE\n", "-1\n256\n"}};
  for (const auto& [arguments, output] : cases) {
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.output, output) << arguments;
    EXPECT_EQ(outcome.status, 0) << arguments;
  }
}

TEST(NumCommand, RefusesWithReasons) {
  const struct {
    const char *arguments, *reason;
    int status;
  } cases[] = {{"convert 12a4", "'a' at position 3 of \"12a4\" is no digit of radix 10", 1},
               {"convert -- -12b", "'2' at position 3", 1},
               {"convert h", "\"h\" has no digits", 1},
               {"convert ''", "has no digits", 1},
               {"div 1 -0", "division by zero", 1},
               {"rem 1 0", "division by zero", 1},
               {"modpow 1 1 0", "division by zero", 1},
               {"sqrt -4", "the root of a negative number", 1},
               {"gcd 0 4", "is zero", 1},
               {"pow 2 -1", "the exponent is negative", 1},
               {"pow 2 99999999999", "the power is too large", 1},
               {"add 1", "takes 2", 2},
               {"halve 1", "there is no halve", 2},
               {"add 1 2 --radix 17", "--radix", 2},
               {"add 1 2 --radix", "--radix", 2}};
  for (const auto& tested : cases) {
    const Outcome outcome = run(tested.arguments);
    EXPECT_NE(outcome.output.find(tested.reason), std::string::npos) << outcome.output;
    EXPECT_EQ(outcome.status, tested.status) << tested.arguments;
  }
}

}  // namespace
