// Signatures: the signer raises the digest of a message to the private exponent; raising the result
// to the public exponent gives the digest again.
#include <algorithm>
#include <array>
#include <iostream>
#include <memory>
#include <string_view>
#include <vector>

#include "bignum/digest/digest.h"
#include "bignum/number_theory.h"
#include "bignum/rsa/rsa.h"

int main() {
  using namespace ulm::bignum;
  constexpr std::uint32_t kDigestSize = 20;

  // A message can be hashed in parts of any size.
  const std::unique_ptr<QLMessageDigest> hash(CreateSHA1());
  if (hash == nullptr) return 1;
  for (const std::string_view slice : {"The quick brown fox ", "jumps over ", "the lazy dog"}) {
    hash->Update(reinterpret_cast<const std::uint8_t*>(slice.data()),
                 static_cast<std::uint32_t>(slice.size()));
  }
  std::array<std::uint8_t, kDigestSize> digest;
  hash->Final(digest.data());

  // The product of the primes 2^127 - 1 and 2^89 - 1. Too small and too well known for real use.
  const QLInteger p = PowerOfTwo(127) - 1;
  const QLInteger q = PowerOfTwo(89) - 1;
  const QLInteger modulus = p * q;
  const QLInteger exponent = 65537;
  QLInteger divisor, privateExponent, unused;
  ExtendedGcd(exponent, (p - 1) * (q - 1), divisor, privateExponent, unused);
  if (privateExponent < 0) privateExponent += (p - 1) * (q - 1);
  const QLRSADecryptor signer(modulus, privateExponent);
  const QLRSADecryptor reader(modulus, exponent);

  // The key determines the length of a block. The digest is padded with zero bytes.
  const std::uint32_t blockBits = signer.MaxOutputBits();
  std::vector<std::uint8_t> block(bytesForBits(blockBits)), signature(block.size());
  signer.Pad(digest.data(), 8 * kDigestSize, block.data(), blockBits);
  signer.Decrypt(signature.data(), block.data());

  const std::uint32_t bits = reader.Decrypt(block.data(), signature.data());
  block.resize(bytesForBits(bits));
  block.resize(kDigestSize);  // decryption drops zero bytes at the end of the digest
  const bool same = std::equal(digest.begin(), digest.end(), block.begin());
  std::cout << (same ? "the signature is the message's\n" : "the signature is another's\n");
  return same ? 0 : 1;
}
