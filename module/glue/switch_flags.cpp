#include "module/glue/switch_flags.h"

#include "module/glue/debug_switches.h"

namespace ulm::glue {

// Objects of one priority in one source are built in the order of their definitions.
[[gnu::init_priority(kInitSwitchFlags)]] const SwitchFlag assertFlag(DebugSwitches_AssertEnabled());
[[gnu::init_priority(kInitSwitchFlags)]] const SwitchFlag addJumpFlag((DebugSwitches_Read() &
                                                                       kSwitchJumpArrOnAdd) != 0);
[[gnu::init_priority(kInitSwitchFlags)]] const SwitchFlag removeJumpFlag((DebugSwitches_Read() &
                                                                          kSwitchJumpArrOnRemove) !=
                                                                         0);
[[gnu::init_priority(kInitSwitchFlags)]] const SwitchFlag defecateFlag((DebugSwitches_Read() &
                                                                        kSwitchDefecateMem) != 0);

}  // namespace ulm::glue
