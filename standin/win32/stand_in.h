// Controls of the emulated system for hosts and tests: windows, the reason of a failed load, and a
// log that shows the order of the module's calls. The library ulmwin32 exports them on every
// system. Module code does not use them.
#pragma once

#include "hostsdk/export.h"
#include "hostsdk/win32/win32.h"

// Opens a window of that class, which FindWindowW finds from then on. Returns null if the name is
// null or if memory runs out. On Windows it is a message-only window, which needs no display.
ULM_WIN32_API HWND ulmWin32OpenWindow(const wchar_t* className);
// Closes a window. Returns false if there is no such window.
ULM_WIN32_API bool ulmWin32CloseWindow(HWND window);

// Returns the reason why this thread's last LoadLibraryW failed, as one line of UTF-8; empty if it
// did not fail. The text is valid until the thread's next load or next call of this function. On
// Windows it is the text of the thread's last error, so call it directly after a failure.
ULM_WIN32_API const char* ulmWin32LoadError();

// If `on`, GetModuleFileNameW cuts a long name as newer Windows does: one character shorter, with a
// terminator. Off at the start. On Windows it has no effect.
ULM_WIN32_API void ulmWin32TerminateCutNames(bool on);

// The log of calls, which is off at the start. Starting it empties it. Each call adds one line, its
// name and its main argument: "FindWindowW _indebmon", "GetPrivateProfileIntW JumpArrOnAdd",
// "DisableThreadLibraryCalls", "GetModuleHandleA qlcore.dll", "GetProcAddress _QLAfxDllMain". On
// Windows calls of the system's own functions are not logged.
ULM_WIN32_API void ulmWin32StartCallLog();
ULM_WIN32_API void ulmWin32StopCallLog();
// Adds a line if the log is on, so that other libraries can log their calls in the same order. Null
// is ignored.
ULM_WIN32_API void ulmWin32LogCall(const char* line);
// Returns the lines so far, each with '\n' at the end; empty if memory runs out. The text is valid
// until the next call.
ULM_WIN32_API const char* ulmWin32CallLog();
