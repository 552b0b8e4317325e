// `ulmira clip`: clips polygons and segments against the view volume.
#include <CLI/CLI.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "clip/vertex.h"
#include "command/clip_document.h"
#include "command/clip_picture.h"
#include "command/clip_shapes.h"
#include "command/commands.h"
#include "command/support/file_batch.h"
#include "command/support/streams.h"

namespace ulm::tools {
namespace {

constexpr std::uint32_t kRectangle =
    clip::ClipXMin | clip::ClipXMax | clip::ClipYMin | clip::ClipYMax;
constexpr std::uint32_t kVolume = kRectangle | clip::ClipZMin | clip::ClipZMax;

constexpr std::uint64_t kMaxInputBytes = 1u << 28;

struct ClipOptions {
  std::string input = "-";
  std::string output = "-";
  std::optional<std::string> svg;
  std::uint32_t mask = kVolume;
  bool rectangle = false;
  bool inFloat = false;
  bool text = false;
  bool json = false;
  bool segments = false;
};

// Returns the bit of a plane. Throws a usage error for an unknown name.
std::uint32_t planeNamed(std::string name) {
  constexpr std::pair<const char*, std::uint32_t> kPlanes[] = {
      {"xmin", clip::ClipXMin}, {"xmax", clip::ClipXMax}, {"ymin", clip::ClipYMin},
      {"ymax", clip::ClipYMax}, {"zmin", clip::ClipZMin}, {"zmax", clip::ClipZMax}};
  for (char& c : name) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  for (const auto& [plane, bit] : kPlanes) {
    if (name == plane) return bit;
  }
  throw CLI::ValidationError("--planes",
                             "'" + name + "' is none of xmin, xmax, ymin, ymax, zmin, zmax");
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
  const std::uint32_t mask = options.mask;
  const ClipDocument<Real> before = readClipDocument<Real>(text, options.segments);
  const ClipDocument<Real> after = {
      clipEach(before.polygons, [&](const auto& p) { return clipPolygon<Real>(p, mask); }),
      clipEach(before.segments, [&](const auto& s) { return clipSegment<Real>(s, mask); }),
      options.text || (before.text && !options.json), before.headings};
  const std::string result = after.text ? writeClipText(after) : writeClipJson(after);
  FileBatch outputs;
  outputs.protect(options.input);
  if (options.svg) outputs.add(*options.svg, writeClipSvg(before, after));
  outputs.add(options.output, result);
  outputs.commit();
}

void runCommand(const ClipOptions& options) {
  Input input(options.input);
  const std::string text = input.readAll(kMaxInputBytes);
  try {
    options.inFloat ? run<float>(options, text) : run<double>(options, text);
  } catch (const ClipInputError& error) {
    throw std::runtime_error(input.name() + ':' + std::to_string(error.line) + ':' +
                             std::to_string(error.column) + ": " + error.what());
  }
}

constexpr const char* kFooter =
    R"(JSON is {"polygons": [[[x, y, z, w], ...], ...], "segments": [[[x, y, z, w], [x, y, z, w]], ...]}. Plain
text has a vertex on each line, and a blank line between shapes; the headings polygons and segments
separate both kinds.

EXAMPLES
  ulmira clip scene.json --svg scene.svg >clipped.json
  printf '2 0 0 1\n-2 0 0 1\n0 2 0 1\n' | ulmira clip --rectangle
  ulmira clip scene.json --planes zmin,zmax --float -o clipped.json
)";

}  // namespace

void addClipCommand(CLI::App& app, int& /*status*/) {
  const auto options = std::make_shared<ClipOptions>();
  CLI::App* const command =
      app.add_subcommand("clip", "Clip polygons and segments against the view volume");
  command->footer(kFooter);
  command->add_option("FILE", options->input,
                      "JSON or plain text; - or no argument reads standard input");
  command->add_flag("--rectangle", options->rectangle, "Clip in x and y only");
  command->add_flag("--float", options->inFloat, "Compute in 32 bits instead of 64");
  const auto readPlanes = [options](const std::vector<std::string>& names) {
    options->mask = 0;
    for (const std::string& name : names) options->mask |= planeNamed(name);
  };
  CLI::Option* const planes = command->add_option_function<std::vector<std::string>>(
      "--planes", readPlanes, "Only these planes, of xmin, xmax, ymin, ymax, zmin, zmax");
  // The option takes one text of names. The next argument is the file.
  planes->type_name("PLANE,...")->type_size(1)->expected(1)->delimiter(',')->take_all();
  planes->allow_extra_args(false);
  command->add_flag("--segments", options->segments,
                    "Plain text without headings contains segments");
  CLI::Option* const json =
      command->add_flag("--json", options->json, "Write JSON; without it, the form of the input");
  command->add_flag("--text", options->text, "Write plain text; without it, the form of the input")
      ->excludes(json);
  command->add_option("-o,--output", options->output, "Write to this file; - for standard output");
  command->add_option("--svg", options->svg, "Write a picture of before and after to this file");
  command->callback([options, planes] {
    if (options->rectangle && planes->count() == 0) options->mask = kRectangle;
    if (options->rectangle && (options->mask & ~kRectangle) != 0) {
      throw CLI::ValidationError("--planes", "--rectangle excludes zmin and zmax");
    }
    runCommand(*options);
  });
}

}  // namespace ulm::tools
