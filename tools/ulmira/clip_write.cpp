#include <charconv>
#include <cmath>

#include "tools/ulmira/clip_document.h"

namespace ulm::tools {
namespace {

template <class Real>
void addNumber(std::string& out, Real value) {
  if (std::isnan(value)) {  // without the sign, which depends on the processor
    out += "nan";
    return;
  }
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
void addTextShapes(std::string& out, const char* heading, const ClipShapes<Real>& shapes) {
  if (!out.empty()) out += '\n';
  out += heading;
  for (std::size_t shape = 0; shape < shapes.size(); ++shape) {
    if (shape != 0) out += '\n';
    if (!shapes[shape]) {
      out += "null\n";
      continue;
    }
    for (const std::array<Real, 4>& point : *shapes[shape]) {
      addPoint(out, point, " ");
      out += '\n';
    }
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
  const bool headings = document.headings || (document.polygons && document.segments);
  std::string out;
  if (document.polygons) addTextShapes(out, headings ? "polygons\n" : "", *document.polygons);
  if (document.segments) addTextShapes(out, headings ? "segments\n" : "", *document.segments);
  return out;
}

template std::string writeClipJson(const ClipDocument<double>&);
template std::string writeClipJson(const ClipDocument<float>&);
template std::string writeClipText(const ClipDocument<double>&);
template std::string writeClipText(const ClipDocument<float>&);

}  // namespace ulm::tools
