// Runs a call with its n-th allocation failing, for every n. All tests of memory that runs out use
// this driver.
#pragma once

#include <cstdint>
#include <new>
#include <string>

namespace ulm::test {

// A heap whose allocations fail on request.
struct Heap {
  const char* name;
  std::uint64_t (*asked)();                                // requests so far, failed ones too
  std::uint64_t (*live)();                                 // blocks that have not been freed
  void (*fail)(std::uint64_t after, std::uint64_t count);  // as odrxAllocFail
};

// One run: which allocations of the heap fail, and whether the call met one of them.
class FailingMemory {
 public:
  FailingMemory(const Heap& heap, std::uint64_t after, std::uint64_t count)
      : heap_(heap), after_(after), count_(count) {}

  // Runs the attempt with the failures. It returns whether it has the whole result; std::bad_alloc
  // counts as no. Returns the same. With `spare` the whole result may come in spite of a failure.
  template <class Attempt>
  bool run(Attempt attempt, bool spare = false) {
    const std::uint64_t before = heap_.asked();
    heap_.fail(after_, count_);
    bool whole = false;
    try {
      whole = attempt();
    } catch (const std::bad_alloc&) {
    }
    heap_.fail(0, 0);
    const bool met = heap_.asked() - before > after_;
    consistent_ = consistent_ && (whole != met || (spare && whole));
    asked_ += heap_.asked() - before;
    return whole;
  }

  std::uint64_t asked() const { return asked_; }
  // Whether a refusal came with a failed allocation and only with one.
  bool consistent() const { return consistent_; }

 private:
  const Heap& heap_;
  std::uint64_t after_, count_, asked_ = 0;
  bool consistent_ = true;
};

struct MemorySweep {
  std::uint64_t allocations = 0;  // of the whole call
  std::string fault;              // of the first run with one; empty if there is none
};

// For n from 0 the n-th allocation fails, alone and with all after it, until the call needs no
// more. `call` takes a FailingMemory, prepares its operands, uses `run` once and returns whether
// what must be unchanged is unchanged. It frees what it has made: no run may leak. `thin` is for
// long tables of calls with many allocations: it leaves out some n, and fails the n-th one alone.
template <class Call>
MemorySweep failEachAllocation(const Heap& heap, Call call, bool thin = false) {
  MemorySweep sweep;
  for (std::uint64_t after = 0;; after += thin ? 1 + after / 4 : 1) {
    for (const std::uint64_t count : {std::uint64_t{1}, UINT64_MAX}) {
      if (thin && count != 1) continue;
      const std::uint64_t live = heap.live();
      FailingMemory memory(heap, after, count);
      const bool intact = call(memory);
      sweep.allocations = memory.asked();
      const char* const fault = !intact                ? "an operand or result is wrong"
                                : !memory.consistent() ? "the result does not fit the failure"
                                : heap.live() != live  ? "memory leaks"
                                                       : nullptr;
      if (fault != nullptr && sweep.fault.empty()) {
        sweep.fault = std::string(fault) + ", allocation " + std::to_string(after) +
                      (count == 1 ? "" : " and all after it") + " of the " + heap.name;
      }
      if (memory.asked() <= after) return sweep;
    }
  }
}

}  // namespace ulm::test
