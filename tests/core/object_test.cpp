// The object model: queries, counts, and objects of two real libraries.
#include <gtest/gtest.h>

#include "core/cql_unknown_impl.h"
#include "core/iface/iparam.h"
#include "core/iface/lang_engine_man.h"
#include "core/interface_query.h"
#include "core/string_number.h"
#include "hostsdk/odrx/rx_object.h"
#include "hostsdk/qlcore/services.h"
#include "module/glue/exceptions.h"
#include "standin/odrx/alloc_control.h"
#include "standin/win32/stand_in.h"
#include "tests/core/thing.h"

namespace {

const ThingLibrary& library(const wchar_t* name) {
  const HMODULE module = LoadLibraryW(name);
  return *reinterpret_cast<ThingLibraryEntry*>(
      reinterpret_cast<void (*)()>(GetProcAddress(module, "thingLibrary")))();
}

TEST(Object, IsFoundByLibrariesWithRecordsOfTheirOwn) {
  const OdrxAllocCounts before = odrxAllocCounts();
  const ThingLibrary& first = library(L"first_things.dll");
  const ThingLibrary& second = library(L"second_things.dll");
  ASSERT_NE(first.record, second.record) << "the libraries share a record: nothing is shown";
  IQLUnknown* const object = first.make(7);
  EXPECT_EQ(second.numberOf(object), 7);
  EXPECT_EQ(first.numberOf(object), 7);
  try {
    second.numberOf(IfaceHolder<IParam>(new_MemParam()).get());
    FAIL() << "nothing was raised";
  } catch (const CXIFaceException& error) {
    const CXException& base = error;
    base.Reserved();  // does nothing
    EXPECT_EQ(base.GetCode(), 10u);
    EXPECT_EQ(base.GetModule(), GetModuleHandleW(L"second_things.dll"));
    EXPECT_STREQ(error.GetInterface().name(), typeid(IThing).name());
  }

  void* found = nullptr;
  EXPECT_EQ(object->QueryInterface(typeid(IQLUnknown), &found), 1);  // adds a reference
  EXPECT_EQ(found, object);
  EXPECT_EQ(object->QueryInterface(typeid(IThing), nullptr), 1);  // adds none
  EXPECT_EQ(object->QueryInterface(typeid(IParam), nullptr), 0);
  EXPECT_EQ(object->QueryInterface(typeid(IParam), &found), 0);
  EXPECT_EQ(found, nullptr);
  EXPECT_EQ(object->Release(), 1u);

  EXPECT_EQ(Iface_QueryChecked<IParam>(object, false), nullptr);
  EXPECT_EQ(Iface_QueryChecked<IThing>(nullptr, false), nullptr);
  EXPECT_THROW(Iface_QueryChecked<IThing>(nullptr, true), CXIFaceException);
  {
    IfaceHolder<IThing> held(Iface_QueryChecked<IThing>(object, true));
    IfaceHolder<IThing> moved(std::move(held));
    EXPECT_FALSE(held);  // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(object->AddRef(), 3u);
    EXPECT_EQ(object->Release(), 2u);
    held = IfaceHolder<IThing>(Iface_QueryChecked<IThing>(object, true));
    EXPECT_EQ(object->AddRef(), 4u);
    held = std::move(moved);  // over a reference, which goes back
    EXPECT_EQ(object->Release(), 2u);
  }
  EXPECT_EQ(object->Release(), 0u);
  EXPECT_EQ(odrxAllocCounts().liveBlocks, before.liveBlocks);
}

TEST(Object, LibrariesLoadStringsOfTheirOwn) {
  EXPECT_STREQ(CXStringW(UINT{40}).text, L"f\u00FCnf!");
  EXPECT_STREQ(library(L"first_things.dll").string(40).text, L"things");
}

TEST(Object, EntriesForwardToTheBodies) {
  struct Bodies final : CQLUnknownImpl<IThing> {
    int Number() override { return 0; }
    std::uint32_t AddRefBody() override { return 10; }
    std::uint32_t ReleaseBody() override { return 20; }
    std::int32_t QueryInterfaceBody(const std::type_info&, void**) override { return 30; }
  } object;
  IQLUnknown& entries = object;
  EXPECT_TRUE(entries.AddRef() == 10 && entries.Release() == 20);
  EXPECT_EQ(entries.QueryInterface(typeid(IThing), nullptr), 30);
}

}  // namespace
