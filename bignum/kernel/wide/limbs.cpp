// The limbs' arithmetic in portable code, and the choice of what the processor does better.
#include "bignum/kernel/wide/limbs.h"

#include "bignum/kernel/wide/limbs_x86.h"

namespace ulm::bignum::kernel {
inline namespace wide {
namespace {

Digit low(Double v) noexcept { return static_cast<Digit>(v); }
Digit high(Double v) noexcept { return static_cast<Digit>(v >> kLimbBits); }

}  // namespace

#ifdef ULM_LIMBS_X86
#define ULM_BY_MULX(call) \
  if (x86::usesMulx) return x86::call
#else
#define ULM_BY_MULX(call) static_cast<void>(0)
#endif

#ifdef ULM_LIMBS_X86
Digit addLimbs(Limb* r, const Limb* a, const Limb* b, std::size_t n) noexcept {
  return x86::addLimbs(r, a, b, n);
}

Digit subLimbs(Limb* r, const Limb* a, const Limb* b, std::size_t n) noexcept {
  return x86::subLimbs(r, a, b, n);
}
#else
Digit addLimbs(Limb* r, const Limb* a, const Limb* b, std::size_t n) noexcept {
  Double carry = 0;
  for (std::size_t i = 0; i < n; ++i) {
    carry += Double{a[i]} + b[i];
    r[i] = low(carry);
    carry >>= kLimbBits;
  }
  return low(carry);
}

Digit subLimbs(Limb* r, const Limb* a, const Limb* b, std::size_t n) noexcept {
  Digit borrow = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const Double difference = Double{a[i]} - b[i] - borrow;
    r[i] = low(difference);
    borrow = high(difference) & 1;
  }
  return borrow;
}
#endif

Digit mulLimb(Limb* r, const Limb* a, std::size_t n, Digit b, Digit carry) noexcept {
  ULM_BY_MULX(mulLimb(r, a, n, b, carry));
  for (std::size_t i = 0; i < n; ++i) {
    const Double product = Double{a[i]} * b + carry;
    r[i] = low(product);
    carry = high(product);
  }
  return carry;
}

Digit addMulLimb(Limb* r, const Limb* a, std::size_t n, Digit b) noexcept {
  ULM_BY_MULX(addMulLimb(r, a, n, b));
  Digit carry = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const Double sum = Double{a[i]} * b + r[i] + carry;
    r[i] = low(sum);
    carry = high(sum);
  }
  return carry;
}

Digit subMulLimb(Limb* r, const Limb* a, std::size_t n, Digit b) noexcept {
  ULM_BY_MULX(subMulLimb(r, a, n, b));
  Digit borrow = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const Double product = Double{a[i]} * b + borrow;
    const Digit before = r[i];
    r[i] = before - low(product);
    borrow = high(product) + (before < low(product) ? 1 : 0);
  }
  return borrow;
}

Digit shiftLimbsLeft(Limb* r, const Limb* a, std::size_t n, unsigned s) noexcept {
  if (s == 0) {
    copyLimbs(r, a, n);
    return 0;
  }
  const unsigned rest = kLimbBits - s;
  Digit above = a[n - 1];
  const Digit out = above >> rest;
  for (std::size_t i = n - 1; i > 0; --i) {
    const Digit next = a[i - 1];
    r[i] = above << s | next >> rest;
    above = next;
  }
  r[0] = above << s;
  return out;
}

Digit shiftLimbsRight(Limb* r, const Limb* a, std::size_t n, unsigned s) noexcept {
  if (s == 0) {
    copyLimbs(r, a, n);
    return 0;
  }
  const unsigned rest = kLimbBits - s;
  Digit below = a[0];
  const Digit out = below << rest;
  for (std::size_t i = 0; i + 1 < n; ++i) {
    const Digit next = a[i + 1];
    r[i] = below >> s | next << rest;
    below = next;
  }
  r[n - 1] = below >> s;
  return out;
}

void mulRows(Limb* r, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) noexcept {
#ifdef ULM_LIMBS_X86
  if (x86::usesMulx && an == bn && x86::mulShort(r, a, b, an)) return;
#endif
  ULM_BY_MULX(mulRows(r, a, an, b, bn));
  r[an] = mulLimb(r, a, an, b[0]);
  for (std::size_t j = 1; j < bn; ++j) r[an + j] = addMulLimb(r + j, a, an, b[j]);
}

#ifdef ULM_LIMBS_X86
bool mulReduced(Limb* r, const Limb* a, const Limb* b, const Limb* m, std::size_t n,
                Digit inverse) noexcept {
  return x86::usesMulx && x86::mulReducedShort(r, a, b, m, n, inverse);
}
#else
bool mulReduced(Limb*, const Limb*, const Limb*, const Limb*, std::size_t, Digit) noexcept {
  return false;
}
#endif

void sqrRows(Limb* r, const Limb* a, std::size_t n) noexcept {
#ifdef ULM_LIMBS_X86
  if (x86::usesMulx && x86::mulShort(r, a, a, n)) return;
#endif
  ULM_BY_MULX(sqrRows(r, a, n));
  r[0] = 0;
  r[2 * n - 1] = 0;
  if (n > 1) r[n] = mulLimb(r + 1, a + 1, n - 1, a[0]);
  for (std::size_t j = 1; j + 1 < n; ++j) {
    r[n + j] = addMulLimb(r + 2 * j + 1, a + j + 1, n - 1 - j, a[j]);
  }
  Digit doubling = 0, carry = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const Double product = Double{a[i]} * a[i];
    const Double first = Double{r[2 * i]} * 2 + doubling;
    const Double second = Double{r[2 * i + 1]} * 2 + high(first);
    doubling = high(second);
    const Double lower = Double{low(first)} + low(product) + carry;
    const Double upper = Double{low(second)} + high(product) + high(lower);
    r[2 * i] = low(lower);
    r[2 * i + 1] = low(upper);
    carry = high(upper);
  }
}

void reduceRows(Limb* out, Limb* t, const Limb* m, std::size_t n, Digit inverse) noexcept {
#ifdef ULM_LIMBS_X86
  if (x86::usesMulx) {
    x86::reduceRows(t, m, n, inverse);
  } else
#endif
  {
    for (std::size_t j = 0; j < n; ++j) t[j] = addMulLimb(t + j, m, n, t[j] * inverse);
  }
  // Each row's top limb was kept where its lowest had become zero.
  if (addLimbs(out, t + n, t, n) != 0) subLimbs(out, out, m, n);
}

Digit reciprocal(Digit d) noexcept {
#ifdef ULM_LIMBS_X86
  return x86::quotientOf(~d, ~Digit{0}, d);
#else
  return static_cast<Digit>((Double{~d} << kLimbBits | ~Digit{0}) / d);
#endif
}

Digit divByLimb(Limb* q, const Limb* a, std::size_t n, Digit d, Digit inverse,
                Digit above) noexcept {
  while (n-- > 0) q[n] = divideDouble(above, a[n], d, inverse, above);
  return above;
}

}  // namespace wide
}  // namespace ulm::bignum::kernel
