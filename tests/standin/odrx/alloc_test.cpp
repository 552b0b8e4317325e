// The stand-in allocator: foreign blocks are caught, counts are right, failures come on request.
#include <gtest/gtest.h>

#include <cstring>

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

}  // namespace
