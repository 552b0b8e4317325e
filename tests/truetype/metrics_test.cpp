#include "truetype/reader/metrics.h"

#include <gtest/gtest.h>

#include "tests/truetype/font_image.h"

namespace {

using namespace ulm::test;
using namespace ulm::truetype;

// Four glyphs; two long entries across, one down.
FontImage measured(int em = 1000) {
  const Bytes glyph = simpleGlyph({0}, {{0, 0}});
  return FontImage()
      .glyphs({glyph, {}, glyph, glyph})
      .patch16("head", 18, em)
      .longMetrics("hhea", "hmtx", 2, Bytes().u16({500, -1, 600, 7, 8, 9}))
      .longMetrics("vhea", "vmtx", 1, Bytes().u16({2048, 3, 4, 5, 6}));
}

TEST(Metrics, FontUnits) {
  const OpenFont font(measured());
  const std::vector<long long> expected[] = {row(500, -1, 2048, 3, 11), row(600, 7, 2048, 4, 11),
                                             row(600, 8, 2048, 5, 11), row(600, 9, 2048, 6, 11)};
  for (std::uint32_t glyph = 0; glyph < 4; ++glyph) {
    GlyphMetrics metrics = {11, 12, 13, 14, 15, 16, 17, 18};
    readGlyphMetrics(font.get(), glyph, &metrics);
    EXPECT_EQ(row(metrics.advanceWidth, metrics.leftSideBearing, metrics.advanceHeight,
                  metrics.topSideBearing, metrics.xMin),
              expected[glyph]);
    EXPECT_EQ(readGlyphBox(font.get(), glyph, &metrics), glyph != 1);
    EXPECT_EQ(metrics.yMax, glyph == 1 ? 14 : 4);
  }
  GlyphMetrics metrics;
  EXPECT_FALSE(readGlyphBox(font.get(), 4, &metrics));
  const OpenFont down(measured().without("hmtx"));
  readGlyphMetrics(down.get(), 0, &metrics);
  EXPECT_EQ(row(metrics.advanceWidth, metrics.advanceHeight), row(0, 0));
  EXPECT_EQ(getScaledAdvances(down.get(), std::vector<std::uint16_t>{1}.data(), 1, 0), nullptr);
}

TEST(Metrics, EntriesOutsideTheImageAreZero) {
  GlyphMetrics metrics;
  for (const int whole : {3, 5}) {  // 16-bit words of hmtx in the image
    Bytes hmtx = Bytes().u16({500, -1, 600, 7, 8});
    hmtx.resize(2 * static_cast<std::size_t>(whole));
    const OpenFont font(measured().table("hmtx", hmtx).last("hmtx"));
    readGlyphMetrics(font.get(), 1, &metrics);
    EXPECT_EQ(row(metrics.advanceWidth, metrics.leftSideBearing), row(600, whole == 3 ? 0 : 7));
    readGlyphMetrics(font.get(), 3, &metrics);
    EXPECT_EQ(row(metrics.advanceWidth, metrics.leftSideBearing), row(600, 0));
  }
}

TEST(Metrics, ScaledAdvances) {
  const OpenFont font(measured(2048));
  const std::uint16_t glyphs[] = {0, 3, 4, 0xFFFF};
  const auto across = owned(getScaledAdvances(font.get(), glyphs, 4, 0));
  // Beyond the glyphs the last long entry.
  EXPECT_EQ(row(across[0].advance, across[0].sideBearing, across[1].sideBearing, across[2].advance,
                across[2].sideBearing, across[3].sideBearing),
            row(244, 0, 4, 292, 3, 3));
  EXPECT_EQ(owned(getScaledAdvances(font.get(), glyphs, 4, 1))[3].advance, 1000);
  EXPECT_EQ(getScaledAdvances(font.get(), glyphs, 0, 0), nullptr);
  EXPECT_EQ(getScaledAdvances(font.get(), nullptr, 4, 0), nullptr);
  EXPECT_EQ(getScaledAdvances(OpenFont{FontImage()}.get(), glyphs, 4, 1), nullptr);
}

TEST(Metrics, RawTables) {
  const Bytes hmtx = Bytes().u16({65535, -1, 600, 7, 8, 9}), vmtx = Bytes().u16({2048, 3, 4, 5, 6});
  const std::uint16_t glyphs[] = {0, 3, 9};
  const auto all =
      owned(getScaledMetricsFromTables(hmtx.data(), vmtx.data(), 2, 1, 4, 500, glyphs, 3));
  EXPECT_EQ(row(all[0].advanceWidth, all[0].leftSideBearing, all[1].leftSideBearing,
                all[1].topSideBearing, all[2].leftSideBearing),
            row(131070 & 0xFFFF, -2, 18, 12, 14));
  const struct {
    const Bytes *hmtx, *vmtx;
    int hCount, vCount, unitsPerEm;
    std::vector<long long> expected;
  } cases[] = {{nullptr, &vmtx, 2, 1, 1000, row(0, 2048, 0, 6)},
               {&hmtx, &vmtx, 0, -1, 1000, row(0, 0, 0, 0)},
               {&hmtx, nullptr, 2, 1, 1000, row(600, 0, 9, 0)},
               {&hmtx, &vmtx, 2, 1, 0, row(0, 0, 0, 0)}};
  const auto start = [](const Bytes* table) { return table == nullptr ? nullptr : table->data(); };
  for (const auto& [across, down, hCount, vCount, unitsPerEm, expected] : cases) {
    ScaledMetrics one = {1, 2, 3, 4};
    getScaledGlyphMetricsFromTables(start(across), start(down), hCount, vCount, 4, unitsPerEm, 3,
                                    &one);
    EXPECT_EQ(row(one.advanceWidth, one.advanceHeight, one.leftSideBearing, one.topSideBearing),
              expected);
  }
  EXPECT_EQ(getScaledMetricsFromTables(hmtx.data(), nullptr, 2, 0, 4, 500, glyphs, 0), nullptr);
  EXPECT_EQ(rawTableCount(nullptr), 0);
  EXPECT_EQ(rawTableCount(Bytes().u16({1, 0x203}).data()), 0x203);
}

TEST(Metrics, Boxes) {
  const OpenFont font(measured(500));
  const auto boxes = owned(readAllGlyphBoxes(font.get()));
  EXPECT_EQ(row(boxes[0].xMin, boxes[0].yMin, boxes[3].xMax, boxes[3].yMax, boxes[1].yMax),
            row(2, 4, 6, 8, 0));
  EXPECT_NE(owned(readAllGlyphBoxes(OpenFont(FontImage().loca({}, 0)).get())), nullptr);
}

}  // namespace
