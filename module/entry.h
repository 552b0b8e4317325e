// The two exports of the library, by which the host's object runtime takes it up. They come from
// the host's thread, one at a time.
#pragma once

#include <cstdint>

#include "hostsdk/export.h"
#include "module/main_module.h"

// Writes the API version of the runtime that the library was built against: 21, 8, 0, 0.
extern "C" ULM_EXPORT void odrxGetAPIVersion(std::uint32_t* major, std::uint32_t* minor,
                                             std::uint32_t* majorBuild, std::uint32_t* minorBuild);

// The module object, made at the first call and again after a finalRelease, with a count of 0. A
// new object takes the instance handle out of the slot and leaves null there; an object that is
// there leaves the slot alone. Where memory runs out: std::bad_alloc with the slot as it was, or,
// when the process has a new-handler, null with the slot cleared after the handler was called once.
extern "C" ULM_EXPORT OdRxModule* odrxCreateModuleObject(HINSTANCE* slot);
