// The names of a font as Unicode text.
#pragma once

#include <string>

#include "command/font/font_file.h"

namespace ulm::tools {

// The characters of a name record: UTF-16 on the Unicode and Windows platforms, with U+FFFD for a
// surrogate without its other half; Mac Roman for encoding 0 of the Macintosh; else Latin-1.
std::u32string charactersOf(const truetype::NameRecord& record);

// The names that the library chose for the font's record, whose narrow texts hold the low bytes of
// UTF-16 alone. Made from the same name records, without that loss.
struct FontNames {
  std::u32string family, style, postScript;
};
FontNames namesOfFont(const FontFile& font);

}  // namespace ulm::tools
