// Finds the host at run time: the application object, the main instance and the main window. The
// functions look for known host libraries among those that are already in the process. They load
// nothing, and this code links no host library: one that is not in the process is absent.
//
// Each function returns null if it finds nothing; exceptions of the host's exports pass on. The
// entries GetApp and CreateObjectC are cached for the life of the process once they are found. A
// search that finds nothing is repeated by the next call, so that a host library that is loaded
// later is found. No lock is needed: two threads that search at the same time store the same value.
#pragma once

#include "hostsdk/adapter/interfaces.h"
#include "hostsdk/adapter/win32.h"

// Returns the application with one reference for the caller. The first case that applies decides:
//   1. QlHostApp.dll is in the process and exports GetApp: its result.
//   2. The program exports GetMainDllInstance: the result of GetApp of the instance that it
//      returns, or null if that instance exports no GetApp.
//   3. qlcore.dll is in the process and exports CreateObjectC: an object of the class "CLSID_APP".
IApp* Host_GetApp();

// Returns the host's main instance. The first case that applies decides:
//   1. The program exports GetMainDllInstance: its result, also if that is null.
//   2. qlview.dll is in the process: its handle.
//   3. QlHostApp.dll is in the process and exports GetMainDllInstanceEx: its result.
HINSTANCE Host_GetMainInstance();

// Returns the host object: the result of the function that get_host_funcptr of the main instance
// returns for selector 2. The host keeps ownership.
IHostObject* Host_GetHostObject();

// Returns the main window of the host object.
HWND Host_GetMainWindow();
