// Tables of public operations, each run with every of its allocations failing.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "tests/support/failing_memory.h"

namespace ulm::test {

struct MemoryRow {
  const char* name;
  // As the `call` of failEachAllocation.
  std::function<bool(FailingMemory& memory)> call;
  // Of the whole call; 0 for any number above 0.
  std::uint64_t allocations = 0;
};

inline void failEachOf(const Heap& heap, const std::vector<MemoryRow>& rows) {
  for (const MemoryRow& row : rows) {
    const MemorySweep sweep = failEachAllocation(heap, row.call);
    EXPECT_EQ(sweep.fault, "") << row.name;
    EXPECT_TRUE(row.allocations == 0 ? sweep.allocations > 0 : sweep.allocations == row.allocations)
        << row.name << ": " << sweep.allocations << " allocations";
  }
}

}  // namespace ulm::test
