#include "truetype/reader/mapping.h"

#include <bit>
#include <iterator>

#include "truetype/detail/bisect.h"
#include "truetype/detail/font_views.h"
#include "truetype/format/cmap.h"
#include "truetype/reader/detail/below_window.h"

namespace ulm::truetype {
namespace {

using detail::Bisected;
using detail::ByteView;
using detail::RecordView;
using format::Cmap, format::EncodingRecord;
using format::Cmap0, format::Cmap2, format::Cmap4, format::Cmap4Arrays, format::Cmap6;

constexpr std::uint16_t kNotFound = 0xFFFF;
constexpr std::uint16_t kLastCode = Cmap4::kLastCode;
constexpr std::int32_t kFirstType = 10;  // of cmapType: the number for encoding 0
constexpr std::size_t kCodeSize = format::kElementSize<std::uint16_t>;

// Bisects sorted numbers of 16 bits at `array` until at most `maximum` are left. With none left,
// `low` is the index of the first that is not below the key.
template <class Bytes>
Bisected bisectNumbers(Bytes bytes, std::size_t array, Bisected range, std::size_t maximum,
                       std::uint16_t key) noexcept {
  return detail::bisect(range, maximum, [&](std::size_t index) {
    const std::uint16_t number = bytes.template read<std::uint16_t>(array + index * kCodeSize);
    return number < key ? -1 : 1;
  });
}

// Each format's lookup is written once, over a source of bytes: a subtable that open has tested, or
// one under test. firstNotBelow returns `count` if all numbers are below the key.
struct TrustedBytes {
  const std::uint8_t* start;
  template <class T>
  T read(std::size_t offset) const noexcept {
    return format::loadBigEndian<T>(start + offset);
  }
  std::size_t firstNotBelow(std::size_t array, std::size_t count,
                            std::uint16_t key) const noexcept {
    constexpr std::size_t kWindow = detail::kBelowWindow;
    Bisected left{0, count};
    if (count >= kWindow) {
      left = bisectNumbers(*this, array, left, kWindow, key);
      // The window holds all that is left. Where in it no number below the key follows one that is
      // not, any bisection of what is left ends at the same index.
      const std::size_t first = left.low < count - kWindow ? left.low : count - kWindow;
      const std::uint32_t below = detail::belowInWindow(start + array + first * kCodeSize, key);
      if ((below & (below + 1)) == 0) {
        return first + static_cast<std::size_t>(std::countr_zero(below + 1));
      }
    }
    return bisectNumbers(*this, array, left, 0, key).low;
  }
};

// Notes that a read left the image, and goes on with zeros.
struct TestedBytes {
  ByteView view;
  bool* leftImage;
  template <class T>
  T read(std::size_t offset) const noexcept {
    if (!view.holds(offset, sizeof(T))) *leftImage = true;
    return view.readOrZero<T>(offset);
  }
  std::size_t firstNotBelow(std::size_t array, std::size_t count,
                            std::uint16_t key) const noexcept {
    return bisectNumbers(*this, array, {0, count}, 0, key).low;
  }
};

// A field of the record at an offset, and an element of an array at the subtable's start.
template <class Bytes, class Record, class T, std::size_t Offset>
T get(Bytes bytes, format::Field<Record, T, Offset>, std::size_t record = 0) noexcept {
  return bytes.template read<T>(record + Offset);
}
template <class Bytes, class Record, class T, std::size_t Offset>
T get(Bytes bytes, format::Array<Record, T, Offset> array, std::size_t index) noexcept {
  return bytes.template read<T>(array.at(index));
}

template <class Bytes>
std::uint16_t lookup0(Bytes bytes, std::uint16_t code) noexcept {
  return code < Cmap0::kCodeCount ? get(bytes, Cmap0::kGlyphs, code) : std::uint16_t{0};
}

template <class Bytes>
std::uint16_t lookup2(Bytes bytes, std::uint16_t code) noexcept {
  using Header = format::Cmap2SubHeader;
  const std::size_t high = code >> 8;
  const std::size_t low = code & 0xFF;
  const std::size_t key = get(bytes, Cmap2::kKeys, high);
  const std::size_t header = Cmap2::kSubHeaders.at(key / Header::kSize);
  const std::size_t firstCode = get(bytes, Header::kFirstCode, header);
  if (low < firstCode || low >= firstCode + get(bytes, Header::kEntryCount, header)) return 0;
  const std::size_t rangeOffset = get(bytes, Header::kRangeOffset, header);
  const std::uint16_t value = bytes.template read<std::uint16_t>(
      format::rangeGlyph(header + Header::kRangeOffset.kOffset, rangeOffset, low - firstCode));
  if (value == 0) return 0;
  return static_cast<std::uint16_t>(value + get(bytes, Header::kDelta, header));
}

template <class Bytes>
std::uint16_t lookup4(Bytes bytes, std::uint16_t code) noexcept {
  const auto read = [bytes](std::size_t offset) {
    return bytes.template read<std::uint16_t>(offset);
  };
  const auto arrays = Cmap4Arrays::ofSegmentBytes(get(bytes, Cmap4::kSegmentBytes));
  const std::size_t segment = bytes.firstNotBelow(arrays.endCode(0), arrays.segments, code);
  if (segment == arrays.segments) return 0;
  const std::uint16_t first = read(arrays.startCode(segment));
  if (first > code) return 0;
  const std::uint16_t delta = read(arrays.delta(segment));
  const std::size_t rangeField = arrays.rangeOffset(segment);
  const std::uint16_t rangeOffset = read(rangeField);
  if (rangeOffset == 0) return static_cast<std::uint16_t>(code + delta);
  const auto index = static_cast<std::size_t>(code - first);
  const std::uint16_t value = read(format::rangeGlyph(rangeField, rangeOffset, index));
  return value == 0 ? std::uint16_t{0} : static_cast<std::uint16_t>(value + delta);
}

template <class Bytes>
std::uint16_t lookup6(Bytes bytes, std::uint16_t code) noexcept {
  const std::uint16_t first = get(bytes, Cmap6::kFirstCode);
  if (code < first) return 0;
  const std::size_t index = static_cast<std::size_t>(code - first);
  return index < get(bytes, Cmap6::kCount) ? get(bytes, Cmap6::kGlyphs, index) : std::uint16_t{0};
}

template <std::uint16_t (*Lookup)(const std::uint8_t*, std::uint16_t) noexcept>
std::uint16_t withoutLastCode(const std::uint8_t* subtable, std::uint16_t code) noexcept {
  return code == kLastCode ? std::uint16_t{0} : Lookup(subtable, code);
}

struct Format {
  std::uint16_t (*tested)(TestedBytes bytes, std::uint16_t code) noexcept;
  CmapLookup lookup;
  CmapLookup withoutLast;
};

constexpr Format kFormats[] = {
    {lookup0<TestedBytes>, cmapLookupFormat0, withoutLastCode<cmapLookupFormat0>}, {},
    {lookup2<TestedBytes>, cmapLookupFormat2, withoutLastCode<cmapLookupFormat2>}, {},
    {lookup4<TestedBytes>, cmapLookupFormat4, withoutLastCode<cmapLookupFormat4>}, {},
    {lookup6<TestedBytes>, cmapLookupFormat6, withoutLastCode<cmapLookupFormat6>},
};

// True if no segment leads a code below the last outside. False may be a false alarm, since it may
// be that no code reaches the segment: the caller then tests every code.
bool segmentsStayInside(ByteView subtable) noexcept {
  const RecordView<Cmap4> header(subtable);
  const auto arrays = Cmap4Arrays::ofSegmentBytes(header.readOrZero(Cmap4::kSegmentBytes));
  if (!subtable.holds(0, arrays.glyph(0))) return false;
  const auto read = [subtable](std::size_t offset) -> std::size_t {
    return subtable.readHeld<std::uint16_t>(offset);
  };
  for (std::size_t i = 0; i < arrays.segments; ++i) {
    const std::size_t rangeField = arrays.rangeOffset(i);
    const std::size_t rangeOffset = read(rangeField);
    if (rangeOffset == 0) continue;
    const std::size_t first = read(arrays.startCode(i));
    const std::size_t last = read(arrays.endCode(i));
    if (first <= last && first < kLastCode &&
        !subtable.holds(format::rangeGlyph(rangeField, rangeOffset, last - first), kCodeSize)) {
      return false;
    }
  }
  return true;
}

// No value of a subtable of the format leads further than this.
std::size_t furthestReach(std::size_t format, ByteView subtable) noexcept {
  constexpr std::size_t kNumbers = 0x10000;  // values of 16 bits
  constexpr std::size_t kAnyRange = format::rangeGlyph(0, kNumbers, kNumbers);
  switch (format) {
    case 0:
      return Cmap0::kGlyphs.at(Cmap0::kCodeCount);
    case 2:
      return Cmap2::kSubHeaders.at(kNumbers / format::Cmap2SubHeader::kSize) + kAnyRange;
    case 4: {
      const auto segmentBytes = RecordView<Cmap4>(subtable).readOrZero(Cmap4::kSegmentBytes);
      return Cmap4Arrays::ofSegmentBytes(segmentBytes).glyph(0) + kAnyRange;
    }
    default:
      return Cmap6::kGlyphs.at(RecordView<Cmap6>(subtable).readOrZero(Cmap6::kCount));
  }
}

// The lookup that keeps every code inside the image, or null if there is none.
CmapLookup usableLookup(std::size_t format, ByteView subtable) noexcept {
  const Format& operations = kFormats[format];
  if (subtable.holds(0, furthestReach(format, subtable))) return operations.lookup;
  bool left = false;
  const TestedBytes bytes{subtable, &left};
  const bool isKnown = format == Cmap4::kFormatNumber && segmentsStayInside(subtable);
  for (std::uint32_t code = 0; code < kLastCode && !isKnown; ++code) {
    operations.tested(bytes, static_cast<std::uint16_t>(code));
    if (left) return nullptr;
  }
  operations.tested(bytes, kLastCode);
  return left ? operations.withoutLast : operations.lookup;
}

}  // namespace

std::uint16_t cmapLookupFormat0(const std::uint8_t* subtable, std::uint16_t code) noexcept {
  return lookup0(TrustedBytes{subtable}, code);
}

std::uint16_t cmapLookupFormat2(const std::uint8_t* subtable, std::uint16_t code) noexcept {
  return lookup2(TrustedBytes{subtable}, code);
}

std::uint16_t cmapLookupFormat4(const std::uint8_t* subtable, std::uint16_t code) noexcept {
  return lookup4(TrustedBytes{subtable}, code);
}

std::uint16_t cmapLookupFormat6(const std::uint8_t* subtable, std::uint16_t code) noexcept {
  return lookup6(TrustedBytes{subtable}, code);
}

std::uint16_t findFirstNotBelow(const std::uint8_t* array, std::uint16_t count,
                                std::uint16_t key) noexcept {
  if (count == kNotFound) return kNotFound;
  const std::size_t found = TrustedBytes{array}.firstNotBelow(0, count, key);
  return found == count ? kNotFound : static_cast<std::uint16_t>(found);
}

void selectCmapSubtable(TrueTypeFont* font) noexcept {
  font->cmapSubtable = nullptr;
  font->cmapType = -1;
  font->cmapLookup = nullptr;

  constexpr std::size_t kEncodings = 7;
  const auto cmap = detail::tableOf<Cmap>(*font);
  std::uint32_t offsets[kEncodings] = {};
  const std::size_t count = cmap.readOrZero(Cmap::kCount);
  for (std::size_t i = 0; i < count; ++i) {
    const auto record = cmap.at(Cmap::kRecords, i);
    const std::size_t encoding = record.readOrZero(EncodingRecord::kEncodingID);
    if (record.readOrZero(EncodingRecord::kPlatformID) == Cmap::kWindowsPlatform &&
        encoding < kEncodings) {
      offsets[encoding] = record.readOrZero(EncodingRecord::kOffset);
    }
  }
  for (const std::size_t encoding : {1u, 2u, 3u, 4u, 5u, 6u, 0u}) {
    if (offsets[encoding] == 0) continue;
    const ByteView subtable = cmap.bytes().from(offsets[encoding]);
    const auto format =
        RecordView<format::CmapSubtable>(subtable).read(format::CmapSubtable::kFormat);
    if (!format || *format >= std::size(kFormats) || kFormats[*format].lookup == nullptr) return;
    const CmapLookup lookup = usableLookup(*format, subtable);
    if (lookup == nullptr) return;
    font->cmapSubtable = subtable.start();
    font->cmapType = static_cast<std::int32_t>(encoding) + kFirstType;
    font->cmapLookup = lookup;
    return;
  }
}

}  // namespace ulm::truetype
