// A small application: the objects that QlHostApp offers to its add-ons.
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
#include "standin/win32/utf8.h"

namespace {

struct RecordField {
  std::string key;
  std::string value;
  int tag;
};

// The host's thread makes all calls, one at a time, so nothing is locked.
std::array<std::int64_t, 3> held{};
std::array<bool, 3> present{true, true, true};
bool recordTaken = false;
std::vector<RecordField> record;
std::array<std::string, 2> productStrings;
std::size_t publishCount = 0;
bool keepsRecord = false;
IParam* keptRecord = nullptr;

void dropRecord() {
  if (keptRecord != nullptr) keptRecord->Release();
  keptRecord = nullptr;
}

HostAppCall throwCall = HostAppCall::None;

void throwIfSelected(HostAppCall call) {
  if (call == throwCall) throw CXException(7);
}

std::size_t indexOf(HostAppObject object) { return static_cast<std::size_t>(object); }

// One object of the application. It exists as long as the library and counts the references of
// others.
template <class Interface, HostAppObject Which>
class AppObject : public Interface {
 public:
  std::uint32_t AddRef() override { return static_cast<std::uint32_t>(++held[indexOf(Which)] + 1); }
  std::uint32_t Release() override {
    constexpr const char* kLines[] = {"release IApp", "release IAppExterior",
                                      "release IHostProductInfo"};
    ulmWin32LogCall(kLines[indexOf(Which)]);
    return static_cast<std::uint32_t>(--held[indexOf(Which)] + 1);
  }
  std::int32_t QueryInterface(const std::type_info& wanted, void** outObject) override {
    if (ulm::core::answerQuery<Interface>(this, wanted, outObject) != 0) return 1;
    return queryNext(wanted, outObject);
  }

 protected:
  ~AppObject() = default;

  // Asks the next object of the chain. *outObject is null already.
  virtual std::int32_t queryNext(const std::type_info& /*wanted*/, void** /*outObject*/) {
    return 0;
  }
};

std::string textOf(const CQLVariant& value) {
  if (value.tag == kQLWideString)
    return value.value.wideString ? ulm::win32::toUtf8(value.value.wideString) : "";
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
    throwIfSelected(HostAppCall::Publish);
    std::vector<RecordField> fields;
    for (std::uint32_t i = 0; i < param->GetCount(); ++i) {
      CQLVariant value;
      param->GetValue(param->GetKey(i), &value);
      fields.push_back({param->GetKey(i), textOf(value), value.tag});
    }
    record = std::move(fields);
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
    throwIfSelected(HostAppCall::QueryExterior);
    if (!present[indexOf(HostAppObject::ProductInfo)]) return 0;
    return ulm::core::answerQuery<IHostProductInfo>(&productInfo, wanted, outObject);
  }
};
Exterior exterior;

class App final : public AppObject<IApp, HostAppObject::App> {
  std::int32_t queryNext(const std::type_info& wanted, void** outObject) override {
    throwIfSelected(HostAppCall::QueryApp);
    if (!present[indexOf(HostAppObject::Exterior)]) return 0;
    return ulm::core::answerQuery<IAppExterior>(&exterior, wanted, outObject);
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
  // The stand-in's window is a number. NOLINTNEXTLINE(performance-no-int-to-ptr)
  void* mainWindow() override { return reinterpret_cast<void*>(kHostAppMainWindow); }
};
HostObject hostObject;

IHostObject* getHostObject() { return &hostObject; }

const HostAppControl kControl = {
    [] { return recordTaken ? static_cast<std::ptrdiff_t>(record.size()) : -1; },
    [](std::size_t index) { return index < record.size() ? record[index].key.c_str() : nullptr; },
    [](std::size_t index) { return index < record.size() ? record[index].value.c_str() : nullptr; },
    [](std::size_t index) { return index < record.size() ? record[index].tag : 0; },
    [](int which) { return productStrings[which != 0 ? 1 : 0].c_str(); },
    [] { return publishCount; },
    [](HostAppObject object) { return held[indexOf(object)]; },
    [](HostAppObject object, bool isPresent) { present[indexOf(object)] = isPresent; },
    [](bool keep) {
      keepsRecord = keep;
      if (!keep) dropRecord();
    },
    [](HostAppCall call) { throwCall = call; },
};

}  // namespace

extern "C" ULM_EXPORT IApp* GetApp() {
  throwIfSelected(HostAppCall::GetApp);
  if (!present[indexOf(HostAppObject::App)]) return nullptr;
  app.AddRef();
  return &app;
}

extern "C" ULM_EXPORT HINSTANCE GetMainDllInstanceEx() { return Module_GetInstance(); }

// Returns the function for a selector: 2 is the one that returns the host object; null for any
// other.
extern "C" ULM_EXPORT void* get_host_funcptr(int selector) {
  return selector == 2 ? reinterpret_cast<void*>(&getHostObject) : nullptr;
}

extern "C" ULM_EXPORT const HostAppControl* hostAppControl() { return &kControl; }
