// Fonts in use, beside what a peer said of them: where the peer itself can't be had too.
#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <iterator>

#include "tests/support/vector_blocks.h"
#include "tests/truetype/font_image.h"
#include "truetype/reader/glyphs.h"
#include "truetype/reader/metrics.h"

namespace {

using namespace ulm::test;
using namespace ulm::truetype;

class Mixed {
 public:
  void add(std::int64_t number) {
    value_ = (value_ ^ static_cast<std::uint32_t>(number)) * 1099511628211u;
  }
  std::string text() const { return std::to_string(value_); }

 private:
  std::uint64_t value_ = 1;
};

TEST(Stored, FontsAreReadAsByThePeer) {
  int read = 0;
  for (auto& block : readVectorBlocks(ULM_TEST_DATA "/truetype/fonts.txt")) {
    std::ifstream stream(block.text("Font"), std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
    if (std::to_string(bytes.size()) != block.text("Bytes")) continue;  // none, or another version
    Bytes image;
    image.add({bytes.begin(), bytes.end()});
    const OpenFont font(image);
    ASSERT_EQ(font.result, FontResultOk) << block.where();
    Mixed advances, codes, outlines;
    for (std::uint32_t glyph = 0; glyph < font->numGlyphs; ++glyph) {
      GlyphMetrics metrics{};
      readGlyphMetrics(font.get(), glyph, &metrics);
      advances.add(metrics.advanceWidth);
      GlyphPoint* given = nullptr;
      const std::int32_t count = getGlyphPoints(font.get(), glyph, &given);
      const auto points = owned(given);
      outlines.add(count);
      for (std::int32_t i = 0; i < count; ++i) {
        const GlyphPoint& point = points[static_cast<std::size_t>(i)];
        outlines.add(point.x);
        outlines.add(point.y);
        outlines.add(point.flags & 1);
        outlines.add((point.flags & kPointEndsContour) != 0 ? 1 : 0);
      }
    }
    for (std::uint32_t code = 0; code < 0x10000; ++code) {
      codes.add(font->cmapLookup(font->cmapSubtable, static_cast<std::uint16_t>(code)));
    }
    EXPECT_EQ(advances.text(), block.text("Advances")) << block.where();
    EXPECT_EQ(codes.text(), block.text("Codes")) << block.where();
    EXPECT_EQ(outlines.text(), block.text("Points")) << block.where();
    block.expectAllUsed();
    ++read;
  }
  if (read == 0) GTEST_SKIP() << "none of the fonts is installed";
}

}  // namespace
