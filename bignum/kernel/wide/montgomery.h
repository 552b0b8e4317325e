// Powers modulo an odd number, in Montgomery's form: x is represented by x * 2^(64 n) modulo m.
#pragma once

#include "bignum/kernel/wide/limbs.h"
#include "bignum/kernel/wide/scratch.h"

namespace ulm::bignum::kernel {
inline namespace wide {

// A modulus with the working space of products. What it works on has n limbs and may be above the
// modulus.
class Montgomery {
 public:
  // The modulus is odd and above 1, and stays unchanged while this lives. `extra` limbs are for the
  // user, who takes them by take().
  Montgomery(const QLInteger& modulus, std::size_t extra);
  Montgomery(const Montgomery&) = delete;
  Montgomery& operator=(const Montgomery&) = delete;
  // The powers of a secret do not stay in freed memory.
  ~Montgomery();

  std::size_t limbs() const noexcept { return n_; }
  const Limb* modulus() const noexcept { return m_; }
  Limb* take(std::size_t limbs) noexcept { return scratch_.take(limbs); }

  // r = a * b and r = a * a, all in this form. Operands may be the result.
  void multiply(Limb* r, const Limb* a, const Limb* b) noexcept;
  void square(Limb* r, const Limb* a) noexcept;
  // r = 2 r.
  void twice(Limb* r) noexcept;
  // r, out of this form and below the modulus. r may be a.
  void leave(Limb* r, const Limb* a) noexcept;
  // Takes the modulus off once where r, below twice the modulus, is not below it.
  void reduceOnce(Limb* r) noexcept;
  // r = a number of an limbs, in this form and below the modulus. scratch: enterScratch limbs.
  static std::size_t enterScratch(std::size_t n, std::size_t an) noexcept;
  void enter(Limb* r, const Limb* a, std::size_t an, Limb* scratch) noexcept;

 private:
  static std::size_t limbsTaken(std::size_t n) noexcept { return 3 * n + productScratch(n); }

  std::size_t n_;
  std::size_t total_;
  OwnScratch scratch_;
  Limb* start_;
  Limb* m_;
  Limb* product_;
  Limb* products_;  // scratch of a product
  Digit inverse_;
};

// The bits of a window, and the odd powers that it takes: those below 2^bits.
struct Window {
  unsigned bits;
  std::size_t powers() const noexcept { return std::size_t{1} << (bits - 1); }
};
// The window of the fewest products for this exponent.
Window windowFor(const QLInteger& exponent) noexcept;

// result = base^exponent, in Montgomery's form; the exponent is not zero. base is in this form.
//   table  window.powers() * n limbs
//   plain  null, or the base itself, below the modulus: if it is used the result is out of this
//          form and below twice the modulus, and true is returned
bool powerOf(Montgomery& by, Limb* result, const Limb* base, const Limb* plain,
             const QLInteger& exponent, Window window, Limb* table) noexcept;

}  // namespace wide
}  // namespace ulm::bignum::kernel
