// A smaller font made of some glyphs of an open one, in one call.
#pragma once

#include <cstdint>

#include "truetype/font.h"
#include "truetype/records.h"
#include "truetype/writer/result.h"

namespace ulm::truetype {

enum SubsetFlag : std::uint32_t {
  SubsetGenericName = 0x01,  // two fixed name records, "TrueTypeSubset", in place of all others
  SubsetKeepOS2 = 0x02,      // copies OS/2; browsers refuse a font without it
};

// Makes a file of the listed glyphs, in their order, and the components that they need, each right
// behind the first composite that needs it. So the first glyph gets number 0: put the one for
// missing characters there. Hinting is kept whole (cvt, prep, fpgm and the glyphs' instructions);
// kerning, layout, vertical metrics and glyph names are left out.
//
//   outImage, outLength  the new file, given back with free, and its bytes; set on success alone
//   glyphIds    glyphCount numbers in `font`, replaced by their numbers in the new font. One not
//               below numGlyphs, or whose loca entries descend, does not stop the call: it becomes
//               0xFFFF, and its code is mapped to that.
//   charCodes   glyphCount codes, ascending, each mapped to the glyph at its place
//   nameRecords the new font's names, or with a count of 0 those of `font`; a font without any gets
//               the two of SubsetGenericName. A source string outside the image is empty.
//   flags       SubsetFlag bits; others are ignored
//
// WriterResultNoData where no glyph could be taken, or glyphCount is below 1; the others as
// assembleFont, WriterResultGlyphTooLarge and WriterResultNoMemory. Past 65,535 glyphs in the new
// font the rest of the list counts as glyphs that could not be taken, and the result is
// WriterResultTooManyGlyphs. glyphIds is replaced before WriterResultNoData and before whatever the
// assembly refuses; it is as it was where memory ran out, or a glyph was too large, before that.
// WriterResultFileTooLarge comes early, with glyphIds as it was, where the glyphs come to more than
// 32 MiB and four times the image: those of a damaged font can share their bytes, and a list can
// name a large one many times.
// The counts in maxp are those of addGlyph's records, so that in a damaged font they may be too
// small: composites that draw on a cycle of components count as empty beyond the 256th, and so do
// the others that addGlyph names.
// Time grows with the bytes that are taken, the glyphs and their components. Glyphs are copied once
// all other tables have been made.
WriterResult createTrueTypeSubset(const TrueTypeFont* font, std::uint8_t** outImage,
                                  std::uint32_t* outLength, std::uint16_t* glyphIds,
                                  const std::uint16_t* charCodes, std::int32_t glyphCount,
                                  std::uint32_t nameRecordCount, const NameRecord* nameRecords,
                                  std::uint32_t flags) noexcept;

}  // namespace ulm::truetype
