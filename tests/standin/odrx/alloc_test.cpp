// The stand-in allocator: foreign blocks are caught, counts are right, failures come on request.
#include <gtest/gtest.h>

#include <cstring>
#include <thread>
#include <vector>

#include "hostsdk/odrx/alloc.h"
#include "standin/odrx/alloc_control.h"

namespace {

TEST(OdrxAllocDeathTest, CatchesForeignBlocks) {
  // A block inside another one, so that the memory before it can be read.
  alignas(16) static char whole[64] = {};
  EXPECT_DEATH(odrxFree(whole + 32), "not from odrxAlloc");
  EXPECT_DEATH(odrxRealloc(whole + 32, 8, 8), "not from odrxAlloc");
  char* const block = static_cast<char*>(odrxAlloc(8));
  std::memcpy(whole + 16, block - 16, 16);  // a header at another address
  EXPECT_DEATH(odrxFree(whole + 32), "not from odrxAlloc");
  odrxFree(block);
}

TEST(OdrxAlloc, CountsReallocatesAndFails) {
  const OdrxAllocCounts before = odrxAllocCounts();
  char* block = static_cast<char*>(odrxAlloc(4));
  std::memcpy(block, "abc", 4);
  EXPECT_EQ(odrxRealloc(block, SIZE_MAX, 4), nullptr);
  odrxAllocFail(1, 1);
  block = static_cast<char*>(odrxRealloc(block, 100, 4));
  EXPECT_STREQ(block, "abc");
  EXPECT_EQ(odrxAllocCounts().liveBytes, before.liveBytes + 100);
  EXPECT_EQ(odrxRealloc(block, 200, 100), nullptr);
  EXPECT_STREQ(block, "abc") << "a refused request leaves the block";
  odrxFree(odrxAlloc(0));
  odrxFree(nullptr);
  odrxFree(block);
  EXPECT_EQ(odrxAllocCounts().liveBlocks, before.liveBlocks);
}

TEST(OdrxAlloc, CountsForMoreThreadsThanHaveCountsOfTheirOwn) {
  const OdrxAllocCounts before = odrxAllocCounts();
  constexpr std::size_t kThreads = 80, kBlocks = 500;
  std::vector<std::thread> threads;
  std::vector<void*> blocks(kThreads * kBlocks);
  const auto forEachThread = [&threads](auto work) {
    threads.clear();
    for (std::size_t i = 0; i < kThreads; ++i) threads.emplace_back(work, i);
    for (std::thread& thread : threads) thread.join();
  };
  forEachThread([&blocks](std::size_t i) {
    for (std::size_t j = 0; j < kBlocks; ++j) blocks[i * kBlocks + j] = odrxAlloc(8);
  });
  const OdrxAllocCounts made = odrxAllocCounts();
  EXPECT_EQ(made.calls - before.calls, kThreads * kBlocks);
  EXPECT_EQ(made.liveBlocks - before.liveBlocks, kThreads * kBlocks);
  EXPECT_EQ(made.liveBytes - before.liveBytes, 8 * kThreads * kBlocks);
  forEachThread([&blocks](std::size_t i) {
    for (std::size_t j = 0; j < kBlocks; ++j) odrxFree(blocks[j * kThreads + i]);
  });
  EXPECT_EQ(odrxAllocCounts().liveBlocks, before.liveBlocks);
  EXPECT_EQ(odrxAllocCounts().liveBytes, before.liveBytes);
}

}  // namespace
