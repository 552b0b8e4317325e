// The one way by which font bytes are read: a run of bytes that knows its end.
#pragma once

#include <bit>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <type_traits>

#include "truetype/bytes.h"
#include "truetype/detail/swap_run.h"
#include "truetype/font.h"

namespace ulm::truetype::detail {

// A borrowed run of bytes. There is no way in but an offset, which is tested against the end
// without forming a sum, so that no value from a font can wrap the test.
class ByteView {
 public:
  constexpr ByteView() noexcept = default;
  constexpr ByteView(const std::uint8_t* start, std::size_t size) noexcept
      : start_(start), size_(size) {}

  constexpr std::size_t size() const noexcept { return size_; }
  // For records that keep a place in the image; nothing is read through it here.
  constexpr const std::uint8_t* start() const noexcept { return start_; }

  constexpr bool holds(std::size_t offset, std::size_t length) const noexcept {
    return offset <= size_ && length <= size_ - offset;
  }
  constexpr std::optional<ByteView> sub(std::size_t offset, std::size_t length) const noexcept {
    if (!holds(offset, length)) return std::nullopt;
    return ByteView(start_ + offset, length);
  }
  // All from `offset` on; a view without bytes where that lies outside.
  constexpr ByteView from(std::size_t offset) const noexcept {
    return offset <= size_ ? ByteView(start_ + offset, size_ - offset) : ByteView();
  }

  // The big-endian value at `offset`: nothing, or 0, where one of its bytes lies outside.
  template <class T>
  constexpr std::optional<T> read(std::size_t offset) const noexcept {
    if (!holds(offset, sizeof(T))) return std::nullopt;
    return load<T>(offset);
  }
  template <class T>
  constexpr T readOrZero(std::size_t offset) const noexcept {
    return holds(offset, sizeof(T)) ? load<T>(offset) : T{0};
  }
  // The same of bytes that the caller has tested, with holds.
  template <class T>
  constexpr T readHeld(std::size_t offset) const noexcept {
    assert(holds(offset, sizeof(T)));
    return load<T>(offset);
  }

  // The run of `count` big-endian numbers from the first byte on, of 32 bits, or of 16 bits and
  // each doubled. All are tested at once. False, with nothing stored, where they are not all there.
  bool readRun32(std::size_t count, std::uint32_t* out) const noexcept {
    if (count > size_ / 4) return false;
    storeRun32(start_, count, out);
    return true;
  }
  bool readDoubledRun16(std::size_t count, std::uint32_t* out) const noexcept {
    if (count > size_ / 2) return false;
    storeDoubledRun16(start_, count, out);
    return true;
  }

  // Copies `length` bytes, or nothing and gives false where they are not all there.
  bool copy(std::size_t offset, std::size_t length, void* out) const noexcept {
    if (!holds(offset, length)) return false;
    if (length != 0) std::memcpy(out, start_ + offset, length);
    return true;
  }

 private:
  template <class T>
  constexpr T load(std::size_t offset) const noexcept {
    static_assert(std::is_integral_v<T> && std::has_single_bit(sizeof(T)) && sizeof(T) <= 8);
    if constexpr (sizeof(T) == 1) {
      return static_cast<T>(start_[offset]);
    } else if constexpr (sizeof(T) == 2) {
      return static_cast<T>(readUInt16(start_, offset));
    } else if constexpr (sizeof(T) == 4) {
      return static_cast<T>(readUInt32(start_, offset));
    } else {
      return static_cast<T>(std::uint64_t{readUInt32(start_, offset)} << 32 |
                            readUInt32(start_, offset + 4));
    }
  }

  const std::uint8_t* start_ = nullptr;
  std::size_t size_ = 0;
};

inline ByteView imageView(const TrueTypeFont& font) noexcept {
  return {font.image, static_cast<std::size_t>(font.imageSize)};
}

// From the start of the table to the end of the image: stored lengths bound no lookup. Empty for a
// table that the font lacks.
inline ByteView tableView(const TrueTypeFont& font, TableSlot slot) noexcept {
  const std::uint8_t* table = font.tables[slot];
  if (table == nullptr) return {};
  return imageView(font).from(static_cast<std::size_t>(table - font.image));
}

// The bytes of a glyph, up to the end of glyf; empty for a glyph without data, and for one that
// starts outside glyf. `glyphIndex` is below numGlyphs.
inline ByteView glyphView(const TrueTypeFont& font, std::uint32_t glyphIndex) noexcept {
  const std::uint32_t start = font.glyphOffsets[glyphIndex];
  if (font.glyphOffsets[glyphIndex + 1] == start) return {};
  return ByteView(font.tables[kSlotGlyf], font.tableLengths[kSlotGlyf]).from(start);
}

}  // namespace ulm::truetype::detail
