// Checks division against its definition and, if it is available, against GMP. An input is a byte
// of flags, a byte that determines which part of the rest is the dividend, and the bytes of both
// magnitudes, low byte first.
#include "fuzz/number_input.h"

namespace {

using ulm::bignum::QLInteger;
using namespace ulm::fuzz;

enum Flag : std::uint8_t {
  kDividendNegative = 1,
  kDivisorNegative = 2,
  kRemainderIsDividend = 4,
  kDivisorShifted = 8  // by 96 bits: a divisor with zero words at its low end
};

#ifdef ULM_FUZZ_WITH_GMP
void requireDivision(const QLInteger& a, const QLInteger& b, const QLInteger& quotient,
                     const QLInteger& remainder) {
  Peer peerQuotient, peerRemainder;
  mpz_tdiv_qr(peerQuotient.number, peerRemainder.number, Peer(a).number, Peer(b).number);
  requireAsPeer(quotient, peerQuotient, "the quotient is the peer's");
  requireAsPeer(remainder, peerRemainder, "the remainder is the peer's");
}
#else
void requireDivision(const QLInteger&, const QLInteger&, const QLInteger&, const QLInteger&) {}
#endif

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2 || size > 2048) return 0;
  Input input(data, size);
  const std::uint8_t flags = input.u8();
  QLInteger a = ulm::bignum::fromBytesLowFirst(input.takePart());
  QLInteger b = ulm::bignum::fromBytesLowFirst(input.takeRest());
  if ((flags & kDivisorShifted) != 0) b <<= 96;
  if ((flags & kDividendNegative) != 0) a.MakeNegative();
  if ((flags & kDivisorNegative) != 0) b.MakeNegative();

  QLInteger quotient(ulm::bignum::kEmptyHolder);
  QLInteger remainder((flags & kRemainderIsDividend) != 0 ? a : QLInteger(7));
  Divide((flags & kRemainderIsDividend) != 0 ? remainder : a, b, quotient, remainder);
  requireNormal(quotient);
  requireNormal(remainder);
  require(quotient * b + remainder == a, "a is q b + r");
  QLInteger alone(a);
  alone %= b;
  require(alone == remainder, "the remainder alone is the same");
  if (!b.IsNonZero()) {
    require(quotient == 0, "the quotient by zero is 0");
    return 0;
  }
  require(remainder.CompareMagnitude(b) < 0, "|r| is below |b|");
  require(!remainder.IsNonZero() || remainder.IsNegative() == a.IsNegative(), "sign of r");
  require(!quotient.IsNonZero() || quotient.IsNegative() == (a.IsNegative() != b.IsNegative()),
          "sign of q");
  requireDivision(a, b, quotient, remainder);
  return 0;
}
