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
  static constexpr bool kBorrows = true;

  BorrowingAdder(GlyfPayload& table, const TrueTypeFont& font) noexcept
      : table_(table), font_(font), bytesLeft_(mostGlyphBytes(font)) {}

  // Only composites are ever written to; all others can stay where they are if no byte is missing.
  std::int32_t append(GlyphEntry& entry) noexcept {
    constexpr std::size_t kRecord = sizeof(TTListNode) + sizeof(GlyphData);
    auto* node = static_cast<TTListNode*>(table_.store->records.take(kRecord));
    if (node == nullptr) return kGlyphNoMemory;
    GlyphData* glyph = new (node + 1) GlyphData;
    ByteView readable;
    std::size_t length = 0;
    if (describeGlyph(font_, entry.glyph, glyph, &readable, &length) != FontResultOk) {
      table_.store->records.giveBack(kRecord);
      return isTooLarge(font_, entry.glyph) ? kGlyphTooLarge : kNoGlyph;
    }
    if (length > bytesLeft_) return kTooManyGlyphBytes;
    bytesLeft_ -= length;
    const ByteView bytes(readable.start(), length);
    if (isComposite(readable, length)) {
      glyph->isComposite = 1;
      if (!copy(bytes, glyph)) return kGlyphNoMemory;
      // What is no walk's has references all the same.
      if (bytes.readOrZero<std::int16_t>(0) != -1) table_.lateReferences = true;
    } else {
      shape_ = shapeIn(table_, readable, length);
      glyph->pointCount = static_cast<std::uint16_t>(shape_.points);
      glyph->contourCount = shape_.contours;
      if (length % 2 != 0) {
        if (!copy(bytes, glyph)) return kGlyphNoMemory;
      } else if (length != 0) {
        glyph->data = const_cast<std::uint8_t*>(bytes.start());
      }
    }
    table_.extent.include(*glyph);
    glyph->newIndex = table_.glyphs.count;
    appendNode(table_.glyphs, node, glyph);
    if (entry.recordPlusOne == 0) entry.recordPlusOne = table_.glyphs.count;
    return static_cast<std::int32_t>(glyph->newIndex);
  }
  const SimpleShape& shape() const noexcept { return shape_; }
  GlyphData* last() const noexcept { return static_cast<GlyphData*>(table_.glyphs.last->item); }

 private:
  bool copy(ByteView bytes, GlyphData* glyph) noexcept {
    glyph->data = static_cast<std::uint8_t*>(table_.store->bytes.take(glyph->byteCount));
    if (glyph->data == nullptr) return false;
    copyEven(bytes, glyph->data);
    return true;
  }

  GlyfPayload& table_;
  const TrueTypeFont& font_;
  std::uint64_t bytesLeft_;
  SimpleShape shape_{};  // of the glyph last appended, unless that is a composite
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
  auto* payload = static_cast<GlyfPayload*>(table->data);
  CBuffer<std::uint8_t> store = makeBuffer<std::uint8_t>(sizeof(GlyphStore));
  if (store == nullptr || !payload->index.expect(glyphs)) {
    disposeWriterTable(table);
    return nullptr;
  }
  payload->store = new (store.release()) GlyphStore;
  payload->index.useFont(font);
  return table;
}

WriterResult addFontGlyphs(WriterTable* glyfTable, const TrueTypeFont& font,
                           const std::uint16_t* glyphIds, std::size_t count,
                           std::int32_t* newIndices) noexcept {
  constexpr std::uint32_t kMostGlyphs = 0xFFFF;
  GlyfPayload& table = *static_cast<GlyfPayload*>(glyfTable->data);
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
    GlyphData* record = adder.last();
    const bool isFirst = index.visit(entry);
    if (record->isComposite == 0) {
      if (isFirst) entry.counts = plainCounts(adder.shape());
    } else if (isFirst) {
      const std::int32_t failure = walk.run(entry, record);
      if (failure != 0) return resultOf(failure);
    } else {
      renumberComponents(*record, index, 0);  // what is absent the first one has told
    }
  }
  return WriterResultOk;
}

}  // namespace ulm::truetype::detail
