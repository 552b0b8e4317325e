// A page that shows a text in a new font and in the one that it was made from.
#include <cstring>
#include <stdexcept>

#include "tools/ulmira/font/subset.h"
#include "truetype/bytes.h"

namespace ulm::tools {
namespace {

using namespace ulm::truetype;

std::string base64(std::string_view bytes) {
  constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      group = group << 8 | (i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0u);
    }
    for (std::size_t k = 0; k < 4; ++k) {
      text += i + k > bytes.size() ? '=' : kDigits[group >> (18 - 6 * k) & 63];
    }
  }
  return text;
}

// What may stand in a page, with what would be taken for markup told by name.
std::string escaped(const std::u32string& text) {
  std::string page;
  for (const char32_t code : text) {
    const bool control = (code < 0x20 && code != U'\n' && code != U'\t') ||
                         (code >= 0x7F && code < 0xA0) || (code & 0xFFFE) == 0xFFFE ||
                         (code >= 0xD800 && code < 0xE000);
    if (control) continue;
    page += code == U'&'   ? "&amp;"
            : code == U'<' ? "&lt;"
            : code == U'>' ? "&gt;"
                           : encodeUtf8(code);
  }
  return page;
}
// Likewise for a file's name, whatever bytes it has.
std::string escapedName(const std::string& name) {
  std::string page;
  for (const char byte : name.substr(name.find_last_of("/\\") + 1)) {
    page += escaped({static_cast<unsigned char>(byte) < 0x80 ? static_cast<char32_t>(byte) : U'?'});
  }
  return page;
}

std::string_view bytesOf(const FontFile& font) {
  return {reinterpret_cast<const char*>(font->image), static_cast<std::size_t>(font->imageSize)};
}

// The face as a font file of its own, since no data URL can name a face of a collection.
std::string plainFont(const FontFile& font) {
  const std::string_view image = bytesOf(font);
  if (image.substr(0, 4) != "ttcf") return std::string(image);
  constexpr std::size_t kHeader = 12, kEntry = 16;
  const std::size_t count = font->tableCount;
  std::string file(image.substr(font->directoryOffset, kHeader + kEntry * count));
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint8_t* entry = font->image + font->directoryOffset + kHeader + kEntry * i;
    const std::size_t offset = readUInt32(entry, 8);
    if (offset > image.size()) continue;  // the entry stays as it is, outside
    const std::size_t place = file.size();
    file += image.substr(offset, readUInt32(entry, 12));
    file.resize((file.size() + 3) / 4 * 4);
    if (file.size() > 2 * image.size()) {
      throw std::runtime_error("no preview: the face's tables overlap");
    }
    for (std::size_t k = 0; k < 4; ++k) {
      file[kHeader + kEntry * i + 8 + k] = static_cast<char>(place >> (24 - 8 * k));
    }
  }
  return file;
}

constexpr char kStyle[] = R"(
body { font: 16px sans-serif; margin: 2em; }
main { display: grid; grid-template-columns: 1fr 1fr; gap: 2em; }
h2 { font-size: 1em; }
p { font-size: 32px; font-kerning: none; font-variant-ligatures: none; white-space: pre-wrap;
    overflow-wrap: anywhere; }
.subset { font-family: "ulmira subset"; }
.source { font-family: "ulmira source"; }
)";

// Characters are drawn one by one, so that kerning and layout, which the new font lacks, play no
// part, and without hints: an automatic hinter judges a font by characters that may be left out.
constexpr char kScript[] = R"(
const root = document.documentElement;
const load = name => document.fonts.load(`32px "ulmira ${name}"`)
  .then(faces => faces.length > 0, () => false)
  .then(loaded => root.dataset[name] = loaded ? "loaded" : "refused");
const draw = name => {
  const canvas = document.createElement("canvas");
  canvas.width = canvas.height = 1200;
  const pen = canvas.getContext("2d");
  pen.textRendering = "geometricPrecision";
  pen.font = `32px "ulmira ${name}"`;
  [...document.querySelector("p.subset").textContent].filter(c => c > " ").slice(0, 400)
    .forEach((c, i) => pen.fillText(c, 10 + i % 20 * 60, 50 + Math.floor(i / 20) * 58));
  return canvas.toDataURL();
};
Promise.all([load("subset"), load("source")]).then(states => {
  const all = states.every(state => state === "loaded");
  if (all) root.dataset.drawing = draw("subset") === draw("source") ? "equal" : "different";
  document.title = all ? `Both fonts loaded, drawings ${root.dataset.drawing}`
    : `Subset ${states[0]}, source ${states[1]}`;
  document.querySelector("h1").textContent = document.title;
});
)";

void addFace(std::string& page, const char* name, std::string_view font) {
  page += "@font-face { font-family: \"ulmira ";
  page += name;
  page += "\"; src: url(data:font/ttf;base64," + base64(font) + "); }\n";
}

}  // namespace

std::string previewPage(const FontFile& font, std::string_view subset, const SubsetPlan& plan,
                        const SubsetOptions& options) {
  const std::string source = plainFont(font);
  std::string page =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<title>Loading</title>\n<style>\n";
  addFace(page, "subset", subset);
  addFace(page, "source", source);
  page += kStyle;
  page += "</style>\n</head>\n<body>\n<h1>Loading</h1>\n<main>\n";
  const auto addColumn = [&](const char* name, const std::string& file, std::size_t size,
                             const std::u32string& text) {
    page += "<section>\n<h2>" + escapedName(file) + ", " + std::to_string(size) +
            " bytes</h2>\n<p class=\"" + name + "\">" + escaped(text) + "</p>\n";
  };
  addColumn("subset", options.out == "-" ? "standard output" : options.out, subset.size(),
            plan.text);
  if (!plan.assigned.empty()) {
    page += "<h2>Glyphs that no character of the source reaches</h2>\n<div><p class=\"subset\">" +
            escaped(plan.assigned) + "</p></div>\n";
  }
  page += "</section>\n";
  addColumn("source", font.name(), source.size(), plan.text);
  page += "</section>\n</main>\n<script>";
  page += kScript;
  page += "</script>\n</body>\n</html>\n";
  return page;
}

}  // namespace ulm::tools
