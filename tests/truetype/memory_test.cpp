// The library's allocations, with chosen ones failing.
#include <gtest/gtest.h>

#include <cstdlib>

#include "fuzz/font_properties.h"
#include "tests/truetype/failing_memory.h"
#include "tests/truetype/rich_font.h"

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_malloc(std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
}

namespace {

using namespace ulm::test;
using namespace ulm::truetype;

// A point, and composites that each move the one before.
FontImage nested(int count) {
  std::vector<Bytes> glyphs{simpleGlyph({0}, {{0, 0}})};
  for (int i = 1; i < count; ++i) glyphs.push_back(compositeGlyph({moved(i - 1, 1, 0)}));
  return FontImage().glyphs(glyphs);
}

TEST(Memory, OpenFailsWhole) {
  const Bytes image = richFont().build();
  long refused = 0;
  const long needed = withEachFailing([&] {
    TrueTypeFont* font = nullptr;
    const FontResult result =
        openTrueTypeFont("x", image.data(), static_cast<std::int32_t>(image.size()), 0, &font);
    refused += result == FontResultNoMemory && font == nullptr ? 1 : 0;
    closeTrueTypeFont(font);
  });
  EXPECT_EQ(refused, needed);
  EXPECT_GT(needed, 8);
}

TEST(Memory, OperationsGiveNone) {
  const OpenFont font(richFont());
  long failed = 0;
  const long needed = withEachFailing([&] { failed += checkReading(font.get(), 9) == 0 ? 0 : 1; });
  EXPECT_GT(needed, 30);
  EXPECT_LT(failed, needed);
  std::uint16_t* wide = nullptr;
  EXPECT_EQ(withEachFailing([&] {
              std::free(nameRecordText(font->tables[kSlotName], 0, 1, &wide));
              std::free(wide);
            }),
            2);
}

TEST(Memory, GlyphDataIsNoneAndAListOfComponentsEnds) {
  const OpenFont font(nested(100));
  TTList* list = listCreate();
  long refused = 0;
  // Two blocks of the record, one of the way down through 99 composites.
  EXPECT_EQ(withEachFailing([&] {
              GlyphData* data = getGlyphData(font.get(), 99);
              refused += data == nullptr ? 1 : 0;
              if (data != nullptr) std::free(data->data);
              std::free(data);
            }),
            3);
  EXPECT_EQ(withEachFailing([&] {
              listClear(list);
              const std::int32_t appended = collectGlyphComponents(font.get(), 99, list);
              refused += appended < 100 ? 1 : 0;
              EXPECT_EQ(static_cast<std::uint32_t>(appended), listCount(list));
            }),
            101);
  EXPECT_EQ(refused, 3 + 101);
  listDispose(list);
}

TEST(Memory, OutlinesTakeTwoAllocationsAtMost) {
  const OpenFont font(nested(100));
  for (const auto& [glyph, most] : {std::pair{0u, 1}, {30u, 1}, {99u, 2}}) {
    GlyphPoint* points = nullptr;
    allocationsMade = 0;
    EXPECT_EQ(getGlyphPoints(font.get(), glyph, &points), 1);
    EXPECT_EQ(allocationsMade, most);
    std::free(points);
    GlyphPoint point;
    std::uint32_t count = 1;
    allocationsMade = 0;
    EXPECT_EQ(decodeGlyphPoints(font.get(), glyph, &point, &count), 1);
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(allocationsMade, most - 1);
  }
}

TEST(Memory, ListsStayWhole) {
  TTList* list = listCreate();
  for (int i = 0; i < 3; ++i) listAppend(list, list);
  const long needed = withEachFailing([&] {
    listDispose(listCopy(list));
    listDispose(listConcat(list, list));
    TTList* target = listCreate();
    if (target != nullptr) {
      listAppend(target, target);
      const std::uint32_t before = listCount(target);
      listAppendAll(target, list);
      EXPECT_TRUE(listCount(target) == before || listCount(target) == before + 3);
      listAssign(target, list);
      EXPECT_EQ(listCount(target) == 3 || listCurrent(target) == target, true);
    }
    listDispose(target);
    TTList* empty = listCreate();
    if (empty != nullptr) {
      listAppendAll(empty, list);
      EXPECT_EQ(listCurrent(empty), listIsEmpty(empty) != 0 ? nullptr : list);
    }
    listDispose(empty);
    std::free(listToArray(list));
  });
  EXPECT_GT(needed, 15);
  listDispose(list);
}

}  // namespace

void* __wrap_malloc(std::size_t size) {
  return ulm::test::allocationFails(size) ? nullptr : __real_malloc(size);
}
void* __wrap_calloc(std::size_t count, std::size_t size) {
  return ulm::test::allocationFails(count * size) ? nullptr : __real_calloc(count, size);
}
