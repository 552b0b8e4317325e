// The operations of the font library when memory runs out.
#include "tests/memory/memory_rows.h"
#include "tests/support/c_heap.h"
#include "tests/truetype/rich_font.h"
#include "truetype/reader/kerning.h"
#include "truetype/reader/metrics.h"
#include "truetype/reader/names.h"
#include "truetype/reader/tables.h"
#include "truetype/writer/subset.h"
#include "truetype/writer/writer.h"

namespace {

using namespace ulm::test;
using namespace ulm::truetype;

// A point, and composites that each move the one before.
FontImage nested(int count) {
  std::vector<Bytes> glyphs{simpleGlyph({0}, {{0, 0}})};
  for (int i = 1; i < count; ++i) glyphs.push_back(compositeGlyph({moved(i - 1, 1, 0)}));
  return FontImage().glyphs(glyphs);
}

// A row for an operation that returns a block, or null without memory.
template <class Operation>
MemoryRow blockOf(const char* name, std::uint64_t allocations, Operation operation) {
  return {name,
          [operation](FailingMemory& memory) {
            return memory.run([&] { return owned(operation()) != nullptr; }), true;
          },
          allocations};
}

struct Dispose {
  void operator()(TTList* list) const { listDispose(list); }
  void operator()(WriterTable* table) const { disposeWriterTable(table); }
  void operator()(TrueTypeWriter* writer) const { disposeTrueTypeWriter(writer); }
};
using List = std::unique_ptr<TTList, Dispose>;
using Table = std::unique_ptr<WriterTable, Dispose>;
using Writer = std::unique_ptr<TrueTypeWriter, Dispose>;

// A row for an operation that returns a list or a table, or null without memory.
template <class Operation>
MemoryRow madeBy(const char* name, std::uint64_t allocations, Operation operation) {
  return {
      name,
      [operation](FailingMemory& memory) {
        using Made = std::remove_pointer_t<decltype(operation())>;
        return memory.run([&] { return std::unique_ptr<Made, Dispose>(operation()) != nullptr; }),
               true;
      },
      allocations};
}

List listOf(int items) {
  List list(listCreate());
  for (int i = 0; i < items; ++i) listAppend(list.get(), list.get());
  return list;
}

TEST(FontMemory, Reader) {
  const OpenFont rich(richFont()), deep(nested(100));
  const Bytes image = richFont().build();
  const std::uint16_t run[] = {0, 1, 2, 0xFFFF, 7};
  const std::uint8_t* const hmtx = rich->tables[kSlotHmtx];
  // An outline takes its array and, where composites are nested deeply, the path through them.
  const auto points = [&](const char* name, std::uint32_t glyph, std::uint64_t allocations) {
    return MemoryRow{name,
                     [&deep, glyph](FailingMemory& memory) {
                       GlyphPoint* outline = nullptr;
                       const bool whole = memory.run(
                           [&] { return getGlyphPoints(deep.get(), glyph, &outline) == 1; });
                       return (owned(outline) != nullptr) == whole;
                     },
                     allocations};
  };
  failEachOf(
      kCHeap,
      {{"openTrueTypeFont",
        [&](FailingMemory& memory) {
          TrueTypeFont* font = nullptr;
          FontResult result = FontResultOk;
          const bool whole = memory.run([&] {
            result = openTrueTypeFont("x", image.data(), static_cast<std::int32_t>(image.size()), 0,
                                      &font);
            return result == FontResultOk;
          });
          const bool right = (font != nullptr) == whole;
          closeTrueTypeFont(font);
          return right && (whole || result == FontResultNoMemory);
        }},
       {"getNameRecords",
        [&](FailingMemory& memory) {
          NameRecord* records = nullptr;
          const bool whole = memory.run([&] { return getNameRecords(rich.get(), &records) == 3; });
          const bool right = (records != nullptr) == whole;
          releaseNameRecords(records, whole ? 3 : 0);
          return right;
        }},
       {"nameRecordText",
        [&](FailingMemory& memory) {
          std::uint16_t* wide = nullptr;
          const bool whole = memory.run([&] {
            return owned(nameRecordText(rich->tables[kSlotName], 0, 1, &wide)) != nullptr;
          });
          return (owned(wide) != nullptr) == whole;
        },
        2},
       {"copyTableByTag",
        [&](FailingMemory& memory) {
          return memory.run([&] {
            return owned(copyTableByTag(rich.get(), 0x7A7A7A7A, nullptr)) != nullptr;
          }),
                 true;
        },
        1},
       blockOf("readAllGlyphBoxes", 1, [&] { return readAllGlyphBoxes(rich.get()); }),
       blockOf("getScaledAdvances", 1, [&] { return getScaledAdvances(rich.get(), run, 5, 0); }),
       blockOf("getScaledAdvances, vertical", 1,
               [&] { return getScaledAdvances(rich.get(), run, 5, 1); }),
       blockOf("getScaledMetricsFromTables", 1,
               [&] { return getScaledMetricsFromTables(hmtx, nullptr, 2, 0, 5, 1000, run, 2); }),
       points("getGlyphPoints", 0, 1),
       points("getGlyphPoints, nested", 30, 1),
       points("getGlyphPoints, nested deeply", 99, 2),
       {"decodeGlyphPoints",
        [&](FailingMemory& memory) {
          GlyphPoint point;
          std::uint32_t count = 1;
          const bool whole =
              memory.run([&] { return decodeGlyphPoints(deep.get(), 99, &point, &count) == 1; });
          return count == (whole ? 1 : 0);
        },
        1},
       // The two blocks of the record, and the path through 99 composites.
       {"getGlyphData",
        [&](FailingMemory& memory) {
          return memory.run([&] { return glyphOf(deep.get(), 99) != nullptr; }), true;
        },
        3},
       {"collectGlyphComponents",
        [&](FailingMemory& memory) {
          const List list(listCreate());
          std::int32_t appended = 0;
          memory.run([&] {
            appended = collectGlyphComponents(deep.get(), 99, list.get());
            return appended == 100;
          });
          return static_cast<std::uint32_t>(appended) == listCount(list.get());
        },
        101}});
}

TEST(FontMemory, Lists) {
  const List three = listOf(3);
  const auto changed = [&](const char* name, std::uint64_t allocations, int before, int after,
                           auto operation) {
    return MemoryRow{
        name,
        [before, after, operation](FailingMemory& memory) {
          const List list = listOf(before);
          const bool whole = memory.run([&] {
            operation(list.get());
            return listCount(list.get()) == static_cast<std::uint32_t>(after);
          });
          return (whole || listCount(list.get()) == static_cast<std::uint32_t>(before)) &&
                 (listCurrent(list.get()) == nullptr) == (listIsEmpty(list.get()) != 0);
        },
        allocations};
  };
  failEachOf(
      kCHeap,
      {madeBy("listCreate", 1, [] { return listCreate(); }),
       madeBy("listCopy", 4, [&] { return listCopy(three.get()); }),
       madeBy("listConcat", 7, [&] { return listConcat(three.get(), three.get()); }),
       blockOf("listToArray", 1, [&] { return listToArray(three.get()); }),
       changed("listAppend", 1, 0, 1, [](TTList* list) { listAppend(list, list); }),
       changed("listInsertAfter", 1, 2, 3, [](TTList* list) { listInsertAfter(list, list); }),
       changed("listInsertBefore", 1, 2, 3, [](TTList* list) { listInsertBefore(list, list); }),
       changed("listAppendAll", 3, 0, 3, [&](TTList* list) { listAppendAll(list, three.get()); }),
       changed("listAppendAll, to itself", 2, 2, 4,
               [](TTList* list) { listAppendAll(list, list); }),
       changed("listAssign", 4, 1, 3, [&](TTList* list) { listAssign(list, three.get()); })});
}

// A row for an operation that fills a table. A table that has lost something then refuses to make
// an image.
template <class Fill>
MemoryRow filled(const char* name, WriterTable* (*make)(), Fill fill) {
  return {name, [make, fill](FailingMemory& memory) {
            const Table table(make());
            const bool whole = memory.run([&] { return fill(table.get()); });
            const std::uint8_t* bytes = nullptr;
            std::uint32_t length = 0, tag = 0;
            return getTableImage(table.get(), &bytes, &length, &tag) ==
                   (whole ? WriterResultOk : WriterResultNoMemory);
          }};
}

bool addMappings(WriterTable* cmap) {
  for (std::uint32_t code = 0; code < 501; ++code) addCharMapping(cmap, 2 * code, code);
  return !static_cast<const CmapTableData*>(cmap->data)->incomplete;
}

TEST(FontMemory, Tables) {
  const OpenFont font(richFont());
  const NameRecord record{1, 0, 0, 1, 1, const_cast<std::uint8_t*>(font->image)};
  const std::uint8_t bytes[32] = {};
  const auto image = [](const char* name, auto make) {
    return MemoryRow{name, [make](FailingMemory& memory) {
                       const Table table(make());
                       const std::uint8_t* out = nullptr;
                       std::uint32_t length = 0, tag = 0;
                       WriterResult result = WriterResultOk;
                       const bool whole = memory.run([&] {
                         result = getTableImage(table.get(), &out, &length, &tag);
                         return result == WriterResultOk;
                       });
                       return whole
                                  ? out != nullptr
                                  : result == WriterResultNoMemory && out == nullptr && length == 0;
                     }};
  };
  // A composite that brings two components.
  const auto glyfOf = [&](std::uint32_t glyph) {
    WriterTable* const glyf = createGlyfTable();
    addGlyph(glyf, getGlyphData(font.get(), glyph), font.get());
    return glyf;
  };
  failEachOf(
      kCHeap,
      {madeBy("createRawTable", 3, [&] { return createRawTable(1, 5, bytes); }),
       madeBy("createHeadTable", 2, [&] { return createHeadTable(1, 2, 1000, bytes, 0, 8, 2); }),
       madeBy("createHheaTable", 2, [] { return createHheaTable(1, 2, 3, 4, 5); }),
       madeBy("createLocaTable", 2, [] { return createLocaTable(); }),
       madeBy("createMaxpTable", 2, [&] { return createMaxpTable(bytes, 32); }),
       madeBy("createGlyfTable", 0, [] { return createGlyfTable(); }),
       madeBy("createCmapTable", 0, [] { return createCmapTable(); }),
       madeBy("createNameTable", 0, [&] { return createNameTable(1, &record); }),
       madeBy("createPostTable", 2, [] { return createPostTable(0, 0, 0, 0); }),
       filled(
           "addCharMapping", [] { return createCmapTable(); }, addMappings),
       filled(
           "addNameRecord", [] { return createNameTable(0, nullptr); },
           [&](WriterTable* names) {
             addNameRecord(names, &record);
             return listCount(static_cast<const TTList*>(names->data)) == 1;
           }),
       {"addGlyph",
        [&](FailingMemory& memory) {
          const Table glyf(glyfOf(0));
          GlyphData* const glyph = getGlyphData(font.get(), 4);
          std::int32_t added = 0;
          const bool whole = memory.run([&] {
            added = addGlyph(glyf.get(), glyph, font.get());
            return added == 1;
          });
          return glyphCount(glyf.get()) == (whole ? 4u : 1u) && (whole || added == kGlyphNoMemory);
        }},
       image("getTableImage of glyf", [&] { return glyfOf(4); }),
       image("getTableImage of name", [&] { return createNameTable(1, &record); }),
       image("getTableImage of cmap",
             [] {
               WriterTable* const cmap = createCmapTable();
               addMappings(cmap);
               return cmap;
             }),
       // More mappings than there is room for segments of their own.
       image("getTableImage of a merged cmap", [] {
         WriterTable* const cmap = createCmapTable();
         for (std::uint32_t code = 0; code < 7000; ++code) addCharMapping(cmap, code, code);
         return cmap;
       })});
}

TEST(FontMemory, Files) {
  const OpenFont font(richFont());
  const std::vector<std::uint16_t> glyphs{4, 3, 1, 9}, codes{65, 66, 67, 68};
  const std::uint8_t bytes[32] = {0, 1};
  failEachOf(
      kCHeap,
      {{"createTrueTypeWriter",
        [](FailingMemory& memory) {
          TrueTypeWriter* writer = nullptr;
          const bool whole = memory.run([&] {
            createTrueTypeWriter(&writer);
            return writer != nullptr;
          });
          return (Writer(writer) != nullptr) == whole;
        }},
       {"addWriterTable",
        [](FailingMemory& memory) {
          TrueTypeWriter* made = nullptr;
          createTrueTypeWriter(&made);
          const Writer writer(made);
          WriterTable* const table = createPostTable(0, 0, 0, 0);
          std::int32_t result = 0;
          const bool whole =
              memory.run([&] { return (result = addWriterTable(made, table)) == 0; });
          return (whole || result == WriterResultNoMemory) &&
                 (findWriterTable(made, kTagPost) == table) == whole;
        },
        1},
       {"assembleFont",
        [&](FailingMemory& memory) {
          TrueTypeWriter* made = nullptr;
          createTrueTypeWriter(&made);
          const Writer writer(made);
          WriterTable* const glyf = createGlyfTable();
          addGlyph(glyf, getGlyphData(font.get(), 4), font.get());
          for (WriterTable* table :
               {glyf, createHeadTable(1, 2, 1000, bytes, 0, 8, 2), createHheaTable(1, 2, 3, 4, 5),
                createMaxpTable(bytes, 32), createPostTable(0, 0, 0, 0)}) {
            addWriterTable(made, table);
          }
          std::uint8_t* image = nullptr;
          std::uint32_t length = 0;
          WriterResult result = WriterResultOk;
          const bool whole = memory.run([&] {
            result = assembleFont(made, &image, &length);
            return result == WriterResultOk;
          });
          return (owned(image) != nullptr) == whole && (length != 0) == whole &&
                 (whole || result == WriterResultNoMemory);
        }},
       {"createTrueTypeSubset", [&](FailingMemory& memory) {
          std::vector<std::uint16_t> ids = glyphs;
          std::uint8_t* image = nullptr;
          std::uint32_t length = 0;
          WriterResult result = WriterResultOk;
          const bool whole = memory.run([&] {
            result = createTrueTypeSubset(font.get(), &image, &length, ids.data(), codes.data(), 4,
                                          0, nullptr, SubsetKeepOS2);
            return result == WriterResultOk;
          });
          const bool replaced = ids == std::vector<std::uint16_t>{0, 4, 5, 0xFFFF};
          return (owned(image) != nullptr) == whole && (length != 0) == whole &&
                 (whole ? replaced : result == WriterResultNoMemory && (replaced || ids == glyphs));
        }}});
}

}  // namespace
