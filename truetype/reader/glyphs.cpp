#include "truetype/reader/glyphs.h"

#include <cstdlib>
#include <utility>

#include "truetype/detail/c_buffer.h"
#include "truetype/detail/font_views.h"
#include "truetype/format/glyf.h"
#include "truetype/glyph/component_path.h"
#include "truetype/glyph/component_records.h"
#include "truetype/glyph/composite_glyph.h"
#include "truetype/glyph/description.h"
#include "truetype/glyph/simple_glyph.h"
#include "truetype/reader/metrics.h"

namespace ulm::truetype {
namespace {

using detail::ByteView;
using detail::CBuffer;
using detail::ComponentPath;
using detail::ComponentRecord;
using detail::ComponentRecords;

constexpr std::int32_t kNoSuchGlyph = -1;

// Where the points of a glyph go. `reserve` returns an array for `count` points, or null.
struct NewArray {
  GlyphPoint** outPoints;
  CBuffer<GlyphPoint> points;
  GlyphPoint* reserve(std::uint32_t count) noexcept {
    points = detail::makeBuffer<GlyphPoint>(count);
    return points.get();
  }
  std::int32_t finish(std::uint32_t count) noexcept {
    *outPoints = points.release();
    return static_cast<std::int32_t>(count);
  }
  std::int32_t refuse() const noexcept { return 0; }  // no memory
};

struct CallersArray {
  GlyphPoint* points;
  std::uint32_t* inOutCount;
  std::uint32_t needed = 0;
  GlyphPoint* reserve(std::uint32_t count) noexcept {
    needed = count;
    return count <= *inOutCount ? points : nullptr;
  }
  std::int32_t finish(std::uint32_t count) noexcept {
    *inOutCount = count;
    return static_cast<std::int32_t>(count);
  }
  std::int32_t refuse() noexcept {
    *inOutCount = needed;
    return kCapacityTooSmall;
  }
};

template <class Target>
std::int32_t readSimple(ByteView glyph, std::uint32_t contours, Target& target) noexcept {
  const std::uint32_t count = detail::simplePointCount(glyph, contours);
  if (count == 0) return 0;
  GlyphPoint* points = target.reserve(count);
  if (points == nullptr) return target.refuse();
  return detail::decodeSimplePoints(glyph, contours, count, {}, points) ? target.finish(count) : 0;
}

template <class Target>
std::int32_t readComposite(const TrueTypeFont& font, std::uint32_t glyphIndex,
                           const TTList* ancestry, Target& target) noexcept {
  ComponentPath path(font, ancestry, ancestry == nullptr);
  std::uint32_t capacity = 0;
  if (detail::measureComposite(font, glyphIndex, path, &capacity) != detail::WalkEnd::Whole) {
    return 0;
  }
  GlyphPoint* points = target.reserve(capacity);
  // An empty outline needs no array of its caller's.
  if (points == nullptr && capacity != 0) return target.refuse();
  return target.finish(detail::decodeCompositePoints(font, glyphIndex, path, points));
}

template <class Target>
std::int32_t readOutline(const TrueTypeFont& font, std::uint32_t glyphIndex, const TTList* ancestry,
                         Target& target) noexcept {
  if (glyphIndex >= font.numGlyphs) return kNoSuchGlyph;
  const ByteView glyph = detail::glyphView(font, glyphIndex);
  const std::int32_t contours = detail::contourCount(glyph);
  if (contours > 0) return readSimple(glyph, static_cast<std::uint32_t>(contours), target);
  return contours == format::GlyphHeader::kComposite
             ? readComposite(font, glyphIndex, ancestry, target)
             : 0;
}

// The metrics of a composite's own components that are marked for it, each over the one before.
void readComponentMetrics(const TrueTypeFont& font, ByteView glyph,
                          GlyphMetrics* metrics) noexcept {
  ComponentRecords records(glyph);
  for (ComponentRecord record; records.next(&record);) {
    if ((record.flags & format::Component::kUsesMyMetrics) != 0 &&
        record.glyphIndex < font.numGlyphs) {
      readGlyphMetrics(&font, record.glyphIndex, metrics);
    }
  }
}

// Appends a plain number; false without memory.
bool appendIndex(TTList* list, std::uint32_t glyphIndex) noexcept {
  const std::uint32_t before = list->count;
  // NOLINTNEXTLINE(performance-no-int-to-ptr): this list's items are plain numbers
  listAppend(list, reinterpret_cast<void*>(std::uintptr_t{glyphIndex}));
  return list->count != before;
}

}  // namespace

std::int32_t getGlyphPoints(const TrueTypeFont* font, std::uint32_t glyphIndex,
                            GlyphPoint** outPoints) noexcept {
  return readGlyphOutline(font, glyphIndex, outPoints, nullptr);
}

std::int32_t decodeGlyphPoints(const TrueTypeFont* font, std::uint32_t glyphIndex,
                               GlyphPoint* points, std::uint32_t* inOutCount) noexcept {
  CallersArray target{points, inOutCount};
  const std::int32_t result = readOutline(*font, glyphIndex, nullptr, target);
  if (result <= 0 && result != kCapacityTooSmall) *inOutCount = 0;
  return result;
}

std::int32_t readGlyphOutline(const TrueTypeFont* font, std::uint32_t glyphIndex,
                              GlyphPoint** outPoints, TTList* ancestry) noexcept {
  *outPoints = nullptr;
  NewArray target{outPoints, nullptr};
  return readOutline(*font, glyphIndex, ancestry, target);
}

std::int32_t readSimpleGlyph(const TrueTypeFont* font, std::uint32_t glyphIndex,
                             GlyphPoint** outPoints, GlyphMetrics* metrics) noexcept {
  *outPoints = nullptr;
  if (glyphIndex >= font->numGlyphs) return 0;
  const ByteView glyph = detail::glyphView(*font, glyphIndex);
  const std::int32_t contours = detail::contourCount(glyph);
  if (contours < 1) return 0;
  if (metrics != nullptr) {
    readGlyphBox(font, glyphIndex, metrics);
    readGlyphMetrics(font, glyphIndex, metrics);
  }
  NewArray target{outPoints, nullptr};
  return readSimple(glyph, static_cast<std::uint32_t>(contours), target);
}

std::int32_t readCompositeGlyph(const TrueTypeFont* font, std::uint32_t glyphIndex,
                                GlyphPoint** outPoints, GlyphMetrics* metrics,
                                TTList* ancestry) noexcept {
  *outPoints = nullptr;
  if (glyphIndex >= font->numGlyphs) return 0;
  const ByteView glyph = detail::compositeView(*font, glyphIndex);
  if (glyph.size() == 0) return 0;
  if (metrics != nullptr) {
    readGlyphBox(font, glyphIndex, metrics);
    readGlyphMetrics(font, glyphIndex, metrics);
    readComponentMetrics(*font, glyph, metrics);
  }
  NewArray target{outPoints, nullptr};
  return readComposite(*font, glyphIndex, ancestry, target);
}

GlyphData* getGlyphData(const TrueTypeFont* font, std::uint32_t glyphIndex) noexcept {
  const detail::GlyphDescription described = detail::describeGlyph(*font, glyphIndex);
  detail::OutlineSize size;
  if (described.refusal != detail::GlyphRefusal::None ||
      !detail::countOutline(*font, glyphIndex, &size)) {
    return nullptr;
  }
  CBuffer<GlyphData> made = detail::makeBuffer<GlyphData>(1);
  CBuffer<std::uint8_t> data;
  if (made != nullptr && described.length > 0) {
    data = detail::makeZeroedBuffer<std::uint8_t>(described.byteCount());
  }
  if (made == nullptr || (described.length > 0 && data == nullptr)) return nullptr;
  described.glyph.copy(0, described.length, data.get());
  made[0] = described.record(glyphIndex);
  made[0].data = data.release();
  made[0].pointCount = static_cast<std::uint16_t>(size.points);
  made[0].contourCount = static_cast<std::uint16_t>(size.contours);
  return made.release();
}

std::int32_t collectGlyphComponents(const TrueTypeFont* font, std::uint32_t glyphIndex,
                                    TTList* list) noexcept {
  if (glyphIndex >= font->numGlyphs || !appendIndex(list, glyphIndex)) return 0;
  std::int32_t appended = 1;
  ComponentPath path(*font, nullptr, true);
  detail::ComponentFrame now =
      detail::frameOf(detail::compositeView(*font, glyphIndex), glyphIndex);
  for (std::uint32_t count = 0;;) {
    if (!now.records.next(&now.current)) {
      if (path.empty()) return appended;
      now = path.pop();
      continue;
    }
    if (++count > kMaxComponentRecords) return appended;
    const std::uint32_t index = now.current.glyphIndex;
    if (index >= font->numGlyphs) continue;
    if (!appendIndex(list, index)) return appended;
    ++appended;
    if (path.leadsBack(now, index)) continue;
    const ByteView glyph = detail::compositeView(*font, index);
    if (glyph.size() == 0) continue;
    if (!path.push(now)) return appended;
    now = detail::frameOf(glyph, index);
  }
}

}  // namespace ulm::truetype
