// Assembled files.
#include <gtest/gtest.h>

#include <random>

#include "tests/truetype/made_file.h"

namespace {

using namespace ulm::test;
using namespace ulm::truetype;

Glyph simple(int advance, int xMin = 0, int xMax = 0) {
  return {Bytes().u16({1, xMin, -7, xMax, 9}), advance, 1, 1};
}

TEST(Assembly, Headers) {
  const auto* letters = reinterpret_cast<const std::uint8_t*>("abcde");
  for (const std::vector<int>& wanted :
       {std::vector{6, 64, 2, 32}, {13, 128, 3, 80}, {16, 256, 4, 0}}) {
    const Writer writer = writerOf({simple(1)});
    for (std::uint32_t raw = 6; raw < static_cast<std::uint32_t>(wanted[0]); ++raw) {
      addWriterTable(writer.get(), createRawTable(tagOf("cvt ") - 3 + raw, 5, letters));
    }
    const File file = assembled(writer);
    EXPECT_EQ(Bytes().add({file.bytes.begin(), file.bytes.begin() + 12}),
              Bytes().u16({1, 0, wanted[0], wanted[1], wanted[2], wanted[3]}));
  }
  // Tables of equal tags stay in their order; a raw head has no room for the sum.
  const Writer writer = writerOf({simple(1)});
  addWriterTable(writer.get(), createRawTable(tagOf("zzzz"), 4, letters));
  addWriterTable(writer.get(), createRawTable(tagOf("zzzz"), 5, letters));
  addWriterTable(writer.get(), createRawTable(kTagHead, 0, nullptr));
  const File file = assembled(writer);
  EXPECT_EQ(file.table("zzzz"), Bytes().text("abcde"));
  EXPECT_EQ(readUInt32(file.table("hhea").data(), 8), 0x00030000u);
}

TEST(Assembly, ChecksumsOfAnyLength) {
  std::mt19937 random(5);
  Bytes bytes = Bytes().zeros(9000);
  for (std::uint8_t& byte : bytes)
    byte = random() % 4 == 0 ? 0xFF : static_cast<std::uint8_t>(random());
  std::fill(bytes.begin() + 100, bytes.begin() + 5000, std::uint8_t{0xFF});
  std::uint32_t sum = 0;
  for (std::uint32_t length = 0; length < bytes.size(); length += 4) {
    ASSERT_EQ(tableChecksum(bytes.data(), length), sum) << length;
    sum += readUInt32(bytes.data(), length);
    ASSERT_EQ(tableChecksum(bytes.data(), length + 1), sum);
  }
}

TEST(Assembly, MetricsAreShortened) {
  const struct {
    std::vector<int> advances;
    int longMetrics;
  } kCases[] = {{{500, 600, 600}, 2}, {{500, 500, 500}, 1}, {{500, 500}, 2},
                {{500}, 1},           {{600, 600, 500}, 3}, {{1, 2, 2, 3, 3, 3}, 4}};
  for (const auto& wanted : kCases) {
    std::vector<Glyph> glyphs;
    Bytes hmtx;
    for (const int advance : wanted.advances) {
      if (static_cast<int>(glyphs.size()) < wanted.longMetrics) hmtx.u16({advance});
      hmtx.u16({advance + 1});
      glyphs.push_back(simple(advance));
    }
    const Writer writer = writerOf(glyphs);
    addWriterTable(writer.get(), createRawTable(tagOf("hmtx"), 3, hmtx.data()));
    addWriterTable(writer.get(), createLocaTable());
    const File file = assembled(writer);
    EXPECT_EQ(file.table("hmtx"), hmtx);
    EXPECT_EQ(readUInt16(file.table("hhea").data(), 34), wanted.longMetrics);
    EXPECT_EQ(readUInt16(file.bytes.data(), 4), 6);
  }
}

TEST(Assembly, GlyphsTellTheOtherTables) {
  Bytes composite = compositeGlyph(
      {moved(90, 1, 1), {0x0008, 91, Bytes().u16({0, 1})}, {0x0001, 7, Bytes().u16({0, 0})}});
  Glyph cut{compositeGlyph({moved(90, 1, 1), moved(90, 0, 0)}), 3, 0, 0};
  cut.bytes.resize(22);
  std::vector<Glyph> glyphs{simple(1, 100, 900),
                            {simple(1, 50, 60).bytes, 1, 40000, 1, 90},
                            {simple(1).bytes, 1, 3, 1, 91},
                            {composite, 2, 7, 2},
                            {Bytes(), 3, 0, 0},
                            {Bytes().u16({1, -500}), 3, 1, 1},
                            cut};
  glyphs.push_back(glyphs[1]);  // the first of its number is meant, as the list then is
  glyphs[1].number = 95;
  const Writer writer = writerOf(glyphs);
  const auto* list = static_cast<const TTList*>(findWriterTable(writer.get(), kTagGlyf)->data);
  static_cast<GlyphData*>(list->first->item)->glyphIndex = 199;
  static_cast<GlyphData*>(list->first->next->item)->glyphIndex = 90;
  const File file = assembled(writer);
  const Bytes head = file.table("head"), maxp = file.table("maxp"), glyf = file.table("glyf");
  EXPECT_EQ(Bytes().add({head.begin() + 36, head.begin() + 44}), Bytes().u16({0, -7, 900, 9}));
  EXPECT_EQ(Bytes().add({maxp.begin(), maxp.begin() + 14}),
            Bytes().u32(0x00010000).u16({8, 40000, 1, 7, 2}));
  const auto reference = [&](std::size_t place) { return readUInt16(glyf.data(), place); };
  EXPECT_EQ(row(reference(30 + 12), reference(30 + 20), reference(30 + 28), reference(68 + 12),
                reference(68 + 20)),
            row(1, 2, 8, 1, 1));
  EXPECT_EQ(file.table("loca"), Bytes().u16({0, 5, 10, 15, 32, 32, 34, 45, 50}));
}

TEST(Assembly, LocaIsLongWhereItHasTo) {
  for (const std::size_t total : {0x1FFFEu, 0x20000u}) {
    Glyph half{Bytes().u16({1}).zeros(0xFFF8), 1, 1, 1}, rest = half;
    rest.bytes.resize(total - 2 * half.bytes.size());
    const File file = assembled(writerOf({half, half, rest}));
    const Bytes loca = file.table("loca");
    const bool isLong = total > 0x1FFFE;
    EXPECT_EQ(readUInt16(file.table("head").data(), 50), isLong ? 1 : 0);
    EXPECT_EQ(loca.size(), isLong ? 16u : 8u);
    EXPECT_EQ(isLong ? readUInt32(loca.data(), 12) : readUInt16(loca.data(), 6) * 2u, total);
  }
}

TEST(Assembly, Refusals) {
  EXPECT_EQ(assembled(newWriter()).result, WriterResultBadTable);
  for (const std::uint32_t tag : {kTagGlyf, kTagHead, kTagMaxp, kTagHhea}) {
    const Writer writer = writerOf({simple(1)});
    removeWriterTable(writer.get(), 0x7A7A7A7A);
    EXPECT_NE(findWriterTable(writer.get(), tag), nullptr);
    removeWriterTable(writer.get(), tag);
    EXPECT_EQ(findWriterTable(writer.get(), tag), nullptr);
    // A raw table of that tag is none of its kind.
    addWriterTable(writer.get(), createRawTable(tag, 0, nullptr));
    EXPECT_EQ(assembled(writer).result, WriterResultMissingTable);
  }
  EXPECT_EQ(assembled(writerOf({})).result, WriterResultEmptyTable);
  EXPECT_EQ(assembled(writerOf({{Bytes(), 1, 0, 0}})).table("loca"), Bytes().zeros(4));
  EXPECT_EQ(assembled(writerOf({{Bytes().zeros(3), 1, 0, 0}})).result, WriterResultBadTable);

  Writer writer = writerOf({simple(1)});
  WriterTable* names = createNameTable(0, nullptr);
  addWriterTable(writer.get(), names);
  EXPECT_EQ(assembled(writer).result, WriterResultNoData);
  removeWriterTable(writer.get(), kTagName);
  EXPECT_EQ(listCount(writer->tables), 6u);
  while (listCount(writer->tables) < 4096) {
    addWriterTable(writer.get(), createRawTable(listCount(writer->tables), 0, nullptr));
  }
  EXPECT_EQ(assembled(writer).result, WriterResultFileTooLarge);
  for (std::uint32_t tag = 0; tag < 4096; ++tag) removeWriterTable(writer.get(), tag);
  EXPECT_EQ(listCount(writer->tables), 6u);
  removeWriterTable(newWriter().get(), kTagGlyf);

  const std::vector<Glyph> most(0xFFFF, Glyph{Bytes(), 1, 0, 0, 1});
  EXPECT_EQ(assembled(writerOf(most)).table("hmtx").size(), 4u + 2 * 0xFFFE);
  std::vector<Glyph> more = most;
  more.push_back(most[0]);
  EXPECT_EQ(assembled(writerOf(more)).result, WriterResultTooManyGlyphs);
}

}  // namespace
