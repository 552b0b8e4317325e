// The components that a glyph brings into a table of glyphs, and what its outline counts.
#pragma once

#include <cstddef>
#include <cstdint>

#include "truetype/detail/byte_view.h"
#include "truetype/detail/component.h"
#include "truetype/detail/glyph_data.h"
#include "truetype/font.h"
#include "truetype/reader/glyphs.h"
#include "truetype/writer/detail/component_stack.h"
#include "truetype/writer/detail/glyph_index.h"
#include "truetype/writer/detail/payloads.h"

namespace ulm::truetype::detail {

// What a glyph that is no composite of components brings to one.
inline OutlineCounts plainCounts(const SimpleShape& shape) noexcept {
  return {0, shape.ends + shape.room, shape.room, static_cast<std::uint16_t>(shape.points),
          shape.contours};
}

// Counts are unknown where a cycle of components is drawn on, since on that they differ with the
// glyph that the walk begins with. They are the reader's work then, up to its bounds for each
// glyph, and so for a few glyphs only: the rest count as empty. False without memory. `record` may
// be null.
inline bool giveCounts(GlyfPayload& table, const TrueTypeFont& font, const OutlineCounts& counts,
                       GlyphData* record) noexcept {
  if (record == nullptr) return true;
  if (counts.records == kUnknownRecords) {
    constexpr std::uint32_t kMostCycles = 256;
    constexpr std::uint64_t kMostCycleWork = std::uint64_t{4} * kMostOutlineWork;
    if (table.cyclesCounted == kMostCycles || table.cycleWork > kMostCycleWork) return true;
    ++table.cyclesCounted;
    std::uint64_t work = 0;
    if (!countGlyphData(font, record, &work)) return false;
    table.cycleWork += work;
    return true;
  }
  const bool isRead = counts.records <= kMostComponentRecords && counts.work <= kMostOutlineWork;
  record->pointCount = isRead ? counts.points : std::uint16_t{0};
  record->contourCount = isRead ? counts.contours : std::uint16_t{0};
  return true;
}

// The bytes that a walk may read of a glyph with so many of its own: up to the end of glyf, as the
// reader does, or where many damaged glyphs have read far beyond their own, no more than these.
inline ByteView readableGlyph(const GlyfPayload& table, ByteView glyph, std::size_t own) noexcept {
  const bool isCut = table.foreignBytes > kMostForeignBytes && glyph.size() > own;
  return isCut ? ByteView(glyph.start(), own) : glyph;
}

inline SimpleShape shapeIn(GlyfPayload& table, ByteView glyph, std::size_t own) noexcept {
  const SimpleShape shape = simpleShape(readableGlyph(table, glyph, own));
  if (shape.reach > own) table.foreignBytes += shape.reach - own;
  return shape;
}

// Visits the components of a glyph in the order of first use, and theirs before the next, each
// glyph number once: what a visited one draws on is in the table or on its way, so that a second
// walk would add nothing that the table does not have by then. So the records come in the order in
// which collectGlyphComponents would first list their glyphs, had it no bound. On the way back it
// counts the outlines.
//
// An Adder has these for the glyphs that the table lacks:
//   std::int32_t append(GlyphEntry& entry)   the record of that glyph, at the end of the list: its
//                                            new index, kNoGlyph, or why the addition fails
//   GlyphData* last()                        the record last appended
//   SimpleShape shape()                      that of its glyph, which is no composite
//   kBorrows                                 whether references are renumbered on the way
template <class Adder>
class ComponentWalk {
 public:
  ComponentWalk(GlyfPayload& table, Adder& adder, const TrueTypeFont& font) noexcept
      : table_(table), index_(table.index), adder_(adder), font_(font) {}

  // From the glyph of `entry`, which has just been visited. Its counts go to `record`, unless that
  // is null. 0, or why the whole addition fails.
  std::int32_t run(GlyphEntry& entry, GlyphData* record) noexcept {
    const ByteView glyph = compositeView(font_, entry.glyph);
    if (glyph.size() == 0) {
      entry.counts = plainCounts(shapeOf(entry));
      return 0;
    }
    open(entry, glyph, record);
    for (;;) {
      while (now_.next != kNoRecord && now_.glyph.holds(now_.next, 4)) {
        const std::int32_t failure = step();
        if (failure != 0) return failure;
      }
      // A record that its padding alone makes whole is one in the new font, and none in this.
      if (now_.next != kNoRecord && now_.next + 4 == now_.referencesEnd) {
        table_.lateReferences = true;
      }
      const OutlineCounts counts = now_.sums.total(now_.cut || now_.next != kNoRecord);
      if (!giveCounts(table_, font_, counts, now_.record)) return kGlyphNoMemory;
      index_.at(now_.place).counts = counts;
      if (stack_.empty()) return 0;
      now_ = stack_.pop();
      pass(counts);
    }
  }

 private:
  SimpleShape shapeOf(const GlyphEntry& entry) noexcept {
    return shapeIn(table_, glyphView(font_, entry.glyph), ownLength(font_, entry.glyph));
  }

  // `record` is one that this addition has made, or null.
  void open(const GlyphEntry& entry, ByteView glyph, GlyphData* record) noexcept {
    const std::size_t own = ownLength(font_, entry.glyph);
    const bool renumbers = Adder::kBorrows && record != nullptr;
    const std::uint16_t end = renumbers ? record->byteCount : std::uint16_t{0};
    now_ = {.glyph = readableGlyph(table_, glyph, own),
            .next = kFirstComponent,
            .own = own,
            .place = index_.placeOf(entry),
            .referencesEnd = end,
            .flags = 0,
            .cut = false,
            .record = record,
            .sums = {}};
  }

  // Adds what a component counts to the one that draws on it.
  void pass(const OutlineCounts& counts) noexcept {
    if (!now_.cut) now_.sums.add(counts, now_.flags);
  }

  // The component record at `at` is to refer to the new font's glyph.
  void refer(std::size_t at, std::uint32_t newIndex) noexcept {
    if (!Adder::kBorrows || at + 4 > now_.referencesEnd) return;
    // A record that the glyph's own end cuts may read otherwise there than in the font.
    if (newIndex == kNoRecordIndex || at + 4 == now_.referencesEnd) {
      table_.lateReferences = true;
    } else {
      put16(now_.record->data, at + 2, newIndex);
    }
  }

  // Takes the component record at now_.next, the first 4 bytes of which are there.
  std::int32_t step() noexcept {
    const std::size_t record = now_.next;
    const auto head = now_.glyph.readHeld<std::uint32_t>(record);
    const auto flags = static_cast<std::uint16_t>(head >> 16);
    const std::uint32_t glyphIndex = head & 0xFFFF;
    const std::size_t size = componentSize(flags);
    now_.cut = !now_.glyph.holds(record, size);  // its glyph is named all the same
    now_.next = (flags & kMoreComponents) != 0 ? record + size : kNoRecord;
    now_.flags = flags;
    if (record >= now_.own) table_.foreignBytes += size;
    if (glyphIndex >= font_.numGlyphs) {
      refer(record, kNoRecordIndex);
      pass({});
      return 0;
    }
    GlyphEntry* const entered = index_.enter(glyphIndex);
    if (entered == nullptr) return kGlyphNoMemory;
    GlyphEntry& entry = *entered;
    // One on the way to itself has no counts yet.
    if (!index_.visit(entry)) {
      refer(record, entry.record());
      pass(entry.counts);
      return 0;
    }
    GlyphData* made = nullptr;
    if (entry.record() == kNoRecordIndex) {
      const std::int32_t added = adder_.append(entry);
      if (added < kNoGlyph) return added;
      if (added != kNoGlyph) made = adder_.last();
    }
    refer(record, entry.record());
    return descend(entry, made);
  }

  // To a component that has been visited for the first time; `record` as in open.
  std::int32_t descend(GlyphEntry& entry, GlyphData* record) noexcept {
    if (record != nullptr && record->isComposite == 0) {
      entry.counts = plainCounts(adder_.shape());
      pass(entry.counts);
      return 0;
    }
    const ByteView glyph = compositeView(font_, entry.glyph);
    if (glyph.size() == 0) {
      entry.counts = plainCounts(shapeOf(entry));
      pass(entry.counts);
      return 0;
    }
    if (!stack_.push(now_)) return kGlyphNoMemory;
    open(entry, glyph, record);
    return 0;
  }

  GlyfPayload& table_;
  GlyphIndex& index_;
  Adder& adder_;
  const TrueTypeFont& font_;
  OpenComposite now_;
  ComponentStack stack_;  // of those above it
};

}  // namespace ulm::truetype::detail
