// `ulmira font`: what a font contains, as text or JSON, pictures of it, and smaller fonts.
#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "command/commands.h"
#include "command/font/font_file.h"
#include "command/font/picture.h"
#include "command/font/reports.h"
#include "command/list_argument.h"
#include "command/support/file_batch.h"

namespace ulm::tools {
namespace {

// The arguments of all reports. A report has only some of them.
struct ReportArguments {
  FontSource source;
  bool json = false;
  std::vector<std::string> words;  // characters, and for some reports glyph indices
  std::string text;
  std::string svg;  // the file to write; empty for none
};

using MakeReport = std::function<Json(const FontFile& font, const ReportArguments& arguments)>;
using MakePicture = std::function<Picture(const FontFile& font, const ReportArguments& arguments)>;

// Adds a subcommand with the options that all reports have.
CLI::App* addReport(CLI::App& app, const std::shared_ptr<ReportArguments>& arguments,
                    const char* name, const char* description, const char* example) {
  CLI::App* command = app.add_subcommand(name, description);
  command->footer(std::string("EXAMPLES\n") + example);
  command
      ->add_option("FONT", arguments->source.file,
                   "A TrueType font or collection; - for standard input")
      ->required();
  command->add_option("--face", arguments->source.face, "The face of a collection, from 0");
  command->add_flag("--json", arguments->json, "Print one JSON object");
  return command;
}

// Writes the picture, if one is asked for, and prints the values, unless standard output is the
// picture.
void writeOutputs(const ReportArguments& arguments, const Picture& picture) {
  FileBatch outputs;
  outputs.protect(arguments.source.file);
  if (!arguments.svg.empty()) outputs.add(arguments.svg, picture.svg);
  if (arguments.svg != "-") {
    outputs.add("-", arguments.json ? jsonText(picture.values) : plainText(picture.values));
  }
  outputs.commit();
}

void addWords(CLI::App* command, ReportArguments& arguments, const char* name,
              const char* description) {
  addListArgument(*command, name, arguments.words, description)->required();
}

constexpr const char* kFooter = R"(EXAMPLES
  ulmira font info serif.ttf
  ulmira font specimen serif.ttf --text 'Hello, world' --svg hello.svg
  ulmira font subset serif.ttf -o small.ttf --text 'Hello, world'
  ulmira font SUBCOMMAND --help         more examples)";

}  // namespace

void addFontCommand(CLI::App& app, int& /*status*/) {
  const auto arguments = std::make_shared<ReportArguments>();
  CLI::App* font =
      app.add_subcommand("font", "Print what a TrueType font contains, or make a smaller one");
  font->require_subcommand(1);
  font->footer(kFooter);
  const auto addPicture = [&](const char* name, const char* description, const char* example,
                              const MakePicture& makePicture) {
    CLI::App* command = addReport(*font, arguments, name, description, example);
    command->callback([arguments, makePicture] {
      writeOutputs(*arguments, makePicture(FontFile(arguments->source), *arguments));
    });
    return command;
  };
  const auto add = [&](const char* name, const char* description, const char* example,
                       const MakeReport& makeReport) {
    return addPicture(name, description, example,
                      [makeReport](const FontFile& file, const ReportArguments& options) {
                        return Picture{makeReport(file, options), {}};
                      });
  };
  constexpr const char* kText = "Text in UTF-8, or U+XXXX for one character";

  add("info", "Names, global description, tables, character map and kerning",
      "  ulmira font info serif.ttf\n  ulmira font info fonts.ttc --face 1 --json | jq .tables",
      [](const FontFile& file, const ReportArguments&) { return fontInfo(file); });
  add("names", "All name records", "  ulmira font names serif.ttf --json",
      [](const FontFile& file, const ReportArguments&) { return nameList(file); });
  CLI::App* map =
      add("map", "The glyphs of characters; 0 for one that the font does not map",
          "  ulmira font map serif.ttf Hello U+20AC",
          [](const FontFile& file, const ReportArguments& options) {
            return characterMap(file, options.words, options.json ? Json(0) : Json("unmapped"));
          });
  addWords(map, *arguments, "TEXT", kText);
  CLI::App* metrics = add("metrics", "Advances, bearings and boxes of glyphs, in font units",
                          "  ulmira font metrics serif.ttf AV 0 U+20AC",
                          [](const FontFile& file, const ReportArguments& options) {
                            return glyphMetrics(file, options.words);
                          });
  addWords(metrics, *arguments, "GLYPH",
           "Glyph numbers; U+XXXX, or text that is not a number, for characters");
  CLI::App* kern = add("kern", "The kerning of each pair of a text, in thousandths of the em",
                       "  ulmira font kern serif.ttf AVATAR",
                       [](const FontFile& file, const ReportArguments& options) {
                         return pairKerning(file, options.words);
                       });
  addWords(kern, *arguments, "TEXT", kText);
  CLI::App* outline = addPicture("outline", "The points of a glyph, in font units",
                                 "  ulmira font outline serif.ttf A --svg A.svg",
                                 [](const FontFile& file, const ReportArguments& options) {
                                   return glyphPicture(file, options.words);
                                 });
  outline->add_option("GLYPH", arguments->words, "A glyph number, U+XXXX or a character")
      ->required()
      ->expected(1)
      ->allow_extra_args(false);
  outline->add_option("--svg", arguments->svg,
                      "Write a picture of the outline to this file; - to print it instead of the "
                      "points");
  CLI::App* specimen =
      addPicture("specimen",
                 "A picture of a text, with advances and kerning; scaled components at scaled "
                 "offsets",
                 "  ulmira font specimen serif.ttf --text 'Hello, world' --svg hello.svg",
                 [](const FontFile& file, const ReportArguments& options) {
                   return textPicture(file, options.text, options.svg);
                 });
  specimen->add_option("--text", arguments->text, "Text in UTF-8")->required();
  specimen
      ->add_option("--svg", arguments->svg, "Write the picture to this file; - for standard output")
      ->required();
  addFontSubsetCommand(*font);
}

}  // namespace ulm::tools
