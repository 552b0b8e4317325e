// What `ulmira clip` reads and writes: lists of polygons and segments, as JSON or as plain text.
//
// JSON   {"polygons": [[[x, y, z, w], ...], ...], "segments": [[a, b], ...]}, one key or both; null
//        stands for what is wholly cut away
// text   a vertex a line, its four numbers apart by blanks; a blank line between polygons; `null`
//        alone for what is cut away; a line that starts with # is left out. Where segments are
//        asked for, each group of lines is one, of two vertices.
// Numbers are read to the nearest value of Real, and written in the fewest digits that read back to
// the same bits. Plain text has inf and nan besides; JSON has no numbers for them.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace ulm::tools {

template <class Real>
using ClipPoints = std::vector<std::array<Real, 4>>;

// Polygons or segments, nothing in the place of one that is gone.
template <class Real>
using ClipShapes = std::vector<std::optional<ClipPoints<Real>>>;

template <class Real>
struct ClipDocument {
  std::optional<ClipShapes<Real>> polygons;
  std::optional<ClipShapes<Real>> segments;
};

// A fault in the input. Line and column count from 1, columns in bytes.
struct ClipInputError : std::runtime_error {
  ClipInputError(std::string_view text, std::size_t offset, const std::string& message);
  std::size_t line = 1;
  std::size_t column = 1;
};

// Reads either form, telling them apart by the brace that JSON starts with. Raises ClipInputError.
template <class Real>
ClipDocument<Real> readClipDocument(std::string_view text, bool textHoldsSegments);

// Raises std::runtime_error where a coordinate is not finite.
template <class Real>
std::string writeClipJson(const ClipDocument<Real>& document);
template <class Real>
std::string writeClipText(const ClipDocument<Real>& document);

// A picture of before and after over the square of x / w and y / w. What has a vertex with w <= 0
// or not finite has no such picture and is left out.
template <class Real>
std::string writeClipSvg(const ClipDocument<Real>& before, const ClipDocument<Real>& after);

}  // namespace ulm::tools
