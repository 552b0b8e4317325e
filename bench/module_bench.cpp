// The time to load and unload the module, which adds to every start of a host.
#include <benchmark/benchmark.h>

#include "module/entry.h"
#include "module/glue/instance.h"
#include "standin/host/host_calls.h"
#include "standin/qlcore/control.h"

namespace {

using ulm::glue::procedure;

OdRxModule* createIn(HMODULE library) {
  HINSTANCE slot = library;
  const auto create =
      procedure<decltype(odrxCreateModuleObject)>(library, "odrxCreateModuleObject");
  return create != nullptr ? create(&slot) : nullptr;
}

// Loads the module, creates, starts, stops and releases its object, and unloads it. Without
// `started` the object is not started and stopped.
void BM_Life(benchmark::State& state) {
  const bool started = state.range(0) != 0;
  LoadLibraryW(L"QlHostApp.dll");
  for (auto _ : state) {
    const HMODULE library = LoadLibraryW(L"ULM_Main.dll");
    OdRxModule* const object = library != nullptr ? createIn(library) : nullptr;
    if (object == nullptr) return state.SkipWithError("no module object");
    if (started && !object->initApp()) return state.SkipWithError("the start failed");
    object->uninitApp();
    object->finalRelease();
    FreeLibrary(library);
    qlcoreForgetWlds();
  }
}
BENCHMARK(BM_Life)->Name("module/life/ulmira")->ArgName("started")->Arg(0)->Arg(1);

}  // namespace

BENCHMARK_MAIN();
