// Small fonts that ask for much work or memory. The fuzz target runs what is cut and changed.
#include <gtest/gtest.h>

#include <ctime>

#include "tests/support/c_heap.h"
#include "tests/truetype/font_image.h"
#include "truetype/writer/subset.h"

namespace {

using namespace ulm::test;
using namespace ulm::truetype;

// 65,534 glyphs, of which every other one has the bytes from `start` to `end`.
FontImage sharing(const Bytes& glyf, std::size_t start, std::size_t end) {
  Bytes loca;
  for (int i = 0; i < 32767; ++i) {
    loca.u32(static_cast<std::uint32_t>(start)).u32(static_cast<std::uint32_t>(end));
  }
  FontImage image;
  image.table("glyf", glyf).loca(loca.u32(0), 1);
  return image.patch16("maxp", 4, 65534);
}

double secondsOf(auto operation) {
  const std::clock_t start = std::clock();
  operation();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

TEST(Hostile, SmallFontsTakeLittleTimeAndMemory) {
  // Its ends of contours do not rise; a cycle in each of 256 composites has its points counted.
  const Bytes falling = simpleGlyph({0, 0}, {{0, 0}});
  std::vector<Bytes> cycles = doublings(falling, 16);
  for (int i = 17; i < 17 + 256; ++i) {
    cycles.push_back(compositeGlyph({moved(i, 0, 0), moved(16, 0, 0)}));
  }
  const Bytes wide = compositeGlyph(std::vector<Part>(8000, moved(9, 0, 0)));
  const Bytes chain = compositeGlyph(std::vector<Part>(50000, Part{0, 1, Bytes().u16({0})}));
  Bytes ends = Bytes().u16({32767, 0, 0, 0, 0});
  for (int i = 0; i < 32767; ++i) ends.u16({i % 2 == 0 ? -1 : 0});
  ends.u16({0}).zeros(65536 * 7);
  const struct {
    const char* name;
    FontImage font;
    WriterResult result;
  } kRows[] = {
      {"cycles", FontImage().glyphs(cycles), WriterResultOk},
      {"one composite for all", sharing(wide, 0, wide.size()), WriterResultFileTooLarge},
      // What they read of each other's bytes is bounded too. So many codes are past any cmap.
      {"chains that run on", sharing(chain, 0, 2), WriterResultCmapTooLarge},
      {"outlines that run on", sharing(ends, 0, 2), WriterResultCmapTooLarge},
  };
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

  const Part turned{0x0083, 16, Bytes().u16({3, 4, 0x2111, 0x1000, -0x1000, 0x2333})};
  std::vector<Bytes> deep = doublings(falling, 16);
  for (int i = 17; i < 17 + 100; ++i) {
    deep.push_back(compositeGlyph({{turned.flags, i - 1, turned.rest}}));
  }
  const OpenFont font{FontImage().glyphs(deep)};
  for (const std::uint32_t glyph : {16u, 18u, 116u}) {
    EXPECT_EQ(glyphOf(font.get(), glyph)->contourCount, 0);
    EXPECT_EQ(pointsOf(font.get(), glyph).size(), glyph < 100 ? 65536u : 0u);
  }
}

}  // namespace
