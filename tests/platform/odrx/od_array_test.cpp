#include "platform/odrx/od_array.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>
#include <vector>

#include "platform/odrx/alloc_control.h"

namespace {

TEST(OdArray, GrowsByItsSetting) {
  const auto grown = &OdArrayMemory::grownCapacity;  // of length, growth, required
  EXPECT_EQ(grown(100, -50, 101), 150u);
  EXPECT_EQ(grown(100, -50, 151), 151u);
  EXPECT_EQ(grown(10, 0, 11), 11u);
  EXPECT_EQ(grown(8, 8, 17), 24u);
  EXPECT_EQ(grown(0xFFFFFFF0, -50, 0xFFFFFFFF), 0xFFFFFFF0 + 0x7FFFFFF8ULL);
  EXPECT_EQ(grown(1, 1000, 0xFFFFFFFF), 4294968000u);
  EXPECT_EQ(grown(0xFFFFFFFF, INT32_MIN, 0xFFFFFFFF), 0xFFFFFFFF + (0xFFFFFFFFULL << 31) / 100);
  OdArray<int> array(4, -50);
  array.resize(4);
  array.append(7);
  array.append(array.at(4));
  array.append(array.at(5));  // an element of the buffer that the append replaces
  EXPECT_TRUE(array.at(6) == 7 && array.capacity() == 9);
}

TEST(OdArray, CopiesOnWriteAlone) {
  OdArray<int> array(20, -50);
  for (int i = 0; i < 10; ++i) array.append(i);
  const OdArray<int>& reader = array;
  OdArray<int> copy = array;
  EXPECT_EQ(std::as_const(copy).data(), reader.data());
  copy.at(3) = 33;
  EXPECT_TRUE(reader.at(3) == 3 && copy.at(3) == 33);
  EXPECT_TRUE(copy.growth() == -50 && copy.capacity() == 20);

  OdArray<int> shorter = array;
  shorter.resize(4);
  EXPECT_TRUE(reader.length() == 10 && reader.at(9) == 9 && shorter.at(3) == 3);
  EXPECT_THROW(shorter.at(4), OdError_InvalidIndex);
  EXPECT_THROW(std::as_const(shorter).at(4), OdError);
  const OdArray<int>& itself = shorter;
  shorter = itself;
  const OdArray<int> taken = std::move(shorter);
  shorter = taken;
  EXPECT_TRUE(std::as_const(shorter).data() == taken.data() && taken.length() == 4);
}

TEST(OdArray, RefusesWhatDoesNotFitAndKeepsWhatItHeld) {
  using Block = std::array<std::uint32_t, 16>;  // large, so that the limit of 32 bits is near
  const std::uint64_t liveBefore = odrxAllocCounts().liveBlocks;
  const std::uint64_t limit = (0xFFFFFFFFULL - 16) / sizeof(Block);
  for (const std::uint64_t capacity : {limit + 1, std::uint64_t{1} << 32, ~std::uint64_t{0}}) {
    EXPECT_THROW(OdArray<Block>(capacity, 8), OdError) << capacity;
  }
  {
    OdArray<Block> array(2, -50);
    array.resize(2);
    const OdArray<Block> shared = array;
    EXPECT_THROW(array.resize(0xFFFFFFFF), OdError);
    EXPECT_THROW(array.resize(static_cast<std::uint32_t>(limit + 1)), OdError);
    odrxAllocFail(0, 3);
    EXPECT_THROW(array.resize(3), OdError);
    EXPECT_THROW(array.at(0), OdError);
    EXPECT_THROW(array.resize(1), OdError);
    odrxAllocFail(0, 0);
    EXPECT_TRUE(std::as_const(array).data() == shared.data() && array.length() == 2);
  }
  EXPECT_EQ(odrxAllocCounts().liveBlocks, liveBefore);
}

// Each thread writes its own copy of one buffer, the first owner letting go meanwhile.
TEST(OdArray, CopiesPartAcrossThreads) {
  const std::uint64_t liveBefore = odrxAllocCounts().liveBlocks;
  for (int round = 0; round < 50; ++round) {
    OdArray<int> array(64, 8);
    for (int i = 0; i < 64; ++i) array.append(1);
    std::vector<std::thread> threads;
    for (int id = 2; id < 6; ++id) {
      threads.emplace_back([copy = array, id]() mutable {
        OdArray<int> second = copy;
        for (std::uint32_t i = 0; i < 64; ++i) second.at(i) += id;
        for (std::uint32_t i = 0; i < 64; ++i) {
          EXPECT_TRUE(copy.at(i) == 1 && second.at(i) == 1 + id);
        }
      });
    }
    array = OdArray<int>();
    for (std::thread& thread : threads) thread.join();
  }
  EXPECT_EQ(odrxAllocCounts().liveBlocks, liveBefore);
}

}  // namespace
