// The one way by which font bytes are written: the mirror of the views in byte_view.h.
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "truetype/format/big_endian.h"
#include "truetype/format/byte_view.h"
#include "truetype/format/field.h"

namespace ulm::truetype::format {

// The first Size bytes of a record to be filled. `put` does not compile with a field of another
// record, or one that ends outside Size. A sink without bytes, which ByteSink makes where there is
// no room, writes nothing.
template <class Record, std::size_t Size = Record::kSize>
class FixedSink {
 public:
  constexpr FixedSink() noexcept = default;
  // The caller vouches for Size bytes.
  static constexpr FixedSink vouched(std::uint8_t* start) noexcept { return FixedSink(start); }

  template <Number T, std::size_t Offset>
  requires(Offset + sizeof(T) <=
           Size) constexpr void put(Field<Record, T, Offset>,
                                    std::type_identity_t<T> value) const noexcept {
    if (start_ != nullptr) storeBigEndian<T>(start_ + Offset, value);
  }

 private:
  constexpr explicit FixedSink(std::uint8_t* start) noexcept : start_(start) {}

  std::uint8_t* start_ = nullptr;
};

// Numbers one after the other. Each index is tested.
template <Number T>
class ArraySink {
 public:
  constexpr void put(std::size_t index, T value) const noexcept {
    if (index < count_) {
      storeBigEndian<T>(start_ + index * sizeof(T), value);
    } else {
      *overflowed_ = true;
    }
  }

 private:
  friend class ByteSink;
  constexpr ArraySink(std::uint8_t* start, std::size_t count, bool* overflowed) noexcept
      : start_(start), count_(count), overflowed_(overflowed) {}

  std::uint8_t* start_;
  std::size_t count_;
  bool* overflowed_;
};

// A run of bytes to be filled. Nothing is written outside it: a write that does not fit writes
// nothing and sets the flag that all sinks cut from one share. Its maker asks the flag once, at the
// end.
class ByteSink {
 public:
  // `overflowed` outlives the sink and everything cut from it; it is set, never cleared.
  constexpr ByteSink(std::uint8_t* start, std::size_t size, bool* overflowed) noexcept
      : start_(start), size_(size), overflowed_(overflowed) {}

  constexpr std::size_t size() const noexcept { return size_; }
  constexpr ByteView view() const noexcept { return {start_, size_}; }

  template <Number T>
  constexpr void put(std::size_t offset, std::type_identity_t<T> value) const noexcept {
    if (fits(offset, sizeof(T))) storeBigEndian<T>(start_ + offset, value);
  }
  void copy(std::size_t offset, ByteView bytes) const noexcept {
    if (fits(offset, bytes.size()) && bytes.size() != 0) {
      std::memcpy(start_ + offset, bytes.start(), bytes.size());
    }
  }
  void clear(std::size_t offset, std::size_t length) const noexcept {
    if (fits(offset, length) && length != 0) std::memset(start_ + offset, 0, length);
  }

  // The bytes [offset, offset + length); without bytes where one of them is outside.
  constexpr ByteSink sub(std::size_t offset, std::size_t length) const noexcept {
    if (!fits(offset, length)) return {nullptr, 0, overflowed_};
    return {start_ + offset, length, overflowed_};
  }
  // `count` numbers from `offset` on; none where one of them is outside. `count` has 32 bits at
  // most.
  template <Number T>
  constexpr ArraySink<T> array(std::size_t offset, std::size_t count) const noexcept {
    if (!fits(offset, count * sizeof(T))) return {nullptr, 0, overflowed_};
    return {start_ + offset, count, overflowed_};
  }
  template <class Record, Number T, std::size_t Offset>
  constexpr ArraySink<T> array(Array<Record, T, Offset>, std::size_t count) const noexcept {
    return array<T>(Offset, count);
  }
  // A record, or the first Size bytes of one.
  template <class Record, std::size_t Size = Record::kSize>
  constexpr FixedSink<Record, Size> record(std::size_t offset) const noexcept {
    if (!fits(offset, Size)) return {};
    return FixedSink<Record, Size>::vouched(start_ + offset);
  }

 private:
  constexpr bool fits(std::size_t offset, std::size_t length) const noexcept {
    if (offset <= size_ && length <= size_ - offset) return true;
    *overflowed_ = true;
    return false;
  }

  std::uint8_t* start_;
  std::size_t size_;
  bool* overflowed_;
};

// The bytes of a table that begin with a record.
template <class Record>
class RecordSink {
 public:
  constexpr explicit RecordSink(ByteSink bytes) noexcept : bytes_(bytes) {}

  constexpr ByteSink bytes() const noexcept { return bytes_; }

  template <Number T, std::size_t Offset>
  constexpr void put(Field<Record, T, Offset>, std::type_identity_t<T> value) const noexcept {
    bytes_.put<T>(Offset, value);
  }
  template <Number T, std::size_t Offset>
  constexpr void put(Array<Record, T, Offset> array, std::size_t index,
                     std::type_identity_t<T> value) const noexcept {
    bytes_.put<T>(array.at(index), value);
  }
  template <class Element, std::size_t Offset>
  constexpr FixedSink<Element> at(Array<Record, Element, Offset> array,
                                  std::size_t index) const noexcept {
    return bytes_.record<Element>(array.at(index));
  }

 private:
  ByteSink bytes_;
};

}  // namespace ulm::truetype::format
