// Assembles the tables of a writer and its glyphs into the image of one file.
#pragma once

#include <cstdint>

#include "truetype/writer/detail/new_glyphs.h"
#include "truetype/writer/table.h"
#include "truetype/writer/writer.h"

namespace ulm::truetype::detail {

// As assembleFont. `glyphs` are those of the file's glyf table, whose bytes are written straight to
// the file, since no other table is as large. `glyf` is the writer's object for them, or null where
// it has none.
WriterResult assemble(TrueTypeWriter* writer, NewGlyphs& glyphs, const WriterTable* glyf,
                      std::uint8_t** outImage, std::uint32_t* outLength) noexcept;

}  // namespace ulm::truetype::detail
