// The plan of a subset: which glyphs and characters the new font gets.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "command/font/font_file.h"

namespace ulm::tools {

// The kind of the one list of characters or glyphs that the user gives.
enum class SubsetInput { Text, TextFile, Unicodes, Glyphs };

// The command line of `ulmira font subset`.
struct SubsetOptions {
  FontSource source;
  std::string output;
  SubsetInput input = SubsetInput::Text;
  std::string list;  // the text, the name of the text file, or the list itself
  bool dropOs2 = false;
  bool genericName = false;
  bool ignorePermission = false;
  std::optional<std::string> family;  // without a value the source's names are kept
  std::string mapping;                // the file to write; empty for none
  std::string preview;                // the file to write; empty for none
};

struct SubsetPlan {
  // Character codes[i] of the new font maps to glyph glyphs[i] of the source. The codes ascend and
  // are different; the first entry is .notdef with code 0.
  std::vector<std::uint16_t> glyphs, codes;
  std::u32string text;      // for the preview: the user's text, or each character once
  std::u32string assigned;  // private-use codes of glyphs that no character of the source maps to
  std::vector<std::string> leftOut;  // messages about what the new font does not get
};

// Reads the user's list and finds the glyphs. Throws std::runtime_error if the list cannot be read,
// if it yields no glyph, if .notdef is damaged, or if there are more glyphs without a character
// than unused private-use codes.
SubsetPlan planSubset(const FontFile& font, const SubsetOptions& options);

}  // namespace ulm::tools
