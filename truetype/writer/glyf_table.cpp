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
  static constexpr bool kBorrows = false;

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
    ByteView readable;
    std::size_t length = 0;
    if (detail::describeGlyph(font_, entry.glyph, glyph.get(), &readable, &length) !=
        FontResultOk) {
      glyph->data = nullptr;
      return detail::isTooLarge(font_, entry.glyph) ? kGlyphTooLarge : kNoGlyph;
    }
    if (length > bytesLeft_) return kGlyphTooLarge;
    bytesLeft_ -= length;
    glyph->isComposite = detail::isComposite(readable, length) ? 1 : 0;
    if (glyph->isComposite == 0) {
      shape_ = detail::shapeIn(table_, readable, length);
      glyph->pointCount = static_cast<std::uint16_t>(shape_.points);
      glyph->contourCount = shape_.contours;
    }
    if (length != 0) {
      glyph->data = detail::makeBuffer<std::uint8_t>(glyph->byteCount).release();
      if (glyph->data == nullptr) return kGlyphNoMemory;
      detail::copyEven(ByteView(readable.start(), length), glyph->data);
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
  SimpleShape shape_{};  // of the glyph last appended, unless that is a composite
  bool kept_ = false;
};

}  // namespace

std::int32_t addGlyph(WriterTable* glyfTable, GlyphData* glyph, const TrueTypeFont* font) noexcept {
  OwnedGlyph owned(glyph);
  if (owned == nullptr) return kNoGlyph;
  GlyfPayload& table = *static_cast<GlyfPayload*>(glyfTable->data);
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

void copyEven(ByteView bytes, std::uint8_t* out) noexcept {
  bytes.copy(0, bytes.size(), out);
  if (bytes.size() % 2 != 0) out[bytes.size()] = 0;
}

bool isTooLarge(const TrueTypeFont& font, std::uint32_t glyphIndex) noexcept {
  if (glyphIndex >= font.numGlyphs) return false;
  const std::uint32_t start = font.glyphOffsets[glyphIndex];
  const std::uint32_t next = font.glyphOffsets[glyphIndex + 1];
  return next >= start && next - start >= 0xFFFF && glyphView(font, glyphIndex).size() >= 0xFFFF;
}

void renumberComponents(const GlyphData& glyph, const GlyphIndex& index,
                        std::uint32_t absent) noexcept {
  const ByteView data(glyph.data, glyph.byteCount);
  std::uint16_t flags = kMoreComponents;
  std::size_t record = kFirstComponent;
  for (; (flags & kMoreComponents) != 0; record += componentSize(flags)) {
    if (!data.holds(record, 4)) return;
    const auto head = data.readHeld<std::uint32_t>(record);
    flags = static_cast<std::uint16_t>(head >> 16);
    const std::uint32_t place = index.find(head & 0xFFFF);
    put16(glyph.data, record + 2, place == kNoRecordIndex ? absent : place);
  }
}

void renumberGlyphs(GlyfPayload& payload) noexcept {
  for (const TTListNode* node = payload.glyphs.first; node != nullptr; node = node->next) {
    const auto& glyph = *static_cast<const GlyphData*>(node->item);
    if (glyph.isComposite == 0) continue;
    if (payload.store != nullptr) {
      GlyphData source;
      ByteView readable;
      std::size_t length = 0;
      describeGlyph(*payload.index.font(), glyph.glyphIndex, &source, &readable, &length);
      copyEven(ByteView(readable.start(), length), glyph.data);
    }
    renumberComponents(glyph, payload.index, payload.glyphs.count);
  }
}

void freeGlyphData(void* glyph) noexcept {
  if (glyph == nullptr) return;
  std::free(static_cast<GlyphData*>(glyph)->data);
  std::free(glyph);
}

void disposeGlyphs(GlyfPayload* payload) noexcept {
  if (payload->store != nullptr) {
    payload->store->~GlyphStore();
    std::free(payload->store);
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

void writeGlyphs(const TTList& glyphs, std::uint8_t* out) noexcept {
  for (const TTListNode* node = glyphs.first; node != nullptr; node = node->next) {
    const auto* glyph = static_cast<const GlyphData*>(node->item);
    if (glyph->byteCount != 0) std::memcpy(out, glyph->data, glyph->byteCount);
    out += glyph->byteCount;
  }
}

WriterResult makeGlyfImage(WriterTable* table, TableImage* out) noexcept {
  const TTList& glyphs = *listOf(table);
  if (glyphs.first == nullptr) return WriterResultEmptyTable;
  const std::uint64_t length = glyfLength(glyphs);
  if (padded(length) > UINT32_MAX) return WriterResultFileTooLarge;
  std::uint8_t* image = makeImage(table, static_cast<std::uint32_t>(length));
  if (image == nullptr) return WriterResultNoMemory;
  writeGlyphs(glyphs, image);
  *out = {image, static_cast<std::uint32_t>(length), kTagGlyf};
  return WriterResultOk;
}

}  // namespace detail
}  // namespace ulm::truetype
