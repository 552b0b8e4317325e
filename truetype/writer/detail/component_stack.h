// Where a walk through nested composites stands.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <type_traits>
#include <utility>

#include "truetype/detail/byte_view.h"
#include "truetype/detail/c_buffer.h"
#include "truetype/records.h"
#include "truetype/writer/detail/glyph_index.h"

namespace ulm::truetype::detail {

// One composite on the way down.
struct OpenComposite {
  ByteView glyph;
  std::size_t next;  // the record to come
  std::uint32_t glyphIndex;
  OutlineCounts counts;  // of the components so far
  GlyphData* record;     // to be given the counts, or null
  bool cut;              // its chain of components, by the end of glyf
};
static_assert(std::is_trivially_copyable_v<OpenComposite>);

// Few glyphs nest more than two deep, so that the first ones stay off the heap.
class ComponentStack {
 public:
  ComponentStack() noexcept {}
  ComponentStack(const ComponentStack&) = delete;
  ComponentStack& operator=(const ComponentStack&) = delete;

  bool empty() const noexcept { return depth_ == 0; }
  OpenComposite& top() noexcept { return frames_[depth_ - 1]; }
  void pop() noexcept { --depth_; }

  // False without memory.
  bool push(const OpenComposite& frame) noexcept {
    if (depth_ == capacity_ && !grow()) return false;
    std::construct_at(frames_ + depth_++, frame);
    return true;
  }

 private:
  static constexpr std::size_t kInline = 8;

  bool grow() noexcept {
    CBuffer<std::uint8_t> larger = makeBuffer<std::uint8_t>(2 * capacity_ * sizeof(OpenComposite));
    if (larger == nullptr) return false;
    std::memcpy(larger.get(), static_cast<const void*>(frames_), depth_ * sizeof(OpenComposite));
    heap_ = std::move(larger);
    frames_ = reinterpret_cast<OpenComposite*>(heap_.get());
    capacity_ *= 2;
    return true;
  }

  union {  // each made when it is pushed
    OpenComposite inline_[kInline];
  };
  OpenComposite* frames_ = inline_;
  std::size_t depth_ = 0;
  std::size_t capacity_ = kInline;
  CBuffer<std::uint8_t> heap_;
};

}  // namespace ulm::truetype::detail
