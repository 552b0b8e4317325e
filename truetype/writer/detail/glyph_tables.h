// What a font's other tables owe to its glyphs.
#pragma once

#include "truetype/writer/writer.h"

namespace ulm::truetype::detail {

// The first step of assembleFont, with its refusals up to the images'.
WriterResult prepareGlyphTables(TrueTypeWriter* writer) noexcept;

}  // namespace ulm::truetype::detail
