#include <charconv>
#include <cmath>

#include "command/clip_document.h"

namespace ulm::tools {
namespace {

template <class Real>
void addNumber(std::string& out, Real value) {
  char digits[32];
  const auto written = std::to_chars(digits, digits + sizeof digits, value);
  out.append(digits, written.ptr);
}

template <class Real>
void addPoint(std::string& out, const std::array<Real, 4>& point, std::string_view between) {
  for (std::size_t i = 0; i < 4; ++i) {
    if (i != 0) out += between;
    addNumber(out, point[i]);
  }
}

template <class Real>
void addJsonShapes(std::string& out, const char* key, const ClipShapes<Real>& shapes) {
  out += '"';
  out += key;
  out += "\": [";
  for (std::size_t i = 0; i < shapes.size(); ++i) {
    out += i == 0 ? "\n  " : ",\n  ";
    if (!shapes[i]) {
      out += "null";
      continue;
    }
    out += '[';
    for (const std::array<Real, 4>& point : *shapes[i]) {
      for (const Real coordinate : point) {
        if (!std::isfinite(coordinate)) {
          throw std::runtime_error("number " + std::to_string(i + 1) + " of the " + key +
                                   " has a coordinate that is not finite, which JSON has no "
                                   "number for; --text has");
        }
      }
      out += &point == shapes[i]->data() ? "[" : ", [";
      addPoint(out, point, ",");
      out += ']';
    }
    out += ']';
  }
  out += shapes.empty() ? "]" : "\n]";
}

template <class Real>
void addTextShapes(std::string& out, const ClipShapes<Real>& shapes) {
  for (const std::optional<ClipPoints<Real>>& shape : shapes) {
    if (!out.empty()) out += '\n';
    if (!shape) out += "null\n";
    for (std::size_t i = 0; shape && i < shape->size(); ++i) {
      addPoint(out, (*shape)[i], " ");
      out += '\n';
    }
  }
}

// The points of a shape on the picture's plane, or nothing.
template <class Real>
std::optional<std::string> pictureOf(const ClipPoints<Real>& points) {
  std::string path;
  for (const auto& [x, y, z, w] : points) {
    const double across = static_cast<double>(x) / static_cast<double>(w);
    const double up = static_cast<double>(y) / static_cast<double>(w);
    if (!(w > 0) || !std::isfinite(across) || !std::isfinite(up)) return std::nullopt;
    if (!path.empty()) path += ' ';
    addNumber(path, across);
    path += ',';
    addNumber(path, up);
  }
  return path;
}

template <class Real>
void addSvgShapes(std::string& out, const std::optional<ClipShapes<Real>>& shapes,
                  const char* element, const char* style) {
  if (!shapes) return;
  for (const std::optional<ClipPoints<Real>>& shape : *shapes) {
    if (!shape || shape->empty()) continue;
    const std::optional<std::string> points = pictureOf(*shape);
    if (!points) continue;
    out += "  <";
    out += element;
    out += " class=\"";
    out += style;
    out += "\" points=\"" + *points + "\"/>\n";
  }
}

}  // namespace

template <class Real>
std::string writeClipJson(const ClipDocument<Real>& document) {
  std::string out = "{";
  if (document.polygons) addJsonShapes(out, "polygons", *document.polygons);
  if (document.polygons && document.segments) out += ",\n ";
  if (document.segments) addJsonShapes(out, "segments", *document.segments);
  return out + "}\n";
}

template <class Real>
std::string writeClipText(const ClipDocument<Real>& document) {
  std::string out;
  if (document.polygons) addTextShapes(out, *document.polygons);
  if (document.segments) addTextShapes(out, *document.segments);
  return out;
}

template <class Real>
std::string writeClipSvg(const ClipDocument<Real>& before, const ClipDocument<Real>& after) {
  std::string out =
      "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"640\" height=\"640\" "
      "viewBox=\"-1.6 -1.6 3.2 3.2\">\n"
      " <style>\n"
      "  * { vector-effect: non-scaling-stroke; stroke-width: 1.5 }\n"
      "  .volume { fill: #fff; stroke: #222 }\n"
      "  .before { fill: none; stroke: #b0b0b0; stroke-dasharray: 5 4 }\n"
      "  .after { fill: #2f7bd0; fill-opacity: 0.3; stroke: #1b4f8a }\n"
      "  polyline.after { fill: none }\n"
      " </style>\n"
      " <rect x=\"-1.6\" y=\"-1.6\" width=\"3.2\" height=\"3.2\" fill=\"#f2f2f2\"/>\n"
      " <g transform=\"scale(1,-1)\">\n"
      "  <rect class=\"volume\" x=\"-1\" y=\"-1\" width=\"2\" height=\"2\"/>\n";
  addSvgShapes(out, before.polygons, "polygon", "before");
  addSvgShapes(out, before.segments, "polyline", "before");
  addSvgShapes(out, after.polygons, "polygon", "after");
  addSvgShapes(out, after.segments, "polyline", "after");
  return out + " </g>\n</svg>\n";
}

template std::string writeClipJson(const ClipDocument<double>&);
template std::string writeClipJson(const ClipDocument<float>&);
template std::string writeClipText(const ClipDocument<double>&);
template std::string writeClipText(const ClipDocument<float>&);
template std::string writeClipSvg(const ClipDocument<double>&, const ClipDocument<double>&);
template std::string writeClipSvg(const ClipDocument<float>&, const ClipDocument<float>&);

}  // namespace ulm::tools
