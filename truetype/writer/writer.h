// The font writer: collects table objects and assembles them into the image of one file.
#pragma once

#include <cstdint>

#include "truetype/list.h"
#include "truetype/writer/result.h"
#include "truetype/writer/table.h"

namespace ulm::truetype {

// Belongs to one thread at a time.
struct TrueTypeWriter {
  std::uint32_t sfntVersion;  // 0x00010000
  TTList* tables;             // owned WriterTables in the order of adding
};

// Create, add all tables with their contents, assemble once, dispose.

// `outWriter` receives an empty writer, or null without memory.
void createTrueTypeWriter(TrueTypeWriter** outWriter) noexcept;
void disposeTrueTypeWriter(TrueTypeWriter* writer) noexcept;  // with its tables; null is allowed

// The table's ownership passes to the writer; null is ignored. 0, or WriterResultNoMemory with the
// table disposed of. A second table of the same tag is not looked for.
std::int32_t addWriterTable(TrueTypeWriter* writer, WriterTable* table) noexcept;
// Disposes of every table that has this tag in the file: for a raw table the tag of its payload.
void removeWriterTable(TrueTypeWriter* writer, std::uint32_t tag) noexcept;
// The first object of this `tag`, or null; raw tables are found under kTagRaw alone.
WriterTable* findWriterTable(const TrueTypeWriter* writer, std::uint32_t tag) noexcept;

// The file of the writer's tables, sorted by tag (those of equal tags in the order of adding), each
// padded with zeros to a multiple of 4. Equal tables give equal bytes. `outImage` is to be given
// back with free, `outLength` its bytes; both are set on success alone.
// First the tables are completed: loca and hmtx are made anew, the references of composites are
// rewritten in their `data` to the new indices, head gets the box and the format of loca, maxp the
// counts, hhea numberOfHMetrics. So a writer is assembled once, whatever the result.
//   - A glyph's record shorter than its header of 10 bytes adds nothing to the box; a chain of
//     components ends where `data` does.
//   - A reference to a glyph that the table lacks becomes the number of glyphs, which is none.
// Refusals, in this order: no tables, WriterResultBadTable; without glyf, head, maxp or hhea,
// WriterResultMissingTable; a glyf table without glyphs, WriterResultEmptyTable; more than 65,535,
// WriterResultTooManyGlyphs; one with an odd `byteCount`, WriterResultBadTable; then the first
// table whose image fails, with the code of getTableImage; a file past 32 bits or of more than
// 4,095 tables, WriterResultFileTooLarge. WriterResultNoMemory anywhere.
WriterResult assembleFont(TrueTypeWriter* writer, std::uint8_t** outImage,
                          std::uint32_t* outLength) noexcept;

// The sum modulo 2^32 of the big-endian words of `bytes`. The caller vouches for `length` bytes and
// for the zeros that fill up the last word.
std::uint32_t tableChecksum(const std::uint8_t* bytes, std::uint32_t length) noexcept;

}  // namespace ulm::truetype
