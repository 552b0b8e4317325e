// Subsets of fonts.
#include <gtest/gtest.h>

#include <random>

#include "tests/truetype/made_file.h"
#include "tests/truetype/rich_font.h"

namespace {

using namespace ulm::test;
using namespace ulm::truetype;

struct Request {
  std::vector<std::uint16_t> glyphs;
  std::uint32_t flags = 0;
  std::vector<NameRecord> names = {};
};
File subset(const OpenFont& font, Request& request) {
  std::vector<std::uint16_t> codes;
  for (std::size_t i = 0; i < request.glyphs.size(); ++i)
    codes.push_back(static_cast<std::uint16_t>(65 + i));
  std::uint8_t* image = nullptr;
  std::uint32_t length = 0;
  const WriterResult result = createTrueTypeSubset(
      font.get(), &image, &length, request.glyphs.data(), codes.data(),
      static_cast<std::int32_t>(codes.size()), static_cast<std::uint32_t>(request.names.size()),
      request.names.data(), request.flags);
  return take(result, image, length);
}
File subset(const OpenFont& font, Request&& request) { return subset(font, request); }

TEST(Subset, NewNumbers) {
  const OpenFont font(richFont());
  const struct {
    std::vector<std::uint16_t> glyphs, numbers;
    int made;
  } kCases[] = {{{0, 1, 2}, {0, 1, 2}, 3},
                {{2, 3, 4}, {0, 1, 4}, 5},
                {{3, 0, 3}, {0, 3, 4}, 5},
                {{4}, {0}, 4},
                {{5, 1, 0xFFFF}, {0xFFFF, 0, 0xFFFF}, 1}};
  for (const auto& wanted : kCases) {
    Request request{wanted.glyphs};
    const File file = subset(font, request);
    EXPECT_EQ(request.glyphs, wanted.numbers);
    EXPECT_EQ(readUInt16(file.table("maxp").data(), 4), wanted.made);
  }
  for (const auto& none : {std::vector<std::uint16_t>{}, {5, 99}}) {
    Request request{none};
    EXPECT_EQ(subset(font, request).result, WriterResultNoData);
    for (const std::uint16_t number : request.glyphs) EXPECT_EQ(number, 0xFFFF);
  }
}

TEST(Subset, TablesComeFromTheSource) {
  FontImage source = richFont();
  const Bytes head = Bytes()
                         .u16({1, 0, 0, 0xABCD, 0, 1, 0, 2, 3, 1000})
                         .text("created!modified")
                         .u16({1, 1, 1, 1, 6, 7, 8, 1, 0});
  const Bytes hhea = Bytes().u16({1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 2});
  const Bytes post = Bytes().u32(0x20000).u32(0xFFF00000).u16({-90, 44}).u32(0x01000001).zeros(40);
  const Bytes os2 = Bytes().text("OS/2").zeros(78), cvt = Bytes().u16({1, 2, 3});
  source.table("head", head).table("hhea", hhea).table("post", post).table("OS/2", os2);
  source.table("cvt ", cvt)
      .table("prep", Bytes().u8(7))
      .table("fpgm", Bytes().u8(8))
      .table("maxp", Bytes().u32(0x10000).u16({5, 9, 9, 9, 9, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
  const OpenFont font(source);
  File file = subset(font, {{0, 3}, SubsetKeepOS2 | 0xF0});
  EXPECT_EQ(readUInt16(file.bytes.data(), 4), 13);
  EXPECT_EQ(file.table("OS/2"), os2);
  EXPECT_EQ(file.table("cvt "), cvt);
  EXPECT_EQ(file.table("prep"), Bytes().u8(7));
  EXPECT_EQ(file.table("fpgm"), Bytes().u8(8));
  EXPECT_EQ(file.table("post"),
            Bytes().u32(0x30000).u32(0xFFF00000).u16({-90, 44}).u32(0x01000001).zeros(16));
  EXPECT_EQ(file.table("hhea"),
            Bytes().u32(0x10000).u16({1, 2, 3, 0, 0, 0, 0, 8, 9}).zeros(12).u16({2}));
  EXPECT_EQ(file.table("maxp"),
            Bytes().u32(0x10000).u16({3, 4, 2, 7, 3, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
  Bytes made = file.table("head");
  made.put16(8, 0).put16(10, 0);
  EXPECT_EQ(made, Bytes()
                      .u16({1, 0, 0, 0xABCD, 0, 0, 0x5F0F, 0x3CF5, 3, 1000})
                      .text("created!")
                      .zeros(8)
                      .u16({0, 0, 9, 9, 6, 7, 8, 0, 0}));

  // Without them the new font has zeros, or none.
  source.without("hhea").without("post").without("OS/2").without("cvt ").without("prep").without(
      "fpgm");
  source.table("maxp", Bytes().u32(0x00005000).u16({5}));
  const OpenFont bare(source);
  file = subset(bare, {{0}, SubsetGenericName | SubsetKeepOS2});
  EXPECT_EQ(readUInt16(file.bytes.data(), 4), 9);
  EXPECT_EQ(file.table("post"), Bytes().u32(0x30000).zeros(28));
  EXPECT_EQ(file.table("hhea"), Bytes().u32(0x10000).zeros(30).u16({1}));
  EXPECT_EQ(file.table("maxp"), Bytes().u32(0).u16({1, 3, 1}).zeros(22));
}

TEST(Subset, Names) {
  std::uint8_t text[] = {'N', 'a'};
  const std::vector<NameRecord> given(5, NameRecord{1, 0, 0, 4, 2, text});
  const Bytes generic =
      nameTable({{1, 0, 0, 6, "TrueTypeSubset"},
                 {3, 1, 0x409, 6, std::string("\0T\0r\0u\0e\0T\0y\0p\0e\0S\0u\0b\0s\0e\0t", 28)}});
  const OpenFont font(richFont()), unnamed{richFont().table("name", nameTable({}))};
  EXPECT_EQ(subset(font, {{0}, SubsetGenericName, given}).table("name"), generic);
  EXPECT_EQ(subset(unnamed, {{0}}).table("name"), generic);
  EXPECT_EQ(subset(font, {{0}, 0, given}).table("name").size(), 6u + 5 * 14);
  EXPECT_EQ(subset(font, {{0}}).table("name"),
            nameTable({{0, 0, 0, 1, std::string("\0F", 2)},
                       {1, 0, 0, 2, "Regular"},
                       {3, 1, 1033, 6, std::string("\0P\0S", 4)}}));
  const std::vector<NameEntry> long_(2, NameEntry{1, 0, 0, 9, std::string(0x8000, 'x')});
  EXPECT_EQ(subset(OpenFont(richFont().table("name", nameTable(long_))), {{0}}).result,
            WriterResultNameTooLong);
}

TEST(Subset, LimitsOfGlyphs) {
  Bytes large = simpleGlyph({0}, {{1, 1}});
  large.zeros(0xFFFF - large.size());
  const Bytes user = compositeGlyph({moved(0, 1, 1)});
  const OpenFont font(FontImage().glyphs({large, user, {}}));
  for (std::uint16_t glyph = 0; glyph < 2; ++glyph) {
    Request request{{2, glyph}};
    EXPECT_EQ(subset(font, request).result, WriterResultGlyphTooLarge);
    EXPECT_EQ(request.glyphs, (std::vector<std::uint16_t>{2, glyph}));
  }
  Request request{std::vector<std::uint16_t>(0x10001, 2)};
  EXPECT_EQ(subset(font, request).result, WriterResultTooManyGlyphs);
  EXPECT_EQ(row(request.glyphs[0xFFFE], request.glyphs[0x10000]), row(0xFFFE, 0xFFFF));
}

// The last of some composites, each of which names itself, has a point more than the others.
TEST(Subset, CyclesAreCountedWithinBounds) {
  const struct {
    int depth, cycles, most;  // of the doubling beneath them; maxCompositePoints
  } kRows[] = {{0, 256, 2}, {0, 257, 1}, {15, 10, 32769}, {15, 100, 32768}};
  for (const auto& [depth, cycles, most] : kRows) {
    std::vector<Bytes> glyphs = doublings(simpleGlyph({0}, {{0, 0}}), depth);
    Request request;
    for (int i = 0; i < cycles; ++i) {
      request.glyphs.push_back(static_cast<std::uint16_t>(glyphs.size()));
      std::vector<Part> parts{moved(request.glyphs.back(), 0, 0), moved(depth, 0, 0)};
      if (i + 1 == cycles) parts.push_back(moved(0, 0, 0));
      glyphs.push_back(compositeGlyph(parts));
    }
    const Bytes maxp = subset(OpenFont{FontImage().glyphs(glyphs)}, request).table("maxp");
    EXPECT_EQ(readUInt16(maxp.data(), 10), most) << cycles;
  }
}

// The number of a glyph and what its record has of the outline.
using Record = std::vector<long long>;
Record recordOf(const GlyphData* glyph) {
  return row(glyph->glyphIndex, glyph->pointCount, glyph->contourCount, glyph->isComposite,
             glyph->byteCount);
}

// A subset, and the same made by hand, which takes the other way to hold glyphs: their tables are
// the same, and each record has the counts of the reader. If `isListed`, the records come in the
// order of the lists of components, without what is there already.
void expectEqualByHand(const OpenFont& font, const std::vector<std::uint16_t>& wanted,
                       bool isListed) {
  Request request{wanted};
  const File file = subset(font, request);
  if (file.result == WriterResultNoData) return;
  EXPECT_EQ(checkSubset(font.get(), wanted, 3), 0);

  const Writer writer = writerOf({});
  WriterTable* glyf = findWriterTable(writer.get(), kTagGlyf);
  WriterTable* cmap = createCmapTable();
  addWriterTable(writer.get(), cmap);
  std::vector<long long> listed;
  for (std::size_t k = 0; k < wanted.size(); ++k) {
    const std::int32_t made = addGlyph(glyf, getGlyphData(font.get(), wanted[k]), font.get());
    EXPECT_EQ(static_cast<std::uint16_t>(made), request.glyphs[k]);
    addCharMapping(cmap, static_cast<std::uint32_t>(65 + k), static_cast<std::uint32_t>(made));
    if (made < 0 || !isListed) continue;
    TTList* components = listCreate();
    collectGlyphComponents(font.get(), wanted[k], components);
    for (const TTListNode* node = components->first; node != nullptr; node = node->next) {
      const auto number = static_cast<long long>(reinterpret_cast<std::uintptr_t>(node->item));
      const bool isThere = std::count(listed.begin(), listed.end(), number) != 0;
      const bool isKnown =
          isThere || glyphOf(font.get(), static_cast<std::uint32_t>(number)) == nullptr;
      if (node == components->first || !isKnown) listed.push_back(number);
    }
    listDispose(components);
  }
  const auto* list = static_cast<const TTList*>(glyf->data);
  std::vector<long long> numbers;
  for (const TTListNode* node = list->first; node != nullptr; node = node->next) {
    const auto* glyph = static_cast<const GlyphData*>(node->item);
    EXPECT_EQ(glyph->newIndex, numbers.size());
    EXPECT_EQ(recordOf(glyph), recordOf(glyphOf(font.get(), glyph->glyphIndex).get()));
    numbers.push_back(glyph->glyphIndex);
  }
  if (isListed) {
    EXPECT_EQ(numbers, listed);
  }
  const File byHand = assembled(writer);
  for (const char* tag : {"glyf", "loca", "hmtx", "cmap", "maxp"}) {
    EXPECT_EQ(byHand.table(tag), file.table(tag)) << tag;
  }
  const Bytes made = file.table("head"), head = byHand.table("head");
  EXPECT_TRUE(std::equal(made.begin() + 36, made.begin() + 44, head.begin() + 36));
}

// The first round is large: wide and deep composites, and glyph indices from 0 to 2999. In the
// others some glyphs are cut, so that reading goes on into the next glyph, or their contours or
// components are damaged.
TEST(Subset, EqualsTheWriterByHand) {
  std::mt19937 random(11);
  for (int round = 0; round < 400; ++round) {
    std::vector<Bytes> glyphs;
    const int count = round == 0 ? 3000 : 10;
    std::vector<Part> wide;
    for (int i = 0; i < 1500; ++i) wide.push_back(moved(i * 2 % 2900, i, 1));
    for (int i = 0; i < count; ++i) {
      const int other = static_cast<int>(random() % 11);
      const bool isDeep = round == 0 && i > 2980;
      if (round == 0 && i % 50 == 49 && i < 500) {
        glyphs.push_back(compositeGlyph(wide));
      } else if (!isDeep && random() % 2 == 0) {
        glyphs.push_back(simpleGlyph({0}, {{i, 1}}).zeros(random() % 3));
        if (round != 0 && random() % 4 == 0) glyphs.back().put16(0, 256);
        // The box is counted with the zero that makes its last byte even.
        if (round != 0 && random() % 8 == 0) glyphs.back().put16(8, 0x700).resize(9);
      } else {
        Bytes made = compositeGlyph({moved(isDeep ? i - 1 : other, 1, i), moved(3, 2, 2)});
        if (round != 0 && random() % 4 == 0) {
          made.resize(i == 9 ? 13 : 10 + random() % (made.size() - 9));
        }
        if (round != 0 && random() % 8 == 0) made.put16(0, -2);
        glyphs.push_back(made);
      }
    }
    FontImage image;
    image.glyphs(glyphs).longMetrics("hhea", "hmtx", 1, Bytes().u16({5, 6}));
    const OpenFont font(round % 2 == 0 ? image : image.last("glyf"));
    std::vector<std::uint16_t> wanted;
    if (round == 0) wanted = {99, 2999, 2500, 149, 2990};
    for (unsigned left = 1 + random() % 8; left > 0; --left) {
      wanted.push_back(static_cast<std::uint16_t>(random() % 11));
    }
    expectEqualByHand(font, wanted, true);
  }
}

// Counts are those of the reader up to the bounds of its work, and beyond.
TEST(Subset, CountsAreThoseOfTheReader) {
  const Bytes dot = simpleGlyph({0}, {{0, 0}}), seven = simpleGlyph({6}, std::vector<Point>(7));
  const auto withLast = [](std::vector<Bytes> glyphs, std::initializer_list<int> last) {
    std::vector<Part> parts;
    for (const int glyph : last) parts.push_back(moved(glyph, 0, 0));
    glyphs.push_back(compositeGlyph(parts));
    return glyphs;
  };
  const std::vector<Bytes> records = doublings(dot, 16),
                           work = doublings(seven, 14, {0x0A, 0, Bytes().u16({0, 0x4000})});
  Bytes cut = compositeGlyph({moved(0, 0, 0), moved(0, 0, 0)}), damaged = dot;
  cut.resize(cut.size() - 3);
  damaged.resize(13);
  std::vector<Bytes> chain = withLast({dot}, {0});
  while (chain.size() < 300) {
    chain.push_back(compositeGlyph({moved(static_cast<int>(chain.size()) - 1, 0, 0)}));
  }
  const std::vector<Bytes> kFonts[] = {
      withLast(records, {16, 0}),      // the most records
      withLast(records, {16, 0, 0}),   // one more
      withLast(records, {16, 0, 99}),  // one more that names no glyph
      withLast(work, {14, 12}),        // the work
      withLast(work, {14, 12, 12}),    // beyond it
      {dot, compositeGlyph({moved(0, 0, 0), moved(3, 0, 0), moved(2, 0, 0)}), Bytes().u8(0),
       Bytes(dot).u8(0), compositeGlyph({moved(1, 0, 0), moved(2, 0, 0)})},
      {dot, compositeGlyph({moved(3, 0, 0), moved(0, 0, 0)}), cut},
      {dot, compositeGlyph({moved(0, 0, 0), moved(3, 0, 0)}), damaged},
      chain};
  for (std::vector<Bytes> glyphs : kFonts) {
    // The last glyph but one draws on all others, the deepest first; the last one ends glyf.
    const int all = static_cast<int>(glyphs.size()) - 1;
    std::vector<Part> parts{moved(all + 1, 0, 0)};
    for (int glyph = all; glyph-- > 0;) parts.push_back(moved(glyph, 0, 0));
    glyphs.insert(glyphs.end() - 1, compositeGlyph(parts));
    const OpenFont font(FontImage().glyphs(glyphs).last("glyf"));
    expectEqualByHand(font, {static_cast<std::uint16_t>(all)}, false);
  }
}

}  // namespace
