#include "bignum/rsa.h"

#include "bignum/number_theory.h"
#include "bignum/words.h"

namespace ulm::bignum {
namespace {

// The number of `bits` bits whose bytes lie at `bytes`, low byte first.
QLInteger numberOf(const std::uint8_t* bytes, std::uint32_t bits) {
  const auto byteCount = static_cast<std::uint32_t>((std::uint64_t{bits} + 7) >> 3);
  const auto wordCount = static_cast<std::uint32_t>((std::uint64_t{bits} + 31) >> 5);
  QLInteger number(wordCount, 0);
  for (std::uint32_t i = 0; i < byteCount; ++i) {
    number.words[i / 4] |= Word{bytes[i]} << (i % 4 * 8);
  }
  number.Normalise();
  return number;
}

// Lays the number's words out as bytes, low byte first, in their own storage. Where that is how
// words lie anyway nothing changes; elsewhere the number is none any more.
const std::uint8_t* layOutBytes(QLInteger& number) noexcept {
  auto* bytes = static_cast<std::uint8_t*>(static_cast<void*>(number.words));
  for (std::size_t i = 0; i < number.count; ++i) {
    const Word word = number.words[i];
    for (std::size_t k = 0; k < 4; ++k) {
      bytes[4 * i + k] = static_cast<std::uint8_t>(word >> (8 * k));
    }
  }
  return bytes;
}

}  // namespace

QLRSAFunction::QLRSAFunction(const QLInteger& keyModulus, const QLInteger& keyExponent)
    : modulus(keyModulus), exponent(keyExponent) {}
QLRSAFunction::~QLRSAFunction() = default;

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
  // The result is below the modulus, or 1 for an exponent of 0: no longer than the input block.
  QLInteger result = function.Apply(numberOf(input, MaxOutputBits()));
  const std::uint32_t bits = result.BitLength();
  return Unpad(layOutBytes(result), bits, output);
}

}  // namespace ulm::bignum
