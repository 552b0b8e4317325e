// Owned memory of the kind that callers give back with free.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <type_traits>

namespace ulm::truetype::detail {

struct CFree {
  void operator()(void* block) const noexcept { std::free(block); }
};
template <class T>
using CBuffer = std::unique_ptr<T[], CFree>;

// `count` elements, uninitialised or zero; null where there is no memory. Never null for a count of
// 0: an empty array is not the same as none.
template <class T>
CBuffer<T> makeBuffer(std::size_t count) noexcept {
  static_assert(std::is_trivial_v<T>);
  if (count > PTRDIFF_MAX / sizeof(T)) return nullptr;
  return CBuffer<T>(static_cast<T*>(std::malloc(count == 0 ? 1 : count * sizeof(T))));
}
template <class T>
CBuffer<T> makeZeroedBuffer(std::size_t count) noexcept {
  static_assert(std::is_trivial_v<T>);
  return CBuffer<T>(static_cast<T*>(std::calloc(count == 0 ? 1 : count, sizeof(T))));
}

// Puts a larger copy in the place of an array from malloc: its first `used` elements, and the rest
// up to `capacity` uninitialised. False without memory, the array being as it was.
template <class T>
bool enlarge(T*& array, std::size_t used, std::size_t capacity) noexcept {
  CBuffer<T> larger = makeBuffer<T>(capacity);
  if (larger == nullptr) return false;
  if (used != 0) std::memcpy(larger.get(), array, used * sizeof(T));
  std::free(array);
  array = larger.release();
  return true;
}

}  // namespace ulm::truetype::detail
