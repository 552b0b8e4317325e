#include "command/font/font_file.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <string_view>

#include "command/support/streams.h"
#include "command/support/text.h"
#include "truetype/format/byte_view.h"
#include "truetype/format/directory.h"
#include "truetype/reader/open.h"

namespace ulm::tools {
namespace {

using namespace ulm::truetype;
using format::CollectionHeader, format::OffsetTable;

// A pipe or a device has no known size and may be endless.
constexpr std::uint64_t kMaxStreamBytes = 1u << 28;

std::string readFont(Input input) {
  std::string bytes = input.readAll(input.size() ? INT32_MAX : kMaxStreamBytes);
  if (bytes.empty()) throw std::runtime_error(input.name() + ": empty");
  return bytes;
}

// Returns the 32 bits at the offset, or 0 if they are not all in the image.
std::uint32_t signatureAt(std::string_view image, std::size_t offset) {
  const auto* const start = reinterpret_cast<const std::uint8_t*>(image.data());
  return format::ByteView(start, image.size()).readOrZero<std::uint32_t>(offset);
}

// Names the kind of file that is not a TrueType font; null if it is not known.
const char* kindOf(std::string_view image, std::uint32_t face) {
  std::uint32_t signature = signatureAt(image, 0);
  if (signature == CollectionHeader::kCollection) {
    signature = signatureAt(image, signatureAt(image, CollectionHeader::kOffsets.at(face)));
  }
  switch (signature) {
    case OffsetTable::kPostScriptOutlines:
      return "an OpenType font with PostScript outlines (OTF); only TrueType outlines are read";
    case format::kWoffSignature:
      return "a WOFF file; its font has to be unpacked first";
    case format::kWoff2Signature:
      return "a WOFF2 file; its font has to be unpacked first";
    default:
      return nullptr;
  }
}

const char* reasonOf(FontResult result, std::string_view image, std::uint32_t face) {
  const char* const kind = result == FontResultBadFormat ? kindOf(image, face) : nullptr;
  return kind != nullptr ? kind : resultText(result);
}

bool isGlyphIndex(const std::string& argument) {
  return !argument.empty() && argument.find_first_not_of("0123456789") == std::string::npos;
}

// Returns the value of decimal digits, or kNoGlyph if it is larger.
std::uint32_t parseGlyphIndex(const std::string& digits) {
  constexpr std::uint32_t kNoGlyph = 1'000'000;  // larger than any glyph index
  std::uint32_t glyph = 0;
  for (const char digit : digits) {
    glyph = std::min(glyph * 10 + static_cast<std::uint32_t>(digit - '0'), kNoGlyph);
  }
  return glyph;
}

}  // namespace

FontFile::FontFile(const FontSource& source)
    : name_(source.file == "-" ? "standard input" : source.file),
      image_(readFont(Input(source.file))) {
  TrueTypeFont* font = nullptr;
  const FontResult result =
      openTrueTypeFont(name_.c_str(), reinterpret_cast<const std::uint8_t*>(image_.data()),
                       static_cast<std::int32_t>(image_.size()), source.face, &font);
  if (result != FontResultOk) {
    throw std::runtime_error(name_ + ": " + reasonOf(result, image_, source.face));
  }
  font_.reset(font);
  if (source.face != 0 && signatureAt(image_, 0) != CollectionHeader::kCollection) {
    throw std::runtime_error(name_ + ": not a collection; its only face is 0");
  }
}

void FontFile::Close::operator()(TrueTypeFont* font) const { closeTrueTypeFont(font); }

std::uint16_t FontFile::glyphOf(char32_t code) const {
  if (font_->cmapLookup == nullptr || code > 0xFFFF) return 0;
  return font_->cmapLookup(font_->cmapSubtable, static_cast<std::uint16_t>(code));
}

std::vector<std::uint16_t> FontFile::lowestCodes() const {
  std::vector<std::uint16_t> codes(font_->numGlyphs);
  for (std::uint32_t code = 0xFFFE; code > 0; --code) {
    const std::uint16_t glyph = glyphOf(code);
    if (glyph < codes.size()) codes[glyph] = static_cast<std::uint16_t>(code);
  }
  if (!codes.empty()) codes[0] = 0;
  return codes;
}

void FontFile::requireGlyph(std::uint32_t glyph, const std::string& text) const {
  if (glyph < font_->numGlyphs) return;
  throw std::runtime_error("glyph " + text + ": the font has " + std::to_string(font_->numGlyphs) +
                           " glyphs");
}

std::string codeName(char32_t code) {
  char text[16];
  std::snprintf(text, sizeof text, "U+%04X", static_cast<unsigned>(code));
  return text;
}

std::u32string charactersOfArgument(const std::string& argument) {
  if (argument.size() < 3 || argument.compare(0, 2, "U+") != 0) return decodeUtf8(argument);
  const std::string digits = argument.substr(2);
  const bool hex = digits.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
  const unsigned long code = hex && digits.size() <= 6 ? std::stoul(digits, nullptr, 16) : ~0ul;
  if (code > 0x10FFFF) throw std::runtime_error(argument + ": no character");
  return {static_cast<char32_t>(code)};
}

std::vector<NamedGlyph> glyphsOfArguments(const FontFile& font,
                                          const std::vector<std::string>& arguments) {
  std::vector<NamedGlyph> glyphs;
  std::vector<std::uint16_t> lowestCodes;
  for (const std::string& argument : arguments) {
    if (isGlyphIndex(argument)) {
      const std::uint32_t glyph = parseGlyphIndex(argument);
      font.requireGlyph(glyph, argument);
      if (lowestCodes.empty()) lowestCodes = font.lowestCodes();
      glyphs.push_back({glyph, lowestCodes[glyph]});
      continue;
    }
    for (const char32_t code : charactersOfArgument(argument)) {
      const std::uint16_t glyph = font.glyphOf(code);
      if (glyph == 0) throw std::runtime_error(codeName(code) + ": not mapped by the font");
      font.requireGlyph(glyph, std::to_string(glyph));
      glyphs.push_back({glyph, code});
    }
  }
  return glyphs;
}

}  // namespace ulm::tools
