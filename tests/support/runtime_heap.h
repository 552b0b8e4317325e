// The heap of the object runtime, for the driver of failing_memory.h.
#pragma once

#include "standin/odrx/alloc_control.h"
#include "tests/support/failing_memory.h"

namespace ulm::test {

inline const Heap kRuntimeHeap = {
    "runtime's heap", [] { return odrxAllocCounts().calls; },
    [] { return odrxAllocCounts().liveBlocks; },
    [](std::uint64_t after, std::uint64_t count) { odrxAllocFail(after, count); }};

}  // namespace ulm::test
