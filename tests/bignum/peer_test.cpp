// Random operands of awkward patterns, against GMP.
#include <gmp.h>
#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "bignum/integer.h"
#include "bignum/number_theory.h"
#include "tests/bignum/operands.h"

namespace ulm::bignum::test {
namespace {

struct Peer {
  mpz_t z;
  Peer() { mpz_init(z); }
  explicit Peer(const QLInteger& value) : Peer() {
    mpz_import(z, value.count, -1, sizeof(Word), 0, 0, value.words);
    if (value.IsNegative()) mpz_neg(z, z);
  }
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;
  ~Peer() { mpz_clear(z); }
};

void expectEqual(const char* what, const QLInteger& value, const Peer& peer) {
  const Peer own(value);
  EXPECT_TRUE(isNormal(value)) << what;
  EXPECT_EQ(mpz_cmp(own.z, peer.z), 0) << what << ": " << value;
}

class AgainstPeer : public testing::Test {
 protected:
  QLInteger operand(std::uint32_t most) {
    static const std::uint32_t kSizes[] = {1, 2, 3, 31, 32, 33, 63, 64, 65, 199, 200};
    std::uint32_t count = random() % 2 != 0 ? kSizes[random() % 11] : random() % 200 + 1;
    count = std::min(count, most);
    return patterned(count, static_cast<int>(random() % 6), random(), random() % 2 != 0);
  }
  std::uint32_t random() { return static_cast<std::uint32_t>(engine_()); }

 private:
  std::mt19937 engine_{20240917};
};

TEST_F(AgainstPeer, RingAndDivision) {
  for (int round = 0; round < 1500; ++round) {
    const QLInteger a = operand(200);
    QLInteger b = operand(200);
    if (round % 3 == 0) b = (a >> random() % 129) - static_cast<std::int32_t>(random() % 3);
    const Peer p(a), q(b);
    Peer x, y;
    mpz_add(x.z, p.z, q.z);
    expectEqual("a + b", a + b, x);
    mpz_sub(x.z, p.z, q.z);
    expectEqual("a - b", a - b, x);
    mpz_mul(x.z, p.z, q.z);
    expectEqual("a * b", a * b, x);
    mpz_mul(x.z, p.z, p.z);
    QLInteger square(a);
    square *= square;
    expectEqual("a * a", square, x);
    const std::uint32_t bits = random() % 300;
    QLInteger shifted(a);
    shifted <<= bits;
    mpz_mul_2exp(x.z, p.z, bits);
    expectEqual("a << n", shifted, x);
    mpz_tdiv_q_2exp(x.z, p.z, bits);
    expectEqual("a >> n", a >> bits, x);
    const auto small = static_cast<std::int32_t>(random());
    mpz_mul_si(x.z, p.z, small);
    expectEqual("a * small", a * small, x);
    mpz_set_si(y.z, small);
    mpz_sub(x.z, p.z, y.z);
    expectEqual("a - small", a - small, x);
    if (!b.IsNonZero()) continue;
    QLInteger quotient, remainder(a);
    Divide(remainder, b, quotient, remainder);
    mpz_tdiv_qr(x.z, y.z, p.z, q.z);
    expectEqual("a / b", quotient, x);
    expectEqual("a % b", remainder, y);
    ASSERT_FALSE(HasFailure()) << a << "\n" << b;
  }
}

TEST_F(AgainstPeer, NumberTheory) {
  for (int round = 0; round < 150; ++round) {
    QLInteger a = operand(40), b = operand(40), m = operand(12);
    a.negative = b.negative = m.negative = 0;
    const Peer p(a), q(b), n(m);
    Peer x, s, t;
    QLInteger g, u, v;
    mpz_gcd(x.z, p.z, q.z);
    EXPECT_TRUE(Gcd(a, b, g));
    expectEqual("gcd", g, x);
    EXPECT_TRUE(ExtendedGcd(a, b, g, u, v));
    expectEqual("gcd of egcd", g, x);
    EXPECT_EQ(a * u + b * v, g);
    mpz_sqrt(x.z, p.z);
    expectEqual("sqrt", IntegerSqrt(a), x);
    const QLInteger exponent = (b >> (b.BitLength() - std::min(b.BitLength(), 90u))) + 2;
    const Peer e(exponent);
    mpz_powm(x.z, p.z, e.z, n.z);
    ModPow(a, exponent, m, g);
    expectEqual("modpow", g, x);
    ASSERT_FALSE(HasFailure()) << a << "\n" << b << "\n" << m;
  }
}

}  // namespace
}  // namespace ulm::bignum::test
