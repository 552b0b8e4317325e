// What a host or a test does to the system's world: windows, the reason of a load that failed, and
// a log by which the order of the module's calls can be shown. The library ulmwin32 has it on every
// system. Not for module code.
#pragma once

#include "hostsdk/export.h"
#include "hostsdk/win32/win32.h"

// Opens a window of that class, which FindWindowW then finds; null for a null name and where memory
// runs out. On Windows it is a message-only one, which needs no display.
ULM_WIN32_API HWND ulmWin32OpenWindow(const wchar_t* className);
// Closes it; false where there is no such window.
ULM_WIN32_API bool ulmWin32CloseWindow(HWND window);

// Why this thread's last LoadLibraryW failed, as one line of UTF-8; empty where it did not. Valid
// until the thread's next load, or next call of this. On Windows it is the text of the thread's
// last error, so ask at once, and only after a failure.
ULM_WIN32_API const char* ulmWin32LoadError();

// Makes GetModuleFileNameW cut names as newer Windows does, by one character more and with a
// terminator, or again as it does at the start. On Windows that is the system's own affair.
ULM_WIN32_API void ulmWin32TerminateCutNames(bool on);

// The log of calls: off until it is started, which also empties it. A line a call, in order, the
// name and its telling argument: "FindWindowW _indebmon", "GetPrivateProfileIntW JumpArrOnAdd",
// "DisableThreadLibraryCalls", "GetModuleHandleA qlcore.dll", "GetProcAddress _QLAfxDllMain". The
// system's own calls leave no line on Windows.
ULM_WIN32_API void ulmWin32StartCallLog();
ULM_WIN32_API void ulmWin32StopCallLog();
// Adds a line of the caller's own, so that libraries beside the layer can join the order.
ULM_WIN32_API void ulmWin32LogCall(const char* line);
// The lines so far, each ended by '\n'. The text is valid until the next call of these functions.
ULM_WIN32_API const char* ulmWin32CallLog();
