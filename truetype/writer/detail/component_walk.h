// Adds the components of a glyph to a list of glyphs, and counts its outline.
#pragma once

#include <cstddef>
#include <cstdint>

#include "truetype/detail/font_views.h"
#include "truetype/detail/stack.h"
#include "truetype/font.h"
#include "truetype/glyph/component_records.h"
#include "truetype/glyph/composite_glyph.h"
#include "truetype/glyph/description.h"
#include "truetype/glyph/limits.h"
#include "truetype/glyph/simple_glyph.h"
#include "truetype/writer/detail/outline_counts.h"
#include "truetype/writer/detail/record_index.h"
#include "truetype/writer/table.h"

namespace ulm::truetype::detail {

// A failure of an addition besides kGlyphNoMemory and kGlyphTooLarge: more than maxAddedBytes.
inline constexpr std::int32_t kTooManyGlyphBytes = -4;

// The maximum of glyph bytes that one call takes out of a font. The glyphs of an undamaged font
// share none, so that all of them together have no more than the image; damaged ones could turn a
// small image into gigabytes.
inline std::uint64_t maxAddedBytes(const TrueTypeFont& font) noexcept {
  return (std::uint64_t{1} << 24) + 4 * static_cast<std::uint64_t>(font.imageSize);
}

// What the additions to one list of glyphs share.
struct WalkState {
  RecordIndex index;
  std::uint32_t cyclesCounted;  // composites with a cycle that the reader has counted
  std::uint64_t cycleWork;      // what that took
  std::uint64_t foreignBytes;   // read of outlines beyond their glyphs' own bytes

  // The bytes that a walk may read of a glyph with `own` bytes: up to the end of glyf, as the
  // reader does, or only its own if many damaged glyphs have been read far beyond theirs.
  ByteView readable(ByteView glyph, std::size_t own) const noexcept {
    constexpr std::uint64_t kMaxForeignBytes = std::uint64_t{1} << 26;
    const bool isCut = foreignBytes > kMaxForeignBytes && glyph.size() > own;
    return isCut ? ByteView(glyph.start(), own) : glyph;
  }
  SimpleShape shapeOf(ByteView glyph, std::size_t own) noexcept {
    const SimpleShape shape = simpleShape(readable(glyph, own));
    if (shape.reach > own) foreignBytes += shape.reach - own;
    return shape;
  }

  // Sets a record's counts. A composite that reaches a cycle of components has no fixed counts:
  // they depend on the glyph at which a walk starts. The reader counts those for each such glyph,
  // up to two bounds; further ones keep 0. False without memory.
  template <class Record>
  bool setCounts(const TrueTypeFont& font, std::uint32_t glyphIndex, const OutlineCounts& counts,
                 Record& record) noexcept {
    if (counts.records == kUnknownRecords) {
      constexpr std::uint32_t kMaxCycles = 256;
      constexpr std::uint64_t kMaxCycleWork = std::uint64_t{4} * kMaxOutlineWork;
      if (cyclesCounted == kMaxCycles || cycleWork > kMaxCycleWork) return true;
      ++cyclesCounted;
      OutlineSize size;
      if (!countOutline(font, glyphIndex, &size)) return false;
      cycleWork += size.work;
      record.pointCount = static_cast<std::uint16_t>(size.points);
      record.contourCount = static_cast<std::uint16_t>(size.contours);
      return true;
    }
    const bool isRead = counts.records <= kMaxComponentRecords && counts.work <= kMaxOutlineWork;
    record.pointCount = isRead ? counts.points : std::uint16_t{0};
    record.contourCount = isRead ? counts.contours : std::uint16_t{0};
    return true;
  }
};

// Visits the components of a glyph depth first, each glyph number once: the components of a glyph
// that was visited before are in the list or are being added, so that a second visit would add
// nothing. So the records come in the order in which collectGlyphComponents would first list their
// glyphs if it had no bound. On the way back the walk counts the outlines.
//
// An Adder appends the glyphs that the list lacks. It has
//   Record          its type of record, with isComposite, pointCount and contourCount
//   append(entry)   appends the glyph's record; returns its new index, kNoGlyph, or why the
//   addition
//                   fails
//   last()          the record last appended
//   shape()         the shape of its glyph if that is simple
template <class Adder>
class ComponentWalk {
 public:
  using Record = typename Adder::Record;

  ComponentWalk(WalkState& state, Adder& adder, const TrueTypeFont& font) noexcept
      : state_(state), index_(state.index), adder_(adder), font_(font) {}

  // Starts at the glyph of `entry`, which has just been marked as visited. Its counts go to
  // `record`, unless that is null. Returns 0, or why the whole addition fails.
  std::int32_t run(IndexEntry& entry, Record* record) noexcept {
    const ByteView glyph = compositeView(font_, entry.glyph);
    if (glyph.size() == 0) {
      entry.counts = countSimple(entry);
      return 0;
    }
    open(entry, glyph, record);
    for (;;) {
      while (now_.records.next(&now_.current)) {
        const std::int32_t failure = step();
        if (failure != 0) return failure;
      }
      const OutlineCounts counts = now_.sums.total(now_.isCut || !now_.records.atEnd());
      IndexEntry& finished = index_.at(now_.entry);
      if (now_.record != nullptr &&
          !state_.setCounts(font_, finished.glyph, counts, *now_.record)) {
        return kGlyphNoMemory;
      }
      finished.counts = counts;
      if (stack_.empty()) return 0;
      now_ = stack_.pop();
      addToSums(counts);
    }
  }

 private:
  // A composite whose components are being visited.
  struct OpenComposite {
    ComponentRecords records;
    std::size_t own;          // length of the glyph's own bytes
    std::uint32_t entry;      // its number in the index
    ComponentRecord current;  // the record that is being worked on
    bool isCut;               // that record, by the end of glyf
    Record* record;           // takes the counts; may be null
    CountSums sums;           // of the components so far
  };

  OutlineCounts countSimple(const IndexEntry& entry) noexcept {
    return simpleCounts(
        state_.shapeOf(glyphView(font_, entry.glyph), storedLength(font_, entry.glyph)));
  }

  // `record` is one that this addition has made, or null.
  void open(const IndexEntry& entry, ByteView glyph, Record* record) noexcept {
    now_.own = storedLength(font_, entry.glyph);
    now_.records = ComponentRecords(state_.readable(glyph, now_.own));
    now_.entry = index_.numberOf(entry);
    now_.current = {};
    now_.isCut = false;
    now_.record = record;
    now_.sums = {};
  }

  // Adds a component's counts to its parent.
  void addToSums(const OutlineCounts& counts) noexcept {
    if (!now_.isCut) now_.sums.add(counts, now_.current.flags);
  }

  // Takes the current record.
  std::int32_t step() noexcept {
    const ComponentRecord& component = now_.current;
    now_.isCut = !now_.records.holds(component);  // its glyph is added all the same
    if (component.offset >= now_.own) {
      state_.foreignBytes += format::Component::size(component.flags);
    }
    if (component.glyphIndex >= font_.numGlyphs) {
      addToSums({});
      return 0;
    }
    IndexEntry* const entered = index_.enter(component.glyphIndex);
    if (entered == nullptr) return kGlyphNoMemory;
    IndexEntry& entry = *entered;
    // A glyph on the way to itself has no counts yet.
    if (!index_.visit(entry)) {
      addToSums(entry.counts);
      return 0;
    }
    Record* made = nullptr;
    if (entry.record() == kNoRecordIndex) {
      const std::int32_t added = adder_.append(entry);
      if (added < kNoGlyph) return added;
      if (added != kNoGlyph) made = adder_.last();
    }
    return descend(entry, made);
  }

  // Goes on to a component that is visited for the first time; `record` as in open.
  std::int32_t descend(IndexEntry& entry, Record* record) noexcept {
    if (record != nullptr && record->isComposite == 0) {
      entry.counts = simpleCounts(adder_.shape());
      addToSums(entry.counts);
      return 0;
    }
    const ByteView glyph = compositeView(font_, entry.glyph);
    if (glyph.size() == 0) {
      entry.counts = countSimple(entry);
      addToSums(entry.counts);
      return 0;
    }
    if (!stack_.push(now_)) return kGlyphNoMemory;
    open(entry, glyph, record);
    return 0;
  }

  WalkState& state_;
  RecordIndex& index_;
  Adder& adder_;
  const TrueTypeFont& font_;
  OpenComposite now_;
  Stack<OpenComposite, 8> stack_;  // of those above it; few glyphs nest more than two deep
};

}  // namespace ulm::truetype::detail
