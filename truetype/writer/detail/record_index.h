// Finds the first record of a glyph number in a list of glyphs in constant time.
#pragma once

#include <cstdint>
#include <cstdlib>

#include "truetype/font.h"
#include "truetype/format/maxp.h"
#include "truetype/list.h"
#include "truetype/records.h"
#include "truetype/writer/detail/outline_counts.h"

namespace ulm::truetype::detail {

using format::kMaxGlyphCount;

inline constexpr std::uint32_t kNoRecordIndex = 0xFFFFFFFF;

// What the index knows of a glyph number. Its size is a power of 2.
struct alignas(16) IndexEntry {
  std::uint32_t glyph;
  std::uint32_t recordPlusOne;  // the index of its first record in the list; 0 for none
  std::uint32_t visitedIn;      // a round; 0 never
  OutlineCounts counts;         // as the visit found them

  std::uint32_t record() const noexcept { return recordPlusOne - 1; }  // or kNoRecordIndex
};

// A map from glyph number to the index of its first record in a list of glyphs: pages of indices
// into an array of entries, which is in the order of adding. Numbers from kMaxGlyphCount on are in
// no font, and are not found. The index detects that the end of a TTList was changed from outside
// and reads the list again. A glyph is visited when each of its components in the current font is
// in the list, cannot be, or is being added.
class RecordIndex {
 public:
  RecordIndex() noexcept = default;
  RecordIndex(const RecordIndex&) = delete;
  RecordIndex& operator=(const RecordIndex&) = delete;
  ~RecordIndex() {
    std::free(pages_);
    std::free(entries_);
  }

  // False without memory; then the index is empty and the next call begins again.
  bool follow(const TTList& list) noexcept {
    return (followed_ == list.count && last_ == list.last && lastGlyph_ == lastGlyphOf(list)) ||
           readList(list);
  }
  // Forgets what was visited if that was in another font.
  void useFont(const TrueTypeFont& font) noexcept {
    // The image too: a font closed and another opened may be given the same record.
    if (font_ == &font && image_ == font.image) return;
    font_ = &font;
    image_ = font.image;
    ++round_;
  }

  const TrueTypeFont* font() const noexcept { return font_; }

  // Makes room for about `count` more glyph numbers at once; false without memory.
  bool expect(std::uint32_t count) noexcept { return reserve(count, count / 8 + 1); }
  // The glyph's entry, made if there is none, which may move the others; null without memory. The
  // number is below kMaxGlyphCount.
  IndexEntry* enter(std::uint32_t glyph) noexcept {
    const std::uint32_t page = pageOf_[glyph / kPageSize];
    const std::uint32_t entry = page == 0 ? 0 : entryIn(page, glyph);
    return entry != 0 ? &entries_[entry - 1] : make(glyph);
  }
  // An entry's number among them, which stays the same when they move, and back.
  std::uint32_t numberOf(const IndexEntry& entry) const noexcept {
    return static_cast<std::uint32_t>(&entry - entries_);
  }
  IndexEntry& at(std::uint32_t number) noexcept { return entries_[number]; }

  // A record of this glyph number was appended to the list. `entry` is that of the number, or null
  // for a number that is in no font.
  void added(const TTList& list, std::uint32_t glyph, IndexEntry* entry) noexcept {
    noteEnd(list, glyph);
    if (entry != nullptr && entry->recordPlusOne == 0) entry->recordPlusOne = list.count;
  }
  // Marks the entry as visited, with unknown counts; false where it was marked before.
  bool visit(IndexEntry& entry) const noexcept;
  // Empties the index, so that the list is read again. What was visited may depend on records that
  // the list has lost.
  void forget() noexcept;

  std::uint32_t find(std::uint32_t glyph) const noexcept;  // kNoRecordIndex if there is none

 private:
  // A node that was removed and one that was added may have the same address.
  static std::uint32_t lastGlyphOf(const TTList& list) noexcept {
    return list.last == nullptr ? 0 : static_cast<const GlyphData*>(list.last->item)->glyphIndex;
  }
  void noteEnd(const TTList& list, std::uint32_t lastGlyph) noexcept {
    followed_ = list.count;
    last_ = list.last;
    lastGlyph_ = lastGlyph;
  }
  bool readList(const TTList& list) noexcept;
  bool reserve(std::uint32_t entries, std::uint32_t pages) noexcept;
  IndexEntry* make(std::uint32_t glyph) noexcept;
  std::uint16_t& entryIn(std::uint32_t page, std::uint32_t glyph) const noexcept {
    return pages_[(page - 1) * kPageSize + glyph % kPageSize];
  }

  static constexpr std::uint32_t kPageSize = 32;
  static constexpr std::uint32_t kPages = (kMaxGlyphCount + kPageSize - 1) / kPageSize;

  // Pages and entries count from 1, so that 0 is none.
  std::uint16_t pageOf_[kPages] = {};
  std::uint16_t* pages_ = nullptr;  // owned; kPageSize entries each, by their number plus 1
  IndexEntry* entries_ = nullptr;   // owned
  std::uint32_t pageCount_ = 0, pageCapacity_ = 0;
  std::uint32_t entryCount_ = 0, entryCapacity_ = 0;
  std::uint32_t followed_ = 0;  // records of the list that are in the index
  const TTListNode* last_ = nullptr;
  std::uint32_t lastGlyph_ = 0;
  std::uint32_t round_ = 1;  // of visits; one for each font
  const TrueTypeFont* font_ = nullptr;
  const std::uint8_t* image_ = nullptr;
};

inline bool RecordIndex::visit(IndexEntry& entry) const noexcept {
  if (entry.visitedIn == round_) return false;
  entry.visitedIn = round_;
  entry.counts.records = kUnknownRecords;
  return true;
}

inline std::uint32_t RecordIndex::find(std::uint32_t glyph) const noexcept {
  if (glyph >= kMaxGlyphCount) return kNoRecordIndex;
  const std::uint32_t page = pageOf_[glyph / kPageSize];
  const std::uint32_t entry = page == 0 ? 0 : entryIn(page, glyph);
  return entry == 0 ? kNoRecordIndex : entries_[entry - 1].record();
}

}  // namespace ulm::truetype::detail
