// The core library qlcore: our declarations, or those of the
// folder that ULM_HOST_SDK names.
#pragma once

#ifdef ULM_HOST_SDK
#include <host_adapter/qlcore.h>
#else
#include "hostsdk/qlcore/services.h"
#include "hostsdk/qlcore/strings.h"
#include "hostsdk/qlcore/variant.h"
#endif
