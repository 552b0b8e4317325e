// The searches of the format as they are told, and arrays in any order to hold ours to them.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace ulm::test {

// The index at which both bounds of a bisection move, or -1.
inline int bisectedIndex(const std::vector<int>& numbers, int key) {
  int low = 0, high = static_cast<int>(numbers.size()) - 1;
  while (low <= high) {
    const int middle = (low + high) / 2, stored = numbers[static_cast<std::size_t>(middle)];
    if (key >= stored) low = middle + 1;
    if (key <= stored) high = middle - 1;
  }
  return low - high == 2 ? low - 1 : -1;
}

inline int bisectedNotBelow(const std::vector<int>& numbers, int key) {
  int low = 0, high = static_cast<int>(numbers.size()) - 1, found = 0xFFFF;
  while (low <= high) {
    const int middle = (low + high) / 2;
    if (numbers[static_cast<std::size_t>(middle)] < key) {
      low = middle + 1;
    } else {
      found = middle;
      high = middle - 1;
    }
  }
  return found;
}

// `make` turns an array into the search under test; every other array is sorted.
template <class Model, class Make>
void compareOnAnyOrder(Model model, Make make) {
  std::mt19937 random(5);
  for (std::size_t count = 0; count < 70; ++count) {
    std::vector<int> numbers(count);
    for (int& number : numbers) number = static_cast<int>(random() % 64);
    if (count % 2 == 0) std::sort(numbers.begin(), numbers.end());
    const auto find = make(numbers);
    for (int key = 0; key < 66; ++key) ASSERT_EQ(find(key), model(numbers, key)) << count;
  }
}

}  // namespace ulm::test
