#include "bignum/words.h"

#include <gtest/gtest.h>

#include <array>

#include "platform/odrx/alloc_control.h"

namespace ulm::bignum::test {
namespace {

constexpr Word kOnes = 0xFFFFFFFF;
using Four = std::array<Word, 4>;

TEST(Words, CarryAndBorrowStopAtTheLength) {
  const Four one = {1, 0, 0, 0};
  Four words = {kOnes, kOnes, kOnes, 5};
  EXPECT_EQ(AddWords(words.data(), one.data(), 3), 1u);
  EXPECT_EQ(words, (Four{0, 0, 0, 5}));
  EXPECT_EQ(SubtractWords(words.data(), one.data(), 3), 1u);
  EXPECT_EQ(words, (Four{kOnes, kOnes, kOnes, 5}));
  EXPECT_EQ(AddWord(words.data(), 2, 3), 1u);
  EXPECT_EQ(words, (Four{1, 0, 0, 5}));
  EXPECT_EQ(SubtractWord(words.data(), 2, 3), 1u);
  EXPECT_EQ(words, (Four{kOnes, kOnes, kOnes, 5}));
  EXPECT_EQ(AddWord(words.data(), 0, 3), 0u);
  EXPECT_EQ(AddWord(words.data(), 7, 0), 7u);
  RippleAddWord(words.data(), 1);
  EXPECT_EQ(words, (Four{0, 0, 0, 6}));
  EXPECT_EQ(SubtractWord(words.data(), 1, 4), 0u);
  EXPECT_EQ(words, (Four{kOnes, kOnes, kOnes, 5}));
}

TEST(Words, ProductWithAWordRipplesOn) {
  const Four ones = {kOnes, kOnes, 0, 0};
  Four words = {kOnes, kOnes, kOnes, 1};
  MultiplyAddWord(words.data(), ones.data(), kOnes, 2);
  // (2^96 - 1) + (2^64 - 1)(2^32 - 1) over a top word of 1
  EXPECT_EQ(words, (Four{0, kOnes, kOnes - 1, 2}));
}

TEST(Words, Shift) {
  Four words = {0x80000001, 0x80000001, 3, 9};
  ShiftLeftBits(words.data(), 2, 4);
  EXPECT_EQ(words, (Four{0x10, 0x18, 3, 9}));
  ShiftRightBits(words.data(), 3, 31);
  EXPECT_EQ(words, (Four{0x30, 6, 0, 9}));
  ShiftRightOne(words.data(), 2);
  EXPECT_EQ(words, (Four{0x18, 3, 0, 9}));
  ShiftLeftBits(words.data(), 4, 0);
  ShiftRightBits(words.data(), 0, 5);
  ShiftLeftWords(words.data(), 2, 1);
  EXPECT_EQ(words, (Four{0, 0x18, 3, 9}));
  ShiftRightWords(words.data(), 4, 2);
  EXPECT_EQ(words, (Four{3, 9, 0, 0}));
  ShiftRightWords(words.data(), 2, 9);
  EXPECT_EQ(words, (Four{0, 0, 0, 0}));
}

TEST(Words, CompareBitsAndRound) {
  const Four a = {9, 1, 2, 0};
  const Four b = {1, 9, 2, 0};
  EXPECT_EQ(CompareWords(a.data(), b.data(), 3), -1);
  EXPECT_EQ(CompareWords(a.data(), b.data(), 1), 1);
  EXPECT_EQ(CompareWords(a.data(), b.data(), 0), 0);
  EXPECT_TRUE(EqualWords(a.data() + 2, b.data() + 2, 2));
  EXPECT_FALSE(EqualWords(a.data(), b.data(), 4));
  std::uint8_t bytes[2] = {0, 0xFF};
  SetRawBit(bytes, 3, true);
  SetRawBit(bytes, 15, false);
  EXPECT_EQ(bytes[0], 8);
  EXPECT_EQ(bytes[1], 0x7F);
  EXPECT_TRUE(TestRawBit(bytes, 14));
  EXPECT_FALSE(TestRawBit(bytes, 15));
  EXPECT_EQ(RoundUpTo(33, 32), 64u);
  EXPECT_EQ(RoundUpTo(64, 32), 64u);
  EXPECT_EQ(RoundUpTo(UINT32_MAX, UINT32_MAX), UINT32_MAX);
  EXPECT_EQ(RoundDownTo(63, 32), 32u);
}

TEST(Words, ComeZeroedAndKeepTheirContentWhenResized) {
  const auto before = odrxAllocCounts();
  Word* words = AllocateWords(2);
  EXPECT_EQ(odrxAllocCounts().liveBytes - before.liveBytes, 8u);
  EXPECT_EQ(words[0] | words[1], 0u);
  words[0] = 1;
  words[1] = 2;
  odrxAllocFail(0, 1);
  EXPECT_THROW(ResizeWords(words, 5, 2), std::bad_alloc);
  words = ResizeWords(words, 5, 2);
  EXPECT_EQ(words[0], 1u);
  EXPECT_EQ(words[1], 2u);
  EXPECT_EQ(words[2] | words[3] | words[4], 0u);
  words = ResizeWords(words, 1, 5);
  EXPECT_EQ(words[0], 1u);
  FreeWords(words);
  FreeWords(nullptr);
  EXPECT_EQ(odrxAllocCounts().liveBlocks, before.liveBlocks);
}

}  // namespace
}  // namespace ulm::bignum::test
