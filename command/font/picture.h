// Outlines of a font as points and as SVG.
#pragma once

#include <string>
#include <vector>

#include "command/font/font_file.h"
#include "command/font/report.h"

namespace ulm::tools {

struct Picture {
  Json values;      // what is printed
  std::string svg;  // the file that --svg writes
};

// The points of the one glyph that the arguments name, in font units, and its outline. Throws
// std::runtime_error for a fault in the arguments and for more than one glyph.
Picture glyphPicture(const FontFile& font, const std::vector<std::string>& arguments);

// A line of UTF-8 text with advances and kerning. `svgFile` is the name of the picture in the
// printed values. Throws std::runtime_error if the text is not UTF-8.
Picture textPicture(const FontFile& font, const std::string& text, const std::string& svgFile);

}  // namespace ulm::tools
