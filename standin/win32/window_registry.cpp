#include <algorithm>
#include <cstdint>
#include <mutex>
#include <new>
#include <string>
#include <vector>

#include "hostsdk/win32/win32.h"
#include "standin/win32/detail/call_log.h"
#include "standin/win32/detail/characters.h"
#include "standin/win32/stand_in.h"

namespace {

using ulm::win32::detail::equalNoCase;
using ulm::win32::detail::logCall;

struct Window {
  HWND handle;
  std::wstring className;
};

struct WindowRegistry {
  std::mutex mutex;
  std::vector<Window> windows;    // in the order of opening
  std::uintptr_t lastHandle = 0;  // handles are not reused
};

// Never destroyed: libraries search for windows until the process ends.
WindowRegistry& registry() {
  static WindowRegistry& windows = *new WindowRegistry;
  return windows;
}

}  // namespace

HWND FindWindowW(const wchar_t* className, const wchar_t* windowName) {
  logCall("FindWindowW", className);
  if (windowName != nullptr) return nullptr;
  try {
    WindowRegistry& all = registry();
    const std::lock_guard lock(all.mutex);
    const auto found =
        std::find_if(all.windows.rbegin(), all.windows.rend(), [className](const Window& window) {
          return className == nullptr || equalNoCase(window.className, className);
        });
    return found != all.windows.rend() ? found->handle : nullptr;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

HWND ulmWin32OpenWindow(const wchar_t* className) {
  if (className == nullptr) return nullptr;
  try {
    WindowRegistry& all = registry();
    const std::lock_guard lock(all.mutex);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a handle is a number in a pointer type
    const HWND handle = reinterpret_cast<HWND>(all.lastHandle + 4);
    all.windows.push_back({handle, className});
    all.lastHandle += 4;
    return handle;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

bool ulmWin32CloseWindow(HWND window) {
  try {
    WindowRegistry& all = registry();
    const std::lock_guard lock(all.mutex);
    return std::erase_if(all.windows,
                         [window](const Window& open) { return open.handle == window; }) != 0;
  } catch (const std::bad_alloc&) {
    return false;
  }
}
