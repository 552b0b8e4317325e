// The export of the host's library qlhostcmd that the module calls.
#pragma once

#include "core/iface/lang_engine_man.h"
#include "hostsdk/export.h"

// The process's one manager, which the caller does not release; null where there is none.
ULM_HOSTCMD_API hostLangEngineMan* get_hostLangEngineMan();
