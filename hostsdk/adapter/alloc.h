// The allocator, from the library TD_Alloc_qld: our declarations, or those of the
// folder that ULM_HOST_SDK names.
#pragma once

#ifdef ULM_HOST_SDK
#include <host_adapter/alloc.h>
#else
#include "hostsdk/odrx/alloc.h"
#endif
