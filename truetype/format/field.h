// How the tables of a font file are described. A record (a table's header, an entry of an array) is
// a class without members of its own: its fields are constants whose type carries the offset and
// the number's type. FixedView, RecordView and their sinks take fields, so that no source that
// reads or writes fonts spells an offset.
//
//   struct Head {
//     static constexpr std::uint32_t kTag = tag("head");
//     static constexpr Field<Head, std::uint16_t, 18> kUnitsPerEm{};
//   };
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "truetype/format/big_endian.h"

namespace ulm::truetype::format {

// Four characters as one big-endian number: tag("head"), tag("cvt ").
consteval std::uint32_t tag(const char (&text)[5]) {
  std::uint32_t number = 0;
  for (int i = 0; i < 4; ++i) number = number << 8 | static_cast<std::uint8_t>(text[i]);
  return number;
}

// A number `Offset` bytes from the start of a `Record`. A view of another record does not take it.
template <class Record, Number T, std::size_t Offset>
struct Field {
  using Value = T;
  static constexpr std::size_t kOffset = Offset;
  static constexpr std::size_t kEnd = Offset + sizeof(T);
};

// The bytes of an array's element: a number, or a record, which has a kSize.
template <class Element>
inline constexpr std::size_t kElementSize = Element::kSize;
template <Number Element>
inline constexpr std::size_t kElementSize<Element> = sizeof(Element);

// Elements without gaps, `Offset` bytes from the start of a `Record`. Their count is not part of
// the description.
template <class Record, class Element, std::size_t Offset>
struct Array {
  static constexpr std::size_t kOffset = Offset;
  // The offset of an element; at(count) is the end of the array. `index` has 32 bits at most.
  static constexpr std::size_t at(std::size_t index) noexcept {
    return Offset + index * kElementSize<Element>;
  }
  // The bytes of `count` elements.
  static constexpr std::size_t bytes(std::size_t count) noexcept {
    return count * kElementSize<Element>;
  }
};

// The end of the last of some fields: what a view has to hold so that all can be read.
template <class... Fields>
inline constexpr std::size_t kEndOf = std::max({Fields::kEnd...});

}  // namespace ulm::truetype::format
