// Checks division against its definition and, if it is available, against GMP. An input is a byte
// of flags, a byte that determines which part of the rest is the dividend, and the bytes of both
// magnitudes, low byte first.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>

#include "bignum/bytes.h"
#include "bignum/integer.h"

#ifdef ULM_FUZZ_WITH_GMP
#include <gmp.h>
#endif

namespace {

using ulm::bignum::QLInteger;

enum Flag : std::uint8_t {
  kDividendNegative = 1,
  kDivisorNegative = 2,
  kRemainderIsDividend = 4,
  kDivisorShifted = 8  // by 96 bits: a divisor with zero words at its low end
};

void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "division: %s\n", what);
  std::abort();
}

void requireNormal(const QLInteger& value) {
  require(value.count >= 1 && value.count <= value.capacity && value.capacity % 32 == 0, "storage");
  require(value.count == 1 || value.words[value.count - 1] != 0, "normal form");
  require(value.IsNonZero() || !value.IsNegative(), "negative zero");
}

#ifdef ULM_FUZZ_WITH_GMP
class Peer {
 public:
  Peer() { mpz_init(number); }
  explicit Peer(const QLInteger& value) : Peer() {
    mpz_import(number, value.count, -1, sizeof(std::uint32_t), 0, 0, value.words);
    if (value.IsNegative()) mpz_neg(number, number);
  }
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;
  ~Peer() { mpz_clear(number); }
  mpz_t number;
};

void requireAsPeer(const QLInteger& a, const QLInteger& b, const QLInteger& quotient,
                   const QLInteger& remainder) {
  const Peer peerA(a), peerB(b), ownQuotient(quotient), ownRemainder(remainder);
  Peer peerQuotient, peerRemainder;
  mpz_tdiv_qr(peerQuotient.number, peerRemainder.number, peerA.number, peerB.number);
  require(mpz_cmp(peerQuotient.number, ownQuotient.number) == 0, "quotient is not the peer's");
  require(mpz_cmp(peerRemainder.number, ownRemainder.number) == 0, "remainder is not the peer's");
}
#else
void requireAsPeer(const QLInteger&, const QLInteger&, const QLInteger&, const QLInteger&) {}
#endif

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2 || size > 2048) return 0;
  const std::uint8_t flags = data[0];
  const std::size_t dividendLength = (size - 2) * data[1] / 255;
  const std::span<const std::uint8_t> bytes(data + 2, size - 2);
  QLInteger a = ulm::bignum::fromBytesLowFirst(bytes.first(dividendLength));
  QLInteger b = ulm::bignum::fromBytesLowFirst(bytes.subspan(dividendLength));
  if ((flags & kDivisorShifted) != 0) b <<= 96;
  if ((flags & kDividendNegative) != 0) a.MakeNegative();
  if ((flags & kDivisorNegative) != 0) b.MakeNegative();

  QLInteger quotient(ulm::bignum::kEmptyHolder);
  QLInteger remainder((flags & kRemainderIsDividend) != 0 ? a : QLInteger(7));
  Divide((flags & kRemainderIsDividend) != 0 ? remainder : a, b, quotient, remainder);
  requireNormal(quotient);
  requireNormal(remainder);
  require(quotient * b + remainder == a, "a is not q b + r");
  QLInteger alone(a);
  alone %= b;
  require(alone == remainder, "the remainder alone differs");
  if (!b.IsNonZero()) {
    require(quotient == 0, "quotient by zero");
    return 0;
  }
  require(remainder.CompareMagnitude(b) < 0, "|r| is not below |b|");
  require(!remainder.IsNonZero() || remainder.IsNegative() == a.IsNegative(), "sign of r");
  require(!quotient.IsNonZero() || quotient.IsNegative() == (a.IsNegative() != b.IsNegative()),
          "sign of q");
  requireAsPeer(a, b, quotient, remainder);
  return 0;
}
