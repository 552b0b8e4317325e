// The same step by two kernels, on the same values.
#pragma once

#include <string>
#include <utility>

#include "tests/bignum/kernel_reference.h"
#include "tests/bignum/operands.h"
#include "tests/bignum/walk_steps.h"

namespace ulm::bignum::test {

class TwinWalk {
 public:
  // Sets a value, its storage with old digits above the words in use.
  void set(std::size_t index, const QLInteger& value) {
    for (Walk* walk : {&own_, &reference_}) {
      QLInteger fresh(value);
      std::fill(fresh.words + fresh.count, fresh.words + fresh.capacity, 0xDEADBEEFu);
      walk->registers[index].Swap(fresh);
    }
  }
  const QLInteger& get(std::size_t index) const { return reference_.registers[index]; }

  // Does a step by both. Returns what differs: nothing, where all is well.
  std::string run(const std::string& name, std::vector<long long> args,
                  const std::string& text = "") {
    own_.args = reference_.args = std::move(args);
    own_.text = reference_.text = text;
    own_.run(walkSteps().at(name));
    reference_.run(referenceSteps().at(name));
    std::string faults;
    if (own_.result != reference_.result) {
      faults += own_.result + " for " + reference_.result + '\n';
    }
    const bool open = leavesCapacityOpen(name);
    for (std::size_t i = 0; i < 8; ++i) {
      QLInteger& own = own_.registers[i];
      QLInteger& other = reference_.registers[i];
      const std::string state = stateOf(own);
      if (open && (isNormal(own) || own.count == 0) && own == other) {
        set(i, QLInteger(other));
      } else if (state != stateOf(other)) {
        faults += "value " + std::to_string(i) + ": " + state + " for " + stateOf(other) + '\n';
        set(i, QLInteger(other));
      }
    }
    return faults.empty() ? faults : name + '\n' + faults;
  }

 private:
  Walk own_, reference_;
};

}  // namespace ulm::bignum::test
