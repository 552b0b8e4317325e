#include <algorithm>
#include <bit>

#include "bignum/kernel/kernel.h"
#include "bignum/kernel/wide/limbs.h"
#include "bignum/kernel/wide/scratch.h"

namespace ulm::bignum::kernel {
inline namespace wide {
namespace {

// The divisor, the dividend with a limb on top, both shifted, and the quotient.
std::size_t limbsToTake(std::size_t an, std::size_t bn) noexcept {
  return bn + (an + 1) + (an + 2 - bn) + divScratch(bn);
}

// limbs = words << s, in limbsFor(count) limbs; returns the bits that leave them.
Digit shiftedLimbs(Limb* limbs, const Word* words, std::uint32_t count, unsigned s) noexcept {
  const std::size_t n = count / 2;
  if (count % 2 == 0) return shiftLimbsLeft(limbs, limbsAt(words), n, s);
  const Digit below = shiftLimbsLeft(limbs, limbsAt(words), n, s);
  const Digit top = words[count - 1];
  limbs[n] = top << s | below;
  return s == 0 ? 0 : top >> (kLimbBits - s);
}

// words = limbs >> s, in `count` words, which the result fits.
void shiftedWords(Word* words, Limb* limbs, std::uint32_t count, unsigned s) noexcept {
  if (count % 2 == 0) {
    shiftLimbsRight(limbsAt(words), limbs, count / 2, s);
  } else {
    shiftLimbsRight(limbs, limbs, limbsFor(count), s);
    wordsOfLimbs(words, limbs, count);
  }
}

// A divisor of one word: its quotient goes to the words as it is found.
Word divideByWord(Word* quotient, std::uint32_t quotientCount, const Word* dividend,
                  std::uint32_t aCount, Word divisor) noexcept {
  // A limb's shift up makes the divisor's top bit that of a limb; the dividend, shifted the same,
  // is taken a word at a time with the word below at the limb's low end.
  const auto shift = static_cast<unsigned>(std::countl_zero(Digit{divisor}));
  const Digit d = Digit{divisor} << shift;
  Digit rest = 0;
  std::uint32_t i = aCount;
  // The quotient's words are counted by bits: its top one may be missing, and is zero then.
  const auto put = [quotient, quotientCount](std::uint32_t index, Digit word) {
    if (index < quotientCount) quotient[index] = static_cast<Word>(word);
  };
  if (i % 2 != 0) {
    --i;
    put(i, dividend[i] / divisor);
    rest = dividend[i] % divisor;
  }
  if (i == 0) return static_cast<Word>(rest);
  const Digit inverse = reciprocal(d);
  while (i != 0) {
    i -= 2;
    const Digit low = dividend[i] | Digit{dividend[i + 1]} << kWordBits;
    // rest < divisor, so that it fits above the limb when both are shifted.
    const Digit high = rest << shift | low >> (kLimbBits - shift);
    const Digit q = divideDouble(high, low << shift, d, inverse, rest);
    rest >>= shift;
    put(i, q & 0xFFFFFFFF);
    put(i + 1, q >> kWordBits);
  }
  return static_cast<Word>(rest);
}

}  // namespace

void divide(Word* quotient, Word* remainder, const Word* dividend, std::uint32_t aCount,
            const Word* divisor, std::uint32_t bCount) {
  // More words than these the quotient has not.
  const std::uint64_t quotientBits =
      detail::bitLengthOf(dividend, aCount) - detail::bitLengthOf(divisor, bCount);
  const auto quotientCount =
      quotient == nullptr ? 0 : static_cast<std::uint32_t>(quotientBits / kWordBits) + 1;
  if (bCount == 1) {
    remainder[0] = divideByWord(quotient, quotientCount, dividend, aCount, divisor[0]);
    return;
  }
  const std::size_t an = limbsFor(aCount), bn = limbsFor(bCount);
  OwnScratch scratch(limbsToTake(an, bn));
  Limb* const d = scratch.take(bn);
  Limb* const a = scratch.take(an + 1);
  Limb* const ownQuotient = scratch.take(an + 2 - bn);
  const auto unused = static_cast<unsigned>(std::countl_zero(divisor[bCount - 1]));
  const unsigned shift = unused + (bCount % 2 != 0 ? kWordBits : 0);
  const Limb* shiftedDivisor = limbsAt(divisor);
  if (shift != 0) {
    shiftedLimbs(d, divisor, bCount, shift);
    shiftedDivisor = d;
  }
  a[an] = shiftedLimbs(a, dividend, aCount, shift);
  // Without a bit above the dividend, or one that reaches the divisor's, there is a limb less.
  const std::size_t used = Digit{a[an]} == 0 ? an : an + 1;
  const std::size_t qn = used - bn;
  // With the limbs that are used, the quotient has a word less than qn limbs, as many or one more.
  Limb* const q = quotientCount < 2 * qn ? ownQuotient : limbsAt(quotient);
  const Digit above = divLimbs(q, a, used, shiftedDivisor, bn, scratch.take(0));
  shiftedWords(remainder, a, bCount, shift);
  if (quotientCount > 2 * qn) {
    quotient[2 * qn] = static_cast<Word>(above);
  } else if (quotientCount != 0 && q == ownQuotient) {
    wordsOfLimbs(quotient, q, quotientCount);
  }
}

}  // namespace wide
}  // namespace ulm::bignum::kernel
