// Division by the restoring shift-and-subtract method, one bit of the quotient at a time.
#include <algorithm>

#include "bignum/detail/storage.h"
#include "bignum/kernel/kernel.h"

namespace ulm::bignum::kernel {
inline namespace ULM_BIGNUM_KERNEL {
namespace {

// The divisor under alignment: its words, and the stretch of them that takes part in the loop.
struct Span {
  Word* words;
  std::uint32_t length;
};

// Leaves out the low zero words but one, which takes the bits that fall out of the word above it.
Span workingSpan(Word* words, std::uint32_t count) noexcept {
  while (words[count - 1] == 0) --count;
  std::uint32_t low = 0;
  while (words[low] == 0) ++low;
  if (low > 0) --low;
  return {words + low, count - low};
}

}  // namespace

// The divisor's copy, with room for a shift by up to 63 bits.
std::size_t divideScratch(std::uint32_t, std::uint32_t bCount) noexcept {
  return std::size_t{bCount} + 2;
}

void divide(Word* quotient, Word* remainder, std::uint32_t aCount, const Word* divisor,
            std::uint32_t bCount, Word* scratch) noexcept {
  const std::uint64_t diff =
      detail::bitLengthOf(remainder, aCount) - detail::bitLengthOf(divisor, bCount);
  // In the wide case both get a spare low word, so that the divisor loses no bit while it moves
  // down 32 places bit by bit; it then moves up a word and the remainder's stretch down one.
  const bool wide = diff >= kWordBits;

  // Alignment: the divisor's top bit comes under the remainder's, in the same place of its word.
  Word* shifted = scratch;
  std::uint32_t shiftedCount = bCount + 1;
  std::copy_n(divisor, bCount, shifted);
  std::fill_n(shifted + bCount, 2, Word{0});
  shiftLeft(shifted, shiftedCount, static_cast<std::uint32_t>(diff) % kWordBits);
  std::uint32_t remainderCount = aCount;
  if (wide) {
    ShiftLeftWords(shifted, shiftedCount++, 1);
    ShiftLeftWords(remainder, remainderCount++, 1);
  }
  const Span span = workingSpan(shifted, shiftedCount);
  Word* stretch = remainder + (remainderCount - span.length);

  std::uint32_t shiftsDone = 0;
  for (std::uint64_t i = diff;; --i) {
    if (compare(stretch, span.words, span.length) >= 0) {
      if (quotient != nullptr) quotient[i / kWordBits] |= Word{1} << (i % kWordBits);
      // The words above the stretch are zero already, so no borrow leaves it.
      subtract(stretch, span.words, span.length);
    }
    if (i == 0) break;
    if (wide && shiftsDone == kWordBits) {
      // The span's top word has become zero; what moves out of it is nothing.
      ShiftLeftWords(span.words, span.length - 1, 1);
      --stretch;
      shiftsDone = 0;
    }
    shiftRight(span.words, span.length, 1);
    ++shiftsDone;
  }
  if (wide) ShiftRightWords(remainder, remainderCount, 1);
}

}  // namespace ULM_BIGNUM_KERNEL
}  // namespace ulm::bignum::kernel
