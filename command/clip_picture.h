// The picture of `ulmira clip`.
#pragma once

#include <string>

#include "command/clip_document.h"

namespace ulm::tools {

// Returns an SVG picture of the shapes before and after, over the square of x / w and y / w. A
// shape with a vertex whose w is not positive, or whose quotients are not finite, is omitted. Lines
// are cut off outside the visible part, because the time to render a dashed line grows with its
// length.
template <class Real>
std::string writeClipSvg(const ClipDocument<Real>& before, const ClipDocument<Real>& after);

}  // namespace ulm::tools
