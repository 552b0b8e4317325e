#include "truetype/list.h"

#include <gmock/gmock.h>

#include <vector>

#include "tests/support/font_image.h"

namespace {

using namespace ulm::truetype;
using testing::ElementsAre;
using ulm::test::owned;

int* number(int value) {
  static int numbers[10];
  return numbers + value;
}

std::vector<long> items(const TTList* list) {
  std::vector<long> found;
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
  EXPECT_EQ(listFirst(list), 0);
  EXPECT_EQ(listNext(list), 0);
  EXPECT_EQ(listCurrent(list), nullptr);
  EXPECT_TRUE(listIsEmpty(list));
  EXPECT_FALSE(listAtFirst(list) || listAtLast(list));
  fill(3);
  EXPECT_EQ(listCurrent(list), number(1));  // the first append set it, the others let it be
  EXPECT_TRUE(listAtFirst(list));
  EXPECT_EQ(listFirst(list), 0);
  EXPECT_EQ(listPrevious(list), 0);
  EXPECT_EQ(listLast(list), 1);
  EXPECT_EQ(listPosition(list), 2u);
  EXPECT_EQ(listNext(list), 0);
  EXPECT_TRUE(listAtLast(list));
  EXPECT_EQ(listPrevious(list), 1);
  EXPECT_EQ(listSeek(list, number(9)), 0);
  EXPECT_EQ(listPosition(list), 1u);
  listAppend(list, number(1));
  EXPECT_EQ(listSeek(list, number(1)), 1);
  EXPECT_EQ(listPosition(list), 0u);
}

TEST_F(ListTest, InsertsAndRemovesAtTheCursor) {
  listInsertBefore(list, number(2));  // no cursor: appended
  listInsertBefore(list, number(1));
  listInsertAfter(list, number(3));
  EXPECT_EQ(listCurrent(list), number(2));
  EXPECT_THAT(items(list), ElementsAre(1, 2, 3));
  left.clear();
  listSetDestructor(list, note);
  listRemoveCurrent(list);
  EXPECT_EQ(listCurrent(list), number(3));
  listRemoveCurrent(list);
  EXPECT_EQ(listCurrent(list), number(1));
  listRemoveCurrent(list);
  EXPECT_EQ(listCurrent(list), nullptr);
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
