#include "truetype/detail/glyph_data.h"

#include <cstdlib>
#include <memory>

#include "truetype/detail/byte_view.h"
#include "truetype/detail/c_buffer.h"
#include "truetype/reader/detail/component_path.h"
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

bool countGlyphData(const TrueTypeFont& font, GlyphData* glyph, std::uint64_t* outWork) noexcept {
  OutlineSize size;
  if (!countOutline(font, glyph->glyphIndex, &size)) return false;
  glyph->pointCount = static_cast<std::uint16_t>(size.points);
  glyph->contourCount = static_cast<std::uint16_t>(size.contours);
  if (outWork != nullptr) *outWork = size.work;
  return true;
}

FontResult makeGlyphData(const TrueTypeFont& font, std::uint32_t glyphIndex,
                         GlyphData** outData) noexcept {
  *outData = nullptr;
  GlyphData described;
  ByteView glyph;
  std::size_t length = 0;
  const FontResult result = describeGlyph(font, glyphIndex, &described, &glyph, &length);
  if (result != FontResultOk) return result;
  described.isComposite = isComposite(glyph, length) ? 1 : 0;
  if (!countGlyphData(font, &described)) return FontResultNoMemory;
  CBuffer<GlyphData> made = makeBuffer<GlyphData>(1);
  if (made == nullptr) return FontResultNoMemory;
  if (length > 0) {
    described.data = makeZeroedBuffer<std::uint8_t>(described.byteCount).release();
    if (described.data == nullptr) return FontResultNoMemory;
    glyph.copy(0, length, described.data);
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
  ComponentFrame now = frameOf(compositeView(font, glyphIndex), glyphIndex);
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
    now = frameOf(glyph, index);
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
