// The result codes of the font writer.
#pragma once

#include <cstdint>

namespace ulm::truetype {

enum WriterResult : std::int32_t {
  WriterResultOk = 0,
  WriterResultEmptyTable = 1,      // a glyf or loca object has nothing in it
  WriterResultUnknownTable = 2,    // the object's tag has no handler
  WriterResultNoMemory = 3,        // memory ran out; all that the call made is released
  WriterResultNoData = 4,          // a name object has no records, or no glyph could be added
  WriterResultNameTooLong = 5,     // the strings of a name object come to 0x10000 bytes or more
  WriterResultBadTable = 6,        // an unusable post or glyf object, or a writer without tables
  WriterResultMissingTable = 7,    // a writer without glyf, head, maxp or hhea
  WriterResultCmapTooLarge = 8,    // the mappings do not fit a subtable of format 4
  WriterResultNameOutOfRange = 9,  // the strings of so many name records lie too far off
  WriterResultTooManyGlyphs = 10,  // more than 65,535
  WriterResultGlyphTooLarge = 11,  // a glyph of 65,535 bytes or more
  // A table or the file past 32 bits, more than 4,095 tables, or glyphs that come to far more bytes
  // than their font has.
  WriterResultFileTooLarge = 12,
};

// A short English text, as that of a FontResult.
const char* resultText(WriterResult result) noexcept;

}  // namespace ulm::truetype
