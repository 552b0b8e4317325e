// `ulmira font`: what a font holds, as tables or JSON, pictures of it, and smaller fonts.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "command/commands.h"
#include "command/font/font_file.h"
#include "command/font/subset.h"
#include "command/support/file_batch.h"
#include "command/support/text.h"

namespace ulm::tools {
namespace {

// On one line, whatever line ends a text has.
std::string shown(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
  return printable(text);
}

bool isTable(const Json& value) {
  return value.is_array() && !value.empty() && (value[0].is_object() || value[0].is_array());
}

std::string cellOf(const Json& value) {
  if (value.is_string()) return shown(value.get_ref<const std::string&>());
  if (value.is_null()) return "-";
  if (!value.is_array() || value.empty() || !value[0].is_string()) return value.dump();
  std::string cell;
  for (const Json& part : value) cell += (cell.empty() ? "" : ", ") + cellOf(part);
  return cell;
}

// Filled with blanks to `width` characters.
std::string filled(std::string cell, std::size_t width) {
  const std::size_t length = decodeUtf8(cell).size();
  return cell.append(width > length ? width - length : 0, ' ');
}

// Rows of equal shape under their column names, each column as wide as its widest cell.
std::string tableText(const Json& rows) {
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
    for (std::size_t i = 0; i < line.size(); ++i) {
      widths[i] = std::max(widths[i], decodeUtf8(line[i]).size());
    }
  }
  std::string text;
  for (const auto& line : lines) {
    for (std::size_t i = 0; i < line.size(); ++i) {
      text += i + 1 < line.size() ? filled(line[i], widths[i]) + "  " : line[i] + '\n';
    }
  }
  return text;
}

constexpr std::size_t kKeyWidth = 20;

// An object as lines of names and values, with their units; objects and tables in it follow their
// name.
std::string objectText(const Json& object, const Json& units, const std::string& indent) {
  std::string text;
  for (const auto& [key, value] : object.items()) {
    if (key == "units") continue;
    if (value.is_object()) {
      text += indent + shown(key) + '\n' + objectText(value, units, indent + "  ");
    } else if (isTable(value)) {
      text += tableText(value);
    } else {
      text += indent + filled(shown(key), kKeyWidth) + ' ' + cellOf(value);
      if (const auto unit = units.find(key); unit != units.end()) text += ' ' + cellOf(*unit);
      text += '\n';
    }
  }
  return text;
}

std::string plainText(const Json& object) {
  const auto units = object.find("units");
  return objectText(object, units == object.end() ? Json::object() : *units, "");
}

// C1 controls and DEL are allowed in JSON as they are, but a terminal obeys them.
std::string jsonText(const Json& object) {
  const std::string plain = object.dump();
  std::string text;
  for (std::size_t i = 0; i < plain.size(); ++i) {
    const auto byte = static_cast<unsigned char>(plain[i]);
    const unsigned next = i + 1 < plain.size() ? static_cast<unsigned char>(plain[i + 1]) : 0u;
    if (byte != 0x7F && (byte != 0xC2 || next >= 0xA0)) {
      text += plain[i];
      continue;
    }
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\u%04x", byte == 0x7F ? 0x7Fu : next);
    text += escape;
    i += byte != 0x7F;
  }
  return text + '\n';
}

using ReportOf = Report (*)(const FontFile& font, const FontOptions& options);

CLI::App* addReport(CLI::App& app, const std::shared_ptr<FontOptions>& options, const char* name,
                    const char* about, ReportOf reportOf) {
  CLI::App* command = app.add_subcommand(name, about);
  command->add_option("FONT", options->file, "A TrueType font or collection; - for standard input")
      ->required();
  command->add_option("--face", options->face, "The face of a collection, from 0");
  command->add_flag("--json", options->json, "Print one JSON object");
  command->callback([options, reportOf] {
    const FontFile font(*options);
    const Report report = reportOf(font, *options);
    FileBatch outputs;
    outputs.protect(options->file);
    if (!options->svg.empty()) outputs.add(options->svg, report.picture);
    if (options->svg != "-") {
      outputs.add("-", options->json ? jsonText(report.values) : plainText(report.values));
    }
    outputs.commit();
  });
  return command;
}

}  // namespace

void addFontCommand(CLI::App& app, int& /*status*/) {
  const auto options = std::make_shared<FontOptions>();
  CLI::App* font = app.add_subcommand("font", "Look into a TrueType font, or make a smaller one");
  font->require_subcommand(1);
  const auto add = [&](const char* name, const char* about, ReportOf reportOf) {
    return addReport(*font, options, name, about, reportOf);
  };
  add("info", "Names, global description, tables, character map and kerning", infoOf);
  add("names", "All name records", namesOf);
  add("map", "The glyphs of characters; 0 for one that the font does not map", mapOf)
      ->add_option("TEXT", options->words, "Text in UTF-8, or U+XXXX for one character")
      ->required();
  constexpr const char* kGlyphs =
      "Glyph numbers; U+XXXX, or text that is no number, for characters";
  add("metrics", "Advances, bearings and boxes of glyphs, in font units", metricsOf)
      ->add_option("GLYPH", options->words, kGlyphs)
      ->required();
  add("kern", "The kerning of each pair of a text, in thousandths of the em", kernOf)
      ->add_option("TEXT", options->words, "Text in UTF-8, or U+XXXX for one character")
      ->required();
  CLI::App* outline = add("outline", "The points of a glyph, in font units", outlineOf);
  outline->add_option("GLYPH", options->words, "A glyph number, U+XXXX or a character")
      ->required()
      ->expected(1);
  outline->add_option("--svg", options->svg,
                      "Write a picture of the outline there; - in place of the points");
  CLI::App* specimen =
      add("specimen",
          "A picture of a text, with advances and kerning; scaled components at scaled offsets",
          specimenOf);
  specimen->add_option("--text", options->text, "Text in UTF-8")->required();
  specimen->add_option("--svg", options->svg, "Where to write the picture; - for standard output")
      ->required();
  addSubsetCommand(*font);
}

}  // namespace ulm::tools
