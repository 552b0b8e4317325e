// Opening and closing one face of a font image.
#pragma once

#include <cstdint>

#include "truetype/font.h"
#include "truetype/result.h"

namespace ulm::truetype {

// openTrueTypeFont builds the record of one face of `image`.
//   name       the file's name or any other text; copied. The PostScript name is made from it where
//              the font has none
//   image      borrowed, imageSize bytes; stays valid and unchanged until closeTrueTypeFont
//   faceIndex  from 0; looked at only for a collection
//   outFont    receives an owned record (closeTrueTypeFont); null on every result but FontResultOk
// Returns, tried in this order:
//   FontResultBadArgument   no name or image, or an imageSize of 0 or below
//   FontResultBadFormat     neither a TrueType font nor a collection of version 1 or 2
//   FontResultBadFaceIndex  faceIndex is not below the collection's face count
//   FontResultBadFormat     one of maxp, head, glyf, loca, name and cmap is missing; a loca format
//                           other than 0 and 1; a unitsPerEm of 0
//   FontResultNoMemory      nothing is left allocated
// Data outside the image gives FontResultBadFormat if it is the collection's entry, the offset
// table, the directory, a part of a required table, or a field or record of such a table that is
// read here, with the records that the headers of name and cmap count. An optional table that
// leaves the image, or whose count of long metrics does, is treated as absent. Stored lengths may
// be too short for the fields, as long as these are inside the image. loca offsets may have any
// value. A loca without a whole entry gives 0 glyphs and the one offset 0. Never prints or reads
// outside the image. The time grows with the directory, with loca, which is decoded once, and, if
// they end near the end of the image, with the character map's segments.
FontResult openTrueTypeFont(const char* name, const std::uint8_t* image, std::int32_t imageSize,
                            std::uint32_t faceIndex, TrueTypeFont** outFont) noexcept;

// Releases the record and what it owns, not the image. Does nothing on null, or if `signature` is
// not that of an open font.
void closeTrueTypeFont(TrueTypeFont* font) noexcept;

}  // namespace ulm::truetype
