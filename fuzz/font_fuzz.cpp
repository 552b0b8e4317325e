// Opens a font, calls every reading operation, makes a subset, and opens and reads that too. The
// last byte of an input selects the face, of which collections here have few, and the flags of the
// subset. The rest is the image, in a heap block of its exact size.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "fuzz/font_properties.h"
#include "truetype/reader/open.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2 || size > 65536) return 0;
  const std::size_t imageSize = size - 1;
  const std::unique_ptr<std::uint8_t[]> image(new std::uint8_t[imageSize]);
  std::memcpy(image.get(), data, imageSize);
  ulm::truetype::TrueTypeFont* font = nullptr;
  const auto result = ulm::truetype::openTrueTypeFont(
      "dir/name.ttf", image.get(), static_cast<std::int32_t>(imageSize), data[size - 1] % 4, &font);
  int wrong = (font != nullptr) == (result == ulm::truetype::FontResultOk) ? 0 : 1;
  // Few glyphs, so that a run stays short even if each glyph takes the maximum of work.
  if (font != nullptr) {
    wrong += ulm::test::checkReading(font, 16);
    wrong += ulm::test::checkSubset(font, {0, 3, 1, 4, 4, 2, 15, 0xFFFF}, data[size - 1]);
  }
  ulm::truetype::closeTrueTypeFont(font);
  if (wrong != 0) {
    std::fprintf(stderr, "font: %d results that cannot be\n", wrong);
    std::abort();
  }
  return 0;
}
