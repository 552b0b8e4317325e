// Products of up to 4 limbs, whose sums stay in registers, with the contracts of
// bignum/kernel/wide/limbs_x86.h.
#include "bignum/kernel/wide/limbs_x86.h"

#ifdef ULM_LIMBS_X86

namespace ulm::bignum::kernel {
inline namespace wide {
namespace x86 {
namespace {

// The sum s += a * b for N limbs of a; it has N + 2. The low halves of the products go through the
// chain of ADCX and the high ones through that of ADOX.
#define ULM_SHORT_STEP(offset, at, above)                                                         \
  "mulx " #offset "(%[a]), %[low], %[high]\n\tadcx %[low], %[" #at "]\n\tadox %[high], %[" #above \
  "]\n\t"
#define ULM_SHORT_ROW(steps, top, above, ...)                                             \
  asm volatile("xor %k[low], %k[low]\n\t" steps "mov $0, %k[low]\n\tadcx %[low], %[" #top \
               "]\n\tadcx %[low], %[" #above "]\n\tadox %[low], %[" #above "]\n\t"        \
               : __VA_ARGS__, [low] "=&r"(low), [high] "=&r"(high)                        \
               : [a] "r"(a), "d"(b)                                                       \
               : "cc", "memory")
#define ULM_SUM(name) [name] "+&r"(name)

[[gnu::always_inline]] inline void addRow(const Limb* a, Digit b, Digit& s0, Digit& s1,
                                          Digit& s2) noexcept {
  Digit low, high;
  ULM_SHORT_ROW(ULM_SHORT_STEP(0, s0, s1), s1, s2, ULM_SUM(s0), ULM_SUM(s1), ULM_SUM(s2));
}
[[gnu::always_inline]] inline void addRow(const Limb* a, Digit b, Digit& s0, Digit& s1, Digit& s2,
                                          Digit& s3) noexcept {
  Digit low, high;
  ULM_SHORT_ROW(ULM_SHORT_STEP(0, s0, s1) ULM_SHORT_STEP(8, s1, s2), s2, s3, ULM_SUM(s0),
                ULM_SUM(s1), ULM_SUM(s2), ULM_SUM(s3));
}
[[gnu::always_inline]] inline void addRow(const Limb* a, Digit b, Digit& s0, Digit& s1, Digit& s2,
                                          Digit& s3, Digit& s4) noexcept {
  Digit low, high;
  ULM_SHORT_ROW(ULM_SHORT_STEP(0, s0, s1) ULM_SHORT_STEP(8, s1, s2) ULM_SHORT_STEP(16, s2, s3), s3,
                s4, ULM_SUM(s0), ULM_SUM(s1), ULM_SUM(s2), ULM_SUM(s3), ULM_SUM(s4));
}
[[gnu::always_inline]] inline void addRow(const Limb* a, Digit b, Digit& s0, Digit& s1, Digit& s2,
                                          Digit& s3, Digit& s4, Digit& s5) noexcept {
  Digit low, high;
  ULM_SHORT_ROW(ULM_SHORT_STEP(0, s0, s1) ULM_SHORT_STEP(8, s1, s2) ULM_SHORT_STEP(16, s2, s3)
                    ULM_SHORT_STEP(24, s3, s4),
                s4, s5, ULM_SUM(s0), ULM_SUM(s1), ULM_SUM(s2), ULM_SUM(s3), ULM_SUM(s4),
                ULM_SUM(s5));
}

// Stores a sum but for its upper two limbs; returns the lower one of these.
template <class... Above>
[[gnu::always_inline]] inline Digit storeSum(Limb* r, Digit lowest, Above... above) noexcept {
  if constexpr (sizeof...(above) == 1) {
    return lowest;
  } else {
    *r = lowest;
    return storeSum(r + 1, above...);
  }
}

// Each limb of b adds a row, and the lowest limb of the sum leaves it: the next row has the same
// sum one limb further. In an array the sum would not stay in registers.
template <unsigned Left, class... Above>
[[gnu::always_inline]] inline void mulOf(Limb* r, const Limb* a, const Limb* b, Digit& lowest,
                                         Above&... above) noexcept {
  if constexpr (Left == 0) {
    storeSum(r, lowest, above...);
  } else {
    addRow(a, *b, lowest, above...);
    *r = lowest;
    lowest = 0;
    mulOf<Left - 1>(r + 1, a, b + 1, above..., lowest);
  }
}

// The sum is below 2^(64 n) and the modulus together after each limb of b: it fits.
template <unsigned Left, class... Above>
[[gnu::always_inline]] inline Digit mulReducedOf(Limb* r, const Limb* a, const Limb* b,
                                                 const Limb* m, Digit inverse, Digit& lowest,
                                                 Above&... above) noexcept {
  if constexpr (Left == 0) {
    return storeSum(r, lowest, above...);
  } else {
    addRow(a, *b, lowest, above...);
    addRow(m, lowest * inverse, lowest, above...);
    // It is zero now, as the limb above the next sum has to be.
    return mulReducedOf<Left - 1>(r, a, b + 1, m, inverse, above..., lowest);
  }
}

}  // namespace

bool mulShort(Limb* r, const Limb* a, const Limb* b, std::size_t n) noexcept {
  Digit s0 = 0, s1 = 0, s2 = 0, s3 = 0, s4 = 0, s5 = 0;
  switch (n) {
    case 1:
      mulOf<1>(r, a, b, s0, s1, s2);
      return true;
    case 2:
      mulOf<2>(r, a, b, s0, s1, s2, s3);
      return true;
    case 3:
      mulOf<3>(r, a, b, s0, s1, s2, s3, s4);
      return true;
    case 4:
      mulOf<4>(r, a, b, s0, s1, s2, s3, s4, s5);
      return true;
    default:
      return false;
  }
}

bool mulReducedShort(Limb* r, const Limb* a, const Limb* b, const Limb* m, std::size_t n,
                     Digit inverse) noexcept {
  Digit s0 = 0, s1 = 0, s2 = 0, s3 = 0, s4 = 0, s5 = 0, over;
  switch (n) {
    case 1:
      over = mulReducedOf<1>(r, a, b, m, inverse, s0, s1, s2);
      break;
    case 2:
      over = mulReducedOf<2>(r, a, b, m, inverse, s0, s1, s2, s3);
      break;
    case 3:
      over = mulReducedOf<3>(r, a, b, m, inverse, s0, s1, s2, s3, s4);
      break;
    case 4:
      over = mulReducedOf<4>(r, a, b, m, inverse, s0, s1, s2, s3, s4, s5);
      break;
    default:
      return false;
  }
  if (over != 0) x86::subLimbs(r, r, m, n);
  return true;
}

}  // namespace x86
}  // namespace wide
}  // namespace ulm::bignum::kernel
#endif
