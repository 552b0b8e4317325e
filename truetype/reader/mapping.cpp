#include "truetype/reader/mapping.h"

#include <bit>

#include "truetype/detail/byte_view.h"
#include "truetype/reader/detail/below_window.h"

namespace ulm::truetype {
namespace {

using detail::ByteView;

constexpr std::uint16_t kNotFound = 0xFFFF;
constexpr std::uint16_t kLastCode = 0xFFFF;

// What a bisection has come down to: the numbers of an array in [low, low + size).
struct Bisected {
  std::size_t low, size;
};

// Bisects with middle = (low + high) / 2 until no more than `most` numbers are left. When none is,
// `low` stands on the last middle that was not below the key, for after it only `low` could move.
template <class Bytes>
Bisected bisect(Bytes bytes, std::size_t array, Bisected left, std::size_t most,
                std::uint16_t key) noexcept {
  while (left.size > most) {
    const std::size_t half = (left.size - 1) / 2;
    if (bytes.read16(array + 2 * (left.low + half)) < key) {
      left.low += half + 1;
      left.size -= half + 1;
    } else {
      left.size = half;
    }
  }
  return left;
}

// Each format's lookup is written once, over a source of bytes: a subtable that open has tested, or
// one under test, which notes that a read left the image and goes on with zeros. firstNotBelow
// gives `count` where all numbers are below the key.
struct TrustedBytes {
  const std::uint8_t* start;
  std::uint8_t read8(std::size_t offset) const noexcept { return start[offset]; }
  std::uint16_t read16(std::size_t offset) const noexcept { return readUInt16(start, offset); }
  std::size_t firstNotBelow(std::size_t array, std::size_t count,
                            std::uint16_t key) const noexcept {
    constexpr std::size_t kWindow = detail::kBelowWindow;
    Bisected left{0, count};
    if (count >= kWindow) {
      left = bisect(*this, array, left, kWindow, key);
      // The window holds all that is left. Where in it no number below the key follows one that is
      // not, any bisection of what is left ends in the same place.
      const std::size_t first = left.low < count - kWindow ? left.low : count - kWindow;
      const std::uint32_t below = detail::belowInWindow(start + array + 2 * first, key);
      if ((below & (below + 1)) == 0) {
        return first + static_cast<std::size_t>(std::countr_zero(below + 1));
      }
    }
    return bisect(*this, array, left, 0, key).low;
  }
};

struct TestedBytes {
  ByteView view;
  bool* left;
  std::uint8_t read8(std::size_t offset) const noexcept {
    if (!view.holds(offset, 1)) *left = true;
    return view.readOrZero<std::uint8_t>(offset);
  }
  std::uint16_t read16(std::size_t offset) const noexcept {
    if (!view.holds(offset, 2)) *left = true;
    return view.readOrZero<std::uint16_t>(offset);
  }
  std::size_t firstNotBelow(std::size_t array, std::size_t count,
                            std::uint16_t key) const noexcept {
    return bisect(*this, array, {0, count}, 0, key).low;
  }
};

template <class Bytes>
std::uint16_t lookup0(Bytes bytes, std::uint16_t code) noexcept {
  return code > 255 ? std::uint16_t{0} : std::uint16_t{bytes.read8(6 + std::size_t{code})};
}

template <class Bytes>
std::uint16_t lookup2(Bytes bytes, std::uint16_t code) noexcept {
  const std::size_t high = code >> 8;
  const std::size_t low = code & 0xFF;
  const std::size_t header = 518 + 8 * std::size_t{bytes.read16(6 + 2 * high) / 8u};
  const std::size_t firstCode = bytes.read16(header);
  if (low < firstCode || low >= firstCode + bytes.read16(header + 2)) return 0;
  const std::size_t rangeOffset = bytes.read16(header + 6);
  const std::uint16_t value = bytes.read16(header + 6 + rangeOffset + 2 * (low - firstCode));
  if (value == 0) return 0;
  return static_cast<std::uint16_t>(value + bytes.read16(header + 4));
}

template <class Bytes>
std::uint16_t lookup4(Bytes bytes, std::uint16_t code) noexcept {
  const std::size_t count = bytes.read16(6) / 2u;
  const std::size_t segment = bytes.firstNotBelow(14, count, code);
  if (segment == count) return 0;
  const std::size_t startCode = 16 + 2 * (count + segment);
  const std::uint16_t first = bytes.read16(startCode);
  if (first > code) return 0;
  const std::uint16_t delta = bytes.read16(startCode + 2 * count);
  const std::size_t rangePlace = startCode + 4 * count;
  const std::uint16_t rangeOffset = bytes.read16(rangePlace);
  if (rangeOffset == 0) return static_cast<std::uint16_t>(code + delta);
  const std::size_t step = 2 * static_cast<std::size_t>(code - first);
  const std::uint16_t value = bytes.read16(rangePlace + rangeOffset + step);
  return value == 0 ? std::uint16_t{0} : static_cast<std::uint16_t>(value + delta);
}

template <class Bytes>
std::uint16_t lookup6(Bytes bytes, std::uint16_t code) noexcept {
  const std::uint16_t first = bytes.read16(6);
  if (code < first) return 0;
  const std::size_t index = static_cast<std::size_t>(code - first);
  return index < bytes.read16(8) ? bytes.read16(10 + 2 * index) : std::uint16_t{0};
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

// Whether no segment can lead a code below the last outside, whatever code leads to it. Some of
// what this finds to lead outside no code reaches, so its no is a reason to look closer.
bool segmentsStayInside(ByteView subtable) noexcept {
  const std::size_t count = subtable.readOrZero<std::uint16_t>(6) / 2u;
  const std::size_t starts = 16 + 2 * count;
  if (!subtable.holds(0, starts + 6 * count)) return false;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t rangePlace = starts + 4 * count + 2 * i;
    const std::size_t rangeOffset = subtable.readOrZero<std::uint16_t>(rangePlace);
    if (rangeOffset == 0) continue;
    const std::size_t first = subtable.readOrZero<std::uint16_t>(starts + 2 * i);
    const std::size_t last = subtable.readOrZero<std::uint16_t>(14 + 2 * i);
    if (first <= last && first < kLastCode &&
        !subtable.holds(rangePlace + rangeOffset, 2 * (last - first) + 2)) {
      return false;
    }
  }
  return true;
}

// No value of a subtable of the format leads further than this.
std::size_t furthestReach(std::size_t format, ByteView subtable) noexcept {
  constexpr std::size_t kAnyOffset = 0x10000 + 2 * 0x10000;
  switch (format) {
    case 0:
      return 6 + 256;
    case 2:
      return 518 + 8 * 0x2000 + kAnyOffset;
    case 4:
      return 16 + 8 * std::size_t{subtable.readOrZero<std::uint16_t>(6) / 2u} + kAnyOffset;
    default:
      return 10 + 2 * std::size_t{subtable.readOrZero<std::uint16_t>(8)};
  }
}

// The operation by which no code leads outside the image, or null.
CmapLookup usableLookup(std::size_t format, ByteView subtable) noexcept {
  const Format& operations = kFormats[format];
  if (subtable.holds(0, furthestReach(format, subtable))) return operations.lookup;
  bool left = false;
  const TestedBytes bytes{subtable, &left};
  const bool isKnown = format == 4 && segmentsStayInside(subtable);
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

  constexpr std::size_t kWindows = 3, kEncodings = 7;
  const ByteView cmap = detail::tableView(*font, kSlotCmap);
  std::uint32_t offsets[kEncodings] = {};
  const std::size_t count = cmap.readOrZero<std::uint16_t>(2);
  for (std::size_t record = 4; record < 4 + 8 * count; record += 8) {
    const std::size_t encoding = cmap.readOrZero<std::uint16_t>(record + 2);
    if (cmap.readOrZero<std::uint16_t>(record) == kWindows && encoding < kEncodings) {
      offsets[encoding] = cmap.readOrZero<std::uint32_t>(record + 4);
    }
  }
  for (const std::size_t encoding : {1u, 2u, 3u, 4u, 5u, 6u, 0u}) {
    if (offsets[encoding] == 0) continue;
    const ByteView subtable = cmap.from(offsets[encoding]);
    const std::optional<std::uint16_t> format = subtable.read<std::uint16_t>(0);
    if (!format || *format > 6 || *format % 2 != 0) return;
    const CmapLookup lookup = usableLookup(*format, subtable);
    if (lookup == nullptr) return;
    font->cmapSubtable = subtable.start();
    font->cmapType = static_cast<std::int32_t>(encoding) + 10;
    font->cmapLookup = lookup;
    return;
  }
}

}  // namespace ulm::truetype
