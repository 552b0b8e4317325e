#include "bignum/kernel/wide/screen.h"

#include <algorithm>
#include <bit>

#include "bignum/kernel/wide/limbs.h"

namespace ulm::bignum::kernel {
inline namespace wide {
namespace {

constexpr std::uint32_t kMostBound = 1u << 20;

// The bound of the primes by the length of the numbers, measured with MULX.
std::uint32_t boundFor(std::size_t n) noexcept {
  const std::uint64_t bound = 512 * std::uint64_t{n} * n;
  return static_cast<std::uint32_t>(std::min<std::uint64_t>(bound, kMostBound));
}

// A value of `count` words modulo d, whose top bit is set.
Digit remainderBy(const QLInteger& value, Digit d) noexcept {
  const Digit inverse = reciprocal(d);
  const std::size_t pairs = value.count / 2;
  Digit rest = value.count % 2 != 0 ? value.words[value.count - 1] : 0;
  const Limb* const limbs = limbsAt(value.words);
  for (std::size_t i = pairs; i-- > 0;) divideDouble(rest, limbs[i], d, inverse, rest);
  return rest;
}

}  // namespace

Screen::Screen(std::size_t n)
    : length_(static_cast<std::uint32_t>(std::clamp<std::size_t>(64 * n, 256, kMostLength))) {
  const std::uint32_t bound = boundFor(n);
  // Bit i is for 2 i + 1.
  const detail::WordsHolder composite = detail::scratchWords(bound / (2 * kWordBits) + 1);
  Word* const bits = composite.get();
  // Of 105 consecutive odd numbers 48 have no factor of 3, 5 or 7: fewer than a quarter of the
  // bound.
  primes_ = detail::scratchWords(bound / 4 + 20);
  for (std::uint32_t i = 1; 2 * i + 1 < bound; ++i) {
    if ((bits[i / kWordBits] >> (i % kWordBits) & 1) != 0) continue;
    const std::uint32_t p = 2 * i + 1;
    primes_.get()[primeCount_++] = p;
    if (p > bound / p) continue;
    for (std::uint32_t j = p * p / 2; j < bound / 2; j += p) {
      bits[j / kWordBits] |= Word{1} << (j % kWordBits);
    }
  }
}

void Screen::mark(std::uint32_t p, std::uint32_t rest) noexcept {
  // The number of steps of 2 to the next multiple of p.
  const std::uint32_t missing = rest == 0 ? 0 : p - rest;
  for (std::uint32_t i = missing % 2 == 0 ? missing / 2 : (missing + p) / 2; i < length_; i += p) {
    factors_[i] = p;
  }
}

void Screen::look(const QLInteger& start) noexcept {
  std::fill_n(factors_, length_, 0u);
  // From the top down, so that the least primes are noted last. As many primes as fit a limb share
  // one division of the long number.
  const Word* const primes = primes_.get();
  for (std::uint32_t last = primeCount_; last != 0;) {
    Digit product = primes[last - 1];
    std::uint32_t first = last - 1;
    while (first != 0 && product >> (kLimbBits - std::bit_width(primes[last - 1])) == 0) {
      product *= primes[--first];
    }
    const Digit rest = remainderBy(start, product << std::countl_zero(product));
    while (last != first) {
      --last;
      mark(primes[last], static_cast<std::uint32_t>(rest % primes[last]));
    }
  }
}

}  // namespace wide
}  // namespace ulm::bignum::kernel
