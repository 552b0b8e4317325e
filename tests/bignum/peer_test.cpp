// Random operands of awkward patterns, against GMP.
#include <gmp.h>
#include <gtest/gtest.h>

#include <random>

#include "bignum/integer.h"
#include "bignum/number_theory.h"
#include "bignum/text.h"
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

// One operation as both do it; n is a small number or a shift.
struct Row {
  const char* name;
  void (*own)(QLInteger& r, const QLInteger& a, const QLInteger& b, std::int32_t n);
  void (*peer)(mpz_ptr r, mpz_srcptr a, mpz_srcptr b, std::uint32_t n);
};
#define ULM_ROW(name, own, peer)                                                               \
  {                                                                                            \
    name,                                                                                      \
        [](QLInteger& r, const QLInteger& a, const QLInteger& b, std::int32_t n) {             \
          (void)a, (void)b, (void)n, own;                                                      \
        },                                                                                     \
        [](mpz_ptr r, mpz_srcptr a, mpz_srcptr b, std::uint32_t n) { (void)b, (void)n, peer; } \
  }
const Row kRows[] = {
    ULM_ROW("a + b", r = a + b, mpz_add(r, a, b)),
    ULM_ROW("a - b", r = a - b, mpz_sub(r, a, b)),
    ULM_ROW("a * b", r = a * b, mpz_mul(r, a, b)),
    ULM_ROW("a squared", (r = a, r *= r), mpz_mul(r, a, a)),
    ULM_ROW("a * n", r = a * n, mpz_mul_ui(r, a, n)),
    ULM_ROW("a - n", r = a - n, mpz_sub_ui(r, a, n)),
    ULM_ROW("a << n", (r = a, r <<= static_cast<std::uint32_t>(n)), mpz_mul_2exp(r, a, n)),
    ULM_ROW("a >> n", r = a >> static_cast<std::uint32_t>(n), mpz_tdiv_q_2exp(r, a, n)),
    ULM_ROW("a / b", r = a / b, mpz_tdiv_q(r, a, b)),
    ULM_ROW("a % b", (r = a, Remainder(r, b, r)), mpz_tdiv_r(r, a, b)),
    ULM_ROW("root", r = IntegerSqrt(a * a + n),
            (mpz_mul(r, a, a), mpz_add_ui(r, r, n), mpz_sqrt(r, r))),
    ULM_ROW("gcd", (Gcd(a, b, r), r.negative = 0), mpz_gcd(r, a, b)),
    ULM_ROW("modpow", ModPow(a* a, n + 2, b, r), (mpz_mul(r, a, a), mpz_powm_ui(r, r, n + 2, b)))};
#undef ULM_ROW

constexpr std::ptrdiff_t kQuickRows = 10;

class AgainstPeer : public testing::Test {
 protected:
  std::uint32_t random() { return static_cast<std::uint32_t>(engine_()); }
  QLInteger operand() {
    static const std::uint32_t kSizes[] = {1, 2, 3, 31, 32, 33, 63, 64, 65, 199, 200};
    const std::uint32_t count = random() % 2 != 0 ? kSizes[random() % 11] : random() % 200 + 1;
    return patterned(count, static_cast<int>(random() % 6), random(), random() % 2 != 0);
  }

 private:
  std::mt19937 engine_{20240917};
};

TEST_F(AgainstPeer, GivesTheSameNumbers) {
  for (int round = 0; round < 600; ++round) {
    const QLInteger a = operand();
    QLInteger b = operand();
    if (round % 3 == 0) b = (a >> random() % 129) - static_cast<std::int32_t>(random() % 3);
    if (!b.IsNonZero()) continue;
    const std::uint32_t n = random() % 300;
    const Peer peerA(a), peerB(b);
    for (const Row& row : kRows) {
      if (&row - kRows >= kQuickRows && round % 8 != 0) break;
      QLInteger result;
      Peer expected;
      row.own(result, a, b, static_cast<std::int32_t>(n));
      row.peer(expected.z, peerA.z, peerB.z, n);
      EXPECT_TRUE(isNormal(result)) << row.name;
      ASSERT_EQ(mpz_cmp(Peer(result).z, expected.z), 0) << row.name << "\n"
                                                        << a << "\n"
                                                        << b << "\n"
                                                        << n;
    }
    QLInteger g, x, y;
    ExtendedGcd(a, b, g, x, y);
    ASSERT_EQ(a * x + b * y, g) << a << "\n" << b;
  }
}

}  // namespace
}  // namespace ulm::bignum::test
