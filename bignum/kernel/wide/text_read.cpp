// Digits to numbers. For a radix that is a power of two they are the bits; for any other they go by
// blocks, the most digits that a limb holds, and long numbers by halves. Characters of the usual
// radices are taken 8 at a time.
#include <algorithm>
#include <array>

#include "bignum/kernel/methods.h"
#include "bignum/kernel/wide/digits.h"
#include "bignum/kernel/wide/limbs.h"
#include "bignum/kernel/wide/scratch.h"
#include "bignum/text.h"

namespace ulm::bignum::kernel {
inline namespace wide {
namespace {

// Blocks from which a number is made by halves, measured with MULX.
constexpr std::size_t kHalvesRead = 48;

// The value of each character as a digit, 255 for others: what DigitValue gives.
constexpr auto kDigitValues = [] {
  std::array<std::uint8_t, 256> values{};
  values.fill(255);
  for (std::uint8_t digit = 0; digit < 16; ++digit) {
    const auto character = static_cast<std::size_t>(DigitTable[digit]);
    values[character] = digit;
    if (digit > 9) values[character + ('a' - 'A')] = digit;
  }
  return values;
}();
std::uint8_t digitOf(char character) noexcept {
  return kDigitValues[static_cast<std::uint8_t>(character)];
}

// A value in each byte of a limb.
constexpr Digit inEach(unsigned byte) noexcept { return byte * 0x0101010101010101u; }

// 8 characters, the first one in the lowest byte.
Digit charactersAt(const char* text) noexcept {
  Digit characters = 0;
  for (unsigned i = 0; i < 8; ++i) {
    characters |= Digit{static_cast<std::uint8_t>(text[i])} << (8 * i);
  }
  return characters;
}

// The upper halves of the bytes are those of '0' to '9', and stay so when 6 is added.
bool areDecimal(Digit characters) noexcept {
  const Digit upper = inEach(0xF0);
  return ((characters & upper) | ((characters + inEach(6)) & upper) >> 4) == inEach(0x33);
}

// The values of hexadecimal digits in their bytes. Other characters get values of up to 24.
Digit hexValues(Digit characters) noexcept {
  const Digit letters = characters >> 6 & inEach(1);
  return (characters & inEach(0x0F)) + 9 * letters;
}

// Writes the values as digits again, in upper case, and compares.
bool areHexadecimal(Digit characters) noexcept {
  const Digit values = hexValues(characters);
  const Digit above9 = (values + inEach(6)) >> 4 & inEach(1);
  const Digit upperCase = characters & ~(characters >> 1 & inEach(0x20));
  return values + inEach('0') + 7 * above9 == upperCase && (values & inEach(0x10)) == 0;
}

bool areDigits(const char* first, const char* last, std::uint32_t radix) noexcept {
  bool are = true;
  if (radix == 10) {
    for (; are && last - first >= 8; first += 8) are = areDecimal(charactersAt(first));
  } else if (radix == 16) {
    for (; are && last - first >= 8; first += 8) are = areHexadecimal(charactersAt(first));
  }
  return are && std::all_of(first, last, [radix](char next) { return digitOf(next) < radix; });
}

// Pairs of digits, then of pairs, then of these: the first digit is the highest.
Digit decimalOf8(const char* text) noexcept {
  Digit values = charactersAt(text) - inEach('0');
  values = (values * 10 + (values >> 8)) & 0x00FF00FF00FF00FFu;
  values = (values * 100 + (values >> 16)) & 0x0000FFFF0000FFFFu;
  return (values * 10000 + (values >> 32)) & 0xFFFFFFFFu;
}
Digit hexOf8(const char* text) noexcept {
  Digit values = hexValues(charactersAt(text));
  values = (values << 4 | values >> 8) & 0x00FF00FF00FF00FFu;
  values = (values << 8 | values >> 16) & 0x0000FFFF0000FFFFu;
  return (values << 16 | values >> 32) & 0xFFFFFFFFu;
}

// The number of `count` digits, which fits a limb.
Digit blockAt(const char* text, unsigned count, std::uint32_t radix) noexcept {
  Digit block = 0;
  if (radix == 10) {
    for (; count >= 8; count -= 8) {
      block = block * 100000000 + decimalOf8(text);
      text += 8;
    }
  }
  while (count-- > 0) block = block * radix + digitOf(*text++);
  return block;
}

// r = the number of blocks b, the lowest first; returns its limbs. r: n + 1 limbs, may not be b.
// scratch: n + 1 limbs and those of a product.
std::size_t joinBlocks(Limb* r, const Limb* b, std::size_t n, std::size_t level, Digit value,
                       const Powers& powers, Limb* scratch) noexcept {
  while (level > 0 && (std::size_t{1} << (level - 1)) >= n) --level;
  if (n <= kHalvesRead) {
    std::size_t length = 0;
    for (std::size_t i = n; i-- > 0;) {
      const Digit carry = length == 0 ? Digit{b[i]} : mulLimb(r, r, length, value, b[i]);
      if (carry != 0) r[length++] = carry;
    }
    return length;
  }
  const std::size_t lowBlocks = std::size_t{1} << (level - 1);
  const Powers::Power& power = powers.levels[level - 1];
  const std::size_t highLength = joinBlocks(scratch, b + lowBlocks, n - lowBlocks, level - 1, value,
                                            powers, scratch + (n - lowBlocks + 1));
  Limb* const free = scratch + (n - lowBlocks + 1);
  const std::size_t lowLength =
      joinBlocks(free, b, lowBlocks, level - 1, value, powers, free + lowBlocks + 1);
  Limb* const rest = free + lowBlocks + 1;
  if (highLength == 0) {
    copyLimbs(r, free, lowLength);
    return lowLength;
  }
  std::size_t length = highLength + power.n;
  if (highLength >= power.n) {
    mul(r, scratch, highLength, power.limbs, power.n, rest);
  } else {
    mul(r, power.limbs, power.n, scratch, highLength, rest);
  }
  const Digit carry = addLimbs(r, r, free, lowLength);
  addLimb(r + lowLength, length - lowLength, carry);
  return significant(r, length);
}

// The characters are digits; there are none or the first one is not 0.
void readBits(QLInteger& value, const char* first, const char* last, unsigned bits) {
  const auto digits = static_cast<std::uint64_t>(last - first);
  const std::uint64_t words = std::max<std::uint64_t>((digits * bits + 31) / kWordBits, 1);
  makeRoom(value, words);
  Limb* limb = limbsAt(value.words);
  if (bits == 4) {
    for (; last - first >= 16; ++limb) {
      last -= 16;
      *limb = hexOf8(last) << kWordBits | hexOf8(last + 8);
    }
  }
  // The storage has whole limbs.
  Digit held = 0;
  unsigned heldBits = 0;
  while (last != first) {
    const Digit digit = digitOf(*--last);
    held |= digit << heldBits;
    heldBits += bits;
    if (heldBits >= kLimbBits) {
      *limb++ = held;
      heldBits -= kLimbBits;
      held = digit >> (bits - heldBits);
    }
  }
  if (heldBits != 0 || digits == 0) *limb = held;
  value.count = static_cast<std::uint32_t>(words);
  value.negative = 0;
  value.Normalise();
}

void readBlocks(QLInteger& value, const char* first, const char* last, std::uint32_t radix) {
  const auto digits = static_cast<std::size_t>(last - first);
  const Block& block = blockOf(radix);
  const std::size_t blocks = digits / block.digits + 1;
  detail::checkedCount(blocks);
  // Blocks, powers, the result, and for each level its two parts.
  const std::size_t products = mulScratch(blocks, blocks / 2 + 1) + productScratch(blocks);
  const std::size_t taken =
      blocks + Powers::limbsTaken(blocks) + (2 * blocks + 2) + (3 * blocks + 256) + products;
  OwnScratch scratch(taken);
  Limb* const of = scratch.take(blocks);
  std::size_t used = 0;
  while (last != first) {
    const auto count = static_cast<unsigned>(std::min<std::ptrdiff_t>(last - first, block.digits));
    last -= count;
    of[used++] = blockAt(last, count, radix);
  }
  Powers powers;
  Limb* const made = scratch.take(Powers::limbsTaken(blocks));
  Limb* const result = scratch.take(2 * blocks + 2);
  Limb* const rest = scratch.take(0);
  std::size_t length = 0;
  if (used != 0) {
    if (used > kHalvesRead) powers.make(block.value, used, made, rest);
    length = joinBlocks(result, of, used, powers.count, block.value, powers, rest);
  }
  makeRoom(value, 2 * std::max<std::size_t>(length, 1));
  setLimbs(value, result, length);
}

}  // namespace

bool readDigits(QLInteger& value, const char* first, const char* last, std::int32_t radix) {
  const auto unsignedRadix = static_cast<std::uint32_t>(radix);
  const bool clean = areDigits(first, last, unsignedRadix);
  OwnScratch kept(clean ? 0 : static_cast<std::size_t>(last - first) / sizeof(Limb) + 1);
  if (!clean) {
    char* const text = static_cast<char*>(static_cast<void*>(kept.take(0)));
    last = std::copy_if(first, last, text,
                        [unsignedRadix](char next) { return digitOf(next) < unsignedRadix; });
    first = text;
  }
  while (first != last && *first == '0') ++first;
  if (const unsigned bits = bitsOfDigit(unsignedRadix); bits != 0) {
    readBits(value, first, last, bits);
  } else {
    readBlocks(value, first, last, unsignedRadix);
  }
  return true;
}

}  // namespace wide
}  // namespace ulm::bignum::kernel
