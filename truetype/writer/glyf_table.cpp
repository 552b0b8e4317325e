// The glyphs of a new font.
#include <cstring>
#include <new>
#include <utility>

#include "truetype/detail/component.h"
#include "truetype/writer/detail/component_walk.h"
#include "truetype/writer/detail/payloads.h"

namespace ulm::truetype {
namespace {

using detail::ByteView;
using detail::GlyfPayload;
using detail::GlyphEntry;
using detail::SimpleShape;

struct FreeGlyphData {
  void operator()(GlyphData* glyph) const noexcept { detail::freeGlyphData(glyph); }
};
using OwnedGlyph = std::unique_ptr<GlyphData, FreeGlyphData>;

// What one addGlyph appends, taken back unless it is kept.
class Addition {
 public:
  Addition(GlyfPayload& table, const TrueTypeFont& font) noexcept
      : table_(table),
        font_(font),
        before_(table.glyphs.count),
        cursor_(table.glyphs.current),
        bytesLeft_(detail::mostGlyphBytes(font)) {}
  Addition(const Addition&) = delete;
  Addition& operator=(const Addition&) = delete;
  ~Addition() {
    if (kept_ || table_.glyphs.count == before_) return;
    while (table_.glyphs.count > before_) {
      listLast(&table_.glyphs);
      listRemoveCurrent(&table_.glyphs);
    }
    table_.glyphs.current = cursor_;
    table_.index.forget();
  }
  void keep() noexcept { kept_ = true; }

  // The new index, or kGlyphNoMemory. To be told to the index.
  std::int32_t append(OwnedGlyph glyph) noexcept {
    TTList& list = table_.glyphs;
    const std::uint32_t count = list.count;
    glyph->newIndex = count == 0 ? 0 : last()->newIndex + 1;
    listAppend(&list, glyph.get());
    if (list.count == count) return kGlyphNoMemory;
    return static_cast<std::int32_t>(glyph.release()->newIndex);
  }

  std::int32_t append(GlyphEntry& entry) noexcept {
    OwnedGlyph glyph(detail::makeBuffer<GlyphData>(1).release());
    if (glyph == nullptr) return kGlyphNoMemory;
    ByteView bytes;
    std::size_t length = 0;
    if (detail::describeGlyph(font_, entry.glyph, glyph.get(), &bytes, &length) != FontResultOk) {
      glyph->data = nullptr;
      return detail::isTooLarge(font_, entry.glyph) ? kGlyphTooLarge : kNoGlyph;
    }
    if (length > bytesLeft_) return kGlyphTooLarge;
    bytesLeft_ -= length;
    shape_ = {};
    if (glyph->isComposite == 0) {
      shape_ = detail::shapeIn(table_, bytes, length);
      glyph->pointCount = static_cast<std::uint16_t>(shape_.points);
      glyph->contourCount = static_cast<std::uint16_t>(shape_.contours);
    }
    if (length != 0) {
      glyph->data = detail::makeZeroedBuffer<std::uint8_t>(glyph->byteCount).release();
      if (glyph->data == nullptr) return kGlyphNoMemory;
      bytes.copy(0, length, glyph->data);
    }
    const std::int32_t newIndex = append(std::move(glyph));
    if (newIndex >= 0) table_.index.added(table_.glyphs, entry.glyph, &entry);
    return newIndex;
  }
  const SimpleShape& shape() const noexcept { return shape_; }
  GlyphData* last() const noexcept { return static_cast<GlyphData*>(table_.glyphs.last->item); }

 private:
  GlyfPayload& table_;
  const TrueTypeFont& font_;
  std::uint32_t before_;
  TTListNode* cursor_;
  std::uint64_t bytesLeft_;
  SimpleShape shape_{};  // of the glyph last appended
  bool kept_ = false;
};

}  // namespace

std::int32_t addGlyph(WriterTable* glyfTable, GlyphData* glyph, const TrueTypeFont* font) noexcept {
  OwnedGlyph owned(glyph);
  if (owned == nullptr) return kNoGlyph;
  GlyfPayload& table = detail::glyfOf(glyfTable);
  detail::GlyphIndex& index = table.index;
  index.useFont(*font);
  if (!index.follow(table.glyphs)) return kGlyphNoMemory;
  const std::uint32_t number = owned->glyphIndex;
  GlyphEntry* const entry = number < detail::kGlyphNumbers ? index.enter(number) : nullptr;
  if (entry == nullptr && number < detail::kGlyphNumbers) return kGlyphNoMemory;
  Addition addition(table, *font);
  const std::int32_t newIndex = addition.append(std::move(owned));
  if (newIndex < 0) return newIndex;
  index.added(table.glyphs, number, entry);
  // The components of one visited before are there.
  if (entry != nullptr && index.visit(*entry) && entry->glyph < font->numGlyphs) {
    const std::int32_t failure =
        detail::ComponentWalk<Addition>(table, addition, *font).run(*entry, nullptr);
    if (failure != 0) return failure;
  }
  addition.keep();
  return newIndex;
}

std::uint32_t glyphCount(const WriterTable* glyfTable) noexcept {
  return detail::listOf(glyfTable)->count;
}

namespace detail {

bool isTooLarge(const TrueTypeFont& font, std::uint32_t glyphIndex) noexcept {
  if (glyphIndex >= font.numGlyphs) return false;
  const std::uint32_t start = font.glyphOffsets[glyphIndex];
  const std::uint32_t next = font.glyphOffsets[glyphIndex + 1];
  return next >= start && next - start >= 0xFFFF && glyphView(font, glyphIndex).size() >= 0xFFFF;
}

void renumberComponents(format::ByteSink glyph, const GlyphIndex& index,
                        std::uint32_t absent) noexcept {
  const ByteView bytes = glyph.view();
  std::uint16_t flags = kMoreComponents;
  std::size_t record = kFirstComponent;
  for (; (flags & kMoreComponents) != 0; record += componentSize(flags)) {
    if (!bytes.holds(record, 4)) return;
    const auto head = bytes.readHeld<std::uint32_t>(record);
    flags = static_cast<std::uint16_t>(head >> 16);
    const std::uint32_t place = index.find(head & 0xFFFF);
    glyph.put<std::uint16_t>(record + 2,
                             static_cast<std::uint16_t>(place == kNoRecordIndex ? absent : place));
  }
}

void freeGlyphData(void* glyph) noexcept {
  if (glyph == nullptr) return;
  std::free(static_cast<GlyphData*>(glyph)->data);
  std::free(glyph);
}

void disposeGlyphs(GlyfPayload* payload) noexcept {
  if (payload->borrowed != nullptr) {
    payload->borrowed->~GlyphArena();
    std::free(payload->borrowed);
  } else {
    listClear(&payload->glyphs);
  }
  payload->~GlyfPayload();
  std::free(payload);
}

std::uint64_t glyfLength(const TTList& glyphs) noexcept {
  std::uint64_t length = 0;
  for (const TTListNode* node = glyphs.first; node != nullptr; node = node->next) {
    length += static_cast<const GlyphData*>(node->item)->byteCount;
  }
  return length;
}

void writeGlyphs(const GlyfPayload& table, format::ByteSink out) noexcept {
  const TTList& glyphs = table.glyphs;
  std::size_t offset = 0;
  if (table.borrowed == nullptr) {
    for (const TTListNode* node = glyphs.first; node != nullptr; node = node->next) {
      const auto& glyph = *static_cast<const GlyphData*>(node->item);
      out.copy(offset, {glyph.data, glyph.byteCount});
      offset += glyph.byteCount;
    }
    return;
  }
  for (const TTListNode* node = glyphs.first; node != nullptr; node = node->next) {
    const auto& record = *reinterpret_cast<const BorrowedGlyph*>(node);  // its first member
    const GlyphData& glyph = record.glyph;
    const std::size_t length = glyph.byteCount - std::size_t{record.isOdd};
    out.copy(offset, {glyph.data, length});
    out.clear(offset + length, glyph.byteCount - length);
    if (glyph.isComposite != 0) {
      renumberComponents(out.sub(offset, glyph.byteCount), table.index, glyphs.count);
    }
    offset += glyph.byteCount;
  }
}

WriterResult makeGlyfImage(WriterTable* table, TableImage* out) noexcept {
  const TTList& glyphs = *listOf(table);
  if (glyphs.first == nullptr) return WriterResultEmptyTable;
  const std::uint64_t length = glyfLength(glyphs);
  if (padded(length) > UINT32_MAX) return WriterResultFileTooLarge;
  NewImage image(table, static_cast<std::uint32_t>(length));
  if (!image.hasMemory()) return WriterResultNoMemory;
  writeGlyphs(glyfOf(table), image.bytes());
  return image.finish(kTagGlyf, out);
}

}  // namespace detail
}  // namespace ulm::truetype
