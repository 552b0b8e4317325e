// A font file that is open for the command, and the glyphs that a user names.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "truetype/font.h"
#include "truetype/records.h"

namespace ulm::tools {

// A font on the command line.
struct FontSource {
  std::string file;  // "-" is standard input
  std::uint32_t face = 0;
};

// An open font together with the bytes that it borrows. Every failure is a std::runtime_error that
// gives the reason.
class FontFile {
 public:
  explicit FontFile(const FontSource& source);
  // Returns the name for messages: the file's own, or "standard input".
  const std::string& name() const { return name_; }
  const truetype::TrueTypeFont* get() const { return font_.get(); }
  const truetype::TrueTypeFont* operator->() const { return font_.get(); }
  // Returns the glyph of a character, or 0 if the font does not map it or it is above U+FFFF.
  std::uint16_t glyphOf(char32_t code) const;
  // Returns, by glyph index, the lowest character that the font maps to the glyph, or 0 for none.
  // U+0000 and U+FFFF are ignored: the first belongs to .notdef, the second ends character maps.
  std::vector<std::uint16_t> lowestCodes() const;
  // Throws if the font has no glyph of that index. `text` is the index in the message.
  void requireGlyph(std::uint32_t glyph, const std::string& text) const;

 private:
  struct Close {
    void operator()(truetype::TrueTypeFont* font) const;
  };
  std::string name_;
  std::string image_;
  std::unique_ptr<truetype::TrueTypeFont, Close> font_;
};

// Frees a block that the font library allocated with malloc.
struct FreeBlock {
  void operator()(void* block) const { std::free(block); }
};

// Takes ownership of a block that the font library allocated. `block` may be null.
template <class T>
std::unique_ptr<T[], FreeBlock> takeBlock(T* block) {
  return std::unique_ptr<T[], FreeBlock>(block);
}

// Returns the usual name of a character, as "U+0041".
std::string codeName(char32_t code);

// Returns the characters of an argument, which is U+XXXX or UTF-8 text. Throws std::runtime_error
// for a number that is no character and for text that is not UTF-8.
std::u32string charactersOfArgument(const std::string& argument);

struct NamedGlyph {
  std::uint32_t glyph;  // its index
  char32_t code;        // the named character, or the lowest one of the glyph; 0 for none
};

// Returns the glyphs that the arguments name. An argument of digits is a glyph index; every other
// one is read by charactersOfArgument. Throws std::runtime_error as that function does, for a glyph
// that the font does not have, and for a character that it does not map.
std::vector<NamedGlyph> glyphsOfArguments(const FontFile& font,
                                          const std::vector<std::string>& arguments);

}  // namespace ulm::tools
