#include "standin/win32/stand_in.h"

#include <cstddef>

namespace {

// Plain memory, as the layer elsewhere has it.
thread_local char loadError[1024];

// One line: what ends it, and the blanks before that, are dropped.
void cutLineEnd(char* text, std::size_t length) noexcept {
  while (length > 0 && static_cast<unsigned char>(text[length - 1]) <= ' ') --length;
  text[length] = '\0';
}

}  // namespace

HWND ulmWin32OpenWindow(const wchar_t* className) {
  if (className == nullptr) return nullptr;
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
  const DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                      nullptr, error, 0, loadError, sizeof loadError, nullptr);
  cutLineEnd(loadError, length);
  if (loadError[0] == '\0') wsprintfA(loadError, "error %lu of the system", error);
  return loadError;
}
