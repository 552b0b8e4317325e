// The system calls: on Windows the system's own header, elsewhere our declarations or those of the
// folder that ULM_HOST_SDK names.
#pragma once

#if defined(ULM_HOST_SDK) && !defined(_WIN32)
#include <host_adapter/win32.h>
#else
#include "hostsdk/win32/win32.h"
#endif
