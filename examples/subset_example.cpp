// Makes a smaller font of the ASCII characters of a font. Glyph 0 is the glyph for missing
// characters.
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
    std::cout << "usage: subset_example FONT NEW_FONT\n";
    return 0;
  }
  std::ifstream file(argv[1], std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
  const std::vector<std::uint8_t> source(bytes.begin(), bytes.end());  // must outlive the font
  TrueTypeFont* font = nullptr;
  const FontResult opened =
      openTrueTypeFont(argv[1], source.data(), static_cast<std::int32_t>(source.size()), 0, &font);
  if (opened != FontResultOk) {
    std::cerr << argv[1] << ": " << resultText(opened) << '\n';
    return 1;
  }

  std::vector<std::uint16_t> glyphs{0}, codes{0};
  for (std::uint16_t code = ' '; font->cmapLookup != nullptr && code <= '~'; ++code) {
    const std::uint16_t glyph = font->cmapLookup(font->cmapSubtable, code);
    if (glyph == 0) continue;
    codes.push_back(code);
    glyphs.push_back(glyph);
  }
  std::uint8_t* image = nullptr;
  std::uint32_t length = 0;
  const WriterResult result =
      createTrueTypeSubset(font, &image, &length, glyphs.data(), codes.data(),
                           static_cast<std::int32_t>(glyphs.size()), 0, nullptr, SubsetKeepOS2);
  closeTrueTypeFont(font);
  if (result != WriterResultOk) {
    std::cerr << argv[1] << ": " << resultText(result) << '\n';
    return 1;
  }
  std::ofstream made(argv[2], std::ios::binary);
  made.write(reinterpret_cast<const char*>(image), static_cast<std::streamsize>(length));
  std::free(image);
  std::cout << source.size() << " bytes in, " << length << " out\n";
  return made.flush() ? 0 : 1;
}
