// The rows of products by the instructions MULX, ADCX and ADOX of x86-64, with the contracts of
// bignum/kernel/wide/limbs.h. To be called where usesMulx alone.
#pragma once

#include "bignum/kernel/wide/limbs.h"

#if defined(__x86_64__) && !defined(__ILP32__)  // pointers have 64 bits
#define ULM_LIMBS_X86 1

namespace ulm::bignum::kernel {
inline namespace wide {
namespace x86 {

// Whether the processor has them. False until static initialisation has looked; then nothing but a
// test changes it.
extern bool usesMulx;

Digit addLimbs(Limb* r, const Limb* a, const Limb* b, std::size_t n) noexcept;
Digit subLimbs(Limb* r, const Limb* a, const Limb* b, std::size_t n) noexcept;
Digit mulLimb(Limb* r, const Limb* a, std::size_t n, Digit b) noexcept;
Digit addMulLimb(Limb* r, const Limb* a, std::size_t n, Digit b) noexcept;
Digit subMulLimb(Limb* r, const Limb* a, std::size_t n, Digit b) noexcept;
void mulRows(Limb* r, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) noexcept;
void sqrRows(Limb* r, const Limb* a, std::size_t n) noexcept;
void reduceRows(Limb* t, const Limb* m, std::size_t n, Digit inverse) noexcept;

}  // namespace x86
}  // namespace wide
}  // namespace ulm::bignum::kernel
#endif
