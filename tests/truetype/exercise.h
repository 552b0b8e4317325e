// Every reading operation on one font, each result held to what is always true of it.
#pragma once

#include <cstdlib>

#include "tests/truetype/font_image.h"
#include "truetype/reader/kerning.h"
#include "truetype/reader/metrics.h"
#include "truetype/reader/names.h"
#include "truetype/reader/tables.h"

namespace ulm::test {

// The number of results that cannot be; `glyphLimit` bounds the glyphs looked at.
inline int exerciseFont(const truetype::TrueTypeFont* font, std::uint32_t glyphLimit) {
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

  unsigned mapped = 0;
  for (std::uint32_t code = 0; font->cmapLookup != nullptr && code < 0x10000;
       code += code < 0x200 || code >= 0xFFF0 ? 1 : 0x10) {
    mapped += font->cmapLookup(font->cmapSubtable, static_cast<std::uint16_t>(code));
  }
  expect(font->cmapLookup != nullptr || mapped == 0);
  std::free(readAllGlyphBoxes(font));
  const std::uint16_t run[] = {0, 1, 2, 0xFFFF, 7};
  std::free(getScaledAdvances(font, run, 5, 0));
  std::free(getScaledAdvances(font, run, 5, 1));
  KernAdjustment kerning[4];
  if (font->kernType != 1) getRunKerning(font, run, 5, 0, kerning);
  if (font->kernType != 1) getRunKerning(font, run, 5, 1, kerning);
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
    GlyphPoint* points = nullptr;
    const std::int32_t count = getGlyphPoints(font, glyph, &points);
    expect(count >= 0 && (count == 0 || points != nullptr));
    std::uint32_t contours = 0;
    for (std::int32_t i = 0; i < count; ++i) contours += points[i].flags >> 15 & 1u;
    if (const OwnedGlyph data = glyphOf(font, glyph)) {
      expect(data->pointCount == (count & 0xFFFF) && data->contourCount == (contours & 0xFFFF));
      expect((data->data != nullptr) == (data->byteCount != 0));
    }
    std::free(points);
    TTList* list = listCreate();
    if (list != nullptr) {
      expect(collectGlyphComponents(font, glyph, list) ==
             static_cast<std::int32_t>(listCount(list)));
      listDispose(list);
    }
  }
  return wrong;
}

}  // namespace ulm::test
