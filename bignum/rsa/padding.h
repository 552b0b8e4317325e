// Padding of blocks for a cipher. All lengths are in bits, and a buffer has bytesForBits of its
// length. The low end of the data comes first, so padding is at the end of a buffer.
#pragma once

#include <cstdint>

namespace ulm::bignum {

// A padding scheme. The order of the virtual operations is part of the interface. A buffer may be
// null if its length is 0.
class QLPadding {
 public:
  virtual ~QLPadding();

  // Returns the maximum payload that fits in a padded length.
  virtual std::uint32_t PayloadBits(std::uint32_t paddedBits) const = 0;
  // Writes the payload and its padding to the whole output.
  virtual void Pad(const std::uint8_t* input, std::uint32_t inputBits, std::uint8_t* output,
                   std::uint32_t outputBits) const = 0;
  // Writes the payload to the output, which has room for the length of the input. Returns the
  // length of the payload.
  virtual std::uint32_t Unpad(const std::uint8_t* input, std::uint32_t inputBits,
                              std::uint8_t* output) const = 0;
};

// Padding with zero bytes. Zero bytes at the end of a payload are lost, because Unpad takes them
// for padding. Nothing allocates or throws.
class QLZeroPadding : public QLPadding {
 public:
  ~QLZeroPadding() override;

  // Returns its argument: zero padding needs no space.
  std::uint32_t PayloadBits(std::uint32_t paddedBits) const override;
  // An input that is longer than the output is cut to the output's length. The spare bits of its
  // last byte are copied unchanged. The buffers do not overlap.
  void Pad(const std::uint8_t* input, std::uint32_t inputBits, std::uint8_t* output,
           std::uint32_t outputBits) const override;
  // The length falls by 8 bits for each zero byte at the end, and to 0 if fewer than 8 are left.
  // The output may be the input.
  std::uint32_t Unpad(const std::uint8_t* input, std::uint32_t inputBits,
                      std::uint8_t* output) const override;
};

}  // namespace ulm::bignum
