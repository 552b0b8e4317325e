// Clips the shapes of a document.
#pragma once

#include <cstdint>
#include <optional>

#include "command/clip_document.h"

namespace ulm::tools {

// Clips a polygon by the planes of `mask`, bits of clip::ClipPlaneBit. Returns nothing if no part
// is left. Throws std::runtime_error for more vertices than the clipper can count.
template <class Real>
std::optional<ClipPoints<Real>> clipPolygon(const ClipPoints<Real>& points, std::uint32_t mask);

// Clips a segment in the same way. `points` must have two elements.
template <class Real>
std::optional<ClipPoints<Real>> clipSegment(const ClipPoints<Real>& points, std::uint32_t mask);

}  // namespace ulm::tools
