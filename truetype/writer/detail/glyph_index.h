// Where the first record of a glyph number stands in a list of glyphs, found in constant time.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "truetype/font.h"
#include "truetype/list.h"
#include "truetype/records.h"

namespace ulm::truetype::detail {

inline constexpr std::uint32_t kNoRecordIndex = 0xFFFFFFFF;

// What a glyph brings to a composite that draws on it, as the reader counts it. The reader's work
// on a composite has bounds; the first three stop growing far beyond them.
struct OutlineCounts {
  std::uint32_t records;  // of components, at all levels; kUnknownRecords where nothing is known
  std::uint32_t work;     // contours, and points at each level of nesting
  std::uint32_t room;     // points, those of damaged outlines included
  std::uint16_t points;   // modulo 65,536, as GlyphData has them
  std::uint16_t contours;
};
inline constexpr std::uint32_t kUnknownRecords = 0xFFFFFFFF;

// What the index knows of a glyph number.
struct GlyphEntry {
  std::uint32_t glyph;
  std::uint32_t recordPlusOne;  // the place of its first record in the list; 0 for none
  std::uint32_t visitedIn;      // a round; 0 never
  OutlineCounts counts;         // as the visit found them

  std::uint32_t record() const noexcept { return recordPlusOne - 1; }  // or kNoRecordIndex
};

// Numbers from here on are in no font, and are not found.
inline constexpr std::uint32_t kGlyphNumbers = 0xFFFF;

// A map from glyph number to the position of its first record in a TTList: pages of places in an
// array of entries, which stands in the order of adding. It notices where others have changed the
// end of the list and reads it anew. A visited glyph is one all of whose components in the present
// font are in the list, can't be, or are being added.
class GlyphIndex {
 public:
  GlyphIndex() noexcept = default;
  GlyphIndex(const GlyphIndex&) = delete;
  GlyphIndex& operator=(const GlyphIndex&) = delete;
  ~GlyphIndex() {
    std::free(pages_);
    std::free(entries_);
  }

  // False without memory; then the index is empty and the next call begins again.
  bool follow(const TTList& list) noexcept {
    return (followed_ == list.count && last_ == list.last && lastGlyph_ == lastGlyphOf(list)) ||
           readList(list);
  }
  // Forgets what was visited if that was told of another font.
  void useFont(const TrueTypeFont& font) noexcept {
    // The image too: a font closed and another opened may be given the same record.
    if (font_ == &font && image_ == font.image) return;
    font_ = &font;
    image_ = font.image;
    ++round_;
  }

  const TrueTypeFont* font() const noexcept { return font_; }

  // Room for about as many glyph numbers at once; false without memory.
  bool expect(std::uint32_t count) noexcept { return makeRoom(count, count / 8 + 1); }
  // Room for one more, so that the next add or enter can't fail. Entries move.
  bool reserve() noexcept {
    return (entryCount_ < entryCapacity_ && pageCount_ < pageCapacity_) || makeRoom(1, 1);
  }
  // The glyph's entry, made if there is none. The number is below kGlyphNumbers.
  GlyphEntry& enter(std::uint32_t glyph) noexcept;
  // The list has just got a record of this number, which may be any, at its end. Its entry, or null
  // for a number that is in no font.
  GlyphEntry* add(const TTList& list, std::uint32_t glyph) noexcept;
  // Marks the entry, without counts; false where it was marked before.
  bool visit(GlyphEntry& entry) const noexcept;
  // To be read anew; what was visited may rest on records that the list has lost.
  void forget() noexcept;

  std::uint32_t find(std::uint32_t glyph) const noexcept;  // kNoRecordIndex if there is none

 private:
  // A node taken away and another added may well have the same address.
  static std::uint32_t lastGlyphOf(const TTList& list) noexcept {
    return list.last == nullptr ? 0 : static_cast<const GlyphData*>(list.last->item)->glyphIndex;
  }
  bool readList(const TTList& list) noexcept;
  bool makeRoom(std::uint32_t entries, std::uint32_t pages) noexcept;

  static constexpr std::uint32_t kPageSize = 32;
  static constexpr std::uint32_t kPages = (kGlyphNumbers + kPageSize - 1) / kPageSize;

  // All of these count from 1, so that 0 is none.
  std::uint16_t pageOf_[kPages] = {};
  std::uint16_t* pages_ = nullptr;  // owned; kPageSize places of entries each
  GlyphEntry* entries_ = nullptr;   // owned
  std::uint32_t pageCount_ = 0, pageCapacity_ = 0;
  std::uint32_t entryCount_ = 0, entryCapacity_ = 0;
  std::uint32_t followed_ = 0;  // records of the list that are in the index
  const TTListNode* last_ = nullptr;
  std::uint32_t lastGlyph_ = 0;
  std::uint32_t round_ = 1;  // of visits; one for each font
  const TrueTypeFont* font_ = nullptr;
  const std::uint8_t* image_ = nullptr;
};

inline GlyphEntry& GlyphIndex::enter(std::uint32_t glyph) noexcept {
  std::uint16_t& page = pageOf_[glyph / kPageSize];
  if (page == 0) {
    page = static_cast<std::uint16_t>(++pageCount_);
    std::memset(pages_ + (page - 1) * kPageSize, 0, kPageSize * sizeof(std::uint16_t));
  }
  std::uint16_t& place = pages_[(page - 1) * kPageSize + glyph % kPageSize];
  if (place == 0) {
    place = static_cast<std::uint16_t>(++entryCount_);
    entries_[place - 1] = {glyph, 0, 0, {}};
  }
  return entries_[place - 1];
}

inline GlyphEntry* GlyphIndex::add(const TTList& list, std::uint32_t glyph) noexcept {
  followed_ = list.count;
  last_ = list.last;
  lastGlyph_ = glyph;
  if (glyph >= kGlyphNumbers) return nullptr;
  GlyphEntry& entry = enter(glyph);
  if (entry.recordPlusOne == 0) entry.recordPlusOne = list.count;
  return &entry;
}

inline bool GlyphIndex::visit(GlyphEntry& entry) const noexcept {
  if (entry.visitedIn == round_) return false;
  entry.visitedIn = round_;
  entry.counts.records = kUnknownRecords;
  return true;
}

inline std::uint32_t GlyphIndex::find(std::uint32_t glyph) const noexcept {
  if (glyph >= kGlyphNumbers) return kNoRecordIndex;
  const std::uint32_t page = pageOf_[glyph / kPageSize];
  if (page == 0) return kNoRecordIndex;
  const std::uint32_t place = pages_[(page - 1) * kPageSize + glyph % kPageSize];
  return place == 0 ? kNoRecordIndex : entries_[place - 1].record();
}

}  // namespace ulm::truetype::detail
