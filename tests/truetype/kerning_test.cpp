#include "truetype/reader/kerning.h"

#include <gtest/gtest.h>

#include <ctime>

#include "tests/truetype/font_image.h"

namespace {

using namespace ulm::test;
using namespace ulm::truetype;

struct Pair {
  int left, right, value;
};
// A Microsoft subtable whose stored length is its own, but for `addToLength`.
Bytes subtable(int coverage, const std::vector<Pair>& pairs, int addToLength = 0) {
  Bytes table;
  const int count = static_cast<int>(pairs.size());
  table.u16({0, 14 + 6 * count + addToLength, coverage, count, 0, 0, 0});
  for (const Pair& pair : pairs) table.u16({pair.left, pair.right, pair.value});
  return table;
}
Bytes kernTable(const std::vector<Bytes>& subtables) {
  Bytes table;
  table.u16({0, static_cast<int>(subtables.size())});
  for (const Bytes& bytes : subtables) table.add(bytes);
  return table;
}
FontImage kerned(const Bytes& kern, int em = 1000) {
  return FontImage().also("kern", kern).patch16("head", 18, em);
}

std::pair<int, int> pairOf(const OpenFont& font, int vertical, unsigned left, unsigned right) {
  std::int32_t x = 99, y = 99;
  getPairKerning(font->kernType, font->kernTableCount, font->kernTables, font->unitsPerEm, vertical,
                 left, right, &x, &y);
  return {x, y};
}

const Bytes kTwoPairs = subtable(1, {{1, 2, -50}, {1, 3, -60}});

TEST(Kerning, AnalysisOfTheTable) {
  const Bytes apple = Bytes().u32(0x00010000).u32(1);
  const struct {
    const char* name;
    Bytes kern;
    int type;
    unsigned count;
  } cases[] = {
      {"31", kernTable({subtable(1, {{1, 2, 3}}, 7)}).zeros(7), 0, 0},
      {"32", kernTable({subtable(1, {{1, 2, 3}}, 8)}).zeros(8), 2, 1},
      {"NoSubtables", Bytes().zeros(32), 2, 0},
      {"EndsWithTheImage", kernTable({kTwoPairs, kTwoPairs, kTwoPairs}), 2, 3},
      {"OneByteBeyond", kernTable({kTwoPairs, kTwoPairs, subtable(1, {{1, 2, 3}}, 1)}), 0, 0},
      {"HeaderBeyond", kernTable({kTwoPairs, kTwoPairs}).put16(2, 3), 0, 0},
      {"Apple", Bytes(apple).u32(24).zeros(20), 1, 1},
      {"AppleBeyond", Bytes(apple).u32(25).zeros(20), 0, 0},
      {"AppleCount", Bytes().u32(0x00010000).u32(0xFFFFFFFF).zeros(24), 0, 0},
      {"VersionTwo", Bytes().u32(0x00020000).u32(1).u32(24).zeros(20), 0, 0},
  };
  for (const auto& [name, kern, type, count] : cases) {
    const OpenFont font(kerned(kern));
    ASSERT_EQ(font.result, FontResultOk) << name;
    EXPECT_EQ(row(font->kernType, font->kernTables != nullptr), row(type, type != 0)) << name;
    if (type != 0) {
      EXPECT_EQ(font->kernTableCount, count) << name;
    }
  }
  // Beyond the table, and inside the image.
  const OpenFont inside(
      kerned(kernTable({subtable(1, {{1, 2, 3}}, 20)}).zeros(8)).also("zzzz", Bytes().zeros(12)));
  EXPECT_EQ(inside->kernType, 2);
}

TEST(Kerning, Requests) {
  const OpenFont font(
      kerned(kernTable({subtable(1, {{1, 2, -50}, {1, 3, -100}, {7, 7, 30}}),
                        subtable(0, {{1, 2, 40}}), subtable(1, {{1, 2, -80}, {0xFFFF, 0xFFFF, 5}}),
                        subtable(3, {{1, 3, 9}}), subtable(5, {{1, 3, 9}}),
                        subtable(9, {{1, 3, 9}}), subtable(0x0201, {{1, 3, 9}}), subtable(1, {})}),
             2048));
  ASSERT_EQ(font->kernType, 2);
  const struct {
    int vertical;
    unsigned left, right;
    std::pair<int, int> kerning;
  } rows[] = {{0, 1, 2, {-39, 0}},  // the last subtable wins
              {0, 1, 3, {-48, 0}},  // towards zero
              {1, 1, 2, {0, 19}},          {1, 1, 3, {0, 0}},
              {0, 7, 7, {14, 0}},          {0, 7, 8, {0, 0}},
              {0, 0xFFFF, 0xFFFF, {2, 0}}, {0, 0x10000, 2, {0, 0}},
              {0, 1, 0x10002, {0, 0}},     {2, 1, 2, {0, 0}}};
  for (const auto& [vertical, left, right, kerning] : rows) {
    EXPECT_EQ(pairOf(font, vertical, left, right), kerning) << left << ' ' << right;
  }
  EXPECT_EQ(pairOf(OpenFont{FontImage()}, 0, 1, 2), std::pair(0, 0));
  // Of pairs in no order, and of equal ones, what a bisection meets.
  const OpenFont mixed(
      kerned(kernTable({subtable(1, {{1, 5, 10}, {1, 1, 20}, {1, 9, 30}, {1, 3, 40}}),
                        subtable(1, {{2, 2, 1}, {2, 2, 2}, {2, 2, 3}, {2, 2, 4}})})));
  const std::vector<std::pair<unsigned, int>> met = {{1, 20}, {9, 30}, {3, 0}, {5, 0}, {2, 0}};
  for (const auto& [right, value] : met)
    EXPECT_EQ(pairOf(mixed, 0, 1, right).first, value) << right;
  EXPECT_EQ(pairOf(mixed, 0, 2, 2).first, 2);

  const std::uint16_t run[] = {1, 2, 1, 3};
  KernAdjustment out[4] = {{9, 9}, {9, 9}, {9, 9}, {9, 9}};
  getRunKerning(font.get(), run, 1, 0, out);
  getRunKerning(font.get(), run, 0, 0, out);
  getRunKerning(font.get(), nullptr, 4, 0, out);
  getRunKerning(font.get(), run, 4, 0, nullptr);
  EXPECT_EQ(out[0].x, 9);
  getRunKerning(font.get(), run, 4, 0, out);
  EXPECT_EQ(row(out[0].x, out[1].x, out[2].x, out[3].x), row(-39, 0, -48, 9));
  std::int32_t x = 9;
  getPairKerning(2, 1, font->kernTables, 1000, 0, 1, 2, &x, nullptr);
  getPairKerning(2, 1, font->kernTables, 1000, 0, 1, 2, nullptr, &x);
  EXPECT_EQ(x, 9);
}

TEST(Kerning, PairsThatLeaveTheImageAreSkipped) {
  Bytes last = subtable(1, {{1, 2, -80}});
  last.put16(6, 2);                                                   // one pair more than there is
  const Bytes passedOver = Bytes(last).put16(4, 3).put16(6, 0xFFFF);  // no request reads its pairs
  const OpenFont font(kerned(kernTable({kTwoPairs, passedOver, last})));
  ASSERT_EQ(font->kernType, 2);
  EXPECT_EQ(font->kernTables[1], font->tables[kSlotKern] + 4 + kTwoPairs.size());
  EXPECT_EQ(font->kernTables[2], nullptr);
  EXPECT_EQ(pairOf(font, 0, 1, 2).first, -50);
}

// Subtables of length 0 share their bytes; a pair that none of them has is searched for once.
TEST(Kerning, EqualSubtablesAreSearchedOnce) {
  Bytes pairs = subtable(1, {});
  for (int i = 0; i < 5000; ++i) pairs.u16({1, 2 * i, i + 1});
  pairs.put16(2, 0).put16(6, 5000);
  OpenFont font(kerned(kernTable({pairs}).put16(2, 0xFFFF)));
  ASSERT_EQ(row(font->kernType, font->kernTableCount), row(2, 0xFFFF));
  ASSERT_TRUE(analyseKernTable(font.mutableFont()));  // the array before is released
  const std::vector<std::uint16_t> run(3000, 1);
  std::vector<KernAdjustment> out(2999);
  const std::clock_t start = std::clock();
  getRunKerning(font.get(), run.data(), 3000, 0, out.data());
  EXPECT_LT(static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC, 1);
  EXPECT_EQ(pairOf(font, 0, 1, 6).first, 4);
}

TEST(Kerning, AppleFormPrintsOnceACall) {
  const OpenFont font(kerned(Bytes().u32(0x00010000).u32(1).u32(24).zeros(20)));
  const std::uint16_t run[] = {1, 2, 3};
  KernAdjustment out[2] = {{9, 9}, {9, 9}};
  const std::string line = "MacOS kerning tables have not been implemented yet!\n";
  testing::internal::CaptureStderr();
  getRunKerning(font.get(), run, 3, 0, out);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), line);
  EXPECT_EQ(out[1].x, 0);
  testing::internal::CaptureStderr();
  EXPECT_EQ(pairOf(font, 0, 1, 2).first, 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), line);
}

}  // namespace
