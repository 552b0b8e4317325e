// Powers, divisors, roots and primes held to GMP, and to their own rules where GMP has others. An
// input is a byte that selects the operation, a byte of signs, two bytes that divide the rest into
// three operands, and the operands as runs of bits.
#include <array>

#include "bignum/number_theory.h"
#include "fuzz/number_input.h"

namespace {

using namespace ulm::bignum;
using namespace ulm::fuzz;

using Operands = std::array<QLInteger, 3>;

#ifdef ULM_FUZZ_WITH_GMP
bool isPeerPrime(const QLInteger& n) { return mpz_probab_prime_p(Peer(n).number, 30) != 0; }

void power(const Operands& x) {
  const auto exponent = static_cast<std::uint32_t>(x[1].words[0] & 63);
  Peer peer;
  mpz_pow_ui(peer.number, Peer(x[0]).number, exponent);
  if (!x[0].IsNonZero()) mpz_set_ui(peer.number, 0);  // 0 to the power 0 too
  requireAsPeer(Pow(x[0], static_cast<std::int32_t>(exponent)), peer, "the power is the peer's");
}

void modularPower(const Operands& x) {
  if (x[2].count > 6 || x[1].count > 6) return;
  QLInteger result;
  ModPow(x[0], x[1], x[2], result);
  requireNormal(result);
  if (!x[2].IsNonZero() || !x[1].IsNonZero()) {
    if (!x[1].IsNonZero()) require(result == 1, "the power 0 is 1");
    return;
  }
  Peer peer, exponent(x[1]);
  mpz_abs(exponent.number, exponent.number);
  mpz_powm(peer.number, Peer(x[0]).number, exponent.number, Peer(x[2]).number);
  require(result.CompareMagnitude(x[2]) < 0, "the power is reduced");
  const Peer own(result);
  require(mpz_congruent_p(own.number, peer.number, Peer(x[2]).number) != 0,
          "the modular power is congruent to the peer's");
  const bool negative = x[0].IsNegative() && !x[1].IsEven();
  require(!result.IsNonZero() || result.IsNegative() == negative, "the sign of a modular power");
}

void divisors(const Operands& x) {
  QLInteger g(7), bezout, a, b;
  const bool found = Gcd(x[0], x[1], g);
  require(found == (x[0].IsNonZero() && x[1].IsNonZero()), "zero has no divisor");
  if (!found) {
    require(g == 7, "a refusal leaves the result");
    return;
  }
  Peer peer;
  mpz_gcd(peer.number, Peer(x[0]).number, Peer(x[1]).number);
  require(mpz_cmpabs(Peer(g).number, peer.number) == 0, "the divisor is the peer's");
  require(AreCoprime(x[0], x[1]) == (g == 1), "the numbers are coprime if the divisor is 1");
  ExtendedGcd(x[0], x[1], bezout, a, b);
  requireNormal(bezout);
  requireNormal(a);
  requireNormal(b);
  require(x[0] * a + x[1] * b == bezout, "a x + b y is the divisor");
  if (x[0].IsNonNegative() && x[1].IsPositive()) {
    requireAsPeer(bezout, peer, "the extended divisor is the peer's");
  }
}

void root(const Operands& x) {
  Peer peer;
  if (x[0].IsPositive()) mpz_sqrt(peer.number, Peer(x[0]).number);
  requireAsPeer(IntegerSqrt(x[0]), peer, "the root is the peer's");
}

void primes(const Operands& x) {
  if (x[0].count > 6 || x[1].count > 6) return;
  const QLInteger& n = x[0];
  const QLInteger& base = x[1];
  if (n >= 4 && base.IsNonNegative()) {
    Peer power, exponent(n - 1);
    mpz_powm(power.number, Peer(base).number, exponent.number, Peer(n).number);
    require(FermatTest(n, base) == (mpz_cmp_ui(power.number, 1) == 0), "Fermat's test");
    if (RabinMillerTest(n, base)) require(FermatTest(n, base), "the strong test implies Fermat's");
  }
  const bool prime = IsProbablePrime(n, 18, 18);
  if (isPeerPrime(n)) {
    require(n.IsNegative() || prime, "no prime is refused");
  } else if (n.BitLength() <= 64) {
    require(!prime, "no composite of 64 bits passes");
  }
}

void nextPrime(const Operands& x) {
  if (x[0].count > 3) return;
  QLInteger found;
  NextPrime(x[0], found);
  requireNormal(found);
  Peer before(x[0] == 2 ? x[0] : x[0] - 1), peer;
  if (mpz_sgn(before.number) < 0) mpz_set_ui(before.number, 0);
  mpz_nextprime(peer.number, before.number);
  const int order = mpz_cmp(Peer(found).number, peer.number);
  require(order <= 0 && (x[0] < 2 || found >= x[0]), "no prime is passed over");
  require(order == 0 || IsProbablePrime(found, 5, 3), "what is found passes the tests");
}

void (*const kOperations[])(const Operands&) = {power, modularPower, divisors,
                                                root,  primes,       nextPrime};
#else
void (*const kOperations[])(const Operands&) = {[](const Operands&) {}};
#endif

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 4 || size > 256) return 0;
  Input input(data, size);
  const auto operation = kOperations[input.u8() % std::size(kOperations)];
  const std::uint8_t flags = input.u8();
  Operands operands{numberOfRuns(input.takePart()), numberOfRuns(input.takePart()),
                    numberOfRuns(input.takeRest())};
  for (std::size_t i = 0; i < 3; ++i) {
    if (operands[i].count > 30) return 0;
    if ((flags >> i & 1) != 0) operands[i].MakeNegative();
  }
  if ((flags & 8) != 0) operands[1] *= operands[0];  // a common divisor
  operation(operands);
  return 0;
}
