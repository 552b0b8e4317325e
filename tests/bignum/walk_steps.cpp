#include "tests/bignum/walk_steps.h"

#include <algorithm>
#include <array>
#include <utility>

#include "bignum/bytes.h"
#include "bignum/number_theory.h"
#include "bignum/text.h"
#include "tests/bignum/operands.h"

namespace ulm::bignum::test {
namespace {

// Bytes in hexadecimal, by BytesToHex: those that ToBytes writes; and the result of HexToBytes,
// with 4 bytes that were EE before.
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

}  // namespace

#define ULM_STEP(name, ...)            \
  {                                    \
    name, [](Walk& w) { __VA_ARGS__; } \
  }
const std::map<std::string, Step>& walkSteps() {
  static const std::map<std::string, Step> steps = {
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
  return steps;
}
#undef ULM_STEP

bool leavesCapacityOpen(const std::string& step) {
  static constexpr std::array kOpen = {"Pow",         "ModPow",    "Gcd",     "ExtendedGcd",
                                       "IntegerSqrt", "NextPrime", "FromText"};
  return std::any_of(kOpen.begin(), kOpen.end(), [&](const char* open) { return step == open; });
}

}  // namespace ulm::bignum::test
