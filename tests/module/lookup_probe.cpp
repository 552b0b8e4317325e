// A process that links only the host lookup and the glue, and no host library, so that each of
// these can be absent. It is built twice: with an export GetMainDllInstance and without.
#include <cstring>
#include <cwchar>
#include <typeinfo>

#include "core/iface/app.h"
#include "core/type_record.h"
#include "hostsdk/export.h"
#include "hostsdk/win32/win32.h"
#include "module/glue/debug_switches.h"
#include "module/glue/instance.h"
#include "module/glue/translation.h"
#include "module/host_lookup.h"
#include "standin/hostapp/control.h"
#include "standin/win32/stand_in.h"
#include "tests/module/script.h"

namespace {

using ulm::glue::procedure;
using ulm::test::say;

HINSTANCE mainInstance = nullptr;  // the result of the program's export

std::wstring wide(const std::string& text) { return {text.begin(), text.end()}; }

// A file in the program's folder or in a folder inside it.
std::wstring besideProgram(const std::string& file) {
  wchar_t name[2048] = {};
  GetModuleFileNameW(nullptr, name, 2047);
  *(std::wcsrchr(name, L'\\') + 1) = L'\0';
  return name + wide(file);
}

std::string moduleName(const void* address) {
  const HMODULE module = ulm::glue::moduleHolding(address);
  if (module == nullptr) return "null";
  if (module == GetModuleHandleW(nullptr)) return "program";
  wchar_t name[512] = {};
  GetModuleFileNameW(module, name, 511);
  const wchar_t* file = std::wcsrchr(name, L'\\') + 1;
  const wchar_t* ending = std::wcsrchr(file, L'.');
  return {file, ending};
}

// Returns the library that created an object: the one that contains its virtual table.
std::string makerOf(const void* object) {
  if (object == nullptr) return "null";
  const void* table;
  std::memcpy(&table, object, sizeof table);
  return moduleName(table);
}

// The application of this program, for the core library's factory.
class ProbeApp final : public IApp {
 public:
  std::uint32_t AddRef() override { return ++references; }
  std::uint32_t Release() override { return --references; }
  std::int32_t QueryInterface(const std::type_info& /*wanted*/, void** outObject) override {
    if (outObject != nullptr) *outObject = nullptr;
    return 0;
  }
  std::uint32_t references = 0;
};
ProbeApp probeApp;

void makeProbeApp(const std::type_info& wanted, void** outObject) {
  if (!Iface_SameRecord(wanted, typeid(IApp))) return;
  probeApp.AddRef();
  *outObject = static_cast<IApp*>(&probeApp);
}

// Returns an export of the stand-in core library, whatever folder it was loaded from.
template <class Function>
Function* coreExport(const char* name) {
  return procedure<Function>(GetModuleHandleW(L"qlcore.dll"), name);
}

void registerClass(const std::string& name) {
  static std::string kept;
  kept = name;
  using Register = void(const char*, void (*)(const std::type_info&, void**));
  coreExport<Register>("qlcoreRegisterClass")(kept.c_str(), makeProbeApp);
}

}  // namespace

#ifdef ULM_PROBE_EXPORTS_INSTANCE
extern "C" ULM_EXPORT HINSTANCE GetMainDllInstance() { return mainInstance; }
// A null main instance must not lead to this export.
extern "C" ULM_EXPORT IApp* GetApp() { return &probeApp; }
extern "C" ULM_EXPORT void* get_host_funcptr(int) { return reinterpret_cast<void*>(&GetApp); }
#endif

int main(int argc, char** argv) {
  return ulm::test::runSteps(
      {{"load",
        [](const std::string& file) {
          if (LoadLibraryW(besideProgram(file).c_str()) == nullptr) say("not loaded: ", file);
        }},
       {"main",
        [](const std::string& name) { mainInstance = GetModuleHandleW(wide(name).c_str()); }},
       {"register", registerClass},
       {"factory-result",
        [](const std::string& result) {
          coreExport<void(int)>("qlcoreSetFactoryResult")(std::stoi(result));
        }},
       {"hide-app",
        [](const std::string&) {
          const HMODULE library = GetModuleHandleW(L"QlHostApp.dll");
          procedure<HostAppControlEntry>(library, kHostAppControlEntry)()->setPresent(
              HostAppObject::App, false);
        }},
       {"log", [](const std::string&) { ulmWin32StartCallLog(); }},
       {"again", [](const std::string&) { Host_GetApp(); }},
       {"print-log", [](const std::string&) { std::cout << ulmWin32CallLog(); }},
       {"app", [](const std::string&) { say("app ", makerOf(Host_GetApp())); }},
       {"references", [](const std::string&) { say("references ", probeApp.references); }},
       {"instance",
        [](const std::string&) { say("instance ", moduleName(Host_GetMainInstance())); }},
       {"object", [](const std::string&) { say("object ", makerOf(Host_GetHostObject())); }},
       {"window",
        [](const std::string&) {
          say("window ", reinterpret_cast<std::uintptr_t>(Host_GetMainWindow()));
        }},
       {"translate",
        [](const std::string&) {
          const HINSTANCE own = Module_GetInstance();
          say("translate ", ResTranslation_Init(own), ' ', ResTranslation_DeInit(own));
        }},
       {"string",
        [](const std::string& library) {
          char buffer[8] = "xxxxxxx";
          const int length =
              ResTranslation_LoadString(GetModuleHandleW(wide(library).c_str()), 2, buffer, 5);
          say("string ", length, ' ', buffer);
        }},
       {"own", [](const std::string&) { say("own ", moduleName(Module_GetInstance())); }}},
      argc, argv);
}
