#include "standin/host/module_run.h"

#include <algorithm>
#include <cwchar>
#include <exception>
#include <string_view>
#include <utility>

#include "hostsdk/odrx/rx_object.h"
#include "hostsdk/win32/win32.h"
#include "module/entry.h"
#include "module/glue/instance.h"
#include "module/host_lookup.h"
#include "standin/host/host_calls.h"
#include "standin/hostapp/control.h"
#include "standin/hostcmd/control.h"
#include "standin/qlcore/control.h"
#include "standin/win32/stand_in.h"
#include "standin/win32/utf8.h"

namespace ulm::tools {
namespace {

using win32::toUtf8;

constexpr wchar_t kDebugMonitor[] = L"_indebmon";  // the class of a debug monitor's window

using GetApiVersion = decltype(odrxGetAPIVersion);
using CreateModuleObject = decltype(odrxCreateModuleObject);

// Adds a dot to a name without a suffix, so that the system appends none.
std::wstring loadName(const std::string& file) {
  const std::size_t start = file.find_last_of("/\\") + 1;
  return toWide(file.find('.', start) == std::string::npos ? file + "." : file);
}

// A loaded library. The destructor unloads it.
class LoadedLibrary {
 public:
  explicit LoadedLibrary(const std::string& file) : module_(LoadLibraryW(loadName(file).c_str())) {
    if (module_ == nullptr) throw RunError("cannot load " + file + ": " + ulmWin32LoadError());
  }
  LoadedLibrary(LoadedLibrary&& other) noexcept : module_(std::exchange(other.module_, nullptr)) {}
  LoadedLibrary& operator=(LoadedLibrary&&) = delete;
  ~LoadedLibrary() {
    if (module_ != nullptr) FreeLibrary(module_);
  }

  HMODULE get() const noexcept { return module_; }

  // Returns an export; null if there is none.
  template <class Function>
  Function* entry(const char* name) const {
    return glue::procedure<Function>(module_, name);
  }

 private:
  HMODULE module_;
};

// The libraries that the host loads at run time, and the controls of the application among them.
struct HostLibraries {
  std::vector<LoadedLibrary> libraries;
  const HostAppControl* application = nullptr;

  explicit HostLibraries(const std::vector<std::string>& without) {
    const auto isLeftOut = [&](const char* name) {
      return std::find(without.begin(), without.end(), name) != without.end();
    };
    for (const char* name : {"QlHostApp", "qlview", "qlsupport"}) {
      if (!isLeftOut(name)) libraries.emplace_back(std::string(name) + ".dll");
    }
    if (!isLeftOut("QlHostApp")) {
      const auto control = libraries.front().entry<HostAppControlEntry>(kHostAppControlEntry);
      if (control == nullptr) throw RunError("QlHostApp is not this host's application");
      application = control();
    }
    hostcmdSetPresent(!isLeftOut("qlhostcmd"));
  }
};

std::optional<RunReport::Record> publishedRecord(const HostAppControl* application) {
  if (application == nullptr || application->recordCount() < 0) return std::nullopt;
  RunReport::Record record;
  for (std::size_t i = 0; i < static_cast<std::size_t>(application->recordCount()); ++i) {
    record.emplace_back(application->recordKey(i), application->recordValue(i));
  }
  return record;
}

std::wstring folderOf(const std::wstring& file) { return file.substr(0, file.rfind(L'\\') + 1); }
std::wstring nameOf(const std::wstring& file) { return file.substr(file.rfind(L'\\') + 1); }

std::optional<std::string> libraryName(HMODULE library) {
  if (library == nullptr) return std::nullopt;
  const std::wstring name = nameOf(moduleName(library));
  return toUtf8(name.substr(0, name.rfind(L'.')).c_str());
}

// Reads the switches from mt.ini next to the module, as the module did before its entry ran.
std::vector<RunReport::Switch> readSwitches(const std::wstring& module) {
  const std::wstring file = folderOf(module) + L"mt.ini";
  std::vector<RunReport::Switch> switches;
  for (const wchar_t* key : {L"JumpArrOnAdd", L"JumpArrOnRemove", L"DefecateMem", L"mqlassert"}) {
    const bool inFile = GetPrivateProfileIntW(L"mt", key, 0, file.c_str()) != 0;
    const bool isRead =
        std::wstring_view(key) != L"mqlassert" || FindWindowW(kDebugMonitor, nullptr) != nullptr;
    switches.push_back({toUtf8(key), inFile && isRead, inFile});
  }
  return switches;
}

// Returns why the module kept a value of PATH.
PathKept whyKept(const std::wstring& path, const std::wstring& folder) {
  constexpr std::size_t kMaxAssignment =
      8319;  // characters of PATH=VALUE;FOLDER that the module handles
  if (path.find(folder) != std::wstring::npos) return PathKept::Listed;
  const std::size_t length = std::wcslen(L"PATH=;") + path.size() + folder.size();
  return length > kMaxAssignment ? PathKept::TooLong : PathKept::ByModule;
}

// Starts and stops the object, and releases it finally on every path.
void startAndStop(OdRxModule* object, const std::wstring& fullName, RunReport& report) {
  struct FinalRelease {
    OdRxModule* object;
    ~FinalRelease() { object->finalRelease(); }
  } const finalRelease{object};
  report.modulePath = toUtf8(object->modulePath().c_str());
  const std::wstring pathBefore = environmentVariable(L"PATH");
  report.pathBefore = toUtf8(pathBefore.c_str());
  try {
    report.started = object->initApp();
  } catch (const std::exception& error) {
    throw RunError(std::string("initApp raised an exception: ") + error.what());
  } catch (...) {
    throw RunError("initApp raised an exception");
  }
  const std::wstring pathAfter = environmentVariable(L"PATH");
  report.pathAfter = toUtf8(pathAfter.c_str());
  if (pathAfter == pathBefore) report.pathKept = whyKept(pathBefore, folderOf(fullName));
  object->uninitApp();
}

// Runs the library once, unloads it and returns its full name.
std::wstring runOnce(const std::string& file, RunReport& report) {
  const std::int64_t translationUsers = qlcoreTranslationUsers();
  const LoadedLibrary module(file);
  std::wstring fullName = moduleName(module.get());
  if (qlcoreTranslationUsers() != translationUsers) {
    report.translation = libraryName(GetModuleHandleW(L"qlcore.dll"));
  }
  report.secondTranslation = libraryName(GetModuleHandleW(L"qlsupport.dll"));
  report.mainInstance = libraryName(Host_GetMainInstance());
  report.switches = readSwitches(fullName);
  const auto need = [&](auto* entry, const char* name) {
    if (entry == nullptr) throw RunError(file + " lacks the entry " + name);
    return entry;
  };
  const auto getVersion =
      need(module.entry<GetApiVersion>("odrxGetAPIVersion"), "odrxGetAPIVersion");
  const auto create =
      need(module.entry<CreateModuleObject>("odrxCreateModuleObject"), "odrxCreateModuleObject");
  auto& version = report.apiVersion;
  getVersion(&version[0], &version[1], &version[2], &version[3]);
  HINSTANCE slot = module.get();
  OdRxModule* object = create(&slot);
  if (object == nullptr) throw RunError(file + " made no module object");
  startAndStop(object, fullName, report);
  return fullName;
}

}  // namespace

RunReport runModule(const RunOptions& options) {
  if (options.debugMonitor) ulmWin32OpenWindow(kDebugMonitor);
  const HostLibraries host(options.without);
  const std::vector<Balance> before = takeBalance(host.application);
  RunReport report;
  const std::wstring fullName = runOnce(options.moduleFile, report);

  report.record = publishedRecord(host.application);
  if (const wchar_t* name = qlcoreWldName(0)) report.wld = toUtf8(name);
  for (std::size_t i = 0; i < hostcmdLoadCount(); ++i) {
    const HostcmdLoad load = hostcmdLoad(i);
    report.loads.push_back({toUtf8(load.file), toUtf8(load.engine), load.number});
  }
  const std::vector<Balance> after = takeBalance(host.application);
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (after[i] != before[i]) report.unbalanced.emplace_back(after[i].name);
  }
  if (GetModuleHandleW(fullName.c_str()) != nullptr) report.unbalanced.emplace_back("ULM_Main");
  return report;
}

}  // namespace ulm::tools
