#include "standin/win32/stand_in.h"

#include <cstddef>

namespace {

constexpr std::size_t kMaxUnits = 1024;  // maximum of a system text, in UTF-16 units

// Plain memory, as on other systems. A UTF-16 unit needs at most three bytes of UTF-8.
thread_local char loadError[3 * kMaxUnits + 1];

// Writes the system's text for an error as one line and returns its length; 0 if there is none. The
// inserts of such a text (%1 ...) become "the library".
std::size_t systemText(DWORD error, wchar_t (&text)[kMaxUnits]) noexcept {
  constexpr DWORD kFlags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_ARGUMENT_ARRAY |
                           FORMAT_MESSAGE_MAX_WIDTH_MASK;  // no line ends
  DWORD_PTR inserts[99];                                   // the maximum of a text
  for (DWORD_PTR& insert : inserts) insert = reinterpret_cast<DWORD_PTR>(L"the library");
  std::size_t length = FormatMessageW(kFlags, nullptr, error, 0, text, kMaxUnits,
                                      reinterpret_cast<va_list*>(inserts));
  while (length > 0 && text[length - 1] <= L' ') --length;
  return length;
}

// Gives this thread a desktop that is never shown, once per process. Windows needs none for a
// message-only window. Wine would start a program for the visible desktop, which keeps the output
// of the first process open and can hang when processes start and end. If no desktop can be
// created, the thread keeps its own.
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
  RegisterClassW(&description);  // fails if the class is registered already
  return CreateWindowExW(0, className, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                         description.hInstance, nullptr);
}

bool ulmWin32CloseWindow(HWND window) { return DestroyWindow(window) != FALSE; }

void ulmWin32TerminateCutNames(bool) {}

const char* ulmWin32LoadError() {
  const DWORD error = GetLastError();
  loadError[0] = '\0';
  if (error == ERROR_SUCCESS) return loadError;
  wchar_t text[kMaxUnits];
  const std::size_t length = systemText(error, text);
  const int bytes = WideCharToMultiByte(CP_UTF8, 0, text, static_cast<int>(length), loadError,
                                        sizeof loadError - 1, nullptr, nullptr);
  loadError[bytes] = '\0';
  if (bytes == 0) wsprintfA(loadError, "error %lu of the system", error);
  return loadError;
}
