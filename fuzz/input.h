// What the fuzz targets share: the reader of an input's bytes, and the end of a run whose property
// does not hold.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>

namespace ulm::fuzz {

using Bytes = std::span<const std::uint8_t>;

inline void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  std::abort();
}

// Takes numbers and runs of bytes from the front of an input. After its end the bytes are zeros,
// and the runs are empty.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : rest_(data, size) {}

  bool isEmpty() const { return rest_.empty(); }
  // Up to `length` bytes.
  Bytes take(std::size_t length) {
    const Bytes taken = rest_.first(std::min(length, rest_.size()));
    rest_ = rest_.subspan(taken.size());
    return taken;
  }
  Bytes takeRest() { return take(rest_.size()); }
  // The part of the rest that the next byte selects, from nothing to all of it.
  Bytes takePart() {
    const std::size_t share = u8();
    return take(rest_.size() * share / 255);
  }
  std::string text(Bytes bytes) { return {bytes.begin(), bytes.end()}; }

  // A number with its low byte first, or the bits of a floating-point number.
  template <class Number>
  Number number() {
    Number value{};
    const Bytes bytes = take(sizeof value);
    if (!bytes.empty()) std::memcpy(&value, bytes.data(), bytes.size());
    return value;
  }
  std::uint8_t u8() { return number<std::uint8_t>(); }
  std::uint16_t u16() { return number<std::uint16_t>(); }
  std::uint32_t u32() { return number<std::uint32_t>(); }

 private:
  Bytes rest_;
};

}  // namespace ulm::fuzz
