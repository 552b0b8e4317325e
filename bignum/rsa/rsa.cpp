#include "bignum/rsa/rsa.h"

#include "bignum/bytes.h"
#include "bignum/detail/storage.h"
#include "bignum/number_theory.h"

namespace ulm::bignum {

QLCrypter::~QLCrypter() = default;
QLDecryptor::~QLDecryptor() = default;
QLTrapdoorFunction::~QLTrapdoorFunction() = default;

QLInteger QLTrapdoorFunction::MaxInput() const { return InputBound() - 1; }
QLInteger QLTrapdoorFunction::MaxOutput() const { return OutputBound() - 1; }

QLRSAFunction::QLRSAFunction(const QLInteger& keyModulus, const QLInteger& keyExponent)
    : modulus(keyModulus), exponent(keyExponent) {}

QLRSAFunction::~QLRSAFunction() {
  for (QLInteger* const key : {&modulus, &exponent}) detail::wipeWords(key->words, key->capacity);
}

QLInteger QLRSAFunction::Apply(const QLInteger& x) const {
  QLInteger result;
  ModPow(x, exponent, modulus, result);
  return result;
}

QLInteger QLRSAFunction::InputBound() const { return modulus; }
QLInteger QLRSAFunction::OutputBound() const { return modulus; }

QLRSABase::QLRSABase(const QLInteger& keyModulus, const QLInteger& keyExponent)
    : function(keyModulus, keyExponent) {}
QLRSABase::~QLRSABase() = default;

std::uint32_t QLRSABase::MaxOutputBits() const { return function.MaxOutput().BitLength(); }

QLRSADecryptor::QLRSADecryptor(const QLInteger& keyModulus, const QLInteger& keyExponent)
    : QLRSABase(keyModulus, keyExponent) {}
QLRSADecryptor::~QLRSADecryptor() = default;

std::uint32_t QLRSADecryptor::Decrypt(std::uint8_t* output, const std::uint8_t* input) const {
  if (status != 0 || function.modulus < 2) return 0;
  const QLInteger block = fromBytesLowFirst({input, bytesForBits(MaxOutputBits())});
  // The result is below the modulus, or 1 for an exponent of 0. So it is no longer than the block.
  QLInteger result = function.Apply(block);
  const std::uint32_t bits = result.BitLength();
  return Unpad(detail::bytesInPlace(result.words, result.count), bits, output);
}

}  // namespace ulm::bignum
