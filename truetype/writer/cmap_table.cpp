// Character mappings and their subtable of format 4 (OpenType, cmap).
#include <bit>
#include <cstring>

#include "truetype/writer/detail/payloads.h"

namespace ulm::truetype {
namespace {

using detail::CBuffer;
using detail::put16;
using detail::put32;

constexpr std::uint32_t kSubtableSteps = 10;
constexpr std::uint32_t kMappingSteps = 500;
constexpr std::uint16_t kLastCode = 0xFFFF;  // format 4 ends with a segment of this code

// A larger copy in place of an array, the new entries unset. False without memory.
template <class T>
bool grow(T*& array, std::size_t count, std::size_t capacity) noexcept {
  CBuffer<T> larger = detail::makeBuffer<T>(capacity);
  if (larger == nullptr) return false;
  if (count != 0) std::memcpy(larger.get(), array, count * sizeof(T));
  std::free(array);
  array = larger.release();
  return true;
}

// The subtable of this id, made at its place if there is none; null without memory.
CmapSubtable* subtableOf(CmapTableData& cmap, std::uint32_t id) noexcept {
  std::uint32_t place = 0;
  while (place < cmap.subtableCount && cmap.subtables[place].id < id) ++place;
  CmapSubtable* subtable = cmap.subtables + place;
  if (place < cmap.subtableCount && subtable->id == id) return subtable;

  CBuffer<std::uint32_t> charCodes = detail::makeZeroedBuffer<std::uint32_t>(kMappingSteps);
  CBuffer<std::uint32_t> glyphIds = detail::makeZeroedBuffer<std::uint32_t>(kMappingSteps);
  if (charCodes == nullptr || glyphIds == nullptr) return nullptr;
  if (cmap.subtableCount == cmap.capacity) {
    if (!grow(cmap.subtables, cmap.subtableCount, cmap.capacity + kSubtableSteps)) return nullptr;
    cmap.capacity += kSubtableSteps;
    subtable = cmap.subtables + place;
  }
  std::memmove(subtable + 1, subtable, (cmap.subtableCount - place) * sizeof(CmapSubtable));
  *subtable = {id, 0, kMappingSteps, charCodes.release(), glyphIds.release()};
  ++cmap.subtableCount;
  return subtable;
}

// Room for `more` mappings. The capacity grows in steps, the memory behind it to the next power of
// 2 of them, so that many mappings are not copied over and over. False without memory.
bool expectMappings(CmapSubtable& subtable, std::size_t more) noexcept {
  const std::size_t needed = subtable.count + more;
  if (needed <= subtable.capacity) return true;
  if (needed > UINT32_MAX - kMappingSteps) return false;
  const std::size_t steps = (needed + kMappingSteps - 1) / kMappingSteps;
  const std::size_t room = std::bit_ceil(steps) * kMappingSteps;
  if (room > std::bit_ceil(std::size_t{subtable.capacity} / kMappingSteps) * kMappingSteps &&
      (!grow(subtable.charCodes, subtable.count, room) ||
       !grow(subtable.glyphIds, subtable.count, room))) {
    return false;
  }
  subtable.capacity = static_cast<std::uint32_t>(steps * kMappingSteps);
  return true;
}

bool append(CmapSubtable& subtable, std::uint32_t charCode, std::uint32_t glyphId) noexcept {
  if (!expectMappings(subtable, 1)) return false;
  subtable.charCodes[subtable.count] = charCode;
  subtable.glyphIds[subtable.count] = glyphId;
  ++subtable.count;
  return true;
}

std::uint16_t codeAt(const CmapSubtable& subtable, std::uint32_t i) noexcept {
  return static_cast<std::uint16_t>(subtable.charCodes[i]);
}
std::uint16_t glyphAt(const CmapSubtable& subtable, std::uint32_t i) noexcept {
  return static_cast<std::uint16_t>(subtable.glyphIds[i]);
}

// Where the arrays of a subtable of format 4 lie.
struct Format4 {
  static constexpr std::uint32_t kHeader = 14;
  std::uint32_t segments;  // the closing one included
  std::uint32_t glyphs;    // of glyphIdArray

  std::uint32_t endCodes() const noexcept { return kHeader; }
  std::uint32_t startCodes() const noexcept { return endCodes() + 2 * segments + 2; }
  std::uint32_t deltas() const noexcept { return startCodes() + 2 * segments; }
  std::uint32_t rangeOffsets() const noexcept { return deltas() + 2 * segments; }
  std::uint32_t glyphIds() const noexcept { return rangeOffsets() + 2 * segments; }
  std::uint32_t length() const noexcept { return glyphIds() + 2 * glyphs; }
  bool fits() const noexcept {
    return 16 + std::uint64_t{8} * segments + std::uint64_t{2} * glyphs <= 0xFFFF;
  }

  void writeHeader(std::uint8_t* out) const noexcept {
    std::uint32_t power = 1, log = 0;
    for (; power * 2 <= segments; power *= 2) ++log;
    put16(out, 0, 4);
    put16(out, 2, length());
    put16(out, 4, 0);  // language
    put16(out, 6, 2 * segments);
    put16(out, 8, 2 * power);
    put16(out, 10, log);
    put16(out, 12, 2 * (segments - power));
    put16(out, startCodes() - 2, 0);  // reservedPad
  }
  void writeSegment(std::uint8_t* out, std::uint32_t segment, std::uint16_t start,
                    std::uint16_t end, std::uint32_t delta,
                    std::uint32_t rangeOffset) const noexcept {
    put16(out, endCodes() + 2 * segment, end);
    put16(out, startCodes() + 2 * segment, start);
    put16(out, deltas() + 2 * segment, delta);
    put16(out, rangeOffsets() + 2 * segment, rangeOffset);
  }
};

// One segment a mapping, whatever their order. The glyph stands in idDelta, and in glyphIdArray
// though nothing refers to it there.
Format4 plainForm(const CmapSubtable& subtable) noexcept {
  return {subtable.count + 1, subtable.count};
}
void writePlain(const CmapSubtable& subtable, const Format4& form, std::uint8_t* out) noexcept {
  for (std::uint32_t i = 0; i < subtable.count; ++i) {
    const std::uint16_t code = codeAt(subtable, i);
    const std::uint16_t glyph = glyphAt(subtable, i);
    form.writeSegment(out, i, code, code, std::uint32_t{glyph} - code, 0);
    put16(out, form.glyphIds() + 2 * i, glyph);
  }
  form.writeSegment(out, subtable.count, kLastCode, kLastCode, 1, 0);
}

// A stretch of neighbouring codes whose glyphs rise by one too: the smallest thing that segments
// are made of.
struct Stretch {
  std::uint16_t start, end;  // codes
  std::uint16_t firstGlyph;
  bool joined;  // its first code is the neighbour of the stretch before
  bool listed;  // its glyphs go to glyphIdArray
  bool opens;   // begins a segment of its own

  std::uint32_t count() const noexcept { return std::uint32_t{end} - start + 1; }
};

// The stretches of ascending codes, of equal ones the first, which is the one that lookups find.
// Nothing where codes descend.
struct Stretches {
  CBuffer<Stretch> items;
  std::uint32_t count = 0;
};
enum class Reading { done, unsorted, noMemory };
Reading readStretches(const CmapSubtable& subtable, Stretches& out) noexcept {
  out.items = detail::makeBuffer<Stretch>(subtable.count);
  if (out.items == nullptr) return Reading::noMemory;
  for (std::uint32_t i = 0; i < subtable.count; ++i) {
    const std::uint16_t code = codeAt(subtable, i);
    const std::uint16_t glyph = glyphAt(subtable, i);
    bool joined = false;
    if (out.count > 0) {
      Stretch& last = out.items[out.count - 1];
      if (code < last.end) return Reading::unsorted;
      if (code == last.end) continue;
      joined = code == last.end + 1;
      if (joined && glyph == static_cast<std::uint16_t>(last.firstGlyph + last.count())) {
        last.end = code;
        continue;
      }
    }
    out.items[out.count++] = {code, code, glyph, joined, false, true};
  }
  return Reading::done;
}

// Chooses for each stretch a segment of its own with idDelta, 8 bytes, or a share of one whose
// glyphs are listed, 8 bytes for the segment and 2 for each code, so that the sum is the least.
// `listedBefore` has room for a flag a stretch.
Format4 chooseForms(Stretches& stretches, bool* listedBefore) noexcept {
  constexpr std::uint32_t kSegment = 8;
  // The least bytes up to the present stretch where that is listed, and where it isn't.
  std::uint32_t listed = 0, alone = 0;
  for (std::uint32_t i = 0; i < stretches.count; ++i) {
    const Stretch& stretch = stretches.items[i];
    const std::uint32_t least = listed < alone ? listed : alone;
    const bool goesOn = i > 0 && stretch.joined && listed < least + kSegment;
    const std::uint32_t before = goesOn ? listed : least + kSegment;
    // With a stretch listed, whether the way to it goes on with a listed one or opens a segment.
    listedBefore[i] = goesOn;
    alone = least + kSegment;
    listed = before + 2 * stretch.count();
    stretches.items[i].listed = listed < alone;
  }
  // Backwards: `listed` says so far which of the two is less at each stretch.
  Format4 form{0, 0};
  bool forced = false;  // by the stretch behind, which goes on with this one's segment
  for (std::uint32_t i = stretches.count; i-- > 0;) {
    Stretch& stretch = stretches.items[i];
    stretch.listed = forced || stretch.listed;
    forced = stretch.listed && listedBefore[i];
    stretch.opens = !forced;
    if (stretch.opens) ++form.segments;
    if (stretch.listed) form.glyphs += stretch.count();
  }
  // A last segment that ends with 0xFFFF closes the subtable as well.
  if (stretches.items[stretches.count - 1].end != kLastCode) ++form.segments;
  return form;
}

void writeMerged(const Stretches& stretches, const Format4& form, std::uint8_t* out) noexcept {
  std::uint32_t segment = 0, listed = 0;
  for (std::uint32_t i = 0; i < stretches.count; ++segment) {
    const Stretch& first = stretches.items[i];
    const std::uint32_t listedFirst = listed;
    std::uint16_t end;
    do {
      const Stretch& stretch = stretches.items[i++];
      end = stretch.end;
      for (std::uint32_t k = 0; stretch.listed && k < stretch.count(); ++k) {
        put16(out, form.glyphIds() + 2 * listed++, stretch.firstGlyph + k);
      }
    } while (i < stretches.count && !stretches.items[i].opens);
    if (first.listed) {
      // Counted from the place of the segment's own idRangeOffset.
      form.writeSegment(out, segment, first.start, end, 0,
                        2 * (form.segments - segment) + 2 * listedFirst);
    } else {
      form.writeSegment(out, segment, first.start, end,
                        std::uint32_t{first.firstGlyph} - first.start, 0);
    }
  }
  if (segment < form.segments) form.writeSegment(out, segment, kLastCode, kLastCode, 1, 0);
}

// How one subtable is written; `stretches` stays empty in the plain form.
WriterResult chooseForm(const CmapSubtable& subtable, Format4& form,
                        Stretches& stretches) noexcept {
  form = plainForm(subtable);
  stretches = {};
  if (form.fits()) return WriterResultOk;
  switch (readStretches(subtable, stretches)) {
    case Reading::noMemory:
      return WriterResultNoMemory;
    case Reading::unsorted:
      return WriterResultCmapTooLarge;
    case Reading::done:
      break;
  }
  const CBuffer<bool> listedBefore = detail::makeBuffer<bool>(stretches.count);
  if (listedBefore == nullptr) return WriterResultNoMemory;
  form = chooseForms(stretches, listedBefore.get());
  return form.fits() ? WriterResultOk : WriterResultCmapTooLarge;
}

}  // namespace

void addCharMapping(WriterTable* cmapTable, std::uint32_t charCode,
                    std::uint32_t glyphId) noexcept {
  auto& cmap = *static_cast<CmapTableData*>(cmapTable->data);
  CmapSubtable* subtable = subtableOf(cmap, kWindowsUnicodeSubtable);
  if (subtable == nullptr || !append(*subtable, charCode, glyphId)) cmap.incomplete = true;
}

namespace detail {

void addCharMappings(WriterTable* cmapTable, const std::uint16_t* charCodes,
                     const std::int32_t* glyphIds, std::size_t count) noexcept {
  auto& cmap = *static_cast<CmapTableData*>(cmapTable->data);
  CmapSubtable* subtable = subtableOf(cmap, kWindowsUnicodeSubtable);
  cmap.incomplete = cmap.incomplete || subtable == nullptr || !expectMappings(*subtable, count);
  if (cmap.incomplete) return;
  for (std::size_t k = 0; k < count; ++k) {
    subtable->charCodes[subtable->count + k] = charCodes[k];
    subtable->glyphIds[subtable->count + k] = static_cast<std::uint32_t>(glyphIds[k]);
  }
  subtable->count += static_cast<std::uint32_t>(count);
}

// A form is chosen for the length and again for the bytes, so that no list of forms is kept; but
// the last one is, and so the only one.
WriterResult makeCmapImage(WriterTable* table, TableImage* out) noexcept {
  const auto& cmap = *static_cast<const CmapTableData*>(table->data);
  if (cmap.incomplete) return WriterResultNoMemory;
  std::uint64_t length = 4 + std::uint64_t{8} * cmap.subtableCount;
  Format4 form{};
  Stretches stretches;
  for (std::uint32_t i = 0; i < cmap.subtableCount; ++i) {
    const WriterResult result = chooseForm(cmap.subtables[i], form, stretches);
    if (result != WriterResultOk) return result;
    length += form.length();
  }
  if (cmap.subtableCount > 0xFFFF || padded(length) > UINT32_MAX) return WriterResultCmapTooLarge;
  std::uint8_t* image = makeImage(table, static_cast<std::uint32_t>(length));
  if (image == nullptr) return WriterResultNoMemory;
  put16(image, 0, 0);
  put16(image, 2, cmap.subtableCount);
  std::uint32_t place = 4 + 8 * cmap.subtableCount;
  for (std::uint32_t i = 0; i < cmap.subtableCount; ++i) {
    const WriterResult result =
        cmap.subtableCount == 1 ? WriterResultOk : chooseForm(cmap.subtables[i], form, stretches);
    if (result != WriterResultOk) return result;
    put32(image, 4 + 8 * i, 0x00030001);  // Windows, Unicode
    put32(image, 8 + 8 * i, place);
    form.writeHeader(image + place);
    if (stretches.items == nullptr) {
      writePlain(cmap.subtables[i], form, image + place);
    } else {
      writeMerged(stretches, form, image + place);
    }
    place += form.length();
  }
  *out = {image, static_cast<std::uint32_t>(length), kTagCmap};
  return WriterResultOk;
}

}  // namespace detail
}  // namespace ulm::truetype
