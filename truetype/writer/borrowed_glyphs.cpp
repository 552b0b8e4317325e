// The glyphs that the subset driver takes from one font, which outlives their table.
#include <new>
#include <utility>

#include "truetype/writer/detail/component_walk.h"
#include "truetype/writer/detail/payloads.h"

namespace ulm::truetype::detail {
namespace {

// The list's own append without its allocation.
void appendNode(TTList& list, TTListNode* node, GlyphData* glyph) noexcept {
  *node = {nullptr, list.last, glyph};
  (list.last == nullptr ? list.first : list.last->next) = node;
  list.last = node;
  if (list.current == nullptr) list.current = node;
  ++list.count;
}

class BorrowingAdder {
 public:
  BorrowingAdder(GlyfPayload& table, const TrueTypeFont& font) noexcept
      : table_(table), font_(font), bytesLeft_(mostGlyphBytes(font)) {}

  std::int32_t append(GlyphEntry& entry) noexcept {
    void* room = table_.borrowed->take(sizeof(BorrowedGlyph));
    if (room == nullptr) return kGlyphNoMemory;
    auto* record = new (room) BorrowedGlyph;
    GlyphData& glyph = record->glyph;
    ByteView bytes;
    std::size_t length = 0;
    if (describeGlyph(font_, entry.glyph, &glyph, &bytes, &length) != FontResultOk) {
      table_.borrowed->giveBack(sizeof(BorrowedGlyph));
      return isTooLarge(font_, entry.glyph) ? kGlyphTooLarge : kNoGlyph;
    }
    if (length > bytesLeft_) return kTooManyGlyphBytes;
    bytesLeft_ -= length;
    shape_ = {};
    if (glyph.isComposite == 0) {
      shape_ = shapeIn(table_, bytes, length);
      glyph.pointCount = static_cast<std::uint16_t>(shape_.points);
      glyph.contourCount = static_cast<std::uint16_t>(shape_.contours);
    }
    record->isOdd = length % 2 != 0;
    // The list's type has bytes that can be changed; nobody changes these.
    if (length != 0) glyph.data = const_cast<std::uint8_t*>(bytes.start());
    table_.extent.include(ByteView(bytes.start(), length));
    glyph.newIndex = table_.glyphs.count;
    appendNode(table_.glyphs, &record->node, &glyph);
    if (entry.recordPlusOne == 0) entry.recordPlusOne = table_.glyphs.count;
    return static_cast<std::int32_t>(glyph.newIndex);
  }
  const SimpleShape& shape() const noexcept { return shape_; }
  GlyphData* last() const noexcept { return static_cast<GlyphData*>(table_.glyphs.last->item); }

 private:
  GlyfPayload& table_;
  const TrueTypeFont& font_;
  std::uint64_t bytesLeft_;
  SimpleShape shape_{};  // of the glyph last appended
};

WriterResult resultOf(std::int32_t failure) noexcept {
  return failure == kGlyphTooLarge       ? WriterResultGlyphTooLarge
         : failure == kTooManyGlyphBytes ? WriterResultFileTooLarge
                                         : WriterResultNoMemory;
}

}  // namespace

WriterTable* createBorrowingGlyfTable(const TrueTypeFont& font, std::uint32_t glyphs) noexcept {
  WriterTable* table = createGlyfTable();
  if (table == nullptr) return nullptr;
  GlyfPayload* payload = &glyfOf(table);
  CBuffer<std::uint8_t> arena = makeBuffer<std::uint8_t>(sizeof(GlyphArena));
  if (arena == nullptr || !payload->index.expect(glyphs)) {
    disposeWriterTable(table);
    return nullptr;
  }
  payload->borrowed = new (arena.release()) GlyphArena;
  payload->index.useFont(font);
  return table;
}

WriterResult addFontGlyphs(WriterTable* glyfTable, const TrueTypeFont& font,
                           const std::uint16_t* glyphIds, std::size_t count,
                           std::int32_t* newIndices) noexcept {
  constexpr std::uint32_t kMostGlyphs = 0xFFFF;
  GlyfPayload& table = glyfOf(glyfTable);
  GlyphIndex& index = table.index;
  BorrowingAdder adder(table, font);
  ComponentWalk<BorrowingAdder> walk(table, adder, font);
  for (std::size_t k = 0; k < count; ++k) {
    newIndices[k] = kNoGlyph;
    if (glyphIds[k] >= font.numGlyphs || table.glyphs.count > kMostGlyphs) continue;
    GlyphEntry* const entered = index.enter(glyphIds[k]);
    if (entered == nullptr) return WriterResultNoMemory;
    GlyphEntry& entry = *entered;
    newIndices[k] = adder.append(entry);
    if (newIndices[k] == kNoGlyph) continue;
    if (newIndices[k] < 0) return resultOf(newIndices[k]);
    if (!index.visit(entry)) continue;
    GlyphData* record = adder.last();
    if (record->isComposite == 0) {
      entry.counts = plainCounts(adder.shape());
      continue;
    }
    const std::int32_t failure = walk.run(entry, record);
    if (failure != 0) return resultOf(failure);
  }
  return WriterResultOk;
}

}  // namespace ulm::truetype::detail
