// A library with an export and resources. It calls the layer while it is loaded and unloaded, and
// stores the results in the environment block. A variable there makes its start fail.
#include "hostsdk/export.h"
#include "hostsdk/win32/win32.h"

extern "C" int sampleBaseAnswer();
extern "C" ULM_EXPORT int sampleAnswer() { return sampleBaseAnswer() + 35; }

namespace {

// Finds its handle by an address, as a library that does not know it yet.
void tell(const wchar_t* event) {
  MEMORY_BASIC_INFORMATION information{};
  VirtualQuery(reinterpret_cast<const void*>(&sampleAnswer), &information, sizeof information);
  const auto self = static_cast<HMODULE>(information.AllocationBase);
  wchar_t name[2048] = {};
  char text[16] = {};
  if (self != GetModuleHandleW(L"Win32_Sample.dll") || GetModuleFileNameW(self, name, 2048) == 0 ||
      GetProcAddress(self, "sampleAnswer") == nullptr || LoadStringA(self, 7, text, 16) != 5) {
    event = L"ULM_SAMPLE=failed";
  }
  _wputenv(event);
}

struct Reporter {
  Reporter() { tell(L"ULM_SAMPLE=came"); }
  ~Reporter() { tell(L"ULM_SAMPLE=left"); }
};
struct Thrower {
  Thrower() {
    if (GetEnvironmentVariableW(L"ULM_SAMPLE_THROWS", nullptr, 0) != 0) throw 1;
  }
};
[[gnu::init_priority(101)]] Reporter reporter;  // the first object of the library
[[gnu::init_priority(102)]] Thrower thrower;

}  // namespace
