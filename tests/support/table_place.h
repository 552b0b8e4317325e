// The index of a virtual operation in its class's table.
#pragma once

#include <cstddef>
#include <cstring>

namespace ulm::test {

// The index starts at 0, and a virtual destructor has two entries. In the common C++ ABI a pointer
// to a virtual member is the offset of its entry in bytes, plus one except on ARM: offsets are
// even.
template <class Member>
std::size_t tablePlace(Member member) {
  std::size_t offset;
  std::memcpy(&offset, &member, sizeof offset);
  return offset / sizeof(void*);
}

// Returns true if the operations have consecutive entries from `index` on.
template <class... Members>
bool inTableOrder(std::size_t index, Members... members) {
  return ((tablePlace(members) == index++) && ...);
}

}  // namespace ulm::test
