// Multiplication word by word.
#include <algorithm>
#include <cstddef>

#include "bignum/kernel/kernel.h"

namespace ulm::bignum::kernel {
inline namespace ULM_BIGNUM_KERNEL {

// The product of a word of src and m is added in two halves, the low half first. Each carry ripples
// until it is 0. A half that is zero is skipped.
void multiplyAdd(Word* dst, const Word* src, Word m, std::uint32_t n) noexcept {
  for (std::uint32_t i = 0; i < n; ++i) {
    const std::uint64_t product = std::uint64_t{src[i]} * m;
    rippleAdd(dst + i, static_cast<Word>(product));
    const Word high = static_cast<Word>(product >> kWordBits);
    if (high != 0) rippleAdd(dst + i + 1, high);
  }
}

// The sum so far never exceeds the whole product, which fits in its words. So no carry leaves them.
void multiply(Word* product, const Word* a, std::uint32_t aCount, const Word* b,
              std::uint32_t bCount) {
  std::fill_n(product, std::size_t{aCount} + bCount, Word{0});
  for (std::uint32_t j = 0; j < bCount; ++j) multiplyAdd(product + j, a, b[j], aCount);
}

}  // namespace ULM_BIGNUM_KERNEL
}  // namespace ulm::bignum::kernel
