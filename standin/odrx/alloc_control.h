// Controls of the stand-in allocator for hosts and tests: its counts, and failures on request.
// Every function is thread-safe.
#pragma once

#include <cstdint>

#include "hostsdk/export.h"

struct OdrxAllocCounts {
  std::uint64_t liveBlocks;  // blocks that have not been freed
  std::uint64_t liveBytes;   // the sum of their requested sizes
  std::uint64_t calls;       // calls of odrxAlloc and odrxRealloc so far, including failed ones
};

ULM_ODRX_API OdrxAllocCounts odrxAllocCounts() noexcept;

// Returns true if a block of any heap is from odrxAlloc and has not been freed. Reads the memory
// before the block, which is not null.
ULM_ODRX_API bool odrxAllocMade(const void* block) noexcept;

// Makes `count` consecutive allocations of all threads fail, after `after` more have succeeded. A
// later call replaces this one; a count of 0 cancels it.
ULM_ODRX_API void odrxAllocFail(std::uint64_t after, std::uint64_t count) noexcept;

// From now on calls `watch` with each block and its size directly before the block is freed, in the
// thread that frees it. Null cancels this. `watch` may read and overwrite the block.
ULM_ODRX_API void odrxAllocWatchFreed(void (*watch)(void* block, std::uint64_t bytes)) noexcept;
