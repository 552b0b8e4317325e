#include "truetype/reader/metrics.h"

#include <gtest/gtest.h>

#include "tests/support/font_image.h"

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
  const int expected[4][4] = {
      {500, -1, 2048, 3}, {600, 7, 2048, 4}, {600, 8, 2048, 5}, {600, 9, 2048, 6}};
  for (std::uint32_t glyph = 0; glyph < 4; ++glyph) {
    GlyphMetrics metrics = {11, 12, 13, 14, 15, 16, 17, 18};
    readGlyphMetrics(font.get(), glyph, &metrics);
    EXPECT_EQ(metrics.advanceWidth, expected[glyph][0]);
    EXPECT_EQ(metrics.leftSideBearing, expected[glyph][1]);
    EXPECT_EQ(metrics.advanceHeight, expected[glyph][2]);
    EXPECT_EQ(metrics.topSideBearing, expected[glyph][3]);
    EXPECT_EQ(metrics.xMin, 11);
    EXPECT_EQ(readGlyphBox(font.get(), glyph, &metrics), glyph != 1);
    EXPECT_EQ(metrics.yMax, glyph == 1 ? 14 : 4);
  }
  GlyphMetrics metrics;
  EXPECT_FALSE(readGlyphBox(font.get(), 4, &metrics));
  const OpenFont down(measured().without("hmtx"));
  readGlyphMetrics(down.get(), 0, &metrics);
  EXPECT_EQ(metrics.advanceWidth, 0);
  EXPECT_EQ(metrics.advanceHeight, 0);
  EXPECT_EQ(getScaledAdvances(down.get(), std::vector<std::uint16_t>{1}.data(), 1, 0), nullptr);
}

TEST(Metrics, EntriesOutsideTheImageAreZero) {
  const OpenFont font(measured().table("hmtx", Bytes().u16({500, -1, 600, 7, 8})).last("hmtx"));
  GlyphMetrics metrics;
  readGlyphMetrics(font.get(), 3, &metrics);
  EXPECT_EQ(metrics.advanceWidth, 600);
  EXPECT_EQ(metrics.leftSideBearing, 0);
}

TEST(Metrics, ScaledAdvances) {
  const OpenFont font(measured(2048));
  const std::uint16_t glyphs[] = {0, 3, 4, 0xFFFF};
  const auto across = owned(getScaledAdvances(font.get(), glyphs, 4, 0));
  EXPECT_EQ(across[0].advance, 244);
  EXPECT_EQ(across[0].sideBearing, 0);
  EXPECT_EQ(across[1].sideBearing, 4);
  EXPECT_EQ(across[2].advance, 292);  // beyond the glyphs the last long entry
  EXPECT_EQ(across[3].sideBearing, 3);
  const auto down = owned(getScaledAdvances(font.get(), glyphs, 4, 1));
  EXPECT_EQ(down[3].advance, 1000);
  EXPECT_EQ(getScaledAdvances(font.get(), glyphs, 0, 0), nullptr);
  EXPECT_EQ(getScaledAdvances(font.get(), nullptr, 4, 0), nullptr);
  const OpenFont bare{FontImage()};
  EXPECT_EQ(getScaledAdvances(bare.get(), glyphs, 4, 1), nullptr);
}

TEST(Metrics, RawTables) {
  const Bytes hmtx = Bytes().u16({65535, -1, 600, 7, 8, 9}), vmtx = Bytes().u16({2048, 3, 4, 5, 6});
  const std::uint16_t glyphs[] = {0, 3, 9};
  const auto all =
      owned(getScaledMetricsFromTables(hmtx.data(), vmtx.data(), 2, 1, 4, 500, glyphs, 3));
  EXPECT_EQ(all[0].advanceWidth, 131070 & 0xFFFF);
  EXPECT_EQ(all[0].leftSideBearing, -2);
  EXPECT_EQ(all[1].leftSideBearing, 18);
  EXPECT_EQ(all[1].topSideBearing, 12);
  EXPECT_EQ(all[2].leftSideBearing, 14);
  ScaledMetrics one = {1, 2, 3, 4};
  getScaledGlyphMetricsFromTables(nullptr, vmtx.data(), 2, 1, 4, 1000, 3, &one);
  EXPECT_EQ(one.advanceWidth, 0);
  EXPECT_EQ(one.leftSideBearing, 0);
  EXPECT_EQ(one.advanceHeight, 2048);
  getScaledGlyphMetricsFromTables(hmtx.data(), vmtx.data(), 0, -1, 4, 1000, 3, &one);
  EXPECT_EQ(one.advanceHeight, 0);
  getScaledGlyphMetricsFromTables(hmtx.data(), nullptr, 2, 1, 4, 0, 0, &one);
  EXPECT_EQ(one.advanceWidth, 0);
  EXPECT_EQ(getScaledMetricsFromTables(hmtx.data(), nullptr, 2, 0, 4, 500, glyphs, 0), nullptr);
  EXPECT_EQ(rawTableCount(nullptr), 0);
  EXPECT_EQ(rawTableCount(Bytes().u16({1, 0x203}).data()), 0x203);
}

TEST(Metrics, Boxes) {
  const OpenFont font(measured(500));
  const auto boxes = owned(readAllGlyphBoxes(font.get()));
  EXPECT_EQ(boxes[0].xMin, 2);
  EXPECT_EQ(boxes[3].yMax, 8);
  EXPECT_EQ(boxes[1].yMax, 0);
  EXPECT_NE(owned(readAllGlyphBoxes(OpenFont(FontImage().loca({}, 0)).get())), nullptr);
}

}  // namespace
