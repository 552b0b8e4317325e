// What a font contains, as JSON objects: the reports of `ulmira font`.
#pragma once

#include <string>
#include <vector>

#include "command/font/font_file.h"
#include "command/font/report.h"

namespace ulm::tools {

// Arguments are read as font_file.h describes, and faults in them are std::runtime_error.

// Names, global description, tables, character map and kerning.
Json fontInfo(const FontFile& font);

// All name records.
Json nameList(const FontFile& font);

// The glyph index of each character of the arguments, each character once. `unmapped` is the value
// of a character that the font does not map.
Json characterMap(const FontFile& font, const std::vector<std::string>& arguments,
                  const Json& unmapped);

// The advances, bearings and boxes of the glyphs, in font units.
Json glyphMetrics(const FontFile& font, const std::vector<std::string>& arguments);

// The kerning of each pair of neighbours in the text of all arguments, in thousandths of the em.
Json pairKerning(const FontFile& font, const std::vector<std::string>& arguments);

}  // namespace ulm::tools
