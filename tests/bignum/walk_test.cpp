// A long walk over eight values, made by an independent program: after each step every value has
// the count, capacity, sign and words that were foretold, those that the step does not change as
// well.
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

using ulm::test::VectorBlock;

// The values, and the arguments of a step as registers, small numbers and sizes.
struct Walk {
  QLInteger registers[8];
  std::vector<std::string> expected = std::vector<std::string>(8, "1 32 +0");
  std::vector<long long> args;

  QLInteger& reg(std::size_t i) { return registers[static_cast<std::size_t>(args[i])]; }
  std::int32_t small(std::size_t i) const { return static_cast<std::int32_t>(args[i]); }
  std::uint32_t size(std::size_t i) const { return static_cast<std::uint32_t>(args[i]); }
  void hold(QLInteger made) { reg(0).Swap(made); }
};

using Step = void (*)(Walk& w, VectorBlock& block);
#define ULM_STEP(name, ...)                          \
  {                                                  \
    name, [](Walk& w, VectorBlock&) { __VA_ARGS__; } \
  }
const std::map<std::string, Step> kSteps = {
    ULM_STEP("Empty", w.hold(QLInteger(kEmptyHolder))),
    ULM_STEP("Set", w.hold(patterned(w.size(1), w.small(2), w.size(3), w.args[4] != 0))),
    ULM_STEP("Assign", w.reg(0).Assign(w.reg(1))),
    ULM_STEP("AssignSmall", w.reg(0).Assign(w.small(1))),
    ULM_STEP("Swap", w.reg(0).Swap(w.reg(1))),
    ULM_STEP("Grow", w.reg(0).Reallocate(w.size(1), true)),
    ULM_STEP("Add", w.reg(0) += w.reg(1)),
    ULM_STEP("Sub", w.reg(0) -= w.reg(1)),
    ULM_STEP("Mul", w.reg(0) *= w.reg(1)),
    ULM_STEP("Mod", w.reg(0) %= w.reg(1)),
    ULM_STEP("Shl", w.reg(0) <<= w.size(1)),
    ULM_STEP("Shr", w.reg(0) >>= w.size(1)),
    ULM_STEP("AddMagnitude", AddMagnitude(w.reg(0), w.reg(1))),
    ULM_STEP("SubtractMagnitude", SubtractMagnitude(w.reg(0), w.reg(1))),
    ULM_STEP("AddSmall", w.small(1) == 1 ? ++w.reg(0) : w.reg(0) += w.small(1)),
    ULM_STEP("SubSmall", w.small(1) == 1 ? --w.reg(0) : w.reg(0) -= w.small(1)),
    ULM_STEP("MulSmall", w.reg(0) *= w.small(1)),
    ULM_STEP("Plus", w.hold(w.reg(1) + w.reg(2))),
    ULM_STEP("Minus", w.hold(w.reg(1) - w.reg(2))),
    ULM_STEP("Times", w.hold(w.reg(1) * w.reg(2))),
    ULM_STEP("Over", w.hold(w.reg(1) / w.reg(2))),
    ULM_STEP("MinusSmall", w.hold(w.reg(1) - w.small(2))),
    ULM_STEP("TimesSmall", w.hold(w.reg(1) * w.small(2))),
    ULM_STEP("ShiftedRight", w.hold(w.reg(1) >> w.size(2))),
    ULM_STEP("PowerOfTwo", w.hold(PowerOfTwo(w.size(1)))),
    ULM_STEP("Divide", Divide(w.reg(0), w.reg(1), w.reg(2), w.reg(3))),
    ULM_STEP("Remainder", Remainder(w.reg(0), w.reg(1), w.reg(2))),
    ULM_STEP("Pow", w.hold(Pow(w.reg(1), w.reg(2)))),
    ULM_STEP("ModPow", ModPow(w.reg(0), w.reg(1), w.reg(2), w.reg(3))),
    ULM_STEP("ExtendedGcd", ExtendedGcd(w.reg(0), w.reg(1), w.reg(2), w.reg(3), w.reg(4))),
    ULM_STEP("IntegerSqrt", w.hold(IntegerSqrt(w.reg(1)))),
    {"Gcd",
     [](Walk& w,
        VectorBlock&
            block) { EXPECT_EQ(Gcd(w.reg(0), w.reg(1), w.reg(2)), block.text("Result") == "1"); }},
    {"FromText",
     [](Walk& w, VectorBlock& block) { FromText(w.reg(0), block.text("Text").c_str()); }},
    {"ToText", [](Walk& w, VectorBlock& block) {
       const std::string text = block.text("Text");
       EXPECT_EQ(toText(w.reg(0), w.size(1)), text);
       EXPECT_TRUE(text.back() == '|' || QLInteger::fromText(text.c_str()) == w.reg(0));
     }}};
#undef ULM_STEP

TEST(Walk, LeavesTheForetoldStates) {
  Walk walk;
  for (VectorBlock& block : ulm::test::readVectorBlocks(ULM_TEST_DATA "/bignum/walk.txt")) {
    walk.args = block.numbers("Args");
    kSteps.at(block.text("Op"))(walk, block);
    for (std::size_t i = 0; i < 8; ++i) {
      walk.expected[i] = block.find("R" + std::to_string(i)).value_or(walk.expected[i]);
      EXPECT_EQ(stateOf(walk.registers[i]), walk.expected[i]) << "in register " << i;
    }
    block.expectAllUsed();
    ASSERT_FALSE(HasFailure()) << block.where();
  }
}

}  // namespace
}  // namespace ulm::bignum::test
