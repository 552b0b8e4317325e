#include "command/font/report.h"

#include <algorithm>
#include <vector>

#include "command/font/font_file.h"
#include "command/support/text.h"

namespace ulm::tools {
namespace {

// Returns printable text on one line: line ends and tabs become blanks.
std::string singleLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
  return printable(text);
}

// Returns true for a list of objects or of lists.
bool isTable(const Json& value) {
  return value.is_array() && !value.empty() && (value[0].is_object() || value[0].is_array());
}

// Returns the text of one value: "-" for null, and a list of texts separated by commas.
std::string cellOf(const Json& value) {
  if (value.is_string()) return singleLine(value.get_ref<const std::string&>());
  if (value.is_null()) return "-";
  if (!value.is_array() || value.empty() || !value[0].is_string()) return value.dump();
  std::string cell;
  for (const Json& part : value) cell += (cell.empty() ? "" : ", ") + cellOf(part);
  return cell;
}

// Appends blanks up to a width of `width` characters.
std::string padded(std::string cell, std::size_t width) {
  const std::size_t length = decodeUtf8(cell).size();
  return cell.append(width > length ? width - length : 0, ' ');
}

// Returns rows of equal shape below their column names. Each column is as wide as its widest cell.
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
      text += i + 1 < line.size() ? padded(line[i], widths[i]) + "  " : line[i] + '\n';
    }
  }
  return text;
}

constexpr std::size_t kKeyWidth = 20;

// Returns an object as lines of names and values with their units. Members that are objects follow
// their name, indented; members that are tables are printed without a name.
std::string objectText(const Json& object, const Json& units, const std::string& indent) {
  std::string text;
  for (const auto& [key, value] : object.items()) {
    if (key == "units") continue;
    if (value.is_object()) {
      text += indent + singleLine(key) + '\n' + objectText(value, units, indent + "  ");
    } else if (isTable(value)) {
      text += tableText(value);
    } else {
      text += indent + padded(singleLine(key), kKeyWidth) + ' ' + cellOf(value);
      if (const auto unit = units.find(key); unit != units.end()) text += ' ' + cellOf(*unit);
      text += '\n';
    }
  }
  return text;
}

}  // namespace

std::string plainText(const Json& object) {
  const auto units = object.find("units");
  return objectText(object, units == object.end() ? Json::object() : *units, "");
}

void addCharacter(Json& object, char32_t code) {
  object["code"] = code == 0 ? Json() : Json(codeName(code));
  object["character"] = code == 0 ? Json() : Json(encodeUtf8(code));
}

}  // namespace ulm::tools
