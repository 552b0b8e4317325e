// What `ulmira clip` reads and writes: lists of polygons and segments, as JSON or as plain text.
//
// JSON   {"polygons": [[[x, y, z, w], ...], ...], "segments": [[a, b], ...]}, one key or both; null
//        stands for what is wholly cut away
// text   a vertex a line, its four numbers apart by blanks; a blank line between polygons; `null`
//        alone for what is cut away; # starts a remark, to the line's end. Segments are groups of
//        two vertices. The word `polygons` or `segments` alone on a line says which of the two
//        follow; before the first such line the caller says so.
// A byte order mark in front of either is passed over. Numbers are read to the nearest value of
// Real, and written in the fewest digits that read back to the same bits. Plain text has inf and
// nan besides, a nan without its sign; JSON has no numbers for them.
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

// Polygons or segments, each nothing where it is gone.
template <class Real>
using ClipShapes = std::vector<std::optional<ClipPoints<Real>>>;

template <class Real>
struct ClipDocument {
  std::optional<ClipShapes<Real>> polygons;
  std::optional<ClipShapes<Real>> segments;
  bool text = false;      // read from plain text
  bool headings = false;  // as plain text it names its lists; always true with both of them
};

// A fault in the input. Line and column count from 1, columns in bytes.
struct ClipInputError : std::runtime_error {
  ClipInputError(std::string_view text, std::size_t offset, const std::string& message);
  std::size_t line = 1;
  std::size_t column = 1;
};

// Reads either form; JSON starts with a brace. Raises ClipInputError. `headings` is set where the
// text has them, and for JSON with segments, so that as plain text it reads back by itself.
template <class Real>
ClipDocument<Real> readClipDocument(std::string_view text, bool textHoldsSegments);

// Raises std::runtime_error where a coordinate is not finite.
template <class Real>
std::string writeClipJson(const ClipDocument<Real>& document);
template <class Real>
std::string writeClipText(const ClipDocument<Real>& document);

// A picture of before and after over the square of x / w and y / w. What has a vertex with w <= 0
// or not finite has no such picture and is left out. Lines are cut off outside the visible part:
// a dashed line of any length would keep a renderer busy for as long.
template <class Real>
std::string writeClipSvg(const ClipDocument<Real>& before, const ClipDocument<Real>& after);

}  // namespace ulm::tools
