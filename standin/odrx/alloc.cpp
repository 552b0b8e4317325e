#include "hostsdk/odrx/alloc.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "standin/odrx/alloc_control.h"

namespace {

// Stands before each block. Its size keeps the block aligned as malloc aligned the whole.
struct alignas(16) BlockHeader {
  std::uint64_t seal;  // kSeal mixed with the header's own address while the block is out
  std::uint64_t bytes;
};
constexpr std::uint64_t kSeal = 0x51A70DB10CC5EA1Eu;

std::atomic<std::uint64_t> liveBlocks{0};
std::atomic<std::uint64_t> liveBytes{0};
std::atomic<std::uint64_t> calls{0};
std::atomic<std::uint64_t> failFirst{0};  // number of the first call that fails
std::atomic<std::uint64_t> failEnd{0};    // number of the first call that is served again
std::atomic<void (*)(void* block, std::uint64_t bytes)> watchFreed{nullptr};

// By a header's address alone: what it holds does not matter.
std::uint64_t sealFor(std::uintptr_t header) noexcept { return kSeal ^ header; }
std::uint64_t sealFor(BlockHeader* header) noexcept {
  return sealFor(reinterpret_cast<std::uintptr_t>(header));
}

bool refusedOnRequest() noexcept {
  const std::uint64_t number = calls.fetch_add(1);
  return number >= failFirst.load() && number < failEnd.load();
}

void* makeBlock(std::size_t bytes) noexcept {
  if (bytes > SIZE_MAX - sizeof(BlockHeader)) return nullptr;
  auto* header = static_cast<BlockHeader*>(std::malloc(sizeof(BlockHeader) + bytes));
  if (header == nullptr) return nullptr;
  header->seal = sealFor(header);
  header->bytes = bytes;
  liveBlocks.fetch_add(1);
  liveBytes.fetch_add(bytes);
  return header + 1;
}

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
  return refusedOnRequest() ? nullptr : makeBlock(bytes);
}

void* odrxRealloc(void* block, std::size_t newBytes, std::size_t oldBytes) noexcept {
  if (refusedOnRequest()) return nullptr;
  if (block == nullptr) return makeBlock(newBytes);
  const auto held = static_cast<std::size_t>(headerOf(block)->bytes);
  void* made = makeBlock(newBytes);
  if (made == nullptr) return nullptr;
  std::memcpy(made, block, std::min({newBytes, oldBytes, held}));
  odrxFree(block);
  return made;
}

void odrxFree(void* block) noexcept {
  if (block == nullptr) return;
  BlockHeader* header = headerOf(block);
  if (auto* const watch = watchFreed.load()) watch(block, header->bytes);
  header->seal = 0;
  liveBlocks.fetch_sub(1);
  liveBytes.fetch_sub(header->bytes);
  std::free(header);
}

// What stands before a block of another heap is that heap's own, which sanitizers watch.
[[gnu::no_sanitize_address, gnu::no_sanitize_thread]] bool odrxAllocMade(
    const void* block) noexcept {
  const auto* header = static_cast<const BlockHeader*>(block) - 1;
  return header->seal == sealFor(reinterpret_cast<std::uintptr_t>(header));
}

OdrxAllocCounts odrxAllocCounts() noexcept {
  return {liveBlocks.load(), liveBytes.load(), calls.load()};
}

void odrxAllocWatchFreed(void (*watch)(void* block, std::uint64_t bytes)) noexcept {
  watchFreed.store(watch);
}

void odrxAllocFail(std::uint64_t after, std::uint64_t count) noexcept {
  const std::uint64_t first = calls.load() + after;
  failEnd.store(0);
  failFirst.store(first);
  failEnd.store(count > UINT64_MAX - first ? UINT64_MAX : first + count);
}
