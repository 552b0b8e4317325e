// What the outline of a glyph counts, as it adds up through nested composites.
#pragma once

#include <cstdint>

#include "truetype/glyph/component_records.h"
#include "truetype/glyph/limits.h"
#include "truetype/glyph/simple_glyph.h"

namespace ulm::truetype::detail {

// What a glyph adds to a composite that uses it, counted as the reader does. The reader's work on a
// composite has bounds; the first three stop growing far beyond them.
struct OutlineCounts {
  std::uint32_t records;   // of components, at all levels; kUnknownRecords where nothing is known
  std::uint32_t work;      // as glyph/limits.h defines it
  std::uint32_t capacity;  // points, with those of damaged outlines
  std::uint16_t points;    // modulo 65,536, as GlyphData has them
  std::uint16_t contours;
};
inline constexpr std::uint32_t kUnknownRecords = 0xFFFFFFFF;

// The counts of a glyph that is no composite.
inline OutlineCounts simpleCounts(const SimpleShape& shape) noexcept {
  return {0, shape.ends + shape.capacity, shape.capacity, static_cast<std::uint16_t>(shape.points),
          static_cast<std::uint16_t>(shape.contours)};
}

// The counts of a composite's components as they add up. There are too few of them to pass 64 bits.
struct CountSums {
  std::uint64_t records, work, capacity;
  std::uint32_t points, contours;
  bool unknown;

  // `flags` are those of the component's record.
  void add(const OutlineCounts& component, std::uint16_t flags) noexcept {
    records += std::uint64_t{component.records} + 1;
    work += component.work + placementWork(flags) * component.capacity;
    capacity += component.capacity;
    points += component.points;
    contours += component.contours;
    unknown = unknown || component.records == kUnknownRecords;
  }
  // The composite's own counts. It has no points where its chain of components is cut.
  OutlineCounts total(bool isCut) const noexcept {
    constexpr std::uint64_t kCap = 1u << 24;
    static_assert(kCap > kMostComponentRecords && kCap > kMostOutlineWork);
    const auto capped = [](std::uint64_t value) {
      return static_cast<std::uint32_t>(value < kCap ? value : kCap);
    };
    return {unknown ? kUnknownRecords : capped(records), capped(work), isCut ? 0 : capped(capacity),
            static_cast<std::uint16_t>(isCut ? 0 : points),
            static_cast<std::uint16_t>(isCut ? 0 : contours)};
  }
};

}  // namespace ulm::truetype::detail
