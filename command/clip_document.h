// The input and output of `ulmira clip`: lists of polygons and segments, as JSON or as plain text.
//
// JSON   {"polygons": [[[x, y, z, w], ...], ...], "segments": [[a, b], ...]}, one key or both; null
//        is a shape that is completely cut away
// text   one vertex a line, its four numbers separated by blanks; a blank line between polygons;
//        `null` alone on a line for a shape that is cut away; # starts a comment, which ends with
//        the line. A segment is a group of two vertices. The word `polygons` or `segments` alone on
//        a line names the kind of the following shapes; before the first such line the caller of
//        readClipDocument names it.
// A byte order mark at the start is skipped. A number is read to the nearest value of Real, and
// written with the fewest digits that read back to the same bits. Plain text can also contain inf
// and nan, a nan without a sign; JSON cannot represent them.
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

// Polygons or segments. A shape without a value is completely cut away.
template <class Real>
using ClipShapes = std::vector<std::optional<ClipPoints<Real>>>;

template <class Real>
struct ClipDocument {
  std::optional<ClipShapes<Real>> polygons;
  std::optional<ClipShapes<Real>> segments;
  bool text = false;      // it was read from plain text
  bool headings = false;  // plain text names the lists; with both lists it always does
};

// A fault in the input. Lines and columns are counted from 1, columns in bytes.
struct ClipInputError : std::runtime_error {
  // `offset` is the position of the fault in `text`.
  ClipInputError(std::string_view text, std::size_t offset, const std::string& message);
  std::size_t line = 1;
  std::size_t column = 1;
};

// Reads either form; JSON starts with a brace. `textHoldsSegments` is the kind of the shapes before
// the first heading of plain text. Throws ClipInputError. The result has `headings` if the text has
// them, and for JSON with segments, so that the document written as plain text can be read back
// without an option.
template <class Real>
ClipDocument<Real> readClipDocument(std::string_view text, bool textHoldsSegments);

// Appends a number in the form of both outputs.
template <class Real>
void appendNumber(std::string& text, Real value);

// Throws std::runtime_error if a coordinate is not finite.
template <class Real>
std::string writeClipJson(const ClipDocument<Real>& document);

template <class Real>
std::string writeClipText(const ClipDocument<Real>& document);

}  // namespace ulm::tools
