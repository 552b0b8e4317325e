// Message digests: QLMessageDigest, the interface of a streaming hash, and QLSHA, which computes
// SHA-1 of FIPS 180-1 or the first SHA of FIPS 180. The two differ in one rotation.
//
// Neither hash is safe against an adversary who makes messages that collide. They serve formats
// that require them. A processor's instructions for SHA are used if it has them, with the same
// digests and fields, except for the bytes of `block` that do not wait for a transform.
//
// Only the factories and operator new allocate; nothing throws. An object belongs to one thread at
// a time, and objects share nothing.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <new>

#include "hostsdk/adapter/alloc.h"

namespace ulm::bignum {

// A hash that takes its message in slices of any length. A fresh or restarted object takes any
// number of Update calls and one Final. After that it is spent, and Restart comes before the next
// message. The order of the virtual operations is part of the interface.
class QLMessageDigest {
 public:
  virtual ~QLMessageDigest();

  // Returns the bytes of a digest.
  virtual std::uint32_t DigestSize() const = 0;
  // Begins a new message.
  virtual void Restart() = 0;
  // Adds `length` bytes to the message. They are borrowed for the call, at any alignment; null is
  // allowed if length is 0.
  virtual void Update(const std::uint8_t* bytes, std::uint32_t length) = 0;
  // Ends the message and writes DigestSize() bytes; not null.
  virtual void Final(std::uint8_t* digest) = 0;
  // Update, then Final. It restarts the object neither before nor after: bytes that the object has
  // taken already belong to the message. The digest may overwrite the bytes.
  virtual void Digest(const std::uint8_t* bytes, std::uint32_t length, std::uint8_t* digest);
};

class QLSHA : public QLMessageDigest {
 public:
  // Anyone may read the fields.
  std::uint8_t rotateSchedule;  // 1: SHA-1; 0: the first SHA. Set by the constructor only
  std::uint32_t state[5];       // the chaining values H0 to H4; byte-reversed in a spent object
  std::uint32_t bitCountLow;    // the length of the message in bits, modulo 2^64
  std::uint32_t bitCountHigh;
  std::uint8_t block[64];   // starts with the bytes that wait for the rest of their block
  std::uint32_t blockFill;  // the number of these bytes, 0 to 63

  // A fresh object: SHA-1 if `rotate` is true, else the first SHA.
  explicit QLSHA(bool rotate);
  ~QLSHA() override;

  // Memory comes from the object runtime in every program. new returns null if there is none, with
  // std::nothrow and without.
  static void* operator new(std::size_t bytes) noexcept { return odrxAlloc(bytes); }
  static void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return odrxAlloc(bytes);
  }
  static void* operator new(std::size_t, void* memory) noexcept { return memory; }
  static void operator delete(void* memory) noexcept { odrxFree(memory); }
  // The language requires these next to the other two forms of new.
  static void operator delete(void* memory, const std::nothrow_t&) noexcept { odrxFree(memory); }
  static void operator delete(void*, void*) noexcept {}

  // 20.
  std::uint32_t DigestSize() const override;
  // rotateSchedule does not change.
  void Restart() override;
  // Linear time. It does no harm to a spent object, whose next digest has no meaning.
  void Update(const std::uint8_t* bytes, std::uint32_t length) override;
  // Writes H0 to H4, each with its high byte first. The digest of a spent object has no meaning.
  void Final(std::uint8_t* digest) override;
};

// Return a fresh object for SHA-1 and for the first SHA, which the caller deletes; null if there is
// no memory.
QLMessageDigest* CreateSHA1() noexcept;
QLMessageDigest* CreateSHA0() noexcept;

// Returns the value rotated left by `count` bits, modulo 32.
constexpr std::uint32_t RotateLeft(std::uint32_t value, std::uint32_t count) noexcept {
  return std::rotl(value, static_cast<int>(count & 31));
}

// Reverses the byte order of each whole group of 4 bytes, at any alignment. A tail of up to 3 bytes
// does not change. buffer may be null if byteCount is 0.
void ReverseWordBytes(void* buffer, std::size_t byteCount) noexcept;

}  // namespace ulm::bignum
