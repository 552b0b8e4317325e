// SHA-1 and RSA against OpenSSL: its digests, its keys and its signatures.
#include <gtest/gtest.h>
#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/evp.h>
#include <openssl/rsa.h>
#include <sys/mman.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "bignum/detail/sha_transform.h"
#include "bignum/rsa.h"
#include "bignum/sha.h"
#include "tests/bignum/sha_model.h"

namespace ulm::bignum::test {
namespace {

using Bytes = std::vector<std::uint8_t>;
template <class T, void (*Free)(T*)>
struct Freer {
  void operator()(T* object) const { Free(object); }
};
using Key = std::unique_ptr<EVP_PKEY, Freer<EVP_PKEY, EVP_PKEY_free>>;
using Context = std::unique_ptr<EVP_PKEY_CTX, Freer<EVP_PKEY_CTX, EVP_PKEY_CTX_free>>;
using Number = std::unique_ptr<BIGNUM, Freer<BIGNUM, BN_free>>;
using Hash = std::unique_ptr<EVP_MD_CTX, Freer<EVP_MD_CTX, EVP_MD_CTX_free>>;

TEST(OpenSsl, Sha1InAllKindsOfSplits) {
  std::mt19937 engine(20240917);
  const auto below = [&](std::uint32_t end) { return static_cast<std::uint32_t>(engine() % end); };
  for (const auto path : {detail::ShaPath::Portable, detail::ShaPath::Unknown}) {
    detail::setShaPath(path);
    QLSHA sha(true);
    for (std::uint32_t length = 0; length <= 300; ++length) {
      const Bytes message = messageOf(length);
      Bytes expected(20), digest(20);
      ASSERT_EQ(EVP_Digest(message.data(), length, expected.data(), nullptr, EVP_sha1(), nullptr),
                1);
      for (int round = 0; round < 40; ++round) {
        sha.Restart();
        const std::uint32_t most = below(140) + 1;
        for (std::uint32_t at = 0, slice; at < length; at += slice) {
          slice = std::min(below(most + 1), length - at);
          sha.Update(message.data() + at, slice);
        }
        sha.Final(digest.data());
        ASSERT_EQ(digest, expected) << length;
      }
    }
  }
  detail::setShaPath(detail::ShaPath::Unknown);
}

// Slow, so it runs on request alone: --gtest_also_run_disabled_tests.
TEST(OpenSsl, DISABLED_Sha1OfMoreThanFourGigabytes) {
  constexpr std::uint32_t kLength = 0xFFFFFFFF;
  void* const zeros =
      mmap(nullptr, kLength, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  ASSERT_NE(zeros, MAP_FAILED);
  const Hash peer(EVP_MD_CTX_new());
  EVP_DigestInit_ex(peer.get(), EVP_sha1(), nullptr);
  QLSHA sha(true);
  Bytes expected(20), digest(20);
  for (const std::uint32_t length : {5u, kLength, 1u << 29}) {
    EVP_DigestUpdate(peer.get(), zeros, length);
    sha.Update(static_cast<const std::uint8_t*>(zeros), length);
  }
  munmap(zeros, kLength);
  EXPECT_EQ(sha.bitCountHigh, 9u);
  EXPECT_EQ(sha.bitCountLow, 32u);
  EVP_DigestFinal_ex(peer.get(), expected.data(), nullptr);
  sha.Final(digest.data());
  EXPECT_EQ(digest, expected);
}

QLInteger fromPeer(const EVP_PKEY* key, const char* name) {
  BIGNUM* number = nullptr;
  EVP_PKEY_get_bn_param(key, name, &number);
  const Number owned(number);
  char* hex = BN_bn2hex(number);
  const QLInteger value = QLInteger::fromText((std::string(hex) + 'h').c_str());
  OPENSSL_free(hex);
  return value;
}

// The bytes of a value of zero or more, low byte first and as many as are asked for.
Bytes bytesOf(const QLInteger& value, std::size_t size) {
  Bytes bytes(size);
  ToBytes(value, bytes.data(), static_cast<std::uint32_t>(size));
  return bytes;
}

// OpenSSL's own operation with one half of a key, without padding; its blocks have the high byte
// first.
Bytes byPeer(EVP_PKEY* key, bool withPrivate, Bytes block) {
  std::reverse(block.begin(), block.end());
  Bytes result(block.size());
  std::size_t size = result.size();
  const Context context(EVP_PKEY_CTX_new(key, nullptr));
  const int done =
      withPrivate
          ? EVP_PKEY_sign_init(context.get()) == 1 &&
                EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_NO_PADDING) == 1 &&
                EVP_PKEY_sign(context.get(), result.data(), &size, block.data(), block.size()) == 1
          : EVP_PKEY_encrypt_init(context.get()) == 1 &&
                EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_NO_PADDING) == 1 &&
                EVP_PKEY_encrypt(context.get(), result.data(), &size, block.data(), block.size()) ==
                    1;
  EXPECT_TRUE(done && size == block.size());
  std::reverse(result.begin(), result.end());
  return result;
}

// Decrypts from and into heap blocks of their exact sizes, and compares.
void expectDecrypts(const QLRSADecryptor& decryptor, const Bytes& block, Bytes expected) {
  Bytes output(block.size(), 0xEE);
  const std::uint32_t bits = decryptor.Decrypt(output.data(), block.data());
  while (!expected.empty() && expected.back() == 0) expected.pop_back();
  ASSERT_EQ((bits + 7) / 8, expected.size());
  EXPECT_TRUE(expected.empty() ? bits == 0 : (expected.back() >> (bits - 1) % 8) == 1) << bits;
  EXPECT_TRUE(std::equal(expected.begin(), expected.end(), output.begin()));
  EXPECT_EQ(static_cast<std::size_t>(
                std::count(output.begin() + (bits + 7) / 8, output.end(), std::uint8_t{0xEE})),
            output.size() - expected.size());
}

class OpenSslKeys : public testing::TestWithParam<unsigned> {};
INSTANTIATE_TEST_SUITE_P(Bits, OpenSslKeys, testing::Values(512, 513, 1024, 1031, 2048, 4096),
                         testing::PrintToStringParamName());

TEST_P(OpenSslKeys, BlocksComeAndGo) {
  const Key key(EVP_RSA_gen(GetParam()));
  ASSERT_NE(key, nullptr);
  const QLInteger modulus = fromPeer(key.get(), OSSL_PKEY_PARAM_RSA_N);
  const QLRSADecryptor reader(modulus, fromPeer(key.get(), OSSL_PKEY_PARAM_RSA_E));
  ASSERT_EQ(reader.MaxOutputBits(), GetParam());
  const std::size_t size = (GetParam() + 7) / 8;
  Bytes plain = messageOf(size - 1);
  plain.push_back(0);  // below the modulus
  Bytes lowZeros = plain;
  std::fill_n(lowZeros.begin(), 9, std::uint8_t{0});
  Bytes highZeros = plain;
  std::fill_n(highZeros.rbegin(), size / 2, std::uint8_t{0});
  const Bytes blocks[] = {
      plain, lowZeros, highZeros, bytesOf(modulus - 1, size), bytesOf(1, size), bytesOf(0, size)};
  for (const Bytes& block : blocks) {
    const Bytes sealed = byPeer(key.get(), true, block);
    expectDecrypts(reader, sealed, block);
    QLInteger above(1, 0);
    for (std::size_t i = size; i-- > 0;) (above <<= 8) += sealed[i];
    EXPECT_EQ(bytesOf(reader.function.Apply(above), size), block);
    above += modulus;
    if (above.BitLength() <= 8 * size) expectDecrypts(reader, bytesOf(above, size), block);
  }
  if (GetParam() > 600) return;  // the private exponent is long
  const QLRSADecryptor owner(modulus, fromPeer(key.get(), OSSL_PKEY_PARAM_RSA_D));
  for (const Bytes& block : blocks) {
    expectDecrypts(owner, byPeer(key.get(), false, block), block);
  }
}

}  // namespace
}  // namespace ulm::bignum::test
