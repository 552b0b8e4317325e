#include "bignum/kernel/kernel.h"

namespace ulm::bignum::kernel {
inline namespace ULM_BIGNUM_KERNEL {

// For each word of src the two halves of its product with m are added where they belong, the low
// half first, and each carry ripples up until it dies. A half that is zero is skipped.
void multiplyAdd(Word* dst, const Word* src, Word m, std::uint32_t n) noexcept {
  for (std::uint32_t i = 0; i < n; ++i) {
    const std::uint64_t product = std::uint64_t{src[i]} * m;
    rippleAdd(dst + i, static_cast<Word>(product));
    const Word high = static_cast<Word>(product >> kWordBits);
    if (high != 0) rippleAdd(dst + i + 1, high);
  }
}

std::size_t multiplyScratch(std::uint32_t, std::uint32_t) noexcept { return 0; }

// What has been summed up never exceeds the product, which fits in its words: no carry leaves them.
void multiply(Word* product, const Word* a, std::uint32_t aCount, const Word* b,
              std::uint32_t bCount, Word*) noexcept {
  for (std::uint32_t j = 0; j < bCount; ++j) multiplyAdd(product + j, a, b[j], aCount);
}

}  // namespace ULM_BIGNUM_KERNEL
}  // namespace ulm::bignum::kernel
