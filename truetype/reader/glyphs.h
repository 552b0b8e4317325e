// Outlines of glyphs as flat arrays of points, their raw bytes, and what composites draw on.
#pragma once

#include <cstdint>

#include "truetype/font.h"
#include "truetype/glyph/limits.h"
#include "truetype/list.h"
#include "truetype/records.h"

namespace ulm::truetype {

// A glyph's bytes start at its loca offset and may go on to the end of glyf, whatever the next
// offset is. It has no data where the two offsets are equal, or where it starts outside glyf. Data
// or a chain of components that is cut by the end of glyf gives 0 points.
//
// Each component's points of a composite are placed as its record says. Arguments are always
// offsets, and they are multiplied by the factors of the record's scale or matrix, whatever its
// flags say; engines that do neither draw some composites otherwise. A component that names a glyph
// on the path that leads to it adds no points, and so does one without data or with an index beyond
// the glyphs. Nesting is followed to any depth. The work on one glyph has the bounds of
// truetype/glyph/limits.h.

// The number of points of the resolved outline in font units; 0 for a glyph without outline, -1 for
// an index that is not below numGlyphs. `outPoints` receives an array to be given back with free,
// or null. A composite whose components give no points has an empty array. Without memory 0 and
// null. At most two allocations are made, the array and, for deep nesting, one of the way down.
std::int32_t getGlyphPoints(const TrueTypeFont* font, std::uint32_t glyphIndex,
                            GlyphPoint** outPoints) noexcept;

// The same into the caller's array. `inOutCount` takes its capacity and receives the number of
// points; where they do not fit the result is kCapacityTooSmall, and a capacity of the number
// received serves. Allocates nothing unless composites are nested more than 32 deep.
inline constexpr std::int32_t kCapacityTooSmall = -2;
std::int32_t decodeGlyphPoints(const TrueTypeFont* font, std::uint32_t glyphIndex,
                               GlyphPoint* points, std::uint32_t* inOutCount) noexcept;

// As getGlyphPoints. `ancestry`, which may be null at the outermost call, lists the glyph indices
// of the path that has led here, this glyph included; it is left as it was.
std::int32_t readGlyphOutline(const TrueTypeFont* font, std::uint32_t glyphIndex,
                              GlyphPoint** outPoints, TTList* ancestry) noexcept;

// The two kinds apart: 0 and null for an index beyond the glyphs, a glyph of the other kind, and
// one without data. `metrics`, if given, receives the box of the glyph's header and its advances
// and bearings; in a composite those of the last component marked to lend them.
std::int32_t readSimpleGlyph(const TrueTypeFont* font, std::uint32_t glyphIndex,
                             GlyphPoint** outPoints, GlyphMetrics* metrics) noexcept;
std::int32_t readCompositeGlyph(const TrueTypeFont* font, std::uint32_t glyphIndex,
                                GlyphPoint** outPoints, GlyphMetrics* metrics,
                                TTList* ancestry) noexcept;

// A new record, whose holder frees `data` and then the record. Null for an index beyond the glyphs,
// where the next offset is below the glyph's own, for 65,535 bytes or more, which the record's
// count cannot tell, and without memory. The padding byte of an odd length is 0. Data that would
// leave glyf ends with it.
GlyphData* getGlyphData(const TrueTypeFont* font, std::uint32_t glyphIndex) noexcept;

// Appends the glyph and, depth first, all that it draws on, as plain numbers in place of pointers;
// gives the number appended. A glyph used twice is listed twice; one that names a glyph on the path
// to it has that listed once more, and not entered. The list ends where memory does.
std::int32_t collectGlyphComponents(const TrueTypeFont* font, std::uint32_t glyphIndex,
                                    TTList* list) noexcept;

}  // namespace ulm::truetype
