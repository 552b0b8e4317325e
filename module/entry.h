// The two exports of the library. The host's object runtime calls them from its own thread, one at
// a time.
#pragma once

#include <cstdint>

#include "hostsdk/adapter/odrx.h"
#include "hostsdk/adapter/win32.h"
#include "hostsdk/export.h"

// Writes the API version of the runtime that the library was built against: 21, 8, 0, 0. No pointer
// may be null.
extern "C" ULM_EXPORT void odrxGetAPIVersion(std::uint32_t* major, std::uint32_t* minor,
                                             std::uint32_t* majorBuild, std::uint32_t* minorBuild);

// Returns the module object. The first call, and the first call after a finalRelease, creates it
// with a count of 0. A later call returns the existing object.
//   slot  not null. A new object takes the instance handle from *slot and stores null there. If the
//         object exists already, *slot is neither read nor changed.
// If memory runs out, raises std::bad_alloc and leaves *slot unchanged. If the process has a
// new-handler, calls it once, stores null in *slot and returns null instead.
extern "C" ULM_EXPORT OdRxModule* odrxCreateModuleObject(HINSTANCE* slot);
