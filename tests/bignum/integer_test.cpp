// What the walk does not reach: words and their storage, limits, order, bytes, primes, the
// constants, threads, streams and hashes.
#include "bignum/integer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <sstream>
#include <unordered_set>
#include <vector>

#include "bignum/bytes.h"
#include "bignum/constants.h"
#include "bignum/hash.h"
#include "bignum/number_theory.h"
#include "bignum/text.h"
#include "standin/odrx/alloc_control.h"
#include "tests/bignum/operands.h"

namespace ulm::bignum::test {
namespace {

TEST(Words, BitsOfBytesAndRounding) {
  std::uint8_t bytes[2] = {0, 0xFF};
  SetRawBit(bytes, 3, true);
  SetRawBit(bytes, 15, false);
  EXPECT_TRUE(bytes[0] == 8 && bytes[1] == 0x7F);
  EXPECT_TRUE(TestRawBit(bytes, 14) && !TestRawBit(bytes, 15));
  EXPECT_EQ(RoundUpTo(UINT32_MAX, UINT32_MAX), UINT32_MAX);
  EXPECT_EQ(RoundDownTo(63, 32), 32u);
}

TEST(Words, ComeZeroedAndKeepTheirContentWhenResized) {
  const auto before = odrxAllocCounts();
  Word* words = AllocateWords(2);
  EXPECT_EQ(odrxAllocCounts().liveBytes - before.liveBytes, 8u);
  EXPECT_EQ(words[0] | words[1], 0u);
  words[1] = 2;
  words = ResizeWords(words, 4, 2);
  const Word grown[] = {0, 2, 0, 0};
  EXPECT_TRUE(EqualWords(words, grown, 4));
  words = ResizeWords(words, 2, 4);
  EXPECT_EQ(words[1], 2u);
  FreeWords(words);
  FreeWords(nullptr);
  EXPECT_EQ(odrxAllocCounts().liveBlocks, before.liveBlocks);
}

// The constants as a static initialiser without a priority reads them.
const std::string kConstants = [] {
  std::ostringstream table;
  for (const QLInteger* value : {&Zero, &One, &Two, &MinusOne, &MinusTwo}) {
    table << stateOf(*value) << ", ";
  }
  for (const QLInteger& witness : PrimeWitnesses) {
    table << (witness.count == 1 && witness.capacity == 32 ? toString(witness) : "none") << ' ';
  }
  return table.str();
}();

TEST(Integer, ConstantsComeBeforeOtherInitialisers) {
  EXPECT_EQ(kConstants,
            "1 32 +0, 1 32 +1, 1 32 +2, 1 32 -1, 1 32 -2, "
            "2 3 5 7 11 13 17 19 23 29 31 37 39 41 43 47 49 53 ");
}

// They are destroyed in the reverse of the order in which they were built.
TEST(IntegerDeathTest, ConstantsGoBackInReverseOrder) {
  const auto leave = [] {
    odrxAllocWatchFreed([](void* block, std::uint64_t) {
      std::fprintf(stderr, "%u ", *static_cast<const Word*>(block));
    });
    std::exit(0);
  };
  EXPECT_EXIT(leave(), testing::ExitedWithCode(0),
              "53 49 47 43 41 39 37 31 29 23 19 17 13 11 7 5 3 2 2 1 2 1 0 ");
}

// The words above count hold old digits, or are outside the storage.
TEST(Integer, BitsEndWithTheWordsInUse) {
  QLInteger shrunk(33, 0xFFFFFFFF);
  shrunk.count = 32;
  EXPECT_FALSE(shrunk.TestBit(32 * 32));
  shrunk.SetBit(32 * 32, false);
  EXPECT_EQ(shrunk.words[32], 0xFFFFFFFF);
  QLInteger full(32, 5);
  EXPECT_FALSE(full.TestBit(32 * 32));
  full.SetBit(32 * 32, true);
  EXPECT_TRUE(full == QLInteger(32, 5));
}

// The largest capacity asks the allocator, and one word more is refused without asking.
TEST(Integer, CapacityHasALimit) {
  constexpr std::uint32_t kLimit = 1u << 27;
  const auto asksFor = [](auto operation) {
    QLInteger value(1, 5);
    const std::uint64_t calls = odrxAllocCounts().calls;
    odrxAllocFail(0, 1);
    EXPECT_THROW(operation(value), std::bad_alloc);
    odrxAllocFail(0, 0);
    EXPECT_TRUE(value == 5 && value.capacity == 32);
    return odrxAllocCounts().calls - calls;
  };
  for (const std::uint32_t n : {kLimit, kLimit + 1, UINT32_MAX}) {
    const std::uint64_t asked = n == kLimit ? 1 : 0;
    EXPECT_EQ(asksFor([n](QLInteger& value) { value.Reallocate(n, true); }), asked) << n;
    EXPECT_EQ(asksFor([n](QLInteger& value) { value.EnsureCount(n); }), asked) << n;
    EXPECT_EQ(asksFor([n](QLInteger&) { QLInteger(n, 0); }), asked) << n;
  }
  EXPECT_EQ(asksFor([](QLInteger& value) { value <<= 32 * (kLimit - 2); }), 1u);
  EXPECT_EQ(asksFor([](QLInteger& value) { value <<= 32 * (kLimit - 2) + 1; }), 0u);
  EXPECT_EQ(asksFor([](QLInteger& value) { value <<= UINT32_MAX; }), 0u);
  EXPECT_EQ(asksFor([](QLInteger&) { PowerOfTwo(UINT32_MAX - 1); }), 1u);
  EXPECT_EQ(asksFor([](QLInteger&) { PowerOfTwo(UINT32_MAX); }), 0u);
}

TEST(Integer, OrdersBySignThenMagnitude) {
  std::vector<QLInteger> ascending;
  for (const char* text : {"-1FFFFFFFFh", "-100000000h", "-80000000h", "-3", "-2", "0", "1", "2",
                           "7FFFFFFFh", "80000000h", "100000001h", "200000000h"}) {
    ascending.push_back(parseInteger(text));
  }
  for (std::size_t i = 0; i < ascending.size(); ++i) {
    const QLInteger& a = ascending[i];
    for (std::size_t j = 0; j < ascending.size(); ++j) {
      const QLInteger& b = ascending[j];
      EXPECT_EQ(a.Compare(b), i < j ? -1 : i > j ? 1 : 0) << a << ' ' << b;
      EXPECT_TRUE((a < b) == (i < j) && (a == b) == (i == j) && (a <=> b) == (i <=> j));
    }
    for (const std::int32_t small : {INT32_MIN, -3, -2, -1, 0, 1, 2, INT32_MAX}) {
      const int order = a.Compare(QLInteger(small));
      EXPECT_EQ(a.Compare(small), order) << a << ' ' << small;
      EXPECT_TRUE((a == small) == (order == 0) && (a != small) == (order != 0));
      EXPECT_TRUE((a < small) == (order < 0) && (a <= small) == (order <= 0));
    }
    EXPECT_TRUE(a.IsPositive() == (i > 5) && a.IsNonNegative() == (i >= 5));
    EXPECT_EQ(a.SignWord(), i < 5 ? 0xFFFFFFFF : 0);
  }
  EXPECT_EQ(ascending[9].CompareMagnitude(0x80000001u), -1);
  EXPECT_EQ(ascending[10].CompareMagnitude(0xFFFFFFFFu), 1);
  EXPECT_EQ(ascending[6].CompareMagnitude(-1), 0);
}

TEST(Integer, PrimesAgreeWithTrialDivision) {
  int next = 3001;
  for (int n = 3000; n > -4; --n) {
    bool isPrime = n > 1;
    for (int d = 2; d * d <= n; ++d) isPrime = isPrime && n % d != 0;
    EXPECT_EQ(IsProbablePrime(n, 18, 18), isPrime) << n;
    QLInteger found;
    NextPrime(n, found);
    EXPECT_EQ(found, n == 2 ? 3 : isPrime ? n : next) << n;
    if (isPrime) next = n;
  }
}

TEST(Integer, BytesComeAndGoInBothOrders) {
  for (const std::size_t length : {0u, 1u, 3u, 4u, 5u, 127u, 128u, 129u}) {
    QLInteger expected(0);
    std::vector<std::uint8_t> bytes(length);
    for (std::size_t i = length; i-- > 0;) {
      bytes[i] = static_cast<std::uint8_t>(0x81 + 11 * i);
      (expected <<= 8) += bytes[i];
    }
    const auto capacity =
        static_cast<std::uint32_t>(std::max<std::size_t>(length + 127, 128) / 128 * 32);
    std::vector<std::uint8_t> highFirst(bytes.rbegin(), bytes.rend());
    const QLInteger low = fromBytesLowFirst(bytes), high = fromBytesHighFirst(highFirst);
    EXPECT_TRUE(low == expected && low.capacity == capacity) << length;
    EXPECT_TRUE(high == expected && high.capacity == capacity) << length;
    const QLInteger negative = Zero - low;  // the sign is not in the bytes
    const auto written = bytesLowFirst(negative), writtenHighFirst = bytesHighFirst(negative);
    EXPECT_TRUE(std::equal(written.begin(), written.end(), bytes.begin(), bytes.end())) << length;
    EXPECT_TRUE(std::equal(writtenHighFirst.begin(), writtenHighFirst.end(), highFirst.begin(),
                           highFirst.end()))
        << length;
    EXPECT_EQ(written.size(), length);
    highFirst.insert(highFirst.begin(), 9, 0);
    EXPECT_EQ(fromBytesHighFirst(highFirst), expected) << length;
  }
}

TEST(Integer, ServesModernUse) {
  const QLInteger value = parseInteger("-123456789Ah");
  std::ostringstream out;
  out << value << ' ' << std::hex << value << ' ' << std::oct << QLInteger(8);
  EXPECT_EQ(out.str(), "-78187493530 -123456789Ah 10o");
  const std::unordered_set<QLInteger> set{value, One, MinusOne, value};
  EXPECT_TRUE(set.size() == 3 && set.contains(QLInteger(-1)));
}

// SetBit can leave zero words at the top. The results of later operations are in normal form, and
// no loop runs forever.
TEST(Integer, ZeroWordsOnTopDoNotLast) {
  for (const std::int32_t low : {0, 5}) {
    QLInteger value = PowerOfTwo(32) + QLInteger(low);
    value.SetBit(32, false);
    value.MakeNegative();
    QLInteger quotient, remainder;
    Divide(value, 7, quotient, remainder);
    EXPECT_TRUE(quotient == 0 && remainder == -low) << low;
    EXPECT_TRUE(Gcd(value, 7, remainder)) << low;
    value += low;
    EXPECT_TRUE(value == 0 && isNormal(value)) << low;
  }
}

}  // namespace
}  // namespace ulm::bignum::test
