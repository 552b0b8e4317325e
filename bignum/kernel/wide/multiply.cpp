#include <algorithm>

#include "bignum/kernel/kernel.h"
#include "bignum/kernel/wide/limbs.h"
#include "bignum/kernel/wide/scratch.h"

namespace ulm::bignum::kernel {
inline namespace wide {
namespace {

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

}  // namespace

std::size_t multiplyScratch(std::uint32_t aCount, std::uint32_t bCount) noexcept {
  return wordsToAsk(limbsToTake(aCount, bCount));
}

void multiply(Word* product, const Word* a, std::uint32_t aCount, const Word* b,
              std::uint32_t bCount, Word* scratchWords) noexcept {
  const std::size_t an = limbsFor(aCount), bn = limbsFor(bCount);
  Scratch scratch(scratchWords);
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
