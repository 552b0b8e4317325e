// Turns a class derived from OdRxModule into the one module object of a library: adds the count,
// the handle, the final release and the path. `TInterface` is the class by which the object is
// handed out.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cwchar>

#include "hostsdk/odrx/alloc.h"
#include "hostsdk/odrx/rx_object.h"
#include "hostsdk/win32/win32.h"

template <class TModule, class TInterface>
class OdRxWin32Module : public TModule {
 public:
  // A fresh object: a count of 0, no reference held for the creator.
  explicit OdRxWin32Module(HINSTANCE instance) noexcept : references_(0), instance_(instance) {}

  // Takes the base down; the memory goes back through the runtime's allocator, which it came from.
  ~OdRxWin32Module() override = default;
  static void* operator new(std::size_t) = delete;
  static void operator delete(void* memory) noexcept { odrxFree(memory); }

  void addRef() override { references_.fetch_add(1); }
  // Counts down and no more: the object's life ends by finalRelease alone.
  void release() override { references_.fetch_sub(1); }
  std::int32_t numRefs() const override { return references_.load(); }
  HINSTANCE moduleHandle() const override { return instance_; }
  void finalRelease() override { retire(this); }

  // The full file name of the library, at most 260 characters of it: a longer one comes as the
  // platform cut it, with or without a terminator in the last place.
  OdString modulePath() const override {
    wchar_t name[kNameSize] = {};
    GetModuleFileNameW(instance_, name, kNameSize);
    const wchar_t* end = std::wmemchr(name, L'\0', kNameSize);
    return OdString(name, end != nullptr ? static_cast<std::size_t>(end - name) : kNameSize);
  }

  // The one object of this library, null while there is none.
  static TInterface* singleton() noexcept { return singleton_; }
  static void setSingleton(OdRxWin32Module* object) noexcept { singleton_ = object; }

 private:
  static constexpr DWORD kNameSize = 260;

  static void retire(OdRxWin32Module* object) {
    singleton_ = nullptr;
    delete object;
  }

  std::atomic<std::int32_t> references_;
  HINSTANCE instance_;

  static inline constinit OdRxWin32Module* singleton_ = nullptr;
};
