// The RSA block operation: a block of bytes, as a number, to the power of an exponent modulo a
// modulus; and the roles that its classes fill. The order of the virtual operations of each class
// is part of the interface.
//
// A key is the two numbers, which a constructor copies. No operation changes an object, so any
// number of threads may use it. Nothing verifies a key or a block, and zero bytes are the only
// padding: a wrong key gives a wrong block. std::bad_alloc is the only exception. The time depends
// on the values: the classes are not for secrets whose use others can time.
//
// An object overwrites its copies of the key with zeros when it is destroyed. Nothing else is
// wiped: not the caller's numbers, not the working values of Apply and Decrypt, and not a key that
// an assignment replaces.
#pragma once

#include <cstdint>

#include "bignum/integer.h"
#include "bignum/rsa/padding.h"

namespace ulm::bignum {

// The root of the cipher objects.
class QLCrypter {
 public:
  std::uint32_t status = 0;  // an object with any other value refuses to work

  virtual ~QLCrypter();
};

class QLDecryptor {
 public:
  virtual ~QLDecryptor();

  // Decrypts a block, whose length the key determines. Returns the bits written to the output; 0 if
  // the object refuses.
  virtual std::uint32_t Decrypt(std::uint8_t* output, const std::uint8_t* input) const = 0;
};

// A function on the integers from 0 up to a bound. Results are fresh values.
class QLTrapdoorFunction {
 public:
  virtual ~QLTrapdoorFunction();

  virtual QLInteger Apply(const QLInteger& x) const = 0;
  // The largest input plus 1, and the largest output plus 1.
  virtual QLInteger InputBound() const = 0;
  virtual QLInteger OutputBound() const = 0;
  // InputBound() - 1 and OutputBound() - 1.
  virtual QLInteger MaxInput() const;
  virtual QLInteger MaxOutput() const;
};

// x to the exponent modulo the modulus. With a key it maps 0 to modulus - 1 onto itself.
class QLRSAFunction : public virtual QLTrapdoorFunction {
 public:
  QLInteger modulus;
  QLInteger exponent;

  QLRSAFunction(const QLInteger& keyModulus, const QLInteger& keyExponent);
  ~QLRSAFunction() override;

  // The result of ModPow, which defines it for negative numbers too.
  QLInteger Apply(const QLInteger& x) const override;
  // The modulus.
  QLInteger InputBound() const override;
  QLInteger OutputBound() const override;
};

class QLRSABase : public QLCrypter, public QLZeroPadding {
 public:
  QLRSAFunction function;

  QLRSABase(const QLInteger& keyModulus, const QLInteger& keyExponent);
  ~QLRSABase() override;

  // Returns the bits of modulus - 1, which is the largest block. It has no meaning for a modulus
  // below 2.
  std::uint32_t MaxOutputBits() const;
};

class QLRSADecryptor : public QLRSABase, public QLDecryptor {
 public:
  QLRSADecryptor(const QLInteger& keyModulus, const QLInteger& keyExponent);
  ~QLRSADecryptor() override;

  // Applies the function to a block. Blocks are numbers with the low byte first.
  //   input   bytesForBits(MaxOutputBits()) bytes; a number at or above the modulus is reduced
  //   output  room for as many bytes; receives the result without the zero bytes at its high end.
  //           It may be the input
  // Returns the exact length of the result in bits. A result of zero has 0 bits, and nothing is
  // written. Refuses if status is not 0 or the modulus is below 2: returns 0 and neither reads the
  // input nor writes the output, so both may be null.
  std::uint32_t Decrypt(std::uint8_t* output, const std::uint8_t* input) const override;
};

}  // namespace ulm::bignum
