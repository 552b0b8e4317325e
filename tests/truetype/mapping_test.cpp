#include "truetype/reader/mapping.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/truetype/font_image.h"
#include "truetype/detail/bisect.h"

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
  const Bytes formats[] = {
      Bytes().u16({0, 262, 0}).zeros(256), format2(), cmapFormat4({{0x50, 0x52, 3, 2}}, {1, 2, 3}),
      cmapFormat4({{0x41, 0x50, 1, 0}}), Bytes().u16({6, 0, 0, 0x20, 3, 8, 9, 10})};
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

// Segments in no order are bisected like others, and may lead outside where no code reaches them.
TEST(Mapping, Format4OnAnySegments) {
  const struct {
    std::vector<Segment> segments;
    std::initializer_list<int> glyphs;
    int first;                         // the code of the first of `found`
    std::initializer_list<int> found;  // none: the subtable is not usable
  } rows[] = {
      {{{0x50, 0x53, 0xFFFF, 2}}, {7, 0, 1, 3}, 0x4F, {0, 6, 0, 0, 2, 0}},
      {{{0x10, 0x12, 0xFFF2, 0}, {0x20, 0x21, 1, 0}}, {}, 0x0F, {0, 2, 3, 4, 0}},
      {{{0x50, 0x60, 0, 0}, {0x10, 0x20, 0, 0x8000}, {-1, -1, 1, 0}}, {}, 0x1F, {0, 0}},
      {{{0x50, 0x60, 0, 0}, {0x10, 0x20, 0, 0x8000}, {-1, -1, 1, 0}}, {}, 0x50, {0, 0}},
      {{{0x70, 0x71, 0, 0}, {0x10, 0x20, 0, 0}, {0x30, 0x70, 3, 0}}, {}, 0x70, {0x73, 0}},
      {{{0x50, 0x4F, 0, 0x8000}, {-1, -1, 1, 0}}, {}, 0x4E, {0, 0, 0}},
      {{{0x50, 0x50, 0, 0x8000}, {-1, -1, 1, 0}}, {}, 0, {}},
      {{{0xFFFE, 0xFFFF, 0, 2}}, {9}, 0xFFFE, {9, 0}},
      {{{0xFFFD, 0xFFFF, 0, 2}}, {9}, 0, {}},
  };
  for (const auto& [segments, glyphs, first, found] : rows) {
    const Bytes table = cmapFormat4(segments, glyphs);
    if (found.size() == 0) {
      EXPECT_EQ(OpenFont(atEnd(table))->cmapLookup, nullptr) << segments[0].startCode;
    } else {
      expectLookups(table, first, found);
    }
  }
}

// Many numbers are compared at once, with the result of the bisection, sorted or not.
TEST(Mapping, FirstNotBelowOnAnyOrder) {
  std::mt19937 random(5);
  for (std::size_t count = 0; count < 70; ++count) {
    std::vector<int> numbers(count);
    for (int& number : numbers) number = static_cast<int>(random() % 0x10000);
    if (count % 2 == 0) std::sort(numbers.begin(), numbers.end());
    Bytes array;
    for (const int number : numbers) array.u16({number});
    const std::vector<std::uint8_t> exact = array;
    for (const int near : numbers) {
      for (const int key : {near - 1, near, near + 1}) {
        const auto found = detail::bisect({0, count}, 0, [&](std::size_t i) {
                             return numbers[i] < static_cast<std::uint16_t>(key) ? -1 : 1;
                           }).low;
        ASSERT_EQ(findFirstNotBelow(exact.data(), static_cast<std::uint16_t>(count),
                                    static_cast<std::uint16_t>(key)),
                  found == count ? 0xFFFF : found);
      }
    }
  }
  EXPECT_EQ(findFirstNotBelow(nullptr, 0, 0), 0xFFFF);
  EXPECT_EQ(findFirstNotBelow(nullptr, 0xFFFF, 0), 0xFFFF);
}

}  // namespace
