// Division by the restoring shift-and-subtract method, one quotient bit at a time.
#include <algorithm>

#include "bignum/detail/storage.h"
#include "bignum/kernel/kernel.h"

namespace ulm::bignum::kernel {
inline namespace ULM_BIGNUM_KERNEL {
namespace {

// The words of the shifted divisor that take part in the loop.
struct Span {
  Word* words;
  std::uint32_t length;
};

// Skips the zero words at the low end except one, which receives the bits that are shifted out of
// the word above it.
Span workingSpan(Word* words, std::uint32_t count) noexcept {
  while (words[count - 1] == 0) --count;
  std::uint32_t low = 0;
  while (words[low] == 0) ++low;
  if (low > 0) --low;
  return {words + low, count - low};
}

}  // namespace

void divide(Word* quotient, Word* remainder, const Word* dividend, std::uint32_t aCount,
            const Word* divisor, std::uint32_t bCount) {
  // Room for a copy of the divisor, shifted by up to 63 bits.
  const detail::WordsHolder scratch = detail::scratchWords(std::size_t{bCount} + 2);
  const std::uint64_t diff =
      detail::bitLengthOf(dividend, aCount) - detail::bitLengthOf(divisor, bCount);
  if (quotient != nullptr) std::fill_n(quotient, (diff + kWordBits) / kWordBits, Word{0});
  if (remainder != dividend) std::copy_n(dividend, aCount, remainder);
  // In the wide case divisor and remainder get a spare low word. The divisor can then be shifted
  // right by 32 bits, one by one, without a loss; after these it moves up by a word, and the window
  // on the remainder moves down by one.
  const bool wide = diff >= kWordBits;

  // Alignment: the top bits of the divisor and of the remainder get the same index in their words.
  Word* shifted = scratch.get();
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
  Word* window = remainder + (remainderCount - span.length);

  std::uint32_t shiftsDone = 0;
  for (std::uint64_t i = diff;; --i) {
    if (compare(window, span.words, span.length) >= 0) {
      if (quotient != nullptr) quotient[i / kWordBits] |= Word{1} << (i % kWordBits);
      // The words above the window are zero, so no borrow leaves it.
      subtract(window, span.words, span.length);
    }
    if (i == 0) break;
    if (wide && shiftsDone == kWordBits) {
      // The top word of the span is zero by now, so no digit is lost.
      ShiftLeftWords(span.words, span.length - 1, 1);
      --window;
      shiftsDone = 0;
    }
    shiftRight(span.words, span.length, 1);
    ++shiftsDone;
  }
  if (wide) ShiftRightWords(remainder, remainderCount, 1);
}

}  // namespace ULM_BIGNUM_KERNEL
}  // namespace ulm::bignum::kernel
