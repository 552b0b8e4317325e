// `ulmira font subset`: a smaller font for a browser or a document.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <system_error>

#include "command/commands.h"
#include "command/font/names.h"
#include "command/font/subset.h"
#include "command/support/file_batch.h"
#include "command/support/program.h"
#include "command/support/streams.h"
#include "truetype/bytes.h"
#include "truetype/reader/names.h"
#include "truetype/writer/subset.h"

namespace ulm::tools {
namespace {

using namespace ulm::truetype;

constexpr std::string_view kName = "font subset";  // in messages

const char* reasonOf(WriterResult result) {
  switch (result) {
    case WriterResultOk:
      return "done";
    case WriterResultEmptyTable:
      return "a table of the new font would be empty";
    case WriterResultUnknownTable:
      return "a table of the new font is of no known kind";
    case WriterResultNoMemory:
      return "memory ran out";
    case WriterResultNoData:
      return "none of the glyphs could be taken";
    case WriterResultNameTooLong:
      return "the names come to 65,536 bytes or more";
    case WriterResultBadTable:
      return "a table of the new font is unusable";
    case WriterResultMissingTable:
      return "the new font would lack a table";
    case WriterResultCmapTooLarge:
      return "the characters are too many and too scattered for one character map";
    case WriterResultNameOutOfRange:
      return "there are too many name records";
    case WriterResultTooManyGlyphs:
      return "with the components of composites there are more than 65,535 glyphs";
    case WriterResultGlyphTooLarge:
      return "a glyph has 65,535 bytes or more";
    case WriterResultFileTooLarge:
      return "the new font would be larger than a font file can be";
  }
  return "the new font cannot be made";
}

// What the font's maker lets others do with it, by the bits of fsType.
void requirePermission(const FontFile& font) {
  GlobalFontInfo info;
  getGlobalFontInfo(font.get(), &info);
  constexpr unsigned kRestricted = 0x0002, kPreviewAndPrint = 0x0004, kEditable = 0x0008;
  constexpr unsigned kNoSubsetting = 0x0100, kBitmapsAlone = 0x0200;
  const unsigned bits = info.typeFlags;
  const char* forbids = (bits & kRestricted) != 0 && (bits & (kPreviewAndPrint | kEditable)) == 0
                            ? "forbids embedding"
                        : (bits & kNoSubsetting) != 0 ? "forbids subsetting"
                        : (bits & kBitmapsAlone) != 0 ? "lets nothing but its bitmaps be embedded"
                                                      : nullptr;
  if (forbids == nullptr) return;
  throw std::runtime_error(std::string("the font ") + forbids +
                           " (OS/2 fsType); --ignore-embedding-permission goes on all the same");
}

// What of the source the new font lacks, and what a browser may not like in it.
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
  std::unique_ptr<std::uint8_t[], Freed> image;
  std::uint32_t length = 0;
  std::vector<std::uint16_t> glyphs;  // the numbers in it, in the plan's order
  std::string_view bytes() const { return {reinterpret_cast<const char*>(image.get()), length}; }
};

NewFont makeFont(const FontFile& font, const SubsetPlan& plan, const SubsetOptions& options) {
  std::unique_ptr<FamilyNames> names;
  if (options.family) {
    names = std::make_unique<FamilyNames>(*options.family, namesOfFont(font).style);
  }
  NewFont made;
  made.glyphs = plan.glyphs;
  std::uint8_t* image = nullptr;
  const WriterResult result = createTrueTypeSubset(
      font.get(), &image, &made.length, made.glyphs.data(), plan.codes.data(),
      static_cast<std::int32_t>(plan.codes.size()),
      names == nullptr ? 0 : static_cast<std::uint32_t>(names->records().size()),
      names == nullptr ? nullptr : names->records().data(),
      (options.genericName ? SubsetGenericName : 0u) | (options.dropOs2 ? 0u : SubsetKeepOS2));
  if (result != WriterResultOk) throw std::runtime_error(reasonOf(result));
  made.image.reset(image);
  return made;
}

std::string mappingOf(const SubsetPlan& plan, const NewFont& made, const SubsetOptions& options) {
  Json chars = Json::object(), fresh = Json::object();
  for (std::size_t i = 1; i < plan.codes.size(); ++i) {
    const std::string code = std::to_string(plan.codes[i]);
    // Behind the greatest key, where an ordered object would search for each.
    chars.get_ref<Json::object_t&>().push_back({code, plan.glyphs[i]});
    fresh.get_ref<Json::object_t&>().push_back({code, made.glyphs[i]});
  }
  return Json{{"face", options.font.face}, {"chars", chars}, {"new", fresh}}.dump() + '\n';
}

// Whether the output is standard output, a pipe or a device.
bool isStream(const std::string& output) {
  if (output.empty()) return false;
  std::error_code error;
  const auto status = std::filesystem::status(fileNamed(output), error);
  return output == "-" ||
         (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status));
}

// Everything is made in memory first, so that a refusal comes before the first byte is written.
void subset(const SubsetOptions& options) {
  if (options.input == SubsetInput::TextFile && options.list == "-" && options.font.file == "-") {
    throw std::runtime_error("standard input: cannot be both the font and the text");
  }
  const FontFile font(options.font);
  if (!options.ignorePermission) requirePermission(font);
  const SubsetPlan plan = planSubset(font, options);
  const NewFont made = makeFont(font, plan, options);
  const std::vector<std::string> layout =
      layoutInUse(font, {plan.glyphs.begin() + 1, plan.glyphs.end()});
  FileBatch files;
  files.protect(options.font.file);
  if (options.input == SubsetInput::TextFile) files.protect(options.list);
  if (!options.mapping.empty()) files.add(options.mapping, mappingOf(plan, made, options));
  if (!options.preview.empty()) {
    files.add(options.preview, previewPage(font, made.bytes(), plan, layout, options));
  }
  files.add(options.out, made.bytes());
  const std::string summary = font.name() + ": " + std::to_string(font->imageSize) + " bytes; " +
                              (options.out == "-" ? "standard output" : options.out) + ": " +
                              std::to_string(made.length) + " bytes";
  // Nothing else may get into an output that is a stream, which could be standard output by any
  // name.
  const bool streams =
      isStream(options.out) || isStream(options.mapping) || isStream(options.preview);
  if (!streams) files.add("-", summary + '\n');
  files.commit();
  if (streams) printMessage(kName, summary);
  for (const std::string& line : plan.leftOut) printMessage(kName, line);
  for (const std::string& line : warningsFor(font, options, layout)) printMessage(kName, line);
}

}  // namespace

void addSubsetCommand(CLI::App& font) {
  const auto options = std::make_shared<SubsetOptions>();
  CLI::App* command =
      font.add_subcommand("subset", "Make a smaller font of some characters or glyphs");
  command
      ->add_option("FONT", options->font.file,
                   "A TrueType font or collection; - for standard input")
      ->required();
  command->add_option("-o", options->out, "The file to write; - for standard output")->required();
  command->add_option("--face", options->font.face, "The face of a collection, from 0");
  CLI::Option_group* lists = command->add_option_group("What to take, one of these");
  const auto addList = [&](const char* name, SubsetInput input, const char* about) {
    lists->add_option_function<std::string>(
        name,
        [options, input](const std::string& list) {
          options->input = input;
          options->list = list;
        },
        about);
  };
  addList("--text", SubsetInput::Text, "The characters of a text in UTF-8");
  addList("--text-file", SubsetInput::TextFile, "Those of a file in UTF-8, without its line ends");
  addList("--unicodes", SubsetInput::Unicodes, "Characters by number, as U+0041,U+0061-U+007A");
  addList("--glyphs", SubsetInput::Glyphs, "Glyphs by number, as 3,7-12");
  lists->require_option(1);
  command->add_flag("--drop-os2", options->dropOs2, "Leave out OS/2; browsers need it");
  CLI::Option* generic =
      command->add_flag("--generic-name", options->genericName, "Name the font TrueTypeSubset");
  command
      ->add_option_function<std::string>(
          "--name", [options](const std::string& family) { options->family = family; },
          "Name the font's family so")
      ->excludes(generic);
  command->add_option("--mapping", options->mapping, "Write each code's glyphs there, as JSON");
  command->add_option("--preview", options->preview, "Write a page with both fonts there");
  command->add_flag("--ignore-embedding-permission", options->ignorePermission,
                    "Go on where the font forbids embedding or subsetting");
  command->callback([options] { subset(*options); });
}

}  // namespace ulm::tools
