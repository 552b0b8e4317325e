// The rows of products by the instructions MULX, ADCX and ADOX of x86-64, with the contracts of
// bignum/kernel/wide/limbs.h. To be called where usesMulx alone.
#pragma once

#include "bignum/kernel/wide/limbs.h"

#if defined(__x86_64__) && !defined(__ILP32__)  // pointers have 64 bits
#define ULM_LIMBS_X86 1

namespace ulm::bignum::kernel {
inline namespace wide {
namespace x86 {

// high:low / d, where high < d: each processor has it.
inline Digit quotientOf(Digit high, Digit low, Digit d) noexcept {
  Digit rest;
  asm("divq %[d]" : "+a"(low), "=d"(rest) : [d] "r"(d), "d"(high) : "cc");
  return low;
}

// Whether the processor has them. False until static initialisation has looked; then nothing but a
// test changes it.
extern bool usesMulx;

Digit addLimbs(Limb* r, const Limb* a, const Limb* b, std::size_t n) noexcept;
Digit subLimbs(Limb* r, const Limb* a, const Limb* b, std::size_t n) noexcept;
Digit mulLimb(Limb* r, const Limb* a, std::size_t n, Digit b, Digit carry = 0) noexcept;
Digit addMulLimb(Limb* r, const Limb* a, std::size_t n, Digit b) noexcept;
Digit subMulLimb(Limb* r, const Limb* a, std::size_t n, Digit b) noexcept;
void mulRows(Limb* r, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) noexcept;
void sqrRows(Limb* r, const Limb* a, std::size_t n) noexcept;
void reduceRows(Limb* t, const Limb* m, std::size_t n, Digit inverse) noexcept;

// r = a * b for n limbs each, and r = a * b / 2^(64 n) modulo m as mulReduced. Return false where n
// is above 4. In the first r is separate from a and b.
bool mulShort(Limb* r, const Limb* a, const Limb* b, std::size_t n) noexcept;
bool mulReducedShort(Limb* r, const Limb* a, const Limb* b, const Limb* m, std::size_t n,
                     Digit inverse) noexcept;

}  // namespace x86
}  // namespace wide
}  // namespace ulm::bignum::kernel
#endif
