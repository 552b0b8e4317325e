// A library with an export and resources, which calls the layer while it is being loaded and while
// it leaves, and tells what it got in the environment block. At a wish there it fails to start.
#include "platform/win32/resource_block.h"
#include "platform/win32/win32.h"

extern "C" int sampleBaseAnswer();
extern "C" [[gnu::visibility("default")]] int sampleAnswer() { return sampleBaseAnswer() + 35; }

namespace {

ULM_VERSION_RESOURCE constexpr ulm::win32::VersionBlock kVersion({1, 2, 3, 4}, {1, 5, 5798, 3294});

struct Strings {
  ulm::win32::StringEntry<5> plain{7, u"Plain"};
  ulm::win32::StringEntry<6> mixed{300, u"\u20AC \u0416 \U0001F600"};
  ulm::win32::StringEntry<6> second{7, u"Second"};
};
ULM_STRING_RESOURCE constexpr Strings kStrings;

// Asks as a library that does not know its handle yet.
void tell(const wchar_t* event) {
  MEMORY_BASIC_INFORMATION information{};
  VirtualQuery(&kVersion, &information, sizeof information);
  const auto self = static_cast<HMODULE>(information.AllocationBase);
  wchar_t name[2048] = {};
  char text[16] = {};
  if (self != GetModuleHandleW(L"Win32_Sample.dll") || GetModuleFileNameW(self, name, 2048) == 0 ||
      GetProcAddress(self, "sampleAnswer") == nullptr || LoadStringA(self, 7, text, 16) != 5) {
    event = L"ULM_SAMPLE=failed";
  }
  _wputenv(event);
}

struct Teller {
  Teller() { tell(L"ULM_SAMPLE=came"); }
  ~Teller() { tell(L"ULM_SAMPLE=left"); }
};
struct Thrower {
  Thrower() {
    if (GetEnvironmentVariableW(L"ULM_SAMPLE_THROWS", nullptr, 0) != 0) throw 1;
  }
};
[[gnu::init_priority(101)]] Teller teller;  // before anything else of the library
[[gnu::init_priority(102)]] Thrower thrower;

}  // namespace
