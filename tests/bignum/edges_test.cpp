// Number theory, division and reading: known answers, and primes against trial division.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "bignum/integer.h"
#include "bignum/number_theory.h"
#include "tests/bignum/operands.h"
#include "tests/support/vector_blocks.h"

namespace ulm::bignum::test {
namespace {

std::string words(std::initializer_list<const QLInteger*> values) {
  std::string joined;
  for (const QLInteger* value : values) joined += (joined.empty() ? "" : " ") + toText(*value);
  return joined;
}

using Operation = std::string (*)(const std::vector<QLInteger>& in);
#define ULM_VALUE(name, ...)                                                   \
  {                                                                            \
    name, [](const std::vector<QLInteger>& in) { return toText(__VA_ARGS__); } \
  }
#define ULM_STATE(name, ...)                     \
  {                                              \
    name, [](const std::vector<QLInteger>& in) { \
      QLInteger a, b, c;                         \
      __VA_ARGS__;                               \
    }                                            \
  }
const std::map<std::string, Operation> kOperations = {
    ULM_VALUE("Pow", Pow(in[0], in[1])),
    ULM_VALUE("AreCoprime", QLInteger(AreCoprime(in[0], in[1]))),
    ULM_VALUE("IntegerSqrt", IntegerSqrt(in[0])),
    ULM_VALUE("FermatTest", QLInteger(FermatTest(in[0], in[1]))),
    ULM_VALUE("RabinMillerTest", QLInteger(RabinMillerTest(in[0], in[1]))),
    ULM_VALUE("IsProbablePrime", QLInteger(IsProbablePrime(in[0], in[1].words[0], in[2].words[0]))),
    ULM_STATE("ModPow", ModPow(in[0], in[1], in[2], a); return toText(a)),
    ULM_STATE("Gcd", return Gcd(in[0], in[1], a) ? toText(a)
                            : a == 0             ? "none"
                                                 : "changed"),
    ULM_STATE("ExtendedGcd", ExtendedGcd(in[0], in[1], a, b, c); return words({&a, &b, &c})),
    ULM_STATE("NextPrime", a = in[0]; NextPrime(a, a); return toText(a)),
    ULM_STATE("Divide", a = in[0]; Divide(a, in[1], b, a); return words({&b, &a}))};
#undef ULM_VALUE
#undef ULM_STATE

TEST(Edges, GiveTheKnownAnswers) {
  for (auto& block : ulm::test::readVectorBlocks(ULM_TEST_DATA "/bignum/edges.txt")) {
    const std::string operation = block.text("Op"), in = block.text("In"), out = block.text("Out");
    block.expectAllUsed();
    if (operation == "FromText") {
      QLInteger value = patterned(33, 1, 0, true);
      FromText(value, in.c_str());
      EXPECT_EQ(toText(value), out) << block.where();
      EXPECT_TRUE(isNormal(value)) << block.where();
      continue;
    }
    std::vector<QLInteger> operands;
    std::istringstream texts(in);
    for (std::string text; texts >> text;) operands.push_back(QLInteger::fromText(text.c_str()));
    EXPECT_EQ(kOperations.at(operation)(operands), out) << block.where();
  }
}

TEST(Edges, PrimesAgreeWithTrialDivision) {
  const auto isPrime = [](int n) {
    for (int d = 2; d * d <= n; ++d) {
      if (n % d == 0) return false;
    }
    return n >= 2;
  };
  for (int n = -3; n < 3000; ++n) {
    EXPECT_EQ(IsProbablePrime(n, 18, 18), isPrime(n)) << n;
    QLInteger next;
    NextPrime(n, next);
    int expected = n == 2 ? 3 : std::max(n, 2);
    while (!isPrime(expected)) ++expected;
    EXPECT_EQ(next, expected) << n;
  }
}

}  // namespace
}  // namespace ulm::bignum::test
