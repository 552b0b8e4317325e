#include "truetype/writer/detail/glyf_table.h"

#include <cassert>
#include <cstdlib>
#include <memory>
#include <new>
#include <utility>

#include "truetype/detail/c_buffer.h"
#include "truetype/format/directory.h"
#include "truetype/glyph/component_records.h"
#include "truetype/glyph/description.h"

namespace ulm::truetype::detail {
namespace {

void freeGlyph(void* glyph) noexcept {
  if (glyph == nullptr) return;
  std::free(static_cast<GlyphData*>(glyph)->data);
  std::free(glyph);
}

struct FreeGlyph {
  void operator()(GlyphData* glyph) const noexcept { freeGlyph(glyph); }
};
using OwnedGlyph = std::unique_ptr<GlyphData, FreeGlyph>;

// What one addGlyph appends. It is removed again unless it is kept.
class Addition {
 public:
  using Record = GlyphData;

  Addition(GlyfPayload& table, const TrueTypeFont& font) noexcept
      : table_(table),
        font_(font),
        before_(table.glyphs.count),
        cursor_(table.glyphs.current),
        bytesLeft_(maxAddedBytes(font)) {}
  Addition(const Addition&) = delete;
  Addition& operator=(const Addition&) = delete;
  ~Addition() {
    if (kept_ || table_.glyphs.count == before_) return;
    while (table_.glyphs.count > before_) {
      listLast(&table_.glyphs);
      listRemoveCurrent(&table_.glyphs);
    }
    table_.glyphs.current = cursor_;
    table_.walk.index.forget();
  }
  void keep() noexcept { kept_ = true; }

  // Returns the new index or kGlyphNoMemory; the caller registers it with the index.
  std::int32_t append(OwnedGlyph glyph) noexcept {
    TTList& list = table_.glyphs;
    const std::uint32_t count = list.count;
    glyph->newIndex = count == 0 ? 0 : last()->newIndex + 1;
    listAppend(&list, glyph.get());
    if (list.count == count) return kGlyphNoMemory;
    return static_cast<std::int32_t>(glyph.release()->newIndex);
  }

  std::int32_t append(IndexEntry& entry) noexcept {
    const GlyphDescription described = describeGlyph(font_, entry.glyph);
    if (described.refusal == GlyphRefusal::TooLarge) return kGlyphTooLarge;
    if (described.refusal != GlyphRefusal::None) return kNoGlyph;
    if (described.length > bytesLeft_) return kGlyphTooLarge;
    OwnedGlyph glyph(makeBuffer<GlyphData>(1).release());
    if (glyph == nullptr) return kGlyphNoMemory;
    bytesLeft_ -= described.length;
    *glyph = described.record(entry.glyph);
    shape_ = {};
    if (!described.isComposite) {
      shape_ = table_.walk.shapeOf(described.glyph, described.length);
      glyph->pointCount = static_cast<std::uint16_t>(shape_.points);
      glyph->contourCount = shape_.contours;
    }
    if (described.length != 0) {
      glyph->data = makeZeroedBuffer<std::uint8_t>(glyph->byteCount).release();
      if (glyph->data == nullptr) return kGlyphNoMemory;
      described.glyph.copy(0, described.length, glyph->data);
    }
    const std::int32_t newIndex = append(std::move(glyph));
    if (newIndex >= 0) table_.walk.index.added(table_.glyphs, entry.glyph, &entry);
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
  SimpleShape shape_{};
  bool kept_ = false;
};

std::uint64_t totalBytes(const TTList& glyphs) noexcept {
  std::uint64_t length = 0;
  for (const TTListNode* node = glyphs.first; node != nullptr; node = node->next) {
    length += static_cast<const GlyphData*>(node->item)->byteCount;
  }
  return length;
}

}  // namespace

WriterTable* makeEmptyGlyfTable() noexcept {
  CBuffer<std::uint8_t> room = makeBuffer<std::uint8_t>(sizeof(GlyfPayload));
  if (room == nullptr) return nullptr;
  auto* payload = new (room.get()) GlyfPayload{};  // owns nothing yet
  listSetDestructor(&payload->glyphs, freeGlyph);
  return makeTable(kTagGlyf, std::move(room));
}

void disposeGlyf(WriterTable* table) noexcept {
  GlyfPayload& payload = glyfOf(table);
  listClear(&payload.glyphs);
  payload.~GlyfPayload();
  std::free(table->data);
}

std::int32_t appendGlyph(GlyfPayload& table, GlyphData* glyph, const TrueTypeFont& font) noexcept {
  OwnedGlyph owned(glyph);
  if (owned == nullptr) return kNoGlyph;
  RecordIndex& index = table.walk.index;
  index.useFont(font);
  if (!index.follow(table.glyphs)) return kGlyphNoMemory;
  const std::uint32_t number = owned->glyphIndex;
  IndexEntry* const entry = number < kMaxGlyphCount ? index.enter(number) : nullptr;
  if (entry == nullptr && number < kMaxGlyphCount) return kGlyphNoMemory;
  Addition addition(table, font);
  const std::int32_t newIndex = addition.append(std::move(owned));
  if (newIndex < 0) return newIndex;
  index.added(table.glyphs, number, entry);
  // The components of a glyph that was visited before are in the list.
  if (entry != nullptr && index.visit(*entry) && entry->glyph < font.numGlyphs) {
    const std::int32_t failure =
        ComponentWalk<Addition>(table.walk, addition, font).run(*entry, nullptr);
    if (failure != 0) return failure;
  }
  addition.keep();
  return newIndex;
}

void renumberComponents(ByteView glyph, const RecordIndex& index, std::uint32_t absent,
                        format::ByteSink out) noexcept {
  ComponentRecords records(glyph);
  for (ComponentRecord record; records.next(&record);) {
    const std::uint32_t found = index.find(record.glyphIndex);
    out.put<std::uint16_t>(record.offset + format::Component::kGlyphIndex.kOffset,
                           static_cast<std::uint16_t>(found == kNoRecordIndex ? absent : found));
  }
}

WriterResult makeGlyfImage(WriterTable* table, TableImage* out) noexcept {
  const TTList& glyphs = glyfOf(table).glyphs;
  if (glyphs.first == nullptr) return WriterResultEmptyTable;
  const std::uint64_t length = totalBytes(glyphs);
  if (format::padded(length) > UINT32_MAX) return WriterResultFileTooLarge;
  NewBytes image(static_cast<std::size_t>(length));
  if (!image.hasMemory()) return WriterResultNoMemory;
  ListedGlyphs(glyfOf(table)).write(image.sink());
  return image.becomeImage(table, kTagGlyf, out);
}

GlyphTotals ListedGlyphs::measure(std::uint32_t* offsets,
                                  format::ArraySink<std::uint32_t> metrics) const noexcept {
  const TTListNode* node = table_.glyphs.first;
  const auto next = [&node]() -> const GlyphData& {
    return *static_cast<const GlyphData*>(std::exchange(node, node->next)->item);
  };
  return GlyphTotals::of(count(), next, offsets, metrics);
}

WriterResult ListedGlyphs::renumber(FontBox* outBox) noexcept {
  // The list may have been changed between two of its nodes, which its end does not show.
  RecordIndex& index = table_.walk.index;
  index.forget();
  if (!index.follow(table_.glyphs)) return WriterResultNoMemory;
  bool overflowed = false;
  for (const TTListNode* node = table_.glyphs.first; node != nullptr; node = node->next) {
    const auto& glyph = *static_cast<const GlyphData*>(node->item);
    outBox->include(ByteView(glyph.data, glyph.byteCount));
    if (glyph.isComposite == 0) continue;
    const format::ByteSink data(glyph.data, glyph.byteCount, &overflowed);
    renumberComponents(data.view(), index, count(), data);
  }
  assert(!overflowed);
  return WriterResultOk;
}

void ListedGlyphs::write(format::ByteSink out) const noexcept {
  std::size_t offset = 0;
  for (const TTListNode* node = table_.glyphs.first; node != nullptr; node = node->next) {
    const auto& glyph = *static_cast<const GlyphData*>(node->item);
    out.copy(offset, {glyph.data, glyph.byteCount});
    offset += glyph.byteCount;
  }
}

}  // namespace ulm::truetype::detail
