// The drivers with a trace, declared in clip/trace.h, for growable polygons.
#include "clip/trace.h"

#include "clip/detail/trace_drivers.h"
#include "clip/growable/detail/polygon_array_access.h"

namespace ulm::clip {

ULM_CLIP_INSTANTIATE_TRACED(ClipPolygonArray)
ULM_CLIP_INSTANTIATE_TRACED(ClipPolygonArrayF)

}  // namespace ulm::clip
