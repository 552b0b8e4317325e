#include <algorithm>

#include "bignum/kernel/kernel.h"
#include "bignum/kernel/wide/limbs.h"
#include "bignum/kernel/wide/scratch.h"

namespace ulm::bignum::kernel {
inline namespace wide {
namespace {

// Products of up to so many limbs go by rows, without scratch, by every method.
constexpr std::size_t kRowLimbs = 27;

// Whether operands and product can be used where they are: in whole limbs.
bool inPlace(std::uint32_t aCount, std::uint32_t bCount) noexcept {
  return aCount % 2 == 0 && bCount % 2 == 0;
}

std::size_t limbsToTake(std::uint32_t aCount, std::uint32_t bCount) noexcept {
  const std::size_t an = limbsFor(aCount), bn = limbsFor(bCount);
  const std::size_t longer = std::max(an, bn), shorter = std::min(an, bn);
  // A square may take more than a product of two.
  const std::size_t scratch = std::max(mulScratch(longer, shorter), productScratch(shorter));
  return scratch + (inPlace(aCount, bCount) ? 0 : 2 * (an + bn));
}

void multiplyByRows(Limb* product, const Limb* a, std::size_t an, const Limb* b,
                    std::size_t bn) noexcept {
  if (a == b && an == bn) {
    sqrRows(product, a, an);
  } else if (an >= bn) {
    mulRows(product, a, an, b, bn);
  } else {
    mulRows(product, b, bn, a, an);
  }
}

void multiplyLimbs(Limb* product, const Limb* a, std::size_t an, const Limb* b, std::size_t bn,
                   Limb* scratch) noexcept {
  if (a == b && an == bn) {
    square(product, a, an, scratch);
  } else if (an >= bn) {
    mul(product, a, an, b, bn, scratch);
  } else {
    mul(product, b, bn, a, an, scratch);
  }
}

// One or two words as a limb.
Digit oneLimb(const Word* words, std::uint32_t count) noexcept {
  return count == 1 ? Digit{words[0]} : Digit{limbsAt(words)[0]};
}

}  // namespace

void multiply(Word* product, const Word* a, std::uint32_t aCount, const Word* b,
              std::uint32_t bCount) {
  if (aCount <= 2 && bCount <= 2) {
    Double rest = Double{oneLimb(a, aCount)} * oneLimb(b, bCount);
    for (std::uint32_t i = 0; i < aCount + bCount; ++i) {
      product[i] = static_cast<Word>(rest);
      rest >>= kWordBits;
    }
    return;
  }
  const std::size_t an = limbsFor(aCount), bn = limbsFor(bCount);
  if (std::max(an, bn) <= kRowLimbs && inPlace(aCount, bCount)) {
    multiplyByRows(limbsAt(product), limbsAt(a), an, limbsAt(b), bn);
    return;
  }
  OwnScratch scratch(limbsToTake(aCount, bCount));
  if (inPlace(aCount, bCount)) {
    multiplyLimbs(limbsAt(product), limbsAt(a), an, limbsAt(b), bn, scratch.take(0));
    return;
  }
  Limb* const aLimbs = scratch.take(an);
  limbsOfWords(aLimbs, a, aCount);
  Limb* bLimbs = aLimbs;
  if (a != b || aCount != bCount) {
    bLimbs = scratch.take(bn);
    limbsOfWords(bLimbs, b, bCount);
  }
  Limb* const result = scratch.take(an + bn);
  multiplyLimbs(result, aLimbs, an, bLimbs, bn, scratch.take(0));
  wordsOfLimbs(product, result, std::size_t{aCount} + bCount);
}

}  // namespace wide
}  // namespace ulm::bignum::kernel
