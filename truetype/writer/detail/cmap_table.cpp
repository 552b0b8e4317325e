#include "truetype/writer/detail/cmap_table.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <utility>

#include "truetype/detail/c_buffer.h"
#include "truetype/format/byte_sink.h"
#include "truetype/format/cmap.h"
#include "truetype/format/directory.h"

namespace ulm::truetype::detail {
namespace {

using format::Cmap, format::Cmap4, format::Cmap4Arrays, format::EncodingRecord;

constexpr std::uint32_t kSubtableSteps = 10;
constexpr std::uint32_t kMappingSteps = 500;
constexpr std::uint16_t kLastCode = Cmap4::kLastCode;

// The subtable of this id, made at its place if there is none; null without memory.
CmapSubtable* subtableOf(CmapTableData& cmap, std::uint32_t id) noexcept {
  std::uint32_t place = 0;
  while (place < cmap.subtableCount && cmap.subtables[place].id < id) ++place;
  CmapSubtable* subtable = cmap.subtables + place;
  if (place < cmap.subtableCount && subtable->id == id) return subtable;

  CBuffer<std::uint32_t> charCodes = makeZeroedBuffer<std::uint32_t>(kMappingSteps);
  CBuffer<std::uint32_t> glyphIds = makeZeroedBuffer<std::uint32_t>(kMappingSteps);
  if (charCodes == nullptr || glyphIds == nullptr) return nullptr;
  if (cmap.subtableCount == cmap.capacity) {
    if (!enlarge(cmap.subtables, cmap.subtableCount, cmap.capacity + kSubtableSteps))
      return nullptr;
    cmap.capacity += kSubtableSteps;
    subtable = cmap.subtables + place;
  }
  CmapSubtable* end = cmap.subtables + cmap.subtableCount;
  std::copy_backward(subtable, end, end + 1);
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
      (!enlarge(subtable.charCodes, subtable.count, room) ||
       !enlarge(subtable.glyphIds, subtable.count, room))) {
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

// How many segments and listed glyphs a subtable of format 4 has.
struct Format4 {
  std::uint32_t segments;  // the closing one included
  std::uint32_t glyphs;    // of glyphIdArray

  Cmap4Arrays arrays() const noexcept { return {segments}; }
  bool fits() const noexcept {
    return segments <= UINT16_MAX && glyphs <= UINT16_MAX && arrays().glyph(glyphs) <= UINT16_MAX;
  }
  // The bytes of the subtable, which fits.
  std::uint16_t length() const noexcept {
    return static_cast<std::uint16_t>(arrays().glyph(glyphs));
  }
};

// Writes one subtable of format 4.
class Format4Writer {
 public:
  Format4Writer(const Format4& form, format::ByteSink out) noexcept
      : arrays_(form.arrays()),
        endCodes_(numbers(out, arrays_.endCode(0), form.segments)),
        startCodes_(numbers(out, arrays_.startCode(0), form.segments)),
        deltas_(numbers(out, arrays_.delta(0), form.segments)),
        rangeOffsets_(numbers(out, arrays_.rangeOffset(0), form.segments)),
        glyphs_(numbers(out, arrays_.glyph(0), form.glyphs)) {
    const format::RecordSink<Cmap4> header(out);
    const auto search = format::SearchFields::of(form.segments, Cmap4Arrays::kNumber);
    header.put(Cmap4::kFormat, Cmap4::kFormatNumber);
    header.put(Cmap4::kLength, form.length());
    header.put(Cmap4::kLanguage, 0);
    header.put(Cmap4::kSegmentBytes,
               static_cast<std::uint16_t>(Cmap4Arrays::kNumber * form.segments));
    header.put(Cmap4::kSearchRange, search.searchRange);
    header.put(Cmap4::kEntrySelector, search.entrySelector);
    header.put(Cmap4::kRangeShift, search.rangeShift);
    out.put<std::uint16_t>(arrays_.pad(), 0);
  }

  // A segment whose glyphs are its codes plus `delta`.
  void putSegment(std::uint32_t segment, std::uint16_t start, std::uint16_t end,
                  std::uint16_t delta) const noexcept {
    putSegment(segment, start, end, delta, 0);
  }
  // A segment whose glyphs are listed from `firstListed` on.
  void putListedSegment(std::uint32_t segment, std::uint16_t start, std::uint16_t end,
                        std::uint32_t firstListed) const noexcept {
    putSegment(segment, start, end, 0, arrays_.glyph(firstListed) - arrays_.rangeOffset(segment));
  }
  void putGlyph(std::uint32_t index, std::uint16_t glyph) const noexcept {
    glyphs_.put(index, glyph);
  }
  // The segment that format 4 ends with.
  void closeWith(std::uint32_t segment) const noexcept {
    putSegment(segment, kLastCode, kLastCode, 1);
  }

 private:
  using Numbers = format::ArraySink<std::uint16_t>;
  static Numbers numbers(format::ByteSink out, std::size_t offset, std::size_t count) noexcept {
    return out.array<std::uint16_t>(offset, count);
  }
  void putSegment(std::uint32_t segment, std::uint16_t start, std::uint16_t end,
                  std::uint16_t delta, std::size_t rangeOffset) const noexcept {
    endCodes_.put(segment, end);
    startCodes_.put(segment, start);
    deltas_.put(segment, delta);
    rangeOffsets_.put(segment, static_cast<std::uint16_t>(rangeOffset));
  }

  Cmap4Arrays arrays_;
  Numbers endCodes_, startCodes_, deltas_, rangeOffsets_, glyphs_;
};

std::uint16_t difference(std::uint16_t a, std::uint16_t b) noexcept {
  return static_cast<std::uint16_t>(a - b);  // modulo 65536
}

// One segment a mapping, whatever their order. The glyph stands in idDelta, and in glyphIdArray
// though nothing refers to it there.
Format4 plainForm(const CmapSubtable& subtable) noexcept {
  return {subtable.count + 1, subtable.count};
}
void writePlain(const CmapSubtable& subtable, const Format4Writer& out) noexcept {
  for (std::uint32_t i = 0; i < subtable.count; ++i) {
    const std::uint16_t code = codeAt(subtable, i);
    const std::uint16_t glyph = glyphAt(subtable, i);
    out.putSegment(i, code, code, difference(glyph, code));
    out.putGlyph(i, glyph);
  }
  out.closeWith(subtable.count);
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
enum class Reading { Done, Unsorted, NoMemory };
Reading readStretches(const CmapSubtable& subtable, Stretches& out) noexcept {
  out.items = makeBuffer<Stretch>(subtable.count);
  if (out.items == nullptr) return Reading::NoMemory;
  for (std::uint32_t i = 0; i < subtable.count; ++i) {
    const std::uint16_t code = codeAt(subtable, i);
    const std::uint16_t glyph = glyphAt(subtable, i);
    bool joined = false;
    if (out.count > 0) {
      Stretch& last = out.items[out.count - 1];
      if (code < last.end) return Reading::Unsorted;
      if (code == last.end) continue;
      joined = code == last.end + 1;
      if (joined && glyph == static_cast<std::uint16_t>(last.firstGlyph + last.count())) {
        last.end = code;
        continue;
      }
    }
    out.items[out.count++] = {code, code, glyph, joined, false, true};
  }
  return Reading::Done;
}

// Chooses for each stretch a segment of its own with idDelta, or a share of one whose glyphs are
// listed, which adds the bytes of a glyph for each code, so that the sum is the least.
// `listedBefore` takes a flag for each stretch.
Format4 chooseForms(Stretches& stretches, bool* listedBefore) noexcept {
  constexpr std::uint32_t kSegment = Cmap4Arrays::kSegmentSize;
  constexpr std::uint32_t kGlyph = Cmap4Arrays::kNumber;
  // The least bytes up to the present stretch where that is listed, and where it isn't.
  std::uint32_t listed = 0, alone = 0;
  for (std::uint32_t i = 0; i < stretches.count; ++i) {
    const Stretch& stretch = stretches.items[i];
    const std::uint32_t least = listed < alone ? listed : alone;
    const bool goesOn = i > 0 && stretch.joined && listed < least + kSegment;
    const std::uint32_t before = goesOn ? listed : least + kSegment;
    // If this stretch is listed: true when the cheapest solution extends the listed segment of the
    // stretch before it, false when it opens one.
    listedBefore[i] = goesOn;
    alone = least + kSegment;
    listed = before + kGlyph * stretch.count();
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

void writeMerged(const Stretches& stretches, const Format4& form,
                 const Format4Writer& out) noexcept {
  std::uint32_t segment = 0, listed = 0;
  for (std::uint32_t i = 0; i < stretches.count; ++segment) {
    const Stretch& first = stretches.items[i];
    const std::uint32_t firstListed = listed;
    std::uint16_t end;
    do {
      const Stretch& stretch = stretches.items[i++];
      end = stretch.end;
      for (std::uint32_t k = 0; stretch.listed && k < stretch.count(); ++k) {
        out.putGlyph(listed++, static_cast<std::uint16_t>(stretch.firstGlyph + k));
      }
    } while (i < stretches.count && !stretches.items[i].opens);
    if (first.listed) {
      out.putListedSegment(segment, first.start, end, firstListed);
    } else {
      out.putSegment(segment, first.start, end, difference(first.firstGlyph, first.start));
    }
  }
  if (segment < form.segments) out.closeWith(segment);
}

// How one subtable is written; `stretches` stays empty in the plain form.
WriterResult chooseForm(const CmapSubtable& subtable, Format4& form,
                        Stretches& stretches) noexcept {
  form = plainForm(subtable);
  stretches = {};
  if (form.fits()) return WriterResultOk;
  switch (readStretches(subtable, stretches)) {
    case Reading::NoMemory:
      return WriterResultNoMemory;
    case Reading::Unsorted:
      return WriterResultCmapTooLarge;
    case Reading::Done:
      break;
  }
  const CBuffer<bool> listedBefore = makeBuffer<bool>(stretches.count);
  if (listedBefore == nullptr) return WriterResultNoMemory;
  form = chooseForms(stretches, listedBefore.get());
  return form.fits() ? WriterResultOk : WriterResultCmapTooLarge;
}

}  // namespace

WriterTable* makeEmptyCmapTable() noexcept {
  CBuffer<CmapTableData> payload = makeZeroedBuffer<CmapTableData>(1);
  CBuffer<CmapSubtable> subtables = makeZeroedBuffer<CmapSubtable>(kSubtableSteps);
  if (payload == nullptr || subtables == nullptr) return nullptr;
  CmapTableData& cmap = payload[0];
  cmap.capacity = kSubtableSteps;
  WriterTable* table = makeTable(kTagCmap, std::move(payload));
  if (table != nullptr) cmap.subtables = subtables.release();
  return table;
}

void disposeCmap(WriterTable* table) noexcept {
  const CmapTableData& cmap = cmapOf(table);
  for (std::uint32_t i = 0; i < cmap.subtableCount; ++i) {
    std::free(cmap.subtables[i].charCodes);
    std::free(cmap.subtables[i].glyphIds);
  }
  std::free(cmap.subtables);
  std::free(table->data);
}

void appendMapping(WriterTable* cmapTable, std::uint32_t charCode, std::uint32_t glyphId) noexcept {
  CmapTableData& cmap = cmapOf(cmapTable);
  CmapSubtable* subtable = subtableOf(cmap, kWindowsUnicodeSubtable);
  if (subtable == nullptr || !append(*subtable, charCode, glyphId)) cmap.incomplete = true;
}

void appendMappings(WriterTable* cmapTable, const std::uint16_t* charCodes,
                    const std::int32_t* glyphIds, std::size_t count) noexcept {
  CmapTableData& cmap = cmapOf(cmapTable);
  CmapSubtable* subtable = subtableOf(cmap, kWindowsUnicodeSubtable);
  cmap.incomplete = cmap.incomplete || subtable == nullptr || !expectMappings(*subtable, count);
  if (cmap.incomplete) return;
  for (std::size_t k = 0; k < count; ++k) {
    subtable->charCodes[subtable->count + k] = charCodes[k];
    subtable->glyphIds[subtable->count + k] = static_cast<std::uint32_t>(glyphIds[k]);
  }
  subtable->count += static_cast<std::uint32_t>(count);
}

// Forms are chosen twice, to size the image and to write it, so that none is stored. The last
// choice is kept, so a single subtable is analysed once.
WriterResult makeCmapImage(WriterTable* table, TableImage* out) noexcept {
  const CmapTableData& cmap = cmapOf(table);
  if (cmap.incomplete) return WriterResultNoMemory;
  std::uint64_t length = Cmap::kRecords.at(cmap.subtableCount);
  Format4 form{};
  Stretches stretches;
  for (std::uint32_t i = 0; i < cmap.subtableCount; ++i) {
    const WriterResult result = chooseForm(cmap.subtables[i], form, stretches);
    if (result != WriterResultOk) return result;
    length += form.length();
  }
  if (cmap.subtableCount > UINT16_MAX || format::padded(length) > UINT32_MAX) {
    return WriterResultCmapTooLarge;
  }
  NewBytes image(static_cast<std::size_t>(length));
  if (!image.hasMemory()) return WriterResultNoMemory;
  const format::RecordSink<Cmap> header(image.sink());
  header.put(Cmap::kVersion, 0);
  header.put(Cmap::kCount, static_cast<std::uint16_t>(cmap.subtableCount));
  auto offset = static_cast<std::uint32_t>(Cmap::kRecords.at(cmap.subtableCount));
  for (std::uint32_t i = 0; i < cmap.subtableCount; ++i) {
    const CmapSubtable& subtable = cmap.subtables[i];
    const WriterResult result =
        cmap.subtableCount == 1 ? WriterResultOk : chooseForm(subtable, form, stretches);
    if (result != WriterResultOk) return result;
    const auto record = header.at(Cmap::kRecords, i);
    record.put(EncodingRecord::kPlatformID, Cmap::kWindowsPlatform);
    record.put(EncodingRecord::kEncodingID, Cmap::kWindowsUnicode);
    record.put(EncodingRecord::kOffset, offset);
    const Format4Writer subtableOut(form, image.sink().sub(offset, form.length()));
    if (stretches.items == nullptr) {
      writePlain(subtable, subtableOut);
    } else {
      writeMerged(stretches, form, subtableOut);
    }
    offset += form.length();
  }
  return image.becomeImage(table, kTagCmap, out);
}

}  // namespace ulm::truetype::detail
