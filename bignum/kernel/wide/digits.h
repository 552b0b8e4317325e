// What reading and writing digits share: blocks of digits that fit a limb, and their powers.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "bignum/kernel/wide/limbs.h"

namespace ulm::bignum::kernel {
inline namespace wide {

// The most digits of a radix that fit a limb, and the radix to their number.
struct Block {
  unsigned digits;
  Digit value;
};
inline constexpr auto kBlocks = [] {
  std::array<Block, 17> blocks{};
  for (std::uint32_t radix = 2; radix < blocks.size(); ++radix) {
    Block& block = blocks[radix];
    for (block.value = 1; block.value <= ~Digit{0} / radix; ++block.digits) block.value *= radix;
  }
  return blocks;
}();
inline const Block& blockOf(std::uint32_t radix) noexcept { return kBlocks[radix]; }

// Bits of a digit; 0 where the radix is no power of two.
inline unsigned bitsOfDigit(std::uint32_t radix) noexcept {
  return std::has_single_bit(radix) ? static_cast<unsigned>(std::countr_zero(radix)) : 0;
}

// Powers of a block's value: the one of a level has 2^level blocks. They are made by squaring, a
// level for each bit of the count of blocks.
struct Powers {
  struct Power {
    const Limb* limbs;
    std::size_t n;
  };
  std::array<Power, 32> levels;
  std::size_t count = 0;

  // Makes the levels below the one that has `blocks` or more. limbs: 2 blocks + 64.
  static std::size_t limbsTaken(std::size_t blocks) noexcept { return 2 * blocks + 64; }
  void make(Digit value, std::size_t blocks, Limb* limbs, Limb* scratch) noexcept {
    limbs[0] = value;
    levels[0] = {limbs, 1};
    count = 1;
    while ((std::size_t{2} << (count - 1)) < blocks) {
      const Power& last = levels[count - 1];
      Limb* const next = limbs + last.n;
      square(next, last.limbs, last.n, scratch);
      levels[count++] = {next, significant(next, 2 * last.n)};
      limbs = next;
    }
  }
};

}  // namespace wide
}  // namespace ulm::bignum::kernel
