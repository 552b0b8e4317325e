// A font file opened for the command line, and what its subcommands share.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "command/support/text.h"
#include "truetype/font.h"
#include "truetype/records.h"

namespace ulm::tools {

using Json = nlohmann::ordered_json;

struct FontOptions {
  std::string file;
  std::uint32_t face = 0;
  bool json = false;
  std::vector<std::string> words;  // text, U+XXXX and, where glyphs are asked for, glyph numbers
  std::string text;
  std::string svg;
};

// An open font with the bytes that it borrows. Every failure is a runtime_error with the reason in
// words.
class FontFile {
 public:
  explicit FontFile(const FontOptions& options);
  // The name in messages: the file's own, or "standard input".
  const std::string& name() const { return name_; }
  const truetype::TrueTypeFont* get() const { return font_.get(); }
  const truetype::TrueTypeFont* operator->() const { return font_.get(); }
  // 0 for a code that the font does not map, or beyond 16 bits.
  std::uint16_t glyphOf(char32_t code) const;
  // By glyph number, the lowest code that leads to the glyph; 0 for none. The codes 0 and 0xFFFF
  // are left out: the first is that of .notdef, the second closes character maps.
  std::vector<std::uint16_t> lowestCodes() const;
  // Refuses a glyph number that the font does not have; `name` is the number in the message.
  void requireGlyph(std::uint32_t glyph, const std::string& name) const;

 private:
  struct Close {
    void operator()(truetype::TrueTypeFont* font) const;
  };
  std::string name_;
  std::string image_;
  std::unique_ptr<truetype::TrueTypeFont, Close> font_;
};

struct Freed {
  void operator()(void* block) const { std::free(block); }
};
template <class T>
std::unique_ptr<T[], Freed> owned(T* block) {
  return std::unique_ptr<T[], Freed>(block);
}

std::string codeName(char32_t code);  // U+0041

// The characters of a word that is U+XXXX or text; a runtime_error for a number that is none.
std::u32string codesOf(const std::string& word);

// Glyphs that the user names by number or by character, with the character, or the lowest one that
// leads to the glyph; 0 for none.
struct NamedGlyph {
  std::uint32_t glyph;
  char32_t code;
};
// A word of digits is a glyph number, and every other one is read by codesOf. A runtime_error for a
// glyph that the font does not have and a character that it does not map.
std::vector<NamedGlyph> glyphsOf(const FontFile& font, const std::vector<std::string>& words);

// Adds the character of a row as "code", U+0041, and "character", A; null for 0.
void addCharacter(Json& row, char32_t code);

// What a subcommand prints, as an object, and the picture that --svg writes. Where the object has
// "units", these name the unit of a value by its key.
struct Report {
  Report(Json toPrint, std::string toDraw = {})
      : values(std::move(toPrint)), picture(std::move(toDraw)) {}
  Json values;
  std::string picture;
};
Report infoOf(const FontFile& font, const FontOptions& options);
Report namesOf(const FontFile& font, const FontOptions& options);
Report mapOf(const FontFile& font, const FontOptions& options);
Report metricsOf(const FontFile& font, const FontOptions& options);
Report kernOf(const FontFile& font, const FontOptions& options);
Report outlineOf(const FontFile& font, const FontOptions& options);
Report specimenOf(const FontFile& font, const FontOptions& options);

}  // namespace ulm::tools
