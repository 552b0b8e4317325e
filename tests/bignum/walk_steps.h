// The public operations of the big integers as named steps on eight values, so that one list serves
// the walk and the comparison of kernels.
#pragma once

#include <cstdint>
#include <map>
#include <new>
#include <string>
#include <vector>

#include "bignum/integer.h"

namespace ulm::bignum::test {

// The values, and the arguments of a step as registers, small numbers and sizes.
struct Walk {
  QLInteger registers[8];
  std::vector<long long> args;
  std::string text, result;

  QLInteger& reg(std::size_t i) { return registers[static_cast<std::size_t>(args[i])]; }
  std::int32_t small(std::size_t i) const { return static_cast<std::int32_t>(args[i]); }
  std::uint32_t size(std::size_t i) const { return static_cast<std::uint32_t>(args[i]); }
  void hold(QLInteger made) { reg(0).Swap(made); }
  void give(std::int64_t number) { result = std::to_string(number); }
  Word* words(std::size_t i) { return reg(i).words; }

  void run(void (*step)(Walk& w)) try {
    result.clear();
    step(*this);
  } catch (const std::bad_alloc&) {
    result = "bad_alloc";
  }
};

using Step = void (*)(Walk& w);
// All steps by their names.
const std::map<std::string, Step>& walkSteps();

// Whether the step is one whose results have a capacity that is left open.
bool leavesCapacityOpen(const std::string& step);

}  // namespace ulm::bignum::test
