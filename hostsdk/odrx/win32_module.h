// OdRxWin32Module: makes the one module object of a library from a class derived from OdRxModule.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cwchar>

#include "hostsdk/odrx/alloc.h"
#include "hostsdk/odrx/rx_object.h"
#include "hostsdk/win32/win32.h"

// Adds the reference count, the instance handle, the final release and the path to TModule. Other
// code sees the object as a TInterface, which is a base of it. The count is atomic; one thread at a
// time creates and finally releases the object.
template <class TModule, class TInterface>
class OdRxWin32Module : public TModule {
 public:
  // The count starts at 0: the creator holds no reference.
  explicit OdRxWin32Module(HINSTANCE instance) noexcept : references_(0), instance_(instance) {}

  ~OdRxWin32Module() override = default;
  // The object is created in memory from odrxAlloc.
  static void* operator new(std::size_t) = delete;
  static void operator delete(void* memory) noexcept { odrxFree(memory); }

  void addRef() override { references_.fetch_add(1); }
  // Only counts down: finalRelease alone destroys the object.
  void release() override { references_.fetch_sub(1); }
  std::int32_t numRefs() const override { return references_.load(); }
  HINSTANCE moduleHandle() const override { return instance_; }
  void finalRelease() override { retire(this); }

  // Returns the full file name of the library, at most 260 characters. The system cuts a longer
  // name to 260 or to 259 characters. Empty if the system does not know the name. Raises
  // std::bad_alloc if there is no memory.
  OdString modulePath() const override {
    wchar_t name[kNameSize] = {};
    GetModuleFileNameW(instance_, name, kNameSize);
    const wchar_t* end = std::wmemchr(name, L'\0', kNameSize);
    return OdString(name, end != nullptr ? static_cast<std::size_t>(end - name) : kNameSize);
  }

  // The one object of this library; null if there is none.
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
