// Tests and search of probable primes. A strong test passed implies Fermat's to the same base, so
// each base takes one power.
#include <algorithm>
#include <array>

#include "bignum/constants.h"
#include "bignum/kernel/methods.h"
#include "bignum/kernel/wide/montgomery.h"

namespace ulm::bignum::kernel {
inline namespace wide {
namespace {

// An odd number above all bases, in Montgomery's form.
class Candidate {
 public:
  explicit Candidate(const QLInteger& n)
      : minusOne_(n - 1),
        odd_(n - 1),
        n_(limbsFor(n.count)),
        by_(n, 4 * n_ + kMostWindow.powers() * n_ + Montgomery::enterScratch(n_, 1)),
        one_(by_.take(n_)),
        minus_(by_.take(n_)),
        base_(by_.take(n_)),
        power_(by_.take(n_)),
        table_(by_.take(kMostWindow.powers() * n_)),
        scratch_(by_.take(0)) {
    while (odd_.IsEven()) {
      std::uint32_t zeros = 0;
      while (!odd_.TestBit(zeros)) ++zeros;
      odd_ >>= zeros;
      twos_ += zeros;
    }
    const Limb digit(1);
    by_.enter(one_, &digit, 1, scratch_);
    subLimbs(minus_, by_.modulus(), one_, n_);
  }

  bool passesFermat(std::uint32_t base) noexcept {
    raise(base, minusOne_);
    return equals(one_);
  }

  // A base that shares a factor with the number is never 1 or -1 in any power, and fails.
  bool passesStrong(std::uint32_t base) noexcept {
    raise(base, odd_);
    if (equals(one_) || equals(minus_)) return true;
    for (std::uint32_t i = 1; i < twos_; ++i) {
      by_.square(power_, power_);
      by_.reduceOnce(power_);
      if (equals(minus_)) return true;
      if (equals(one_)) return false;
    }
    return false;
  }

 private:
  static constexpr Window kMostWindow{7};

  void raise(std::uint32_t base, const QLInteger& exponent) noexcept {
    const Limb digit(base);
    by_.enter(base_, &digit, 1, scratch_);
    Window window = windowFor(exponent);
    window.bits = std::min(window.bits, kMostWindow.bits);
    powerOf(by_, power_, base_, nullptr, exponent, window, table_);
  }

  // Values of this form may be above the modulus, by less than 2^(64 n).
  bool equals(const Limb* value) noexcept {
    by_.leave(base_, power_);
    Limb* const other = scratch_;
    by_.leave(other, value);
    return compareLimbs(base_, other, n_) == 0;
  }

  QLInteger minusOne_;
  QLInteger odd_;
  std::uint32_t twos_ = 0;
  std::size_t n_;
  Montgomery by_;
  Limb* one_;
  Limb* minus_;
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

// The primes of the screen, from 3 up.
constexpr std::uint32_t kScreenBound = 4096;
constexpr auto kScreenPrimes = [] {
  std::array<bool, kScreenBound> composite{};
  std::array<std::uint16_t, 563> primes{};
  std::size_t count = 0;
  for (std::uint32_t p = 3; p < kScreenBound; p += 2) {
    if (composite[p]) continue;
    primes[count++] = static_cast<std::uint16_t>(p);
    for (std::uint32_t multiple = p * p; multiple < kScreenBound; multiple += 2 * p) {
      composite[multiple] = true;
    }
  }
  return primes;
}();
static_assert(kScreenPrimes.back() != 0, "the array has the size of the primes below the bound");

std::uint32_t powerModulo(std::uint32_t base, std::uint32_t exponent, std::uint32_t p) noexcept {
  std::uint64_t result = 1;
  for (std::uint64_t power = base % p; exponent != 0; exponent >>= 1) {
    if ((exponent & 1) != 0) result = result * power % p;
    power = power * power % p;
  }
  return static_cast<std::uint32_t>(result);
}

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
  QLInteger n(value);
  // n modulo each prime; n goes up by 2 and these with it.
  std::array<std::uint16_t, kScreenPrimes.size()> residues;
  std::transform(kScreenPrimes.begin(), kScreenPrimes.end(), residues.begin(),
                 [&n](std::uint32_t p) { return static_cast<std::uint16_t>(residue(n, p)); });
  for (;; n += 2) {
    bool refused = false;
    for (std::size_t i = 0; i < residues.size(); ++i) {
      const std::uint32_t p = kScreenPrimes[i];
      std::uint32_t r = residues[i];
      if (r == 0 && !refused) refused = factorRefuses(n, p);
      r += 2;
      residues[i] = static_cast<std::uint16_t>(r >= p ? r - p : r);
    }
    if (!refused && passes(n, 5, 3)) break;
  }
  value.Assign(n);
  return true;
}

}  // namespace wide
}  // namespace ulm::bignum::kernel
