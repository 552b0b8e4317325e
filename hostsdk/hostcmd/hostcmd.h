// The export of the host's library qlhostcmd that the module calls.
#pragma once

#include "core/iface/lang_engine_man.h"
#include "hostsdk/export.h"

// Returns the one manager of the process, which the caller does not release; null if there is none.
// May raise CXException.
ULM_HOSTCMD_API hostLangEngineMan* get_hostLangEngineMan();
