// The list of strings and its enumerators.
#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

#include "core/list.h"
#include "standin/odrx/alloc_control.h"

namespace {

using List = CTListEnum<const char*, const char*>;
using Enum = CTEnum<const char*>;

std::string fetch(Enum* over, std::uint32_t count) {
  std::vector<const char*> values(count + 1, "untouched");
  std::uint32_t fetched = 99;
  const bool any = over->Next(count, values.data(), &fetched) != 0;
  EXPECT_EQ(any, fetched != 0);
  std::string text;
  for (std::uint32_t i = 0; i < fetched; ++i) text += values.at(i);
  EXPECT_STREQ(values.at(fetched), "untouched");
  return text;
}

TEST(List, ChainIsACircleInTheOrderOfAdding) {
  for (std::uint32_t size = 0; size < 5; ++size) {
    CTPList<const char*> list;
    std::vector<COListNode*> nodes;
    char text[] = "0";
    for (; nodes.size() < size; ++text[0]) nodes.push_back(list.AddTail(text));
    ASSERT_EQ(list.GetCount(), size);
    EXPECT_EQ(list.GetHead(), size != 0 ? nodes.front() : nullptr);
    EXPECT_EQ(list.GetTail(), size != 0 ? nodes.back() : nullptr);
    for (std::uint32_t i = 0; i < size; ++i) {
      EXPECT_EQ(nodes[i]->next, nodes[(i + 1) % size]);
      EXPECT_EQ(nodes[i]->previous, nodes[(i + size - 1) % size]);
      // The list holds copies, because the text has changed since.
      EXPECT_EQ(static_cast<List::Node*>(nodes[i])->value[0], static_cast<char>('0' + i));
    }
  }
}

// Any sequence of Next, Skip and Reset has the results of the same steps over an array.
TEST(ListEnumerator, WalksAsOverAnArray) {
  auto* list = ulm::glue::makeObject<List>();
  for (const std::string all : {"", "a", "ab", "abc"}) {
    if (!all.empty()) list->AddTail(all.substr(all.size() - 1).c_str());
    for (unsigned walk = 0; walk < 4096; ++walk) {  // four steps of eight kinds
      Enum* const over = list->GetEnum();
      std::size_t at = 0;
      for (unsigned step = walk, n = 0; n < 4; step /= 8, ++n) {
        const std::size_t end = std::min<std::size_t>(all.size(), at + step % 4);
        if (step % 8 < 4) {
          ASSERT_EQ(fetch(over, step % 4), all.substr(at, end - at));
        } else if (step % 8 < 7) {
          ASSERT_EQ(over->Skip(step % 4) != 0, end < all.size());
        } else {
          over->Reset();
        }
        at = step % 8 < 7 ? end : 0;
      }
      over->Release();
    }
  }
  list->Release();
}

TEST(ListEnumerator, WalksToItsEdgesAndKeepsItsListAlive) {
  // Shows a use of a freed node in every build. Volatile, because the compiler removes writes to
  // memory that is freed next.
  odrxAllocWatchFreed([](void* block, std::uint64_t bytes) {
    auto* const first = static_cast<volatile char*>(block);
    for (std::uint64_t at = 0; at < bytes; ++at) first[at] = '\xDD';
  });
  const OdrxAllocCounts before = odrxAllocCounts();
  auto* list = ulm::glue::makeObject<List>();
  list->AddTail("a");
  list->AddTail("b");
  auto* first = list->GetEnum();
  auto* second = list->GetEnum();
  EXPECT_EQ(first->AddRef(), 2u);
  EXPECT_EQ(list->AddRef(), 5u);  // the creator's, three of the enumerators', this one
  EXPECT_EQ(list->Release(), 4u);
  EXPECT_EQ(first->Release(), 1u);
  EXPECT_EQ(first->Release(), 0u);

  std::uint32_t fetched = 9;
  EXPECT_EQ(second->Next(5, nullptr, &fetched), 0);
  EXPECT_EQ(fetched, 0u);
  const char* value = nullptr;
  EXPECT_NE(second->Next(1, &value, nullptr), 0);
  EXPECT_STREQ(value, "a");
  EXPECT_EQ(second->Skip(UINT32_MAX), 0);
  list->AddTail("c");
  EXPECT_EQ(fetch(second, 3), "") << "behind the tail only a reset helps";
  EXPECT_EQ(list->Release(), 1u);  // the creator's reference is released
  second->Reset();
  EXPECT_EQ(fetch(second, 9), "abc");
  void* found = nullptr;
  EXPECT_EQ(second->QueryInterface(typeid(Enum), &found), 1);
  EXPECT_EQ(static_cast<Enum*>(found)->Release(), 1u);
  EXPECT_EQ(second->QueryInterface(typeid(List), nullptr), 0);
  EXPECT_EQ(second->Release(), 0u);
  odrxAllocWatchFreed(nullptr);
  EXPECT_EQ(odrxAllocCounts().liveBlocks, before.liveBlocks);
}

TEST(List, RefusesOnceItCloses) {
  struct Closable : List {
    using List::Close;
  } list;
  EXPECT_EQ(list.GetHeap(), Mem_DefaultHeap(0));
  list.AddTail("one");
  list.Close();
  EXPECT_TRUE(list.AddTail("two") == nullptr && list.GetEnum() == nullptr);
  EXPECT_TRUE(list.GetCount() == 0 && list.GetHead() == nullptr);
}

}  // namespace
