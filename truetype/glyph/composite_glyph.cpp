#include "truetype/glyph/composite_glyph.h"

#include "truetype/format/glyf.h"
#include "truetype/glyph/component_records.h"
#include "truetype/glyph/limits.h"
#include "truetype/glyph/placement.h"
#include "truetype/glyph/simple_glyph.h"

namespace ulm::truetype::detail {
namespace {

// Counts points and work, and stops at the bound. The capacity needed is the maximum of the points
// at any time: a composite whose chain is cut subtracts the points that it had added.
struct Measure {
  OutlineTotals totals = {};
  std::uint32_t capacity = 0;
  std::uint32_t records = 0;
  std::uint64_t work = 0;

  bool enterRecord() noexcept {
    return ++records <= kMaxComponentRecords && work <= kMaxOutlineWork;
  }
  PointOffset offsetIn(const ComponentFrame&) const noexcept { return {}; }
  void addSimple(ByteView glyph, std::uint32_t contours, const ComponentFrame& within) noexcept {
    const OutlineTotals before = totals;
    add(contours, simplePointCount(glyph, contours));
    place(before, within);
  }
  // The points since `before` are those of the frame's current record.
  void place(const OutlineTotals& before, const ComponentFrame& within) noexcept {
    work += placementWork(within.current.flags) * (totals.capacity - before.capacity);
  }
  bool withinBounds() const noexcept { return work <= kMaxOutlineWork; }

 protected:
  void add(std::uint32_t contours, std::uint32_t points) noexcept {
    work += contours + std::uint64_t{points};
    if (withinBounds()) totals.capacity += points;
    if (totals.capacity > capacity) capacity = totals.capacity;
  }
};

// Counts as Measure does, and also what the outline will hold.
struct Count : Measure {
  void addSimple(ByteView glyph, std::uint32_t, const ComponentFrame& within) noexcept {
    const OutlineTotals before = totals;
    const SimpleShape shape = simpleShape(glyph);
    add(shape.ends, shape.capacity);
    totals.points += shape.points;
    totals.contours += shape.contours;
    place(before, within);
  }
};

// Fills an array that Measure has found large enough. Moves cost nothing, however deep they nest:
// they add up on the way down, from the innermost record that scales, whose points they follow.
struct Decode {
  GlyphPoint* points;
  OutlineTotals totals = {};

  bool enterRecord() noexcept { return true; }
  PointOffset offsetIn(const ComponentFrame& within) const noexcept {
    if (isScaled(within.current.flags)) return {};
    return within.offset + readOffset(within.records.glyph(), within.current);
  }
  void addSimple(ByteView glyph, std::uint32_t contours, const ComponentFrame& within) noexcept {
    const OutlineTotals before = totals;
    const std::uint32_t added = simplePointCount(glyph, contours);
    const PointOffset offset = offsetIn(within);
    if (!decodeSimplePoints(glyph, contours, added, offset, points + before.points)) return;
    totals.points += added;
    place(before, within);
  }
  void place(const OutlineTotals& before, const ComponentFrame& within) noexcept {
    const std::uint32_t count = totals.points - before.points;
    if (count == 0 || !isScaled(within.current.flags)) return;
    placePoints(within.records.glyph(), within.current, within.offset, points + before.points,
                count);
  }
  bool withinBounds() const noexcept { return true; }
};

// Visits all components of a composite, each before it is placed.
template <class Sink>
WalkEnd walkComponents(const TrueTypeFont& font, std::uint32_t glyphIndex, ComponentPath& path,
                       Sink& sink) noexcept {
  path.clear();
  ComponentFrame now = frameOf(glyphView(font, glyphIndex), glyphIndex);
  for (;;) {
    const bool hasNext = now.records.next(&now.current);
    if (!hasNext || !now.records.holds(now.current)) {  // it has ended, or its chain is cut
      const bool isCut = hasNext || !now.records.atEnd();
      const OutlineTotals before = now.before;
      if (isCut) sink.totals = before;
      if (path.empty()) return !isCut && sink.withinBounds() ? WalkEnd::Whole : WalkEnd::NoOutline;
      now = path.pop();
      sink.place(before, now);
      continue;
    }
    if (!sink.enterRecord()) return WalkEnd::NoOutline;
    const std::uint32_t index = now.current.glyphIndex;
    if (index >= font.numGlyphs || path.leadsBack(now, index)) continue;
    const ByteView glyph = glyphView(font, index);
    const std::int32_t contours = contourCount(glyph);
    if (contours > 0) {
      sink.addSimple(glyph, static_cast<std::uint32_t>(contours), now);
    } else if (contours == format::GlyphHeader::kComposite) {
      if (!path.push(now)) return WalkEnd::NoMemory;
      now = frameOf(glyph, index, sink.totals, sink.offsetIn(now));
    }
  }
}

}  // namespace

WalkEnd measureComposite(const TrueTypeFont& font, std::uint32_t glyphIndex, ComponentPath& path,
                         std::uint32_t* outCapacity) noexcept {
  Measure measure;
  const WalkEnd end = walkComponents(font, glyphIndex, path, measure);
  *outCapacity = measure.capacity;
  return end;
}

std::uint32_t decodeCompositePoints(const TrueTypeFont& font, std::uint32_t glyphIndex,
                                    ComponentPath& path, GlyphPoint* points) noexcept {
  Decode decode{points};
  return walkComponents(font, glyphIndex, path, decode) == WalkEnd::Whole ? decode.totals.points
                                                                          : 0;
}

bool countOutline(const TrueTypeFont& font, std::uint32_t glyphIndex, OutlineSize* out) noexcept {
  *out = {};
  const ByteView glyph = glyphView(font, glyphIndex);
  const std::int32_t contours = contourCount(glyph);
  if (contours > 0) {
    const SimpleShape shape = simpleShape(glyph);
    *out = {shape.points, shape.contours, std::uint64_t{shape.ends} + shape.capacity};
  } else if (contours == format::GlyphHeader::kComposite) {
    ComponentPath path(font, nullptr, true);
    Count count;
    const WalkEnd end = walkComponents(font, glyphIndex, path, count);
    if (end == WalkEnd::NoMemory) return false;
    out->work = count.work + std::uint64_t{kRecordWork} * count.records;
    if (end != WalkEnd::Whole) return true;
    out->points = count.totals.points;
    out->contours = count.totals.contours;
  }
  return true;
}

}  // namespace ulm::truetype::detail
