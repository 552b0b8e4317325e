// `ulmira clip`: polygons and segments against the view volume.
#include <CLI/CLI.hpp>
#include <cstdint>
#include <map>
#include <memory>

#include "clip/growable/polygon_array.h"
#include "clip/segment.h"
#include "tools/support/file_batch.h"
#include "tools/support/streams.h"
#include "tools/ulmira/clip_document.h"
#include "tools/ulmira/commands.h"

namespace ulm::tools {
namespace {

constexpr std::uint32_t kRectangle =
    clip::ClipXMin | clip::ClipXMax | clip::ClipYMin | clip::ClipYMax;
constexpr std::uint32_t kVolume = kRectangle | clip::ClipZMin | clip::ClipZMax;

constexpr std::uint64_t kMostInputBytes = 1u << 28;

struct ClipOptions {
  std::string input = "-";
  std::string output = "-";
  std::string svg;
  std::vector<std::uint32_t> planes;
  bool rectangle = false;
  bool inFloat = false;
  bool text = false;
  bool segments = false;

  std::uint32_t mask() const {
    std::uint32_t named = planes.empty() ? kVolume : 0;
    for (const std::uint32_t plane : planes) named |= plane;
    return named & (rectangle ? kRectangle : kVolume);
  }
};

template <class Real>
std::optional<ClipPoints<Real>> clipPolygon(const ClipPoints<Real>& points, std::uint32_t mask) {
  const auto count = static_cast<std::uint32_t>(points.size());
  if (count != points.size()) throw std::runtime_error("too many vertices in a polygon");
  clip::BasicClipPolygonArray<Real> polygon(count, true);
  for (std::uint32_t i = 0; i < count; ++i) {
    const auto& [x, y, z, w] = points[i];
    clip::BasicClipVertex<Real>& vertex = polygon.vertexForWrite(i);
    vertex = {x, y, z, w, 0};
    vertex.outcode = clip::computeOutcode(vertex) & mask;  // so that no other plane has a say
  }
  if (!clip::clipPolygonArrayInPlace(polygon)) return std::nullopt;
  ClipPoints<Real> clipped;
  clipped.reserve(polygon.count);
  for (std::uint32_t i = 0; i < polygon.count; ++i) {
    const clip::BasicClipVertex<Real>& vertex = polygon.vertexAt(i);
    clipped.push_back({vertex.x, vertex.y, vertex.z, vertex.w});
  }
  return clipped;
}

template <class Real>
std::optional<ClipPoints<Real>> clipSegment(const ClipPoints<Real>& points, std::uint32_t mask) {
  const auto pointOf = [](const std::array<Real, 4>& k) {
    return clip::BasicClipPoint<Real>{k[0], k[1], k[2], k[3]};
  };
  clip::BasicClipPoint<Real> a = pointOf(points.front());
  clip::BasicClipPoint<Real> b = pointOf(points.back());
  if (!clip::clipSegmentToVolume(a, b, mask)) return std::nullopt;
  return ClipPoints<Real>{{a.x, a.y, a.z, a.w}, {b.x, b.y, b.z, b.w}};
}

template <class Real, class ClipOne>
std::optional<ClipShapes<Real>> clipEach(const std::optional<ClipShapes<Real>>& shapes,
                                         ClipOne&& clipOne) {
  if (!shapes) return std::nullopt;
  ClipShapes<Real> clipped;
  for (const std::optional<ClipPoints<Real>>& shape : *shapes) {
    clipped.push_back(shape ? clipOne(*shape) : std::nullopt);
  }
  return clipped;
}

template <class Real>
void run(const ClipOptions& options, const std::string& text) {
  const std::uint32_t mask = options.mask();
  const ClipDocument<Real> before = readClipDocument<Real>(text, options.segments);
  const ClipDocument<Real> after = {
      clipEach(before.polygons, [&](const auto& p) { return clipPolygon<Real>(p, mask); }),
      clipEach(before.segments, [&](const auto& s) { return clipSegment<Real>(s, mask); })};
  const std::string result = options.text ? writeClipText(after) : writeClipJson(after);
  FileBatch outputs;
  outputs.protect(options.input);
  if (!options.svg.empty()) outputs.add(options.svg, writeClipSvg(before, after));
  outputs.add(options.output, result);
  outputs.commit();
}

void runCommand(const ClipOptions& options) {
  Input input(options.input);
  const std::string text = input.readAll(kMostInputBytes);
  try {
    options.inFloat ? run<float>(options, text) : run<double>(options, text);
  } catch (const ClipInputError& error) {
    throw std::runtime_error(input.name() + ':' + std::to_string(error.line) + ':' +
                             std::to_string(error.column) + ": " + error.what());
  }
}

}  // namespace

void addClipCommand(CLI::App& app, int& /*status*/) {
  static const std::map<std::string, std::uint32_t> kPlanes = {
      {"xmin", clip::ClipXMin}, {"xmax", clip::ClipXMax}, {"ymin", clip::ClipYMin},
      {"ymax", clip::ClipYMax}, {"zmin", clip::ClipZMin}, {"zmax", clip::ClipZMax}};
  const auto options = std::make_shared<ClipOptions>();
  CLI::App* const command =
      app.add_subcommand("clip", "Clip polygons and segments against the view volume");
  command->add_option("file", options->input, "JSON or plain text; standard input without it");
  command->add_flag("--rectangle", options->rectangle, "Clip in x and y only");
  command->add_flag("--float", options->inFloat, "Compute in 32 bits instead of 64");
  command
      ->add_option("--planes", options->planes, "Only these planes: xmin,xmax,ymin,ymax,zmin,zmax")
      ->delimiter(',')
      ->transform(CLI::CheckedTransformer(kPlanes, CLI::ignore_case));
  command->add_flag("--segments", options->segments, "Plain text input holds segments");
  command->add_flag("--text", options->text, "Write plain text instead of JSON");
  command->add_option("-o,--output", options->output, "Write to this file");
  command->add_option("--svg", options->svg, "Draw before and after into this file");
  command->callback([options] { runCommand(*options); });
}

}  // namespace ulm::tools
