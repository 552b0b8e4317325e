// Common divisors by Lehmer's method: the quotients of Euclid's algorithm are found from the top
// 128 bits of both numbers as long as these prove them, and then applied to the numbers at once.
#include <algorithm>
#include <bit>
#include <utility>

#include "bignum/kernel/methods.h"
#include "bignum/kernel/wide/limbs.h"
#include "bignum/kernel/wide/scratch.h"

namespace ulm::bignum::kernel {
inline namespace wide {
namespace {

// Some steps of Euclid's algorithm. With an even number of them the pair (a, b) becomes
// (u0 a - v0 b, v1 b - u1 a), with an odd number (v0 b - u0 a, u1 a - v1 b).
struct Steps {
  Digit u0 = 1, v0 = 0, u1 = 0, v1 = 1;
  unsigned count = 0;
};

Digit upper(Double v) noexcept { return static_cast<Digit>(v >> kLimbBits); }

// q = x / y and z = x - q y, where y has more than 64 bits.
void quotientOf(Double x, Double y, Digit& q, Double& z) noexcept {
  if (upper(y) >> 32 != 0) {
    // Never too small, and too large by one at the most: q has 32 bits at most, so that
    // q / upper(y) is below 1.
    q = upper(x) / upper(y);
    z = x - q * y;
    if (z >= y) {  // below zero, and so wrapped
      z += y;
      --q;
    }
    return;
  }
  q = static_cast<Digit>(x / y);
  z = x - q * y;
}

// The steps that hold for all pairs of numbers which start with the bits x and y, x >= y. After a
// step to (y, z), with the cofactors v1 and v2 of the second number, which are no smaller than
// those of the first, the true remainders are within v1 and v2 of these (counted in the last bit of
// x): so the quotient is the true one if z >= v2 and y - z >= v1 + v2.
Steps stepsOf(Double x, Double y) noexcept {
  Steps steps;
  while (upper(y) != 0) {
    // Three of four quotients are below 5.
    Digit q = 1;
    Double z = x - y;
    while (z >= y && q < 4) {
      z -= y;
      ++q;
    }
    if (z >= y) quotientOf(x, y, q, z);
    // These fit: v2 y is at most the x of the first step, and y has more than 64 bits.
    const Digit u2 = steps.u0 + q * steps.u1, v2 = steps.v0 + q * steps.v1;
    if (z < v2 || y - z < Double{v2} + steps.v1) break;
    steps.u0 = std::exchange(steps.u1, u2);
    steps.v0 = std::exchange(steps.v1, v2);
    ++steps.count;
    x = y;
    y = z;
  }
  return steps;
}

// The limbs index and below it shifted up by s bits: 128 bits. index is at least 1; limbs below the
// array are zero.
Double topBits(const Limb* a, std::size_t index, unsigned s) noexcept {
  const Double both = Double{a[index]} << kLimbBits | a[index - 1];
  if (s == 0) return both;
  const Digit third = index >= 2 ? Digit{a[index - 2]} : 0;
  return both << s | third >> (kLimbBits - s);
}

// r = p a - q b, which is not negative and fits n limbs.
void difference(Limb* r, const Limb* a, Digit p, const Limb* b, Digit q, std::size_t n) noexcept {
  mulLimb(r, a, n, p);
  subMulLimb(r, b, n, q);
}

// The two numbers of Euclid's algorithm, a >= b, in n limbs, and its working space.
struct Pair {
  Limb* a;
  Limb* b;
  Limb* next;
  Limb* other;
  Limb* quotient;
  Limb* rest;  // scratch of a division
  std::size_t an;
  std::size_t bn;  // 0 when b is zero

  static std::size_t limbsTaken(std::size_t n) noexcept { return 6 * n + 8 + divScratch(n); }

  Pair(Limb* scratch, std::size_t n) noexcept
      : a(scratch),
        b(a + n + 1),
        next(b + n + 1),
        other(next + n + 1),
        quotient(other + n + 1),
        rest(quotient + n + 2),
        an(0),
        bn(0) {}

  // Returns whether the two were exchanged.
  bool load(const QLInteger& first, const QLInteger& second) noexcept {
    const bool exchanged = first.CompareMagnitude(second) < 0;
    const QLInteger& larger = exchanged ? second : first;
    const QLInteger& smaller = exchanged ? first : second;
    limbsOfWords(a, larger.words, larger.count);
    limbsOfWords(b, smaller.words, smaller.count);
    an = significant(a, limbsFor(larger.count));
    bn = significant(b, limbsFor(smaller.count));
    return exchanged;
  }

  // Both steps and their application; none where the top bits prove none.
  Steps lehmer() noexcept {
    if (bn < 2 || an > bn + 1) return {};
    const auto s = static_cast<unsigned>(std::countl_zero(Digit{a[an - 1]}));
    if (bn < an) b[an - 1] = 0;
    const Steps steps = stepsOf(topBits(a, an - 1, s), topBits(b, an - 1, s));
    if (steps.count == 0) return steps;
    if (steps.count % 2 == 0) {
      difference(next, a, steps.u0, b, steps.v0, an);
      difference(other, b, steps.v1, a, steps.u1, an);
    } else {
      difference(next, b, steps.v0, a, steps.u0, an);
      difference(other, a, steps.u1, b, steps.v1, an);
    }
    std::swap(a, next);
    std::swap(b, other);
    an = significant(a, an);
    bn = significant(b, an);
    return steps;
  }

  // (a, b) becomes (b, a modulo b); the quotient is left, its limbs are returned.
  std::size_t divide() noexcept {
    const auto s = static_cast<unsigned>(std::countl_zero(Digit{b[bn - 1]}));
    const std::size_t used = an + 1;
    a[an] = shiftLimbsLeft(a, a, an, s);
    shiftLimbsLeft(next, b, bn, s);
    divLimbs(quotient, a, used, next, bn, rest);
    const std::size_t qn = significant(quotient, used - bn);
    shiftLimbsRight(a, a, bn, s);
    std::swap(a, b);
    an = bn;
    bn = significant(b, an);
    return qn;
  }
};

// The greatest common divisor of two numbers that are not zero.
Digit divisorOf(Digit a, Digit b) noexcept {
  const int twos = std::countr_zero(a | b);
  a >>= std::countr_zero(a);
  while (b != 0) {
    b >>= std::countr_zero(b);
    const Digit less = std::min(a, b);
    b = std::max(a, b) - less;
    a = less;
  }
  return a << twos;
}

// Euclid's algorithm to its end.
Steps allStepsOf(Digit& x, Digit y) noexcept {
  Steps steps;
  while (y != 0) {
    const Digit q = x / y;
    x = std::exchange(y, x - q * y);
    steps.u0 = std::exchange(steps.u1, steps.u0 + q * steps.u1);
    steps.v0 = std::exchange(steps.v1, steps.v0 + q * steps.v1);
    ++steps.count;
  }
  return steps;
}

// The magnitudes of two cofactors that follow each other in Euclid's algorithm. Their signs differ.
struct Cofactors {
  Limb* x0;
  Limb* x1;
  Limb* next;
  Limb* other;
  Limb* rest;     // scratch of a product
  std::size_t n;  // limbs of both

  // A cofactor is no longer than the numbers; a sum or product may take two limbs more.
  static std::size_t limbsTaken(std::size_t n) noexcept {
    return 4 * (2 * n + 4) + 10 * (n + 2) + 64;
  }

  Cofactors(Limb* scratch, std::size_t most) noexcept
      : x0(scratch),
        x1(x0 + 2 * most + 4),
        next(x1 + 2 * most + 4),
        other(next + 2 * most + 4),
        rest(other + 2 * most + 4),
        n(1) {
    x0[0] = 1;
    x1[0] = 0;
  }

  void apply(const Steps& steps) noexcept {
    sum(next, x0, steps.u0, x1, steps.v0);
    sum(other, x0, steps.u1, x1, steps.v1);
    std::swap(x0, next);
    std::swap(x1, other);
    n = std::max<std::size_t>({significant(x0, n + 2), significant(x1, n + 2), 1});
  }

  // A step with a quotient of qn limbs, at least 1.
  void divide(const Limb* quotient, std::size_t qn) noexcept {
    std::size_t length = n + qn;
    if (n >= qn) {
      mul(next, x1, n, quotient, qn, rest);
    } else {
      mul(next, quotient, qn, x1, n, rest);
    }
    next[length] = addLimbs(next, next, x0, n);
    next[length] = addLimb(next + n, qn, next[length]);
    length = std::max<std::size_t>(significant(next, length + 1), n);
    zeroLimbs(x1 + n, length - n);
    std::swap(x0, x1);
    std::swap(x1, next);
    n = std::max<std::size_t>({significant(x0, length), significant(x1, length), 1});
  }

 private:
  // r = p a + q b, in n + 2 limbs. The last pair's second cofactor, which no result has, takes all
  // of them for some numbers; another one hardly ever does.
  void sum(Limb* r, const Limb* a, Digit p, const Limb* b, Digit q) const noexcept {
    r[n] = mulLimb(r, a, n, p);
    r[n + 1] = 0;
    const Digit carry = addMulLimb(r, b, n, q);
    addLimb(r + n, 2, carry);
  }
};

std::size_t limbsOf(const QLInteger& a, const QLInteger& b) noexcept {
  return limbsFor(std::max(a.count, b.count));
}

}  // namespace

bool reduceToDivisor(QLInteger& r, QLInteger& t) {
  if (!r.IsPositive() || !t.IsPositive()) return false;
  const std::size_t n = limbsOf(r, t);
  OwnScratch scratch(Pair::limbsTaken(n));
  Pair pair(scratch.take(Pair::limbsTaken(n)), n);
  pair.load(r, t);
  while (pair.bn > 1) {
    if (pair.lehmer().count == 0) pair.divide();
  }
  if (pair.bn == 1 && pair.an > 1) pair.divide();
  if (pair.bn == 1) pair.a[0] = divisorOf(pair.a[0], pair.b[0]);
  makeRoom(r, 2 * pair.an);
  setLimbs(r, pair.a, pair.an);
  return true;
}

bool extendedGcd(const QLInteger& a, const QLInteger& b, QLInteger& g, QLInteger& x, QLInteger& y) {
  if (!a.IsPositive() || !b.IsPositive()) return false;
  const std::size_t n = limbsOf(a, b);
  OwnScratch scratch(Pair::limbsTaken(n) + Cofactors::limbsTaken(n));
  Pair pair(scratch.take(Pair::limbsTaken(n)), n);
  Cofactors cofactors(scratch.take(Cofactors::limbsTaken(n)), n);
  std::uint64_t steps = 0;
  if (pair.load(a, b)) {  // the first quotient was 0
    std::swap(cofactors.x0, cofactors.x1);
    ++steps;
  }
  while (pair.bn != 0) {
    Steps found;
    if (pair.an == 1) {
      Digit divisor = pair.a[0];
      found = allStepsOf(divisor, pair.b[0]);
      pair.a[0] = divisor;
      pair.bn = 0;
    } else {
      found = pair.lehmer();
    }
    steps += found.count;
    if (found.count != 0) {
      cofactors.apply(found);
    } else {
      const std::size_t qn = pair.divide();
      cofactors.divide(pair.quotient, qn);
      ++steps;
    }
  }
  // The last remainder that is not zero is a x + b y: y follows.
  QLInteger divisor(static_cast<std::uint32_t>(2 * pair.an), 0);
  setLimbs(divisor, pair.a, pair.an);
  QLInteger ofA(static_cast<std::uint32_t>(2 * cofactors.n), 0);
  setLimbs(ofA, cofactors.x0, cofactors.n);
  if (steps % 2 != 0) ofA.MakeNegative();
  QLInteger ofB = (divisor - a * ofA) / b;
  g.Swap(divisor);
  x.Swap(ofA);
  y.Swap(ofB);
  return true;
}

}  // namespace wide
}  // namespace ulm::bignum::kernel
