// The RSA block operation: a block of bytes to the power of an exponent, modulo a modulus.
//
// A key is the two numbers, copied at construction; no operation changes them, or anything else in
// an object, so any number of threads may use one. Nothing verifies a key or a block, and there is
// no padding but zero bytes: a wrong key gives a wrong block. std::bad_alloc is the one exception.
// The time depends on the values: not for secrets that others can time. An object overwrites its
// copies of the key with zeros when it is destroyed. Nothing else is wiped: the caller's numbers,
// the working values of Apply and Decrypt, what a key was before an assignment to it.
#pragma once

#include <cstdint>

#include "bignum/integer.h"
#include "bignum/rsa/crypter.h"
#include "bignum/rsa/padding.h"

namespace ulm::bignum {

// Maps 0 to modulus - 1 onto itself, where the numbers are those of a key.
class QLRSAFunction : public virtual QLTrapdoorFunction {
 public:
  QLInteger modulus;
  QLInteger exponent;

  QLRSAFunction(const QLInteger& keyModulus, const QLInteger& keyExponent);
  ~QLRSAFunction() override;

  // ModPow of x to the exponent, with what that says of numbers below 0.
  QLInteger Apply(const QLInteger& x) const override;
  QLInteger InputBound() const override;   // the modulus
  QLInteger OutputBound() const override;  // the modulus
};

class QLRSABase : public QLCrypter, public QLZeroPadding {
 public:
  QLRSAFunction function;

  QLRSABase(const QLInteger& keyModulus, const QLInteger& keyExponent);
  ~QLRSABase() override;

  // The bits of the largest block, modulus - 1. Means nothing for a modulus below 2.
  std::uint32_t MaxOutputBits() const;
};

class QLRSADecryptor : public QLRSABase, public QLDecryptor {
 public:
  QLRSADecryptor(const QLInteger& keyModulus, const QLInteger& keyExponent);
  ~QLRSADecryptor() override;

  // Blocks are numbers with the low byte first.
  //   input   ceil(MaxOutputBits() / 8) bytes; a number at or above the modulus is reduced
  //   output  room for as many; receives the result without its trailing zero bytes, and may be the
  //           input
  // Gives the exact length of the result in bits: 0, with nothing written, for a result of zero.
  // Refuses, with 0 and nothing read or written, where `status` is not 0 or the modulus is below 2.
  std::uint32_t Decrypt(std::uint8_t* output, const std::uint8_t* input) const override;
};

}  // namespace ulm::bignum
