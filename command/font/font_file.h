// A font file opened for the command line, and what its subcommands share.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "truetype/font.h"
#include "truetype/records.h"

namespace ulm::tools {

using Json = nlohmann::ordered_json;

struct FontOptions {
  std::string file;
  std::uint32_t face = 0;
  bool json = false;
  std::vector<std::string> words;
  std::vector<std::uint32_t> glyphs;
  std::string text;
  std::string svg;
};

// An open font with the bytes that it borrows. Every failure is a runtime_error with the reason in
// words.
class FontFile {
 public:
  explicit FontFile(const FontOptions& options);
  const truetype::TrueTypeFont* get() const { return font_.get(); }
  const truetype::TrueTypeFont* operator->() const { return font_.get(); }
  // 0 for a code that the font does not map, or beyond 16 bits.
  std::uint16_t glyphOf(char32_t code) const;
  // Refuses a glyph number that the font does not have.
  void requireGlyph(std::uint32_t glyph) const;

 private:
  struct Close {
    void operator()(truetype::TrueTypeFont* font) const;
  };
  std::vector<std::uint8_t> image_;
  std::unique_ptr<truetype::TrueTypeFont, Close> font_;
};

struct Freed {
  void operator()(void* block) const { std::free(block); }
};
template <class T>
std::unique_ptr<T[], Freed> owned(T* block) {
  return std::unique_ptr<T[], Freed>(block);
}

// The characters of UTF-8 text; a runtime_error where it is none.
std::u32string decodeUtf8(const std::string& text);
std::string encodeUtf8(char32_t code);
std::string codeName(char32_t code);  // U+0041

// The points of a glyph, and its outline as SVG path data with the y axis turned down.
std::vector<truetype::GlyphPoint> outlineOf(const FontFile& font, std::uint32_t glyph);
std::string svgPath(const std::vector<truetype::GlyphPoint>& points, std::int64_t originX);
// Writes a picture of paths in font units; box is [xMin, yMin, xMax, yMax] with the y axis up.
struct Box {
  std::int64_t xMin, yMin, xMax, yMax;
};
void writeSvg(const std::string& file, const Box& box, const std::string& paths);

// The subcommands' work: what they would print, as an object.
Json infoOf(const FontFile& font, const FontOptions& options);
Json namesOf(const FontFile& font, const FontOptions& options);
Json mapOf(const FontFile& font, const FontOptions& options);
Json metricsOf(const FontFile& font, const FontOptions& options);
Json kernOf(const FontFile& font, const FontOptions& options);
Json outlineReport(const FontFile& font, const FontOptions& options);
Json specimenOf(const FontFile& font, const FontOptions& options);

}  // namespace ulm::tools
