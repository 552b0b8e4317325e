// The explicit stack of walks that are not recursive.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>

#include "truetype/detail/c_buffer.h"

namespace ulm::truetype::detail {

// The first kInline frames are in the object itself, since few walks go deeper; beyond them all are
// on the heap.
template <class Frame, std::size_t kInline>
class Stack {
  static_assert(std::is_trivially_copyable_v<Frame>);

 public:
  Stack() noexcept : frames_(inline_) {}
  Stack(const Stack&) = delete;
  Stack& operator=(const Stack&) = delete;

  std::size_t depth() const noexcept { return depth_; }
  bool empty() const noexcept { return depth_ == 0; }
  bool isFull() const noexcept { return depth_ == capacity_; }
  // From the bottom, which has index 0.
  const Frame& operator[](std::size_t index) const noexcept { return frames_[index]; }

  // False without memory. Needs none below the capacity.
  bool push(const Frame& frame) noexcept {
    if (isFull() && !grow(2 * capacity_, 0)) return false;
    std::construct_at(frames_ + depth_++, frame);
    return true;
  }
  Frame pop() noexcept { return frames_[--depth_]; }

  // Moves the frames into one block for `capacity` of them, more than before, with `extraBytes`
  // zero bytes after them. False without memory.
  bool grow(std::size_t capacity, std::size_t extraBytes) noexcept {
    const std::size_t frameBytes = capacity * sizeof(Frame);
    CBuffer<unsigned char> block = makeBuffer<unsigned char>(frameBytes + extraBytes);
    if (block == nullptr) return false;
    auto* moved = reinterpret_cast<Frame*>(block.get());
    std::uninitialized_copy_n(frames_, depth_, moved);
    std::fill_n(block.get() + frameBytes, extraBytes, static_cast<unsigned char>(0));
    heap_ = std::move(block);
    frames_ = moved;
    capacity_ = capacity;
    return true;
  }
  // The extra bytes, aligned as a frame is. Only after `grow`.
  unsigned char* extra() noexcept { return heap_.get() + capacity_ * sizeof(Frame); }

 private:
  union {  // a frame is made when it is pushed
    Frame inline_[kInline];
  };
  Frame* frames_;
  std::size_t depth_ = 0;
  std::size_t capacity_ = kInline;
  CBuffer<unsigned char> heap_;
};

}  // namespace ulm::truetype::detail
