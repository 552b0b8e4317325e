// QLMessageDigest: a hash that takes its message in slices of any length.
#pragma once

#include <cstdint>

namespace ulm::bignum {

// Made or restarted, any number of Update, one Final. After that an object is spent: Restart comes
// before the next message. The order of the virtual operations is part of the interface. An object
// belongs to one thread at a time; nothing is shared between objects.
class QLMessageDigest {
 public:
  virtual ~QLMessageDigest();

  // Bytes in a digest.
  virtual std::uint32_t DigestSize() const = 0;
  // Begins a new message.
  virtual void Restart() = 0;
  // Adds `length` bytes to the message: borrowed, at any alignment; may be null where there are
  // none.
  virtual void Update(const std::uint8_t* bytes, std::uint32_t length) = 0;
  // Ends the message and writes DigestSize() bytes.
  virtual void Final(std::uint8_t* digest) = 0;
  // Update, then Final. The object is restarted neither before nor afterwards: what it has taken
  // already belongs to the message. The digest may be written over the bytes.
  virtual void Digest(const std::uint8_t* bytes, std::uint32_t length, std::uint8_t* digest);
};

}  // namespace ulm::bignum
