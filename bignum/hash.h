// std::hash of QLInteger, for unordered containers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

#include "bignum/integer.h"

// Equal values have equal hashes. The hash is the same on every machine whose std::size_t has the
// same width, but it is no promise between versions.
template <>
struct std::hash<ulm::bignum::QLInteger> {
  std::size_t operator()(const ulm::bignum::QLInteger& value) const noexcept {
    std::uint64_t mixed = value.negative;  // the 64-bit FNV-1a step, a word at a time
    for (std::uint32_t i = 0; i < value.count; ++i) {
      mixed = (mixed ^ value.words[i]) * 0x100000001B3u;
    }
    return static_cast<std::size_t>(mixed ^ (mixed >> 32));
  }
};
