// Storage of words and bits of bytes. The arithmetic on words is the kernel's.
#include "bignum/words.h"

#include <algorithm>
#include <cstddef>
#include <new>

#include "bignum/detail/storage.h"
#include "bignum/kernel/kernel.h"
#include "hostsdk/adapter/alloc.h"

namespace ulm::bignum {

Word AddWords(Word* dst, const Word* src, std::uint32_t n) noexcept {
  return kernel::add(dst, src, n);
}

Word SubtractWords(Word* dst, const Word* src, std::uint32_t n) noexcept {
  return kernel::subtract(dst, src, n);
}

Word AddWord(Word* dst, Word v, std::uint32_t n) noexcept { return kernel::addWord(dst, v, n); }

Word SubtractWord(Word* dst, Word v, std::uint32_t n) noexcept {
  return kernel::subtractWord(dst, v, n);
}

void RippleAddWord(Word* dst, Word v) noexcept { kernel::rippleAdd(dst, v); }

void MultiplyAddWord(Word* dst, const Word* src, Word m, std::uint32_t n) noexcept {
  kernel::multiplyAdd(dst, src, m, n);
}

void ShiftLeftBits(Word* words, std::uint32_t n, std::uint32_t s) noexcept {
  kernel::shiftLeft(words, n, s);
}

void ShiftRightBits(Word* words, std::uint32_t n, std::uint32_t s) noexcept {
  kernel::shiftRight(words, n, s);
}

void ShiftRightOne(Word* words, std::uint32_t n) noexcept { kernel::shiftRight(words, n, 1); }

void ShiftLeftWords(Word* words, std::uint32_t n, std::uint32_t k) noexcept {
  if (k == 0) return;
  const std::size_t places = k;
  std::copy_backward(words, words + n, words + n + places);
  std::fill_n(words, places, Word{0});
}

void ShiftRightWords(Word* words, std::uint32_t n, std::uint32_t k) noexcept {
  const std::uint32_t places = std::min(n, k);
  if (places == 0) return;
  std::copy(words + places, words + n, words);
  std::fill(words + (n - places), words + n, Word{0});
}

int CompareWords(const Word* a, const Word* b, std::uint32_t n) noexcept {
  return kernel::compare(a, b, n);
}

bool EqualWords(const Word* a, const Word* b, std::uint32_t n) noexcept {
  return std::equal(a, a + n, b);
}

Word* detail::allocateUnfilled(std::uint32_t n) {
  const std::size_t count = n;
  if (count > SIZE_MAX / sizeof(Word)) throw std::bad_alloc();
  // This is not operator new: a new-handler that a process has installed must not run here.
  auto* words = static_cast<Word*>(odrxAlloc(count * sizeof(Word)));
  if (words == nullptr) throw std::bad_alloc();
  return words;
}

Word* AllocateWords(std::uint32_t n) {
  Word* words = detail::allocateUnfilled(n);
  std::fill_n(words, std::size_t{n}, Word{0});
  return words;
}

Word* ResizeWords(Word* old, std::uint32_t newCount, std::uint32_t oldCount) {
  Word* words = AllocateWords(newCount);
  std::copy_n(old, std::min(newCount, oldCount), words);
  FreeWords(old);
  return words;
}

void FreeWords(Word* words) noexcept { odrxFree(words); }

bool TestRawBit(const std::uint8_t* bytes, std::uint32_t i) noexcept {
  return ((bytes[ByteOfBit(i)] >> BitInByte(i)) & 1) != 0;
}

void SetRawBit(std::uint8_t* bytes, std::uint32_t i, bool on) noexcept {
  const auto mask = static_cast<std::uint8_t>(1u << BitInByte(i));
  std::uint8_t& byte = bytes[ByteOfBit(i)];
  byte = static_cast<std::uint8_t>(on ? byte | mask : byte & ~mask);
}

}  // namespace ulm::bignum
