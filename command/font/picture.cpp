#include "command/font/picture.h"

#include <algorithm>
#include <cstdint>
#include <sstream>
#include <stdexcept>

#include "command/support/text.h"
#include "truetype/reader/glyphs.h"
#include "truetype/reader/kerning.h"
#include "truetype/reader/metrics.h"

namespace ulm::tools {
namespace {

using namespace ulm::truetype;

// A position in the picture.
struct Spot {
  double x, y;
};

bool onCurve(const GlyphPoint& point) { return (point.flags & kPointOnCurve) != 0; }
Spot midpoint(Spot a, Spot b) { return {(a.x + b.x) / 2, (a.y + b.y) / 2}; }

// Adds a closed contour. Points off the curve are control points of quadratic curves; between two
// of them in sequence, the midpoint is on the curve.
void addContour(std::ostream& path, const GlyphPoint* points, std::size_t count,
                std::int64_t originX) {
  const auto spot = [&](std::size_t i) -> Spot {
    return {static_cast<double>(points[i % count].x + originX),
            static_cast<double>(-points[i % count].y)};
  };
  const auto write = [&path](char command, Spot to) { path << command << to.x << ' ' << to.y; };
  std::size_t first = 0;
  while (first < count && !onCurve(points[first])) ++first;
  const bool allOff = first == count;
  if (allOff) first = 0;
  const Spot start = allOff ? midpoint(spot(count - 1), spot(0)) : spot(first);
  write('M', start);
  const std::size_t begin = allOff ? 0 : first + 1;
  for (std::size_t i = begin; i < begin + count - (allOff ? 0 : 1); ++i) {
    if (onCurve(points[i % count])) {
      write('L', spot(i));
      continue;
    }
    write('Q', spot(i));
    const bool last = i + 1 == begin + count - (allOff ? 0 : 1);
    if (last) {
      write(' ', start);
    } else if (onCurve(points[(i + 1) % count])) {
      write(' ', spot(++i));
    } else {
      write(' ', midpoint(spot(i), spot(i + 1)));
    }
  }
  path << 'Z';
}

std::vector<GlyphPoint> pointsOf(const FontFile& font, std::uint32_t glyph) {
  GlyphPoint* points = nullptr;
  const std::int32_t count = getGlyphPoints(font.get(), glyph, &points);
  const auto owner = takeBlock(points);
  return count <= 0 ? std::vector<GlyphPoint>() : std::vector<GlyphPoint>(points, points + count);
}

// Returns the outline as SVG path data, whose y axis points down.
std::string svgPath(const std::vector<GlyphPoint>& points, std::int64_t originX) {
  std::ostringstream path;
  path.precision(15);  // exact for half units at the end of a long text
  std::size_t start = 0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    if ((points[i].flags & kPointEndsContour) == 0) continue;
    addContour(path, points.data() + start, i + 1 - start, originX);
    start = i + 1;
  }
  return path.str();
}

// In font units; the y axis points up.
struct Box {
  std::int64_t xMin, yMin, xMax, yMax;
};
std::string svgPicture(const Box& box, const std::string& paths) {
  std::ostringstream picture;
  picture << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"" << box.xMin << ' ' << -box.yMax
          << ' ' << box.xMax - box.xMin << ' ' << box.yMax - box.yMin << "\">\n"
          << paths << "</svg>\n";
  return picture.str();
}

}  // namespace

Picture glyphPicture(const FontFile& font, const std::vector<std::string>& arguments) {
  const std::vector<NamedGlyph> named = glyphsOfArguments(font, arguments);
  if (named.size() != 1) throw std::runtime_error("the outline of one glyph at a time");
  const std::vector<GlyphPoint> points = pointsOf(font, named[0].glyph);
  Json values{{"glyph", named[0].glyph}};
  addCharacter(values, named[0].code);
  Json& rows = values["points"] = Json::array();
  Box box{0, 0, 0, 0};
  for (const GlyphPoint& point : points) {
    rows.push_back({point.x, point.y, point.flags});
    const bool first = &point == points.data();
    box.xMin = first ? point.x : std::min<std::int64_t>(box.xMin, point.x);
    box.yMin = first ? point.y : std::min<std::int64_t>(box.yMin, point.y);
    box.xMax = first ? point.x : std::max<std::int64_t>(box.xMax, point.x);
    box.yMax = first ? point.y : std::max<std::int64_t>(box.yMax, point.y);
  }
  return {values, svgPicture(box, "<path d=\"" + svgPath(points, 0) + "\"/>\n")};
}

Picture textPicture(const FontFile& font, const std::string& text, const std::string& svgFile) {
  std::vector<std::uint16_t> glyphs;
  Json unmapped = Json::array();
  for (const char32_t code : decodeUtf8(text)) {
    glyphs.push_back(font.glyphOf(code));
    if (glyphs.back() == 0) unmapped.push_back(codeName(code));
  }
  std::vector<KernAdjustment> kerning(glyphs.size());
  if (font->kernType == 2) {
    getRunKerning(font.get(), glyphs.data(), static_cast<std::int32_t>(glyphs.size()), 0,
                  kerning.data());
  }
  std::string paths;
  std::int64_t x = 0;
  Box box{0, -font->unitsPerEm / 4, 0, font->unitsPerEm};
  for (std::size_t i = 0; i < glyphs.size(); ++i) {
    if (glyphs[i] >= font->numGlyphs) continue;
    GlyphMetrics metrics{};
    readGlyphMetrics(font.get(), glyphs[i], &metrics);
    const std::vector<GlyphPoint> points = pointsOf(font, glyphs[i]);
    for (const GlyphPoint& point : points) {
      box.xMin = std::min(box.xMin, x + point.x);
      box.yMin = std::min<std::int64_t>(box.yMin, point.y);
      box.xMax = std::max(box.xMax, x + point.x);
      box.yMax = std::max<std::int64_t>(box.yMax, point.y);
    }
    if (!points.empty()) paths += "<path d=\"" + svgPath(points, x) + "\"/>\n";
    const std::int64_t kern = i + 1 < glyphs.size() ? kerning[i].x : 0;
    x += metrics.advanceWidth + kern * font->unitsPerEm / 1000;
    box.xMax = std::max(box.xMax, x);
  }
  return {Json{{"glyphs", glyphs},
               {"width", x},
               {"unmapped", unmapped},
               {"svg", encodeUtf8(decodeFileName(svgFile))}},
          svgPicture(box, paths)};
}

}  // namespace ulm::tools
