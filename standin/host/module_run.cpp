#include "standin/host/module_run.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "hostsdk/odrx/rx_object.h"
#include "hostsdk/win32/win32.h"
#include "module/entry.h"
#include "module/glue/instance.h"
#include "standin/host/host_calls.h"
#include "standin/hostapp/control.h"
#include "standin/hostcmd/control.h"
#include "standin/qlcore/control.h"
#include "standin/win32/stand_in.h"
#include "standin/win32/utf8.h"

namespace ulm::tools {
namespace {

using win32::toUtf8;

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

// Starts and stops the object, and releases it finally on every path.
void startAndStop(OdRxModule* object, RunReport& report) {
  struct FinalRelease {
    OdRxModule* object;
    ~FinalRelease() { object->finalRelease(); }
  } const finalRelease{object};
  report.modulePath = toUtf8(object->modulePath().c_str());
  report.pathBefore = toUtf8(environmentVariable(L"PATH").c_str());
  try {
    report.started = object->initApp();
  } catch (const std::exception& error) {
    throw RunError(std::string("initApp raised an exception: ") + error.what());
  } catch (...) {
    throw RunError("initApp raised an exception");
  }
  report.pathAfter = toUtf8(environmentVariable(L"PATH").c_str());
  object->uninitApp();
}

// Runs the library once, unloads it and returns its full name.
std::wstring runOnce(const std::string& file, RunReport& report) {
  const LoadedLibrary module(file);
  std::wstring fullName = moduleName(module.get());
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
  startAndStop(object, report);
  return fullName;
}

}  // namespace

RunReport runModule(const RunOptions& options) {
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
