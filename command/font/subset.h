// `ulmira font subset`: what it takes, and the parts of its work.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "command/font/font_file.h"

namespace CLI {
class App;
}

namespace ulm::tools {

// Hangs the subcommand into `ulmira font`.
void addSubsetCommand(CLI::App& font);

// What the user's one list of characters or glyphs is.
enum class SubsetInput { Text, TextFile, Unicodes, Glyphs };

struct SubsetOptions {
  FontOptions font;  // the file and its face
  std::string out;
  SubsetInput input = SubsetInput::Text;
  std::string list;  // the text, the file's name, or the list itself
  bool dropOs2 = false;
  bool genericName = false;
  bool ignorePermission = false;
  std::optional<std::string> family;  // none: the source's names
  std::string mapping;                // empty: none is written; so too the preview
  std::string preview;
};

// What goes into the new font. Code i belongs to glyph i of the source; the codes ascend, each
// once, behind .notdef, which leads with code 0.
struct SubsetPlan {
  std::vector<std::uint16_t> glyphs, codes;
  std::u32string text;               // to look at: the user's own, or one character a code
  std::u32string assigned;           // the codes of glyphs that no character of the source reaches
  std::vector<std::string> leftOut;  // lines for the user
};

// Reads the user's list against the font. A runtime_error where the list cannot be read, nothing of
// it can be taken, or there are more glyphs without a character than unused codes.
SubsetPlan planSubset(const FontFile& font, const SubsetOptions& options);

// The layout tables, by tag, that act on the glyphs and that the new font is without: GSUB and GPOS
// where features that browsers apply by themselves change some of the glyphs, kern where it has a
// pair of them, fvar always. Tables that are too costly to judge are among them.
std::vector<std::string> layoutInUse(const FontFile& font, std::vector<std::uint16_t> glyphs);

// The name records of a font of that family: family, style, full name and PostScript name, for
// Windows, and for the Macintosh where they are ASCII. The strings belong to the object.
class FamilyNames {
 public:
  // `style` is the source's, without its controls and cut at 255 characters; empty stands for
  // "Regular".
  FamilyNames(const std::string& family, const std::u32string& style);
  const std::vector<truetype::NameRecord>& records() const { return records_; }

 private:
  void add(std::uint16_t nameID, const std::u32string& text);
  std::vector<std::vector<std::uint8_t>> strings_;
  std::vector<truetype::NameRecord> records_;
};

// A page that sets the plan's text in both fonts, which are embedded, the characters of a list
// apart from each other; `layout` is what layoutInUse gives. Its script draws in both fonts what
// the page shows, and leaves in the data of the root
//   subset, source  "loaded" or "refused"
//   drawing         "equal" or "different", by the widths and pixels of what is shown
//   differing       the words or characters that differ, up to 100, with | in between
//   characters      "equal" or "different", by the characters drawn one by one
std::string previewPage(const FontFile& font, std::string_view subset, const SubsetPlan& plan,
                        const std::vector<std::string>& layout, const SubsetOptions& options);

}  // namespace ulm::tools
