// `ulmira font subset`: a smaller font for a browser or a document.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
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
#include "command/font/subset_css.h"
#include "command/font/subset_plan.h"
#include "command/font/woff2.h"
#include "command/list_argument.h"
#include "command/support/file_batch.h"
#include "command/support/program.h"
#include "command/support/progress.h"
#include "command/support/streams.h"
#include "command/support/text.h"
#include "truetype/bytes.h"
#include "truetype/reader/names.h"
#include "truetype/writer/result.h"
#include "truetype/writer/subset.h"

namespace ulm::tools {
namespace {

using namespace ulm::truetype;
namespace fs = std::filesystem;

constexpr std::string_view kSubcommand = "font subset";

// The command line of `ulmira font subset`.
struct SubsetOptions {
  std::vector<std::string> fonts;
  std::uint32_t face = 0;
  std::string output;
  SubsetLists lists;
  bool woff2 = false;
  bool dropOs2 = false;
  bool genericName = false;
  bool ignorePermission = false;
  std::optional<std::string> family;  // without a value the source's names are kept
  std::string mapping, preview, css;  // the files to write; empty for none
};

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

// A new font with all that is written for it and about it.
struct NewFont {
  std::string outputName;  // "-" for standard output
  std::string bytes;       // of the file
  std::string mapping, preview, css;
  std::string summary;
  std::vector<std::string> messages;  // what it does not have, and warnings
};

struct TrueTypeImage {
  std::unique_ptr<std::uint8_t[], FreeBlock> image;
  std::uint32_t length = 0;
  std::vector<std::uint16_t> glyphs;  // the index in the new font of each glyph of the plan
  std::string_view bytes() const { return {reinterpret_cast<const char*>(image.get()), length}; }
};

TrueTypeImage makeImage(const FontFile& font, const SubsetPlan& plan,
                        const SubsetOptions& options) {
  std::unique_ptr<FamilyNames> names;
  if (options.family) {
    names = std::make_unique<FamilyNames>(*options.family, fontNames(font).style);
  }
  TrueTypeImage newFont;
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
std::string mappingOf(const SubsetPlan& plan, const TrueTypeImage& newFont,
                      const SubsetOptions& options) {
  Json sourceGlyphs = Json::object(), newGlyphs = Json::object();
  for (std::size_t i = 1; i < plan.codes.size(); ++i) {
    const std::string code = std::to_string(plan.codes[i]);
    // The codes are different, so push_back needs no search for an equal key.
    sourceGlyphs.get_ref<Json::object_t&>().push_back({code, plan.glyphs[i]});
    newGlyphs.get_ref<Json::object_t&>().push_back({code, newFont.glyphs[i]});
  }
  return Json{{"face", options.face}, {"chars", sourceGlyphs}, {"new", newGlyphs}}.dump() + '\n';
}

// Returns true for an output that names a folder: one that exists, or a name that ends as a
// folder's does.
bool namesFolder(const std::string& output) {
  std::error_code ignored;
  return output != "-" &&
         (!fileNamed(output).has_filename() || fs::is_directory(fileNamed(output), ignored));
}

// Returns the name of the file for a font in the output folder.
std::string nameInFolder(const std::string& font, const SubsetOptions& options) {
  fs::path name = font == "-" ? fs::path("font") : fileNamed(font).filename();
  name.replace_extension(options.woff2 ? ".woff2" : ".ttf");
  return textOf(fileNamed(options.output) / name);
}

std::string summaryOf(const FontFile& font, const NewFont& newFont, std::size_t imageSize) {
  std::string summary = font.name() + ": " + std::to_string(font->imageSize) + " bytes; " +
                        (newFont.outputName == "-" ? "standard output" : newFont.outputName) +
                        ": " + std::to_string(newFont.bytes.size()) + " bytes";
  if (isWoff2(newFont.bytes)) summary += ", as TrueType " + std::to_string(imageSize);
  return summary;
}

std::string familyOf(const FontFile& font, const SubsetOptions& options) {
  if (options.genericName) return "TrueTypeSubset";
  return options.family ? *options.family : encodeUtf8(fontNames(font).family);
}

// Makes the new font of one font, complete in memory.
NewFont makeSubset(const std::string& file, const SubsetRequest& request,
                   const SubsetOptions& options, Progress& progress) {
  const FontFile font({file, options.face});
  if (!options.ignorePermission) requirePermission(font);
  const SubsetPlan plan = planSubset(font, request);
  progress.show(std::to_string(plan.glyphs.size()) + " glyphs");
  const TrueTypeImage image = makeImage(font, plan, options);
  const std::vector<std::string> layout =
      layoutInUse(font, {plan.glyphs.begin() + 1, plan.glyphs.end()});
  NewFont newFont;
  newFont.outputName = namesFolder(options.output) ? nameInFolder(file, options) : options.output;
  newFont.bytes = image.bytes();
  if (options.woff2) {
    progress.show(std::to_string(plan.glyphs.size()) + " glyphs, compressing " +
                  std::to_string(image.length >> 10) + " KiB to WOFF2");
    newFont.bytes = toWoff2(image.bytes());
  }
  if (!options.mapping.empty()) newFont.mapping = mappingOf(plan, image, options);
  if (!options.preview.empty()) {
    newFont.preview = previewPage(
        font, newFont.bytes, newFont.outputName == "-" ? "standard output" : newFont.outputName,
        plan, layout);
  }
  if (!options.css.empty()) {
    newFont.css = fontFaceRule(font, plan, familyOf(font, options), newFont.outputName, options.css,
                               options.woff2);
  }
  newFont.summary = summaryOf(font, newFont, image.length);
  newFont.messages = plan.leftOut;
  for (std::string& warning : warningsFor(font, options, layout)) {
    newFont.messages.push_back(std::move(warning));
  }
  return newFont;
}

// Makes all new fonts. With several of them, messages start with the name of the font.
std::vector<NewFont> makeSubsets(const SubsetOptions& options) {
  const SubsetRequest request = readSubsetLists(options.lists);
  const std::size_t count = options.fonts.size();
  std::vector<NewFont> newFonts;
  for (const std::string& file : options.fonts) {
    Progress progress(count == 1 ? file
                                 : file + " (" + std::to_string(newFonts.size() + 1) + " of " +
                                       std::to_string(count) + ')');
    try {
      newFonts.push_back(makeSubset(file, request, options, progress));
    } catch (const std::runtime_error& error) {
      const std::string what = error.what();
      if (count == 1 || what.starts_with(file)) throw;
      throw std::runtime_error(file + ": " + what);
    }
    if (count == 1) continue;
    for (std::string& message : newFonts.back().messages) message.insert(0, file + ": ");
  }
  return newFonts;
}

// Creates the output folder if it is not there. Unless keep() is called, the destructor removes a
// created folder.
class OutputFolder {
 public:
  explicit OutputFolder(const std::string& output) : folder_(fileNamed(output)) {
    std::error_code error;
    if (namesFolder(output)) created_ = fs::create_directory(folder_, error);
    if (error) throw std::runtime_error(output + ": cannot be created: " + error.message());
  }
  OutputFolder(const OutputFolder&) = delete;
  OutputFolder& operator=(const OutputFolder&) = delete;
  ~OutputFolder() {
    std::error_code ignored;
    if (created_) fs::remove(folder_, ignored);
  }
  void keep() { created_ = false; }

 private:
  const fs::path folder_;
  bool created_ = false;
};

// Writes all outputs, or none. Returns true if one of them is a stream.
bool writeOutputs(const std::vector<NewFont>& newFonts, const SubsetOptions& options) {
  OutputFolder folder(options.output);
  FileBatch files;
  for (const std::string& file : options.fonts) files.protect(file);
  for (const std::string& file : options.lists.textFiles) files.protect(file);
  std::string css, summaries;
  for (const NewFont& newFont : newFonts) {
    css += newFont.css;
    summaries += newFont.summary + '\n';
  }
  if (!options.mapping.empty()) files.add(options.mapping, newFonts.front().mapping);
  if (!options.preview.empty()) files.add(options.preview, newFonts.front().preview);
  if (!options.css.empty()) files.add(options.css, css);
  for (const NewFont& newFont : newFonts) files.add(newFont.outputName, newFont.bytes);
  // If an output is a stream, the summary goes to the error stream: the output may be standard
  // output under another name, such as /dev/stdout.
  const bool hasStreams = files.hasStreams();
  if (!hasStreams) files.add("-", summaries);
  files.commit();
  folder.keep();
  return hasStreams;
}

// Throws for options that do not fit together.
void requireFittingOptions(const SubsetOptions& options) {
  const SubsetLists& lists = options.lists;
  if (lists.texts.empty() && lists.textFiles.empty() && lists.unicodes.empty() &&
      lists.glyphs.empty()) {
    throw CLI::ValidationError("nothing to take",
                               "give --text, --text-file, --unicodes or --glyphs");
  }
  const bool folder = namesFolder(options.output);
  if (options.fonts.size() > 1 && !folder) {
    throw CLI::ValidationError("-o", "several fonts need a folder, as -o " + options.output + "/");
  }
  if (options.fonts.size() > 1 && !(options.mapping.empty() && options.preview.empty())) {
    throw CLI::ValidationError("--mapping and --preview", "are for one font");
  }
  if (!options.css.empty() && options.output == "-") {
    throw CLI::ValidationError("--css", "names the file of the font, so -o - does not go with it");
  }
  const auto inputs = std::count(options.fonts.begin(), options.fonts.end(), "-") +
                      std::count(lists.textFiles.begin(), lists.textFiles.end(), "-");
  if (inputs > 1) {
    throw std::runtime_error(
        "standard input: cannot be both the font and the text, or be read twice");
  }
}

void runSubset(const SubsetOptions& options) {
  requireFittingOptions(options);
  if (options.woff2) requireWoff2();
  const std::vector<NewFont> newFonts = makeSubsets(options);
  const bool hasStreams = writeOutputs(newFonts, options);
  for (const NewFont& newFont : newFonts) {
    if (hasStreams) printMessage(kSubcommand, newFont.summary);
    for (const std::string& message : newFont.messages) printMessage(kSubcommand, message);
  }
}

constexpr const char* kFooter =
    R"(The lists of characters and glyphs add up, and each can be given several times.

EXAMPLES
  ulmira font subset serif.ttf -o small.ttf --text 'Hello, world' --preview compare.html
  ulmira font subset serif.ttf -o latin.woff2 --woff2 --unicodes U+20-7E,U+A0-FF --css latin.css
  ulmira font subset *.ttf -o web/ --woff2 --text-file page.txt --css web/fonts.css
  ulmira font subset serif.ttf -o - --unicodes '*' --glyphs 812-815 | wc -c
)";

}  // namespace

void addFontSubsetCommand(CLI::App& font) {
  const auto options = std::make_shared<SubsetOptions>();
  CLI::App* command =
      font.add_subcommand("subset", "Make smaller fonts of some characters or glyphs");
  command->footer(kFooter);
  addListArgument(*command, "FONT", options->fonts,
                  "TrueType fonts or collections; - for standard input")
      ->required();
  command
      ->add_option("-o", options->output,
                   "The file to write, - for standard output; or a folder, which gets a file for "
                   "each font; a new one ends with /")
      ->required();
  command->add_option("--face", options->face, "The face of a collection, from 0");
  const auto addList = [command](const char* name, std::vector<std::string>& lists,
                                 const char* description) {
    command->add_option(name, lists, description)
        ->take_all()
        ->allow_extra_args(false)
        ->option_text("TEXT");
  };
  addList("--text", options->lists.texts, "The characters of a text in UTF-8");
  addList("--text-file", options->lists.textFiles,
          "The characters of a UTF-8 file, without its line ends; - for standard input");
  addList("--unicodes", options->lists.unicodes,
          "Characters by number, as U+41-5A,0x61,7a; * for all of the font");
  addList("--glyphs", options->lists.glyphs, "Glyphs by number, as 3,7-12; * for all of the font");
  command->add_flag("--woff2", options->woff2, "Write WOFF2, which browsers load, not TrueType");
  command->add_option("--css", options->css, "Write a @font-face rule for each font to this file");
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
  command->callback([options] { runSubset(*options); });
}

}  // namespace ulm::tools
