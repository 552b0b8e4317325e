// The layout that a separately built host relies on: the decorated names of classes, their sizes,
// the order of their virtual operations and of their fields.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <typeinfo>

#include "core/cql_unknown_impl.h"
#include "core/iface/app.h"
#include "core/iface/host_object.h"
#include "core/iface/iparam.h"
#include "core/iface/lang_engine_man.h"
#include "core/list.h"
#include "hostsdk/qlcore/variant.h"
#include "module/glue/exceptions.h"
#include "module/glue/instance.h"
#include "module/main_module.h"
#include "tests/support/table_place.h"

namespace {

static_assert(sizeof(void*) == 8, "sizes and offsets below are those of 64-bit systems");

using Enum = CTEnum<const char*>;
using EnumImpl = CQLUnknownImpl<Enum>;
using Impl = CQLUnknownImpl<IQLUnknown>;
using List = CTListEnum<const char*, const char*>;
using PlainList = CTPList<const char*>;
using ListEnum = _CListEnum<const char*, const char*>;

struct Shape {
  const std::type_info& record;
  const char* decoratedName;
  std::size_t size;
  std::size_t foundSize;
};
template <class T>
Shape shape(const char* decoratedName, std::size_t size) {
  return {typeid(T), decoratedName, size, sizeof(T)};
}

TEST(Layout, NamesAndSizes) {
  const Shape shapes[] = {
      shape<IQLUnknown>("10IQLUnknown", 8),
      shape<IApp>("4IApp", 8),
      shape<IAppExterior>("12IAppExterior", 8),
      shape<IHostProductInfo>("16IHostProductInfo", 8),
      shape<IParam>("6IParam", 8),
      shape<IHostObject>("11IHostObject", 8),
      shape<hostLangEngineMan>("17hostLangEngineMan", 8),
      shape<Impl>("14CQLUnknownImplI10IQLUnknownE", 16),
      shape<CXException>("11CXException", 24),
      shape<CXIFaceException>("16CXIFaceException", 32),
      shape<CXString>("8CXString", 16),
      shape<CXStringW>("9CXStringW", 16),
      shape<OdRxModule>("10OdRxModule", 8),
      shape<ULMMainModule>("13ULMMainModule", 8),
      shape<ULMMainModuleObject>("15OdRxWin32ModuleI13ULMMainModuleS0_E", 24),
      shape<_CTListPlex<const char*>>("11_CTListPlexIPKcE", 24),
      shape<COList>("6COList", 24),
      shape<PlainList>("7CTPListIPKcE", 48),
      shape<List>("10CTListEnumIPKcS1_E", 64),
      shape<Enum>("6CTEnumIPKcE", 8),
      shape<EnumImpl>("14CQLUnknownImplI6CTEnumIPKcEE", 16),
      shape<ListEnum>("10_CListEnumIPKcS1_E", 40),
  };
  for (const Shape& tested : shapes) {
    EXPECT_STREQ(tested.record.name(), tested.decoratedName);
    EXPECT_EQ(tested.foundSize, tested.size) << tested.decoratedName;
  }
}

// The operations that a derived class adds follow directly after those of its base.
template <class T>
struct Extended : T {
  virtual void first() = 0;

 protected:
  ~Extended() = default;
};

// Returns true if the operations have consecutive entries in the table of T from `index` to its
// end.
template <class T, class... Members>
bool endsWith(std::size_t index, Members... members) {
  return ulm::test::inTableOrder(index, members..., &Extended<T>::first);
}

TEST(Layout, VirtualTables) {
  using Object = ULMMainModuleObject;
  EXPECT_TRUE(endsWith<IApp>(0, &IApp::AddRef, &IApp::Release, &IApp::QueryInterface));
  EXPECT_TRUE(endsWith<IAppExterior>(3));
  EXPECT_TRUE(endsWith<IHostProductInfo>(3 + 7, &IHostProductInfo::publishRecord));
  EXPECT_TRUE(endsWith<IParam>(3 + 5, &IParam::GetValue, &IParam::SetValue));
  EXPECT_TRUE(endsWith<IHostObject>(19, &IHostObject::mainWindow));
  EXPECT_TRUE(endsWith<hostLangEngineMan>(4, &hostLangEngineMan::loadModule));
  EXPECT_TRUE(endsWith<Enum>(3, &Enum::Next, &Enum::Skip, &Enum::Reset));
  // A destructor has two entries.
  EXPECT_TRUE(endsWith<EnumImpl>(3 + 3 + 2, &EnumImpl::AddRefBody, &EnumImpl::ReleaseBody,
                                 &EnumImpl::QueryInterfaceBody));
  EXPECT_TRUE(endsWith<CXException>(2, &CXException::GetCode, &CXException::Reserved));
  EXPECT_TRUE(endsWith<CXIFaceException>(4));
  EXPECT_TRUE(endsWith<Object>(2, &Object::queryX, &Object::x, &Object::isA, &Object::addRef,
                               &Object::release, &Object::numRefs, &Object::clone,
                               &Object::copyFrom, &Object::comparedTo, &Object::isEqualTo,
                               &Object::moduleHandle, &Object::finalRelease, &Object::initApp,
                               &Object::uninitApp, &Object::modulePath));
  EXPECT_TRUE(endsWith<PlainList>(2));
}

// Returns the value at an offset in an object.
template <class T>
T kept(const void* object, std::size_t offset) {
  T value;
  std::memcpy(&value, static_cast<const char*>(object) + offset, sizeof value);
  return value;
}

TEST(Layout, FieldsOfTheModuleObject) {
  const auto instance = reinterpret_cast<HINSTANCE>(0x12345678);
  auto* object = ulm::glue::makeObject<ULMMainModuleObject>(instance);
  EXPECT_EQ(kept<std::int32_t>(object, 8), 0);
  object->release();
  EXPECT_EQ(kept<std::int32_t>(object, 8), -1);
  EXPECT_EQ(kept<HINSTANCE>(object, 16), instance);
  object->finalRelease();
}

TEST(Layout, FieldsOfExceptionsAndStrings) {
  const CXIFaceException missing(typeid(IApp));
  EXPECT_EQ(kept<std::uint32_t>(&missing, 8), 10u);
  EXPECT_EQ(kept<HINSTANCE>(&missing, 16), Module_GetInstance());
  EXPECT_EQ(kept<const std::type_info*>(&missing, 24), &typeid(IApp));
  const CXString narrow("a");
  const CXStringW wide("a");
  EXPECT_EQ(kept<const char*>(&narrow, 8), narrow.text);
  EXPECT_EQ(kept<const wchar_t*>(&wide, 8), wide.text);
  const CQLVariant number(-2, kQLInt);
  EXPECT_EQ(kept<std::uint16_t>(&number, 0), 5u);
  EXPECT_EQ(kept<std::int64_t>(&number, 8), -2);
}

TEST(Layout, FieldsOfListNodeAndEnumerator) {
  struct Closable : List {
    using List::Close;
  } list;
  List::Node* nodes[3];
  for (List::Node*& node : nodes) node = list.AddTail("a");
  EXPECT_EQ(kept<void*>(nodes[0], 0), nodes[1]);
  EXPECT_EQ(kept<void*>(nodes[0], 8), nodes[2]);
  EXPECT_EQ(kept<const char*>(nodes[0], 16), nodes[0]->value);

  auto* walk = list.GetEnum();
  const auto expectWalk = [&](const void* current, std::uint32_t started, std::uint32_t count) {
    EXPECT_EQ(kept<std::uint32_t>(walk, 8), 1u);  // the base's count, which is not used
    EXPECT_EQ(kept<const void*>(walk, 16), current);
    EXPECT_EQ(kept<const void*>(walk, 24), &list);
    EXPECT_EQ(kept<std::uint32_t>(walk, 32), started);
    EXPECT_EQ(kept<std::uint32_t>(walk, 36), count);
  };
  expectWalk(nullptr, 0, 1);
  walk->Skip(1);
  walk->AddRef();
  walk->AddRef();
  expectWalk(nodes[1], 1, 3);

  const auto expectList = [&](std::uint32_t count, const void* head, const void* tail,
                              std::uint32_t closing) {
    EXPECT_EQ(kept<std::uint32_t>(&list, 8), count);
    EXPECT_EQ(kept<const void*>(&list, 16), head);
    EXPECT_EQ(kept<const void*>(&list, 24), tail);
    EXPECT_EQ(kept<const void*>(&list, 32), Mem_DefaultHeap(0));
    EXPECT_EQ(kept<std::uint32_t>(&list, 40), closing);
    EXPECT_EQ(kept<std::uint32_t>(&list, 48 + 8), 4u);  // references: its own, three of the walk's
  };
  expectList(3, nodes[0], nodes[2], 0);
  list.Close();
  expectList(0, nullptr, nullptr, 1);
  while (walk->Release() != 0) {
  }
}

}  // namespace
