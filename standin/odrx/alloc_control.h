// What a host or a test asks of the stand-in allocator: its counts, and failures on request.
#pragma once

#include <cstdint>

#include "hostsdk/export.h"

struct OdrxAllocCounts {
  std::uint64_t liveBlocks;  // blocks handed out and not given back
  std::uint64_t liveBytes;   // their sizes as asked for
  std::uint64_t calls;       // calls of odrxAlloc and odrxRealloc so far, failed ones too
};

ULM_ODRX_API OdrxAllocCounts odrxAllocCounts() noexcept;

// Whether a block of any heap is one of odrxAlloc's that has not been given back: looks at what
// stands before it.
ULM_ODRX_API bool odrxAllocMade(const void* block) noexcept;

// Makes `count` allocations in a row fail, after `after` more have been served; a later call
// replaces this one, and a count of 0 ends it. Counts over all threads.
ULM_ODRX_API void odrxAllocFail(std::uint64_t after, std::uint64_t count) noexcept;

// Calls `watch` with each block and its size right before the block is freed, from the thread that
// frees it; null ends this. `watch` may read and overwrite the block.
ULM_ODRX_API void odrxAllocWatchFreed(void (*watch)(void* block, std::uint64_t bytes)) noexcept;
