// The wide kernel held to the plain one, with every step of the walk, on operands that random
// numbers practically never are: long runs, exact multiples and their neighbours, equal top limbs.
#include <gtest/gtest.h>

#include <initializer_list>

#include "bignum/integer.h"
#include "bignum/kernel/wide/limbs_x86.h"
#include "bignum/number_theory.h"
#include "bignum/text.h"
#include "tests/bignum/operands.h"
#include "tests/bignum/twin_walk.h"

namespace ulm::bignum::test {
namespace {

// Rows by the processor's own instructions, and portable ones.
class Kernels : public testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
#ifdef ULM_LIMBS_X86
    kept_ = kernel::x86::usesMulx;
    if (GetParam() && !kept_) GTEST_SKIP() << "the processor has no MULX";
    kernel::x86::usesMulx = GetParam();
#else
    if (GetParam()) GTEST_SKIP() << "the rows are portable alone";
#endif
  }
  void TearDown() override {
#ifdef ULM_LIMBS_X86
    kernel::x86::usesMulx = kept_;
#endif
  }

  void expectEqual(const std::string& step, const std::vector<long long>& args,
                   const std::string& text = "") {
    const std::string faults = walk_.run(step, args, text);
    EXPECT_EQ(faults, "") << toString(walk_.get(0), 16).substr(0, 80) << " of "
                          << walk_.get(0).count << " words and "
                          << toString(walk_.get(1), 16).substr(0, 80) << " of "
                          << walk_.get(1).count;
  }
  // A number of `count` words: patterned, or long runs of ones and zeros by the seed.
  static QLInteger operand(std::uint32_t count, int kind, std::uint64_t seed) {
    if (kind < 6) return patterned(count, kind, seed, false);
    QLInteger made(count, 0);
    bool ones = true;
    for (std::uint32_t bit = 32 * count; bit > 0;) {
      seed = seed * 6364136223846793005u + 1442695040888963407u;
      for (auto run = static_cast<std::uint32_t>(seed >> 33) % (8 * count + 3) + 1;
           run > 0 && bit > 0; --run) {
        made.SetBit(--bit, ones);
      }
      ones = !ones;
    }
    return made;
  }
  // A dividend for b, with a quotient of about `count` words.
  static QLInteger dividendFor(const QLInteger& b, std::uint32_t count, int relation, int kind,
                               std::uint64_t seed) {
    const QLInteger q = operand(count, kind, seed);
    switch (relation) {
      case 0:
        return operand(count + b.count, kind, seed + 1);
      case 1:
        return b * q;
      case 2:
        return b * q - 1;
      case 3:
        return b * q + b - 1;
      default: {  // the top limbs of b, above other ones
        QLInteger a(b);
        a <<= 32 * count - (relation == 5 ? 1 : 0);
        a -= q;
        a.SetBit(32 * count, relation == 5);
        return a;
      }
    }
  }

  TwinWalk walk_;

 private:
  bool kept_ = false;
};

TEST_P(Kernels, ProductsQuotientsAndSumsAreTheSame) {
  std::uint64_t seed = 1;
  // Around the lengths from which methods change, counted in words, in both directions.
  for (const std::uint32_t n : std::initializer_list<std::uint32_t>{
           1, 2, 3, 4, 5, 6, 31, 33, 55, 57, 64, 87, 89, 111, 113, 226, 300}) {
    for (const std::uint32_t m :
         std::initializer_list<std::uint32_t>{1, 2, 3, 8, 31, 56, 57, 87, 113, 225, 340}) {
      for (int kind = 0; kind < 7; ++kind) {
        if (n * m > 20000 && (static_cast<std::uint32_t>(kind) + n) % 3 != 0) continue;
        const int relation = static_cast<int>(++seed % 6);
        const QLInteger b = operand(n, kind, seed);
        walk_.set(0, dividendFor(b, m, relation, (kind + static_cast<int>(m)) % 7, seed));
        walk_.set(1, b);
        walk_.set(4, operand(m, kind, seed + 2));
        if (seed % 3 == 0) expectEqual("Negate", {0});
        if (seed % 5 == 0) expectEqual("Negate", {1});
        expectEqual("Divide", {0, 1, 2, 3});
        expectEqual("Remainder", {0, 1, 5});
        expectEqual("Times", {6, 1, 4});
        expectEqual("Times", {7, 4, 4});
        expectEqual("Plus", {6, 0, 7});
        expectEqual("Minus", {6, 1, 7});
        expectEqual("AddMagnitude", {6, 1});
        expectEqual("MulSmall", {6, seed % 2 == 0 ? INT32_MIN : -1});
        expectEqual("AddSmall", {6, seed % 2 == 0 ? INT32_MIN : 1});
        expectEqual("Shl", {6, static_cast<long long>(seed % 70)});
        expectEqual("Shr", {6, static_cast<long long>(seed % 130)});
        expectEqual("SubtractMagnitude", {6, 0});
        expectEqual("Mod", {6, 1});
        expectEqual("Mul", {4, 4});
      }
    }
  }
}

// The reciprocal of a divisor's top two limbs is corrected twice for these, and their remainder in
// the second correction is above the top limb, or equal to it with a lower limb on either side.
TEST_P(Kernels, QuotientsByRareDivisorsAreTheSame) {
  std::uint64_t seed = 1;
  for (const char* top : {"8000000000000000FFFFFFFFFFFFFFFFh", "8000000000000000C000000000000001h",
                          "8832A43F0E979CF3B098838C8727F285h", "824D43C9CC11D357D08844DB04EEE93Ch",
                          "8BE5BB2F1CFB10F6EECB9AF077E691F4h"}) {
    for (const std::uint32_t lower : {0u, 3u}) {
      for (int relation = 0; relation < 12; ++relation) {
        QLInteger b = parseInteger(top);
        b <<= 32 * lower;
        if (lower != 0) b += operand(lower, relation % 2, ++seed);
        walk_.set(0, dividendFor(b, 8, relation % 6, relation / 6, ++seed));
        walk_.set(1, b);
        expectEqual("Divide", {0, 1, 2, 3});
      }
    }
  }
}

TEST_P(Kernels, RoutinesOnWordsAreTheSame) {
  for (std::uint32_t n = 1; n < 12; ++n) {
    for (int kind = 0; kind < 7; ++kind) {
      const auto count = static_cast<long long>(n);
      for (const char* step : {"AddWords", "SubtractWords", "CompareWords"}) {
        walk_.set(0, operand(n, kind, n));
        walk_.set(1, operand(n, 1, n));
        expectEqual(step, {0, 1, count});
        expectEqual(step, {0, 0, count});
        expectEqual(step, {0, 1, count - 1});
      }
      walk_.set(2, operand(n + 1, kind, 3 * n));
      walk_.set(3, QLInteger(n + 3, 0));
      expectEqual("MultiplyAddWord", {3, 2, count, 0xFFFFFFFF});
      expectEqual("MultiplyAddWord", {3, 2, count, 0x80000001});
      for (const long long shift : {0, 1, 31}) {
        expectEqual("ShiftLeftBits", {2, count, shift});
        expectEqual("ShiftRightBits", {2, count, shift});
      }
      expectEqual("ShiftRightOne", {2, count});
    }
  }
}

TEST_P(Kernels, PowersAreTheSame) {
  std::uint64_t seed = 1;
  for (const std::uint32_t n : std::initializer_list<std::uint32_t>{1, 2, 3, 4, 7, 16, 17}) {
    for (int kind = 0; kind < 7; ++kind) {
      for (const std::uint32_t e : {1u, 3u}) {
        ++seed;
        walk_.set(0, operand(n + static_cast<std::uint32_t>(seed % 3), kind, seed));
        walk_.set(1, e == 1 && kind % 2 == 0 ? QLInteger(65537 - kind) : operand(e, kind, seed));
        walk_.set(2, operand(n, (kind + 1) % 7, seed));
        if (seed % 4 != 0) expectEqual("SetBit", {2, 0, 1});
        if (seed % 7 == 0) expectEqual("Negate", {seed % 2 == 0 ? 0 : 2});
        expectEqual("ModPow", {0, 1, 2, 3});
        walk_.set(1, QLInteger(static_cast<std::int32_t>(seed % 5)));
        expectEqual("ModPow", {0, 1, 2, 3});
        expectEqual("Pow", {4, 0, 1});
      }
    }
  }
  // The exponent that ends in a product with the base as it is: bases below the modulus, of its
  // length and not below it, and multiples of it.
  for (std::uint32_t n = 1; n < 16; ++n) {
    for (int kind = 0; kind < 7; ++kind) {
      walk_.set(1, QLInteger(65537));
      walk_.set(2, operand(n, kind, ++seed));
      expectEqual("SetBit", {2, 0, 1});
      for (const QLInteger& base : {operand(n, 0, seed), operand(n, 1, seed), walk_.get(2),
                                    walk_.get(2) - 1, walk_.get(2) * walk_.get(2)}) {
        walk_.set(0, base);
        expectEqual("ModPow", {0, 1, 2, 3});
      }
    }
  }
  // Bases above twice the modulus, of as many limbs, that lead to more than twice the modulus if
  // that product takes them as they are.
  expectEqual("FromText", {2}, "6FFFFFFFFFFFFFFF0000000000000001h");
  for (const std::int32_t below : {37, 38, 46, 60}) {
    walk_.set(0, PowerOfTwo(128) - below);
    walk_.set(1, QLInteger(65537));
    expectEqual("ModPow", {0, 1, 2, 3});
  }
  for (const int modulus : {-5, -1, 0, 1, 2, 3, 9}) {
    for (const int base : {-7, 0, 1, 2, 9}) {
      for (const int exponent : {-3, 0, 1, 2, 5}) {
        walk_.set(0, QLInteger(base));
        walk_.set(1, QLInteger(exponent));
        walk_.set(2, QLInteger(modulus));
        walk_.set(3, QLInteger(40, 0xFFFFFFFF));
        expectEqual("ModPow", {0, 1, 2, 3});
      }
    }
  }
}

TEST_P(Kernels, DivisorsAndRootsAreTheSame) {
  std::uint64_t seed = 1;
  for (const std::uint32_t n : std::initializer_list<std::uint32_t>{1, 2, 3, 4, 5, 9, 33, 70}) {
    for (const std::uint32_t m : std::initializer_list<std::uint32_t>{1, 2, 4, 5, 31, 64}) {
      for (int kind = 0; kind < 9; ++kind) {
        ++seed;
        QLInteger a = operand(n, kind % 7, seed), b = operand(m, (kind + 3) % 7, seed + 1);
        if (kind > 6) {  // consecutive quotients of 1, and a large one among them
          a = b = QLInteger(1);
          for (std::uint32_t i = 0; i < 40 * n; ++i) {
            a += b * QLInteger(kind == 8 && i % 50 == 9 ? INT32_MAX : 1);
            a.Swap(b);
          }
        }
        if (seed % 3 == 0) {
          const QLInteger common = operand(m, kind % 7, seed + 2);
          a *= common;
          b *= common;
        }
        walk_.set(0, a);
        walk_.set(1, b);
        if (seed % 10 == 0) expectEqual("Negate", {seed % 20 == 0 ? 0 : 1});
        expectEqual("Gcd", {0, 1, 2});
        expectEqual("Gcd", {1, 0, 3});
        expectEqual("AreCoprime", {0, 1});
        expectEqual("ExtendedGcd", {0, 1, 2, 3, 4});
        expectEqual("ExtendedGcd", {1, 0, 4, 2, 3});
        expectEqual("IntegerSqrt", {5, 0});
        walk_.set(6, a);
        expectEqual("Gcd", {6, 1, 6});
      }
    }
  }
  for (int i = 0; i < 400; ++i) {
    walk_.set(0, operand(14, 0, ++seed));
    walk_.set(1, operand(13, 0, ++seed));
    expectEqual("ExtendedGcd", {0, 1, 2, 3, 4});
  }
  for (const int a : {-6, -1, 0, 1, 2, 6}) {
    for (const int b : {-4, -1, 0, 1, 2, 3, 6}) {
      walk_.set(0, QLInteger(a));
      walk_.set(1, QLInteger(b));
      expectEqual("Gcd", {0, 1, 2});
      expectEqual("AreCoprime", {0, 1});
      expectEqual("ExtendedGcd", {0, 1, 2, 3, 4});
    }
  }
}

TEST_P(Kernels, PrimesAreTheSame) {
  // Strong pseudoprimes, two of them with factors of the screen, Carmichael numbers, a gap of 1550
  // between primes, and others.
  for (const char* text :
       {"3215031751", "3215031749", "48354810571", "14386156093", "18361375334787046699", "561",
        "2047", "3474749660383", "341550071728321", "3825123056546413051", "4294967291",
        "18446744073709551557", "1152271", "4295098369", "9746347772161", "4503599627370497",
        "100000000000031h", "FFFFFFFFFFFFFFFFFFFFFFFFFFFFFF61h",
        "1000000000000000000000000000000001h"}) {
    expectEqual("FromText", {0}, text);
    for (const long long f : {0, 1, 5, 18, 30}) {
      for (const long long r : {0, 3, 18}) expectEqual("IsProbablePrime", {0, f, r});
    }
    walk_.set(1, QLInteger(7));
    expectEqual("FermatTest", {0, 1});
    expectEqual("RabinMillerTest", {0, 1});
    expectEqual("NextPrime", {0, 2});
    expectEqual("SubSmall", {0, 2});
    expectEqual("NextPrime", {0, 0});
  }
  for (int n = -3; n < 300; ++n) {
    walk_.set(0, QLInteger(n));
    for (const long long f : {0, 2, 18}) {
      for (const long long r : {0, 2, 18}) expectEqual("IsProbablePrime", {0, f, r});
    }
    expectEqual("NextPrime", {0, 2});
  }
}

TEST_P(Kernels, TextsAreTheSame) {
  std::uint64_t seed = 1;
  for (const std::uint32_t n :
       std::initializer_list<std::uint32_t>{1, 2, 3, 5, 27, 30, 60, 66, 110, 260}) {
    for (int kind = 0; kind < 7; ++kind) {
      for (const long long radix : {2, 3, 7, 8, 10, 15, 16}) {
        // The reference takes a division a digit.
        if (n > 60 &&
            ((kind > 1 && (kind != 3 || n > 110)) || (radix != 10 && (kind != 0 || n > 110))))
          continue;
        walk_.set(0, operand(n, kind, ++seed));
        if (seed % 3 == 0) expectEqual("Negate", {0});
        expectEqual("ToText", {0, radix});
        if (radix == 3 || radix == 7 || radix == 15) continue;
        walk_.set(1, QLInteger(3));
        const std::string text = toString(walk_.get(0), static_cast<std::uint32_t>(radix));
        expectEqual("FromText", {1}, text);
        expectEqual("FromText", {1}, "-000,0" + text);
      }
    }
    // The power of ten that a limb just holds, and its neighbours.
    const QLInteger power = Pow(QLInteger(10), QLInteger(static_cast<std::int32_t>(9 * n)));
    for (const int offset : {-1, 0, 1}) {
      walk_.set(0, power + QLInteger(offset));
      expectEqual("ToText", {0, 10});
      expectEqual("FromText", {1}, toString(walk_.get(0)));
    }
  }
  for (const char* text : {"", "-", "h", "0", "-0", "000000000000000000000000000", "12a4", "-0x1F",
                           "1B", "777777777777o", "x,y", "1,2_3z4F,00000000h", "1 0 2 1b",
                           "-00000000000000000000018446744073709551616"}) {
    expectEqual("FromText", {2}, text);
  }
  // Each character among digits that are taken 8 at a time, for each radix.
  for (int character = 1; character < 256; ++character) {
    for (const char* mark : {"", "h", "o", "b"}) {
      std::string text = "1001011010100110100101101001";
      text[static_cast<std::size_t>(character) % text.size()] = static_cast<char>(character);
      expectEqual("FromText", {2}, text + mark);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Rows, Kernels, testing::Bool(),
                         [](const auto& rows) { return rows.param ? "Mulx" : "Portable"; });

}  // namespace
}  // namespace ulm::bignum::test
