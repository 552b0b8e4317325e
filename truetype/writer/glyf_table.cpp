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
    GlyphData described;
    ByteView bytes;
    const FontResult result = detail::describeGlyph(font, glyphIndex, &described, &bytes);
    if (result == FontResultNoMemory) return kGlyphNoMemory;
    if (result != FontResultOk) return isTooLarge(font, glyphIndex) ? kGlyphTooLarge : kNoGlyph;
    if (table_.store != nullptr) return appendBorrowed(described, bytes);
    OwnedGlyph glyph(detail::makeBuffer<GlyphData>(1).release());
    if (glyph == nullptr) return kGlyphNoMemory;
    *glyph = described;
    if (bytes.size() != 0) {
      glyph->data = detail::makeBuffer<std::uint8_t>(described.byteCount).release();
      if (glyph->data == nullptr) return kGlyphNoMemory;
      copyEven(bytes, glyph->data);
    }
    return append(std::move(glyph));
  }

  // Of the glyph last appended: whether its components are still to be visited.
  bool isFirst() const noexcept { return first_; }
  GlyphEntry& entry() const noexcept { return *entry_; }
  GlyphData* last() const noexcept { return static_cast<GlyphData*>(table_.glyphs.last->item); }

 private:
  // Whether the glyph has no record because that can't tell its bytes.
  static bool isTooLarge(const TrueTypeFont& font, std::uint32_t glyphIndex) noexcept {
    if (glyphIndex >= font.numGlyphs) return false;
    const std::uint32_t start = font.glyphOffsets[glyphIndex];
    const std::uint32_t next = font.glyphOffsets[glyphIndex + 1];
    return next >= start && next - start >= 0xFFFF &&
           detail::glyphView(font, glyphIndex).size() >= 0xFFFF;
  }

  // Filled up to an even length by a zero.
  static void copyEven(ByteView bytes, std::uint8_t* out) noexcept {
    bytes.copy(0, bytes.size(), out);
    if (bytes.size() % 2 != 0) out[bytes.size()] = 0;
  }

  // Only composites are ever written to; all others can stay where they are if no byte is missing.
  std::int32_t appendBorrowed(const GlyphData& described, ByteView bytes) noexcept {
    const bool copies = described.isComposite != 0 || bytes.size() % 2 != 0;
    auto* node = static_cast<TTListNode*>(
        table_.store->records.take(sizeof(TTListNode) + sizeof(GlyphData)));
    if (node == nullptr) return kGlyphNoMemory;
    GlyphData* glyph = new (node + 1) GlyphData(described);
    if (copies) {
      glyph->data = static_cast<std::uint8_t*>(table_.store->bytes.take(described.byteCount));
      if (glyph->data == nullptr) return kGlyphNoMemory;
      copyEven(bytes, glyph->data);
    } else if (bytes.size() != 0) {
      glyph->data = const_cast<std::uint8_t*>(bytes.start());
    }
    table_.extent.include(*glyph);
    number(*glyph);
    if (!table_.index.reserve()) return kGlyphNoMemory;
    appendNode(table_.glyphs, node, glyph);
    return enter(*glyph);
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
  bool kept_ = false;
  bool first_ = false;
  GlyphEntry* entry_ = nullptr;
};

// Adds a component to its composite, as the reader walks through it.
void addCounts(OutlineCounts& sum, const OutlineCounts& component) noexcept {
  constexpr std::uint32_t kCap = 1u << 24;
  static_assert(kCap > kMostComponentRecords && kCap > kMostOutlineWork);
  const auto grow = [](std::uint32_t& value, std::uint32_t by) {
    value = value + by < kCap ? value + by : kCap;
  };
  if (sum.records == kUnknownRecords || component.records == kUnknownRecords) {
    sum.records = kUnknownRecords;
    return;
  }
  grow(sum.records, component.records + 1);
  grow(sum.work, component.work + component.room);  // once more, as they are placed
  grow(sum.room, component.room);
  sum.points = static_cast<std::uint16_t>(sum.points + component.points);
  sum.contours = static_cast<std::uint16_t>(sum.contours + component.contours);
}

// What a glyph that is no composite of components brings to one. The reader goes by the bytes of
// the font, which go on where the glyph's own end. `record` is the glyph's, or null.
OutlineCounts plainCounts(const TrueTypeFont& font, std::uint32_t glyphIndex,
                          const GlyphData* record) noexcept {
  const ByteView glyph = detail::glyphView(font, glyphIndex);
  const std::int32_t stored = glyph.readOrZero<std::int16_t>(0);
  if (stored <= 0) return {};
  GlyphData counted{};
  if (record == nullptr) {
    counted.glyphIndex = glyphIndex;
    detail::countGlyphData(font, &counted);
    record = &counted;
  }
  const std::uint16_t points = record->pointCount;
  const auto ends = static_cast<std::uint32_t>(stored);
  // None of 65,536, or of a damaged outline.
  const std::uint32_t room = points != 0 ? points : detail::simplePointCount(glyph, ends);
  return {0, ends + room, room, points, record->contourCount};
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
    std::int32_t failure = open(addition_.entry(), counted ? nullptr : record);
    while (failure == 0 && !stack_.empty()) failure = step();
    return failure;
  }

 private:
  // `record` is the one that this addition has made, or null.
  std::int32_t open(GlyphEntry& entry, GlyphData* record) noexcept {
    const ByteView glyph = detail::compositeView(font_, entry.glyph);
    if (glyph.size() != 0) {
      const OpenComposite composite{glyph, detail::kFirstComponent, entry.glyph, {}, record, false};
      return stack_.push(composite) ? 0 : kGlyphNoMemory;
    }
    entry.counts = plainCounts(font_, entry.glyph, record);
    return pass(entry);
  }

  // Tells what the glyph counts to the one that draws on it.
  std::int32_t pass(const GlyphEntry& entry) noexcept {
    if (!stack_.empty() && !stack_.top().cut) addCounts(stack_.top().counts, entry.counts);
    return 0;
  }

  std::int32_t step() noexcept {
    OpenComposite& top = stack_.top();
    const std::size_t record = top.next;
    if (record == detail::kNoRecord || !top.glyph.holds(record, 4)) return close();
    const std::uint16_t flags = top.glyph.readOrZero<std::uint16_t>(record);
    const std::uint16_t glyphIndex = top.glyph.readOrZero<std::uint16_t>(record + 2);
    const std::size_t size = detail::componentSize(flags);
    top.cut = !top.glyph.holds(record, size);  // its glyph is named all the same
    top.next = (flags & detail::kMoreComponents) != 0 ? record + size : detail::kNoRecord;
    if (glyphIndex >= font_.numGlyphs) {
      if (!top.cut) addCounts(top.counts, {});
      return 0;
    }
    if (!index_.reserve()) return kGlyphNoMemory;
    GlyphEntry& entry = index_.enter(glyphIndex);
    // One on the way to itself has no counts yet.
    if (!index_.visit(entry)) return pass(entry);
    if (entry.record() != detail::kNoRecordIndex) return open(entry, nullptr);
    const std::int32_t added = addition_.append(font_, glyphIndex);
    if (added < kNoGlyph) return added;
    return added == kNoGlyph ? open(index_.enter(glyphIndex), nullptr)
                             : open(addition_.entry(), addition_.last());
  }

  std::int32_t close() noexcept {
    OpenComposite closed = stack_.top();
    stack_.pop();
    if (closed.cut || closed.next != detail::kNoRecord) {
      closed.counts.room = closed.counts.points = closed.counts.contours = 0;
    }
    if (!giveCounts(table_, font_, closed.counts, closed.record)) return kGlyphNoMemory;
    GlyphEntry& entry = index_.enter(closed.glyphIndex);
    entry.counts = closed.counts;
    return pass(entry);
  }

  GlyfPayload& table_;
  detail::GlyphIndex& index_;
  Addition& addition_;
  const TrueTypeFont& font_;
  ComponentStack stack_;
};

// What follows the append of the glyph itself, of which `newIndex` is the result. One visited
// before has its counts in an earlier record, which is all that the greatest counts need.
std::int32_t finish(GlyfPayload& table, Addition& addition, const TrueTypeFont& font, bool counted,
                    std::int32_t newIndex) noexcept {
  if (newIndex < 0) return newIndex;
  GlyphData* record = addition.last();
  if (addition.isFirst() && record->glyphIndex < font.numGlyphs) {
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
