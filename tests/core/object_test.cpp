// The object model: queries, counts, the order of the tables, and objects of two real libraries.
#include <gtest/gtest.h>

#include "core/cql_unknown_impl.h"
#include "core/iface/app.h"
#include "core/iface/host_object.h"
#include "core/iface/iparam.h"
#include "core/iface_holder.h"
#include "core/query_checked.h"
#include "module/glue/exceptions.h"
#include "module/glue/instance.h"
#include "platform/hostcmd/lang_engine_man.h"
#include "platform/odrx/alloc_control.h"
#include "platform/odrx/rx_object.h"
#include "platform/win32/stand_in.h"
#include "tests/core/thing.h"
#include "tests/support/table_place.h"

namespace {

const ThingLibrary& library(const wchar_t* name) {
  const HMODULE module = LoadLibraryW(name);
  return *reinterpret_cast<ThingLibraryEntry*>(
      reinterpret_cast<void (*)()>(GetProcAddress(module, "thingLibrary")))();
}

TEST(Object, LibrariesWithRecordsOfTheirOwnFindEachOther) {
  const ThingLibrary& first = library(L"first_things.dll");
  const ThingLibrary& second = library(L"second_things.dll");
  ASSERT_NE(first.record, second.record) << "the libraries share a record: nothing is shown";
  IQLUnknown* const object = first.make(7);
  EXPECT_EQ(second.numberOf(object), 7);
  EXPECT_EQ(first.numberOf(object), 7);
  EXPECT_EQ(object->QueryInterface(typeid(IThing), nullptr), 1);
  try {
    second.askForMissing(object);
    FAIL() << "nothing was raised";
  } catch (const CXException& error) {
    EXPECT_EQ(error.GetCode(), 10u);
    EXPECT_EQ(error.GetModule(), GetModuleHandleW(L"second_things.dll"));
    EXPECT_STREQ(dynamic_cast<const CXIFaceException&>(error).GetInterface().name(),
                 typeid(IMissing).name());
  }
  EXPECT_EQ(object->Release(), 0u);
  EXPECT_EQ(first.liveThings(), 0);
}

TEST(Object, QueriesAndCounts) {
  const OdrxAllocCounts before = odrxAllocCounts();
  IQLUnknown* const object = library(L"first_things.dll").make(3);
  EXPECT_EQ(object->AddRef(), 2u);
  EXPECT_EQ(object->Release(), 1u);

  void* found = nullptr;
  EXPECT_EQ(object->QueryInterface(typeid(IQLUnknown), &found), 1);  // adds a reference
  EXPECT_EQ(found, object);
  EXPECT_EQ(object->QueryInterface(typeid(IThing), nullptr), 1);  // adds none
  EXPECT_EQ(object->QueryInterface(typeid(IMissing), nullptr), 0);
  EXPECT_EQ(object->QueryInterface(typeid(IMissing), &found), 0);
  EXPECT_EQ(found, nullptr);
  EXPECT_EQ(object->Release(), 1u);

  EXPECT_EQ(Iface_QueryChecked<IMissing>(object, false), nullptr);
  EXPECT_EQ(Iface_QueryChecked<IThing>(nullptr, false), nullptr);
  EXPECT_THROW(Iface_QueryChecked<IThing>(nullptr, true), CXIFaceException);
  {
    IfaceHolder<IThing> held(Iface_QueryChecked<IThing>(object, true));
    IfaceHolder<IThing> moved(std::move(held));
    EXPECT_FALSE(held);  // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(object->AddRef(), 3u);
    object->Release();
    held = std::move(moved);
  }
  EXPECT_EQ(object->Release(), 0u);
  EXPECT_EQ(odrxAllocCounts().liveBlocks, before.liveBlocks);
}

// Counts how its bodies are reached.
class Bodies final : public CQLUnknownImpl<IThing> {
 public:
  int Number() override { return bodies; }
  int Twice() override { return 0; }
  std::uint32_t AddRefBody() override { return static_cast<std::uint32_t>(bodies += 1); }
  std::uint32_t ReleaseBody() override { return static_cast<std::uint32_t>(bodies += 10); }
  std::int32_t QueryInterfaceBody(const std::type_info&, void**) override { return bodies += 100; }
  int bodies = 0;
};

TEST(Object, EntriesForwardToTheBodies) {
  Bodies object;
  IQLUnknown& entries = object;
  EXPECT_EQ(entries.AddRef(), 1u);
  EXPECT_EQ(entries.Release(), 11u);
  EXPECT_EQ(entries.QueryInterface(typeid(IThing), nullptr), 111);
}

TEST(Object, TablesKeepTheirOrder) {
  using ulm::test::tablePlace;
  using Impl = CQLUnknownImpl<IThing>;
  const std::size_t places[] = {tablePlace(&Impl::AddRef),
                                tablePlace(&Impl::Release),
                                tablePlace(&Impl::QueryInterface),
                                tablePlace(&Impl::Number),
                                tablePlace(&Impl::Twice), /* the destructor: 5 and 6 */
                                tablePlace(&Impl::AddRefBody),
                                tablePlace(&Impl::ReleaseBody),
                                tablePlace(&Impl::QueryInterfaceBody)};
  const std::size_t expected[] = {0, 1, 2, 3, 4, 7, 8, 9};
  for (std::size_t i = 0; i < std::size(expected); ++i) EXPECT_EQ(places[i], expected[i]) << i;

  EXPECT_EQ(tablePlace(&IParam::GetValue), 3u + 5);
  EXPECT_EQ(tablePlace(&IParam::SetValue), 3u + 6);
  EXPECT_EQ(tablePlace(&IHostProductInfo::publishRecord), 3u + 7);
  EXPECT_EQ(tablePlace(&IHostObject::mainWindow), 19u);
  EXPECT_EQ(tablePlace(&hostLangEngineMan::loadModule), 4u);
  EXPECT_EQ(tablePlace(&CXException::GetCode), 2u);
  EXPECT_EQ(tablePlace(&CXException::Reserved), 3u);

  const std::size_t module[] = {
      tablePlace(&OdRxModule::queryX),       tablePlace(&OdRxModule::x),
      tablePlace(&OdRxModule::isA),          tablePlace(&OdRxModule::addRef),
      tablePlace(&OdRxModule::release),      tablePlace(&OdRxModule::numRefs),
      tablePlace(&OdRxModule::clone),        tablePlace(&OdRxModule::copyFrom),
      tablePlace(&OdRxModule::comparedTo),   tablePlace(&OdRxModule::isEqualTo),
      tablePlace(&OdRxModule::moduleHandle), tablePlace(&OdRxModule::finalRelease),
      tablePlace(&OdRxModule::initApp),      tablePlace(&OdRxModule::uninitApp),
      tablePlace(&OdRxModule::modulePath)};
  for (std::size_t i = 0; i < std::size(module); ++i) EXPECT_EQ(module[i], 2 + i);
}

TEST(Object, ExceptionsDoNothingInTheThirdOperation) {
  const CXIFaceException missing(typeid(IThing));
  const CXException& base = missing;
  base.Reserved();
  EXPECT_EQ(base.GetCode(), CXIFaceException::kCode);
  EXPECT_EQ(CXException(77).GetCode(), 77u);
  EXPECT_EQ(base.GetModule(), Module_GetInstance());
}

}  // namespace
