// Where the vertices of a clipped polygon came from, so that a caller can carry along what belongs
// to them: colours, texture coordinates, normals.
//
// Each new vertex leaves a record, in the order made. Its ends are vertices of the source or
// earlier records, so that one walk over the records, `interpolate(earlier, later, t)` for each,
// gives every attribute of the result; a coordinate treated so comes out with the very bits of the
// clipper's.
#pragma once

#include <concepts>
#include <cstdint>

namespace ulm::clip {

// Below kClipRecordOrigin the index of a vertex of the source, from there on kClipRecordOrigin plus
// the index of a record.
using ClipOrigin = std::uint32_t;
inline constexpr ClipOrigin kClipRecordOrigin = 0x80000000U;

// The vertex at t on the edge from `earlier` to `later`, in the outline's direction of travel.
template <std::floating_point Real>
struct BasicClipRecord {
  ClipOrigin earlier;
  ClipOrigin later;
  Real t;
};
using ClipRecord = BasicClipRecord<double>;
using ClipRecordF = BasicClipRecord<float>;

// Six planes, each with at most a crossing an edge.
inline constexpr std::uint32_t kClipTraceCapacity = 6 * 32;

// The trace of a fixed polygon: `originCount` vertices of the result with their origins, and
// `recordCount` records. A vertex that was later cut off or, at 32, written over leaves its record.
template <std::floating_point Real>
struct BasicClipTrace {
  BasicClipRecord<Real> records[kClipTraceCapacity];
  std::uint32_t recordCount;
  ClipOrigin origins[32];
  std::uint32_t originCount;
};
using ClipTrace = BasicClipTrace<double>;
using ClipTraceF = BasicClipTrace<float>;

}  // namespace ulm::clip
