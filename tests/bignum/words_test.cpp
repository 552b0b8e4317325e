#include "bignum/words.h"

#include <gtest/gtest.h>

#include <array>

#include "platform/odrx/alloc_control.h"

namespace ulm::bignum::test {
namespace {

constexpr Word kOnes = 0xFFFFFFFF;
constexpr Word one[] = {1, 0, 0, 0};
constexpr Word ones[] = {kOnes, kOnes};
using Four = std::array<Word, 4>;

// Each routine in place on four words, with what it gives: 0 where it gives nothing.
#define ULM_GIVES(call) #call, [](Word * w) { return static_cast<int>(call); }
#define ULM_DONE(call) #call, [](Word * w) { return (call, 0); }
TEST(Words, RoutinesKeepToTheirLengths) {
  const struct {
    const char* call;
    int (*run)(Word* w);
    Four before;
    int result;
    Four after;
  } cases[] = {
      {ULM_GIVES(AddWords(w, one, 3)), {kOnes, kOnes, kOnes, 5}, 1, {0, 0, 0, 5}},
      {ULM_GIVES(AddWords(w, one, 4)), {kOnes, kOnes, 7, 5}, 0, {0, 0, 8, 5}},
      {ULM_GIVES(SubtractWords(w, one, 3)), {0, 0, 0, 5}, 1, {kOnes, kOnes, kOnes, 5}},
      {ULM_GIVES(SubtractWords(w, one, 4)), {0, 0, 0, 5}, 0, {kOnes, kOnes, kOnes, 4}},
      {ULM_GIVES(AddWord(w, 2, 3)), {kOnes, kOnes, kOnes, 5}, 1, {1, 0, 0, 5}},
      {ULM_GIVES(AddWord(w, 0, 3)), {kOnes, kOnes, kOnes, 5}, 0, {kOnes, kOnes, kOnes, 5}},
      {ULM_GIVES(AddWord(w, 7, 0)), {1, 2, 3, 4}, 7, {1, 2, 3, 4}},
      {ULM_GIVES(SubtractWord(w, 2, 3)), {1, 0, 0, 5}, 1, {kOnes, kOnes, kOnes, 5}},
      {ULM_GIVES(SubtractWord(w, 2, 4)), {1, 0, 0, 5}, 0, {kOnes, kOnes, kOnes, 4}},
      {ULM_DONE(RippleAddWord(w, 1)), {kOnes, kOnes, kOnes, 5}, 0, {0, 0, 0, 6}},
      {ULM_DONE(MultiplyAddWord(w, ones, kOnes, 2)),
       {kOnes, kOnes, kOnes, 1},
       0,
       {0, kOnes, kOnes - 1, 2}},
      {ULM_DONE(ShiftLeftBits(w, 2, 4)), {0x80000001, 0x80000001, 3, 9}, 0, {0x10, 0x18, 3, 9}},
      {ULM_DONE(ShiftLeftBits(w, 4, 0)), {1, 2, 3, 4}, 0, {1, 2, 3, 4}},
      {ULM_DONE(ShiftRightBits(w, 3, 31)), {0x10, 0x18, 3, 9}, 0, {0x30, 6, 0, 9}},
      {ULM_DONE(ShiftRightBits(w, 0, 5)), {1, 2, 3, 4}, 0, {1, 2, 3, 4}},
      {ULM_DONE(ShiftRightOne(w, 2)), {0x30, 7, 1, 9}, 0, {0x80000018, 3, 1, 9}},
      {ULM_DONE(ShiftLeftWords(w, 2, 1)), {1, 2, 3, 4}, 0, {0, 1, 2, 4}},
      {ULM_DONE(ShiftLeftWords(w, 1, 3)), {1, 2, 3, 4}, 0, {0, 0, 0, 1}},
      {ULM_DONE(ShiftRightWords(w, 4, 2)), {1, 2, 3, 4}, 0, {3, 4, 0, 0}},
      {ULM_DONE(ShiftRightWords(w, 3, 9)), {1, 2, 3, 4}, 0, {0, 0, 0, 4}},
      {ULM_GIVES(CompareWords(w, w + 2, 2)), {9, 1, 1, 2}, -1, {9, 1, 1, 2}},
      {ULM_GIVES(CompareWords(w, w + 2, 1)), {9, 1, 1, 2}, 1, {9, 1, 1, 2}},
      {ULM_GIVES(CompareWords(w, w + 2, 0)), {9, 1, 1, 2}, 0, {9, 1, 1, 2}},
      {ULM_GIVES(EqualWords(w, w + 2, 2)), {9, 1, 9, 1}, 1, {9, 1, 9, 1}},
      {ULM_GIVES(EqualWords(w, w + 2, 2)), {9, 1, 9, 2}, 0, {9, 1, 9, 2}},
      {ULM_GIVES(EqualWords(w, w + 2, 0)), {9, 1, 8, 2}, 1, {9, 1, 8, 2}}};
  for (const auto& tested : cases) {
    Four words = tested.before;
    EXPECT_EQ(tested.run(words.data()), tested.result) << tested.call;
    EXPECT_EQ(words, tested.after) << tested.call;
  }
}

TEST(Words, BitsOfBytesAndRounding) {
  std::uint8_t bytes[2] = {0, 0xFF};
  SetRawBit(bytes, 3, true);
  SetRawBit(bytes, 15, false);
  EXPECT_TRUE(bytes[0] == 8 && bytes[1] == 0x7F);
  EXPECT_TRUE(TestRawBit(bytes, 14) && !TestRawBit(bytes, 15));
  EXPECT_EQ(RoundUpTo(33, 32), 64u);
  EXPECT_EQ(RoundUpTo(UINT32_MAX, UINT32_MAX), UINT32_MAX);
  EXPECT_EQ(RoundDownTo(63, 32), 32u);
}

TEST(Words, ComeZeroedAndKeepTheirContentWhenResized) {
  const auto before = odrxAllocCounts();
  Word* words = AllocateWords(2);
  EXPECT_EQ(odrxAllocCounts().liveBytes - before.liveBytes, 8u);
  EXPECT_EQ(words[0] | words[1], 0u);
  words[1] = 2;
  odrxAllocFail(0, 1);
  EXPECT_THROW(ResizeWords(words, 4, 2), std::bad_alloc);
  words = ResizeWords(words, 4, 2);
  EXPECT_TRUE(EqualWords(words, Four{0, 2, 0, 0}.data(), 4));
  words = ResizeWords(words, 2, 4);
  EXPECT_EQ(words[1], 2u);
  FreeWords(words);
  FreeWords(nullptr);
  EXPECT_EQ(odrxAllocCounts().liveBlocks, before.liveBlocks);
}

}  // namespace
}  // namespace ulm::bignum::test
