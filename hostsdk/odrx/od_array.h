// OdArray: the object runtime's array. Its buffer is shared between copies under an atomic count
// and copied before the first write; it grows by a setting of its own.
#pragma once

#include <atomic>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "hostsdk/export.h"
#include "hostsdk/odrx/od_error.h"

// What stands before the elements of a buffer.
struct alignas(16) OdArrayBuffer {
  std::atomic<std::uint32_t> references;
  std::int32_t growth;  // below 1: that many percent of the length are added; else a step
  std::uint32_t capacity;
  std::uint32_t length;
};
static_assert(sizeof(OdArrayBuffer) == 16);

// The buffer of every array without elements of its own: never counted, written or freed.
ULM_ODRX_CLASS extern OdArrayBuffer odArrayEmptyBuffer;

class ULM_ODRX_CLASS OdArrayMemory {
 public:
  // A buffer of length 0 for `capacity` elements with one reference. Raises OdError 9 where there
  // is no memory, or where its bytes, header and all, do not fit into 32 bits.
  static OdArrayBuffer* allocate(std::uint64_t capacity, std::uint32_t elementBytes,
                                 std::int32_t growth);
  // The same with the first elements of `source`, the smaller of its length and `requestedLength`,
  // and its growth setting.
  static OdArrayBuffer* copy(const OdArrayBuffer& source, std::uint32_t elementBytes,
                             std::uint64_t capacity, std::uint32_t requestedLength);
  static void free(OdArrayBuffer* buffer) noexcept;
  // The capacity that a buffer gets when it must hold `required` elements. Cannot wrap.
  static std::uint64_t grownCapacity(std::uint32_t length, std::int32_t growth,
                                     std::uint32_t required) noexcept;
};

// Copies share the buffer. One array object belongs to one thread at a time; arrays that share a
// buffer may be used, changed and destroyed by different threads at once.
// After any exception the array is as it was.
template <class T>
class OdArray {
  static_assert(std::is_trivially_copyable_v<T> && alignof(T) <= alignof(OdArrayBuffer));

 public:
  OdArray() noexcept : buffer_(&odArrayEmptyBuffer) {}
  // Length 0, room for `capacity` elements. The capacity is wider than a length so that a caller's
  // sum cannot wrap on the way in.
  explicit OdArray(std::uint64_t capacity, std::int32_t growth)
      : buffer_(OdArrayMemory::allocate(capacity, sizeof(T), growth)) {}
  OdArray(const OdArray& other) noexcept : buffer_(other.buffer_) {
    if (buffer_ != &odArrayEmptyBuffer) {
      buffer_->references.fetch_add(1, std::memory_order_relaxed);
    }
  }
  OdArray(OdArray&& other) noexcept : buffer_(std::exchange(other.buffer_, &odArrayEmptyBuffer)) {}
  // Shares what was copied, or takes over what was moved, into the argument.
  OdArray& operator=(OdArray other) noexcept {
    swap(other);
    return *this;
  }
  ~OdArray() { release(buffer_); }

  void swap(OdArray& other) noexcept { std::swap(buffer_, other.buffer_); }

  std::uint32_t length() const noexcept { return buffer_->length; }
  std::uint32_t capacity() const noexcept { return buffer_->capacity; }
  std::int32_t growth() const noexcept { return buffer_->growth; }

  // The element at `index`, raising OdError_InvalidIndex where it is not below the length. The
  // second form is for writing and detaches: a shared buffer is copied first. A reference holds
  // until the array is resized, assigned or destroyed.
  const T& at(std::uint32_t index) const {
    if (index >= buffer_->length) throw OdError_InvalidIndex();
    return elements()[index];
  }
  T& at(std::uint32_t index) {
    if (index >= buffer_->length) throw OdError_InvalidIndex();
    detach();
    return elements()[index];
  }

  // The elements in a row; the second form detaches.
  const T* data() const noexcept { return elements(); }
  T* data() {
    detach();
    return elements();
  }

  // Sets the length. Elements that it adds are not initialised. A buffer that is shared or too
  // small is replaced; one that is large enough stays, its capacity as it is.
  void resize(std::uint32_t length) {
    if (length == buffer_->length) return;
    if (length > buffer_->capacity) {
      replaceBuffer(OdArrayMemory::grownCapacity(buffer_->length, buffer_->growth, length), length);
    } else if (isShared()) {
      replaceBuffer(buffer_->capacity, length);
    }
    buffer_->length = length;
  }

  // Adds a copy of `value`, which may be an element of this array.
  void append(const T& value) {
    const T copy = value;
    if (buffer_->length == UINT32_MAX) throw OdError(kOdResultNoMemory);
    resize(buffer_->length + 1);
    elements()[buffer_->length - 1] = copy;
  }

 private:
  T* elements() const noexcept { return reinterpret_cast<T*>(buffer_ + 1); }
  bool isShared() const noexcept {
    // Acquire: once alone with the buffer, the reads of the others that let it go are over.
    return buffer_->references.load(std::memory_order_acquire) > 1;
  }
  void detach() {
    if (isShared()) replaceBuffer(buffer_->capacity, buffer_->length);
  }
  void replaceBuffer(std::uint64_t capacity, std::uint32_t requestedLength) {
    OdArrayBuffer* fresh = OdArrayMemory::copy(*buffer_, sizeof(T), capacity, requestedLength);
    release(std::exchange(buffer_, fresh));
  }
  static void release(OdArrayBuffer* buffer) noexcept {
    if (buffer == &odArrayEmptyBuffer) return;
    if (buffer->references.fetch_sub(1, std::memory_order_acq_rel) == 1) {
      OdArrayMemory::free(buffer);
    }
  }

  OdArrayBuffer* buffer_;
};
