// Tests and search of probable primes. A strong test passed implies Fermat's to the same base, so
// each base takes one power.
#include <algorithm>

#include "bignum/constants.h"
#include "bignum/kernel/methods.h"
#include "bignum/kernel/wide/montgomery.h"
#include "bignum/kernel/wide/screen.h"

namespace ulm::bignum::kernel {
inline namespace wide {
namespace {

// An odd number above all bases, in Montgomery's form.
class Candidate {
 public:
  explicit Candidate(const QLInteger& n)
      : number_(n),
        odd_(n),
        n_(limbsFor(n.count)),
        by_(n, 3 * n_ + kMostWindow.powers() * n_ + Montgomery::enterScratch(n_, 1)),
        one_(by_.take(n_)),
        base_(by_.take(n_)),
        power_(by_.take(n_)),
        table_(by_.take(kMostWindow.powers() * n_)),
        scratch_(by_.take(0)) {
    odd_.SetBit(0, false);
    while (!odd_.TestBit(twos_)) ++twos_;
    odd_ >>= twos_;
    const Limb digit(1);
    by_.enter(one_, &digit, 1, scratch_);
  }

  bool passesFermat(std::uint32_t base) {
    QLInteger exponent(number_);
    exponent.SetBit(0, false);
    raise(base, exponent);
    by_.leave(base_, power_);
    return isOne(base_);
  }

  // A base that shares a factor with the number is never 1 or -1 in any power, and fails.
  bool passesStrong(std::uint32_t base) noexcept {
    raise(base, odd_);
    by_.leave(base_, power_);
    if (isOne(base_) || isMinusOne(base_)) return true;
    for (std::uint32_t i = 1; i < twos_; ++i) {
      by_.square(power_, power_);
      by_.leave(base_, power_);
      if (isMinusOne(base_)) return true;
      if (isOne(base_)) return false;
    }
    return false;
  }

 private:
  static constexpr Window kMostWindow{7};

  // power_ = base^exponent. The exponent is not zero.
  void raise(std::uint32_t base, const QLInteger& exponent) noexcept {
    if (base == 2) {
      copyLimbs(power_, one_, n_);
      by_.twice(power_);
      for (std::uint32_t i = exponent.BitLength() - 1; i-- > 0;) {
        by_.square(power_, power_);
        if (exponent.TestBit(i)) by_.twice(power_);
      }
      return;
    }
    const Limb digit(base);
    by_.enter(base_, &digit, 1, scratch_);
    Window window = windowFor(exponent);
    window.bits = std::min(window.bits, kMostWindow.bits);
    powerOf(by_, power_, base_, nullptr, exponent, window, table_);
  }

  // Of values that are out of the form.
  bool isOne(const Limb* value) const noexcept {
    return Digit{value[0]} == 1 && significant(value, n_) == 1;
  }
  bool isMinusOne(const Limb* value) const noexcept {
    const Digit lowest = by_.modulus()[0];
    return Digit{value[0]} == lowest - 1 && compareLimbs(value + 1, by_.modulus() + 1, n_ - 1) == 0;
  }

  const QLInteger& number_;
  QLInteger odd_;
  std::uint32_t twos_ = 1;
  std::size_t n_;
  Montgomery by_;
  Limb* one_;
  Limb* base_;
  Limb* power_;
  Limb* table_;
  Limb* scratch_;
};

std::uint32_t baseAt(std::uint32_t i) noexcept { return PrimeWitnesses[i].words[0]; }

// n is odd and above the bases.
bool passes(const QLInteger& n, std::uint32_t fermatRounds, std::uint32_t rabinRounds) {
  Candidate candidate(n);
  for (std::uint32_t i = 0; i < std::max(fermatRounds, rabinRounds); ++i) {
    const bool passed =
        i < rabinRounds ? candidate.passesStrong(baseAt(i)) : candidate.passesFermat(baseAt(i));
    if (!passed) return false;
  }
  return true;
}

std::uint32_t powerModulo(std::uint32_t base, std::uint32_t exponent, std::uint32_t p) noexcept {
  std::uint64_t result = 1;
  for (std::uint64_t power = base % p; exponent != 0; exponent >>= 1) {
    if ((exponent & 1) != 0) result = result * power % p;
    power = power * power % p;
  }
  return static_cast<std::uint32_t>(result);
}

// Whether it is one of the bases of the first 5 Fermat tests.
bool isBase(std::uint32_t p) noexcept { return p == 3 || p == 5 || p == 7 || p == 11; }

std::uint32_t residue(const QLInteger& n, std::uint32_t p) noexcept {
  std::uint64_t rest = 0;
  for (std::uint32_t i = n.count; i-- > 0;) rest = (rest << kWordBits | n.words[i]) % p;
  return static_cast<std::uint32_t>(rest);
}

// Whether Fermat's test to the first 5 bases refuses n, a multiple of p above it. Where n passes
// them modulo p it may pass them altogether, composite as it is: then it must not be refused here.
bool factorRefuses(const QLInteger& n, std::uint32_t p) noexcept {
  const std::uint32_t exponent = (residue(n, p - 1) + p - 2) % (p - 1);
  for (std::uint32_t i = 0; i < 5; ++i) {
    if (powerModulo(baseAt(i), exponent, p) != 1) return true;  // 0 for a base that is p
  }
  return false;
}

}  // namespace

bool passesRounds(const QLInteger& n, std::uint32_t fermatRounds, std::uint32_t rabinRounds,
                  bool& passed) {
  if (n < 54 || n.IsEven()) return false;
  passed = passes(n, fermatRounds, rabinRounds);
  return true;
}

bool raiseToPrime(QLInteger& value) {
  if (value.IsNegative() || value.count < 2) return false;
  Screen screen(limbsFor(value.count));
  QLInteger start(value);
  QLInteger n(kEmptyHolder);
  for (;; start += static_cast<std::int32_t>(2 * screen.length())) {
    screen.look(start);
    for (std::uint32_t i = 0; i < screen.length(); ++i) {
      const std::uint32_t p = screen.factor(i);
      if (p != 0 && isBase(p)) continue;  // its power is 0 modulo p
      n.Assign(start);
      n += static_cast<std::int32_t>(2 * i);
      if ((p != 0 && factorRefuses(n, p)) || !passes(n, 5, 3)) continue;
      value.Assign(n);
      return true;
    }
  }
}

}  // namespace wide
}  // namespace ulm::bignum::kernel
