// The component records of a composite glyph.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "truetype/detail/font_views.h"
#include "truetype/format/glyf.h"

namespace ulm::truetype::detail {

// One record. Its flags and glyph index are there; its arguments and scales where it is whole.
struct ComponentRecord {
  std::size_t offset;  // in the glyph
  std::uint16_t flags;
  std::uint16_t glyphIndex;
  bool isWhole;
};

// The records of a composite in their order, as far as the glyph's bytes go.
//   for (ComponentRecords records(glyph); const auto record = records.next();) ...
class ComponentRecords {
 public:
  ComponentRecords() noexcept = default;
  // `glyph` without bytes has no records.
  explicit ComponentRecords(ByteView glyph) noexcept : glyph_(glyph) {}

  ByteView glyph() const noexcept { return glyph_; }

  // Nothing after the last record, and where the bytes end before a record's flags and index do.
  std::optional<ComponentRecord> next() noexcept {
    using format::Component;
    const std::size_t offset = next_;
    if (!glyph_.holds(offset, Component::kHeadSize)) return std::nullopt;
    const auto head = glyph_.readHeld<std::uint32_t>(offset + Component::kHead.kOffset);
    const auto flags = static_cast<std::uint16_t>(head >> 16);
    const std::size_t size = Component::size(flags);
    next_ = (flags & Component::kMoreComponents) != 0 ? offset + size : kAtEnd;
    return ComponentRecord{offset, flags, static_cast<std::uint16_t>(head),
                           glyph_.holds(offset, size)};
  }
  // Whether the last record has been read. If it has not, but `next` returned nothing, the chain is
  // cut.
  bool atEnd() const noexcept { return next_ == kAtEnd; }

 private:
  static constexpr std::size_t kAtEnd = SIZE_MAX;  // no glyph has bytes there

  ByteView glyph_;
  std::size_t next_ = format::Component::kFirst;
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
