// What the walk does not reach: construction, order, signs, bits, storage by hand, small operands
// at their limits, the constants, and the modern use.
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
  const std::pair<QLInteger, const char*> cases[] = {
      {QLInteger(), "1 32 +0"},
      {QLInteger(kEmptyHolder), "0 0 +"},
      {QLInteger(0, 5), "0 0 +"},
      {QLInteger(2, 5), "2 32 +500000005"},
      {QLInteger(INT32_MIN), "1 32 -80000000"},
      {QLInteger::fromInt64(INT64_MIN), "2 32 -8000000000000000"},
      {QLInteger::fromUint64(7), "1 32 +7"},
      {Zero, "1 32 +0"},
      {MinusOne, "1 32 -1"},
      {MinusTwo, "1 32 -2"},
      {kThreeFromConstants, "1 32 +3"}};
  for (const auto& [value, state] : cases) EXPECT_EQ(stateOf(value), state);
  EXPECT_EQ(stateOf(moved), "0 0 +");
  EXPECT_EQ(stateOf(kept), "1 64 +5");
  EXPECT_EQ(QLInteger(from).capacity, 64u);
  std::ostringstream table;
  for (const QLInteger& witness : PrimeWitnesses)
    table << witness << ' ' << witness.capacity << ' ';
  EXPECT_EQ(table.str(),
            "2 32 3 32 5 32 7 32 11 32 13 32 17 32 19 32 23 32 29 32 31 32 37 32 39 32 41 32 43 32 "
            "47 32 49 32 53 32 ");
}

TEST(Integer, OrdersBySignThenMagnitude) {
  std::vector<QLInteger> ascending;
  for (const char* text : {"-1FFFFFFFFh", "-100000000h", "-80000000h", "-3", "-2", "0", "1", "2",
                           "7FFFFFFFh", "80000000h", "100000001h", "200000000h"}) {
    ascending.push_back(QLInteger::fromText(text));
  }
  for (std::size_t i = 0; i < ascending.size(); ++i) {
    const QLInteger& a = ascending[i];
    for (std::size_t j = 0; j < ascending.size(); ++j) {
      const QLInteger& b = ascending[j];
      EXPECT_EQ(a.Compare(b), i < j ? -1 : i > j ? 1 : 0) << a << ' ' << b;
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
      EXPECT_TRUE((a == small) == (order == 0) && (a != small) == (order != 0));
      EXPECT_TRUE((a < small) == (order < 0) && (a <= small) == (order <= 0));
    }
    EXPECT_EQ(a.IsPositive(), i > 5);
    EXPECT_EQ(a.IsNonNegative(), i >= 5);
    EXPECT_EQ(a.SignWord(), i < 5 ? 0xFFFFFFFF : 0);
  }
  EXPECT_EQ(ascending[9].CompareMagnitude(0x80000001u), -1);
  EXPECT_EQ(ascending[10].CompareMagnitude(0xFFFFFFFFu), 1);
}

TEST(Integer, SignAndBitsStayInTheirBounds) {
  QLInteger zero;
  zero.Negate();
  zero.MakeNegative();
  EXPECT_EQ(stateOf(zero), "1 32 +0");
  QLInteger value = PowerOfTwo(40);
  value.MakeNegative();
  value.MakeNegative();
  EXPECT_TRUE(value.IsNegative());
  value.Negate();
  EXPECT_EQ(value.BitLength(), 41u);
  EXPECT_EQ(zero.BitLength(), 0u);
  value.SetBit(64, true);
  EXPECT_EQ(value, PowerOfTwo(40));
  EXPECT_FALSE(value.TestBit(64) || value.TestBit(UINT32_MAX) || value.TestBit(39));
  value.SetBit(40, false);
  EXPECT_EQ(stateOf(value), "2 32 +000000000");
  value.SetBit(33, true);
  EXPECT_EQ(*value.WordPointer(1), 2u);
  EXPECT_TRUE(value.IsEven() && QLInteger(kEmptyHolder).IsEven() && !One.IsEven());
}

TEST(Integer, StorageGrowsByHand) {
  QLInteger value = patterned(33, 1, 0, true);
  value >>= 32 * 31 + 31;  // old digits stay above the two words in use
  value.EnsureCount(64);
  for (std::uint32_t i = 2; i < 64; ++i) ASSERT_EQ(value.words[i], 0u) << i;
  EXPECT_EQ(value.capacity, 64u);
  value.AppendZeroWord();
  EXPECT_EQ(value.count, 65u);
  EXPECT_EQ(value.capacity, 96u);
  value.Normalise();
  EXPECT_EQ(stateOf(value), "2 96 -1FFFFFFFF");
  EXPECT_THROW(value.Reallocate(UINT32_MAX, true), std::bad_alloc);
  EXPECT_THROW(value.EnsureCount(0xFFFFFFE1), std::bad_alloc);
  value.Reallocate(1, true);
  EXPECT_EQ(stateOf(value), "2 32 -1FFFFFFFF");
  value.Reallocate(33, false);
  EXPECT_EQ(value.words[0] | value.words[1], 0u);
}

TEST(Integer, ServesModernUse) {
  const QLInteger value = QLInteger::fromText("-123456789Ah");
  std::ostringstream out;
  out << value << ' ' << std::hex << value << ' ' << std::oct << QLInteger(8);
  EXPECT_EQ(out.str(), "-78187493530 -123456789Ah 10o");
  const std::vector<int> bytes{0x9A, 0x78, 0x56, 0x34, 0x12};
  const auto low = bytesLowFirst(value), high = bytesHighFirst(value);
  EXPECT_EQ(std::vector<int>(low.begin(), low.end()), bytes);
  EXPECT_EQ(std::vector<int>(high.begin(), high.end()),
            std::vector<int>(bytes.rbegin(), bytes.rend()));
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
