#include "command/clip_picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>

#include "clip/vertex.h"
#include "command/clip_shapes.h"

namespace ulm::tools {
namespace {

// Shapes are cut off at this distance from the centre. The visible part ends at 1.6.
constexpr double kFrame = 4;
constexpr std::uint32_t kFrameMask =
    clip::ClipXMin | clip::ClipXMax | clip::ClipYMin | clip::ClipYMax;

// Returns the points of a shape in the picture, each as (x, y, 0, kFrame), or nothing if the shape
// cannot be drawn.
template <class Real>
std::optional<ClipPoints<double>> pictureOf(const ClipPoints<Real>& points, bool polygon) {
  ClipPoints<double> picture;
  bool insideFrame = true;
  for (const auto& [x, y, z, w] : points) {
    const double across = static_cast<double>(x) / static_cast<double>(w);
    const double up = static_cast<double>(y) / static_cast<double>(w);
    if (!(w > 0) || !std::isfinite(across) || !std::isfinite(up)) return std::nullopt;
    insideFrame = insideFrame && std::abs(across) <= kFrame && std::abs(up) <= kFrame;
    picture.push_back({across, up, 0, kFrame});
  }
  if (insideFrame) return picture;
  std::optional<ClipPoints<double>> cut =
      polygon ? clipPolygon(picture, kFrameMask) : clipSegment(picture, kFrameMask);
  // The clipper computes differences, which overflow for huge coordinates.
  const auto isFinite = [](const std::array<double, 4>& k) {
    return std::isfinite(k[0]) && std::isfinite(k[1]);
  };
  if (cut && !std::all_of(cut->begin(), cut->end(), isFinite)) return std::nullopt;
  return cut;
}

template <class Real>
void addShapes(std::string& out, const std::optional<ClipShapes<Real>>& shapes, bool polygons,
               const char* style) {
  if (!shapes) return;
  for (const std::optional<ClipPoints<Real>>& shape : *shapes) {
    if (!shape || shape->empty()) continue;
    const std::optional<ClipPoints<double>> picture = pictureOf(*shape, polygons);
    if (!picture) continue;
    out += polygons ? "  <polygon class=\"" : "  <polyline class=\"";
    out += style;
    out += "\" points=\"";
    for (const auto& [x, y, z, w] : *picture) {
      if (out.back() != '"') out += ' ';
      appendNumber(out, x);
      out += ',';
      appendNumber(out, y);
    }
    out += "\"/>\n";
  }
}

}  // namespace

template <class Real>
std::string writeClipSvg(const ClipDocument<Real>& before, const ClipDocument<Real>& after) {
  // Widths of strokes and dashes are in units of the picture, which are 200 pixels. Not every
  // renderer supports widths in pixels.
  std::string out =
      "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"640\" height=\"640\" "
      "viewBox=\"-1.6 -1.6 3.2 3.2\">\n"
      " <style>\n"
      "  .volume { fill: #fff; stroke: #222; stroke-width: 0.0075 }\n"
      "  .before { fill: none; stroke: #8a8a8a; stroke-width: 0.0075; "
      "stroke-dasharray: 0.025 0.02 }\n"
      "  .after { fill: #2f7bd0; fill-opacity: 0.3; stroke: #1b4f8a; stroke-width: 0.0075; "
      "stroke-linejoin: round }\n"
      "  polyline.after { fill: none }\n"
      " </style>\n"
      " <rect x=\"-1.6\" y=\"-1.6\" width=\"3.2\" height=\"3.2\" fill=\"#f2f2f2\"/>\n"
      " <g transform=\"scale(1,-1)\">\n"
      "  <rect class=\"volume\" x=\"-1\" y=\"-1\" width=\"2\" height=\"2\"/>\n";
  addShapes(out, before.polygons, true, "before");
  addShapes(out, before.segments, false, "before");
  addShapes(out, after.polygons, true, "after");
  addShapes(out, after.segments, false, "after");
  return out + " </g>\n</svg>\n";
}

template std::string writeClipSvg(const ClipDocument<double>&, const ClipDocument<double>&);
template std::string writeClipSvg(const ClipDocument<float>&, const ClipDocument<float>&);

}  // namespace ulm::tools
