#include "truetype/detail/glyph_data.h"

#include <cstdlib>
#include <memory>

#include "truetype/detail/byte_view.h"
#include "truetype/detail/c_buffer.h"
#include "truetype/reader/detail/component_path.h"
#include "truetype/reader/detail/metric.h"
#include "truetype/reader/detail/outline.h"
#include "truetype/reader/glyphs.h"

namespace ulm::truetype {
namespace detail {
namespace {

bool appendIndex(TTList* list, std::uint32_t glyphIndex, std::int32_t& appended) noexcept {
  const std::uint32_t before = list->count;
  // NOLINTNEXTLINE(performance-no-int-to-ptr): this list's items are plain numbers
  listAppend(list, reinterpret_cast<void*>(std::uintptr_t{glyphIndex}));
  if (list->count == before) return false;
  ++appended;
  return true;
}

}  // namespace

bool countGlyphData(const TrueTypeFont& font, GlyphData* glyph) noexcept {
  std::uint32_t points = 0, contours = 0;
  if (!countOutline(font, glyph->glyphIndex, &points, &contours)) return false;
  glyph->pointCount = static_cast<std::uint16_t>(points);
  glyph->contourCount = static_cast<std::uint16_t>(contours);
  return true;
}

FontResult describeGlyph(const TrueTypeFont& font, std::uint32_t glyphIndex, GlyphData* out,
                         ByteView* outBytes, SimpleShape* outShape) noexcept {
  if (glyphIndex >= font.numGlyphs) return FontResultBadArgument;
  const std::uint32_t start = font.glyphOffsets[glyphIndex];
  const std::uint32_t next = font.glyphOffsets[glyphIndex + 1];
  if (next < start) return FontResultBadArgument;
  const ByteView glyph = glyphView(font, glyphIndex);
  const std::size_t length = glyph.size() < next - start ? glyph.size() : next - start;
  if (length >= 0xFFFF) return FontResultBadArgument;

  Metric across{0, 0};
  if (font.tables[kSlotHmtx] != nullptr && font.numberOfHMetrics != 0) {
    across =
        metricOf(tableView(font, kSlotHmtx), font.numberOfHMetrics, font.numGlyphs, glyphIndex);
  }
  const bool isComposite = length > 0 && glyph.readOrZero<std::uint8_t>(0) >= 0x80;
  const SimpleShape shape = isComposite ? SimpleShape{} : simpleShape(glyph);
  *out = {.glyphIndex = glyphIndex,
          .byteCount = static_cast<std::uint16_t>((length + 1) & ~std::size_t{1}),
          .data = nullptr,
          .advanceWidth = across.advance,
          .leftSideBearing = across.sideBearing,
          .isComposite = isComposite,
          .pointCount = static_cast<std::uint16_t>(shape.points),
          .contourCount = static_cast<std::uint16_t>(shape.contours),
          .newIndex = 0};
  *outBytes = ByteView(glyph.start(), length);
  *outShape = shape;
  return FontResultOk;
}

FontResult makeGlyphData(const TrueTypeFont& font, std::uint32_t glyphIndex,
                         GlyphData** outData) noexcept {
  *outData = nullptr;
  GlyphData described;
  ByteView bytes;
  SimpleShape shape;
  const FontResult result = describeGlyph(font, glyphIndex, &described, &bytes, &shape);
  if (result != FontResultOk) return result;
  if (described.isComposite != 0 && !countGlyphData(font, &described)) return FontResultNoMemory;
  CBuffer<GlyphData> made = makeBuffer<GlyphData>(1);
  if (made == nullptr) return FontResultNoMemory;
  if (bytes.size() > 0) {
    described.data = makeZeroedBuffer<std::uint8_t>(described.byteCount).release();
    if (described.data == nullptr) return FontResultNoMemory;
    bytes.copy(0, bytes.size(), described.data);
  }
  made[0] = described;
  *outData = made.release();
  return FontResultOk;
}

FontResult appendComponents(const TrueTypeFont& font, std::uint32_t glyphIndex, TTList* list,
                            std::int32_t* outAppended) noexcept {
  std::int32_t& appended = *outAppended = 0;
  if (glyphIndex >= font.numGlyphs) return FontResultBadArgument;
  if (!appendIndex(list, glyphIndex, appended)) return FontResultNoMemory;
  ComponentPath path(font, nullptr, true);
  ComponentFrame now = frameOf(compositeView(font, glyphIndex), glyphIndex, {});
  for (std::uint32_t records = 0;;) {
    if (now.next == kNoRecord || !now.glyph.holds(now.next, 4)) {
      if (path.empty()) return FontResultOk;
      now = path.pop();
      continue;
    }
    if (++records > kMostComponentRecords) return FontResultOk;
    const std::uint16_t flags = now.glyph.readOrZero<std::uint16_t>(now.next);
    const std::uint16_t index = now.glyph.readOrZero<std::uint16_t>(now.next + 2);
    now.next = (flags & kMoreComponents) != 0 ? now.next + componentSize(flags) : kNoRecord;
    if (index >= font.numGlyphs) continue;
    if (!appendIndex(list, index, appended)) return FontResultNoMemory;
    if (path.leadsBack(now, index)) continue;
    const ByteView glyph = compositeView(font, index);
    if (glyph.size() == 0) continue;
    if (!path.push(now)) return FontResultNoMemory;
    now = frameOf(glyph, index, {});
  }
}

}  // namespace detail

GlyphData* getGlyphData(const TrueTypeFont* font, std::uint32_t glyphIndex) noexcept {
  GlyphData* data = nullptr;
  detail::makeGlyphData(*font, glyphIndex, &data);
  return data;
}

std::int32_t collectGlyphComponents(const TrueTypeFont* font, std::uint32_t glyphIndex,
                                    TTList* list) noexcept {
  std::int32_t appended = 0;
  detail::appendComponents(*font, glyphIndex, list, &appended);
  return appended;
}

}  // namespace ulm::truetype
