// What a host or a test does to the layer's world where Windows would have real windows and loader
// messages, and a log by which the order of the module's calls can be shown. Not for module code.
#pragma once

#include "platform/win32/win32.h"

#ifndef _WIN32

// Opens a top-level window of that class, which FindWindowW then finds; null where memory runs out.
ULM_WIN32_API HWND ulmWin32OpenWindow(const wchar_t* className);
// Closes it; false where there is no such window.
ULM_WIN32_API bool ulmWin32CloseWindow(HWND window);

// Why this thread's last LoadLibraryW failed; empty where it did not.
ULM_WIN32_API const char* ulmWin32LoadError();

// The log of calls: off until it is started, which also empties it. A line a call, in order, the
// name and its telling argument: "FindWindowW _indebmon", "GetPrivateProfileIntW JumpArrOnAdd",
// "DisableThreadLibraryCalls", "GetModuleHandleA qlcore.dll", "GetProcAddress _QLAfxDllMain".
ULM_WIN32_API void ulmWin32StartCallLog();
ULM_WIN32_API void ulmWin32StopCallLog();
// Adds a line of the caller's own, so that libraries beside the layer can join the order.
ULM_WIN32_API void ulmWin32LogCall(const char* line);
// The lines so far, each ended by '\n'. The text is valid until the next call of these functions.
ULM_WIN32_API const char* ulmWin32CallLog();

#endif
