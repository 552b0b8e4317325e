// Assembled files, and subsets of fonts.
#include <gtest/gtest.h>

#include <random>

#include "fuzz/font_properties.h"
#include "tests/truetype/font_image.h"
#include "tests/truetype/rich_font.h"
#include "truetype/reader/tables.h"

namespace {

using namespace ulm::test;
using namespace ulm::truetype;

std::uint32_t tagOf(const char* text) {
  return readUInt32(reinterpret_cast<const std::uint8_t*>(text), 0);
}

struct Dispose {
  void operator()(TrueTypeWriter* writer) const { disposeTrueTypeWriter(writer); }
};
using Writer = std::unique_ptr<TrueTypeWriter, Dispose>;
Writer newWriter() {
  TrueTypeWriter* writer = nullptr;
  createTrueTypeWriter(&writer);
  return Writer(writer);
}

struct Glyph {
  Bytes bytes;
  int advance = 0, points = 0, contours = 0, number = -1;  // its own place, if none is given
};

// A writer with what assembly needs, of glyphs without components in any font.
Writer writerOf(const std::vector<Glyph>& glyphs) {
  const OpenFont none{FontImage().glyphs({})};
  Writer writer = newWriter();
  const Bytes created = Bytes().zeros(8);
  WriterTable* glyf = createGlyfTable();
  for (const Glyph& glyph : glyphs) {
    auto* data = static_cast<GlyphData*>(std::calloc(1, sizeof(GlyphData)));
    data->byteCount = static_cast<std::uint16_t>(glyph.bytes.size());
    data->data = static_cast<std::uint8_t*>(std::malloc(glyph.bytes.size() + 1));
    std::copy(glyph.bytes.begin(), glyph.bytes.end(), data->data);
    data->isComposite = !glyph.bytes.empty() && glyph.bytes[0] >= 0x80;
    data->advanceWidth = static_cast<std::uint16_t>(glyph.advance);
    data->leftSideBearing = static_cast<std::int16_t>(glyph.advance + 1);
    data->pointCount = static_cast<std::uint16_t>(glyph.points);
    data->contourCount = static_cast<std::uint16_t>(glyph.contours);
    const std::uint32_t place = glyphCount(glyf);
    data->glyphIndex = glyph.number < 0 ? place : static_cast<std::uint32_t>(glyph.number);
    EXPECT_EQ(addGlyph(glyf, data, none.get()), static_cast<std::int32_t>(place));
  }
  const Bytes maxp = Bytes().u32(0x00010000).zeros(28);
  addWriterTable(writer.get(), createHeadTable(1, 2, 1000, created.data(), 0, 8, 2));
  addWriterTable(writer.get(), createHheaTable(1, 2, 3, 4, 5));
  addWriterTable(writer.get(), createMaxpTable(maxp.data(), 32));
  addWriterTable(writer.get(), glyf);
  addWriterTable(writer.get(), nullptr);
  return writer;
}

struct File {
  WriterResult result;
  Bytes bytes;

  Bytes table(const char* tag) const {
    Bytes copy;
    for (std::size_t i = 0; i < readUInt16(bytes.data(), 4); ++i) {
      const std::uint8_t* entry = bytes.data() + 12 + 16 * i;
      const std::uint8_t* start = bytes.data() + readUInt32(entry, 8);
      if (readUInt32(entry, 0) == tagOf(tag)) copy.assign(start, start + readUInt32(entry, 12));
    }
    return copy;
  }
};
File take(WriterResult result, std::uint8_t* image, std::uint32_t length) {
  File file{result, {}};
  EXPECT_EQ(row(image != nullptr, length != 0), row(result == WriterResultOk, !result));
  EXPECT_EQ(image == nullptr ? 0 : checkFile(image, length), 0);
  if (image != nullptr) file.bytes.assign(image, image + length);
  std::free(image);
  return file;
}
File assembled(const Writer& writer) {
  std::uint8_t* image = nullptr;
  std::uint32_t length = 0;
  const WriterResult result = assembleFont(writer.get(), &image, &length);
  return take(result, image, length);
}

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
    EXPECT_EQ(checkSubset(font.get(), wanted.glyphs, 0), 0);
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
    std::vector<Bytes> glyphs{simpleGlyph({0}, {{0, 0}})};
    for (int i = 0; i < depth; ++i) {
      glyphs.push_back(compositeGlyph({moved(i, 0, 0), moved(i, 0, 0)}));
    }
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

// Made of parts by hand, which takes the other way to hold glyphs, the tables are the same. The
// first round is large: wide and deep composites, and glyphs far apart. In the others some glyphs
// are cut, so that what follows is read on from them, or have no such contours or components.
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
    Request request;
    if (round == 0) request.glyphs = {99, 2999, 2500, 149, 2990};
    for (unsigned left = 1 + random() % 8; left > 0; --left) {
      request.glyphs.push_back(static_cast<std::uint16_t>(random() % 11));
    }
    const std::vector<std::uint16_t> wanted = request.glyphs;
    const File file = subset(font, request);
    if (file.result == WriterResultNoData) continue;
    EXPECT_EQ(checkSubset(font.get(), wanted, 3), 0);

    const Writer writer = writerOf({});
    WriterTable* glyf = findWriterTable(writer.get(), kTagGlyf);
    WriterTable* cmap = createCmapTable();
    addWriterTable(writer.get(), cmap);
    for (std::size_t k = 0; k < wanted.size(); ++k) {
      const std::int32_t made = addGlyph(glyf, getGlyphData(font.get(), wanted[k]), font.get());
      EXPECT_EQ(static_cast<std::uint16_t>(made), request.glyphs[k]);
      addCharMapping(cmap, static_cast<std::uint32_t>(65 + k), static_cast<std::uint32_t>(made));
    }
    const File byHand = assembled(writer);
    for (const char* tag : {"glyf", "loca", "hmtx", "cmap", "maxp"}) {
      EXPECT_EQ(byHand.table(tag), file.table(tag)) << tag;
    }
    const Bytes made = file.table("head"), head = byHand.table("head");
    EXPECT_TRUE(std::equal(made.begin() + 36, made.begin() + 44, head.begin() + 36));
  }
}

}  // namespace
