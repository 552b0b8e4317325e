// Where the first record of a glyph number stands in a list of glyphs, found in constant time.
#pragma once

#include <cstdint>
#include <cstdlib>

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

// What the index knows of a glyph number. Its size is a power of 2.
struct alignas(16) GlyphEntry {
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
  // The glyph's entry, made if there is none, which may move the others; null without memory. The
  // number is below kGlyphNumbers.
  GlyphEntry* enter(std::uint32_t glyph) noexcept {
    const std::uint32_t page = pageOf_[glyph / kPageSize];
    const std::uint32_t place = page == 0 ? 0 : placeIn(page, glyph);
    return place != 0 ? &entries_[place - 1] : make(glyph);
  }
  // An entry's place among them, which stays as it is, and back.
  std::uint32_t placeOf(const GlyphEntry& entry) const noexcept {
    return static_cast<std::uint32_t>(&entry - entries_);
  }
  GlyphEntry& at(std::uint32_t place) noexcept { return entries_[place]; }

  // The list has just got a record of this number at its end; it has that entry, or none where it
  // is in no font.
  void added(const TTList& list, std::uint32_t glyph, GlyphEntry* entry) noexcept {
    noteEnd(list, glyph);
    if (entry != nullptr && entry->recordPlusOne == 0) entry->recordPlusOne = list.count;
  }
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
  void noteEnd(const TTList& list, std::uint32_t lastGlyph) noexcept {
    followed_ = list.count;
    last_ = list.last;
    lastGlyph_ = lastGlyph;
  }
  bool readList(const TTList& list) noexcept;
  bool makeRoom(std::uint32_t entries, std::uint32_t pages) noexcept;
  GlyphEntry* make(std::uint32_t glyph) noexcept;
  std::uint16_t& placeIn(std::uint32_t page, std::uint32_t glyph) const noexcept {
    return pages_[(page - 1) * kPageSize + glyph % kPageSize];
  }

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

inline bool GlyphIndex::visit(GlyphEntry& entry) const noexcept {
  if (entry.visitedIn == round_) return false;
  entry.visitedIn = round_;
  entry.counts.records = kUnknownRecords;
  return true;
}

inline std::uint32_t GlyphIndex::find(std::uint32_t glyph) const noexcept {
  if (glyph >= kGlyphNumbers) return kNoRecordIndex;
  const std::uint32_t page = pageOf_[glyph / kPageSize];
  const std::uint32_t place = page == 0 ? 0 : placeIn(page, glyph);
  return place == 0 ? kNoRecordIndex : entries_[place - 1].record();
}

}  // namespace ulm::truetype::detail
