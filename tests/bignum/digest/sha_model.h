// A model of both hashes, written from the text of the standards. It pads the message as a whole,
// and each step chooses its function by its index. It shares no code with the library and is tested
// against the published answers too.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ulm::bignum::test {

using Bytes = std::vector<std::uint8_t>;

inline std::uint32_t rotated(std::uint32_t x, int n) { return x << n | x >> (32 - n); }

// `bitsBefore` counts whole blocks before the message that did not change the state.
inline Bytes modelDigest(Bytes message, bool rotate, std::uint64_t bitsBefore = 0) {
  const std::uint64_t bits = bitsBefore + message.size() * 8;
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
  Bytes digest;
  for (const std::uint32_t word : h) {
    for (int i = 24; i >= 0; i -= 8) digest.push_back(static_cast<std::uint8_t>(word >> i));
  }
  return digest;
}

// Bytes without a period that blocks or words could hide.
inline Bytes messageOf(std::size_t length) {
  Bytes message(length);
  std::uint32_t mixed = 1;
  for (std::uint8_t& byte : message) {
    mixed = mixed * 1664525 + 1013904223;
    byte = static_cast<std::uint8_t>(mixed >> 24);
  }
  return message;
}

}  // namespace ulm::bignum::test
