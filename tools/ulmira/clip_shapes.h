// The clipper at work on the shapes of a document.
#pragma once

#include <cstdint>
#include <optional>

#include "tools/ulmira/clip_document.h"

namespace ulm::tools {

// What the planes of `mask` (bits of clip::ClipPlaneBit) leave of a polygon; nothing where it is
// gone. Its vertices get outcodes of these planes alone.
template <class Real>
std::optional<ClipPoints<Real>> clipPolygon(const ClipPoints<Real>& points, std::uint32_t mask);

// The same for a segment, of two points.
template <class Real>
std::optional<ClipPoints<Real>> clipSegment(const ClipPoints<Real>& points, std::uint32_t mask);

}  // namespace ulm::tools
