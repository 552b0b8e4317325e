#include "truetype/list.h"

#include <gmock/gmock.h>

#include <vector>

#include "tests/truetype/font_image.h"

namespace {

using namespace ulm::truetype;
using testing::ElementsAre;
using ulm::test::owned;

int* number(int value) {
  static int numbers[10];
  return numbers + value;
}

std::vector<std::ptrdiff_t> items(const TTList* list) {
  std::vector<std::ptrdiff_t> found;
  const auto array = owned(listToArray(list));
  for (std::uint32_t i = 0; i < listCount(list); ++i) {
    found.push_back(static_cast<int*>(array[i]) - number(0));
  }
  // The links backward tell the same.
  std::size_t place = found.size();
  for (const TTListNode* node = list->last; node != nullptr; node = node->previous) {
    EXPECT_EQ(node->item, number(static_cast<int>(found[--place])));
  }
  EXPECT_EQ(place, 0u);
  return found;
}

std::vector<const void*> left;
void note(void* item) { left.push_back(item); }

struct ListTest : testing::Test {
  TTList* list = listCreate();
  void fill(int count) {
    for (int i = 1; i <= count; ++i) listAppend(list, number(i));
  }
  ~ListTest() override { listDispose(list); }
};

TEST_F(ListTest, CursorMoves) {
  using Moved = std::vector<int>;  // what the moves gave, in their order
  // Whether the cursor stands at the first, whether at the last, and its place.
  const auto place = [this] {
    return ulm::test::row(listAtFirst(list), listAtLast(list), listPosition(list));
  };
  EXPECT_EQ((Moved{listFirst(list), listNext(list), listPrevious(list)}), Moved({0, 0, 0}));
  EXPECT_TRUE(listIsEmpty(list) && listCurrent(list) == nullptr);
  EXPECT_THAT(place(), ElementsAre(0, 0, 0));
  fill(3);
  EXPECT_EQ(listCurrent(list), number(1));  // the first append set it, the others let it be
  EXPECT_THAT(place(), ElementsAre(1, 0, 0));
  EXPECT_EQ((Moved{listFirst(list), listPrevious(list), listLast(list)}), Moved({0, 0, 1}));
  EXPECT_THAT(place(), ElementsAre(0, 1, 2));
  EXPECT_EQ((Moved{listNext(list), listPrevious(list), listSeek(list, number(9))}),
            Moved({0, 1, 0}));
  EXPECT_THAT(place(), ElementsAre(0, 0, 1));
  listAppend(list, number(1));
  EXPECT_EQ(listSeek(list, number(1)), 1);
  EXPECT_THAT(place(), ElementsAre(1, 0, 0));
}

TEST_F(ListTest, InsertsAndRemovesAtTheCursor) {
  listInsertBefore(list, number(2));  // no cursor: appended
  listInsertBefore(list, number(1));
  listInsertAfter(list, number(3));
  EXPECT_EQ(listCurrent(list), number(2));
  EXPECT_THAT(items(list), ElementsAre(1, 2, 3));
  left.clear();
  listSetDestructor(list, note);
  for (const void* next : {number(3), number(1), static_cast<int*>(nullptr)}) {
    listRemoveCurrent(list);
    EXPECT_EQ(listCurrent(list), next);
  }
  listRemoveCurrent(list);
  EXPECT_EQ(listCount(list), 0u);
  EXPECT_THAT(left, ElementsAre(number(2), number(3), number(1)));
}

TEST_F(ListTest, CopiesShareItemsAndLeaveTheDestructor) {
  left.clear();
  fill(3);
  listNext(list);
  listSetDestructor(list, note);
  TTList* copy = listCopy(list);
  EXPECT_EQ(listCurrent(copy), number(2));
  TTList* both = listConcat(list, copy);
  EXPECT_THAT(items(both), ElementsAre(1, 2, 3, 1, 2, 3));
  EXPECT_TRUE(listAtFirst(both));
  listLast(both);
  listDispose(copy);
  EXPECT_TRUE(left.empty());
  listAssign(list, both);  // the items of `list` leave, in order
  EXPECT_THAT(left, ElementsAre(number(1), number(2), number(3)));
  EXPECT_EQ(listPosition(list), 5u);
  EXPECT_EQ(list->destructor, note);
  listAssign(list, list);
  listAppendAll(both, both);
  EXPECT_EQ(listCount(both), 12u);
  EXPECT_EQ(listPosition(both), 5u);
  listDispose(both);
  left.clear();
  listForEach(list, note);
  EXPECT_EQ(left.size(), 6u);
  listClear(list);
  EXPECT_EQ(left.size(), 12u);
  EXPECT_EQ(listCurrent(list), nullptr);
  EXPECT_NE(owned(listToArray(list)), nullptr);
}

}  // namespace
