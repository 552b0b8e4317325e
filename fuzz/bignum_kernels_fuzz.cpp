// The wide kernel held to the plain one. An input is a byte that names an operation, a byte of
// flags, two bytes that divide the rest into three operands, and the operands as runs of bits.
#include <array>
#include <string>

#include "bignum/text.h"
#include "fuzz/number_input.h"
#include "tests/bignum/twin_walk.h"

namespace {

using ulm::bignum::QLInteger;
using namespace ulm::fuzz;

struct Operation {
  const char* step;
  std::array<long long, 5> args;
  std::size_t argCount;
  std::uint32_t mostWords;  // of an operand: the reference is slow
};
constexpr std::array kOperations = {Operation{"Divide", {0, 1, 3, 4}, 4, 400},
                                    Operation{"Times", {3, 0, 1}, 3, 400},
                                    Operation{"Times", {3, 0, 0}, 3, 400},
                                    Operation{"Remainder", {0, 1, 0}, 3, 400},
                                    Operation{"Plus", {3, 0, 1}, 3, 400},
                                    Operation{"Minus", {3, 0, 1}, 3, 400},
                                    Operation{"Gcd", {0, 1, 3}, 3, 60},
                                    Operation{"AreCoprime", {0, 1}, 2, 60},
                                    Operation{"ExtendedGcd", {0, 1, 3, 4, 5}, 5, 60},
                                    Operation{"ModPow", {0, 1, 2, 3}, 4, 8},
                                    Operation{"IntegerSqrt", {3, 0}, 2, 40},
                                    Operation{"IsProbablePrime", {0, 5, 3}, 3, 4},
                                    Operation{"NextPrime", {0, 3}, 2, 2},
                                    Operation{"ToText", {0, 10}, 2, 80},
                                    Operation{"ToText", {0, 7}, 2, 60}};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 4 || size > 1024) return 0;
  const Operation& operation = kOperations[data[0] % kOperations.size()];
  const std::uint8_t flags = data[1];
  Bytes rest(data + 4, size - 4);
  ulm::bignum::test::TwinWalk walk;
  for (std::size_t i = 0; i < 3; ++i) {
    const std::size_t length = i < 2 ? rest.size() * data[2 + i] / 255 : rest.size();
    QLInteger number = numberOfRuns(rest.first(length));
    if (number.count > operation.mostWords) return 0;
    rest = rest.subspan(length);
    if (i == 1 && (flags & 8) != 0) {  // a dividend next to a multiple
      QLInteger multiple = walk.get(0) * number;
      if (multiple.count <= operation.mostWords) {
        if ((flags & 16) != 0) multiple -= QLInteger(1);
        walk.set(0, multiple);
      }
    }
    if ((flags >> i & 1) != 0) number.MakeNegative();
    walk.set(i, number);
  }
  std::string faults = walk.run(
      operation.step, {operation.args.begin(), operation.args.begin() + operation.argCount});
  if (faults.empty() && std::string(operation.step) == "ToText" && operation.args[1] == 10) {
    faults = walk.run("FromText", {3}, ulm::bignum::toString(walk.get(0)));
  }
  require(faults.empty(), faults.c_str());
  return 0;
}
