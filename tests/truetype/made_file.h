// Files that a writer with tables of its own assembles.
#pragma once

#include <gtest/gtest.h>

#include "fuzz/font_properties.h"

namespace ulm::test {

using namespace truetype;

inline std::uint32_t tagOf(const char* text) {
  return readUInt32(reinterpret_cast<const std::uint8_t*>(text), 0);
}

struct DisposeWriter {
  void operator()(TrueTypeWriter* writer) const { disposeTrueTypeWriter(writer); }
};
using Writer = std::unique_ptr<TrueTypeWriter, DisposeWriter>;
inline Writer newWriter() {
  TrueTypeWriter* writer = nullptr;
  createTrueTypeWriter(&writer);
  return Writer(writer);
}

struct Glyph {
  Bytes bytes;
  int advance = 0, points = 0, contours = 0, number = -1;  // its own place, if none is given
};

// A writer with what assembly needs, of glyphs without components in any font.
inline Writer writerOf(const std::vector<Glyph>& glyphs) {
  const OpenFont none{FontImage().glyphs({})};
  Writer writer = newWriter();
  const Bytes created = Bytes().zeros(8);
  WriterTable* glyf = createGlyfTable();
  for (const Glyph& glyph : glyphs) {
    auto* data = static_cast<GlyphData*>(std::calloc(1, sizeof(GlyphData)));
    data->byteCount = static_cast<std::uint16_t>(glyph.bytes.size());
    data->data = static_cast<std::uint8_t*>(std::malloc(glyph.bytes.size() + 1));
    std::copy(glyph.bytes.begin(), glyph.bytes.end(), data->data);
    data->isComposite = !glyph.bytes.empty() && glyph.bytes[0] >= 0x80;
    data->advanceWidth = static_cast<std::uint16_t>(glyph.advance);
    data->leftSideBearing = static_cast<std::int16_t>(glyph.advance + 1);
    data->pointCount = static_cast<std::uint16_t>(glyph.points);
    data->contourCount = static_cast<std::uint16_t>(glyph.contours);
    const std::uint32_t place = glyphCount(glyf);
    data->glyphIndex = glyph.number < 0 ? place : static_cast<std::uint32_t>(glyph.number);
    EXPECT_EQ(addGlyph(glyf, data, none.get()), static_cast<std::int32_t>(place));
  }
  const Bytes maxp = Bytes().u32(0x00010000).zeros(28);
  addWriterTable(writer.get(), createHeadTable(1, 2, 1000, created.data(), 0, 8, 2));
  addWriterTable(writer.get(), createHheaTable(1, 2, 3, 4, 5));
  addWriterTable(writer.get(), createMaxpTable(maxp.data(), 32));
  addWriterTable(writer.get(), glyf);
  addWriterTable(writer.get(), nullptr);
  return writer;
}

struct File {
  WriterResult result;
  Bytes bytes;

  Bytes table(const char* tag) const {
    Bytes copy;
    for (std::size_t i = 0; i < readUInt16(bytes.data(), 4); ++i) {
      const std::uint8_t* entry = bytes.data() + 12 + 16 * i;
      const std::uint8_t* start = bytes.data() + readUInt32(entry, 8);
      if (readUInt32(entry, 0) == tagOf(tag)) copy.assign(start, start + readUInt32(entry, 12));
    }
    return copy;
  }
};
inline File take(WriterResult result, std::uint8_t* image, std::uint32_t length) {
  File file{result, {}};
  EXPECT_EQ(row(image != nullptr, length != 0), row(result == WriterResultOk, !result));
  EXPECT_EQ(image == nullptr ? 0 : checkFile(image, length), 0);
  if (image != nullptr) file.bytes.assign(image, image + length);
  std::free(image);
  return file;
}
inline File assembled(const Writer& writer) {
  std::uint8_t* image = nullptr;
  std::uint32_t length = 0;
  const WriterResult result = assembleFont(writer.get(), &image, &length);
  return take(result, image, length);
}

}  // namespace ulm::test
