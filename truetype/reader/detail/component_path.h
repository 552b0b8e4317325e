// The way down through nested composites.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>

#include "truetype/detail/byte_view.h"
#include "truetype/detail/c_buffer.h"
#include "truetype/detail/component.h"
#include "truetype/list.h"
#include "truetype/reader/detail/placement.h"

namespace ulm::truetype::detail {

// What a walk has gathered at some place of an outline.
struct OutlineTotals {
  std::uint32_t room;    // in points; those of damaged components included where the walk counts
  std::uint32_t points;  // of whole components
  std::uint32_t contours;
};

// One record of a chain.
struct Component {
  std::uint16_t flags;
  std::uint16_t glyphIndex;
};

// Where a walk stands in one composite.
struct ComponentFrame {
  ByteView glyph;
  std::size_t record;  // of the component being worked on
  std::size_t next;    // of the one after, or kNoRecord
  std::uint32_t glyphIndex;
  OutlineTotals before;  // this composite
  PointOffset offset;    // of this composite's points, within the innermost record that scales
};

inline ComponentFrame frameOf(ByteView glyph, std::uint32_t glyphIndex,
                              const OutlineTotals& before = {}, PointOffset offset = {}) noexcept {
  return {glyph, kNoRecord, kFirstComponent, glyphIndex, before, offset};
}

// The composites that lead to the present one, from the outermost on. Beyond kInline it moves to
// the heap, once: no glyph stands on it twice, but for an outermost one that its caller left out of
// the path.
class ComponentPath {
 public:
  // `ancestry` may be null. `rootCounts`: whether the outermost glyph is part of the path.
  ComponentPath(const TrueTypeFont& font, const TTList* ancestry, bool rootCounts) noexcept
      : font_(font), ancestry_(ancestry), firstCounted_(rootCounts ? 0 : 1), frames_(inline_) {}
  ComponentPath(const ComponentPath&) = delete;
  ComponentPath& operator=(const ComponentPath&) = delete;

  bool empty() const noexcept { return depth_ == 0; }
  void clear() noexcept {
    while (!empty()) pop();
  }

  // Leaves `frame` behind for a glyph within it. False where memory runs out.
  bool push(const ComponentFrame& frame) noexcept {
    if (depth_ == kInline && frames_ == inline_ && !moveToHeap()) return false;
    std::construct_at(&frames_[depth_], frame);
    if (marks_ != nullptr && depth_ >= firstCounted_)
      mark(frame.glyphIndex) |= bit(frame.glyphIndex);
    ++depth_;
    return true;
  }

  ComponentFrame pop() noexcept {
    --depth_;
    const std::uint32_t index = frames_[depth_].glyphIndex;
    if (marks_ != nullptr && depth_ >= firstCounted_) mark(index) &= ~bit(index);
    return frames_[depth_];
  }

  // Whether a component of `frame` that names the glyph names it or one that leads to it.
  bool leadsBack(const ComponentFrame& frame, std::uint32_t glyphIndex) const noexcept {
    if (depth_ >= firstCounted_ && frame.glyphIndex == glyphIndex) return true;
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
  static constexpr std::size_t kInline = 31;

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
      std::construct_at(&frames_[i], inline_[i]);
      if (i >= firstCounted_) mark(inline_[i].glyphIndex) |= bit(inline_[i].glyphIndex);
    }
    return true;
  }

  const TrueTypeFont& font_;
  const TTList* ancestry_;
  std::size_t firstCounted_;
  std::size_t depth_ = 0;
  union {  // not made until used
    ComponentFrame inline_[kInline];
  };
  ComponentFrame* frames_;
  std::uint64_t* marks_ = nullptr;
  CBuffer<unsigned char> block_;
};

}  // namespace ulm::truetype::detail
