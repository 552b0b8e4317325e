// Padding of blocks for a cipher. All lengths are in bits and cover ceil(bits / 8) bytes; the low
// end of the data comes first, so that padding stands at the end of a buffer.
#pragma once

#include <cstdint>

namespace ulm::bignum {

// A padding scheme. The order of the virtual operations is part of the interface.
class QLPadding {
 public:
  virtual ~QLPadding();

  // The most bits of payload that fit into a padded length.
  virtual std::uint32_t PayloadBits(std::uint32_t paddedBits) const = 0;
  // Fills the output with the payload and padding.
  virtual void Pad(const std::uint8_t* input, std::uint32_t inputBits, std::uint8_t* output,
                   std::uint32_t outputBits) const = 0;
  // Writes the payload to the output, which has room for the input's length; gives its bits.
  virtual std::uint32_t Unpad(const std::uint8_t* input, std::uint32_t inputBits,
                              std::uint8_t* output) const = 0;
};

// Pads with zero bytes, so that a payload comes back without those that it ends in itself. A buffer
// of no bits may be null. Nothing here allocates or throws.
class QLZeroPadding : public QLPadding {
 public:
  ~QLZeroPadding() override;

  // All of them.
  std::uint32_t PayloadBits(std::uint32_t paddedBits) const override;
  // An input longer than the output is cut off at its length; the spare bits of a last byte are
  // copied as they stand. The buffers do not overlap.
  void Pad(const std::uint8_t* input, std::uint32_t inputBits, std::uint8_t* output,
           std::uint32_t outputBits) const override;
  // The length falls by 8 bits for each zero byte at the end, and stops at 0 where fewer are left.
  // The output may be the input.
  std::uint32_t Unpad(const std::uint8_t* input, std::uint32_t inputBits,
                      std::uint8_t* output) const override;
};

}  // namespace ulm::bignum
