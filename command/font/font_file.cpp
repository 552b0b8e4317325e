#include "command/font/font_file.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "command/support/program.h"
#include "truetype/reader/open.h"

namespace ulm::tools {
namespace {

using namespace ulm::truetype;

std::vector<std::uint8_t> readFile(const std::string& file) {
  std::ifstream stream(fileNamed(file), std::ios::binary);
  std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(stream), {}};
  if (!stream.is_open() || stream.bad()) throw std::runtime_error(file + ": cannot be read");
  if (bytes.empty()) throw std::runtime_error(file + ": empty, or no file");
  if (bytes.size() > INT32_MAX) throw std::runtime_error(file + ": too large for a font");
  return bytes;
}

const char* reasonOf(FontResult result) {
  switch (result) {
    case FontResultBadFormat:
      return "not a TrueType font, or a damaged one";
    case FontResultBadFaceIndex:
      return "the collection has no face of that number";
    case FontResultNoMemory:
      return "memory ran out";
    default:
      return "cannot be opened";
  }
}

}  // namespace

FontFile::FontFile(const FontOptions& options) : image_(readFile(options.file)) {
  TrueTypeFont* font = nullptr;
  const FontResult result =
      openTrueTypeFont(options.file.c_str(), image_.data(),
                       static_cast<std::int32_t>(image_.size()), options.face, &font);
  if (result != FontResultOk) throw std::runtime_error(options.file + ": " + reasonOf(result));
  font_.reset(font);
}

void FontFile::Close::operator()(TrueTypeFont* font) const { closeTrueTypeFont(font); }

std::uint16_t FontFile::glyphOf(char32_t code) const {
  if (font_->cmapLookup == nullptr || code > 0xFFFF) return 0;
  return font_->cmapLookup(font_->cmapSubtable, static_cast<std::uint16_t>(code));
}

void FontFile::requireGlyph(std::uint32_t glyph) const {
  if (glyph < font_->numGlyphs) return;
  throw std::runtime_error("glyph " + std::to_string(glyph) + ": the font has " +
                           std::to_string(font_->numGlyphs) + " glyphs");
}

std::u32string decodeUtf8(const std::string& text) {
  std::u32string codes;
  for (std::size_t i = 0; i < text.size();) {
    const auto lead = static_cast<unsigned char>(text[i++]);
    const int more = lead < 0x80   ? 0
                     : lead < 0xC2 ? -1
                     : lead < 0xE0 ? 1
                     : lead < 0xF0 ? 2
                     : lead < 0xF5 ? 3
                                   : -1;
    char32_t code = more <= 0 ? lead : lead & (0x3Fu >> more);
    int seen = 0;
    for (; seen < more && i < text.size() && (text[i] & 0xC0) == 0x80; ++seen, ++i) {
      code = code << 6 | (static_cast<unsigned char>(text[i]) & 0x3Fu);
    }
    constexpr char32_t kLeast[] = {0, 0x80, 0x800, 0x10000};
    if (more < 0 || seen < more || code < kLeast[more] || code > 0x10FFFF ||
        (code >= 0xD800 && code < 0xE000)) {
      throw std::runtime_error("the text is not UTF-8");
    }
    codes.push_back(code);
  }
  return codes;
}

std::string encodeUtf8(char32_t code) {
  std::string text;
  const auto add = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
  if (code < 0x80) {
    add(code);
  } else if (code < 0x800) {
    add(0xC0 | code >> 6);
    add(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    add(0xE0 | code >> 12);
    add(0x80 | (code >> 6 & 0x3F));
    add(0x80 | (code & 0x3F));
  } else {
    add(0xF0 | code >> 18);
    add(0x80 | (code >> 12 & 0x3F));
    add(0x80 | (code >> 6 & 0x3F));
    add(0x80 | (code & 0x3F));
  }
  return text;
}

std::string codeName(char32_t code) {
  char text[16];
  std::snprintf(text, sizeof text, "U+%04X", static_cast<unsigned>(code));
  return text;
}

}  // namespace ulm::tools
