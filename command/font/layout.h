// The layout tables that a set of glyphs uses.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "command/font/font_file.h"

namespace ulm::tools {

// Returns the tags of the layout tables that a font of these glyphs would need and a subset does
// not have: GSUB and GPOS if a feature that browsers apply by default changes some of the glyphs,
// kern if it has a pair of them, fvar always. A table that would take too much work to check is
// included.
std::vector<std::string> layoutInUse(const FontFile& font, std::vector<std::uint16_t> glyphs);

}  // namespace ulm::tools
