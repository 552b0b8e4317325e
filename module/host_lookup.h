// Finds the host at run time: the application object, the main instance and the main window, by
// asking which of several known host libraries is already in the process. Nothing is ever loaded
// from here, and nothing here needs a host library to link: one that is not in the process counts
// as absent.
//
// Absence is told by null, never by an error. Entry points that were found are kept for the life of
// the process; a search that found nothing is repeated by the next call, so that a host library
// that comes later is found then. No lock: two threads that search at once store the same value.
#pragma once

#include "hostsdk/adapter/interfaces.h"
#include "hostsdk/adapter/win32.h"

// The application, with one reference for the caller. The first of these decides:
//   1. `QlHostApp.dll`, when it is in the process and exports `GetApp`;
//   2. the program, when it exports `GetMainDllInstance`: then `GetApp` of the instance that this
//      gives, or null where that has none;
//   3. `qlcore.dll`, when it is in the process and exports `CreateObjectC`: the class "CLSID_APP".
IApp* Host_GetApp();

// The host's main instance. The first of these decides: `GetMainDllInstance` of the program,
// whatever it gives; the handle of `qlview.dll`; `GetMainDllInstanceEx` of `QlHostApp.dll`.
HINSTANCE Host_GetMainInstance();

// The object that the main instance's `get_host_funcptr` leads to; the host keeps it.
IHostObject* Host_GetHostObject();

// The main window of the host object.
HWND Host_GetMainWindow();
