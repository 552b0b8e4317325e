// Chosen allocations of the library fail. The test program routes them here.
#pragma once

#include <cstddef>

namespace ulm::test {

inline long allocationsMade = 0;
inline long failingAllocation = -1;  // the number of the allocation that fails

inline std::size_t bytesAllocated = 0;  // all requests together

inline bool allocationFails(std::size_t bytes) {
  bytesAllocated += bytes;
  return allocationsMade++ == failingAllocation;
}

// Runs `operation` with each of its allocations failing in turn; the leak checker sees
// the rest.
template <class Operation>
long withEachFailing(Operation operation) {
  for (long number = 0;; ++number) {
    allocationsMade = 0;
    failingAllocation = number;
    operation();
    failingAllocation = -1;
    if (allocationsMade <= number) return number;  // it needed no more than these
  }
}

}  // namespace ulm::test
