// Outlines of glyphs as flat arrays of points, their raw bytes, and the components of composites.
//
// A glyph's bytes start at its loca offset and may go on to the end of glyf, whatever the next
// offset is. It has no data if the two offsets are equal, or if it starts outside glyf. Data or a
// chain of components that is cut by the end of glyf gives 0 points.
//
// The points of each component of a composite are placed as its record says. The arguments are
// always offsets, and they are multiplied by the factors of the record's scale or matrix, whatever
// its flags say; engines that do neither draw some composites otherwise. A component that names a
// glyph on the path that leads to it adds no points, and so does one without data or with an index
// beyond the glyphs. Nesting is followed to any depth. The work on one glyph has the bounds of
// truetype/glyph/limits.h; beyond them an outline has 0 points and a list of components ends.
#pragma once

#include <cstdint>

#include "truetype/font.h"
#include "truetype/glyph/limits.h"
#include "truetype/list.h"
#include "truetype/records.h"

namespace ulm::truetype {

inline constexpr std::int32_t kCapacityTooSmall = -2;  // a result of decodeGlyphPoints

// The number of points of the resolved outline in font units; 0 for a glyph without outline, -1 for
// an index that is not below numGlyphs. `outPoints` receives an array to be released with free, or
// null. A composite whose components give no points has an empty array. Without memory the result
// is 0 and the array null. Makes at most two allocations: the array and, for deep nesting, one for
// the path through the composites.
std::int32_t getGlyphPoints(const TrueTypeFont* font, std::uint32_t glyphIndex,
                            GlyphPoint** outPoints) noexcept;

// The same into the caller's array, which may be null with a capacity of 0. `inOutCount` takes the
// capacity and receives the number of points. If they do not fit, the result is kCapacityTooSmall,
// and the number received is a capacity that is large enough. Allocates nothing unless composites
// are nested more than 32 deep.
std::int32_t decodeGlyphPoints(const TrueTypeFont* font, std::uint32_t glyphIndex,
                               GlyphPoint* points, std::uint32_t* inOutCount) noexcept;

// As getGlyphPoints. `ancestry`, which may be null at the outermost call, lists the glyph indices
// of the path that leads to this glyph, itself included; it is left as it was.
std::int32_t readGlyphOutline(const TrueTypeFont* font, std::uint32_t glyphIndex,
                              GlyphPoint** outPoints, TTList* ancestry) noexcept;

// As readGlyphOutline for one kind of glyph. The result is 0, with a null array, for an index
// beyond the glyphs, a glyph of the other kind, and one without data. `metrics`, which may be null,
// receives the box of the glyph's header and its advances and bearings; in a composite those of the
// last component that is marked USE_MY_METRICS.
std::int32_t readSimpleGlyph(const TrueTypeFont* font, std::uint32_t glyphIndex,
                             GlyphPoint** outPoints, GlyphMetrics* metrics) noexcept;
std::int32_t readCompositeGlyph(const TrueTypeFont* font, std::uint32_t glyphIndex,
                                GlyphPoint** outPoints, GlyphMetrics* metrics,
                                TTList* ancestry) noexcept;

// A new record; its holder frees `data` and then the record. Null for an index beyond the glyphs,
// if the next offset is below the glyph's own, for more than kMaxGlyphBytes, and without memory.
// The padding byte of an odd length is 0. Data that would leave glyf ends with it.
GlyphData* getGlyphData(const TrueTypeFont* font, std::uint32_t glyphIndex) noexcept;

// Appends the glyph and, depth first, all components that it needs, as plain numbers instead of
// pointers; returns how many it appended. A glyph that is used twice is listed twice. A component
// that names a glyph on the path to it is listed, but its components are not listed again. The list
// ends early without memory.
std::int32_t collectGlyphComponents(const TrueTypeFont* font, std::uint32_t glyphIndex,
                                    TTList* list) noexcept;

}  // namespace ulm::truetype
