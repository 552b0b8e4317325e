#include "standin/host/module_run.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "hostsdk/odrx/rx_object.h"
#include "hostsdk/win32/win32.h"
#include "module/entry.h"
#include "standin/host/host_calls.h"
#include "standin/hostapp/control.h"
#include "standin/hostcmd/control.h"
#include "standin/qlcore/control.h"
#include "standin/win32/stand_in.h"

namespace ulm::tools {
namespace {

using GetApiVersion = decltype(odrxGetAPIVersion);
using CreateModuleObject = decltype(odrxCreateModuleObject);

// A name without an ending is taken as it is where a dot stands behind it.
std::wstring loadName(const std::string& file) {
  const std::size_t start = file.find_last_of("/\\") + 1;
  return toWide(file.find('.', start) == std::string::npos ? file + "." : file);
}

// A library that was taken into the process; goes out with the holder.
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

  template <class Function>
  Function* entry(const char* name) const {
    return exportOf<Function>(module_, name);
  }

 private:
  HMODULE module_;
};

// The libraries that the host takes in by itself, and the application among them.
struct HostLibraries {
  std::vector<LoadedLibrary> libraries;
  const HostAppControl* application = nullptr;

  explicit HostLibraries(const std::vector<std::string>& without) {
    const auto left = [&](const char* name) {
      return std::find(without.begin(), without.end(), name) != without.end();
    };
    for (const char* name : {"QlHostApp", "qlview", "qlsupport"}) {
      if (!left(name)) libraries.emplace_back(std::string(name) + ".dll");
    }
    if (!left("QlHostApp")) {
      const auto control = libraries.front().entry<HostAppControlEntry>(kHostAppControlEntry);
      if (control == nullptr) throw RunError("QlHostApp is not this host's application");
      application = control();
    }
    hostcmdSetPresent(!left("qlhostcmd"));
  }
};

std::optional<RunReport::Record> takenRecord(const HostAppControl* application) {
  if (application == nullptr || application->recordCount() < 0) return std::nullopt;
  RunReport::Record record;
  for (std::size_t i = 0; i < static_cast<std::size_t>(application->recordCount()); ++i) {
    record.emplace_back(application->recordKey(i), application->recordValue(i));
  }
  return record;
}

// Starts and stops the object and takes it away, on every path.
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

// Gives the whole name of the library, which is unloaded again.
std::wstring liveOnce(const std::string& file, RunReport& report) {
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
  const std::wstring fullName = liveOnce(options.moduleFile, report);

  report.record = takenRecord(host.application);
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
