// The plan of a subset: which glyphs and characters the new font gets.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "command/font/font_file.h"

namespace ulm::tools {

// The lists of the command line, each as often as the user gave it. They add up.
struct SubsetLists {
  std::vector<std::string> texts;
  std::vector<std::string> textFiles;
  std::vector<std::string> unicodes;
  std::vector<std::string> glyphs;
};

// What the lists ask for, without regard to a font.
struct SubsetRequest {
  std::u32string text;                    // of texts and files, in the order given, a line each
  std::vector<std::uint32_t> characters;  // of texts and lists; ascending and different
  std::vector<std::uint32_t> glyphs;      // ascending and different
  bool allCharacters = false;             // all that the font maps
  bool allGlyphs = false;
};

// Reads the lists and the files. Throws std::runtime_error for what is not a list, and for a file
// that cannot be read.
SubsetRequest readSubsetLists(const SubsetLists& lists);

struct SubsetPlan {
  // Character codes[i] of the new font maps to glyph glyphs[i] of the source. The codes ascend and
  // are different; the first entry is .notdef with code 0.
  std::vector<std::uint16_t> glyphs, codes;
  // For the preview: the user's text, then each other character on a line; without a text each
  // character once.
  std::u32string text;
  bool isList = false;      // whether there is no text of the user
  std::u32string assigned;  // private-use codes of glyphs that no character of the source maps to
  std::vector<std::string> leftOut;  // messages about what the new font does not get
};

// Finds the glyphs. Throws std::runtime_error if there is none, if .notdef is damaged, or if there
// are more glyphs without a character than unused private-use codes.
SubsetPlan planSubset(const FontFile& font, const SubsetRequest& request);

}  // namespace ulm::tools
