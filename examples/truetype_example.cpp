// Prints the names of a TrueType font, and the outline and advance of a character.
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

#include "truetype/truetype.h"

int main(int argc, char** argv) {
  using namespace ulm::truetype;
  if (argc != 3) {
    std::cout << "usage: truetype_example FONT CHARACTER\n";
    return 0;
  }
  std::ifstream file(argv[1], std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
  const std::vector<std::uint8_t> image(bytes.begin(), bytes.end());  // must outlive the font

  TrueTypeFont* font = nullptr;
  const FontResult result =
      openTrueTypeFont(argv[1], image.data(), static_cast<std::int32_t>(image.size()), 0, &font);
  if (result != FontResultOk) {
    std::cerr << argv[1] << ": " << resultText(result) << '\n';
    return 1;
  }
  std::cout << font->familyName << ' ' << font->subfamilyName << '\n';

  const auto code = static_cast<unsigned char>(argv[2][0]);
  const std::uint16_t glyph =
      font->cmapLookup != nullptr ? font->cmapLookup(font->cmapSubtable, code) : std::uint16_t{0};
  GlyphMetrics metrics{};
  if (glyph < font->numGlyphs) readGlyphMetrics(font, glyph, &metrics);
  GlyphPoint* points = nullptr;
  const std::int32_t count = getGlyphPoints(font, glyph, &points);
  std::cout << "glyph " << glyph << ", advance " << metrics.advanceWidth << " of "
            << font->unitsPerEm << '\n';
  for (std::int32_t i = 0; i < count; ++i) {
    std::cout << points[i].x << ' ' << points[i].y
              << ((points[i].flags & kPointOnCurve) != 0 ? "" : " off the curve")
              << ((points[i].flags & kPointEndsContour) != 0 ? ", ends a contour\n" : "\n");
  }
  std::free(points);
  closeTrueTypeFont(font);
  return 0;
}
