#include "bignum/kernel/wide/limbs_x86.h"

#ifdef ULM_LIMBS_X86
#include <cpuid.h>

namespace ulm::bignum::kernel {
inline namespace wide {
namespace x86 {
namespace {

bool hasMulx() noexcept {
  constexpr unsigned kBmi2 = 1u << 8, kAdx = 1u << 19;
  unsigned a = 0, b = 0, c = 0, d = 0;
  return __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & kBmi2) != 0 && (b & kAdx) != 0;
}

// One limb of a row: the product's low half goes into the chain of ADCX with the high half of the
// product before, and the sum with r into the chain of ADOX. The high half moves on in the register
// that the next limb takes for its `in`.
#define ULM_ADD_STEP(offset, in, out)       \
  "mulx " #offset "(%[a]), %[low], %[" #out \
  "]\n\t"                                   \
  "adcx %[" #in                             \
  "], %[low]\n\t"                           \
  "adox " #offset                           \
  "(%[r]), %[low]\n\t"                      \
  "mov %[low], " #offset "(%[r])\n\t"
// r - x is the complement of ~r + x, and NOT changes no flag: the same two chains subtract.
#define ULM_SUB_STEP(offset, in, out)       \
  "mulx " #offset "(%[a]), %[low], %[" #out \
  "]\n\t"                                   \
  "mov " #offset                            \
  "(%[r]), %[old]\n\t"                      \
  "adcx %[" #in                             \
  "], %[low]\n\t"                           \
  "not %[old]\n\t"                          \
  "adox %[old], %[low]\n\t"                 \
  "not %[low]\n\t"                          \
  "mov %[low], " #offset "(%[r])\n\t"
#define ULM_STEPS_1(step) step(0, c, h)
#define ULM_STEPS_2(step) ULM_STEPS_1(step) step(8, h, c)
#define ULM_STEPS_3(step) ULM_STEPS_2(step) step(16, c, h)
#define ULM_STEPS_4(step) ULM_STEPS_3(step) step(24, h, c)
#define ULM_STEPS_5(step) ULM_STEPS_4(step) step(32, c, h)
#define ULM_STEPS_6(step) ULM_STEPS_5(step) step(40, h, c)
#define ULM_STEPS_7(step) ULM_STEPS_6(step) step(48, c, h)
#define ULM_STEPS_8(step) ULM_STEPS_7(step) step(56, h, c)

// A row of `Tail` limbs, 1 to 7, in one piece; both carries end in `last`.
#define ULM_ROW(tail, step, last)                                                                 \
  if constexpr (Tail == tail) {                                                                   \
    asm volatile(                                                                                 \
        "xor %k[zero], %k[zero]\n\t" ULM_STEPS_##tail(step) "adcx %[zero], %[" #last              \
                                                            "]\n\tadox %[zero], %[" #last "]\n\t" \
        : [c] "+&r"(c), [h] "=&r"(h), [low] "=&r"(low), [old] "=&r"(old), [zero] "=&r"(zero)      \
        : [r] "r"(r), [a] "r"(a), "d"(b)                                                          \
        : "cc", "memory");                                                                        \
    carry = last;                                                                                 \
  }
// Whole blocks of 8 limbs, without a break of the chains: what counts them changes no flag.
#define ULM_BLOCKS(step) \
  asm volatile("xor %k[zero], %k[zero]\n\t"                                              \
               "1:\n\t" ULM_STEPS_8(step) "lea 64(%[a]), %[a]\n\tlea 64(%[r]), %[r]\n\t" \
               "lea -1(%[n]), %[n]\n\tjrcxz 2f\n\tjmp 1b\n"                              \
               "2:\n\tadcx %[zero], %[c]\n\tadox %[zero], %[c]\n\t"                      \
               : [c] "+&r"(c), [h] "=&r"(h), [low] "=&r"(low), [old] "=&r"(old),         \
                 [zero] "=&r"(zero), [r] "+&r"(r), [a] "+&r"(a), [n] "+&c"(blocks)       \
               : "d"(b)                                                                  \
               : "cc", "memory")
#define ULM_ROW_FUNCTION(name, step)                                                              \
  template <unsigned Tail>                                                                        \
  [[gnu::always_inline]] inline Digit name(Limb* r, const Limb* a, std::size_t blocks, Digit b) { \
    Digit carry = 0;                                                                              \
    Digit c = 0, h, low, old, zero;                                                               \
    ULM_ROW(1, step, h)                                                                           \
    ULM_ROW(2, step, c)                                                                           \
    ULM_ROW(3, step, h)                                                                           \
    ULM_ROW(4, step, c)                                                                           \
    ULM_ROW(5, step, h)                                                                           \
    ULM_ROW(6, step, c)                                                                           \
    ULM_ROW(7, step, h)                                                                           \
    if (blocks == 0) return carry;                                                                \
    r += Tail;                                                                                    \
    a += Tail;                                                                                    \
    c = carry;                                                                                    \
    ULM_BLOCKS(step);                                                                             \
    return c;                                                                                     \
  }
ULM_ROW_FUNCTION(addMulRow, ULM_ADD_STEP)
ULM_ROW_FUNCTION(subMulRow, ULM_SUB_STEP)

// Calls what<n % 8>: the length of a row modulo 8 is known to the code of all rows.
template <template <unsigned> class What, class... Arguments>
inline Digit byTail(std::size_t n, Arguments... arguments) noexcept {
  switch (n % 8) {
    case 1:
      return What<1>::run(arguments...);
    case 2:
      return What<2>::run(arguments...);
    case 3:
      return What<3>::run(arguments...);
    case 4:
      return What<4>::run(arguments...);
    case 5:
      return What<5>::run(arguments...);
    case 6:
      return What<6>::run(arguments...);
    case 7:
      return What<7>::run(arguments...);
    default:
      return What<0>::run(arguments...);
  }
}

template <unsigned Tail>
struct AddMul {
  static Digit run(Limb* r, const Limb* a, std::size_t blocks, Digit b) noexcept {
    return addMulRow<Tail>(r, a, blocks, b);
  }
};
template <unsigned Tail>
struct SubMul {
  static Digit run(Limb* r, const Limb* a, std::size_t blocks, Digit b) noexcept {
    return subMulRow<Tail>(r, a, blocks, b);
  }
};
template <unsigned Tail>
struct MulRows {
  static Digit run(Limb* r, const Limb* a, std::size_t blocks, const Limb* b,
                   std::size_t bn) noexcept {
    const std::size_t an = 8 * blocks + Tail;
    for (std::size_t j = 1; j < bn; ++j) r[an + j] = addMulRow<Tail>(r + j, a, blocks, b[j]);
    return 0;
  }
};
template <unsigned Tail>
struct ReduceRows {
  static Digit run(Limb* t, const Limb* m, std::size_t blocks, std::size_t n,
                   Digit inverse) noexcept {
    for (std::size_t j = 0; j < n; ++j) t[j] = addMulRow<Tail>(t + j, m, blocks, t[j] * inverse);
    return 0;
  }
};

}  // namespace

bool usesMulx = hasMulx();

#define ULM_SUM_FUNCTION(name, instruction)                                                  \
  Digit name(Limb* r, const Limb* a, const Limb* b, std::size_t n) noexcept {                \
    Digit carry = 0, low;                                                                    \
    for (; n % 4 != 0; --n) {                                                                \
      asm volatile("neg %[carry]\n\tmov (%[a]), %[low]\n\t" instruction                      \
                   " (%[b]), %[low]\n\tmov %[low], (%[r])\n\tsbb %[carry], %[carry]\n\tneg " \
                   "%[carry]\n\t"                                                            \
                   : [carry] "+&r"(carry), [low] "=&r"(low)                                  \
                   : [r] "r"(r), [a] "r"(a), [b] "r"(b)                                      \
                   : "cc", "memory");                                                        \
      ++r;                                                                                   \
      ++a;                                                                                   \
      ++b;                                                                                   \
    }                                                                                        \
    if (n == 0) return carry;                                                                \
    std::size_t blocks = n / 4;                                                              \
    asm volatile(                                                                            \
        "neg %[carry]\n"                                                                     \
        "1:\n\t"                                                                             \
        "mov (%[a]), %[low]\n\t" instruction                                                 \
        " (%[b]), %[low]\n\tmov %[low], (%[r])\n\t"                                          \
        "mov 8(%[a]), %[low]\n\t" instruction                                                \
        " 8(%[b]), %[low]\n\tmov %[low], 8(%[r])\n\t"                                        \
        "mov 16(%[a]), %[low]\n\t" instruction                                               \
        " 16(%[b]), %[low]\n\tmov %[low], 16(%[r])\n\t"                                      \
        "mov 24(%[a]), %[low]\n\t" instruction                                               \
        " 24(%[b]), %[low]\n\tmov %[low], 24(%[r])\n\t"                                      \
        "lea 32(%[a]), %[a]\n\tlea 32(%[b]), %[b]\n\tlea 32(%[r]), %[r]\n\t"                 \
        "dec %[n]\n\tjnz 1b\n\t"                                                             \
        "sbb %[carry], %[carry]\n\tneg %[carry]\n\t"                                         \
        : [carry] "+&r"(carry), [low] "=&r"(low), [r] "+&r"(r), [a] "+&r"(a), [b] "+&r"(b),  \
          [n] "+&r"(blocks)                                                                  \
        :                                                                                    \
        : "cc", "memory");                                                                   \
    return carry;                                                                            \
  }
ULM_SUM_FUNCTION(addLimbs, "adc")
ULM_SUM_FUNCTION(subLimbs, "sbb")

Digit addMulLimb(Limb* r, const Limb* a, std::size_t n, Digit b) noexcept {
  return byTail<AddMul>(n, r, a, n / 8, b);
}

Digit subMulLimb(Limb* r, const Limb* a, std::size_t n, Digit b) noexcept {
  return byTail<SubMul>(n, r, a, n / 8, b);
}

Digit mulLimb(Limb* r, const Limb* a, std::size_t n, Digit b, Digit carry) noexcept {
  Digit low, high;
  for (; n % 4 != 0; --n) {
    asm volatile(
        "mulx (%[a]), %[low], %[high]\n\tadd %[carry], %[low]\n\tadc $0, %[high]\n\t"
        "mov %[low], (%[r])\n\t"
        : [low] "=&r"(low), [high] "=&r"(high)
        : [carry] "r"(carry), [r] "r"(r), [a] "r"(a), "d"(b)
        : "cc", "memory");
    carry = high;
    ++r;
    ++a;
  }
  if (n == 0) return carry;
  std::size_t blocks = n / 4;
  asm volatile(
      "xor %k[low], %k[low]\n"
      "1:\n\t"
      "mulx (%[a]), %[low], %[high]\n\tadc %[carry], %[low]\n\tmov %[low], (%[r])\n\t"
      "mulx 8(%[a]), %[low], %[carry]\n\tadc %[high], %[low]\n\tmov %[low], 8(%[r])\n\t"
      "mulx 16(%[a]), %[low], %[high]\n\tadc %[carry], %[low]\n\tmov %[low], 16(%[r])\n\t"
      "mulx 24(%[a]), %[low], %[carry]\n\tadc %[high], %[low]\n\tmov %[low], 24(%[r])\n\t"
      "lea 32(%[a]), %[a]\n\tlea 32(%[r]), %[r]\n\tdec %[n]\n\tjnz 1b\n\t"
      "adc $0, %[carry]\n\t"
      : [low] "=&r"(low), [high] "=&r"(high), [carry] "+&r"(carry), [r] "+&r"(r), [a] "+&r"(a),
        [n] "+&r"(blocks)
      : "d"(b)
      : "cc", "memory");
  return carry;
}

void mulRows(Limb* r, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) noexcept {
  r[an] = x86::mulLimb(r, a, an, b[0]);
  byTail<MulRows>(an, r, a, an / 8, b, bn);
}

void sqrRows(Limb* r, const Limb* a, std::size_t n) noexcept {
  // The products of different limbs, then twice these and the squares.
  r[0] = 0;
  r[2 * n - 1] = 0;
  if (n > 1) {
    r[n] = x86::mulLimb(r + 1, a + 1, n - 1, a[0]);
    for (std::size_t j = 1; j + 1 < n; ++j) {
      const std::size_t length = n - 1 - j;
      r[n + j] = byTail<AddMul>(length, r + 2 * j + 1, a + j + 1, length / 8, Digit{a[j]});
    }
  }
  // The chain of ADCX doubles, that of ADOX adds the squares; neither has a carry at the end. What
  // counts the limbs changes no flag.
  Digit low, high, first, second;
  asm volatile(
      "xor %k[low], %k[low]\n"
      "1:\n\t"
      "mov (%[a]), %%rdx\n\tmulx %%rdx, %[low], %[high]\n\t"
      "mov (%[r]), %[first]\n\tmov 8(%[r]), %[second]\n\t"
      "adcx %[first], %[first]\n\tadox %[low], %[first]\n\tmov %[first], (%[r])\n\t"
      "adcx %[second], %[second]\n\tadox %[high], %[second]\n\tmov %[second], 8(%[r])\n\t"
      "lea 8(%[a]), %[a]\n\tlea 16(%[r]), %[r]\n\t"
      "lea -1(%[n]), %[n]\n\tjrcxz 2f\n\tjmp 1b\n"
      "2:\n\t"
      : [low] "=&r"(low), [high] "=&r"(high), [first] "=&r"(first), [second] "=&r"(second),
        [r] "+&r"(r), [a] "+&r"(a), [n] "+&c"(n)
      :
      : "rdx", "cc", "memory");
}

void reduceRows(Limb* t, const Limb* m, std::size_t n, Digit inverse) noexcept {
  byTail<ReduceRows>(n, t, m, n / 8, n, inverse);
}

}  // namespace x86
}  // namespace wide
}  // namespace ulm::bignum::kernel
#endif
