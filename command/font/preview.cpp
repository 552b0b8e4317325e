#include "command/font/preview.h"

#include <cstring>
#include <stdexcept>

#include "command/font/woff2.h"
#include "command/support/text.h"
#include "truetype/format/byte_sink.h"
#include "truetype/format/byte_view.h"
#include "truetype/format/directory.h"

namespace ulm::tools {
namespace {

using namespace ulm::truetype;
using format::CollectionHeader, format::OffsetTable, format::TableEntry;

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

// Returns the text for use in HTML: without control characters, and with the characters of markup
// as entities.
std::string escapedText(const std::u32string& text) {
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
// Returns each character in a separate element, so that it is not shaped with its neighbours.
std::string separateCharacters(const std::u32string& text) {
  std::string page;
  for (const char32_t code : text) {
    const std::string shown = escapedText({code});
    if (!shown.empty()) page += "<span>" + shown + "</span>";
  }
  return page;
}

// Returns the last part of a file name for use in HTML, with '?' for each byte that is not ASCII.
std::string escapedName(const std::string& name) {
  std::string page;
  for (const char byte : name.substr(name.find_last_of("/\\") + 1)) {
    page +=
        escapedText({static_cast<unsigned char>(byte) < 0x80 ? static_cast<char32_t>(byte) : U'?'});
  }
  return page;
}

std::string_view bytesOf(const FontFile& font) {
  return {reinterpret_cast<const char*>(font->image), static_cast<std::size_t>(font->imageSize)};
}

// Returns the face as a separate font file, since a data URL cannot select a face of a collection.
std::string separateFace(const FontFile& font) {
  const std::string_view image = bytesOf(font);
  const format::RecordView<CollectionHeader> collection(
      format::ByteView(font->image, image.size()));
  if (collection.readOrZero(CollectionHeader::kSignature) != CollectionHeader::kCollection) {
    return std::string(image);
  }
  const std::size_t count = font->tableCount;
  std::string file(image.substr(font->directoryOffset, OffsetTable::kTables.at(count)));
  for (std::size_t i = 0; i < count; ++i) {
    // The directory is in the image, because the font could be opened.
    const auto entry = format::FixedView<TableEntry>::vouched(font->image + font->directoryOffset +
                                                              OffsetTable::kTables.at(i));
    const std::size_t offset = entry.get(TableEntry::kOffset);
    if (offset > image.size()) continue;  // the entry stays as it is, outside
    const std::size_t newOffset = file.size();
    file += image.substr(offset, entry.get(TableEntry::kLength));
    file.resize(format::padded(file.size()));
    if (file.size() > 2 * image.size()) {
      throw std::runtime_error("no preview: the face's tables overlap");
    }
    format::FixedSink<TableEntry>::vouched(reinterpret_cast<std::uint8_t*>(file.data()) +
                                           OffsetTable::kTables.at(i))
        .put(TableEntry::kOffset, static_cast<std::uint32_t>(newOffset));
  }
  return file;
}

// Text is shown without hinting: an automatic hinter measures characters that the new font may not
// have.
constexpr char kStyle[] = R"(
body { font: 16px sans-serif; margin: 2em; }
main { display: grid; grid-template-columns: 1fr 1fr; gap: 2em; }
h2 { font-size: 1em; }
p { font-size: 32px; white-space: pre-wrap; overflow-wrap: anywhere; unicode-bidi: plaintext;
    text-rendering: geometricPrecision; }
p span { display: inline-block; padding: 0 2px; }
.subset { font-family: "ulmira subset"; }
.source { font-family: "ulmira source"; }
::highlight(different) { background: #fc6; }
.different { outline: 2px solid #fc6; }
)";

// The script draws what the page shows in both fonts and compares widths and pixels. The characters
// of a list are drawn separately. Text is drawn in parts of a line, so that letters join and marks
// and kerning apply as on the page. In a part that differs the script finds the words that differ,
// or else the pairs of words. The characters of a text are also drawn one by one, which
// distinguishes lost glyphs from lost layout.
constexpr char kScript[] = R"js(
const root = document.documentElement, main = document.querySelector("main");
const isList = main.className === "list";
const load = name => document.fonts.load(`32px "ulmira ${name}"`)
  .then(faces => faces.length > 0, () => false)
  .then(loaded => root.dataset[name] = loaded ? "loaded" : "refused");

const kMaxWidth = 8000, kMaxHeight = 1000;
const makePen = (width, height) => {
  const canvas = document.createElement("canvas");
  canvas.width = width;
  canvas.height = height;
  const pen = canvas.getContext("2d", {willReadFrequently: true});
  pen.textRendering = "geometricPrecision";
  return pen;
};
let pen = makePen(400, 100);
const measure = (name, text) => {
  pen.font = `32px "ulmira ${name}"`;
  return pen.measureText(text);
};
const draw = (name, text, x, y, width, height) => {
  pen.font = `32px "ulmira ${name}"`;
  pen.clearRect(0, 0, width, height);
  pen.fillText(text, x, y);
  return new Uint32Array(pen.getImageData(0, 0, width, height).data.buffer);
};
const differsByText = new Map();
const differs = text => {
  if (!differsByText.has(text)) differsByText.set(text, compare(text));
  return differsByText.get(text);
};
const compare = text => {
  const sizes = [measure("subset", text), measure("source", text)];
  const maximum = key => Math.max(...sizes.map(size => size[key]), 0);
  if (Math.abs(sizes[0].width - sizes[1].width) > 1 / 64) return true;
  const x = Math.ceil(maximum("actualBoundingBoxLeft")) + 4;
  const y = Math.ceil(maximum("actualBoundingBoxAscent")) + 4;
  const width = Math.min(x + Math.ceil(maximum("actualBoundingBoxRight")) + 4, kMaxWidth);
  const height = Math.min(y + Math.ceil(maximum("actualBoundingBoxDescent")) + 4, kMaxHeight);
  if (pen.canvas.width < width || pen.canvas.height < height) {
    pen = makePen(Math.max(width, pen.canvas.width), Math.max(height, pen.canvas.height));
  }
  const pixels = draw("source", text, x, y, width, height);
  return draw("subset", text, x, y, width, height).some((pixel, i) => pixel !== pixels[i]);
};

// A part ends after white space or, in a long word, not before a mark.
const partsOf = line => line.match(/[^]{1,96}(?=\s|$)\s?|[^]{1,96}(?!\p{M})|[^]{1,96}/gu) || [];
// Halves a part until it is narrow enough to be drawn at once.
const narrow = text => {
  const all = [...text], half = Math.ceil(all.length / 2);
  return all.length < 2 || measure("source", text).width < kMaxWidth - 400 ? [text]
    : [all.slice(0, half), all.slice(half)].flatMap(part => narrow(part.join("")));
};
const wordsThatDiffer = text => {
  const words = text.split(/\s+/).filter(word => word);
  const alone = words.filter(differs);
  if (alone.length) return alone;
  const pairs = words.slice(1).map((word, i) => `${words[i]} ${word}`).filter(differs);
  return pairs.length ? pairs : [text];
};

const codeOf = c => "U+" + c.codePointAt(0).toString(16).toUpperCase().padStart(4, "0");
const report = (message, items) => {
  const line = document.createElement("div");
  const shown = items.slice(0, 100).map(item => `\u2068${item}\u2069`).join(", ");
  line.textContent = message + shown + (items.length > 100 ? ` and ${items.length - 100} more` : "");
  document.querySelector("aside").append(line);
};
// Marks the pieces in both columns. An element around a word could change how the text is shaped, so
// words are marked only if the browser can highlight them without an element.
const mark = pieces => {
  const columns = [...main.querySelectorAll("p.subset, p.source")];
  if (isList) {
    for (const span of columns.flatMap(p => [...p.children])) {
      if (pieces.has(span.textContent)) span.className = "different";
    }
  } else if (CSS.highlights && pieces.size) {
    const ranges = [];
    for (const node of columns.map(p => p.firstChild)) {
      for (const piece of [...pieces].slice(0, 100)) {
        for (let at = node.data.indexOf(piece); at >= 0 && ranges.length < 20000;
             at = node.data.indexOf(piece, at + piece.length)) {
          const range = new Range();
          range.setStart(node, at);
          range.setEnd(node, at + piece.length);
          ranges.push(range);
        }
      }
    }
    CSS.highlights.set("different", new Highlight(...ranges));
  }
};

const yieldToBrowser = () => new Promise(resolve => setTimeout(resolve));
const compareAll = async () => {
  const shown = document.querySelector("p.subset");
  shown.normalize();
  document.querySelector("p.source").normalize();
  const text = shown.textContent;
  const characters = [...new Set(text)].filter(c => /\S/u.test(c));
  const lone = [], pieces = new Set();
  for (const [i, c] of characters.entries()) {
    if (differs(c)) lone.push(c);
    if (i % 500 === 499) await yieldToBrowser();
  }
  if (isList) {
    lone.forEach(c => pieces.add(c));
  } else {
    const parts = [...new Set(text.split("\n").flatMap(partsOf).flatMap(narrow))];
    for (const [i, part] of parts.entries()) {
      if (/\S/u.test(part) && differs(part)) wordsThatDiffer(part).forEach(word => pieces.add(word));
      if (i % 50 === 49) await yieldToBrowser();
    }
  }
  root.dataset.characters = lone.length ? "different" : "equal";
  root.dataset.drawing = pieces.size ? "different" : "equal";
  root.dataset.differing = [...pieces].slice(0, 100).join("|");
  if (lone.length) {
    report(`Drawn one by one, ${lone.length} of ${characters.length} characters differ: `,
        lone.map(c => `${codeOf(c)} ${c}`));
  } else {
    report(`Drawn one by one, all ${characters.length} characters are equal.`, []);
  }
  if (!isList && pieces.size) report("As text, these differ: ", [...pieces]);
  mark(pieces);
};

const title = text => document.title = document.querySelector("h1").textContent = text;
Promise.all([load("subset"), load("source")]).then(async states => {
  if (!states.every(state => state === "loaded")) {
    return title(`Subset ${states[0]}, source ${states[1]}`);
  }
  title("Both fonts loaded, comparing");
  await compareAll();
  const what = isList ? "characters" : "text";
  title(root.dataset.drawing === "equal" ? `Both fonts loaded, the ${what} equal`
    : `Both fonts loaded, the ${what} different`);
});
)js";

void addFace(std::string& page, const char* name, std::string_view font) {
  page += "@font-face { font-family: \"ulmira ";
  page += name;
  page +=
      isWoff2(font) ? "\"; src: url(data:font/woff2;base64," : "\"; src: url(data:font/ttf;base64,";
  page += base64(font) + "); }\n";
}

}  // namespace

std::string previewPage(const FontFile& font, std::string_view subset,
                        const std::string& subsetName, const SubsetPlan& plan,
                        const std::vector<std::string>& layout) {
  const std::string source = separateFace(font);
  std::string page =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<title>Loading</title>\n<style>\n";
  addFace(page, "subset", subset);
  addFace(page, "source", source);
  page += kStyle;
  page += "</style>\n</head>\n<body>\n<h1>Loading</h1>\n<aside>";
  if (!layout.empty()) {
    page += "<div>The new font does not have these tables, which apply to the characters:";
    for (const std::string& table : layout) page += ' ' + table;
    page += "</div>";
  }
  page += plan.isList ? "</aside>\n<main class=\"list\">\n" : "</aside>\n<main>\n";
  const auto addColumn = [&](const char* name, const std::string& file, std::size_t size) {
    page += "<section>\n<h2>" + escapedName(file) + ", " + std::to_string(size) +
            " bytes</h2>\n<p class=\"" + name + "\">" +
            (plan.isList ? separateCharacters(plan.text) : escapedText(plan.text)) + "</p>\n";
  };
  addColumn("subset", subsetName, subset.size());
  if (!plan.assigned.empty()) {
    page += "<h2>Glyphs that no character of the source maps to</h2>\n<div><p class=\"subset\">" +
            separateCharacters(plan.assigned) + "</p></div>\n";
  }
  page += "</section>\n";
  addColumn("source", font.name(), source.size());
  page += "</section>\n</main>\n<script>";
  page += kScript;
  page += "</script>\n</body>\n</html>\n";
  return page;
}

}  // namespace ulm::tools
