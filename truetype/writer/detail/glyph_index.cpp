#include "truetype/writer/detail/glyph_index.h"

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
    if (!reserve()) {
      forget();
      return false;
    }
    GlyphEntry& entry = enter(glyph);
    if (entry.recordPlusOne == 0) entry.recordPlusOne = position;
  }
  followed_ = list.count;
  last_ = list.last;
  lastGlyph_ = lastGlyphOf(list);
  return true;
}

bool GlyphIndex::makeRoom(std::uint32_t entries, std::uint32_t pages) noexcept {
  return grow(entries_, entryCount_, entries, kGlyphNumbers, 1, entryCapacity_) &&
         grow(pages_, pageCount_, pages, kPages, kPageSize, pageCapacity_);
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
