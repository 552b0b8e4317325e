#include "module/glue/switch_flags.h"

#include "module/glue/debug_switches.h"
#include "module/glue/load_order.h"

namespace ulm::glue {

// Within one source objects of one priority are built in the order in which they stand.
[[gnu::init_priority(kInitSwitchFlags)]] const SwitchFlag assertFlag(DebugSwitches_AssertEnabled());
[[gnu::init_priority(kInitSwitchFlags)]] const SwitchFlag addJumpFlag((DebugSwitches_Read() &
                                                                       kSwitchJumpArrOnAdd) != 0);
[[gnu::init_priority(kInitSwitchFlags)]] const SwitchFlag removeJumpFlag((DebugSwitches_Read() &
                                                                          kSwitchJumpArrOnRemove) !=
                                                                         0);
[[gnu::init_priority(kInitSwitchFlags)]] const SwitchFlag defecateFlag((DebugSwitches_Read() &
                                                                        kSwitchDefecateMem) != 0);

}  // namespace ulm::glue
