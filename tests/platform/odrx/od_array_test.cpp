#include "platform/odrx/od_array.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>
#include <vector>

#include "platform/odrx/alloc_control.h"

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
  array.append(array.at(4));
  array.append(array.at(5));  // an element of the buffer that the append replaces
  EXPECT_EQ(array.at(6), 7);
  EXPECT_EQ(array.capacity(), 9U);
}

TEST(OdArray, CopiesOnWriteAlone) {
  OdArray<int> array(20, -50);
  for (int i = 0; i < 10; ++i) array.append(i);
  const OdArray<int>& reader = array;
  OdArray<int> copy = array;
  EXPECT_EQ(std::as_const(copy).at(3), 3);
  EXPECT_EQ(std::as_const(copy).data(), reader.data());
  copy.at(3) = 33;
  EXPECT_TRUE(reader.at(3) == 3 && copy.at(3) == 33);
  EXPECT_TRUE(copy.growth() == -50 && copy.capacity() == 20);

  OdArray<int> shorter = array;
  shorter.resize(4);
  EXPECT_TRUE(reader.length() == 10 && reader.at(9) == 9 && shorter.at(3) == 3);
  EXPECT_THROW(shorter.at(4), OdError_InvalidIndex);
  EXPECT_THROW(std::as_const(shorter).at(4), OdError);
  EXPECT_THROW(OdArray<int>().at(0), OdError_InvalidIndex);
  const OdArray<int>& itself = shorter;
  shorter = itself;
  EXPECT_EQ(shorter.length(), 4U);
  const OdArray<int> taken = std::move(shorter);
  shorter = taken;
  EXPECT_EQ(std::as_const(shorter).data(), taken.data());
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
    OdArray<Block> shared = array;
    const OdArray<Block>& reader = array;
    const Block* const buffer = reader.data();
    EXPECT_THROW(array.resize(0xFFFFFFFF), OdError);
    EXPECT_THROW(array.resize(static_cast<std::uint32_t>(limit + 1)), OdError);
    odrxAllocFail(0, 3);
    EXPECT_THROW(array.resize(3), OdError);
    EXPECT_THROW(array.at(0), OdError);
    EXPECT_THROW(array.resize(1), OdError);
    odrxAllocFail(0, 0);
    EXPECT_TRUE(reader.data() == buffer && reader.length() == 2);
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
    std::atomic<int> wrong{0};
    for (int id = 2; id < 6; ++id) {
      threads.emplace_back([copy = array, id, &wrong]() mutable {
        OdArray<int> second = copy;
        for (std::uint32_t i = 0; i < 64; ++i) second.at(i) += id;
        for (std::uint32_t i = 0; i < 64; ++i) {
          if (copy.at(i) != 1 || second.at(i) != 1 + id) ++wrong;
        }
      });
    }
    array = OdArray<int>();
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
  }
  EXPECT_EQ(odrxAllocCounts().liveBlocks, liveBefore);
}

}  // namespace
