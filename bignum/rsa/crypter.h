// What cipher objects are: their root, the role of a decryptor, and the function of integers that a
// public-key cipher stands on. The order of the virtual operations is part of the interface.
#pragma once

#include <cstdint>

#include "bignum/integer.h"

namespace ulm::bignum {

// The root of the cipher objects.
class QLCrypter {
 public:
  std::uint32_t status = 0;  // any other value makes the object refuse its work

  virtual ~QLCrypter();
};

class QLDecryptor {
 public:
  virtual ~QLDecryptor();

  // Turns a block of the length that the key asks for into what was encrypted. Gives the bits
  // written to the output, 0 where it refuses.
  virtual std::uint32_t Decrypt(std::uint8_t* output, const std::uint8_t* input) const = 0;
};

// A function of integers from 0 up. Values are fresh; std::bad_alloc is the one exception.
class QLTrapdoorFunction {
 public:
  virtual ~QLTrapdoorFunction();

  virtual QLInteger Apply(const QLInteger& x) const = 0;
  // One above the largest input, and one above the largest output.
  virtual QLInteger InputBound() const = 0;
  virtual QLInteger OutputBound() const = 0;
  // The bounds, less 1.
  virtual QLInteger MaxInput() const;
  virtual QLInteger MaxOutput() const;
};

}  // namespace ulm::bignum
