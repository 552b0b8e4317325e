// A small application: the objects that QlHostApp shows its add-ons.
#include <array>
#include <cstdint>
#include <string>
#include <typeinfo>
#include <vector>

#include "core/iface/app.h"
#include "core/iface/host_object.h"
#include "core/iface/iparam.h"
#include "core/type_record.h"
#include "hostsdk/export.h"
#include "hostsdk/qlcore/variant.h"
#include "module/glue/exceptions.h"
#include "module/glue/instance.h"
#include "standin/hostapp/control.h"
#include "standin/win32/stand_in.h"

namespace {

struct Entry {
  std::string key;
  std::string value;
  int tag;
};

// Calls come from the host's thread, one at a time: nothing here is guarded.
std::array<std::int64_t, 3> held{};
std::array<bool, 3> present{true, true, true};
bool recordTaken = false;
std::vector<Entry> record;
std::array<std::string, 2> productStrings;
std::size_t publishCount = 0;
bool keepsRecord = false;
IParam* keptRecord = nullptr;

void dropRecord() {
  if (keptRecord != nullptr) keptRecord->Release();
  keptRecord = nullptr;
}
HostAppCall throwCall = HostAppCall::None;

void refuse(HostAppCall call) {
  if (call == throwCall) throw CXException(7);
}

std::size_t placeOf(HostAppObject object) { return static_cast<std::size_t>(object); }

// One object of the application: it lives as long as the library and counts what others hold of it.
template <class Interface, HostAppObject Which>
class AppObject : public Interface {
 public:
  std::uint32_t AddRef() override { return static_cast<std::uint32_t>(++held[placeOf(Which)] + 1); }
  std::uint32_t Release() override {
    constexpr const char* kLines[] = {"release IApp", "release IAppExterior",
                                      "release IHostProductInfo"};
    ulmWin32LogCall(kLines[placeOf(Which)]);
    return static_cast<std::uint32_t>(--held[placeOf(Which)] + 1);
  }
  std::int32_t QueryInterface(const std::type_info& wanted, void** outObject) override {
    const bool own =
        Iface_SameRecord(wanted, typeid(IQLUnknown)) || Iface_SameRecord(wanted, typeid(Interface));
    if (!own) return queryNext(wanted, outObject);
    return handOut(this, outObject);
  }

 protected:
  ~AppObject() = default;

  // Asks the object behind this one; nothing is there by default.
  virtual std::int32_t queryNext(const std::type_info& /*wanted*/, void** outObject) {
    if (outObject != nullptr) *outObject = nullptr;
    return 0;
  }
  template <class Other>
  static std::int32_t handOut(Other* object, void** outObject) {
    if (outObject != nullptr) {
      *outObject = object;
      object->AddRef();
    }
    return 1;
  }
};

std::string toUtf8(const wchar_t* text) {
  const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  std::string made(size > 0 ? static_cast<std::size_t>(size) : 1, '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, -1, made.data(), size, nullptr, nullptr);
  made.pop_back();
  return made;
}

std::string textOf(const CQLVariant& value) {
  if (value.tag == kQLWideString)
    return value.value.wideString ? toUtf8(value.value.wideString) : "";
  if (value.tag == kQLString) return value.value.string != nullptr ? value.value.string : "";
  return std::to_string(static_cast<int>(value));
}

class ProductInfo final : public AppObject<IHostProductInfo, HostAppObject::ProductInfo> {
 public:
  std::int32_t hostOperation1() override { return 0; }
  std::int32_t hostOperation2() override { return 0; }
  std::int32_t hostOperation3() override { return 0; }
  std::int32_t hostOperation4() override { return 0; }
  std::int32_t hostOperation5() override { return 0; }
  std::int32_t hostOperation6() override { return 0; }
  std::int32_t hostOperation7() override { return 0; }

  std::int32_t publishRecord(const char* vendor, const char* product, IParam* param) override {
    ulmWin32LogCall("publishRecord");
    refuse(HostAppCall::Publish);
    std::vector<Entry> taken;
    for (std::uint32_t i = 0; i < param->GetCount(); ++i) {
      CQLVariant value;
      param->GetValue(param->GetKey(i), &value);
      taken.push_back({param->GetKey(i), textOf(value), value.tag});
    }
    record = std::move(taken);
    recordTaken = true;
    productStrings = {vendor, product};
    ++publishCount;
    dropRecord();
    if (keepsRecord) {
      param->AddRef();
      keptRecord = param;
    }
    return 1;
  }
};
ProductInfo productInfo;

class Exterior final : public AppObject<IAppExterior, HostAppObject::Exterior> {
  std::int32_t queryNext(const std::type_info& wanted, void** outObject) override {
    refuse(HostAppCall::QueryExterior);
    const bool asked = Iface_SameRecord(wanted, typeid(IHostProductInfo));
    if (!asked || !present[placeOf(HostAppObject::ProductInfo)]) {
      return AppObject::queryNext(wanted, outObject);
    }
    return handOut<IHostProductInfo>(&productInfo, outObject);
  }
};
Exterior exterior;

class App final : public AppObject<IApp, HostAppObject::App> {
  std::int32_t queryNext(const std::type_info& wanted, void** outObject) override {
    refuse(HostAppCall::QueryApp);
    const bool asked = Iface_SameRecord(wanted, typeid(IAppExterior));
    if (!asked || !present[placeOf(HostAppObject::Exterior)]) {
      return AppObject::queryNext(wanted, outObject);
    }
    return handOut<IAppExterior>(&exterior, outObject);
  }
};
App app;

class HostObject final : public IHostObject {
  void* hostOperation01() override { return nullptr; }
  void* hostOperation02() override { return nullptr; }
  void* hostOperation03() override { return nullptr; }
  void* hostOperation04() override { return nullptr; }
  void* hostOperation05() override { return nullptr; }
  void* hostOperation06() override { return nullptr; }
  void* hostOperation07() override { return nullptr; }
  void* hostOperation08() override { return nullptr; }
  void* hostOperation09() override { return nullptr; }
  void* hostOperation10() override { return nullptr; }
  void* hostOperation11() override { return nullptr; }
  void* hostOperation12() override { return nullptr; }
  void* hostOperation13() override { return nullptr; }
  void* hostOperation14() override { return nullptr; }
  void* hostOperation15() override { return nullptr; }
  void* hostOperation16() override { return nullptr; }
  void* hostOperation17() override { return nullptr; }
  void* hostOperation18() override { return nullptr; }
  void* hostOperation19() override { return nullptr; }
  // A window is known by a number here. NOLINTNEXTLINE(performance-no-int-to-ptr)
  void* mainWindow() override { return reinterpret_cast<void*>(kHostAppMainWindow); }
};
HostObject hostObject;

IHostObject* giveHostObject() { return &hostObject; }

const HostAppControl kControl = {
    [] { return recordTaken ? static_cast<std::ptrdiff_t>(record.size()) : -1; },
    [](std::size_t index) { return index < record.size() ? record[index].key.c_str() : nullptr; },
    [](std::size_t index) { return index < record.size() ? record[index].value.c_str() : nullptr; },
    [](std::size_t index) { return index < record.size() ? record[index].tag : 0; },
    [](int which) { return productStrings[which != 0 ? 1 : 0].c_str(); },
    [] { return publishCount; },
    [](HostAppObject object) { return held[placeOf(object)]; },
    [](HostAppObject object, bool isPresent) { present[placeOf(object)] = isPresent; },
    [](bool keep) {
      keepsRecord = keep;
      if (!keep) dropRecord();
    },
    [](HostAppCall call) { throwCall = call; },
};

}  // namespace

extern "C" ULM_EXPORT IApp* GetApp() {
  refuse(HostAppCall::GetApp);
  if (!present[placeOf(HostAppObject::App)]) return nullptr;
  app.AddRef();
  return &app;
}

extern "C" ULM_EXPORT HINSTANCE GetMainDllInstanceEx() { return Module_GetInstance(); }

// The function behind a selector: 2 gives the host object, any other nothing.
extern "C" ULM_EXPORT void* get_host_funcptr(int selector) {
  return selector == 2 ? reinterpret_cast<void*>(&giveHostObject) : nullptr;
}

extern "C" ULM_EXPORT const HostAppControl* hostAppControl() { return &kControl; }
