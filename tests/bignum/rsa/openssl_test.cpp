// RSA against OpenSSL: its keys, what it signs and what it encrypts.
#define OPENSSL_SUPPRESS_DEPRECATED  // RSA on a bare block
#include <gtest/gtest.h>
#include <openssl/bn.h>
#include <openssl/rsa.h>

#include <algorithm>
#include <memory>

#include "bignum/bytes.h"
#include "bignum/rsa/rsa.h"
#include "tests/bignum/digest/sha_model.h"

namespace ulm::bignum::test {
namespace {

using Key = std::unique_ptr<RSA, void (*)(RSA*)>;
using PeerOperation = int (*)(int, const unsigned char*, unsigned char*, RSA*, int);

QLInteger valueOf(const BIGNUM* number) {
  Bytes bytes(static_cast<std::size_t>(BN_num_bytes(number)));
  BN_bn2bin(number, bytes.data());
  return fromBytesHighFirst(bytes);
}

// `size` bytes of a value, low byte first; OpenSSL's blocks have the high byte first.
Bytes bytesOf(const QLInteger& value, std::size_t size) {
  Bytes bytes(size);
  ToBytes(value, bytes.data(), static_cast<std::uint32_t>(size));
  return bytes;
}

Bytes byPeer(PeerOperation operation, const Key& key, Bytes block) {
  const int size = static_cast<int>(block.size());
  Bytes result(block.size());
  std::reverse(block.begin(), block.end());
  EXPECT_EQ(operation(size, block.data(), result.data(), key.get(), RSA_NO_PADDING), size);
  std::reverse(result.begin(), result.end());
  return result;
}

// A result has no zero bytes at its end, and the output after it does not change.
void expectDecrypts(const QLRSADecryptor& decryptor, const Bytes& sealed, Bytes expected) {
  Bytes output(sealed.size(), 0xEE);
  const std::uint32_t bits = decryptor.Decrypt(output.data(), sealed.data());
  while (!expected.empty() && expected.back() == 0) expected.pop_back();
  EXPECT_EQ((bits + 7) / 8, expected.size());
  EXPECT_TRUE(bits == 0 || expected.back() >> (bits - 1) % 8 == 1);
  expected.resize(output.size(), 0xEE);
  EXPECT_EQ(output, expected);
}

class OpenSslKeys : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Bits, OpenSslKeys, testing::Values(512, 513, 1024, 1031, 2048, 4096));

TEST_P(OpenSslKeys, BlocksComeAndGo) {
  const Key key(RSA_new(), RSA_free);
  const std::unique_ptr<BIGNUM, void (*)(BIGNUM*)> f4(BN_new(), BN_free);
  BN_set_word(f4.get(), RSA_F4);
  ASSERT_EQ(RSA_generate_key_ex(key.get(), GetParam(), f4.get(), nullptr), 1);
  const QLInteger modulus = valueOf(RSA_get0_n(key.get()));
  const QLRSADecryptor reader(modulus, valueOf(RSA_get0_e(key.get())));
  const QLRSADecryptor owner(modulus, valueOf(RSA_get0_d(key.get())));
  const auto size = static_cast<std::size_t>(RSA_size(key.get()));
  Bytes plain = messageOf(size - 1), leadingZeros(9, 0), trailingZeros = messageOf(size / 2);
  plain.push_back(0);  // below the modulus
  leadingZeros.insert(leadingZeros.end(), plain.begin() + 9, plain.end());
  trailingZeros.resize(size);
  for (const Bytes& block : {plain, leadingZeros, trailingZeros, bytesOf(modulus - 1, size),
                             bytesOf(1, size), bytesOf(0, size)}) {
    const Bytes sealed = byPeer(RSA_private_encrypt, key, block);
    expectDecrypts(reader, sealed, block);
    QLInteger above = fromBytesLowFirst(sealed);
    EXPECT_EQ(bytesOf(reader.function.Apply(above), size), block);
    above += modulus;
    if (above.BitLength() <= 8 * size) expectDecrypts(reader, bytesOf(above, size), block);
    if (GetParam() > 600) continue;  // the private exponent is long
    expectDecrypts(owner, byPeer(RSA_public_encrypt, key, block), block);
  }
}

}  // namespace
}  // namespace ulm::bignum::test
