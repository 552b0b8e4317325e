// Numbers of an input, and their like in GMP.
#pragma once

#include "bignum/bytes.h"
#include "bignum/integer.h"
#include "fuzz/input.h"

#ifdef ULM_FUZZ_WITH_GMP
#include <gmp.h>
#endif

namespace ulm::fuzz {

// A result of an operation: its storage keeps the rules, and it is in normal form.
inline void requireNormal(const bignum::QLInteger& value) {
  require(value.count >= 1 && value.count <= value.capacity && value.capacity % 32 == 0, "storage");
  require(value.count == 1 || value.words[value.count - 1] != 0, "normal form");
  require(value.IsNonZero() || !value.IsNegative(), "no negative zero");
}

// Each byte is a run of equal bits: the low 6 bits are its length, less 1, the next is the bit.
// With the top bit set a byte is 7 bits as they are. So short inputs make long numbers with the
// runs of ones and zeros that reach corrections.
inline bignum::QLInteger numberOfRuns(Bytes bytes) {
  bignum::QLInteger number(0);
  for (const std::uint8_t byte : bytes) {
    const std::uint32_t bits = (byte & 0x80) != 0 ? 7 : (byte & 63u) + 1;
    number <<= bits;
    if ((byte & 0x80) != 0) {
      number += byte & 0x7F;
    } else if ((byte & 0x40) != 0) {
      number += bignum::PowerOfTwo(bits) - 1;
    }
  }
  return number;
}

#ifdef ULM_FUZZ_WITH_GMP
class Peer {
 public:
  Peer() { mpz_init(number); }
  explicit Peer(const bignum::QLInteger& value) : Peer() {
    mpz_import(number, value.count, -1, sizeof(std::uint32_t), 0, 0, value.words);
    if (value.IsNegative()) mpz_neg(number, number);
  }
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;
  ~Peer() { mpz_clear(number); }
  mpz_t number;
};

inline void requireAsPeer(const bignum::QLInteger& value, const Peer& peer, const char* what) {
  requireNormal(value);
  require(mpz_cmp(Peer(value).number, peer.number) == 0, what);
}
#endif

}  // namespace ulm::fuzz
