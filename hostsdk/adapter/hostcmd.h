// The engine manager, from the library qlhostcmd: our declarations, or those of the
// folder that ULM_HOST_SDK names.
#pragma once

#ifdef ULM_HOST_SDK
#include <host_adapter/hostcmd.h>
#else
#include "hostsdk/hostcmd/hostcmd.h"
#endif
