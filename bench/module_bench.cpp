// The time that the module adds to a start of a host: to load and unload it, to create and release
// its object, and to start it. `limit` loads an empty library that links the same libraries, which
// is the share of the loader and of the emulated system.
#include <benchmark/benchmark.h>

#include "module/entry.h"
#include "module/glue/instance.h"
#include "standin/host/host_calls.h"
#include "standin/qlcore/control.h"

namespace {

using ulm::glue::procedure;

constexpr wchar_t kModule[] = L"ULM_Main.dll", kEmpty[] = L"empty_module.dll";

// A library that is loaded as long as the object lives.
class Loaded {
 public:
  explicit Loaded(const wchar_t* name) : library_(LoadLibraryW(name)) {}
  Loaded(const Loaded&) = delete;
  Loaded& operator=(const Loaded&) = delete;
  ~Loaded() {
    if (library_ != nullptr) FreeLibrary(library_);
  }
  bool failed() const { return library_ == nullptr; }
  OdRxModule* create() const {
    HINSTANCE slot = library_;
    const auto make =
        failed() ? nullptr
                 : procedure<decltype(odrxCreateModuleObject)>(library_, "odrxCreateModuleObject");
    return make != nullptr ? make(&slot) : nullptr;
  }

 private:
  HMODULE library_;
};

// Creates the module's object, starts and stops it if wanted, and releases it.
bool run(const Loaded& library, bool started) {
  OdRxModule* const object = library.create();
  if (object == nullptr) return false;
  const bool right = !started || object->initApp();
  if (started) object->uninitApp();
  object->finalRelease();
  qlcoreForgetWlds();
  return right;
}

void load(benchmark::State& state, const wchar_t* name) {
  LoadLibraryW(L"QlHostApp.dll");
  for (auto _ : state) {
    if (Loaded(name).failed()) return state.SkipWithError("not loaded");
  }
}
BENCHMARK_CAPTURE(load, ours, kModule)->Name("module/load/ulmira");
BENCHMARK_CAPTURE(load, empty, kEmpty)->Name("module/load/limit");

// With the module loaded.
void object(benchmark::State& state, bool started) {
  LoadLibraryW(L"QlHostApp.dll");
  const Loaded library(kModule);
  for (auto _ : state) {
    if (!run(library, started)) return state.SkipWithError("the module failed");
  }
}
BENCHMARK_CAPTURE(object, created, false)->Name("module/object/ulmira");
BENCHMARK_CAPTURE(object, started, true)->Name("module/object_started/ulmira");

void life(benchmark::State& state) {
  LoadLibraryW(L"QlHostApp.dll");
  for (auto _ : state) {
    if (!run(Loaded(kModule), true)) return state.SkipWithError("the module failed");
  }
}
BENCHMARK(life)->Name("module/life/ulmira");

}  // namespace

BENCHMARK_MAIN();
