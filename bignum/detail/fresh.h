// Values whose words a kernel is about to write.
#pragma once

#include <algorithm>
#include <cstdint>

#include "bignum/detail/storage.h"
#include "bignum/integer.h"

namespace ulm::bignum::detail {

// The words that a request for n words allocates: the next multiple of 32. Throws std::bad_alloc.
inline std::uint32_t capacityFor(std::uint64_t n) {
  constexpr std::uint32_t kStorageStep = 32;
  static_assert(kMaxWords % kStorageStep == 0, "rounding up must not pass the limit");
  return RoundUpTo(checkedCount(n), kStorageStep);
}

// A value of n words in fresh storage, not negative. The caller writes all n words, which have no
// value yet; those above are zero.
inline QLInteger freshValue(std::uint32_t n) {
  QLInteger made(kEmptyHolder);
  const std::uint32_t capacity = capacityFor(n);
  made.words = allocateUnfilled(capacity);
  std::fill(made.words + n, made.words + capacity, Word{0});
  made.capacity = capacity;
  made.count = n;
  return made;
}

}  // namespace ulm::bignum::detail
