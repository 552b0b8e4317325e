// Numbers to digits. For a radix that is a power of two they are the bits; for any other they go by
// blocks, the most digits that a limb holds, and long numbers by halves.
#include <algorithm>
#include <array>
#include <bit>

#include "bignum/kernel/methods.h"
#include "bignum/kernel/wide/digits.h"
#include "bignum/kernel/wide/limbs.h"
#include "bignum/kernel/wide/scratch.h"
#include "bignum/text.h"

namespace ulm::bignum::kernel {
inline namespace wide {
namespace {

// Blocks from which a number is taken to pieces by halves, measured with MULX.
constexpr std::size_t kHalvesWritten = 14;

// Writes exactly `digits` digits of a limb.
void putBlock(char* out, Digit value, unsigned digits, std::uint32_t radix) noexcept {
  if (radix == 10) {
    for (; digits >= 2; digits -= 2) {
      const auto pair = static_cast<unsigned>(value % 100);
      value /= 100;
      out[digits - 1] = static_cast<char>('0' + pair % 10);
      out[digits - 2] = static_cast<char>('0' + pair / 10);
    }
  }
  while (digits-- > 0) {
    out[digits] = DigitTable[value % radix];
    value /= radix;
  }
}

// Takes numbers to pieces. The text is right-aligned in a given number of blocks, with zeros.
class Writer {
 public:
  Writer(std::uint32_t radix, const Block& block, const Powers& powers) noexcept
      : radix_(radix),
        block_(block),
        shift_(static_cast<unsigned>(std::countl_zero(block.value))),
        divisor_(block.value << shift_),
        inverse_(reciprocal(divisor_)),
        powers_(powers) {}

  static std::size_t limbsTaken(std::size_t n) noexcept { return 6 * n + 128 + divScratch(n); }

  // Writes the number of n limbs, which is destroyed, in `blocks` blocks, at most 2^level of them.
  void write(char* out, std::size_t blocks, Limb* a, std::size_t n, std::size_t level,
             Limb* scratch) const noexcept {
    n = significant(a, n);
    while (level > 0 && (std::size_t{1} << (level - 1)) >= blocks) --level;
    if (n == 0 || blocks <= kHalvesWritten) {
      writeBlocks(out, blocks, a, n);
      return;
    }
    const std::size_t lowBlocks = std::size_t{1} << (level - 1);
    char* const lowText = out + (blocks - lowBlocks) * block_.digits;
    const Powers::Power& power = powers_.levels[level - 1];
    if (n < power.n || (n == power.n && compareLimbs(a, power.limbs, n) < 0)) {
      write(out, blocks - lowBlocks, a, 0, level - 1, scratch);
      write(lowText, lowBlocks, a, n, level - 1, scratch);
      return;
    }
    // a = quotient * power + rest, both shifted so that the divisor's top bit is set.
    const auto s = static_cast<unsigned>(std::countl_zero(Digit{power.limbs[power.n - 1]}));
    Limb* const divisor = scratch;
    Limb* const dividend = divisor + power.n;
    Limb* const quotient = dividend + n + 1;
    const std::size_t qn = n + 1 - power.n;
    Limb* const rest = quotient + qn;
    shiftLimbsLeft(divisor, power.limbs, power.n, s);
    dividend[n] = shiftLimbsLeft(dividend, a, n, s);
    divLimbs(quotient, dividend, n + 1, divisor, power.n, rest);
    // The pieces together are no longer than the number, up to a limb; it is needed no more.
    shiftLimbsRight(dividend, dividend, power.n, s);
    copyLimbs(scratch, dividend, power.n);
    copyLimbs(scratch + power.n, quotient, qn);
    Limb* const free = scratch + power.n + qn;
    write(out, blocks - lowBlocks, scratch + power.n, qn, level - 1, free);
    write(lowText, lowBlocks, scratch, power.n, level - 1, scratch + power.n);
  }

 private:
  void writeBlocks(char* out, std::size_t blocks, Limb* a, std::size_t n) const noexcept {
    while (blocks-- > 0) {
      Digit block = 0;
      if (n != 0) {
        const Digit above = shift_ == 0 ? 0 : Digit{a[n - 1]} >> (kLimbBits - shift_);
        block = divideShifted(a, n, above) >> shift_;
        if (Digit{a[n - 1]} == 0) --n;
      }
      putBlock(out + blocks * block_.digits, block, block_.digits, radix_);
    }
  }

  // a = a / block; returns the remainder, shifted.
  Digit divideShifted(Limb* a, std::size_t n, Digit above) const noexcept {
    for (std::size_t i = n; i-- > 0;) {
      Digit low = a[i] << shift_;
      if (shift_ != 0 && i != 0) low |= Digit{a[i - 1]} >> (kLimbBits - shift_);
      a[i] = divideDouble(above, low, divisor_, inverse_, above);
    }
    return above;
  }

  std::uint32_t radix_;
  Block block_;
  unsigned shift_;
  Digit divisor_;
  Digit inverse_;
  const Powers& powers_;
};

// The two hexadecimal digits of each byte.
constexpr auto kHexPairs = [] {
  std::array<char, 512> pairs{};
  for (std::size_t byte = 0; byte < 256; ++byte) {
    pairs[2 * byte] = DigitTable[byte / 16];
    pairs[2 * byte + 1] = DigitTable[byte % 16];
  }
  return pairs;
}();

// Hexadecimal digits, from the low end.
void writeHex(char* out, std::size_t length, const QLInteger& value) noexcept {
  std::size_t byte = 0;
  for (; length >= 2; length -= 2) {
    std::memcpy(out + length - 2, &kHexPairs[2 * std::size_t{byteOfWords(value.words, byte++)}], 2);
  }
  if (length != 0) out[0] = DigitTable[byteOfWords(value.words, byte) % 16];
}

// Digits by bits, from the low end.
void writeBits(char* out, std::size_t length, const QLInteger& value, unsigned bits) noexcept {
  const Digit mask = (Digit{1} << bits) - 1;
  Digit held = 0;
  unsigned heldBits = 0;
  std::uint32_t word = 0;
  while (length-- > 0) {
    if (heldBits < bits && word < value.count) {
      held |= Digit{value.words[word++]} << heldBits;
      heldBits += kWordBits;
    }
    out[length] = DigitTable[held & mask];
    held >>= bits;
    heldBits -= std::min(heldBits, bits);
  }
}

}  // namespace

bool writeDigits(const QLInteger& value, std::uint32_t radix, char* buffer, std::size_t room,
                 std::size_t& length) {
  const std::uint64_t bits = detail::bitLengthOf(value.words, value.count);
  if (const unsigned digitBits = bitsOfDigit(radix); digitBits != 0) {
    length = (bits + digitBits - 1) / digitBits;
    if (length > room) return true;
    if (digitBits == 4) {
      writeHex(buffer, length, value);
    } else {
      writeBits(buffer, length, value, digitBits);
    }
    return true;
  }
  const Block& block = blockOf(radix);
  // A block's digits hold less than a limb, so that each limb takes as many.
  if (bits / kLimbBits * block.digits > room) {
    length = room + 1;
    return true;
  }
  const std::size_t n = limbsFor(value.count);
  const auto blockBits = static_cast<unsigned>(std::bit_width(block.value)) - 1;
  const std::size_t blocks = bits / blockBits + 1;
  const std::size_t textLimbs = blocks * block.digits / sizeof(Digit) + 1;
  OwnScratch scratch(n + textLimbs + Powers::limbsTaken(blocks) + productScratch(blocks) +
                     Writer::limbsTaken(n));
  Limb* const number = scratch.take(n);
  limbsOfWords(number, value.words, value.count);
  char* const text = static_cast<char*>(static_cast<void*>(scratch.take(textLimbs)));
  Limb* const made = scratch.take(Powers::limbsTaken(blocks));
  Limb* const rest = scratch.take(0);
  Powers powers;
  if (blocks > kHalvesWritten) powers.make(block.value, blocks, made, rest);
  const Writer writer(radix, block, powers);
  writer.write(text, blocks, number, n, powers.count, rest);
  const char* const end = text + blocks * block.digits;
  const char* const start =
      std::find_if(static_cast<const char*>(text), end, [](char digit) { return digit != '0'; });
  length = static_cast<std::size_t>(end - start);
  if (length <= room) std::copy(start, end, buffer);
  return true;
}

}  // namespace wide
}  // namespace ulm::bignum::kernel
