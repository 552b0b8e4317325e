// What a font's other tables owe to its glyphs.
#pragma once

#include <cstdint>

#include "truetype/writer/writer.h"

namespace ulm::truetype::detail {

// The first step of assembleFont, with its refusals up to the images'. `outBytes` receives the sum
// of the glyphs' lengths in the first glyf table.
WriterResult prepareGlyphTables(TrueTypeWriter* writer, std::uint32_t* outBytes) noexcept;

}  // namespace ulm::truetype::detail
