// The list of strings and its enumerators.
#include <gtest/gtest.h>

#include <cstdint>
#include <new>
#include <string>
#include <vector>

#include "core/list.h"
#include "platform/odrx/alloc_control.h"
#include "tests/support/table_place.h"

namespace {

using List = CTListEnum<const char*, const char*>;
using Strings = std::vector<std::string>;

// A list with its one reference, released at the end.
struct ListHolder {
  List* list = ulm::glue::makeObject<List>();
  explicit ListHolder(const Strings& strings = {}) {
    for (const std::string& text : strings) list->AddTail(text.c_str());
  }
  ~ListHolder() { list->Release(); }
  List* operator->() const { return list; }
};

Strings fetch(CTEnum<const char*>* over, std::uint32_t count) {
  std::vector<const char*> values(count + 1, "untouched");
  std::uint32_t fetched = 99;
  const std::int32_t any = over->Next(count, values.data(), &fetched);
  EXPECT_LE(fetched, count);
  EXPECT_EQ(any != 0, fetched != 0);
  EXPECT_STREQ(values[fetched], "untouched");
  return {values.begin(), values.begin() + fetched};
}

TEST(List, ChainIsACircleInTheOrderOfAdding) {
  for (std::uint32_t size = 0; size < 5; ++size) {
    CTPList<const char*> list;
    std::vector<COListNode*> nodes;
    char text[] = "0";
    for (std::uint32_t i = 0; i < size; ++i, ++text[0]) {
      nodes.push_back(list.AddTail(text));
      ASSERT_NE(nodes.back(), nullptr);
    }
    ASSERT_EQ(list.GetCount(), size);
    EXPECT_EQ(list.GetHead(), size != 0 ? nodes.front() : nullptr);
    EXPECT_EQ(list.GetTail(), size != 0 ? nodes.back() : nullptr);
    for (std::uint32_t i = 0; i < size; ++i) {
      EXPECT_EQ(nodes[i]->next, nodes[(i + 1) % size]);
      EXPECT_EQ(nodes[i]->previous, nodes[(i + size - 1) % size]);
      // Copies: the text has gone on since.
      EXPECT_EQ(static_cast<CTPList<const char*>::Node*>(nodes[i])->value[0],
                static_cast<char>('0' + i));
    }
  }
}

// Any mixture of fetching, skipping and going back walks as over a plain array.
TEST(ListEnumerator, WalksAsOverAnArray) {
  for (std::size_t size = 0; size < 4; ++size) {
    Strings strings;
    for (std::size_t i = 0; i < size; ++i)
      strings.push_back(std::string(1, static_cast<char>('a' + i)));
    const ListHolder list(strings);
    for (unsigned walk = 0; walk < 4096; ++walk) {  // four steps of eight kinds
      CTEnum<const char*>* const over = list->GetEnum();
      std::size_t at = 0;
      for (unsigned step = walk, n = 0; n < 4; step /= 8, ++n) {
        const std::uint32_t count = step % 4;
        if (step % 8 == 7) {
          over->Reset();
          at = 0;
        } else if (step % 8 < 4) {
          const std::size_t end = std::min<std::size_t>(size, at + count);
          ASSERT_EQ(fetch(over, count),
                    Strings(strings.begin() + static_cast<std::ptrdiff_t>(at),
                            strings.begin() + static_cast<std::ptrdiff_t>(end)));
          at = end;
        } else {
          at = std::min<std::size_t>(size, at + count);
          ASSERT_EQ(over->Skip(count) != 0, at < size);
        }
      }
      over->Release();
    }
  }
}

TEST(ListEnumerator, EdgesOfAWalk) {
  const ListHolder list({"a", "b"});
  CTEnum<const char*>* const over = list->GetEnum();
  std::uint32_t fetched = 9;
  EXPECT_EQ(over->Next(5, nullptr, &fetched), 0);
  EXPECT_EQ(fetched, 0u);
  const char* value = nullptr;
  EXPECT_NE(over->Next(1, &value, nullptr), 0);
  EXPECT_STREQ(value, "a");
  EXPECT_EQ(over->Skip(UINT32_MAX), 0);
  list->AddTail("c");
  EXPECT_EQ(fetch(over, 3), Strings{}) << "behind the tail only a reset helps";
  over->Reset();
  EXPECT_EQ(fetch(over, 9), (Strings{"a", "b", "c"}));
  over->Release();
}

TEST(ListEnumerator, KeepsItsListAlive) {
  const OdrxAllocCounts before = odrxAllocCounts();
  auto* list = ulm::glue::makeObject<List>();
  list->AddTail("kept");
  auto* first = list->GetEnum();
  auto* second = list->GetEnum();
  EXPECT_EQ(first->AddRef(), 2u);
  EXPECT_EQ(list->AddRef(), 5u);  // the creator's, three of the enumerators', this one
  EXPECT_EQ(list->Release(), 4u);
  EXPECT_EQ(list->Release(), 3u);  // the creator is gone
  EXPECT_EQ(first->Release(), 1u);
  EXPECT_EQ(first->Release(), 0u);
  EXPECT_EQ(fetch(second, 1), Strings{"kept"});
  void* found = nullptr;
  EXPECT_EQ(second->QueryInterface(typeid(CTEnum<const char*>), &found), 1);
  EXPECT_EQ(static_cast<CTEnum<const char*>*>(found)->Release(), 1u);
  EXPECT_EQ(second->QueryInterface(typeid(List), nullptr), 0);
  EXPECT_EQ(second->Release(), 0u);
  EXPECT_EQ(odrxAllocCounts().liveBlocks, before.liveBlocks);
}

TEST(List, ClosingRefuses) {
  struct Closable : List {
    using List::Close;
  } list;
  list.AddTail("one");
  list.Close();
  EXPECT_EQ(list.GetCount(), 0u);
  EXPECT_EQ(list.GetHead(), nullptr);
  EXPECT_EQ(list.AddTail("two"), nullptr);
  EXPECT_EQ(list.GetEnum(), nullptr);
  EXPECT_EQ(list.GetCount(), 0u);
}

TEST(List, MemoryThatRunsOutChangesNothing) {
  for (const bool handler : {false, true}) {
    std::set_new_handler(handler ? [] {} : std::new_handler{});
    const ListHolder list({"a"});
    const std::uint64_t live = odrxAllocCounts().liveBlocks;
    for (std::uint64_t n = 0; n < 2; ++n) {  // the string, the node
      odrxAllocFail(n, 1);
      if (handler) {
        EXPECT_EQ(list->AddTail("b"), nullptr);
      } else {
        EXPECT_THROW(list->AddTail("b"), std::bad_alloc);
      }
    }
    odrxAllocFail(0, 1);
    if (handler) {
      EXPECT_EQ(list->GetEnum(), nullptr);
    } else {
      EXPECT_THROW(list->GetEnum(), std::bad_alloc);
    }
    odrxAllocFail(0, 0);
    EXPECT_EQ(list->GetCount(), 1u);
    EXPECT_EQ(odrxAllocCounts().liveBlocks, live);
    EXPECT_EQ(list->AddRef(), 2u);  // no reference was left behind
    list->Release();
  }
  std::set_new_handler(nullptr);
}

TEST(List, LayoutAndTables) {
  using ulm::test::tablePlace;
  EXPECT_EQ(sizeof(COList), 8 + 2 * sizeof(void*));
  EXPECT_EQ(sizeof(CTPList<const char*>), sizeof(void*) + sizeof(CTList<_CTListPlex<const char*>>));
  EXPECT_EQ(tablePlace(&CTEnum<const char*>::Next), 3u);
  EXPECT_EQ(tablePlace(&CTEnum<const char*>::Skip), 4u);
  EXPECT_EQ(tablePlace(&CTEnum<const char*>::Reset), 5u);
  const CTPList<const char*> list;
  EXPECT_EQ(list.GetHeap(), Mem_DefaultHeap(0));
  struct Plain : COList {
  } plain;
  _CTListPlex<int> first{{nullptr, nullptr}, 1}, second{{nullptr, nullptr}, 2};
  EXPECT_EQ(plain.AddTail(&first), &first);
  EXPECT_EQ(plain.AddTail(&second), &second);
  EXPECT_TRUE(first.next == &second && second.next == &first && plain.GetCount() == 2);
}

}  // namespace
