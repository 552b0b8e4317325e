// The glyphs of a new font.
#include <cstring>
#include <new>
#include <utility>

#include "truetype/detail/component.h"
#include "truetype/detail/glyph_data.h"
#include "truetype/reader/glyphs.h"
#include "truetype/writer/detail/component_stack.h"
#include "truetype/writer/detail/payloads.h"

namespace ulm::truetype {
namespace {

using detail::ByteView;
using detail::ComponentStack;
using detail::GlyfPayload;
using detail::GlyphEntry;
using detail::kUnknownRecords;
using detail::OpenComposite;
using detail::OutlineCounts;
using detail::SimpleShape;

// Filled up to an even length by a zero.
void copyEven(ByteView bytes, std::uint8_t* out) noexcept {
  bytes.copy(0, bytes.size(), out);
  if (bytes.size() % 2 != 0) out[bytes.size()] = 0;
}

struct FreeGlyphData {
  void operator()(GlyphData* glyph) const noexcept { detail::freeGlyphData(glyph); }
};
using OwnedGlyph = std::unique_ptr<GlyphData, FreeGlyphData>;

// The list's own append without its allocation.
void appendNode(TTList& list, TTListNode* node, GlyphData* glyph) noexcept {
  *node = {nullptr, list.last, glyph};
  (list.last == nullptr ? list.first : list.last->next) = node;
  list.last = node;
  if (list.current == nullptr) list.current = node;
  ++list.count;
}

// What one addGlyph appends, taken back unless it is kept. A borrowing table goes as a whole.
class Addition {
 public:
  explicit Addition(GlyfPayload& table) noexcept
      : table_(table), before_(table.glyphs.count), cursor_(table.glyphs.current) {}
  Addition(const Addition&) = delete;
  Addition& operator=(const Addition&) = delete;
  ~Addition() {
    if (kept_ || table_.store != nullptr || table_.glyphs.count == before_) return;
    while (table_.glyphs.count > before_) {
      listLast(&table_.glyphs);
      listRemoveCurrent(&table_.glyphs);
    }
    table_.glyphs.current = cursor_;
    table_.index.forget();
  }
  void keep() noexcept { kept_ = true; }

  // The new index, or kGlyphNoMemory.
  std::int32_t append(OwnedGlyph glyph) noexcept {
    TTList& list = table_.glyphs;
    const std::uint32_t count = list.count;
    number(*glyph);
    if (!table_.index.reserve()) return kGlyphNoMemory;
    listAppend(&list, glyph.get());
    return list.count == count ? kGlyphNoMemory : enter(*glyph.release());
  }
  // Likewise of the glyph's own data, or kNoGlyph, or kGlyphTooLarge.
  std::int32_t append(const TrueTypeFont& font, std::uint32_t glyphIndex) noexcept {
    if (table_.store != nullptr) return appendBorrowed(font, glyphIndex);
    OwnedGlyph glyph(detail::makeBuffer<GlyphData>(1).release());
    if (glyph == nullptr) return kGlyphNoMemory;
    ByteView bytes;
    if (detail::describeGlyph(font, glyphIndex, glyph.get(), &bytes, &shape_) != FontResultOk) {
      glyph->data = nullptr;
      return whyNot(font, glyphIndex);
    }
    if (bytes.size() != 0) {
      glyph->data = detail::makeBuffer<std::uint8_t>(glyph->byteCount).release();
      if (glyph->data == nullptr) return kGlyphNoMemory;
      copyEven(bytes, glyph->data);
    }
    return append(std::move(glyph));
  }

  // Of the glyph last appended: whether its components are still to be visited.
  bool isFirst() const noexcept { return first_; }
  GlyphEntry& entry() const noexcept { return *entry_; }
  const SimpleShape& shape() const noexcept { return shape_; }
  GlyphData* last() const noexcept { return static_cast<GlyphData*>(table_.glyphs.last->item); }

 private:
  // Of a glyph that has no record: kGlyphTooLarge if that couldn't tell its bytes, or kNoGlyph.
  static std::int32_t whyNot(const TrueTypeFont& font, std::uint32_t glyphIndex) noexcept {
    if (glyphIndex >= font.numGlyphs) return kNoGlyph;
    const std::uint32_t start = font.glyphOffsets[glyphIndex];
    const std::uint32_t next = font.glyphOffsets[glyphIndex + 1];
    const bool isTooLarge = next >= start && next - start >= 0xFFFF &&
                            detail::glyphView(font, glyphIndex).size() >= 0xFFFF;
    return isTooLarge ? kGlyphTooLarge : kNoGlyph;
  }

  // Only composites are ever written to; all others can stay where they are if no byte is missing.
  std::int32_t appendBorrowed(const TrueTypeFont& font, std::uint32_t glyphIndex) noexcept {
    constexpr std::size_t kRecord = sizeof(TTListNode) + sizeof(GlyphData);
    auto* node = static_cast<TTListNode*>(table_.store->records.take(kRecord));
    if (node == nullptr) return kGlyphNoMemory;
    GlyphData* glyph = new (node + 1) GlyphData;
    ByteView bytes;
    if (detail::describeGlyph(font, glyphIndex, glyph, &bytes, &shape_) != FontResultOk) {
      table_.store->records.giveBack(kRecord);
      return whyNot(font, glyphIndex);
    }
    if (glyph->isComposite != 0 || bytes.size() % 2 != 0) {
      glyph->data = static_cast<std::uint8_t*>(table_.store->bytes.take(glyph->byteCount));
      if (glyph->data == nullptr) return kGlyphNoMemory;
      copyEven(bytes, glyph->data);
    } else if (bytes.size() != 0) {
      glyph->data = const_cast<std::uint8_t*>(bytes.start());
    }
    table_.extent.include(*glyph);
    number(*glyph);
    if (!table_.index.reserve()) return kGlyphNoMemory;
    appendNode(table_.glyphs, node, glyph);
    const std::int32_t newIndex = enter(*glyph);
    if (glyph->isComposite != 0) {
      // What is not walked through has references all the same.
      const bool isWalked = bytes.readOrZero<std::int16_t>(0) == -1;
      const bool isDone = first_ || detail::renumberComponents(*glyph, table_.index, 0);
      if (!isWalked || !isDone) table_.lateReferences = true;
    }
    return newIndex;
  }

  void number(GlyphData& glyph) const noexcept {
    const TTListNode* last = table_.glyphs.last;
    glyph.newIndex = last == nullptr ? 0 : static_cast<const GlyphData*>(last->item)->newIndex + 1;
  }
  std::int32_t enter(const GlyphData& glyph) noexcept {
    entry_ = table_.index.add(table_.glyphs, glyph.glyphIndex);
    first_ = entry_ != nullptr && table_.index.visit(*entry_);
    return static_cast<std::int32_t>(glyph.newIndex);
  }

  GlyfPayload& table_;
  std::uint32_t before_;
  TTListNode* cursor_;
  SimpleShape shape_{};  // of the glyph last appended
  bool kept_ = false;
  bool first_ = false;
  GlyphEntry* entry_ = nullptr;
};

// What a glyph that is no composite of components brings to one.
OutlineCounts plainCounts(const SimpleShape& shape) noexcept {
  return {0, shape.ends + shape.room, shape.room, static_cast<std::uint16_t>(shape.points),
          static_cast<std::uint16_t>(shape.contours)};
}

// Counts are unknown on a cycle of components alone, where they differ with the glyph that the walk
// begins with. They are the reader's work then, up to its bounds for each glyph, and so for a few
// glyphs only: the rest count as empty. False without memory. `record` may be null.
bool giveCounts(GlyfPayload& table, const TrueTypeFont& font, const OutlineCounts& counts,
                GlyphData* record) noexcept {
  constexpr std::uint32_t kMostCycles = 256;
  if (record == nullptr) return true;
  if (counts.records == kUnknownRecords) {
    if (table.cyclesCounted == kMostCycles) return true;
    ++table.cyclesCounted;
    return detail::countGlyphData(font, record);
  }
  const bool isRead = counts.records <= kMostComponentRecords && counts.work <= kMostOutlineWork;
  record->pointCount = isRead ? counts.points : std::uint16_t{0};
  record->contourCount = isRead ? counts.contours : std::uint16_t{0};
  return true;
}

// Appends what a glyph draws on, depth first, each one once: a glyph that comes again brings
// nothing that the table does not have by then. So the records come in the order in which
// collectGlyphComponents would first list their glyphs. On the way back it counts the outlines.
class ComponentWalk {
 public:
  ComponentWalk(GlyfPayload& table, Addition& addition, const TrueTypeFont& font) noexcept
      : table_(table), index_(table.index), addition_(addition), font_(font) {}

  // From the glyph of `record`, whose counts are its giver's where it is `counted`. 0, or why the
  // whole addition fails.
  std::int32_t run(GlyphData* record, bool counted) noexcept {
    GlyphEntry& first = addition_.entry();
    const ByteView glyph = detail::compositeView(font_, first.glyph);
    if (glyph.size() == 0) {
      first.counts = plainCounts(detail::simpleShape(detail::glyphView(font_, first.glyph)));
      return 0;
    }
    open(first, glyph, counted ? nullptr : record);
    for (;;) {
      while (now_.next != detail::kNoRecord && now_.glyph.holds(now_.next, 4)) {
        const std::int32_t failure = step();
        if (failure != 0) return failure;
      }
      const OutlineCounts counts = now_.sums.total(now_.cut || now_.next != detail::kNoRecord);
      if (!giveCounts(table_, font_, counts, now_.record)) return kGlyphNoMemory;
      index_.enter(now_.glyphIndex).counts = counts;
      if (stack_.empty()) return 0;
      now_ = stack_.pop();
      pass(counts);
    }
  }

 private:
  // `record` is the one that this addition has made, or null.
  void open(const GlyphEntry& entry, ByteView glyph, GlyphData* record) noexcept {
    const bool renumbers = table_.store != nullptr && record != nullptr;
    const std::uint16_t end = renumbers ? record->byteCount : std::uint16_t{0};
    now_ = {glyph, detail::kFirstComponent, entry.glyph, end, false, record, {}};
  }

  // The component record at `at` is to refer to the new font's glyph.
  void refer(std::size_t at, std::uint32_t newIndex) noexcept {
    if (at + 4 > now_.referencesEnd) return;
    // A record that the glyph's own end cuts may read otherwise there than in the font.
    if (newIndex == detail::kNoRecordIndex || at + 4 == now_.referencesEnd) {
      table_.lateReferences = true;
    } else {
      detail::put16(now_.record->data, at + 2, newIndex);
    }
  }

  // Tells what a component counts to the one that draws on it.
  void pass(const OutlineCounts& counts) noexcept {
    if (!now_.cut) now_.sums.add(counts);
  }

  // Takes the component record at now_.next, the first 4 bytes of which are there.
  std::int32_t step() noexcept {
    const std::size_t record = now_.next;
    const auto head = now_.glyph.readHeld<std::uint32_t>(record);
    const auto flags = static_cast<std::uint16_t>(head >> 16);
    const std::uint32_t glyphIndex = head & 0xFFFF;
    const std::size_t size = detail::componentSize(flags);
    now_.cut = !now_.glyph.holds(record, size);  // its glyph is named all the same
    now_.next = (flags & detail::kMoreComponents) != 0 ? record + size : detail::kNoRecord;
    if (glyphIndex >= font_.numGlyphs) {
      refer(record, detail::kNoRecordIndex);
      pass({});
      return 0;
    }
    if (!index_.reserve()) return kGlyphNoMemory;
    GlyphEntry& entry = index_.enter(glyphIndex);
    // One on the way to itself has no counts yet.
    const bool first = index_.visit(entry);
    if (!first || entry.record() != detail::kNoRecordIndex) {
      refer(record, entry.record());
      if (first) return enter(entry, nullptr);
      pass(entry.counts);
      return 0;
    }
    const std::int32_t added = addition_.append(font_, glyphIndex);
    if (added < kNoGlyph) return added;
    GlyphEntry& now = index_.enter(glyphIndex);
    refer(record, now.record());
    return enter(now, added == kNoGlyph ? nullptr : addition_.last());
  }

  // Goes down to a component that has been visited for the first time.
  std::int32_t enter(GlyphEntry& entry, GlyphData* record) noexcept {
    if (record != nullptr && record->isComposite == 0) {
      entry.counts = plainCounts(addition_.shape());
      pass(entry.counts);
      return 0;
    }
    const ByteView glyph = detail::compositeView(font_, entry.glyph);
    if (glyph.size() == 0) {
      entry.counts = plainCounts(detail::simpleShape(detail::glyphView(font_, entry.glyph)));
      pass(entry.counts);
      return 0;
    }
    if (!stack_.push(now_)) return kGlyphNoMemory;
    open(entry, glyph, record);
    return 0;
  }

  GlyfPayload& table_;
  detail::GlyphIndex& index_;
  Addition& addition_;
  const TrueTypeFont& font_;
  OpenComposite now_;
  ComponentStack stack_;  // of those above it
};

// What follows the append of the glyph itself, of which `newIndex` is the result. One visited
// before has its counts in an earlier record, which is all that the greatest counts need.
std::int32_t finish(GlyfPayload& table, Addition& addition, const TrueTypeFont& font, bool counted,
                    std::int32_t newIndex) noexcept {
  if (newIndex < 0) return newIndex;
  GlyphData* record = addition.last();
  if (!counted && addition.isFirst() && record->isComposite == 0) {
    addition.entry().counts = plainCounts(addition.shape());
  } else if (addition.isFirst() && record->glyphIndex < font.numGlyphs) {
    const std::int32_t failure = ComponentWalk(table, addition, font).run(record, counted);
    if (failure != 0) return failure;
  }
  addition.keep();
  return newIndex;
}

}  // namespace

std::int32_t addGlyph(WriterTable* glyfTable, GlyphData* glyph, const TrueTypeFont* font) noexcept {
  OwnedGlyph owned(glyph);
  if (owned == nullptr) return kNoGlyph;
  GlyfPayload& table = *static_cast<GlyfPayload*>(glyfTable->data);
  table.index.useFont(*font);
  if (!table.index.follow(table.glyphs)) return kGlyphNoMemory;
  Addition addition(table);
  const std::int32_t newIndex = addition.append(std::move(owned));
  return finish(table, addition, *font, true, newIndex);
}

std::uint32_t glyphCount(const WriterTable* glyfTable) noexcept {
  return detail::listOf(glyfTable)->count;
}

namespace detail {

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

std::int32_t addFontGlyph(WriterTable* glyfTable, const TrueTypeFont& font,
                          std::uint32_t glyphIndex) noexcept {
  GlyfPayload& table = *static_cast<GlyfPayload*>(glyfTable->data);
  Addition addition(table);
  const std::int32_t newIndex = addition.append(font, glyphIndex);
  return finish(table, addition, font, false, newIndex);
}

bool renumberComponents(const GlyphData& glyph, const GlyphIndex& index,
                        std::uint32_t absent) noexcept {
  const ByteView data(glyph.data, glyph.byteCount);
  bool all = true;
  std::uint16_t flags = kMoreComponents;
  std::size_t record = kFirstComponent;
  for (; (flags & kMoreComponents) != 0; record += componentSize(flags)) {
    if (!data.holds(record, 4)) break;
    const auto head = data.readHeld<std::uint32_t>(record);
    flags = static_cast<std::uint16_t>(head >> 16);
    const std::uint32_t place = index.find(head & 0xFFFF);
    all = all && place != kNoRecordIndex;
    put16(glyph.data, record + 2, place == kNoRecordIndex ? absent : place);
  }
  return all;
}

void renumberGlyphs(GlyfPayload& payload) noexcept {
  for (const TTListNode* node = payload.glyphs.first; node != nullptr; node = node->next) {
    const auto& glyph = *static_cast<const GlyphData*>(node->item);
    if (glyph.isComposite == 0) continue;
    if (payload.store != nullptr) {
      GlyphData source;
      ByteView bytes;
      SimpleShape shape;
      describeGlyph(*payload.index.font(), glyph.glyphIndex, &source, &bytes, &shape);
      copyEven(bytes, glyph.data);
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
