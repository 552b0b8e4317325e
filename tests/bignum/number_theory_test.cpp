#include "bignum/number_theory.h"

#include <gtest/gtest.h>

#include <numeric>

#include "bignum/constants.h"
#include "tests/bignum/operands.h"

namespace ulm::bignum::test {
namespace {

TEST(NumberTheory, PowersAtTheirEdges) {
  const std::int32_t powers[][3] = {{0, 0, 0},  {5, 0, 1},  {5, 1, 5},   {-2, 3, -8},
                                    {-2, 2, 4}, {2, -3, 8}, {-1, 7, -1}, {1, 99, 1}};
  for (const auto& [base, exponent, power] : powers) EXPECT_EQ(Pow(base, exponent), power);
  const std::int32_t modular[][4] = {{7, 0, 1, 1},   {7, 0, 0, 1},        {2, 10, 1000, 24},
                                     {9, 1, 5, 4},   {-9, 1, 5, -4},      {9, 1, 0, 9},
                                     {9, 2, 0, 0},   {0, 3, 0, 0},        {3, 5, 1, 0},
                                     {-3, 3, 5, -2}, {65, 17, 3233, 2790}};
  for (const auto& [base, exponent, modulus, power] : modular) {
    QLInteger result(kEmptyHolder);
    ModPow(base, exponent, modulus, result);
    EXPECT_EQ(result, power) << base << '^' << exponent << " mod " << modulus;
  }
}

TEST(NumberTheory, DivisorsAtTheirEdges) {
  QLInteger result(99);
  EXPECT_FALSE(Gcd(0, 5, result));
  EXPECT_FALSE(Gcd(5, 0, result));
  EXPECT_EQ(result, 99);
  const std::int32_t divisors[][3] = {{12, 18, 6}, {-6, 4, -2}, {4, -6, -2}, {5, 5, 5}};
  for (const auto& [a, b, divisor] : divisors) {
    EXPECT_TRUE(Gcd(a, b, result));
    EXPECT_EQ(result, divisor) << a << ' ' << b;
  }
  EXPECT_FALSE(AreCoprime(3, -4));
  EXPECT_TRUE(AreCoprime(-3, 4));
  EXPECT_FALSE(AreCoprime(1, 0));
  EXPECT_FALSE(AreCoprime(6, 4));
  const std::int32_t extended[][5] = {{240, 46, 2, -9, 47}, {46, 240, 2, 47, -9}, {7, 3, 1, 1, -2},
                                      {7, 0, 7, 1, 0},      {7, -3, 7, 1, 0},     {-7, 3, 3, 0, 1}};
  for (const auto& [a, b, g, x, y] : extended) {
    QLInteger outG, outX, outY;
    EXPECT_TRUE(ExtendedGcd(a, b, outG, outX, outY));
    EXPECT_TRUE(outG == g && outX == x && outY == y) << a << ' ' << b;
  }
}

TEST(NumberTheory, RootsAreFloors) {
  const std::pair<QLInteger, QLInteger> roots[] = {{-4, 0},
                                                   {0, 0},
                                                   {1, 1},
                                                   {15, 3},
                                                   {16, 4},
                                                   {PowerOfTwo(64), PowerOfTwo(32)},
                                                   {PowerOfTwo(64) - 1, PowerOfTwo(32) - 1}};
  for (const auto& [square, root] : roots) EXPECT_EQ(IntegerSqrt(square), root) << square;
}

// Against plain trial division, for every number up to a bound.
TEST(NumberTheory, PrimesAgreeWithTrialDivision) {
  const auto isPrime = [](int n) {
    for (int d = 2; d * d <= n; ++d) {
      if (n % d == 0) return false;
    }
    return n >= 2;
  };
  for (int n = -3; n < 3000; ++n) {
    EXPECT_EQ(IsProbablePrime(n, 18, 18), isPrime(n)) << n;
    QLInteger next;
    NextPrime(n, next);
    int expected = n == 2 ? 3 : std::max(n, 2);
    while (!isPrime(expected)) ++expected;
    EXPECT_EQ(next, expected) << n;
  }
}

TEST(NumberTheory, PseudoprimesAreToldApart) {
  EXPECT_TRUE(FermatTest(341, 2));
  EXPECT_FALSE(RabinMillerTest(341, 2));
  EXPECT_TRUE(RabinMillerTest(2047, 2));
  EXPECT_FALSE(RabinMillerTest(2047, 3));
  EXPECT_FALSE(RabinMillerTest(7, 7));  // a base that shares a factor
  EXPECT_FALSE(RabinMillerTest(7, 0));
  EXPECT_TRUE(RabinMillerTest(17, 20));  // the odd part of n - 1 is 1 and the base above n
  EXPECT_FALSE(FermatTest(1, 2));
  EXPECT_TRUE(FermatTest(3, 3));
  EXPECT_FALSE(IsProbablePrime(39, 18, 0));
  EXPECT_FALSE(IsProbablePrime(49, 18, 0));
  EXPECT_TRUE(IsProbablePrime(53, 18, 0));
  EXPECT_TRUE(IsProbablePrime(-8, 0, 0));
  EXPECT_FALSE(IsProbablePrime(1, 1, 0));
  EXPECT_FALSE(IsProbablePrime(5, 0, 3));  // the strong test refuses its own base
  EXPECT_TRUE(IsProbablePrime(561 + 2, 99, 4));
  const QLInteger mersenne = PowerOfTwo(521) - 1;
  EXPECT_TRUE(IsProbablePrime(mersenne, 2, 2));
  QLInteger same(24);
  NextPrime(same, same);
  EXPECT_EQ(same, 29);
}

}  // namespace
}  // namespace ulm::bignum::test
