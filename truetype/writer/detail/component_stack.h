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
#include "truetype/detail/component.h"
#include "truetype/reader/glyphs.h"
#include "truetype/records.h"
#include "truetype/writer/detail/glyph_index.h"

namespace ulm::truetype::detail {

// The counts of components as they add up. So many of them can't pass 64 bits.
struct CountSums {
  std::uint64_t records, work, room;
  std::uint32_t points, contours;
  bool unknown;

  // `flags` are those of the component's record.
  void add(const OutlineCounts& component, std::uint16_t flags) noexcept {
    records += std::uint64_t{component.records} + 1;
    work += component.work + placementWork(flags) * component.room;
    room += component.room;
    points += component.points;
    contours += component.contours;
    unknown = unknown || component.records == kUnknownRecords;
  }
  // With no points of its own where its chain of components is cut.
  OutlineCounts total(bool cut) const noexcept {
    constexpr std::uint64_t kCap = 1u << 24;
    static_assert(kCap > kMostComponentRecords && kCap > kMostOutlineWork);
    const auto capped = [](std::uint64_t value) {
      return static_cast<std::uint32_t>(value < kCap ? value : kCap);
    };
    return {unknown ? kUnknownRecords : capped(records), capped(work), cut ? 0 : capped(room),
            static_cast<std::uint16_t>(cut ? 0 : points),
            static_cast<std::uint16_t>(cut ? 0 : contours)};
  }
};

// One composite on the way down.
struct OpenComposite {
  ByteView glyph;
  std::size_t next;             // the record to come, or kNoRecord
  std::size_t own;              // length of the glyph's own bytes
  std::uint32_t place;          // in the index
  std::uint16_t referencesEnd;  // of the bytes in `record` whose references are made new ones
  std::uint16_t flags;          // of the record that is being worked on
  bool cut;                     // its chain of components, by the end of glyf
  GlyphData* record;            // to be given the counts, or null
  CountSums sums;               // of the components so far
};
static_assert(std::is_trivially_copyable_v<OpenComposite>);

// Few glyphs nest more than two deep, so that the first ones stay off the heap.
class ComponentStack {
 public:
  ComponentStack() noexcept {}
  ComponentStack(const ComponentStack&) = delete;
  ComponentStack& operator=(const ComponentStack&) = delete;

  bool empty() const noexcept { return depth_ == 0; }
  OpenComposite pop() noexcept { return frames_[--depth_]; }

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
