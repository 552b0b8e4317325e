// Bounds on the work of one glyph, which damaged fonts could make endless: composites that name
// each other over and over. An outline beyond them has 0 points, a list of components ends. Real
// glyphs stay below 10,000 of each.
#pragma once

#include <cstdint>

namespace ulm::truetype {

// Component records read, repeats counted.
inline constexpr std::uint32_t kMostComponentRecords = 1u << 17;

// The work is 1 for each point and each contour read, and for each point that a component record
// places, again at each level of nesting, 2 by scales and 3 by a matrix; a move alone is free.
inline constexpr std::uint32_t kMostOutlineWork = 1u << 22;

}  // namespace ulm::truetype
