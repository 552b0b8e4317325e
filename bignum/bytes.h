// The bytes of a magnitude, with the low byte or the high byte first: from bytes to a value and
// back. The sign is not in the bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>

#include "bignum/integer.h"
#include "bignum/words.h"

namespace ulm::bignum {

// Returns the number whose magnitude is the byte string, not negative; 0 for an empty string. There
// may be zero bytes at the high end. The storage has the size for all bytes, zeros too. Throws
// std::bad_alloc if memory runs out or there are more than 2^29 bytes. Linear time.
QLInteger fromBytesLowFirst(std::span<const std::uint8_t> bytes);
QLInteger fromBytesHighFirst(std::span<const std::uint8_t> bytes);

// A range over the bytes of a magnitude, without zero bytes at the high end; zero has no bytes. The
// range borrows the value, which must live and stay unchanged as long as the range is used.
class ByteRange {
 public:
  class Iterator {
   public:
    using value_type = std::uint8_t;
    using difference_type = std::ptrdiff_t;
    using reference = std::uint8_t;
    using pointer = void;
    using iterator_category = std::input_iterator_tag;

    Iterator(const Word* words, std::ptrdiff_t index, std::ptrdiff_t step) noexcept
        : words_(words), index_(index), step_(step) {}
    std::uint8_t operator*() const noexcept {
      return byteOfWords(words_, static_cast<std::size_t>(index_));
    }
    Iterator& operator++() noexcept {
      index_ += step_;
      return *this;
    }
    void operator++(int) noexcept { ++*this; }
    bool operator==(const Iterator& other) const noexcept { return index_ == other.index_; }

   private:
    const Word* words_;
    std::ptrdiff_t index_;
    std::ptrdiff_t step_;
  };

  ByteRange(const QLInteger& value, bool highFirst) noexcept
      : words_(value.words),
        size_(static_cast<std::ptrdiff_t>(bytesForBits(value.BitLength()))),
        highFirst_(highFirst) {}
  ByteRange(const QLInteger&&, bool) = delete;
  Iterator begin() const noexcept {
    return highFirst_ ? Iterator(words_, size_ - 1, -1) : Iterator(words_, 0, 1);
  }
  Iterator end() const noexcept {
    return highFirst_ ? Iterator(words_, -1, -1) : Iterator(words_, size_, 1);
  }
  std::size_t size() const noexcept { return static_cast<std::size_t>(size_); }

 private:
  const Word* words_;
  std::ptrdiff_t size_;
  bool highFirst_;
};

// They do not take a temporary, because the range would outlive it.
inline ByteRange bytesLowFirst(const QLInteger& value) noexcept { return {value, false}; }
inline ByteRange bytesHighFirst(const QLInteger& value) noexcept { return {value, true}; }
ByteRange bytesLowFirst(const QLInteger&&) = delete;
ByteRange bytesHighFirst(const QLInteger&&) = delete;

// Writes `size` bytes: the bytes of the words in use, low byte first, as far as they fit. If there
// are fewer than `size`, 0xFF for a negative value or 0 for any other follows up to `size`; the
// bytes before are the magnitude all the same. buffer may be null if size is 0.
void ToBytes(const QLInteger& value, std::uint8_t* buffer, std::uint32_t size) noexcept;

}  // namespace ulm::bignum
