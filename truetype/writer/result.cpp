#include "truetype/writer/result.h"

namespace ulm::truetype {

const char* resultText(WriterResult result) noexcept {
  switch (result) {
    case WriterResultOk:
      return "done";
    case WriterResultEmptyTable:
      return "a table of the new font would be empty";
    case WriterResultUnknownTable:
      return "a table of the new font is of no known kind";
    case WriterResultNoMemory:
      return "memory ran out";
    case WriterResultNoData:
      return "none of the glyphs could be taken";
    case WriterResultNameTooLong:
      return "the names come to 65,536 bytes or more";
    case WriterResultBadTable:
      return "a table of the new font is unusable";
    case WriterResultMissingTable:
      return "the new font would lack a table";
    case WriterResultCmapTooLarge:
      return "the characters are too many and too scattered for one character map";
    case WriterResultNameOutOfRange:
      return "there are too many name records";
    case WriterResultTooManyGlyphs:
      return "with the components of composites there are more than 65,535 glyphs";
    case WriterResultGlyphTooLarge:
      return "a glyph has 65,535 bytes or more";
    case WriterResultFileTooLarge:
      return "the new font would be too large";
  }
  return "unknown result";
}

}  // namespace ulm::truetype
