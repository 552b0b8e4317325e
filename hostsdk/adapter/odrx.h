// The object runtime, from the library TD_Root_qld: our declarations, or those of the
// folder that ULM_HOST_SDK names.
#pragma once

#ifdef ULM_HOST_SDK
#include <host_adapter/odrx.h>
#else
#include "hostsdk/odrx/od_array.h"
#include "hostsdk/odrx/od_error.h"
#include "hostsdk/odrx/od_string.h"
#include "hostsdk/odrx/rx_object.h"
#include "hostsdk/odrx/win32_module.h"
#endif
