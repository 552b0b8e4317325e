#include "hostsdk/odrx/alloc.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "standin/odrx/alloc_control.h"

namespace {

// The header directly before each block. Its size preserves the alignment of malloc.
struct alignas(16) BlockHeader {
  std::uint64_t seal;  // kSeal mixed with the header's address while the block is allocated
  std::uint64_t bytes;
};
constexpr std::uint64_t kSeal = 0x51A70DB10CC5EA1Eu;

using Count = std::atomic<std::uint64_t>;

// What one thread has counted. A thread frees blocks of others too, so that only the sums over all
// threads have a meaning; they are modulo 2^64.
struct alignas(64) Counts {
  Count blocks{0};
  Count bytes{0};
  Count calls{0};
};
// A thread keeps the entry that it got first. All threads after those of the other entries share
// the last one.
std::array<Counts, 64> counts;
std::atomic<std::size_t> countingThreads{0};
[[gnu::tls_model("initial-exec")]] thread_local Counts* countsOfThread = nullptr;

Counts& ownCounts() noexcept {
  if (countsOfThread == nullptr) {
    countsOfThread = &counts[std::min(countingThreads.fetch_add(1), counts.size() - 1)];
  }
  return *countsOfThread;
}

// An addition that is locked takes longer than malloc, so an entry of one thread is changed by
// plain stores.
void add(const Counts& of, Count& count, std::uint64_t number) noexcept {
  if (&of == &counts.back()) {
    count.fetch_add(number, std::memory_order_relaxed);
  } else {
    count.store(count.load(std::memory_order_relaxed) + number, std::memory_order_relaxed);
  }
}

std::uint64_t sumOf(Count Counts::*count) noexcept {
  std::uint64_t sum = 0;
  for (const Counts& of : counts) sum += (of.*count).load(std::memory_order_relaxed);
  return sum;
}

// The calls since odrxAllocFail, as long as failures are due.
Count callsToFail{0};
Count failFirst{0};  // number of the first call that fails
Count failEnd{0};    // number of the first call that succeeds again; 0 if none fails
std::atomic<void (*)(void* block, std::uint64_t bytes)> watchFreed{nullptr};

// Depends only on the header's address, not on its content.
std::uint64_t sealFor(std::uintptr_t header) noexcept { return kSeal ^ header; }
std::uint64_t sealFor(BlockHeader* header) noexcept {
  return sealFor(reinterpret_cast<std::uintptr_t>(header));
}

// Counts a call. Returns true if odrxAllocFail makes it fail.
bool failsOnRequest(Counts& own) noexcept {
  add(own, own.calls, 1);
  if (failEnd.load() == 0) return false;
  const std::uint64_t number = callsToFail.fetch_add(1);
  return number >= failFirst.load() && number < failEnd.load();
}

void* makeBlock(Counts& own, std::size_t bytes) noexcept {
  if (bytes > SIZE_MAX - sizeof(BlockHeader)) return nullptr;
  auto* header = static_cast<BlockHeader*>(std::malloc(sizeof(BlockHeader) + bytes));
  if (header == nullptr) return nullptr;
  header->seal = sealFor(header);
  header->bytes = bytes;
  add(own, own.blocks, 1);
  add(own, own.bytes, bytes);
  return header + 1;
}

// Returns the header of a block. Ends the process if the block is not from odrxAlloc.
BlockHeader* headerOf(void* block) noexcept {
  BlockHeader* header = static_cast<BlockHeader*>(block) - 1;
  if (!odrxAllocMade(block)) {
    std::fprintf(stderr, "odrxFree: the block %p is not from odrxAlloc or was freed before\n",
                 block);
    std::abort();
  }
  return header;
}

}  // namespace

void* odrxAlloc(std::size_t bytes) noexcept {
  Counts& own = ownCounts();
  return failsOnRequest(own) ? nullptr : makeBlock(own, bytes);
}

void* odrxRealloc(void* block, std::size_t newBytes, std::size_t oldBytes) noexcept {
  Counts& own = ownCounts();
  if (failsOnRequest(own)) return nullptr;
  if (block == nullptr) return makeBlock(own, newBytes);
  const auto held = static_cast<std::size_t>(headerOf(block)->bytes);
  void* replacement = makeBlock(own, newBytes);
  if (replacement == nullptr) return nullptr;
  std::memcpy(replacement, block, std::min({newBytes, oldBytes, held}));
  odrxFree(block);
  return replacement;
}

void odrxFree(void* block) noexcept {
  if (block == nullptr) return;
  BlockHeader* header = headerOf(block);
  if (auto* const watch = watchFreed.load()) watch(block, header->bytes);
  header->seal = 0;
  Counts& own = ownCounts();
  add(own, own.blocks, UINT64_MAX);
  add(own, own.bytes, 0 - header->bytes);
  std::free(header);
}

// The memory before a block of another heap belongs to that heap, so sanitizers would report the
// read.
[[gnu::no_sanitize_address, gnu::no_sanitize_thread]] bool odrxAllocMade(
    const void* block) noexcept {
  const auto* header = static_cast<const BlockHeader*>(block) - 1;
  return header->seal == sealFor(reinterpret_cast<std::uintptr_t>(header));
}

OdrxAllocCounts odrxAllocCounts() noexcept {
  return {sumOf(&Counts::blocks), sumOf(&Counts::bytes), sumOf(&Counts::calls)};
}

void odrxAllocWatchFreed(void (*watch)(void* block, std::uint64_t bytes)) noexcept {
  watchFreed.store(watch);
}

void odrxAllocFail(std::uint64_t after, std::uint64_t count) noexcept {
  failEnd.store(0);
  if (count == 0) return;
  callsToFail.store(0);
  failFirst.store(after);
  failEnd.store(count > UINT64_MAX - after ? UINT64_MAX : after + count);
}
