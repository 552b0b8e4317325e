// Operands and states of values for the tests of the big integers.
#pragma once

#include <cstdint>
#include <iomanip>
#include <sstream>
#include <string>

#include "bignum/integer.h"

namespace ulm::bignum::test {

// A value of `count` words of one of six patterns; make_walk.py computes the same.
inline QLInteger patterned(std::uint32_t count, int kind, std::uint64_t seed, bool negative) {
  QLInteger made(count, 0);
  std::uint64_t mixed = seed;
  for (std::uint32_t i = 0; i < count; ++i) {
    mixed = mixed * 6364136223846793005u + 1442695040888963407u;
    const auto word = static_cast<Word>(mixed >> 32);
    const bool top = i + 1 == count;
    const Word words[] = {word,
                          0xFFFFFFFF,
                          2 * i >= count ? word : 0,
                          top ? Word{1} << seed % 32 : 0,
                          (word & 0x100) != 0 ? 0xFFFFFFFF : 0,
                          top ? 0x80000000 : word % 3};
    made.words[i] = words[kind];
  }
  if (made.words[count - 1] == 0) made.words[count - 1] = 1;
  if (negative) made.MakeNegative();
  return made;
}

// "count capacity sign hex"; for a long magnitude the FNV-1a step over its words instead of hex. A
// state that breaks a rule of the storage is a text that no row expects.
inline std::string stateOf(const QLInteger& value) {
  std::ostringstream state;
  state << value.count << ' ' << value.capacity << ' ' << (value.negative != 0 ? '-' : '+');
  if (value.count == 0 && value.words != nullptr) state << "words";
  if (value.count > value.capacity) return "count above capacity";
  state << std::hex << std::uppercase << std::setfill('0');
  std::uint64_t mixed = 0;
  for (std::uint32_t i = 0; i < value.count; ++i) {
    mixed = (mixed ^ value.words[i]) * 0x100000001B3u;
  }
  if (value.count > 8) state << '#' << std::setw(16) << mixed;
  for (std::uint32_t i = value.count; i-- > 0 && value.count <= 8;) {
    state << std::setw(i + 1 == value.count ? 1 : 8) << value.words[i];
  }
  return state.str();
}

// The rules that hold for every number in normal form.
inline bool isNormal(const QLInteger& value) {
  return value.count >= 1 && value.count <= value.capacity && value.capacity % 32 == 0 &&
         (value.count == 1 || value.words[value.count - 1] != 0) &&
         (value.IsNonZero() || value.negative == 0) && value.negative <= 1;
}

}  // namespace ulm::bignum::test
