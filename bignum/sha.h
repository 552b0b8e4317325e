// QLSHA: SHA-1 of FIPS 180-1 and the first SHA of FIPS 180, which differ in one rotation.
//
// Neither hash is safe against somebody who makes messages that collide; they serve formats that
// ask for them. Where the processor has instructions for SHA they are used, with the same digests
// and the same fields but for the bytes of `block` that are not waiting. Nothing here allocates but
// the factories, and nothing throws.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "bignum/digest.h"
#include "hostsdk/adapter/alloc.h"

namespace ulm::bignum {

class QLSHA : public QLMessageDigest {
 public:
  // The object, to be read by anyone.
  std::uint8_t rotateSchedule;  // 1: SHA-1; 0: the first SHA. Fixed at construction
  std::uint32_t state[5];       // the chaining values H0 to H4; byte-reversed in a spent object
  std::uint32_t bitCountLow;    // the length of the message in bits, which wraps at 2^64
  std::uint32_t bitCountHigh;
  std::uint8_t block[64];   // input that waits for the rest of its block, at the start
  std::uint32_t blockFill;  // bytes that wait, 0 to 63

  // As after Restart.
  explicit QLSHA(bool rotate);
  ~QLSHA() override;

  // Objects live in the runtime's memory in every program. A `new QLSHA` is null where it gives
  // none.
  static void* operator new(std::size_t bytes) noexcept { return odrxAlloc(bytes); }
  static void* operator new(std::size_t, void* place) noexcept { return place; }
  static void operator delete(void* memory) noexcept { odrxFree(memory); }
  static void operator delete(void*, void*) noexcept {}  // pairs with the placement form

  std::uint32_t DigestSize() const override;  // 20
  // Keeps rotateSchedule.
  void Restart() override;
  // Linear in the length. On a spent object it does no harm and means nothing.
  void Update(const std::uint8_t* bytes, std::uint32_t length) override;
  // Writes 20 bytes: H0 first, each word big-endian. On a spent object they mean nothing.
  void Final(std::uint8_t* digest) override;
};

// A fresh object for SHA-1 and for the first SHA, owned by the caller, who deletes it; null where
// there is no memory.
QLMessageDigest* CreateSHA1() noexcept;
QLMessageDigest* CreateSHA0() noexcept;

// The value rotated left by `count` bits, modulo 32.
constexpr std::uint32_t RotateLeft(std::uint32_t value, std::uint32_t count) noexcept {
  return std::rotl(value, static_cast<int>(count & 31));
}

// Reverses the byte order of each whole group of 4 bytes, at any alignment; a tail of up to 3 bytes
// stays as it is.
void ReverseWordBytes(void* buffer, std::size_t byteCount) noexcept;

}  // namespace ulm::bignum
