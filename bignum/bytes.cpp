#include "bignum/bytes.h"

#include <algorithm>

#include "bignum/detail/storage.h"

namespace ulm::bignum {
namespace {

// Builds a number from `size` bytes; `low` iterates over them from the lowest one up.
template <class Iterator>
QLInteger numberOf(Iterator low, std::size_t size) {
  const std::size_t wordCount = std::max<std::size_t>(size / 4 + (size % 4 != 0 ? 1 : 0), 1);
  QLInteger number(detail::checkedCount(wordCount), 0);
  for (std::size_t i = 0; i < size; ++i, ++low) number.words[i / 4] |= Word{*low} << (i % 4 * 8);
  number.Normalise();
  return number;
}

}  // namespace

QLInteger fromBytesLowFirst(std::span<const std::uint8_t> bytes) {
  return numberOf(bytes.begin(), bytes.size());
}

QLInteger fromBytesHighFirst(std::span<const std::uint8_t> bytes) {
  return numberOf(bytes.rbegin(), bytes.size());
}

void ToBytes(const QLInteger& value, std::uint8_t* buffer, std::uint32_t size) noexcept {
  const std::uint64_t inWords = std::uint64_t{4} * value.count;
  const auto copied = static_cast<std::uint32_t>(std::min<std::uint64_t>(size, inWords));
  for (std::uint32_t i = 0; i < copied; ++i) buffer[i] = byteOfWords(value.words, i);
  std::fill(buffer + copied, buffer + size, static_cast<std::uint8_t>(value.SignWord()));
}

}  // namespace ulm::bignum
