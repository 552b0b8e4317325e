// A smaller font made of some glyphs of an open font, in one call.
#pragma once

#include <cstdint>

#include "truetype/font.h"
#include "truetype/records.h"
#include "truetype/writer/result.h"

namespace ulm::truetype {

enum SubsetFlag : std::uint32_t {
  SubsetGenericName = 0x01,  // two fixed name records, "TrueTypeSubset", instead of all others
  SubsetKeepOS2 = 0x02,      // copies OS/2; browsers refuse a font without it
};

// createTrueTypeSubset makes a font of the listed glyphs, in their order, and of the components
// that they need, which follow the first composite that needs them. So the first glyph gets number
// 0: put the one for missing characters there. Hinting is kept whole (cvt, prep, fpgm and the
// glyphs' instructions). Kerning, layout, vertical metrics and glyph names are left out.
//
//   font         an open font; not null
//   outImage, outLength  receive the new file, released with free, and its bytes; not null, and
//                written on success only
//   glyphIds     glyphCount numbers in `font`, replaced by their numbers in the new font. A number
//                that is not below numGlyphs, or whose loca entries descend, does not stop the
//                call: it becomes 0xFFFF, and its code is mapped to that
//   charCodes    glyphCount codes, ascending, each mapped to the glyph with the same index
//   nameRecords  nameRecordCount names of the new font; may be null with a count of 0, and then the
//                names are those of `font`. A font without names gets the two of SubsetGenericName.
//                A source string outside the image is empty
//   flags        SubsetFlag bits; others are ignored
//
// Returns WriterResultOk, or:
//   WriterResultNoData         glyphCount is below 1, or no glyph could be taken
//   WriterResultGlyphTooLarge  a glyph has more than kMaxGlyphBytes
//   WriterResultFileTooLarge   the glyphs come to more than 16 MiB and four times the image. The
//                              glyphs of a damaged font can share their bytes, and a list can name
//                              a large one many times
//   WriterResultTooManyGlyphs  the new font would have more than 65,535
//   WriterResultNameTooLong, WriterResultNameOutOfRange, WriterResultCmapTooLarge  as getTableImage
//   WriterResultNoMemory
// glyphIds is as it was where a glyph or the file is too large, and where memory runs out before
// all glyphs are taken. Otherwise it is replaced, whatever the result; beyond 65,535 glyphs the
// rest of the list counts as glyphs that could not be taken.
//
// The counts in maxp are those of addGlyph's records, so in a damaged font they may be too small:
// composites that draw on a cycle of components count as empty beyond the 256th, and so do the
// others that addGlyph names. The time grows with the bytes that are taken, the glyphs and their
// components. Glyphs are copied once, into the file, when all other tables have been made.
WriterResult createTrueTypeSubset(const TrueTypeFont* font, std::uint8_t** outImage,
                                  std::uint32_t* outLength, std::uint16_t* glyphIds,
                                  const std::uint16_t* charCodes, std::int32_t glyphCount,
                                  std::uint32_t nameRecordCount, const NameRecord* nameRecords,
                                  std::uint32_t flags) noexcept;

}  // namespace ulm::truetype
