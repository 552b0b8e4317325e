// The module's objects and the stand-in core library when memory runs out. The library as a whole
// has sweeps in module_probe.
#include <new>

#include "core/list.h"
#include "core/param_value.h"
#include "core/wide_text.h"
#include "standin/qlcore/control.h"
#include "tests/memory/memory_rows.h"
#include "tests/support/runtime_heap.h"

namespace {

using namespace ulm::test;
using List = CTListEnum<const char*, const char*>;

struct Released {
  void operator()(IQLUnknown* object) const { object->Release(); }
};
template <class T>
using Held = std::unique_ptr<T, Released>;

Held<IParam> oneText() {
  Held<IParam> set(new_MemParam());
  Param_SetValue(set.get(), "key", "before");
  return set;
}

// A row for an operation on a set with one text. Without memory the set and the two targets keep
// their values.
template <class Operation>
MemoryRow onSet(const char* name, Operation operation) {
  return {name, [operation](FailingMemory& memory) {
            const Held<IParam> set = oneText();
            CXString text("old");
            CQLVariant variant(5, kQLInt);
            const bool whole = memory.run([&] {
              operation(set.get(), text, variant);
              return true;
            });
            CXString stored;
            Param_GetValue(set.get(), "key", stored);
            return whole || (set->GetCount() == 1 && stored.Compare("before") == 0 &&
                             text.Compare("old") == 0 && variant.value.whole == 5);
          }};
}

TEST(HostMemory, ListsAndSets) {
  const Held<List> list(ulm::glue::makeObject<List>());
  const auto nothing = [](const char* name, std::uint64_t allocations, auto operation) {
    return MemoryRow{name,
                     [operation](FailingMemory& memory) { return memory.run(operation), true; },
                     allocations};
  };
  using Variant = CQLVariant;
  const std::vector<MemoryRow> rows = {
      nothing("makeObject", 1, [] { return Held<List>(ulm::glue::makeObject<List>()) != nullptr; }),
      {"AddTail",
       [](FailingMemory& memory) {
         const Held<List> added(ulm::glue::makeObject<List>());
         const bool whole = memory.run([&] { return added->AddTail("b") != nullptr; });
         return added->GetCount() == (whole ? 1u : 0u) && (added->GetHead() != nullptr) == whole;
       },
       2},
      {"GetEnum",
       [&](FailingMemory& memory) {
         memory.run([&] { return Held<CTEnum<const char*>>(list->GetEnum()) != nullptr; });
         const std::uint32_t references = list->AddRef();
         return list->Release() == 1 && references == 2;  // none was leaked
       },
       1},
      {"WideText",
       [](FailingMemory& memory) {
         ulm::core::WideText text("one");
         const bool whole = memory.run([&] { return (text = "two").get() != nullptr; });
         return (text.get() != nullptr) == whole;
       },
       1},
      onSet("Param_SetValue",
            [](IParam* set, CXString&, Variant&) { Param_SetValue(set, "key", "after"); }),
      onSet("Param_SetValue, wide",
            [](IParam* set, CXString&, Variant&) { Param_SetValue(set, "key", L"after"); }),
      onSet(
          "Param_SetValue, string",
          [](IParam* set, CXString&, Variant&) { Param_SetValue(set, "new", CXString("after")); }),
      onSet("Param_SetValue, number",
            [](IParam* set, CXString&, Variant&) { Param_SetValue(set, "new", 7); }),
      onSet("Param_GetValue",
            [](IParam* set, CXString& text, Variant&) { Param_GetValue(set, "key", text); }),
      onSet("Param_GetValue, variant",
            [](IParam* set, CXString&, Variant& variant) { Param_GetValue(set, "key", variant); }),
      onSet("BindFromValue",
            [](IParam*, CXString&, Variant& variant) { variant.BindFromValue(kQLString, "text"); }),
      nothing("new_MemParam", 1, [] { return Held<IParam>(new_MemParam()) != nullptr; })};
  failEachOf(kRuntimeHeap, rows);
  // With a new-handler the module's own objects return null and raise nothing.
  std::set_new_handler([] {});
  failEachOf(kRuntimeHeap, {rows.begin(), rows.begin() + 4});
  std::set_new_handler(nullptr);
  EXPECT_EQ(qlcoreHeldParams(), 0);
}

}  // namespace
