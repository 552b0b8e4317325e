#include <algorithm>
#include <bit>

#include "bignum/kernel/kernel.h"
#include "bignum/kernel/wide/limbs.h"
#include "bignum/kernel/wide/scratch.h"

namespace ulm::bignum::kernel {
inline namespace wide {
namespace {

// The divisor and the dividend with a limb on top, both shifted, and the quotient.
std::size_t limbsToTake(std::uint32_t aCount, std::uint32_t bCount) noexcept {
  const std::size_t an = limbsFor(aCount), bn = limbsFor(bCount);
  return bn + (an + 1) + (an + 1 - bn) + divScratch(bn);
}

// A divisor of one word: its quotient goes to the words as it is found.
void divideByWord(Word* quotient, Word* remainder, std::uint32_t aCount, Word divisor) noexcept {
  // A limb's shift up makes the divisor's top bit that of a limb; the dividend, shifted the same,
  // is taken a word at a time with the word below at the limb's low end.
  const auto shift = static_cast<unsigned>(std::countl_zero(Digit{divisor}));
  const Digit d = Digit{divisor} << shift;
  const Digit inverse = reciprocal(d);
  Digit rest = 0;
  std::uint32_t i = aCount;
  // The quotient's words are counted by bits: its top one may be missing, and is zero then.
  const auto put = [quotient](std::uint32_t index, Digit word) {
    if (quotient != nullptr && word != 0) quotient[index] = static_cast<Word>(word);
  };
  if (i % 2 != 0) {
    --i;
    put(i, remainder[i] / divisor);
    rest = remainder[i] % divisor;
  }
  while (i != 0) {
    i -= 2;
    const Digit low = remainder[i] | Digit{remainder[i + 1]} << kWordBits;
    // rest < divisor, so that it fits above the limb when both are shifted.
    const Digit high = rest << shift | low >> (kLimbBits - shift);
    const Digit q = divideDouble(high, low << shift, d, inverse, rest);
    rest >>= shift;
    put(i, q & 0xFFFFFFFF);
    put(i + 1, q >> kWordBits);
  }
  std::fill_n(remainder, aCount, Word{0});
  remainder[0] = static_cast<Word>(rest);
}

}  // namespace

std::size_t divideScratch(std::uint32_t aCount, std::uint32_t bCount) noexcept {
  return bCount == 1 ? 0 : wordsToAsk(limbsToTake(aCount, bCount));
}

void divide(Word* quotient, Word* remainder, std::uint32_t aCount, const Word* divisor,
            std::uint32_t bCount, Word* scratchWords) noexcept {
  if (bCount == 1) {
    divideByWord(quotient, remainder, aCount, divisor[0]);
    return;
  }
  const std::size_t an = limbsFor(aCount), bn = limbsFor(bCount);
  Scratch scratch(scratchWords);
  Limb* const d = scratch.take(bn);
  Limb* const a = scratch.take(an + 1);
  Limb* const q = scratch.take(an + 1 - bn);
  limbsOfWords(d, divisor, bCount);
  limbsOfWords(a, remainder, aCount);
  const auto shift = static_cast<unsigned>(std::countl_zero(Digit{d[bn - 1]}));
  shiftLimbsLeft(d, d, bn, shift);
  a[an] = shiftLimbsLeft(a, a, an, shift);
  // Without a bit above the dividend, or one that reaches the divisor's, there is a limb less.
  const std::size_t used = Digit{a[an]} == 0 ? an : an + 1;
  const Digit above = divLimbs(q, a, used, d, bn, scratch.take(0));
  const std::size_t qn = used - bn;
  shiftLimbsRight(a, a, bn, shift);
  std::fill_n(remainder, aCount, Word{0});
  wordsOfLimbs(remainder, a, bCount);
  if (quotient == nullptr) return;
  // The quotient's words are counted by bits; those above are zero.
  if (above != 0) quotient[2 * qn] = 1;
  std::size_t words = 2 * qn;
  while (words != 0 &&
         static_cast<Word>(q[(words - 1) / 2] >> ((words - 1) % 2 * kWordBits)) == 0) {
    --words;
  }
  wordsOfLimbs(quotient, q, words);
}

}  // namespace wide
}  // namespace ulm::bignum::kernel
