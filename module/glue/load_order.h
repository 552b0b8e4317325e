// The order in which the library's static objects are built, as priorities for init_priority: a
// lower number comes first, whatever the order in which the files are linked. The string and heap
// services belong to libraries that are linked, so they stand before all of this.
//
// A static object that needs code to run at load must carry one of these. Only the entry of the
// library (DllMain's caller) has none: without one it comes after every number, and is taken down
// first. A test reads the finished library and holds it to this.
#pragma once

namespace ulm::glue {

inline constexpr int kInitSwitchFlags = 200;  // the four debug switches
// The constants of the big numbers come next: kConstantsPriority in bignum/constants.h.

}  // namespace ulm::glue
