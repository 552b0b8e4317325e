// What the walk does not reach: construction, signs, bits, order, small operands at their limits,
// the constants, and the modern use.
#include "bignum/integer.h"

#include <gtest/gtest.h>

#include <sstream>
#include <unordered_set>
#include <vector>

#include "bignum/constants.h"
#include "tests/bignum/operands.h"

namespace ulm::bignum::test {
namespace {

// Static initialisers without a priority may use the constants.
const QLInteger kThreeFromConstants = One + Two;

TEST(Integer, StartsInTheToldState) {
  QLInteger moved(33, 7);
  const QLInteger from(std::move(moved));
  QLInteger kept(40, 1);
  kept = QLInteger(5);
  QLInteger zeroed(2, 0);
  zeroed.SetBit(40, true);
  const std::pair<QLInteger, const char*> cases[] = {
      {QLInteger(), "1 32 +0"},
      {QLInteger(kEmptyHolder), "0 0 +"},
      {QLInteger(0, 5), "0 0 +"},
      {QLInteger(INT32_MIN), "1 32 -80000000"},
      {zeroed, "2 32 +10000000000"},
      {PowerOfTwo(31), "1 32 +80000000"},
      {PowerOfTwo(32), "2 32 +100000000"},
      {QLInteger::fromInt64(INT64_MIN), "2 32 -8000000000000000"},
      {QLInteger::fromUint64(7), "1 32 +7"}};
  for (const auto& [value, state] : cases) EXPECT_EQ(stateOf(value), state);
  EXPECT_EQ(stateOf(moved), "0 0 +");
  EXPECT_EQ(stateOf(kept), "1 64 +5");
  EXPECT_EQ(QLInteger(from).capacity, 64u);
  EXPECT_EQ(stateOf(kThreeFromConstants), "1 32 +3");
}

TEST(Integer, ConstantsAreBuilt) {
  const QLInteger* const constants[] = {&Zero, &One, &Two, &MinusOne, &MinusTwo};
  const std::int32_t values[] = {0, 1, 2, -1, -2};
  for (std::size_t i = 0; i < 5; ++i) EXPECT_EQ(*constants[i], values[i]);
  std::ostringstream table;
  for (const QLInteger& witness : PrimeWitnesses) {
    EXPECT_EQ(witness.capacity, 32u);
    table << witness << ' ';
  }
  EXPECT_EQ(table.str(), "2 3 5 7 11 13 17 19 23 29 31 37 39 41 43 47 49 53 ");
}

TEST(Integer, OrdersBySignThenMagnitude) {
  std::vector<QLInteger> ascending;
  for (const char* text : {"-1FFFFFFFFh", "-100000000h", "-80000000h", "-3", "-2", "0", "1", "2",
                           "7FFFFFFFh", "80000000h", "100000001h", "200000000h"}) {
    ascending.push_back(QLInteger::fromText(text));
  }
  const auto sign = [](auto a, auto b) { return a < b ? -1 : a > b ? 1 : 0; };
  for (std::size_t i = 0; i < ascending.size(); ++i) {
    const QLInteger& a = ascending[i];
    for (std::size_t j = 0; j < ascending.size(); ++j) {
      const QLInteger& b = ascending[j];
      EXPECT_EQ(a.Compare(b), sign(i, j)) << a << ' ' << b;
      EXPECT_EQ(a < b, i < j);
      EXPECT_EQ(a == b, i == j);
      EXPECT_TRUE((a <=> b) == (i <=> j));
      QLInteger aSize(a), bSize(b);
      aSize.negative = bSize.negative = 0;
      EXPECT_EQ(a.CompareMagnitude(b), aSize.Compare(bSize));
    }
    for (const std::int32_t small : {INT32_MIN, -3, -2, -1, 0, 1, 2, INT32_MAX}) {
      const int order = a.Compare(QLInteger(small));
      EXPECT_EQ(a.Compare(small), order) << a << ' ' << small;
      EXPECT_EQ(a == small, order == 0);
      EXPECT_EQ(a != small, order != 0);
      EXPECT_EQ(a < small, order < 0);
      EXPECT_EQ(a <= small, order <= 0);
      EXPECT_EQ(a > small, order > 0);
    }
    EXPECT_EQ(a.IsPositive(), i > 5);
    EXPECT_EQ(a.IsNonNegative(), i >= 5);
    EXPECT_EQ(a.SignWord(), i < 5 ? 0xFFFFFFFF : 0);
  }
  EXPECT_EQ(ascending[9].CompareMagnitude(0x80000001u), -1);
  EXPECT_EQ(ascending[10].CompareMagnitude(0xFFFFFFFFu), 1);
}

TEST(Integer, SignLeavesZeroAlone) {
  QLInteger zero;
  zero.Negate();
  zero.MakeNegative();
  EXPECT_EQ(stateOf(zero), "1 32 +0");
  QLInteger one(1);
  one.MakeNegative();
  one.MakeNegative();
  EXPECT_EQ(one, -1);
  one.Negate();
  EXPECT_EQ(one, 1);
}

TEST(Integer, BitsNeitherGrowNorNormalise) {
  QLInteger value = PowerOfTwo(40);
  EXPECT_EQ(value.BitLength(), 41u);
  value.SetBit(64, true);
  EXPECT_EQ(value, PowerOfTwo(40));
  EXPECT_FALSE(value.TestBit(64));
  EXPECT_FALSE(value.TestBit(UINT32_MAX));
  value.SetBit(40, false);
  EXPECT_EQ(value.count, 2u);
  value.SetBit(33, true);
  EXPECT_TRUE(value.TestBit(33));
  EXPECT_FALSE(value.TestBit(32));
  EXPECT_EQ(*value.WordPointer(1), 2u);
  EXPECT_TRUE(value.IsEven());
  EXPECT_TRUE(QLInteger(kEmptyHolder).IsEven());
  EXPECT_EQ(Zero.BitLength(), 0u);
}

TEST(Integer, StorageGrowsByHand) {
  QLInteger value = patterned(33, 1, 0, false);
  value >>= 32 * 31 + 31;  // old digits stay above the two words in use
  value.EnsureCount(64);
  EXPECT_EQ(value.capacity, 64u);
  for (std::uint32_t i = 2; i < 64; ++i) ASSERT_EQ(value.words[i], 0u) << i;
  value.AppendZeroWord();
  EXPECT_EQ(value.count, 65u);
  EXPECT_EQ(value.capacity, 96u);
  value.MakeNegative();
  value.Normalise();
  EXPECT_EQ(stateOf(value), "2 96 -1FFFFFFFF");
  value.Reallocate(1, true);
  EXPECT_EQ(stateOf(value), "2 32 -1FFFFFFFF");
  value.Reallocate(33, false);
  EXPECT_EQ(value.words[0] + value.words[1], 0u);
}

// a / b and a % b by each way to ask, with the limits of the small operand and zero divisors.
TEST(Integer, DividesWithTruncation) {
  const struct {
    const char *a, *b, *quotient, *remainder;
  } cases[] = {{"-7", "2", "-3", "-1"},
               {"7", "-2", "-3", "1"},
               {"-3", "5", "0", "-3"},
               {"-12", "12", "-1", "0"},
               {"10000000000000000h", "100000000h", "100000000h", "0"},
               {"1FFFFFFFFh", "1", "1FFFFFFFFh", "0"},
               {"-80000001h", "-80000000h", "1", "-1"},
               {"-80000000h", "-1", "80000000h", "0"},
               {"0", "0", "0", "0"},
               {"-5", "0", "0", "-5"},
               {"123456789ABCDEF01h", "0", "0", "123456789ABCDEF01h"}};
  for (const auto& tested : cases) {
    SCOPED_TRACE(tested.a);
    const QLInteger a = QLInteger::fromText(tested.a);
    const QLInteger b = QLInteger::fromText(tested.b);
    const QLInteger expectedQuotient = QLInteger::fromText(tested.quotient);
    const QLInteger expectedRemainder = QLInteger::fromText(tested.remainder);
    QLInteger quotient(kEmptyHolder), remainder(kEmptyHolder), modulo(a), inPlace(a);
    Divide(a, b, quotient, remainder);
    EXPECT_EQ(quotient, expectedQuotient);
    EXPECT_EQ(remainder, expectedRemainder);
    EXPECT_EQ(a / b, expectedQuotient);
    modulo %= b;
    EXPECT_EQ(modulo, expectedRemainder);
    if (b.count > 1) continue;
    Divide(inPlace,
           b.IsNegative() ? static_cast<std::int32_t>(-std::int64_t{b.words[0]})
                          : static_cast<std::int32_t>(b.words[0]),
           quotient, inPlace);
    EXPECT_EQ(quotient, expectedQuotient);
    EXPECT_EQ(inPlace, expectedRemainder);
  }
}

TEST(Integer, SizesPastThirtyTwoBitsAreRefused) {
  QLInteger value(1);
  EXPECT_THROW(value.Reallocate(UINT32_MAX, true), std::bad_alloc);
  EXPECT_THROW(value.EnsureCount(0xFFFFFFE1), std::bad_alloc);
  EXPECT_EQ(stateOf(value), "1 32 +1");
}

TEST(Integer, ServesModernUse) {
  const QLInteger value = QLInteger::fromText("-123456789Ah");
  std::ostringstream out;
  out << value << ' ' << std::hex << value << ' ' << std::oct << QLInteger(8);
  EXPECT_EQ(out.str(), "-78187493530 -123456789Ah 10o");
  const auto low = bytesLowFirst(value);
  EXPECT_EQ(std::vector<int>(low.begin(), low.end()),
            (std::vector<int>{0x9A, 0x78, 0x56, 0x34, 0x12}));
  const auto high = bytesHighFirst(value);
  EXPECT_EQ(std::vector<int>(high.begin(), high.end()),
            (std::vector<int>{0x12, 0x34, 0x56, 0x78, 0x9A}));
  EXPECT_EQ(bytesHighFirst(Zero).size(), 0u);
  const std::unordered_set<QLInteger> set{value, One, MinusOne, value};
  EXPECT_EQ(set.size(), 3u);
  EXPECT_TRUE(set.contains(QLInteger(-1)));
  QLInteger counter(-1);
  EXPECT_EQ(counter++, -1);
  EXPECT_EQ(++counter, 1);
  EXPECT_EQ(counter--, 1);
  EXPECT_EQ(stateOf(--counter), "1 32 -1");
}

}  // namespace
}  // namespace ulm::bignum::test
