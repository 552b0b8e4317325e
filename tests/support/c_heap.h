// The heap of the C library as the objects of a program use it that is linked with
// --wrap=malloc,--wrap=calloc,--wrap=free and with c_heap.cpp.
#pragma once

#include <cstdint>

#include "tests/support/failing_memory.h"

namespace ulm::test {

struct CHeapCounts {
  std::uint64_t asked = 0;  // requests, failed ones too
  std::uint64_t live = 0;   // blocks that have not been freed
  std::uint64_t bytesAsked = 0;
  std::int64_t bytesHeld = 0;  // of the blocks, as the heap made them
  std::int64_t mostBytesHeld = 0;
};
extern CHeapCounts cHeap;
extern const Heap kCHeap;

}  // namespace ulm::test
