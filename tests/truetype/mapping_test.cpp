#include "truetype/reader/mapping.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/support/font_image.h"

namespace {

using namespace ulm::test;
using namespace ulm::truetype;

const Bytes kPlain4 = cmapFormat4({{0x41, 0x50, 0xFFE3, 0}, {-1, -1, 1, 0}});
const Bytes kFormat12 = Bytes().u16({12, 0}).zeros(12);

struct ChoiceCase {
  std::vector<CmapEntry> entries;
  int type;
};

TEST(Mapping, ChoiceOfSubtable) {
  const Bytes other4 = cmapFormat4({{0x41, 0x50, 1, 0}, {-1, -1, 1, 0}});
  const ChoiceCase cases[] = {
      {{{3, 0, other4}, {3, 1, kPlain4}}, 11},
      {{{3, 1, kPlain4}, {3, 0, other4}}, 11},
      {{{3, 0, kPlain4}}, 10},
      {{{1, 0, kPlain4}, {0, 3, kPlain4}}, -1},
      {{{3, 1, {}}, {3, 3, kPlain4}}, 13},
      {{{3, 1, other4}, {3, 1, kPlain4}}, 11},
      {{{3, 1, kFormat12}, {3, 0, kPlain4}}, -1},
      {{{3, 7, other4}, {3, 0, kPlain4}, {3, 6, kPlain4}}, 16},
      {{{3, 10, kPlain4}}, -1},
      {{}, -1},
  };
  for (const ChoiceCase& tested : cases) {
    const OpenFont font(FontImage().table("cmap", cmapTable(tested.entries)));
    ASSERT_EQ(font.result, FontResultOk);
    EXPECT_EQ(font->cmapType, tested.type);
    ASSERT_EQ(font->cmapLookup != nullptr, tested.type >= 0);
    ASSERT_EQ(font->cmapSubtable != nullptr, tested.type >= 0);
    if (tested.type < 0) continue;
    EXPECT_EQ(font->cmapLookup, cmapLookupFormat4);
    EXPECT_EQ(font->cmapLookup(font->cmapSubtable, 0x41), 0x24);
  }
}

// A font whose subtable ends with the image, so that each lookup is held to what open has checked.
FontImage atEnd(const Bytes& subtable) {
  return FontImage().table("cmap", cmapTable({{3, 1, subtable}})).last("cmap");
}

void expectLookups(const Bytes& subtable, std::initializer_list<std::pair<int, int>> expected) {
  const OpenFont font(atEnd(subtable));
  ASSERT_NE(font->cmapLookup, nullptr);
  for (const auto& [code, glyph] : expected) {
    EXPECT_EQ(font->cmapLookup(font->cmapSubtable, static_cast<std::uint16_t>(code)), glyph)
        << code;
  }
}

Bytes format2() {
  Bytes table;
  table.u16({2, 0, 0}).zeros(512).put16(6 + 2 * 0x81, 8);  // the high byte 81 has subheader 1
  table.u16({0x40, 3, 7, 8 + 2});                          // firstCode, entryCount, idDelta, offset
  table.u16({0x30, 2, 0xFFFF, 2 + 6});
  return table.u16({5, 0, 9, 11, 12});
}

TEST(Mapping, Lookups) {
  Bytes format0 = Bytes().u16({0, 262, 0}).zeros(256);
  format0[6 + 255] = 77;
  expectLookups(format0, {{255, 77}, {256, 0}, {0xFFFF, 0}, {3, 0}});
  expectLookups(format2(), {{0x40, 12},
                            {0x41, 0},
                            {0x42, 16},
                            {0x43, 0},
                            {0x3F, 0},
                            {0x8130, 10},
                            {0x8131, 11},
                            {0x8132, 0},
                            {0x812F, 0},
                            {0x8240, 12}});
  expectLookups(
      cmapFormat4({{0x41, 0x43, 0xFFE3, 0}, {0x50, 0x52, 3, 4}, {-1, -1, 1, 0}}, {4, 0, 0xFFFE}),
      {{0x41, 0x24},
       {0x40, 0},
       {0x44, 0},
       {0x50, 7},
       {0x51, 0},
       {0x52, 1},
       {0x53, 0},
       {0xFFFF, 0}});
  expectLookups(cmapFormat4({{0x41, 0x43, 0, 0}}), {{0x43, 0x43}, {0x44, 0}, {0xFFFF, 0}});
  expectLookups(cmapFormat4({}), {{0, 0}, {0xFFFF, 0}});
  expectLookups(Bytes().u16({6, 0, 0, 0x20, 3, 8, 9, 10}),
                {{0x1F, 0}, {0x20, 8}, {0x22, 10}, {0x23, 0}});
  expectLookups(Bytes().u16({6, 0, 0, 0, 0}), {{0, 0}, {0xFFFF, 0}});
}

TEST(Mapping, SubtablesThatLeadOutsideAreNotUsable) {
  const auto lookupOf = [](const FontImage& image) { return OpenFont(image)->cmapLookup; };
  const auto shorter = [](Bytes bytes) {
    bytes.pop_back();
    return bytes;
  };
  const Bytes formats[] = {Bytes().u16({0, 262, 0}).zeros(256), format2(),
                           cmapFormat4({{0x50, 0x52, 3, 2}}, {1, 2, 3}),
                           Bytes().u16({6, 0, 0, 0x20, 3, 8, 9, 10})};
  for (const Bytes& bytes : formats) {
    EXPECT_NE(lookupOf(atEnd(bytes)), nullptr);
    EXPECT_EQ(lookupOf(atEnd(shorter(bytes))), nullptr);
  }
  EXPECT_EQ(lookupOf(atEnd({})), nullptr);
  // The closing segment alone leads outside, and just its code has no glyph then.
  expectLookups(cmapFormat4({{0x41, 0x43, 0xFFE3, 0}, {-1, -1, 1, 0xFFFF}}),
                {{0x41, 0x24}, {0xFFFF, 0}});
  // A segment behind another with the same end is never reached, wherever it leads.
  EXPECT_EQ(lookupOf(atEnd(cmapFormat4({{0x41, 0x43, 0, 0}, {0x41, 0x43, 0, 0x7000}}))),
            cmapLookupFormat4);
  // Codes beyond 16 bits are not asked for.
  EXPECT_EQ(lookupOf(atEnd(Bytes().u16({6, 0, 0, 0xFFFF, 9, 1}))), cmapLookupFormat6);
}

TEST(Mapping, BisectionOnAnyOrder) {
  std::mt19937 random(5);
  for (int count = 0; count < 60; ++count) {
    Bytes sorted;
    std::vector<int> numbers;
    for (int i = 0; i < count; ++i) numbers.push_back(static_cast<int>(random() % 64));
    if (count % 2 == 0) std::sort(numbers.begin(), numbers.end());
    for (const int number : numbers) sorted.u16({number});
    for (int key = 0; key < 66; ++key) {
      int low = 0, high = count - 1, expected = 0xFFFF;
      while (low <= high) {
        const int middle = (low + high) / 2;
        if (numbers[static_cast<std::size_t>(middle)] < key) {
          low = middle + 1;
        } else {
          expected = middle;
          high = middle - 1;
        }
      }
      EXPECT_EQ(findFirstNotBelow(sorted.data(), static_cast<std::uint16_t>(count),
                                  static_cast<std::uint16_t>(key)),
                expected);
    }
  }
  EXPECT_EQ(findFirstNotBelow(nullptr, 0xFFFF, 0), 0xFFFF);
}

}  // namespace
