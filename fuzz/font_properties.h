// What is true of every font that opens, of every file that the writer makes, and of every subset.
// Each check returns the number of properties that do not hold.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "tests/truetype/font_image.h"
#include "truetype/bytes.h"
#include "truetype/reader/kerning.h"
#include "truetype/reader/metrics.h"
#include "truetype/reader/names.h"
#include "truetype/reader/tables.h"
#include "truetype/writer/subset.h"
#include "truetype/writer/writer.h"

namespace ulm::test {

// Of the outline of a glyph, which may be none of the font: all ways to it agree.
inline int checkOutline(const truetype::TrueTypeFont* font, std::uint32_t glyph) {
  using namespace truetype;
  int wrong = 0;
  const auto expect = [&wrong](bool holds) { wrong += holds ? 0 : 1; };
  GlyphPoint* made = nullptr;
  const std::int32_t count = getGlyphPoints(font, glyph, &made);
  const auto points = owned(made);
  expect(count == (glyph < font->numGlyphs ? std::max(count, 0) : -1));
  expect(count <= 0 || points != nullptr);
  std::uint32_t capacity = 0, contours = 0;
  std::int32_t decoded = decodeGlyphPoints(font, glyph, nullptr, &capacity);
  expect(count <= 0 || decoded == kCapacityTooSmall);
  std::vector<GlyphPoint> room(capacity);
  if (decoded == kCapacityTooSmall) {
    decoded = decodeGlyphPoints(font, glyph, room.data(), &capacity);
  }
  expect(decoded == count && capacity == static_cast<std::uint32_t>(std::max(count, 0)));
  for (std::size_t i = 0; i < capacity && decoded == count; ++i) {
    const GlyphPoint &one = points[i], &other = room[i];
    expect(one.x == other.x && one.y == other.y && one.flags == other.flags);
    contours += one.flags >> 15 & 1u;
  }
  if (const OwnedGlyph data = glyphOf(font, glyph)) {
    expect(data->pointCount == (count & 0xFFFF) && data->contourCount == (contours & 0xFFFF));
    expect((data->data != nullptr) == (data->byteCount != 0));
  }
  return wrong;
}

// Of every reading operation; `glyphLimit` bounds the glyphs looked at.
inline int checkReading(const truetype::TrueTypeFont* font, std::uint32_t glyphLimit) {
  using namespace truetype;
  int wrong = 0;
  const auto expect = [&wrong](bool holds) { wrong += holds ? 0 : 1; };
  NameRecord* names = nullptr;
  const std::int32_t nameCount = getNameRecords(font, &names);
  for (std::int32_t i = 0; i < nameCount; ++i)
    expect((names[i].data != nullptr) == (names[i].length != 0));
  releaseNameRecords(names, nameCount);
  GlobalFontInfo info;
  getGlobalFontInfo(font, &info);
  expect(info.family != nullptr && info.subfamily != nullptr && info.postScript != nullptr);

  for (std::uint32_t code = 0; font->cmapLookup != nullptr && code < 0x10000;
       code += code < 0x200 || code >= 0xFFF0 ? 1 : 0x10) {
    font->cmapLookup(font->cmapSubtable, static_cast<std::uint16_t>(code));
  }
  std::free(readAllGlyphBoxes(font));
  const std::uint16_t run[] = {0, 1, 2, 0xFFFF, 7};
  std::free(getScaledAdvances(font, run, 5, 0));
  std::free(getScaledAdvances(font, run, 5, 1));
  KernAdjustment kerning[4];
  for (const int vertical : {0, 1}) {
    if (font->kernType == 1) break;  // that is not implemented, and printed
    getRunKerning(font, run, 5, vertical, kerning);
    for (std::size_t i = 0; i < 4; ++i) {
      std::int32_t x = 0, y = 0;
      getPairKerning(font->kernType, font->kernTableCount, font->kernTables, font->unitsPerEm,
                     vertical, run[i], run[i + 1], &x, &y);
      expect(kerning[i].x == x && kerning[i].y == y);
    }
  }
  for (const std::uint32_t tag : {0x676C7966u, 0x7A7A7A7Au, 0u}) {
    std::uint32_t length = 0;
    std::uint8_t* copy = copyTableByTag(font, tag, &length);
    expect((copy != nullptr) == (findTableByTag(font, tag) != nullptr));
    std::free(copy);
  }

  const std::uint32_t glyphs = font->numGlyphs < glyphLimit ? font->numGlyphs : glyphLimit;
  for (std::uint32_t glyph = 0; glyph < glyphs; ++glyph) {
    GlyphMetrics metrics;
    readGlyphMetrics(font, glyph, &metrics);
    wrong += checkOutline(font, glyph);
    TTList* list = listCreate();
    if (list != nullptr) {
      expect(collectGlyphComponents(font, glyph, list) ==
             static_cast<std::int32_t>(listCount(list)));
      listDispose(list);
    }
  }
  return wrong;
}

// Whether a glyph's outline is made of bytes inside its own part of glyf alone, and those of its
// components of theirs, without a cycle: what a subset has to keep. Written apart from the library.
class OwnOutline {
 public:
  explicit OwnOutline(const truetype::TrueTypeFont* font) : font_(font) {}

  bool holds(std::uint32_t glyph, int depth = 0) const {
    const std::uint32_t start = font_->glyphOffsets[glyph], next = font_->glyphOffsets[glyph + 1];
    const std::uint32_t glyf = font_->tableLengths[truetype::kSlotGlyf];
    if (start == next || (next > start && start >= glyf)) return true;
    if (next < start || next > glyf || next - start >= 0xFFFF || depth > 20) return false;
    const std::uint8_t* data = font_->tables[truetype::kSlotGlyf] + start;
    const std::size_t size = next - start;
    if (size < 10) return false;
    const int contours = truetype::readInt16(data, 0);
    return contours < -1   ? true
           : contours < 0  ? compositeHolds(data, size, depth)
           : contours == 0 ? true
                           : simpleHolds(data, size, static_cast<std::size_t>(contours));
  }

 private:
  static bool simpleHolds(const std::uint8_t* data, std::size_t size, std::size_t contours) {
    std::size_t place = 10 + 2 * contours;
    if (place + 2 > size) return false;
    std::size_t points = 0;  // up to the greatest end of a contour
    for (std::size_t end = 10; end < place; end += 2) {
      points = std::max(points, std::size_t{truetype::readUInt16(data, end)} + 1);
    }
    place += 2 + std::size_t{truetype::readUInt16(data, place)};
    std::size_t coordinates = 0;
    for (std::size_t point = 0; point < points;) {
      if (place + 2 > size) return false;
      const std::uint8_t flag = data[place++];
      const std::size_t run = (flag & 8) != 0 ? std::size_t{data[place++]} + 1 : 1;
      const auto length = [flag](int isByte, int isSame) -> std::size_t {
        return (flag & isByte) != 0 ? 1 : (flag & isSame) != 0 ? 0 : 2;
      };
      coordinates += run * (length(2, 16) + length(4, 32));
      point += run;
    }
    return place + coordinates <= size;
  }
  bool compositeHolds(const std::uint8_t* data, std::size_t size, int depth) const {
    for (std::size_t place = 10;;) {
      if (place + 4 > size) return false;
      const std::uint16_t flags = truetype::readUInt16(data, place);
      const std::uint16_t glyph = truetype::readUInt16(data, place + 2);
      if (glyph < font_->numGlyphs && !holds(glyph, depth + 1)) return false;
      place += (flags & 1) != 0 ? 8 : 6;
      place += (flags & 8) != 0 ? 2 : (flags & 0x40) != 0 ? 4 : (flags & 0x80) != 0 ? 8 : 0;
      if (place > size) return false;
      if ((flags & 0x20) == 0) return true;
    }
  }

  const truetype::TrueTypeFont* font_;
};

// Of a file made by the writer: sums, order, offsets, padding.
inline int checkFile(const std::uint8_t* image, std::uint32_t length) {
  using namespace truetype;
  int wrong = tableChecksum(image, length) == 0xB1B0AFBA ? 0 : 1;
  std::uint32_t end = 12 + 16u * readUInt16(image, 4), tagBefore = 0;
  for (const std::uint8_t *entry = image + 12, *last = image + end; entry < last; entry += 16) {
    const std::uint32_t tag = readUInt32(entry, 0), size = readUInt32(entry, 12);
    const bool isPlaced = readUInt32(entry, 8) == end && size <= length - end;
    if (tag < tagBefore || !isPlaced) return wrong + 1;
    // That of head was taken with a sum of 0 in the file.
    const std::uint32_t adjustment = tag == kTagHead && size != 0 ? readUInt32(image, end + 8) : 0;
    wrong += tableChecksum(image + end, size) == readUInt32(entry, 4) + adjustment ? 0 : 1;
    tagBefore = tag;
    for (end += size; end % 4 != 0; ++end) wrong += image[end] == 0 ? 0 : 1;
  }
  return wrong + (end == length ? 0 : 1);
}

// Of a subset of the glyphs, with codes from 32 on.
inline int checkSubset(const truetype::TrueTypeFont* font, const std::vector<std::uint16_t>& glyphs,
                       std::uint32_t flags) {
  using namespace truetype;
  int wrong = 0;
  const auto expect = [&wrong](bool holds) { wrong += holds ? 0 : 1; };
  std::vector<std::uint16_t> ids = glyphs, codes;
  for (std::size_t k = 0; k < ids.size(); ++k) codes.push_back(static_cast<std::uint16_t>(32 + k));
  std::uint8_t* image = nullptr;
  std::uint32_t length = 0;
  const WriterResult result =
      createTrueTypeSubset(font, &image, &length, ids.data(), codes.data(),
                           static_cast<std::int32_t>(ids.size()), 0, nullptr, flags);
  if (result != WriterResultOk) {
    expect(image == nullptr && length == 0);
    return wrong;
  }
  const std::unique_ptr<std::uint8_t, void (*)(void*)> owned(image, std::free);
  wrong += checkFile(image, length);

  TrueTypeFont* made = nullptr;
  expect(openTrueTypeFont("subset", image, static_cast<std::int32_t>(length), 0, &made) ==
         FontResultOk);
  if (made == nullptr) return wrong;
  const OwnOutline own(font);
  for (std::size_t k = 0; k < ids.size(); ++k) {
    expect(made->cmapLookup != nullptr && made->cmapLookup(made->cmapSubtable, codes[k]) == ids[k]);
    if (ids[k] == 0xFFFF) continue;
    expect(ids[k] < made->numGlyphs && glyphs[k] < font->numGlyphs);
    if (ids[k] >= made->numGlyphs || glyphs[k] >= font->numGlyphs) continue;
    GlyphMetrics before, after;
    readGlyphMetrics(font, glyphs[k], &before);
    readGlyphMetrics(made, ids[k], &after);
    expect(before.advanceWidth == after.advanceWidth &&
           before.leftSideBearing == after.leftSideBearing);
    if (!own.holds(glyphs[k])) continue;
    const std::vector<GlyphPoint> from = pointsOf(font, glyphs[k]), to = pointsOf(made, ids[k]);
    expect(from.size() == to.size());
    for (std::size_t i = 0; i < from.size() && i < to.size(); ++i) {
      expect(from[i].x == to[i].x && from[i].y == to[i].y && from[i].flags == to[i].flags);
    }
  }
  closeTrueTypeFont(made);
  return wrong;
}

}  // namespace ulm::test
