// The font writer: collects table objects and assembles them into the image of one file.
#pragma once

#include <cstdint>

#include "truetype/list.h"
#include "truetype/writer/result.h"
#include "truetype/writer/table.h"

namespace ulm::truetype {

// A writer is created, filled with tables, assembled once and disposed of. It belongs to one thread
// at a time.
struct TrueTypeWriter {
  std::uint32_t sfntVersion;  // 0x00010000
  TTList* tables;             // owned WriterTables in the order of adding
};

// `outWriter` receives an empty writer, or null without memory.
void createTrueTypeWriter(TrueTypeWriter** outWriter) noexcept;
void disposeTrueTypeWriter(TrueTypeWriter* writer) noexcept;  // with its tables; null is allowed

// The table's ownership passes to the writer; a null table is ignored. Returns 0, or
// WriterResultNoMemory with the table disposed of. A second table of the same tag is added like the
// first.
std::int32_t addWriterTable(TrueTypeWriter* writer, WriterTable* table) noexcept;

// Disposes of every table that has this tag in the file: for a raw table the tag of its payload.
void removeWriterTable(TrueTypeWriter* writer, std::uint32_t tag) noexcept;

// The first object with this `tag`, or null. Raw tables are found under kTagRaw only.
WriterTable* findWriterTable(const TrueTypeWriter* writer, std::uint32_t tag) noexcept;

// assembleFont makes the file of the writer's tables, sorted by tag and, with equal tags, in the
// order of adding, each padded with zeros to a multiple of 4. Equal tables give equal bytes.
//   outImage, outLength  receive the file, released with free, and its bytes; not null, and written
//                        on success only
// First the tables are completed: loca and hmtx are made, instead of any that the writer has, the
// references of composites are rewritten in their `data` to the new indices, head gets the box and
// the format of loca, maxp the counts, hhea numberOfHMetrics. So a writer is assembled once,
// whatever the result.
//   - A glyph shorter than its header of 10 bytes adds nothing to the box. A chain of components
//   ends
//     where `data` does.
//   - A reference to a glyph that the table lacks becomes the number of glyphs, which is no glyph.
// Returns WriterResultOk, or, tried in this order:
//   WriterResultBadTable       the writer has no tables
//   WriterResultMissingTable   it lacks glyf, head, maxp or hhea
//   WriterResultEmptyTable     the glyf table has no glyphs
//   WriterResultTooManyGlyphs  it has more than 65,535
//   WriterResultBadTable       a glyph has an odd `byteCount`
//   the result of getTableImage for the first table that has no image
//   WriterResultFileTooLarge   the file passes 32 bits, or has more than 4,095 tables
// WriterResultNoMemory can come instead of any result after the fourth.
WriterResult assembleFont(TrueTypeWriter* writer, std::uint8_t** outImage,
                          std::uint32_t* outLength) noexcept;

// The sum modulo 2^32 of the big-endian words of `bytes`. The caller vouches for `length` bytes and
// for the zeros that fill up the last word.
std::uint32_t tableChecksum(const std::uint8_t* bytes, std::uint32_t length) noexcept;

}  // namespace ulm::truetype
