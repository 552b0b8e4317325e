#include "clip/trace.h"

#include "clip/detail/fixed_polygon.h"
#include "clip/detail/trace_drivers.h"

namespace ulm::clip {

ULM_CLIP_INSTANTIATE_TRACED(ClipPolygon)
ULM_CLIP_INSTANTIATE_TRACED(ClipPolygonF)

}  // namespace ulm::clip
