// OdArray: the object runtime's array. Copies of an array share one buffer with an atomic count; an
// array copies a shared buffer before it writes to it.
#pragma once

#include <atomic>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "hostsdk/export.h"
#include "hostsdk/odrx/od_error.h"

// The header of a buffer, directly before its elements.
struct alignas(16) OdArrayBuffer {
  std::atomic<std::uint32_t> references;
  std::int32_t
      growth;  // 1 or more: the capacity is a multiple of it; below 1: grows by -growth percent
  std::uint32_t capacity;  // in elements
  std::uint32_t length;    // in elements
};
static_assert(sizeof(OdArrayBuffer) == 16);

// The buffer of every array that has no buffer of its own. It is never counted, written or freed.
ULM_ODRX_CLASS extern OdArrayBuffer odArrayEmptyBuffer;

// The operations on buffers that do not depend on the element type. No pointer is null.
class ULM_ODRX_CLASS OdArrayMemory {
 public:
  // Returns a buffer of length 0 for `capacity` elements with one reference. Raises OdError with
  // kOdResultNoMemory if there is no memory, or if the size with the header exceeds 32 bits.
  static OdArrayBuffer* allocate(std::uint64_t capacity, std::uint32_t elementBytes,
                                 std::int32_t growth);
  // Returns such a buffer with the growth setting of `source` and its first min(length,
  // requestedLength) elements; `capacity` is at least that number. Raises as allocate does.
  static OdArrayBuffer* copy(const OdArrayBuffer& source, std::uint32_t elementBytes,
                             std::uint64_t capacity, std::uint32_t requestedLength);
  static void free(OdArrayBuffer* buffer) noexcept;
  // Returns the capacity of a new buffer for `required` elements. The sum cannot overflow.
  static std::uint64_t grownCapacity(std::uint32_t length, std::int32_t growth,
                                     std::uint32_t required) noexcept;
};

// An array of a trivially copyable type. One thread at a time uses an array object. Arrays that
// share a buffer may be read, changed and destroyed by different threads at the same time. An
// operation that raises an exception leaves the array unchanged. Every operation that copies or
// enlarges the buffer raises OdError with kOdResultNoMemory if there is no memory.
template <class T>
class OdArray {
  static_assert(std::is_trivially_copyable_v<T> && alignof(T) <= alignof(OdArrayBuffer));

 public:
  OdArray() noexcept : buffer_(&odArrayEmptyBuffer) {}
  // Makes an array of length 0 with a buffer for `capacity` elements. The type of the capacity is
  // wider than that of a length, so that a caller's sum cannot overflow.
  explicit OdArray(std::uint64_t capacity, std::int32_t growth)
      : buffer_(OdArrayMemory::allocate(capacity, sizeof(T), growth)) {}
  OdArray(const OdArray& other) noexcept : buffer_(other.buffer_) {
    if (buffer_ != &odArrayEmptyBuffer) {
      buffer_->references.fetch_add(1, std::memory_order_relaxed);
    }
  }
  OdArray(OdArray&& other) noexcept : buffer_(std::exchange(other.buffer_, &odArrayEmptyBuffer)) {}
  // Takes over the buffer of the argument, which is a copy (shared buffer) or was moved from.
  OdArray& operator=(OdArray other) noexcept {
    swap(other);
    return *this;
  }
  ~OdArray() { release(buffer_); }

  void swap(OdArray& other) noexcept { std::swap(buffer_, other.buffer_); }

  std::uint32_t length() const noexcept { return buffer_->length; }
  std::uint32_t capacity() const noexcept { return buffer_->capacity; }
  std::int32_t growth() const noexcept { return buffer_->growth; }

  // Returns the element at `index`; raises OdError_InvalidIndex if the index is not below the
  // length. The second form is for writing: it copies a shared buffer first. A reference is valid
  // until the array is resized, assigned, detached from a shared buffer or destroyed.
  const T& at(std::uint32_t index) const {
    if (index >= buffer_->length) throw OdError_InvalidIndex();
    return elements()[index];
  }
  T& at(std::uint32_t index) {
    if (index >= buffer_->length) throw OdError_InvalidIndex();
    detach();
    return elements()[index];
  }

  // Returns the first element of the contiguous buffer; never null. The second form copies a shared
  // buffer first.
  const T* data() const noexcept { return elements(); }
  T* data() {
    detach();
    return elements();
  }

  // Sets the length. Added elements are not initialised. If the length changes, a buffer that is
  // shared or too small is replaced; any other buffer keeps its capacity.
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
    // Acquire: if the count is 1, the reads of other threads that released the buffer happen
    // before.
    return buffer_->references.load(std::memory_order_acquire) > 1;
  }
  void detach() {
    if (isShared()) replaceBuffer(buffer_->capacity, buffer_->length);
  }
  void replaceBuffer(std::uint64_t capacity, std::uint32_t requestedLength) {
    OdArrayBuffer* replacement =
        OdArrayMemory::copy(*buffer_, sizeof(T), capacity, requestedLength);
    release(std::exchange(buffer_, replacement));
  }
  static void release(OdArrayBuffer* buffer) noexcept {
    if (buffer == &odArrayEmptyBuffer) return;
    if (buffer->references.fetch_sub(1, std::memory_order_acq_rel) == 1) {
      OdArrayMemory::free(buffer);
    }
  }

  OdArrayBuffer* buffer_;
};
