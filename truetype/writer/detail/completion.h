// Completes the tables that depend on the glyphs: loca, hmtx, head, hhea and maxp.
#pragma once

#include <cstdint>

#include "truetype/writer/detail/new_glyphs.h"
#include "truetype/writer/writer.h"

namespace ulm::truetype::detail {

// The first step of assembly. `outGlyfLength` receives the sum of the glyphs' lengths.
// Returns, tried in this order:
//   WriterResultMissingTable   the writer lacks head, maxp or hhea
//   WriterResultEmptyTable     there are no glyphs
//   WriterResultTooManyGlyphs  there are more than kMaxGlyphCount
//   WriterResultBadTable       a glyph has an odd length
//   WriterResultNoMemory
WriterResult completeTables(TrueTypeWriter* writer, NewGlyphs& glyphs,
                            std::uint32_t* outGlyfLength) noexcept;

}  // namespace ulm::truetype::detail
