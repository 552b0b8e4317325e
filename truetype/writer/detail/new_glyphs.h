// The glyphs of a font that is being assembled, as its other tables need them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "truetype/detail/font_views.h"
#include "truetype/format/byte_sink.h"
#include "truetype/format/glyf.h"
#include "truetype/format/hmtx.h"
#include "truetype/format/maxp.h"
#include "truetype/writer/result.h"

namespace ulm::truetype::detail {

using format::kMaxGlyphCount;

// A box around the origin and the boxes of glyphs, in font units.
struct FontBox {
  std::int16_t xMin = 0, yMin = 0, xMax = 0, yMax = 0;

  // The last byte of a glyph's header may be the zero that makes a length even. A shorter glyph
  // adds nothing.
  void include(ByteView glyph) noexcept {
    using format::GlyphHeader;
    constexpr std::size_t kTop = GlyphHeader::kYMax.kOffset;
    if (glyph.size() < GlyphHeader::kSize - 1) return;
    const bool isCut = glyph.size() < GlyphHeader::kSize;
    const std::int32_t top =
        isCut ? glyph.readHeld<std::int8_t>(kTop) * 0x100 : glyph.readHeld<std::int16_t>(kTop);
    const auto header = FixedView<GlyphHeader, kTop>::vouched(glyph.start());
    widen(xMin, xMax, header.get(GlyphHeader::kXMin), header.get(GlyphHeader::kXMax));
    widen(yMin, yMax, header.get(GlyphHeader::kYMin), static_cast<std::int16_t>(top));
  }

 private:
  static void widen(std::int16_t& low, std::int16_t& high, std::int16_t from,
                    std::int16_t to) noexcept {
    if (from < low) low = from;
    if (to > high) high = to;
  }
};

// What glyphs come to, read in one pass over them.
struct GlyphTotals {
  std::uint32_t bytes = 0;
  static_assert(std::uint64_t{kMaxGlyphCount} * UINT16_MAX <= UINT32_MAX);
  std::uint16_t points = 0, contours = 0, compositePoints = 0, compositeContours = 0;
  std::uint32_t longMetrics = 1;  // glyphs from here on have the advance of the last long one
  std::uint16_t allLengths = 0;   // or-ed together

  // Reads `count` records, at most kMaxGlyphCount; next() returns one after the other, which has
  // the fields of GlyphData. `offsets` gets where each glyph begins and the last one ends,
  // `metrics` a long entry of each.
  template <class Next>
  static GlyphTotals of(std::uint32_t count, Next next, std::uint32_t* offsets,
                        format::ArraySink<std::uint32_t> metrics) noexcept {
    GlyphTotals totals;
    std::uint16_t advance = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
      const auto& glyph = next();
      const bool isSimple = glyph.isComposite == 0;
      offsets[i] = totals.bytes;
      totals.bytes += glyph.byteCount;
      totals.allLengths |= glyph.byteCount;
      metrics.put(i, format::LongMetric::both(glyph.advanceWidth, glyph.leftSideBearing));
      if (glyph.advanceWidth != advance) totals.longMetrics = i + 1;
      advance = glyph.advanceWidth;
      raise(isSimple ? totals.points : totals.compositePoints, glyph.pointCount);
      raise(isSimple ? totals.contours : totals.compositeContours, glyph.contourCount);
    }
    offsets[count] = totals.bytes;
    if (count < 3) totals.longMetrics = count;
    return totals;
  }

 private:
  static void raise(std::uint16_t& maximum, std::uint16_t value) noexcept {
    if (value > maximum) maximum = value;
  }
};

// The glyphs in the order of their new indices.
class NewGlyphs {
 public:
  virtual std::uint32_t count() const noexcept = 0;
  // `count` is at most kMaxGlyphCount. The outputs as in GlyphTotals::of.
  virtual GlyphTotals measure(std::uint32_t* offsets,
                              format::ArraySink<std::uint32_t> metrics) const noexcept = 0;
  // Makes sure that `write` writes the references of composites as those of the new font: to the
  // first record of a glyph, or to count() for a glyph that has none. `outBox` receives the box.
  // WriterResultNoMemory, or WriterResultOk.
  virtual WriterResult renumber(FontBox* outBox) noexcept = 0;
  // The bytes of all glyphs, one after the other.
  virtual void write(format::ByteSink out) const noexcept = 0;

 protected:
  ~NewGlyphs() = default;
};

}  // namespace ulm::truetype::detail
