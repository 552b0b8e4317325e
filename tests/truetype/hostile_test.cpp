// Small fonts that ask for much work or memory. The fuzz target runs what is cut and changed.
#include <gtest/gtest.h>

#include <ctime>

#include "tests/support/c_heap.h"
#include "tests/truetype/hostile_fonts.h"
#include "truetype/writer/subset.h"

namespace {

using namespace ulm::test;
using namespace ulm::truetype;

double secondsOf(auto operation) {
  const std::clock_t start = std::clock();
  operation();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

TEST(Hostile, SmallFontsTakeLittleTimeAndMemory) {
  const struct {
    const char* name;
    FontImage font;
    WriterResult result;
  } kRows[] = {{"cycles", cycles(), WriterResultOk},
               {"one composite for all", oneComposite(), WriterResultFileTooLarge},
               // What they read of each other's bytes is bounded too. So many codes are past any
               // cmap.
               {"chains that run on", chainsThatRunOn(), WriterResultCmapTooLarge},
               {"outlines that run on", outlinesThatRunOn(), WriterResultCmapTooLarge}};
  for (const auto& [name, image, expected] : kRows) {
    const OpenFont font(image);
    std::vector<std::uint16_t> glyphs, codes;
    for (std::uint32_t i = 0; i < font->numGlyphs; ++i) {
      glyphs.push_back(static_cast<std::uint16_t>(i));
      codes.push_back(static_cast<std::uint16_t>(i));
    }
    std::uint8_t* out = nullptr;
    std::uint32_t length = 0;
    WriterResult result = WriterResultOk;
    cHeap.bytesAsked = 0;
    EXPECT_LT(secondsOf([&] {
                result =
                    createTrueTypeSubset(font.get(), &out, &length, glyphs.data(), codes.data(),
                                         static_cast<std::int32_t>(codes.size()), 0, nullptr, 0);
              }),
              10)  // unbounded, they take over 20
        << name;
    EXPECT_EQ(result, expected) << name;
    EXPECT_LT(cHeap.bytesAsked, 20u << 20) << name;
    std::free(out);
  }

  const OpenFont font{deepTower()};
  for (const std::uint32_t glyph : {16u, 18u, 116u}) {
    EXPECT_EQ(glyphOf(font.get(), glyph)->contourCount, 0);
    EXPECT_EQ(pointsOf(font.get(), glyph).size(), glyph < 100 ? 65536u : 0u);
  }
}

}  // namespace
