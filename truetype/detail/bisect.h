// The one bisection of the font library.
#pragma once

#include <compare>
#include <cstddef>

namespace ulm::truetype::detail {

// The items [low, low + size) of an array.
struct Bisected {
  std::size_t low, size;
};

// Bisects `range` with middle = (low + high) / 2 until at most `maximum` items are left, or until
// an item equals the key: then that item alone is left. order(index) compares an item with the key.
// With sorted items and none left, `low` is the index of the first item above the key. Items that
// are not sorted are bisected in the same way.
template <class Order>
constexpr Bisected bisect(Bisected range, std::size_t maximum, Order order) noexcept {
  while (range.size > maximum) {
    const std::size_t half = (range.size - 1) / 2;
    const auto compared = order(range.low + half);
    if (compared == 0) return {range.low + half, 1};
    if (compared < 0) {
      range.low += half + 1;
      range.size -= half + 1;
    } else {
      range.size = half;
    }
  }
  return range;
}

}  // namespace ulm::truetype::detail
