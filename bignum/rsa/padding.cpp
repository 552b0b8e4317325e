#include "bignum/rsa/padding.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "bignum/words.h"

namespace ulm::bignum {
QLPadding::~QLPadding() = default;
QLZeroPadding::~QLZeroPadding() = default;

std::uint32_t QLZeroPadding::PayloadBits(std::uint32_t paddedBits) const { return paddedBits; }

void QLZeroPadding::Pad(const std::uint8_t* input, std::uint32_t inputBits, std::uint8_t* output,
                        std::uint32_t outputBits) const {
  std::fill_n(output, bytesForBits(outputBits), std::uint8_t{0});
  const std::size_t copied = bytesForBits(std::min(inputBits, outputBits));
  if (copied != 0) std::memcpy(output, input, copied);
}

std::uint32_t QLZeroPadding::Unpad(const std::uint8_t* input, std::uint32_t inputBits,
                                   std::uint8_t* output) const {
  std::uint32_t bits = inputBits;
  while (bits != 0 && input[bytesForBits(bits) - 1] == 0) bits -= std::min(bits, 8u);
  if (bits != 0) std::memmove(output, input, bytesForBits(bits));
  return bits;
}

}  // namespace ulm::bignum
