// Fonts built in code, where each value is next to the name of its field.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "truetype/font.h"
#include "truetype/reader/glyphs.h"
#include "truetype/reader/open.h"

namespace ulm::test {

// Collects big-endian bytes in the order of the calls.
struct Bytes : std::vector<std::uint8_t> {
  Bytes() = default;
  Bytes& u8(int value) {
    push_back(static_cast<std::uint8_t>(value));
    return *this;
  }
  Bytes& u16(std::initializer_list<int> values) {
    for (const int value : values) u8(value >> 8).u8(value);
    return *this;
  }
  Bytes& u32(std::uint32_t value) {
    return u16({static_cast<int>(value >> 16), static_cast<int>(value & 0xFFFF)});
  }
  Bytes& zeros(std::size_t count) {
    resize(size() + count);
    return *this;
  }
  Bytes& text(const std::string& characters) {
    insert(end(), characters.begin(), characters.end());
    return *this;
  }
  Bytes& add(const std::vector<std::uint8_t>& bytes) {
    insert(end(), bytes.begin(), bytes.end());
    return *this;
  }
  Bytes& put16(std::size_t offset, int value) {
    at(offset) = static_cast<std::uint8_t>(value >> 8);
    at(offset + 1) = static_cast<std::uint8_t>(value);
    return *this;
  }
};

// A simple glyph whose points all have word deltas; `ends` are the last points of its contours.
struct Point {
  int x, y;
};
inline Bytes simpleGlyph(std::initializer_list<int> ends, const std::vector<Point>& points) {
  Bytes glyph;
  glyph.u16({static_cast<int>(ends.size()), 1, 2, 3, 4}).u16(ends).u16({0});
  for (std::size_t i = 0; i < points.size(); ++i) glyph.u8(0x01);
  for (std::size_t i = 0; i < points.size(); ++i) {
    glyph.u16({points[i].x - (i == 0 ? 0 : points[i - 1].x)});
  }
  for (std::size_t i = 0; i < points.size(); ++i) {
    glyph.u16({points[i].y - (i == 0 ? 0 : points[i - 1].y)});
  }
  return glyph;
}

// A composite of records that each come as their flags without MORE_COMPONENTS, their glyph, and
// the bytes that follow.
struct Part {
  int flags, glyph;
  Bytes rest;
};
inline Bytes compositeGlyph(const std::vector<Part>& parts) {
  Bytes glyph;
  glyph.u16({-1, 5, 6, 7, 8});
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const int more = i + 1 < parts.size() ? 0x20 : 0;
    glyph.u16({parts[i].flags | more, parts[i].glyph}).add(parts[i].rest);
  }
  return glyph;
}
// The record only moves the glyph by (x, y).
inline Part moved(int glyph, int x, int y, int flags = 0) {
  return {flags | 0x0003, glyph, Bytes().u16({x, y})};
}

// A glyph, and so many composites that each draw twice on the glyph before, with a record like
// `part`.
inline std::vector<Bytes> doublings(const Bytes& glyph, int depth, Part part = moved(0, 0, 0)) {
  std::vector<Bytes> glyphs{glyph};
  for (part.glyph = 0; part.glyph < depth; ++part.glyph) {
    glyphs.push_back(compositeGlyph({part, part}));
  }
  return glyphs;
}

struct NameEntry {
  int platformID, encodingID, languageID, nameID;
  std::string bytes;
};
inline Bytes nameTable(const std::vector<NameEntry>& entries) {
  Bytes table, strings;
  const int count = static_cast<int>(entries.size());
  table.u16({0, count, 6 + 12 * count});
  for (const NameEntry& entry : entries) {
    table.u16({entry.platformID, entry.encodingID, entry.languageID, entry.nameID});
    table.u16({static_cast<int>(entry.bytes.size()), static_cast<int>(strings.size())});
    strings.text(entry.bytes);
  }
  return table.add(strings);
}

struct CmapEntry {
  int platformID, encodingID;
  Bytes subtable;  // none: the offset 0
};
inline Bytes cmapTable(const std::vector<CmapEntry>& entries) {
  Bytes table, subtables;
  table.u16({0, static_cast<int>(entries.size())});
  for (const CmapEntry& entry : entries) {
    const std::size_t place = 4 + 8 * entries.size() + subtables.size();
    table.u16({entry.platformID, entry.encodingID})
        .u32(entry.subtable.empty() ? 0 : static_cast<std::uint32_t>(place));
    subtables.add(entry.subtable);
  }
  return table.add(subtables);
}

struct Segment {
  int startCode, endCode, idDelta, idRangeOffset;
};
inline Bytes cmapFormat4(const std::vector<Segment>& segments,
                         std::initializer_list<int> glyphs = {}) {
  Bytes table;
  table.u16({4, 0, 0, static_cast<int>(2 * segments.size()), 0, 0, 0});
  for (const Segment& segment : segments) table.u16({segment.endCode});
  table.u16({0});
  for (const Segment& segment : segments) table.u16({segment.startCode});
  for (const Segment& segment : segments) table.u16({segment.idDelta});
  for (const Segment& segment : segments) table.u16({segment.idRangeOffset});
  return table.u16(glyphs);
}

// The tables of a font in file order. A new image has the six tables that every font needs, three
// glyphs (a triangle, an empty one, a composite that moves the triangle) and an em of 1000 units.
class FontImage {
 public:
  FontImage() {
    table("maxp", Bytes().u32(0x00010000).u16({0}).zeros(26));
    table("head", Bytes().zeros(54).put16(18, 1000));
    table("name", nameTable({}));
    table("cmap", cmapTable({{3, 1, cmapFormat4({{0x41, 0x43, 0xFFBF, 0}, {-1, -1, 1, 0}})}}));
    glyphs(
        {simpleGlyph({2}, {{0, 0}, {100, 0}, {50, 80}}), {}, compositeGlyph({moved(0, 10, 20)})});
  }

  FontImage& table(const std::string& tag, const Bytes& bytes) {
    if (Entry* entry = find(tag)) {
      entry->bytes = bytes;
    } else {
      tables_.push_back({tag, bytes});
    }
    return *this;
  }
  FontImage& without(const std::string& tag) {
    std::erase_if(tables_, [&](const Entry& entry) { return entry.tag == tag; });
    return *this;
  }
  // Adds a directory entry, also for a tag that exists already.
  FontImage& also(const std::string& tag, const Bytes& bytes) {
    tables_.push_back({tag, bytes});
    return *this;
  }
  FontImage& last(const std::string& tag) {  // moves a table to the end of the image
    const auto place = std::find_if(tables_.begin(), tables_.end(),
                                    [&](const Entry& entry) { return entry.tag == tag; });
    std::rotate(place, place + 1, tables_.end());
    return *this;
  }
  FontImage& patch16(const std::string& tag, std::size_t offset, int value) {
    find(tag)->bytes.put16(offset, value);
    return *this;
  }
  // glyf, loca and the glyph count; odd lengths stay odd, so loca is of the long format.
  FontImage& glyphs(const std::vector<Bytes>& glyphs) {
    Bytes glyf, loca;
    for (const Bytes& glyph : glyphs) {
      loca.u32(static_cast<std::uint32_t>(glyf.size()));
      glyf.add(glyph);
    }
    table("glyf", glyf).table("loca", loca.u32(static_cast<std::uint32_t>(glyf.size())));
    return patch16("maxp", 4, static_cast<int>(glyphs.size())).patch16("head", 50, 1);
  }
  FontImage& loca(const Bytes& bytes, int format) {
    return table("loca", bytes).patch16("head", 50, format);
  }
  FontImage& longMetrics(const std::string& header, const std::string& metrics, int count,
                         const Bytes& bytes) {
    return table(header, Bytes().zeros(36).put16(34, count)).table(metrics, bytes);
  }
  // The fields of a directory entry other than offset and length.
  FontImage& lie(const std::string& tag, std::int64_t addToOffset, std::int64_t addToLength) {
    find(tag)->addToOffset = addToOffset;
    find(tag)->addToLength = addToLength;
    return *this;
  }

  Bytes build() const { return collection(0); }
  // `faces` copies of one offset table after a collection header; 0 for a plain font.
  Bytes collection(std::size_t faces, std::uint32_t version = 0x00010000) const {
    Bytes image;
    const std::size_t header = faces == 0 ? 0 : 12 + 4 * faces;
    if (faces > 0) image.u32(0x74746366).u32(version).u32(static_cast<std::uint32_t>(faces));
    for (std::size_t i = 0; i < faces; ++i) image.u32(static_cast<std::uint32_t>(header));
    image.u32(0x00010000).u16({static_cast<int>(tables_.size()), 0, 0, 0});
    std::size_t place = header + 12 + 16 * tables_.size();
    for (const Entry& entry : tables_) {
      image.text(entry.tag).u32(0);
      image.u32(static_cast<std::uint32_t>(static_cast<std::int64_t>(place) + entry.addToOffset));
      image.u32(static_cast<std::uint32_t>(static_cast<std::int64_t>(entry.bytes.size()) +
                                           entry.addToLength));
      place += entry.bytes.size();
    }
    for (const Entry& entry : tables_) image.add(entry.bytes);
    return image;
  }

 private:
  struct Entry {
    std::string tag;
    Bytes bytes;
    std::int64_t addToOffset = 0, addToLength = 0;
  };
  Entry* find(const std::string& tag) {
    for (Entry& entry : tables_) {
      if (entry.tag == tag) return &entry;
    }
    return nullptr;
  }
  std::vector<Entry> tables_;
};

// An open font with its image in a heap block of its exact size.
class OpenFont {
 public:
  explicit OpenFont(const Bytes& image, std::uint32_t face = 0, const char* name = "/f/Test.ttf")
      : image_(new std::uint8_t[image.size()]) {
    std::copy(image.begin(), image.end(), image_.get());
    result = truetype::openTrueTypeFont(name, image_.get(), static_cast<std::int32_t>(image.size()),
                                        face, &font_);
  }
  explicit OpenFont(const FontImage& image, const char* name = "/f/Test.ttf")
      : OpenFont(image.build(), 0, name) {}
  OpenFont(const OpenFont&) = delete;
  OpenFont& operator=(const OpenFont&) = delete;
  ~OpenFont() { truetype::closeTrueTypeFont(font_); }
  const truetype::TrueTypeFont* operator->() const { return font_; }
  const truetype::TrueTypeFont* get() const { return font_; }
  truetype::TrueTypeFont* mutableFont() { return font_; }
  std::uint8_t* image() { return image_.get(); }
  truetype::FontResult result;

 private:
  std::unique_ptr<std::uint8_t[]> image_;
  truetype::TrueTypeFont* font_ = nullptr;
};

// Combines values of any types.
template <class... Values>
std::vector<long long> row(Values... values) {
  return {static_cast<long long>(values)...};
}

struct Freed {
  void operator()(void* block) const { std::free(block); }
};
template <class T>
std::unique_ptr<T[], Freed> owned(T* block) {
  return std::unique_ptr<T[], Freed>(block);
}

struct FreeGlyph {
  void operator()(truetype::GlyphData* glyph) const {
    std::free(glyph->data);
    std::free(glyph);
  }
};
using OwnedGlyph = std::unique_ptr<truetype::GlyphData, FreeGlyph>;
inline OwnedGlyph glyphOf(const truetype::TrueTypeFont* font, std::uint32_t glyph) {
  return OwnedGlyph(truetype::getGlyphData(font, glyph));
}

inline std::vector<truetype::GlyphPoint> pointsOf(const truetype::TrueTypeFont* font,
                                                  std::uint32_t glyph) {
  truetype::GlyphPoint* points = nullptr;
  const std::int32_t count = truetype::getGlyphPoints(font, glyph, &points);
  std::vector<truetype::GlyphPoint> copy(points, points + (count < 0 ? 0 : count));
  std::free(points);
  return copy;
}

}  // namespace ulm::test
