// One record of a composite glyph, and the way down through nested composites.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>

#include "truetype/detail/byte_view.h"
#include "truetype/detail/c_buffer.h"
#include "truetype/list.h"

namespace ulm::truetype::detail {

enum ComponentFlag : std::uint16_t {
  kArgumentsAreWords = 0x0001,
  kArgumentsAreSigned = 0x0002,
  kHasScale = 0x0008,
  kMoreComponents = 0x0020,
  kHasTwoScales = 0x0040,
  kHasMatrix = 0x0080,
  kLendsMetrics = 0x0200,
};

inline constexpr std::size_t kFirstComponent = 10;

// Bytes of a record with these flags.
constexpr std::size_t componentSize(std::uint16_t flags) noexcept {
  const std::size_t arguments = (flags & kArgumentsAreWords) != 0 ? 8 : 6;
  if ((flags & kHasScale) != 0) return arguments + 2;
  if ((flags & kHasTwoScales) != 0) return arguments + 4;
  if ((flags & kHasMatrix) != 0) return arguments + 8;
  return arguments;
}

// Where a walk stands in one composite.
struct ComponentFrame {
  ByteView glyph;
  std::size_t record;  // of the component being worked on
  std::size_t next;    // of the one after, or kNoRecord
  std::uint32_t glyphIndex;
  std::uint32_t firstPoint;  // points before those of this composite
};
inline constexpr std::size_t kNoRecord = SIZE_MAX;

// The composites from the outermost to the present one. Beyond kInline it moves to the heap, once:
// no glyph stands on it twice, but for an outermost one that its caller left out of the path.
class ComponentPath {
 public:
  // `ancestry` may be null. `rootCounts`: whether the outermost glyph is part of the path.
  ComponentPath(const TrueTypeFont& font, const TTList* ancestry, bool rootCounts) noexcept
      : font_(font), ancestry_(ancestry), firstCounted_(rootCounts ? 0 : 1) {}
  ComponentPath(const ComponentPath&) = delete;
  ComponentPath& operator=(const ComponentPath&) = delete;

  bool empty() const noexcept { return depth_ == 0; }
  ComponentFrame& top() noexcept { return frames_[depth_ - 1]; }
  void clear() noexcept {
    while (!empty()) pop();
  }

  // False where memory runs out.
  bool push(const ComponentFrame& frame) noexcept {
    if (depth_ == kInline && frames_ == inline_ && !moveToHeap()) return false;
    frames_[depth_] = frame;
    if (marks_ != nullptr && depth_ >= firstCounted_)
      mark(frame.glyphIndex) |= bit(frame.glyphIndex);
    ++depth_;
    return true;
  }

  void pop() noexcept {
    --depth_;
    const std::uint32_t index = frames_[depth_].glyphIndex;
    if (marks_ != nullptr && depth_ >= firstCounted_) mark(index) &= ~bit(index);
  }

  bool contains(std::uint32_t glyphIndex) const noexcept {
    if (ancestry_ != nullptr) {
      for (const TTListNode* node = ancestry_->first; node != nullptr; node = node->next) {
        if (reinterpret_cast<std::uintptr_t>(node->item) == glyphIndex) return true;
      }
    }
    if (marks_ != nullptr) return (marks_[glyphIndex / 64] & bit(glyphIndex)) != 0;
    for (std::size_t i = firstCounted_; i < depth_; ++i) {
      if (frames_[i].glyphIndex == glyphIndex) return true;
    }
    return false;
  }

 private:
  static constexpr std::size_t kInline = 32;

  static std::uint64_t bit(std::uint32_t glyphIndex) noexcept {
    return std::uint64_t{1} << glyphIndex % 64;
  }
  std::uint64_t& mark(std::uint32_t glyphIndex) noexcept { return marks_[glyphIndex / 64]; }

  // Frames and marks in one block, so that the way down costs one allocation.
  bool moveToHeap() noexcept {
    static_assert(sizeof(ComponentFrame) % alignof(std::uint64_t) == 0);
    const std::size_t capacity = std::size_t{font_.numGlyphs} + 2;
    const std::size_t frameBytes = capacity * sizeof(ComponentFrame);
    block_.reset(static_cast<unsigned char*>(
        std::calloc(frameBytes + (capacity / 64 + 1) * sizeof(std::uint64_t), 1)));
    if (block_ == nullptr) return false;
    frames_ = reinterpret_cast<ComponentFrame*>(block_.get());
    marks_ = reinterpret_cast<std::uint64_t*>(block_.get() + frameBytes);
    for (std::size_t i = 0; i < depth_; ++i) {
      frames_[i] = inline_[i];
      if (i >= firstCounted_) mark(inline_[i].glyphIndex) |= bit(inline_[i].glyphIndex);
    }
    return true;
  }

  const TrueTypeFont& font_;
  const TTList* ancestry_;
  std::size_t firstCounted_;
  std::size_t depth_ = 0;
  ComponentFrame inline_[kInline];
  ComponentFrame* frames_ = inline_;
  std::uint64_t* marks_ = nullptr;
  CBuffer<unsigned char> block_;
};

}  // namespace ulm::truetype::detail
