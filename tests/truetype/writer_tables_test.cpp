// The images of table objects, and what filling one keeps.
#include <gtest/gtest.h>

#include <memory>
#include <random>

#include "tests/truetype/font_image.h"
#include "truetype/bytes.h"
#include "truetype/reader/glyphs.h"
#include "truetype/writer/table.h"

namespace {

using namespace ulm::test;
using namespace ulm::truetype;

struct Dispose {
  void operator()(WriterTable* table) const { disposeWriterTable(table); }
};
using Table = std::unique_ptr<WriterTable, Dispose>;

struct Image {
  WriterResult result;
  Bytes bytes;  // with the padding
  std::uint32_t length, tag;
};
Image imageOf(const Table& table) {
  const std::uint8_t* bytes = reinterpret_cast<const std::uint8_t*>("x");
  Image image{WriterResultOk, {}, 1, 1};
  image.result = getTableImage(table.get(), &bytes, &image.length, &image.tag);
  EXPECT_EQ(bytes == nullptr, image.length == 0 && image.tag != kTagGlyf);
  if (image.length != 0) image.bytes.assign(bytes, bytes + (image.length + 3) / 4 * 4);
  return image;
}

TEST(WriterTables, FixedImages) {
  const Bytes created = Bytes().u32(1).u32(2).zeros(25);
  const Bytes maxp = Bytes().u32(0x00010000).u16({7}).zeros(26);
  const auto raw = [](const char* text, std::uint32_t length) {
    return createRawTable(0x61626364, length, reinterpret_cast<const std::uint8_t*>(text));
  };
  const struct {
    const char* name;
    WriterTable* table;
    std::uint32_t tag, length;
    Bytes bytes;
  } kCases[] = {
      {"maxp", createMaxpTable(maxp.data(), 32), kTagMaxp, 32, maxp},
      {"short maxp", createMaxpTable(maxp.data(), 6), kTagMaxp, 32, Bytes().zeros(32)},
      {"long maxp", createMaxpTable(created.data(), 33), kTagMaxp, 32, Bytes().zeros(32)},
      {"no maxp", createMaxpTable(nullptr, 32), kTagMaxp, 32, Bytes().zeros(32)},
      {"raw", raw("12345", 5), 0x61626364, 5, Bytes().text("12345").zeros(3)},
      {"raw without bytes", raw("", 0), 0x61626364, 0, Bytes()},
      {"cmap", createCmapTable(), kTagCmap, 4, Bytes().u16({0, 0})},
  };
  for (const auto& wanted : kCases) {
    SCOPED_TRACE(wanted.name);
    const Table table(wanted.table);
    for (int twice = 0; twice < 2; ++twice) {
      const Image image = imageOf(table);
      EXPECT_EQ(row(image.result, image.tag, image.length),
                row(WriterResultOk, wanted.tag, wanted.length));
      EXPECT_EQ(image.bytes, wanted.bytes);
    }
  }
}

TEST(WriterTables, Refusals) {
  const Table post(createPostTable(0, 0, 0, 0)), raw(createRawTable(1, 0, nullptr));
  auto& format = static_cast<PostTableData*>(post->data)->format;
  format = 0x00020000;
  testing::internal::CaptureStderr();
  const Image image = imageOf(post);
  EXPECT_EQ(row(image.result, image.length, image.tag), row(WriterResultBadTable, 0, kTagPost));
  WriterTable* bad = createPostTable(0, 0, 0, 0);
  static_cast<PostTableData*>(bad->data)->format = 0xABC;
  disposeWriterTable(bad);
  format = kPostFormat;
  EXPECT_EQ(imageOf(post).result, WriterResultOk);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Unrecognized format of a post table: 00020000.\n"
            "Unsupported format of a 'post' table: 00000ABC.\n");
  raw->tag = 0x7A7A7A7A;
  EXPECT_EQ(imageOf(raw).result, WriterResultUnknownTable);
  raw->tag = kTagRaw;
  EXPECT_EQ(imageOf(Table(createLocaTable())).result, WriterResultEmptyTable);
  EXPECT_EQ(imageOf(Table(createNameTable(-1, nullptr))).result, WriterResultNoData);
  EXPECT_EQ(imageOf(Table(createGlyfTable())).result, WriterResultEmptyTable);
  disposeWriterTable(nullptr);
}

TEST(WriterTables, NamesAreSortedAndKeepTheirOrder) {
  std::uint8_t bytes[] = {'a', 'b', 'c', 'd', 'e'};
  const NameRecord given[] = {{3, 1, 0x409, 6, 2, bytes},
                              {1, 0, 5, 6, 1, bytes + 2},
                              {3, 1, 0x409, 6, 1, bytes + 3},
                              {1, 1, 0, 2, 0, nullptr}};
  const Table table(createNameTable(2, given));
  addNameRecord(table.get(), &given[2]);
  addNameRecord(table.get(), &given[3]);
  bytes[0] = 'x';  // copies are deep
  const Image image = imageOf(table);
  EXPECT_EQ(image.length, 6u + 4 * 12 + 4);
  EXPECT_EQ(image.bytes, Bytes()
                             .u16({0, 4, 54, 1, 0, 5, 6, 1, 0, 1, 1, 0, 2, 0, 1})
                             .u16({3, 1, 0x409, 6, 2, 1, 3, 1, 0x409, 6, 1, 3})
                             .text("cabd")
                             .zeros(2));
}

TEST(WriterTables, NamesHaveTheirLimits) {
  std::vector<std::uint8_t> bytes(0xFFFF);
  const NameRecord most{3, 1, 0, 1, 0xFFFF, bytes.data()};
  const NameRecord one{3, 1, 0, 2, 1, bytes.data()};
  const NameRecord none{3, 1, 0, 3, 0, nullptr};
  const Table table(createNameTable(1, &most));
  addNameRecord(table.get(), &none);
  EXPECT_EQ(imageOf(table).length, 6u + 24 + 0xFFFF);
  addNameRecord(table.get(), &one);
  EXPECT_EQ(imageOf(table).result, WriterResultNameTooLong);
  for (const int count : {5460, 5461}) {
    const std::vector<NameRecord> many(static_cast<std::size_t>(count), none);
    EXPECT_EQ(imageOf(Table(createNameTable(count, many.data()))).result,
              count == 5460 ? WriterResultOk : WriterResultNameOutOfRange);
  }
}

TEST(WriterTables, MappingsAreSegmentsOfTheirOwn) {
  const Table table(createCmapTable());
  addCharMapping(table.get(), 0x10041, 7);  // cut to 16 bits
  addCharMapping(table.get(), 0x42, 3);
  addCharMapping(table.get(), 0x43, 0x10004);
  const Image image = imageOf(table);
  EXPECT_EQ(image.length, 12u + 54);
  EXPECT_EQ(image.bytes,
            Bytes()
                .u16({0, 1, 3, 1, 0, 12})
                .u16({4, 54, 0, 8, 8, 2, 0, 0x41, 0x42, 0x43, -1, 0, 0x41, 0x42, 0x43, -1})
                .u16({7 - 0x41, 3 - 0x42, 4 - 0x43, 1, 0, 0, 0, 0, 7, 3, 4})
                .zeros(2));
  for (int i = 3; i < 501; ++i) addCharMapping(table.get(), 0x43, 0);
  const auto& cmap = *static_cast<const CmapTableData*>(table->data);
  EXPECT_EQ(row(cmap.subtableCount, cmap.capacity), row(1, 10));
  EXPECT_EQ(row(cmap.subtables[0].id, cmap.subtables[0].count, cmap.subtables[0].capacity),
            row(0x0301, 501, 1000));
}

struct Mapping {
  int code, glyph;
};
Table cmapOf(const std::vector<Mapping>& mappings) {
  Table table(createCmapTable());
  for (const Mapping& mapping : mappings) {
    addCharMapping(table.get(), static_cast<std::uint32_t>(mapping.code),
                   static_cast<std::uint32_t>(mapping.glyph));
  }
  return table;
}

TEST(WriterTables, ManyMappingsAreMerged) {
  std::mt19937 random(7);
  for (int round = 0; round < 12; ++round) {
    std::vector<Mapping> mappings;
    std::vector<int> wanted(0x10000);
    int code = 1, glyph = 1;
    const unsigned long gaps = 20 + random() % 40, jumps = 2 + random() % 6;
    while (mappings.size() < 7000) {
      mappings.push_back({code, glyph});
      wanted[static_cast<std::size_t>(code)] = glyph;
      code += random() % gaps == 0 ? 2 + static_cast<int>(random() % 3) : 1;
      glyph = random() % jumps == 0 ? static_cast<int>(random() % 0x10000) : (glyph + 1) & 0xFFFF;
    }
    if (round % 2 == 0) mappings.push_back({0xFFFF, wanted[0xFFFF] = 5});
    const OpenFont font(FontImage().table("cmap", imageOf(cmapOf(mappings)).bytes));
    std::vector<int> found;
    for (std::uint32_t c = 0; c < 0x10000; ++c) {
      found.push_back(font->cmapLookup(font->cmapSubtable, static_cast<std::uint16_t>(c)));
    }
    EXPECT_EQ(found, wanted);
  }
}

TEST(WriterTables, MappingsHaveTheirLimits) {
  const auto every = [](int count, int step, int glyphStep) {
    std::vector<Mapping> mappings;
    for (int i = 0; i < count; ++i) mappings.push_back({1 + i * step, 1 + i * glyphStep});
    return mappings;
  };
  const struct {
    int count, step, glyphStep;
    std::uint32_t length;  // of the subtable; 0 where there is none
  } kCases[] = {
      {6551, 1, 1, 14 + 10 * 6552}, {6552, 1, 1, 16 + 2 * 8}, {20000, 1, 2, 16 + 2 * 8 + 2 * 20000},
      {8188, 2, 1, 16 + 8 * 8189},  {8189, 2, 1, 0},          {20000, 3, 1, 0}};
  for (const auto& [count, step, glyphStep, length] : kCases) {
    const Image image = imageOf(cmapOf(every(count, step, glyphStep)));
    EXPECT_EQ(image.result, length == 0 ? WriterResultCmapTooLarge : WriterResultOk) << count;
    EXPECT_EQ(image.length, length == 0 ? 0 : 12 + length) << count;
  }
  // A segment that ends with the last code closes the subtable too.
  std::vector<Mapping> closed = every(6552, 1, 1);
  closed.push_back({0xFFFF, 5});
  EXPECT_EQ(imageOf(cmapOf(closed)).length, 12u + 16 + 2 * 8);
  std::vector<Mapping> repeated = every(6552, 1, 1);
  repeated.insert(repeated.begin() + 5, {5, 999});  // the first of equal codes is found
  EXPECT_EQ(imageOf(cmapOf(repeated)).bytes, imageOf(cmapOf(every(6552, 1, 1))).bytes);
  std::swap(repeated[100], repeated[200]);
  EXPECT_EQ(imageOf(cmapOf(repeated)).result, WriterResultCmapTooLarge);
}

std::vector<std::uint32_t> numbersOf(const Table& table) {
  std::vector<std::uint32_t> numbers;
  const auto* list = static_cast<const TTList*>(table->data);
  for (const TTListNode* node = list->first; node != nullptr; node = node->next) {
    numbers.push_back(static_cast<const GlyphData*>(node->item)->glyphIndex);
  }
  return numbers;
}

TEST(WriterTables, GlyphsBringTheirComponents) {
  const Bytes point = simpleGlyph({0}, {{1, 2}});
  const OpenFont font(
      FontImage().glyphs({point, point, compositeGlyph({moved(0, 1, 1), moved(1, 2, 2)}), point}));
  const Table table(createGlyfTable());
  const auto add = [&](std::uint32_t glyph) {
    return addGlyph(table.get(), getGlyphData(font.get(), glyph), font.get());
  };
  EXPECT_EQ((std::vector{add(9), add(1), add(2), add(1)}), (std::vector{-1, 0, 1, 3}));
  EXPECT_EQ(numbersOf(table), (std::vector<std::uint32_t>{1, 2, 0, 1}));
  // The image is the glyphs back to back, with the old references.
  const Image image = imageOf(table);
  EXPECT_EQ(image.length, 3u * 20 + 26);
  EXPECT_EQ(readUInt16(image.bytes.data(), 20 + 12), 0);

  // A table that others have changed is read anew, though the new node may lie where one has been.
  auto* list = static_cast<TTList*>(table->data);
  while (listCount(list) > 1) {
    listLast(list);
    listRemoveCurrent(list);
  }
  listAppend(list, getGlyphData(font.get(), 3));
  add(3);
  listLast(list);
  GlyphData* next = getGlyphData(font.get(), 0);
  listRemoveCurrent(list);
  listAppend(list, next);
  for (const std::uint32_t place : {1u, 2u}) {
    static_cast<GlyphData*>(listCurrent(list))->newIndex = place;
    listLast(list);
  }
  EXPECT_EQ(add(2), 3);
  EXPECT_EQ(numbersOf(table), (std::vector<std::uint32_t>{1, 3, 0, 2}));

  // What another font draws on is visited anew. A component whose places descend has no record, yet
  // its own components do.
  const OpenFont other(
      FontImage()
          .glyphs({compositeGlyph({moved(3, 0, 0)}), point, compositeGlyph({moved(0, 1, 1)}),
                   compositeGlyph({moved(5, 0, 0)}), point, point})
          .loca(Bytes().u32(0).u32(18).u32(37).u32(55).u32(54).u32(92).u32(111), 1));
  EXPECT_EQ(addGlyph(table.get(), getGlyphData(other.get(), 2), other.get()), 4);
  EXPECT_EQ(numbersOf(table), (std::vector<std::uint32_t>{1, 3, 0, 2, 2, 5}));

  // Components that share their bytes, to far more than the image has.
  std::vector<Part> parts;
  Bytes loca;
  for (int i = 0; i < 2000; ++i) parts.push_back(moved(2 * i + 2, 0, 0)), loca.u32(0).u32(40000);
  const Bytes all = compositeGlyph(parts);
  const OpenFont shared(FontImage()
                            .table("glyf", Bytes(all).zeros(40000 - all.size()))
                            .loca(loca.u32(0), 1)
                            .patch16("maxp", 4, 4000));
  EXPECT_EQ(addGlyph(table.get(), getGlyphData(shared.get(), 0), shared.get()), kGlyphTooLarge);
  EXPECT_EQ(glyphCount(table.get()), 6u);
}

}  // namespace
