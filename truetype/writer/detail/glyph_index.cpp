#include "truetype/writer/detail/glyph_index.h"

#include <cstring>

#include "truetype/detail/c_buffer.h"

namespace ulm::truetype::detail {
namespace {

// Makes room for `count` more behind those in use. False without memory.
template <class T>
bool grow(T*& items, std::uint32_t used, std::uint32_t count, std::uint32_t most, std::size_t size,
          std::uint32_t& capacity) noexcept {
  if (count <= capacity - used) return true;
  const std::uint32_t first = 2 * capacity < 32 ? 32 : 2 * capacity;
  const std::uint32_t needed = count > most - used ? most : used + count;
  if (needed <= capacity) return true;
  const std::uint32_t larger = first > most ? most : first > needed ? first : needed;
  CBuffer<T> moved = makeBuffer<T>(larger * size);
  if (moved == nullptr) return false;
  if (used != 0) std::memcpy(moved.get(), items, used * size * sizeof(T));
  std::free(items);
  items = moved.release();
  capacity = larger;
  return true;
}

}  // namespace

bool GlyphIndex::readList(const TTList& list) noexcept {
  forget();
  if (!expect(list.count)) return false;
  std::uint32_t position = 0;
  for (const TTListNode* node = list.first; node != nullptr; node = node->next) {
    ++position;
    const std::uint32_t glyph = static_cast<const GlyphData*>(node->item)->glyphIndex;
    if (glyph >= kGlyphNumbers) continue;
    GlyphEntry* entry = enter(glyph);
    if (entry == nullptr) {
      forget();
      return false;
    }
    if (entry->recordPlusOne == 0) entry->recordPlusOne = position;
  }
  noteEnd(list, lastGlyphOf(list));
  return true;
}

bool GlyphIndex::makeRoom(std::uint32_t entries, std::uint32_t pages) noexcept {
  return grow(entries_, entryCount_, entries, kGlyphNumbers, 1, entryCapacity_) &&
         grow(pages_, pageCount_, pages, kPages, kPageSize, pageCapacity_);
}

GlyphEntry* GlyphIndex::make(std::uint32_t glyph) noexcept {
  const bool isFull = entryCount_ == entryCapacity_ || pageCount_ == pageCapacity_;
  if (isFull && !makeRoom(1, 1)) return nullptr;
  std::uint16_t& page = pageOf_[glyph / kPageSize];
  if (page == 0) {
    page = static_cast<std::uint16_t>(++pageCount_);
    std::memset(&placeIn(page, 0), 0, kPageSize * sizeof(std::uint16_t));
  }
  entries_[entryCount_] = {glyph, 0, 0, {}};
  placeIn(page, glyph) = static_cast<std::uint16_t>(++entryCount_);
  return &entries_[entryCount_ - 1];
}

void GlyphIndex::forget() noexcept {
  std::free(pages_);
  std::free(entries_);
  std::memset(pageOf_, 0, sizeof pageOf_);
  pages_ = nullptr;
  entries_ = nullptr;
  pageCount_ = pageCapacity_ = entryCount_ = entryCapacity_ = followed_ = lastGlyph_ = 0;
  last_ = nullptr;
}

}  // namespace ulm::truetype::detail
