// The glyphs that a subset takes from one font.
#pragma once

#include <cstddef>
#include <cstdint>

#include "truetype/detail/font_views.h"
#include "truetype/font.h"
#include "truetype/writer/detail/arena.h"
#include "truetype/writer/detail/component_walk.h"
#include "truetype/writer/detail/new_glyphs.h"
#include "truetype/writer/result.h"

namespace ulm::truetype::detail {

// A glyph whose bytes stay in the font. The names are those of GlyphData.
struct SubsetGlyph {
  SubsetGlyph* next;
  ByteView bytes;
  std::uint16_t byteCount;  // the bytes, made even by a zero in the file
  std::uint16_t advanceWidth;
  std::int16_t leftSideBearing;
  std::uint16_t pointCount, contourCount;
  bool isComposite;
};

// Takes glyphs from a font, which outlives it, without copying their bytes. A composite that is
// listed again has no counts: its first record has them.
class SubsetGlyphs final : public NewGlyphs {
 public:
  explicit SubsetGlyphs(const TrueTypeFont& font) noexcept : font_(font) {
    walk_.index.useFont(font);
  }
  SubsetGlyphs(const SubsetGlyphs&) = delete;
  SubsetGlyphs& operator=(const SubsetGlyphs&) = delete;

  // Makes room for about so many glyphs at once; false without memory.
  bool expect(std::uint32_t glyphs) noexcept { return walk_.index.expect(glyphs); }

  // Takes `count` glyphs, and after the first composite that needs it each of their components that
  // has not been taken before. newIndices receives the new index of each listed glyph: kNoGlyph for
  // one that has no GlyphData, and for all once there are more than kMaxGlyphCount.
  // WriterResultGlyphTooLarge, WriterResultFileTooLarge beyond maxAddedBytes, WriterResultNoMemory,
  // or WriterResultOk.
  WriterResult take(const std::uint16_t* glyphIds, std::size_t count,
                    std::int32_t* newIndices) noexcept;

  std::uint32_t count() const noexcept override { return count_; }
  GlyphTotals measure(std::uint32_t* offsets,
                      format::ArraySink<std::uint32_t> metrics) const noexcept override;
  WriterResult renumber(FontBox* outBox) noexcept override;
  void write(format::ByteSink out) const noexcept override;

 private:
  friend class SubsetAdder;

  const TrueTypeFont& font_;
  WalkState walk_{};
  Arena arena_;  // owns the glyphs
  SubsetGlyph* first_ = nullptr;
  SubsetGlyph* last_ = nullptr;
  std::uint32_t count_ = 0;
  FontBox box_;  // of the glyphs so far, read while their bytes are at hand
};

}  // namespace ulm::truetype::detail
