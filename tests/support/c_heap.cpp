#include "tests/support/c_heap.h"

#include <malloc.h>

#include <algorithm>
#include <cstddef>

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void __real_free(void* block);
// Some linkers bind the calls of a sanitizer's library to these too, which takes visible names.
[[gnu::visibility("default")]] void* __wrap_malloc(std::size_t size);
[[gnu::visibility("default")]] void* __wrap_calloc(std::size_t count, std::size_t size);
[[gnu::visibility("default")]] void __wrap_free(void* block);
}

namespace {

std::uint64_t failFirst = 0, failEnd = 0;  // the numbers of the requests that fail

bool fails(std::size_t bytes) {
  ulm::test::cHeap.bytesAsked += bytes;
  const std::uint64_t number = ulm::test::cHeap.asked++;
  return number >= failFirst && number < failEnd;
}

std::int64_t bytesOf(void* block) {
#ifdef _WIN32
  return static_cast<std::int64_t>(_msize(block));
#else
  return static_cast<std::int64_t>(malloc_usable_size(block));
#endif
}

void* held(void* block) {
  if (block == nullptr) return nullptr;
  auto& counts = ulm::test::cHeap;
  ++counts.live;
  counts.bytesHeld += bytesOf(block);
  counts.mostBytesHeld = std::max(counts.mostBytesHeld, counts.bytesHeld);
  return block;
}

}  // namespace

namespace ulm::test {

CHeapCounts cHeap;
const Heap kCHeap = {"C library's heap", [] { return cHeap.asked; }, [] { return cHeap.live; },
                     [](std::uint64_t after, std::uint64_t count) {
                       failFirst = cHeap.asked + after;
                       failEnd = count > UINT64_MAX - failFirst ? UINT64_MAX : failFirst + count;
                     }};

}  // namespace ulm::test

void* __wrap_malloc(std::size_t size) { return fails(size) ? nullptr : held(__real_malloc(size)); }
void* __wrap_calloc(std::size_t count, std::size_t size) {
  return fails(count * size) ? nullptr : held(__real_calloc(count, size));
}
void __wrap_free(void* block) {
  if (block != nullptr) {
    --ulm::test::cHeap.live;
    ulm::test::cHeap.bytesHeld -= bytesOf(block);
  }
  __real_free(block);
}
