// Both hashes, in slices of any lengths, held to OpenSSL, to a model and to one call. An input is
// the choice of the hash, then slices: a byte of length, which also repeats the bytes so that long
// messages come from short inputs, and the bytes.
#include <array>
#include <vector>

#include "bignum/digest/digest.h"
#include "fuzz/input.h"

#ifdef ULM_FUZZ_WITH_OPENSSL
#include <openssl/evp.h>
#endif

using namespace ulm::bignum;
using namespace ulm::fuzz;

namespace {

std::uint32_t rotated(std::uint32_t x, int n) { return x << n | x >> (32 - n); }

// A model of both hashes, written from the text of the standards, since OpenSSL has one of them
// only. It pads the message as a whole, and each step chooses its function by its index.
std::vector<std::uint8_t> modelDigest(std::vector<std::uint8_t> message, bool rotate) {
  const std::uint64_t bits = std::uint64_t{message.size()} * 8;
  message.push_back(0x80);
  while (message.size() % 64 != 56) message.push_back(0);
  for (int i = 56; i >= 0; i -= 8) message.push_back(static_cast<std::uint8_t>(bits >> i));
  std::uint32_t h[5] = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
  for (std::size_t at = 0; at != message.size(); at += 64) {
    std::uint32_t a = h[0], b = h[1], c = h[2], d = h[3], e = h[4], w[80];
    for (std::size_t t = 0; t < 80; ++t) {
      const std::uint8_t* four = &message[at + 4 * (t % 16)];
      const std::uint32_t sum = t < 16
                                    ? ((four[0] * 256u + four[1]) * 256u + four[2]) * 256u + four[3]
                                    : w[t - 3] ^ w[t - 8] ^ w[t - 14] ^ w[t - 16];
      w[t] = t >= 16 && rotate ? rotated(sum, 1) : sum;
      const std::uint32_t parity = b ^ c ^ d;
      const std::uint32_t f[] = {(b & c) | (~b & d), parity, (b & c) | (b & d) | (c & d), parity};
      const std::uint32_t k[] = {0x5A827999, 0x6ED9EBA1, 0x8F1BBCDC, 0xCA62C1D6};
      const std::uint32_t next = rotated(a, 5) + f[t / 20] + e + w[t] + k[t / 20];
      e = d, d = c, c = rotated(b, 30), b = a, a = next;
    }
    h[0] += a, h[1] += b, h[2] += c, h[3] += d, h[4] += e;
  }
  std::vector<std::uint8_t> digest;
  for (const std::uint32_t word : h) {
    for (int i = 24; i >= 0; i -= 8) digest.push_back(static_cast<std::uint8_t>(word >> i));
  }
  return digest;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1 || size > 4096) return 0;
  Input input(data, size);
  const bool rotate = (input.u8() & 1) != 0;
  QLSHA sliced(rotate);
  std::vector<std::uint8_t> message;
  while (!input.isEmpty() && message.size() < 65536) {
    const std::uint8_t control = input.u8();
    const Bytes bytes = input.take(control & 63);
    std::vector<std::uint8_t> slice;
    for (int copies = 1 << (control >> 6); copies > 0; --copies) {
      slice.insert(slice.end(), bytes.begin(), bytes.end());
    }
    sliced.Update(slice.data(), static_cast<std::uint32_t>(slice.size()));
    message.insert(message.end(), slice.begin(), slice.end());
    require(sliced.blockFill == message.size() % 64, "the bytes that wait");
  }
  std::array<std::uint8_t, 20> digest{}, whole{};
  sliced.Final(digest.data());
  QLSHA once(rotate);
  once.Digest(message.data(), static_cast<std::uint32_t>(message.size()), whole.data());
  require(digest == whole, "slices make no difference");
  sliced.Restart();
  sliced.Digest(message.data(), static_cast<std::uint32_t>(message.size()), whole.data());
  require(digest == whole, "a restarted object is as a fresh one");
  const std::vector<std::uint8_t> model = modelDigest(message, rotate);
  require(std::equal(model.begin(), model.end(), digest.begin(), digest.end()),
          "the model's digest");
#ifdef ULM_FUZZ_WITH_OPENSSL
  if (rotate) {
    unsigned length = 0;
    std::array<std::uint8_t, EVP_MAX_MD_SIZE> peer{};
    EVP_Digest(message.data(), message.size(), peer.data(), &length, EVP_sha1(), nullptr);
    require(length == 20 && std::equal(digest.begin(), digest.end(), peer.begin()),
            "the digest is the peer's");
  }
#endif
  return 0;
}
