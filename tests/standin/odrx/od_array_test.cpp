#include "hostsdk/odrx/od_array.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>
#include <vector>

#include "standin/odrx/alloc_control.h"

namespace {

TEST(OdArray, GrowsByItsSetting) {
  const struct {
    std::int32_t growth;
    std::uint32_t length, required;
    std::uint64_t capacity;
  } kCases[] = {{-50, 100, 101, 150},
                {-50, 100, 151, 151},
                {0, 10, 11, 11},
                {8, 8, 17, 24},
                {-50, 0xFFFFFFF0, 0xFFFFFFFF, 0xFFFFFFF0ULL + 0x7FFFFFF8},
                {1000, 1, 0xFFFFFFFF, 4294968000},
                {INT32_MIN, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF + (0xFFFFFFFFULL << 31) / 100}};
  for (const auto& [growth, length, required, capacity] : kCases) {
    EXPECT_EQ(OdArrayMemory::grownCapacity(length, growth, required), capacity) << required;
  }
  OdArray<int> array(4, -50);
  array.resize(4);
  array.append(7);
  EXPECT_EQ(array.capacity(), 6U);
  array.append(8);
  array.append(array.at(4));  // an element of the buffer that the append replaces
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
  EXPECT_THROW(std::as_const(shorter).at(4), OdError_InvalidIndex);
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

// Each thread writes to its own copy of one buffer while the first owner releases it.
TEST(OdArray, CopiesPartAcrossThreads) {
  const std::uint64_t liveBefore = odrxAllocCounts().liveBlocks;
  for (int round = 0; round < 50; ++round) {
    OdArray<int> array(64, 8);
    array.resize(64);
    array.at(63) = 1;
    std::vector<std::jthread> threads;
    for (int id = 2; id < 6; ++id) {
      threads.emplace_back([copy = array, id]() mutable {
        OdArray<int> second = copy;
        second.at(63) += id;
        EXPECT_TRUE(copy.at(63) == 1 && second.at(63) == 1 + id);
      });
    }
    array = OdArray<int>();
  }
  EXPECT_EQ(odrxAllocCounts().liveBlocks, liveBefore);
}

}  // namespace
