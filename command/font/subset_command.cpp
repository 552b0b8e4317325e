// `ulmira font subset`: a smaller font for a browser or a document.
#include <CLI/CLI.hpp>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "command/commands.h"
#include "command/font/font_file.h"
#include "command/font/layout.h"
#include "command/font/names.h"
#include "command/font/preview.h"
#include "command/font/report.h"
#include "command/font/subset_plan.h"
#include "command/support/file_batch.h"
#include "command/support/streams.h"
#include "truetype/bytes.h"
#include "truetype/reader/names.h"
#include "truetype/writer/result.h"
#include "truetype/writer/subset.h"

namespace ulm::tools {
namespace {

using namespace ulm::truetype;

constexpr std::string_view kSubcommand = "font subset";

// Throws if the embedding permissions in fsType do not allow a subset of the font.
void requirePermission(const FontFile& font) {
  GlobalFontInfo info;
  getGlobalFontInfo(font.get(), &info);
  constexpr unsigned kRestricted = 0x0002, kPreviewAndPrint = 0x0004, kEditable = 0x0008;
  constexpr unsigned kNoSubsetting = 0x0100, kBitmapsOnly = 0x0200;
  const unsigned bits = info.typeFlags;
  const char* forbids = (bits & kRestricted) != 0 && (bits & (kPreviewAndPrint | kEditable)) == 0
                            ? "forbids embedding"
                        : (bits & kNoSubsetting) != 0 ? "forbids subsetting"
                        : (bits & kBitmapsOnly) != 0  ? "allows only its bitmaps to be embedded"
                                                      : nullptr;
  if (forbids == nullptr) return;
  throw std::runtime_error(std::string("the font ") + forbids +
                           " (OS/2 fsType); --ignore-embedding-permission makes the subset anyway");
}

// Returns warnings about what the new font does not have, and about what a browser may refuse in
// it.
std::vector<std::string> warningsFor(const FontFile& font, const SubsetOptions& options,
                                     const std::vector<std::string>& layout) {
  constexpr std::uint32_t kShortestOs2 = 78, kMaxpLength = 32, kMaxpVersion = 0x00010000;
  std::vector<std::string> warnings;
  if (!layout.empty()) {
    std::string warning = "left out, layout that acts on the taken characters:";
    for (const std::string& table : layout) warning += ' ' + table;
    warnings.push_back(std::move(warning));
  }
  if (!options.dropOs2) {
    if (font->tables[kSlotOs2] == nullptr) {
      warnings.emplace_back("the font has no OS/2 table; browsers refuse a font without it");
    } else if (font->tableLengths[kSlotOs2] < kShortestOs2) {
      warnings.emplace_back(
          "the font's OS/2 table is shorter than 78 bytes; browsers may refuse it");
    }
  }
  if (font->tableLengths[kSlotMaxp] != kMaxpLength ||
      readUInt32(font->tables[kSlotMaxp], 0) != kMaxpVersion) {
    warnings.emplace_back(
        "the font's maxp is not of version 1.0; browsers may refuse the new font");
  }
  return warnings;
}

struct NewFont {
  std::unique_ptr<std::uint8_t[], FreeBlock> image;
  std::uint32_t length = 0;
  std::vector<std::uint16_t> glyphs;  // the index in the new font of each glyph of the plan
  std::string_view bytes() const { return {reinterpret_cast<const char*>(image.get()), length}; }
};

NewFont makeFont(const FontFile& font, const SubsetPlan& plan, const SubsetOptions& options) {
  std::unique_ptr<FamilyNames> names;
  if (options.family) {
    names = std::make_unique<FamilyNames>(*options.family, fontNames(font).style);
  }
  NewFont newFont;
  newFont.glyphs = plan.glyphs;
  std::uint8_t* image = nullptr;
  const WriterResult result = createTrueTypeSubset(
      font.get(), &image, &newFont.length, newFont.glyphs.data(), plan.codes.data(),
      static_cast<std::int32_t>(plan.codes.size()),
      names == nullptr ? 0 : static_cast<std::uint32_t>(names->records().size()),
      names == nullptr ? nullptr : names->records().data(),
      (options.genericName ? SubsetGenericName : 0u) | (options.dropOs2 ? 0u : SubsetKeepOS2));
  if (result != WriterResultOk) throw std::runtime_error(resultText(result));
  newFont.image.reset(image);
  return newFont;
}

// Returns the mapping file: by character code, the glyph in the source and in the new font.
std::string mappingOf(const SubsetPlan& plan, const NewFont& newFont,
                      const SubsetOptions& options) {
  Json sourceGlyphs = Json::object(), newGlyphs = Json::object();
  for (std::size_t i = 1; i < plan.codes.size(); ++i) {
    const std::string code = std::to_string(plan.codes[i]);
    // The codes are different, so push_back needs no search for an equal key.
    sourceGlyphs.get_ref<Json::object_t&>().push_back({code, plan.glyphs[i]});
    newGlyphs.get_ref<Json::object_t&>().push_back({code, newFont.glyphs[i]});
  }
  return Json{{"face", options.source.face}, {"chars", sourceGlyphs}, {"new", newGlyphs}}.dump() +
         '\n';
}

// Adds the outputs to the batch. All of them are complete in memory before the first is written.
void addOutputs(FileBatch& files, const FontFile& font, const NewFont& newFont,
                const SubsetPlan& plan, const std::vector<std::string>& layout,
                const SubsetOptions& options) {
  files.protect(options.source.file);
  if (options.input == SubsetInput::TextFile) files.protect(options.list);
  if (!options.mapping.empty()) files.add(options.mapping, mappingOf(plan, newFont, options));
  if (!options.preview.empty()) {
    files.add(options.preview, previewPage(font, newFont.bytes(), plan, layout, options));
  }
  files.add(options.output, newFont.bytes());
}

std::string summaryOf(const FontFile& font, const NewFont& newFont, const SubsetOptions& options) {
  return font.name() + ": " + std::to_string(font->imageSize) + " bytes; " +
         (options.output == "-" ? "standard output" : options.output) + ": " +
         std::to_string(newFont.length) + " bytes";
}

void makeSubset(const SubsetOptions& options) {
  if (options.input == SubsetInput::TextFile && options.list == "-" && options.source.file == "-") {
    throw std::runtime_error("standard input: cannot be both the font and the text");
  }
  const FontFile font(options.source);
  if (!options.ignorePermission) requirePermission(font);
  const SubsetPlan plan = planSubset(font, options);
  const NewFont newFont = makeFont(font, plan, options);
  const std::vector<std::string> layout =
      layoutInUse(font, {plan.glyphs.begin() + 1, plan.glyphs.end()});
  FileBatch files;
  addOutputs(files, font, newFont, plan, layout, options);
  const std::string summary = summaryOf(font, newFont, options);
  // If an output is a stream, the summary goes to the error stream: the output may be standard
  // output under another name, such as /dev/stdout.
  const bool hasStreams = files.hasStreams();
  if (!hasStreams) files.add("-", summary + '\n');
  files.commit();
  if (hasStreams) printMessage(kSubcommand, summary);
  for (const std::string& message : plan.leftOut) printMessage(kSubcommand, message);
  for (const std::string& warning : warningsFor(font, options, layout)) {
    printMessage(kSubcommand, warning);
  }
}

}  // namespace

void addFontSubsetCommand(CLI::App& font) {
  const auto options = std::make_shared<SubsetOptions>();
  CLI::App* command =
      font.add_subcommand("subset", "Make a smaller font of some characters or glyphs");
  command
      ->add_option("FONT", options->source.file,
                   "A TrueType font or collection; - for standard input")
      ->required();
  command->add_option("-o", options->output, "The file to write; - for standard output")
      ->required();
  command->add_option("--face", options->source.face, "The face of a collection, from 0");
  CLI::Option_group* lists = command->add_option_group("The characters or glyphs, as one of these");
  const auto addList = [&](const char* name, SubsetInput input, const char* description) {
    lists->add_option_function<std::string>(
        name,
        [options, input](const std::string& list) {
          options->input = input;
          options->list = list;
        },
        description);
  };
  addList("--text", SubsetInput::Text, "The characters of a text in UTF-8");
  addList("--text-file", SubsetInput::TextFile,
          "The characters of a UTF-8 file, without its line ends");
  addList("--unicodes", SubsetInput::Unicodes, "Characters by number, as U+0041,U+0061-U+007A");
  addList("--glyphs", SubsetInput::Glyphs, "Glyphs by number, as 3,7-12");
  lists->require_option(1);
  command->add_flag("--drop-os2", options->dropOs2, "Leave out OS/2; browsers need it");
  CLI::Option* generic =
      command->add_flag("--generic-name", options->genericName, "Name the new font TrueTypeSubset");
  command
      ->add_option_function<std::string>(
          "--name", [options](const std::string& family) { options->family = family; },
          "The family name of the new font")
      ->excludes(generic);
  command->add_option("--mapping", options->mapping,
                      "Write the glyphs of each character to this file, as JSON");
  command->add_option("--preview", options->preview,
                      "Write an HTML page that compares both fonts to this file");
  command->add_flag("--ignore-embedding-permission", options->ignorePermission,
                    "Continue even if the font forbids embedding or subsetting");
  command->callback([options] { makeSubset(*options); });
}

}  // namespace ulm::tools
