// The library's allocations, with chosen ones failing.
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/truetype/exercise.h"
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

long made = 0;
long failing = -1;  // the number of the allocation that fails

bool fails() { return made++ == failing; }

// Runs `operation` with each of its allocations failing in turn; the leak checker sees the rest.
template <class Operation>
long withEachFailing(Operation operation) {
  for (long number = 0;; ++number) {
    made = 0;
    failing = number;
    operation();
    failing = -1;
    if (made <= number) return number;  // it needed no more than these
  }
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
  const long needed = withEachFailing([&] { failed += exerciseFont(font.get(), 9) == 0 ? 0 : 1; });
  EXPECT_GT(needed, 30);
  EXPECT_LT(failed, needed);
  std::uint16_t* wide = nullptr;
  EXPECT_EQ(withEachFailing([&] {
              std::free(nameRecordText(font->tables[kSlotName], 0, 1, &wide));
              std::free(wide);
            }),
            2);
}

TEST(Memory, OutlinesTakeTwoAllocationsAtMost) {
  std::vector<Bytes> glyphs{simpleGlyph({0}, {{0, 0}})};
  for (int i = 1; i < 100; ++i) glyphs.push_back(compositeGlyph({moved(i - 1, 1, 0)}));
  const OpenFont font(FontImage().glyphs(glyphs));
  for (const auto& [glyph, most] : {std::pair{0u, 1}, {30u, 1}, {99u, 2}}) {
    GlyphPoint* points = nullptr;
    made = 0;
    EXPECT_EQ(getGlyphPoints(font.get(), glyph, &points), 1);
    EXPECT_EQ(made, most);
    std::free(points);
    GlyphPoint point;
    std::uint32_t count = 1;
    made = 0;
    EXPECT_EQ(decodeGlyphPoints(font.get(), glyph, &point, &count), 1);
    EXPECT_EQ(made, most - 1);
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
    std::free(listToArray(list));
  });
  EXPECT_GT(needed, 15);
  listDispose(list);
}

}  // namespace

void* __wrap_malloc(std::size_t size) { return fails() ? nullptr : __real_malloc(size); }
void* __wrap_calloc(std::size_t count, std::size_t size) {
  return fails() ? nullptr : __real_calloc(count, size);
}
