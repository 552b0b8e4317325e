// The interfaces that cross the boundary between host and module: our declarations, or those of the
// folder that ULM_HOST_SDK names.
#pragma once

#ifdef ULM_HOST_SDK
#include <host_adapter/interfaces.h>
#else
#include "core/iface/app.h"
#include "core/iface/host_object.h"
#include "core/iface/iheap.h"
#include "core/iface/iparam.h"
#include "core/iface/iql_unknown.h"
#include "core/iface/lang_engine_man.h"
#endif
