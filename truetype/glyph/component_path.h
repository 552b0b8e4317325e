// The way down through nested composites.
#pragma once

#include <cstddef>
#include <cstdint>

#include "truetype/detail/font_views.h"
#include "truetype/detail/stack.h"
#include "truetype/glyph/component_records.h"
#include "truetype/glyph/placement.h"
#include "truetype/list.h"

namespace ulm::truetype::detail {

// What a walk has gathered up to some point of an outline.
struct OutlineTotals {
  std::uint32_t capacity;  // points, with those of damaged components where the walk counts
  std::uint32_t points;    // of whole components
  std::uint32_t contours;
};

// How far a walk is in one composite.
struct ComponentFrame {
  ComponentRecords records;
  ComponentRecord current;  // the record being worked on
  std::uint32_t glyphIndex;
  OutlineTotals before;  // this composite
  PointOffset offset;    // of this composite's points, within the innermost record that scales
};

inline ComponentFrame frameOf(ByteView glyph, std::uint32_t glyphIndex,
                              const OutlineTotals& before = {}, PointOffset offset = {}) noexcept {
  return {ComponentRecords(glyph), {}, glyphIndex, before, offset};
}

// The composites that lead to the present one, from the outermost on. It moves to the heap once, if
// at all: no glyph is on it twice, but for an outermost one that its caller left out of the path.
class ComponentPath {
 public:
  // `ancestry` may be null. `rootCounts`: whether the outermost glyph is part of the path.
  ComponentPath(const TrueTypeFont& font, const TTList* ancestry, bool rootCounts) noexcept
      : font_(font), ancestry_(ancestry), firstCounted_(rootCounts ? 0 : 1) {}

  bool empty() const noexcept { return frames_.empty(); }
  void clear() noexcept {
    while (!empty()) pop();
  }

  // Adds `frame`, which is left for a glyph within it. False without memory.
  bool push(const ComponentFrame& frame) noexcept {
    if (frames_.isFull() && !moveToHeap()) return false;
    if (marks_ != nullptr && frames_.depth() >= firstCounted_) mark(frame.glyphIndex);
    return frames_.push(frame);
  }

  ComponentFrame pop() noexcept {
    const ComponentFrame frame = frames_.pop();
    if (marks_ != nullptr && frames_.depth() >= firstCounted_) unmark(frame.glyphIndex);
    return frame;
  }

  // Whether a component of `frame` that names the glyph names it or one that leads to it.
  bool leadsBack(const ComponentFrame& frame, std::uint32_t glyphIndex) const noexcept {
    if (frames_.depth() >= firstCounted_ && frame.glyphIndex == glyphIndex) return true;
    if (ancestry_ != nullptr) {
      for (const TTListNode* node = ancestry_->first; node != nullptr; node = node->next) {
        if (reinterpret_cast<std::uintptr_t>(node->item) == glyphIndex) return true;
      }
    }
    if (marks_ != nullptr) return (marks_[glyphIndex / 8] & bit(glyphIndex)) != 0;
    for (std::size_t i = firstCounted_; i < frames_.depth(); ++i) {
      if (frames_[i].glyphIndex == glyphIndex) return true;
    }
    return false;
  }

 private:
  static unsigned char bit(std::uint32_t glyphIndex) noexcept {
    return static_cast<unsigned char>(1u << glyphIndex % 8);
  }
  void mark(std::uint32_t glyphIndex) noexcept { marks_[glyphIndex / 8] |= bit(glyphIndex); }
  void unmark(std::uint32_t glyphIndex) noexcept {
    marks_[glyphIndex / 8] &= static_cast<unsigned char>(~bit(glyphIndex));
  }

  // Room for all glyphs at once, and a mark for each in the same block, so that a deep path costs
  // one allocation and finding a glyph on it one read.
  bool moveToHeap() noexcept {
    const std::size_t glyphs = font_.numGlyphs;
    if (!frames_.grow(glyphs + 2, glyphs / 8 + 1)) return false;
    marks_ = frames_.extra();
    for (std::size_t i = firstCounted_; i < frames_.depth(); ++i) mark(frames_[i].glyphIndex);
    return true;
  }

  static constexpr std::size_t kInline = 31;

  const TrueTypeFont& font_;
  const TTList* ancestry_;
  std::size_t firstCounted_;
  Stack<ComponentFrame, kInline> frames_;
  unsigned char* marks_ = nullptr;
};

}  // namespace ulm::truetype::detail
