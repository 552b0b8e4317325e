#include "bignum/kernel/wide/montgomery.h"

#include <algorithm>
#include <bit>

#include "bignum/kernel/methods.h"

namespace ulm::bignum::kernel {
inline namespace wide {

Montgomery::Montgomery(const QLInteger& modulus, std::size_t extra)
    : n_(limbsFor(modulus.count)),
      total_(limbsTaken(n_) + extra),
      scratch_(total_),
      start_(scratch_.take(0)),
      m_(scratch_.take(n_)),
      product_(scratch_.take(2 * n_)),
      products_(scratch_.take(productScratch(n_))) {
  limbsOfWords(m_, modulus.words, modulus.count);
  inverse_ = negativeInverse(m_[0]);
}

Montgomery::~Montgomery() {
  zeroLimbs(start_, total_);
  asm volatile("" : : "r"(start_) : "memory");  // the zeros are not left out before the free
}

void Montgomery::multiply(Limb* r, const Limb* a, const Limb* b) noexcept {
  if (mulReduced(r, a, b, m_, n_, inverse_)) return;
  mulEqual(product_, a, b, n_, products_);
  reduceRows(r, product_, m_, n_, inverse_);
}

void Montgomery::square(Limb* r, const Limb* a) noexcept {
  if (mulReduced(r, a, a, m_, n_, inverse_)) return;
  wide::square(product_, a, n_, products_);
  reduceRows(r, product_, m_, n_, inverse_);
}

void Montgomery::twice(Limb* r) noexcept {
  for (Digit over = addLimbs(r, r, r, n_); over != 0;) over -= subLimbs(r, r, m_, n_);
}

void Montgomery::reduceOnce(Limb* r) noexcept {
  if (compareLimbs(r, m_, n_) >= 0) subLimbs(r, r, m_, n_);
}

void Montgomery::leave(Limb* r, const Limb* a) noexcept {
  copyLimbs(product_, a, n_);
  zeroLimbs(product_ + n_, n_);
  reduceRows(r, product_, m_, n_, inverse_);
  reduceOnce(r);
}

std::size_t Montgomery::enterScratch(std::size_t n, std::size_t an) noexcept {
  return n + (an + n + 1) + (an + 1) + divScratch(n);
}

void Montgomery::enter(Limb* r, const Limb* a, std::size_t an, Limb* scratch) noexcept {
  Limb* const d = scratch;
  Limb* const dividend = d + n_;
  Limb* const quotient = dividend + (an + n_ + 1);
  const auto shift = static_cast<unsigned>(std::countl_zero(Digit{m_[n_ - 1]}));
  shiftLimbsLeft(d, m_, n_, shift);
  zeroLimbs(dividend, n_);
  dividend[n_ + an] = shiftLimbsLeft(dividend + n_, a, an, shift);
  divLimbs(quotient, dividend, an + n_ + 1, d, n_, quotient + (an + 1));
  shiftLimbsRight(r, dividend, n_, shift);
}

Window windowFor(const QLInteger& exponent) noexcept {
  const std::uint64_t bits = exponent.BitLength();
  std::uint64_t products = 0;
  for (std::uint32_t i = 0; i < exponent.count; ++i) {
    products += static_cast<std::uint64_t>(std::popcount(exponent.words[i]));
  }
  Window best{1};
  for (unsigned w = 2; w <= 10; ++w) {
    const std::uint64_t needed = (std::uint64_t{1} << (w - 1)) + bits / (w + 1);
    if (needed < products) {
      products = needed;
      best.bits = w;
    }
  }
  return best;
}

bool powerOf(Montgomery& by, Limb* result, const Limb* base, const Limb* plain,
             const QLInteger& exponent, Window window, Limb* table) noexcept {
  const std::size_t n = by.limbs();
  copyLimbs(table, base, n);
  if (window.bits > 1) {
    by.square(result, base);
    for (std::size_t i = 1; i < window.powers(); ++i) {
      by.multiply(table + i * n, table + (i - 1) * n, result);
    }
  }
  bool first = true;
  // From the top bit down: [next, top) are the bits that are left.
  for (std::uint32_t left = exponent.BitLength(); left != 0;) {
    if (!exponent.TestBit(left - 1)) {
      by.square(result, result);
      --left;
      continue;
    }
    std::uint32_t low = left - std::min<std::uint32_t>(left, window.bits);
    while (!exponent.TestBit(low)) ++low;
    std::size_t index = 0;
    for (std::uint32_t i = left; i-- > low;) {
      index = index * 2 + (exponent.TestBit(i) ? 1 : 0);
      if (!first) by.square(result, result);
    }
    left = low;
    const Limb* const factor = table + index / 2 * n;
    if (first) {
      copyLimbs(result, factor, n);
      first = false;
    } else if (left == 0 && window.bits == 1 && plain != nullptr) {
      by.multiply(result, result, plain);
      return true;
    } else {
      by.multiply(result, result, factor);
    }
  }
  return false;
}

bool modPow(const QLInteger& base, const QLInteger& exponent, const QLInteger& modulus,
            QLInteger& result) {
  if (modulus.IsNegative() || modulus.IsEven() || modulus == 1 || base.IsNegative()) return false;
  if (!base.IsNonZero() || modulus.words[modulus.count - 1] == 0) return false;
  const std::size_t n = limbsFor(modulus.count), an = limbsFor(base.count);
  const Window window = windowFor(exponent);
  makeRoom(result, 2 * n);
  Montgomery by(modulus, 2 * n + an + window.powers() * n + Montgomery::enterScratch(n, an));
  Limb* const power = by.take(n);
  Limb* const entered = by.take(n);
  Limb* const own = by.take(an);
  Limb* const table = by.take(window.powers() * n);
  limbsOfWords(own, base.words, base.count);
  by.enter(entered, own, an, by.take(0));
  const bool below = an == n && compareLimbs(own, by.modulus(), n) < 0;
  if (powerOf(by, power, entered, below ? own : nullptr, exponent, window, table)) {
    by.reduceOnce(power);
  } else {
    by.leave(power, power);
  }
  setLimbs(result, power, n);
  return true;
}

}  // namespace wide
}  // namespace ulm::bignum::kernel
