// Only the array of the library TD_Root_qld: our declarations, or those of the
// folder that ULM_HOST_SDK names.
#pragma once

#ifdef ULM_HOST_SDK
#include <host_adapter/odrx.h>
#else
#include "hostsdk/odrx/od_array.h"
#endif
