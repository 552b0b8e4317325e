// The component records of a composite glyph.
#pragma once

#include <cstddef>
#include <cstdint>

#include "truetype/detail/font_views.h"
#include "truetype/format/glyf.h"

namespace ulm::truetype::detail {

// One record.
struct ComponentRecord {
  std::uint32_t offset;  // in the glyph
  std::uint16_t flags;
  std::uint16_t glyphIndex;
};

// The records of a composite in their order, as far as the glyph's bytes go.
//   ComponentRecords records(glyph);
//   for (ComponentRecord record; records.next(&record);) ...
class ComponentRecords {
 public:
  ComponentRecords() noexcept = default;
  // `glyph` without bytes has no records. It is part of an image, so its size has 31 bits.
  explicit ComponentRecords(ByteView glyph) noexcept : glyph_(glyph) {}

  ByteView glyph() const noexcept { return glyph_; }

  // Sets `out` to the next record. False, with `out` as it was, after the last record, and where
  // the bytes end before a record's flags and index do.
  bool next(ComponentRecord* out) noexcept {
    using format::Component;
    const std::uint32_t offset = next_;
    if (!glyph_.holds(offset, Component::kHeadSize)) return false;
    const auto head = glyph_.readHeld<std::uint32_t>(offset + Component::kHead.kOffset);
    const auto flags = static_cast<std::uint16_t>(head >> 16);
    const bool hasNext = (flags & Component::kMoreComponents) != 0;
    next_ = hasNext ? offset + static_cast<std::uint32_t>(Component::size(flags)) : kAtEnd;
    // Field by field: a record that is stored in parts and then copied in one piece stalls the
    // load.
    out->offset = offset;
    out->flags = flags;
    out->glyphIndex = static_cast<std::uint16_t>(head);
    return true;
  }
  // Whether a record's arguments and scales are there too.
  bool holds(const ComponentRecord& record) const noexcept {
    return glyph_.holds(record.offset, format::Component::size(record.flags));
  }
  // Whether the last record has been read. If it has not, but `next` returned false, the chain is
  // cut.
  bool atEnd() const noexcept { return next_ == kAtEnd; }

 private:
  static constexpr std::uint32_t kAtEnd = UINT32_MAX;  // no glyph has bytes there

  ByteView glyph_;
  std::uint32_t next_ = format::Component::kFirst;
};

// The contour count in a glyph's header, 0 for a glyph without data.
inline std::int16_t contourCount(ByteView glyph) noexcept {
  using format::GlyphHeader;
  return RecordView<GlyphHeader>(glyph).readOrZero(GlyphHeader::kContourCount);
}

// The bytes of a composite, none for any other glyph. `glyphIndex` is below numGlyphs.
inline ByteView compositeView(const TrueTypeFont& font, std::uint32_t glyphIndex) noexcept {
  const ByteView glyph = glyphView(font, glyphIndex);
  return contourCount(glyph) == format::GlyphHeader::kComposite ? glyph : ByteView();
}

// Whether a record with these flags does more than move its points.
constexpr bool isScaled(std::uint16_t flags) noexcept {
  return (flags & format::Component::kScaleFlags) != 0;
}

// Work of placing one point, in units of one point read.
constexpr std::uint64_t placementWork(std::uint16_t flags) noexcept {
  if (!isScaled(flags)) return 0;
  return format::Component::scaleCount(flags) <= 2 ? 2 : 3;
}

}  // namespace ulm::truetype::detail
