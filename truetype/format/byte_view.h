// The one way by which font bytes are read: views that know their end.
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>

#include "truetype/format/big_endian.h"
#include "truetype/format/field.h"

namespace ulm::truetype::format {

// A borrowed run of bytes. There is no way in but an offset, which is tested against the end
// without forming a sum, so that no value from a font can wrap the test.
class ByteView {
 public:
  constexpr ByteView() noexcept = default;
  constexpr ByteView(const std::uint8_t* start, std::size_t size) noexcept
      : start_(start), size_(size) {}

  constexpr std::size_t size() const noexcept { return size_; }
  // The first byte, for records that keep an address in the image; null for a view without bytes
  // that was made of nothing.
  constexpr const std::uint8_t* start() const noexcept { return start_; }

  constexpr bool holds(std::size_t offset, std::size_t length) const noexcept {
    return offset <= size_ && length <= size_ - offset;
  }
  // The bytes [offset, offset + length); nothing where one of them is outside.
  constexpr std::optional<ByteView> sub(std::size_t offset, std::size_t length) const noexcept {
    if (!holds(offset, length)) return std::nullopt;
    return ByteView(start_ + offset, length);
  }
  // All from `offset` on; a view without bytes where that is outside.
  constexpr ByteView from(std::size_t offset) const noexcept {
    return offset <= size_ ? ByteView(start_ + offset, size_ - offset) : ByteView();
  }

  // The big-endian number at `offset`: nothing, or 0, where one of its bytes is outside.
  template <Number T>
  constexpr std::optional<T> read(std::size_t offset) const noexcept {
    if (!holds(offset, sizeof(T))) return std::nullopt;
    return loadBigEndian<T>(start_ + offset);
  }
  template <Number T>
  constexpr T readOrZero(std::size_t offset) const noexcept {
    if (!holds(offset, sizeof(T))) return T{0};
    return loadBigEndian<T>(start_ + offset);
  }
  // The number at an offset that the caller has tested with `holds`.
  template <Number T>
  constexpr T readHeld(std::size_t offset) const noexcept {
    assert(holds(offset, sizeof(T)));
    return loadBigEndian<T>(start_ + offset);
  }

  // Copies `length` bytes. False, with nothing copied, where one of them is outside.
  bool copy(std::size_t offset, std::size_t length, void* out) const noexcept {
    if (!holds(offset, length)) return false;
    if (length != 0) std::memcpy(out, start_ + offset, length);
    return true;
  }

 private:
  const std::uint8_t* start_ = nullptr;
  std::size_t size_ = 0;
};

// The first Size bytes of a record, which are known to be there. `get` does not compile with a
// field of another record, or one that ends outside Size.
template <class Record, std::size_t Size = Record::kSize>
class FixedView {
 public:
  // Nothing where `bytes` has fewer than Size.
  static constexpr std::optional<FixedView> from(ByteView bytes) noexcept {
    if (bytes.size() < Size) return std::nullopt;
    return FixedView(bytes.start());
  }
  // For operations that take a bare pointer: the caller vouches for Size bytes.
  static constexpr FixedView vouched(const std::uint8_t* start) noexcept {
    return FixedView(start);
  }

  template <Number T, std::size_t Offset>
  requires(Offset + sizeof(T) <= Size) constexpr T get(Field<Record, T, Offset>) const noexcept {
    return loadBigEndian<T>(start_ + Offset);
  }

 private:
  constexpr explicit FixedView(const std::uint8_t* start) noexcept : start_(start) {}

  const std::uint8_t* start_;
};

// Bytes that begin with a record and may end anywhere, in the midst of it too. Each read is tested.
template <class Record>
class RecordView {
 public:
  constexpr RecordView() noexcept = default;
  constexpr explicit RecordView(ByteView bytes) noexcept : bytes_(bytes) {}

  constexpr ByteView bytes() const noexcept { return bytes_; }

  // The field's number: nothing, or 0, where the bytes end before the field does.
  template <Number T, std::size_t Offset>
  constexpr std::optional<T> read(Field<Record, T, Offset>) const noexcept {
    return bytes_.read<T>(Offset);
  }
  template <Number T, std::size_t Offset>
  constexpr T readOrZero(Field<Record, T, Offset>) const noexcept {
    return bytes_.readOrZero<T>(Offset);
  }
  // A view of these fields, all of which are there; nothing where one of them is not.
  template <class... Fields>
  constexpr std::optional<FixedView<Record, kEndOf<Fields...>>> holding(Fields...) const noexcept {
    return FixedView<Record, kEndOf<Fields...>>::from(bytes_);
  }

  // Whether the first `count` elements are there. `count` has 32 bits at most.
  template <class Element, std::size_t Offset>
  constexpr bool holds(Array<Record, Element, Offset> array, std::size_t count) const noexcept {
    return bytes_.holds(Offset, array.bytes(count));
  }
  // An element that is a number: nothing, or 0, where the bytes end before it does.
  template <Number T, std::size_t Offset>
  constexpr std::optional<T> read(Array<Record, T, Offset> array,
                                  std::size_t index) const noexcept {
    return bytes_.read<T>(array.at(index));
  }
  template <Number T, std::size_t Offset>
  constexpr T readOrZero(Array<Record, T, Offset> array, std::size_t index) const noexcept {
    return bytes_.readOrZero<T>(array.at(index));
  }
  // An element that is a record, with what follows it; without bytes where it begins outside.
  template <class Element, std::size_t Offset>
  constexpr RecordView<Element> at(Array<Record, Element, Offset> array,
                                   std::size_t index) const noexcept {
    return RecordView<Element>(bytes_.from(array.at(index)));
  }
  // Whether element `index` is there.
  template <class Element, std::size_t Offset>
  constexpr bool holdsElement(Array<Record, Element, Offset> array,
                              std::size_t index) const noexcept {
    return bytes_.holds(array.at(index), kElementSize<Element>);
  }
  // An element that the caller has tested with `holds` or `holdsElement`.
  template <class Element, std::size_t Offset>
  constexpr FixedView<Element> held(Array<Record, Element, Offset> array,
                                    std::size_t index) const noexcept {
    assert(bytes_.holds(array.at(index), kElementSize<Element>));
    return FixedView<Element>::vouched(bytes_.start() + array.at(index));
  }

 private:
  ByteView bytes_;
};

}  // namespace ulm::truetype::format
