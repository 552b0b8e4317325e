#include "truetype/writer/detail/record_index.h"

#include <algorithm>
#include <cstring>

#include "truetype/detail/c_buffer.h"

namespace ulm::truetype::detail {
namespace {

// Makes room for `count` more groups of `size` items than are used, as far as `maximum` allows.
// False without memory.
template <class T>
bool expand(T*& items, std::uint32_t used, std::uint32_t count, std::uint32_t maximum,
            std::size_t size, std::uint32_t& capacity) noexcept {
  constexpr std::uint32_t kMinCapacity = 32;
  if (count <= capacity - used) return true;
  const std::uint32_t needed = count > maximum - used ? maximum : used + count;
  if (needed <= capacity) return true;
  const std::uint32_t larger = std::min(std::max({2 * capacity, kMinCapacity, needed}), maximum);
  if (!enlarge(items, used * size, larger * size)) return false;
  capacity = larger;
  return true;
}

}  // namespace

bool RecordIndex::readList(const TTList& list) noexcept {
  forget();
  if (!expect(list.count)) return false;
  std::uint32_t position = 0;
  for (const TTListNode* node = list.first; node != nullptr; node = node->next) {
    ++position;
    const std::uint32_t glyph = static_cast<const GlyphData*>(node->item)->glyphIndex;
    if (glyph >= kMaxGlyphCount) continue;
    IndexEntry* entry = enter(glyph);
    if (entry == nullptr) {
      forget();
      return false;
    }
    if (entry->recordPlusOne == 0) entry->recordPlusOne = position;
  }
  noteEnd(list, lastGlyphOf(list));
  return true;
}

bool RecordIndex::reserve(std::uint32_t entries, std::uint32_t pages) noexcept {
  return expand(entries_, entryCount_, entries, kMaxGlyphCount, 1, entryCapacity_) &&
         expand(pages_, pageCount_, pages, kPages, kPageSize, pageCapacity_);
}

IndexEntry* RecordIndex::make(std::uint32_t glyph) noexcept {
  const bool isFull = entryCount_ == entryCapacity_ || pageCount_ == pageCapacity_;
  if (isFull && !reserve(1, 1)) return nullptr;
  std::uint16_t& page = pageOf_[glyph / kPageSize];
  if (page == 0) {
    page = static_cast<std::uint16_t>(++pageCount_);
    std::memset(&entryIn(page, 0), 0, kPageSize * sizeof(std::uint16_t));
  }
  entries_[entryCount_] = {glyph, 0, 0, {}};
  entryIn(page, glyph) = static_cast<std::uint16_t>(++entryCount_);
  return &entries_[entryCount_ - 1];
}

void RecordIndex::forget() noexcept {
  std::free(pages_);
  std::free(entries_);
  std::memset(pageOf_, 0, sizeof pageOf_);
  pages_ = nullptr;
  entries_ = nullptr;
  pageCount_ = pageCapacity_ = entryCount_ = entryCapacity_ = followed_ = lastGlyph_ = 0;
  last_ = nullptr;
}

}  // namespace ulm::truetype::detail
