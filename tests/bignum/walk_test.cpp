// Runs the steps of a long walk over eight values, which an independent program has computed, and
// of a short one, which was written by hand. After each step all eight values have the expected
// count, capacity, sign and words. Each step also runs with each of its allocations failing.
#include <gtest/gtest.h>

#include <map>
#include <new>
#include <string>
#include <vector>

#include "bignum/bytes.h"
#include "bignum/integer.h"
#include "bignum/number_theory.h"
#include "bignum/text.h"
#include "standin/odrx/alloc_control.h"
#include "tests/bignum/operands.h"
#include "tests/support/vector_blocks.h"

namespace ulm::bignum::test {
namespace {

// The values, and the arguments of a step as registers, small numbers and sizes.
struct Walk {
  QLInteger registers[8];
  std::vector<long long> args;
  std::string text, result;

  QLInteger& reg(std::size_t i) { return registers[static_cast<std::size_t>(args[i])]; }
  std::int32_t small(std::size_t i) const { return static_cast<std::int32_t>(args[i]); }
  std::uint32_t size(std::size_t i) const { return static_cast<std::uint32_t>(args[i]); }
  void hold(QLInteger made) { reg(0).Swap(made); }
  void give(std::int64_t number) { result = std::to_string(number); }
  Word* words(std::size_t i) { return reg(i).words; }

  void run(void (*step)(Walk& w)) try {
    result.clear();
    step(*this);
  } catch (const std::bad_alloc&) {
    result = "bad_alloc";
  }
};

// The bytes of ToBytes as hexadecimal text; and the result of HexToBytes, followed by the 4 bytes
// of its buffer, which held EE before.
std::string bytesOf(const QLInteger& value, std::uint32_t size) {
  std::uint8_t bytes[8];
  char hex[17];
  ToBytes(value, bytes, size);
  return BytesToHex(hex, 2 * size + 1, bytes, size) == 2 * size + 1 ? hex : "no room";
}
std::string bytesRead(const std::string& text, std::uint32_t size) {
  std::uint8_t bytes[] = {0xEE, 0xEE, 0xEE, 0xEE};
  char hex[9];
  const std::int32_t given = HexToBytes(bytes, size, text.c_str());
  BytesToHex(hex, 9, bytes, 4);
  return std::to_string(given) + ' ' + hex;
}

using Step = void (*)(Walk& w);
#define ULM_STEP(name, ...)            \
  {                                    \
    name, [](Walk& w) { __VA_ARGS__; } \
  }
const std::map<std::string, Step> kSteps = {
    ULM_STEP("Fresh", w.hold(QLInteger())),
    ULM_STEP("Empty", w.hold(QLInteger(kEmptyHolder))),
    ULM_STEP("Filled", w.hold(QLInteger(w.size(1), w.size(2)))),
    ULM_STEP("FromInt64", w.hold(QLInteger::fromInt64(w.args[1]))),
    ULM_STEP("Copy", w.hold(QLInteger(w.reg(1)))),
    ULM_STEP("Move", w.hold(std::move(w.reg(1)))),
    ULM_STEP("Set", w.hold(patterned(w.size(1), w.small(2), w.size(3), w.args[4] != 0))),
    ULM_STEP("Assign", w.reg(0).Assign(w.reg(1))),
    ULM_STEP("AssignSmall", w.reg(0).Assign(w.small(1))),
    ULM_STEP("Swap", w.reg(0).Swap(w.reg(1))),
    ULM_STEP("Grow", w.reg(0).Reallocate(w.size(1), true)),
    ULM_STEP("Replace", w.reg(0).Reallocate(w.size(1), false)),
    ULM_STEP("EnsureCount", w.reg(0).EnsureCount(w.size(1))),
    ULM_STEP("AppendZeroWord", w.reg(0).AppendZeroWord()),
    ULM_STEP("Normalise", w.reg(0).Normalise()),
    ULM_STEP("Negate", w.reg(0).Negate()),
    ULM_STEP("MakeNegative", w.reg(0).MakeNegative()),
    ULM_STEP("SetBit", w.reg(0).SetBit(w.size(1), w.args[2] != 0)),
    ULM_STEP("TestBit", w.give(w.reg(0).TestBit(w.size(1)))),
    ULM_STEP("BitLength", w.give(w.reg(0).BitLength())),
    ULM_STEP("IsEven", w.give(w.reg(0).IsEven())),
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
    ULM_STEP("Increment", w.reg(1).Assign(w.reg(0)++)),
    ULM_STEP("Decrement", w.reg(1).Assign(w.reg(0)--)),
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
    ULM_STEP("Gcd", w.give(Gcd(w.reg(0), w.reg(1), w.reg(2)))),
    ULM_STEP("AreCoprime", w.give(AreCoprime(w.reg(0), w.reg(1)))),
    ULM_STEP("ExtendedGcd", ExtendedGcd(w.reg(0), w.reg(1), w.reg(2), w.reg(3), w.reg(4))),
    ULM_STEP("IntegerSqrt", w.hold(IntegerSqrt(w.reg(1)))),
    ULM_STEP("FermatTest", w.give(FermatTest(w.reg(0), w.reg(1)))),
    ULM_STEP("RabinMillerTest", w.give(RabinMillerTest(w.reg(0), w.reg(1)))),
    ULM_STEP("IsProbablePrime", w.give(IsProbablePrime(w.reg(0), w.size(1), w.size(2)))),
    ULM_STEP("NextPrime", NextPrime(w.reg(0), w.reg(1))),
    ULM_STEP("FromText", FromText(w.reg(0), w.text.c_str())),
    ULM_STEP("AddWords", w.give(AddWords(w.words(0), w.words(1), w.size(2)))),
    ULM_STEP("SubtractWords", w.give(SubtractWords(w.words(0), w.words(1), w.size(2)))),
    ULM_STEP("AddWord", w.give(AddWord(w.words(0), w.size(2), w.size(1)))),
    ULM_STEP("SubtractWord", w.give(SubtractWord(w.words(0), w.size(2), w.size(1)))),
    ULM_STEP("RippleAddWord", RippleAddWord(w.words(0), w.size(1))),
    ULM_STEP("MultiplyAddWord", MultiplyAddWord(w.words(0), w.words(1), w.size(3), w.size(2))),
    ULM_STEP("ShiftLeftBits", ShiftLeftBits(w.words(0), w.size(1), w.size(2))),
    ULM_STEP("ShiftRightBits", ShiftRightBits(w.words(0), w.size(1), w.size(2))),
    ULM_STEP("ShiftRightOne", ShiftRightOne(w.words(0), w.size(1))),
    ULM_STEP("ShiftLeftWords", ShiftLeftWords(w.words(0), w.size(1), w.size(2))),
    ULM_STEP("ShiftRightWords", ShiftRightWords(w.words(0), w.size(1), w.size(2))),
    ULM_STEP("CompareWords", w.give(CompareWords(w.words(0), w.words(1), w.size(2)))),
    ULM_STEP("EqualWords", w.give(EqualWords(w.words(0), w.words(1), w.size(2)))),
    ULM_STEP("ToBytes", w.result = bytesOf(w.reg(0), w.size(1))),
    ULM_STEP("HexToBytes", w.result = bytesRead(w.text, w.size(0))),
    ULM_STEP("ToText", w.result = toString(w.reg(0), w.size(1)))};
#undef ULM_STEP

// Runs the step on copies of the values with each of its allocations failing in turn. Only values
// that the step changes may then differ from before.
void failEachAllocation(Walk& walk, Step step, const bool (&changes)[8]) {
  QLInteger kept[8];
  for (int i = 0; i < 8; ++i) kept[i].Swap(walk.registers[i]);
  for (std::uint64_t served = 0;; served += 1 + served / 4) {
    for (int i = 0; i < 8; ++i) {
      QLInteger copy(kept[i]);
      if (copy.capacity < kept[i].capacity) copy.Reallocate(kept[i].capacity, true);
      copy.Swap(walk.registers[i]);
    }
    const std::uint64_t calls = odrxAllocCounts().calls;
    odrxAllocFail(served, 1);
    walk.run(step);
    odrxAllocFail(0, 0);
    if (odrxAllocCounts().calls - calls <= served) break;
    EXPECT_EQ(walk.result, "bad_alloc");
    for (int i = 0; i < 8; ++i) {
      const std::string state = stateOf(walk.registers[i]);
      EXPECT_TRUE(state == stateOf(kept[i]) ||
                  (changes[i] && (state == "0 0 +" || isNormal(walk.registers[i]))))
          << state << " in register " << i << " after " << served;
    }
  }
  for (int i = 0; i < 8; ++i) kept[i].Swap(walk.registers[i]);
}

TEST(Walk, LeavesTheExpectedStates) {
  Walk walk;
  std::string expected[8];
  for (const char* file : {ULM_TEST_WALK, ULM_TEST_DATA "/bignum/edges.txt"}) {
    for (ulm::test::VectorBlock& block : ulm::test::readVectorBlocks(file)) {
      const Step step = kSteps.at(block.text("Op"));
      walk.args = block.numbers("Args");
      walk.text = block.find("Text").value_or("");
      std::istringstream in(block.find("In").value_or(""));
      std::string text;
      for (int i = 0; in >> text; ++i) FromText(walk.registers[i], text.c_str());
      const auto out = block.find("Out");
      bool changes[8];
      for (int i = 0; i < 8; ++i) {
        const auto state = block.find("R" + std::to_string(i));
        changes[i] = state || out;
        expected[i] = state.value_or(stateOf(walk.registers[i]));
      }

      const std::uint64_t blocks = odrxAllocCounts().liveBlocks;
      failEachAllocation(walk, step, changes);
      EXPECT_EQ(odrxAllocCounts().liveBlocks, blocks);
      walk.run(step);
      EXPECT_EQ(walk.result, block.find("Result").value_or(""));
      std::istringstream values(out.value_or(""));
      for (int i = 0; i < 8; ++i) {
        if (values >> text) {
          EXPECT_EQ(toString(walk.registers[i]), text) << "in register " << i;
          EXPECT_TRUE(isNormal(walk.registers[i]));
        } else {
          EXPECT_EQ(stateOf(walk.registers[i]), expected[i]) << "in register " << i;
        }
      }
      block.expectAllUsed();
      ASSERT_FALSE(HasFailure()) << block.where();
    }
  }
}

}  // namespace
}  // namespace ulm::bignum::test
