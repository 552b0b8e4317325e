#include "standin/win32/stand_in.h"

#include <cstddef>

namespace {

constexpr std::size_t kMostUnits = 1024;  // of the system's text

// Plain memory, as the layer elsewhere has it. A unit of UTF-16 takes up to three bytes.
thread_local char loadError[3 * kMostUnits + 1];

// The system's text for an error, as one line; empty where it has none. What such a text calls %1
// is the library.
std::size_t systemText(DWORD error, wchar_t (&text)[kMostUnits]) noexcept {
  constexpr DWORD kFlags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_ARGUMENT_ARRAY |
                           FORMAT_MESSAGE_MAX_WIDTH_MASK;  // no line ends
  DWORD_PTR inserts[99];                                   // as many as a text can name
  for (DWORD_PTR& insert : inserts) insert = reinterpret_cast<DWORD_PTR>(L"the library");
  std::size_t length = FormatMessageW(kFlags, nullptr, error, 0, text, kMostUnits,
                                      reinterpret_cast<va_list*>(inserts));
  while (length > 0 && text[length - 1] <= L' ') --length;
  return length;
}

// Gives this thread a desktop that is never shown, once a process. Windows needs none for a
// message-only window, but Wine brings up a program for the desktop of the screen, which keeps the
// output of the process that came first open, and can hang when processes come and go. Where it
// cannot be had, the thread's own desktop serves.
void takeHiddenDesktop() noexcept {
  static const bool taken = [] {
    const HWINSTA station = CreateWindowStationW(nullptr, 0, WINSTA_ALL_ACCESS, nullptr);
    if (station == nullptr || SetProcessWindowStation(station) == FALSE) return false;
    const HDESK desktop = CreateDesktopW(L"Default", nullptr, nullptr, 0, GENERIC_ALL, nullptr);
    return desktop != nullptr && SetThreadDesktop(desktop) != FALSE;
  }();
  static_cast<void>(taken);
}

}  // namespace

HWND ulmWin32OpenWindow(const wchar_t* className) {
  if (className == nullptr) return nullptr;
  takeHiddenDesktop();
  WNDCLASSW description{};
  description.lpfnWndProc = DefWindowProcW;
  description.hInstance = GetModuleHandleW(nullptr);
  description.lpszClassName = className;
  RegisterClassW(&description);  // fails for the second window of a class, which then is there
  return CreateWindowExW(0, className, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                         description.hInstance, nullptr);
}

bool ulmWin32CloseWindow(HWND window) { return DestroyWindow(window) != FALSE; }

void ulmWin32TerminateCutNames(bool) {}

const char* ulmWin32LoadError() {
  const DWORD error = GetLastError();
  loadError[0] = '\0';
  if (error == ERROR_SUCCESS) return loadError;
  wchar_t text[kMostUnits];
  const std::size_t length = systemText(error, text);
  const int bytes = WideCharToMultiByte(CP_UTF8, 0, text, static_cast<int>(length), loadError,
                                        sizeof loadError - 1, nullptr, nullptr);
  loadError[bytes] = '\0';
  if (bytes == 0) wsprintfA(loadError, "error %lu of the system", error);
  return loadError;
}
