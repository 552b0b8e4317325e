#include "truetype/reader/mapping.h"

#include <gtest/gtest.h>

#include "tests/truetype/bisection.h"
#include "tests/truetype/font_image.h"

namespace {

using namespace ulm::test;
using namespace ulm::truetype;

const Bytes kPlain4 = cmapFormat4({{0x41, 0x50, 0xFFE3, 0}, {-1, -1, 1, 0}});
const Bytes kFormat12 = Bytes().u16({12, 0}).zeros(12);

TEST(Mapping, ChoiceOfSubtable) {
  const Bytes other4 = cmapFormat4({{0x41, 0x50, 1, 0}, {-1, -1, 1, 0}});
  std::vector<std::pair<std::vector<CmapEntry>, int>> cases = {
      {{{3, 0, kPlain4}}, 10},
      {{{1, 0, kPlain4}, {0, 3, kPlain4}}, -1},
      {{{3, 1, {}}, {3, 3, kPlain4}}, 13},
      {{{3, 1, other4}, {3, 1, kPlain4}}, 11},
      {{{3, 1, kFormat12}, {3, 0, kPlain4}}, -1},
      {{{3, 7, other4}, {3, 0, kPlain4}, {3, 6, kPlain4}}, 16},
      {{{3, 10, kPlain4}}, -1},
      {{}, -1},
  };
  // Of two neighbours in rank the first, whichever comes first in the table.
  const int ranks[] = {1, 2, 3, 4, 5, 6, 0};
  for (std::size_t i = 0; i < 6; ++i) {
    const CmapEntry chosen{3, ranks[i], kPlain4}, other{3, ranks[i + 1], other4};
    cases.push_back({{chosen, other}, 10 + ranks[i]});
    cases.push_back({{other, chosen}, 10 + ranks[i]});
  }
  for (const auto& [entries, type] : cases) {
    const OpenFont font(FontImage().table("cmap", cmapTable(entries)));
    ASSERT_EQ(font.result, FontResultOk);
    EXPECT_EQ(font->cmapType, type);
    EXPECT_EQ(font->cmapLookup, type < 0 ? nullptr : cmapLookupFormat4);
    ASSERT_EQ(font->cmapSubtable != nullptr, type >= 0);
    if (type >= 0) {
      EXPECT_EQ(font->cmapLookup(font->cmapSubtable, 0x41), 0x24);
    }
  }
}

// A font whose subtable ends with the image, so that each lookup is held to what open has checked.
FontImage atEnd(const Bytes& subtable) {
  return FontImage().table("cmap", cmapTable({{3, 1, subtable}})).last("cmap");
}

// The glyphs of `first` and the codes after it.
void expectLookups(const Bytes& subtable, int first, std::initializer_list<int> glyphs) {
  const OpenFont font(atEnd(subtable));
  ASSERT_NE(font->cmapLookup, nullptr);
  for (const int glyph : glyphs) {
    EXPECT_EQ(font->cmapLookup(font->cmapSubtable, static_cast<std::uint16_t>(first)), glyph)
        << first;
    ++first;
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
  expectLookups(format0, 254, {0, 77, 0});
  expectLookups(format2(), 0x3F, {0, 12, 0, 16, 0});
  expectLookups(format2(), 0x812F, {0, 10, 11, 0});
  expectLookups(format2(), 0x8240, {12});
  const Bytes format6 = Bytes().u16({6, 0, 0, 0x20, 3, 8, 9, 10});
  expectLookups(format6, 0x1F, {0, 8, 9, 10, 0});
  expectLookups(Bytes().u16({6, 0, 0, 0, 0}), 0, {0, 0});
  for (const Bytes& bytes : {format0, format2(), format6}) {
    expectLookups(bytes, 0xFFFF, {0});
  }
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
  const Bytes closing = cmapFormat4({{0x41, 0x43, 0xFFE3, 0}, {-1, -1, 1, 0xFFFF}});
  expectLookups(closing, 0x41, {0x24});
  expectLookups(closing, 0xFFFF, {0});
  // The furthest that values can lead.
  const Bytes furthest = cmapFormat4({{0, 0xFFFE, 0, 0xFFFF}}).zeros(0xFFFF + 2 * 0xFFFE);
  EXPECT_EQ(lookupOf(atEnd(furthest)), cmapLookupFormat4);
  EXPECT_EQ(lookupOf(atEnd(shorter(furthest))), nullptr);
  // Codes beyond 16 bits are not asked for.
  EXPECT_EQ(lookupOf(atEnd(Bytes().u16({6, 0, 0, 0xFFFF, 9, 1}))), cmapLookupFormat6);
}

// The lookup of format 4 as it is told; `left` where it led outside.
struct Told {
  Bytes table;
  bool left = false;
  int at(std::size_t place) {
    left = left || place + 2 > table.size();
    return left ? 0 : table[place] << 8 | table[place + 1];
  }
  int lookup(int code) {
    const std::size_t count = static_cast<std::size_t>(at(6)) / 2;
    std::vector<int> ends;
    for (std::size_t i = 0; i < count; ++i) ends.push_back(at(14 + 2 * i));
    const auto segment = static_cast<std::size_t>(bisectedNotBelow(ends, code));
    if (segment == 0xFFFF) return 0;
    const std::size_t start = 16 + 2 * count + 2 * segment, range = start + 4 * count;
    if (at(start) > code) return 0;
    const int delta = at(start + 2 * count), offset = at(range);
    if (offset == 0) return (code + delta) & 0xFFFF;
    const int glyph = at(range + static_cast<std::size_t>(offset + 2 * (code - at(start))));
    return glyph == 0 ? 0 : (glyph + delta) & 0xFFFF;
  }
};

TEST(Mapping, Format4OnAnySegments) {
  std::mt19937 random(6);
  const auto below = [&random](int limit) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
  };
  int usable = 0;
  for (int round = 0; round < 300; ++round) {
    const int count = below(50), glyphs = 1 + below(30);
    std::vector<int> ends;
    for (int i = 0; i < count; ++i) ends.push_back(below(600));
    if (round % 3 != 0) std::sort(ends.begin(), ends.end());
    std::vector<Segment> segments;
    for (const int end : ends) {
      const int left = count - static_cast<int>(segments.size()) + glyphs;
      segments.push_back(
          {std::max(0, end - below(8)), end, below(99), below(9) == 0 ? 2 * below(left) : 0});
    }
    segments.push_back({-1, -1, 1, below(2) == 0 ? 0 : 0xFFFF});
    Told told{cmapFormat4(segments)};
    for (int i = 0; i < glyphs; ++i) told.table.u16({below(3)});
    std::vector<int> expected;
    for (int code = 0; code < 600; ++code) expected.push_back(told.lookup(code));
    const OpenFont font(atEnd(told.table));
    ASSERT_EQ(font->cmapLookup == nullptr, told.left) << round;
    if (told.left) continue;
    ++usable;
    expected.push_back(told.lookup(0xFFFF));
    for (int code = 0; code <= 600; ++code) {
      const auto asked = static_cast<std::uint16_t>(code == 600 ? 0xFFFF : code);
      ASSERT_EQ(font->cmapLookup(font->cmapSubtable, asked),
                expected[static_cast<std::size_t>(code)])
          << round << ' ' << asked;
    }
  }
  EXPECT_TRUE(usable > 50 && usable < 250) << usable;
}

TEST(Mapping, BisectionOnAnyOrder) {
  compareOnAnyOrder(bisectedNotBelow, [](const std::vector<int>& numbers) {
    Bytes array;
    for (const int number : numbers) array.u16({number});
    // In a heap block of its exact size.
    return [array = std::vector<std::uint8_t>(array), count = numbers.size()](int key) {
      return findFirstNotBelow(array.data(), static_cast<std::uint16_t>(count),
                               static_cast<std::uint16_t>(key));
    };
  });
  EXPECT_EQ(findFirstNotBelow(nullptr, 0xFFFF, 0), 0xFFFF);
}

}  // namespace
