// `ulmira font`: what a font holds, as tables or JSON, pictures of it, and smaller fonts.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>

#include "command/commands.h"
#include "command/font/font_file.h"
#include "command/font/subset.h"

namespace ulm::tools {
namespace {

// On one line, whatever line breaks a text has.
std::string cellOf(const Json& value) {
  std::string text = value.is_string() ? value.get<std::string>() : value.dump();
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c >= 0 && c < ' '; }, ' ');
  return text;
}

bool isTable(const Json& value) {
  return value.is_array() && !value.empty() && (value[0].is_object() || value[0].is_array());
}

// Rows of equal shape under their column names, each column as wide as its widest cell.
void printTable(const Json& rows) {
  std::vector<std::vector<std::string>> lines;
  if (rows[0].is_object()) {
    lines.emplace_back();
    for (const auto& [key, value] : rows[0].items()) lines[0].push_back(key);
  }
  for (const Json& row : rows) {
    lines.emplace_back();
    for (const Json& value : row) lines.back().push_back(cellOf(value));
  }
  std::vector<std::size_t> widths(lines[0].size());
  for (const auto& line : lines) {
    for (std::size_t i = 0; i < line.size(); ++i) widths[i] = std::max(widths[i], line[i].size());
  }
  for (const auto& line : lines) {
    for (std::size_t i = 0; i < line.size(); ++i) {
      std::cout << (i == 0 ? "" : "  ") << std::left
                << std::setw(i + 1 < line.size() ? static_cast<int>(widths[i]) : 0) << line[i];
    }
    std::cout << '\n';
  }
}

// An object as lines of names and values; objects and tables in it stand under their name.
void printObject(const Json& object, const std::string& indent) {
  for (const auto& [key, value] : object.items()) {
    if (value.is_object()) {
      std::cout << indent << key << '\n';
      printObject(value, indent + "  ");
    } else if (isTable(value)) {
      printTable(value);
    } else {
      std::cout << indent << std::left << std::setw(20) << key << ' ' << cellOf(value) << '\n';
    }
  }
}

using Report = Json (*)(const FontFile& font, const FontOptions& options);

CLI::App* addReport(CLI::App& app, const std::shared_ptr<FontOptions>& options, int& status,
                    const char* name, const char* about, Report report) {
  CLI::App* command = app.add_subcommand(name, about);
  command->add_option("FONT", options->file, "A TrueType font or collection")->required();
  command->add_option("--face", options->face, "The face of a collection, from 0");
  command->add_flag("--json", options->json, "Print one JSON object");
  command->callback([options, report, &status] {
    const FontFile font(*options);
    const Json result = report(font, *options);
    if (options->json) {
      std::cout << result.dump() << '\n';
    } else {
      printObject(result, "");
    }
    status = std::cout.flush() ? 0 : 1;
  });
  return command;
}

}  // namespace

void addFontCommand(CLI::App& app, int& status) {
  const auto options = std::make_shared<FontOptions>();
  CLI::App* font = app.add_subcommand("font", "Look into a TrueType font, or make a smaller one");
  font->require_subcommand(1);
  const auto add = [&](const char* name, const char* about, Report report) {
    return addReport(*font, options, status, name, about, report);
  };
  add("info", "Names, global description, tables, character map and kerning", infoOf);
  add("names", "All name records", namesOf);
  add("map", "The glyphs of characters; 0 for one that the font does not map", mapOf)
      ->add_option("TEXT", options->words, "Text in UTF-8, or U+XXXX for one character")
      ->required();
  add("metrics", "Advances, bearings and boxes of glyphs, in font units", metricsOf)
      ->add_option("GLYPH", options->glyphs, "Glyph numbers")
      ->required();
  add("kern", "The kerning of each pair of a text, in thousandths of the em", kernOf)
      ->add_option("TEXT", options->text, "Text in UTF-8")
      ->required();
  CLI::App* outline = add("outline", "The points of a glyph, in font units", outlineReport);
  outline->add_option("GLYPH", options->glyphs, "A glyph number")->required()->expected(1);
  outline->add_option("--svg", options->svg, "Write a picture of the outline there");
  CLI::App* specimen =
      add("specimen", "A picture of a text, with advances and kerning", specimenOf);
  specimen->add_option("--text", options->text, "Text in UTF-8")->required();
  specimen->add_option("--svg", options->svg, "Where to write the picture")->required();
  addSubsetCommand(*font, status);
}

}  // namespace ulm::tools
