#include "truetype/reader/kerning.h"

#include <cstdio>
#include <cstdlib>
#include <optional>

#include "truetype/detail/byte_view.h"
#include "truetype/detail/c_buffer.h"

namespace ulm::truetype {
namespace {

using detail::ByteView;

constexpr std::int32_t kNone = 0, kApple = 1, kMicrosoft = 2;
constexpr std::uint32_t kLeastTableLength = 32;
constexpr std::size_t kCoverage = 4, kPairCount = 6, kPairs = 14, kPairSize = 6;
constexpr std::uint16_t kHorizontal = 0x0001;

void printUnimplemented() noexcept {
  std::fputs("MacOS kerning tables have not been implemented yet!\n", stderr);
}

// Whether a request may be led through the subtable: one whose pairs leave the image is not, one
// that no request searches needs only its coverage.
bool staysInside(ByteView subtable) noexcept {
  const std::optional<std::uint16_t> coverage = subtable.read<std::uint16_t>(kCoverage);
  if (!coverage) return false;
  if ((*coverage & ~kHorizontal) != 0) return true;
  const std::optional<std::uint16_t> pairs = subtable.read<std::uint16_t>(kPairCount);
  return pairs && (*pairs == 0 || subtable.holds(kPairs, *pairs * kPairSize));
}

// The place of the key among the pairs. Equal keys end a bisection that moves both of its bounds.
const std::uint8_t* findPair(const std::uint8_t* subtable, std::uint32_t key) noexcept {
  const std::uint8_t* first = subtable + kPairs;
  for (std::size_t size = readUInt16(subtable, kPairCount); size > 0;) {
    const std::size_t half = (size - 1) / 2;
    const std::uint8_t* pair = first + half * kPairSize;
    const std::uint32_t stored = readUInt32(pair, 0);
    if (stored == key) return pair;
    if (stored < key) {
      first = pair + kPairSize;
      size -= half + 1;
    } else {
      size = half;
    }
  }
  return nullptr;
}

// The scaled value of the last subtable that holds the pair. Neighbours without a length have the
// same bytes, which are searched once.
std::optional<std::int32_t> searchAll(std::uint32_t count, const std::uint8_t* const* tables,
                                      std::int32_t unitsPerEm, std::int32_t vertical,
                                      std::uint32_t key) noexcept {
  const std::uint16_t coverage = vertical == 0 ? kHorizontal : std::uint16_t{0};
  const std::uint8_t* searched = nullptr;
  for (std::uint32_t i = count; i-- > 0;) {
    if (tables[i] == searched || tables[i] == nullptr) continue;
    searched = tables[i];
    if (readUInt16(searched, kCoverage) != coverage) continue;
    if (const std::uint8_t* pair = findPair(searched, key)) {
      return scaleToThousandths(unitsPerEm, readInt16(pair, 4));
    }
  }
  return std::nullopt;
}

}  // namespace

bool analyseKernTable(TrueTypeFont* font) noexcept {
  std::free(font->kernTables);  // those of an analysis before
  font->kernType = kNone;
  font->kernTableCount = 0;
  font->kernTables = nullptr;
  if (font->tables[kSlotKern] == nullptr || font->tableLengths[kSlotKern] < kLeastTableLength) {
    return true;
  }
  const ByteView kern = detail::tableView(*font, kSlotKern);
  const bool apple = kern.readOrZero<std::uint16_t>(0) != 0;
  if (apple && kern.readOrZero<std::uint32_t>(0) != 0x00010000) return true;
  const std::uint32_t count =
      apple ? kern.readOrZero<std::uint32_t>(4) : kern.readOrZero<std::uint16_t>(2);
  font->kernTableCount = count;
  std::size_t position = apple ? 8 : 4;
  if (apple && count > (kern.size() - position) / 4) return true;

  auto tables = detail::makeZeroedBuffer<const std::uint8_t*>(count);
  if (tables == nullptr) return false;
  for (std::uint32_t i = 0; i < count; ++i) {
    const ByteView subtable = kern.from(position);
    if (!subtable.holds(0, 4)) return true;
    const std::uint32_t length =
        apple ? subtable.readOrZero<std::uint32_t>(0) : subtable.readOrZero<std::uint16_t>(2);
    if (length > subtable.size()) return true;
    if (apple || staysInside(subtable)) tables[i] = subtable.start();
    position += length;
  }
  font->kernType = apple ? kApple : kMicrosoft;
  font->kernTables = tables.release();
  return true;
}

void getRunKerning(const TrueTypeFont* font, const std::uint16_t* glyphs, std::int32_t count,
                   std::int32_t vertical, KernAdjustment* outAdjustments) noexcept {
  if (count <= 0 || glyphs == nullptr || outAdjustments == nullptr) return;
  for (std::int32_t i = 0; i < count - 1; ++i) outAdjustments[i] = {0, 0};
  if (font->kernType == kApple) return printUnimplemented();
  if (font->kernType != kMicrosoft || (vertical != 0 && vertical != 1)) return;
  for (std::int32_t i = 0; i < count - 1; ++i) {
    const std::uint32_t key = std::uint32_t{glyphs[i]} << 16 | glyphs[i + 1];
    const auto value =
        searchAll(font->kernTableCount, font->kernTables, font->unitsPerEm, vertical, key);
    if (value) (vertical == 0 ? outAdjustments[i].x : outAdjustments[i].y) = *value;
  }
}

void getPairKerning(std::int32_t kernType, std::uint32_t kernTableCount,
                    const std::uint8_t* const* kernTables, std::int32_t unitsPerEm,
                    std::int32_t vertical, std::uint32_t left, std::uint32_t right,
                    std::int32_t* outX, std::int32_t* outY) noexcept {
  if (outX == nullptr || outY == nullptr) return;
  *outX = 0;
  *outY = 0;
  if (kernTableCount == 0 || kernTables == nullptr) return;
  if (kernType == kApple) return printUnimplemented();
  if (kernType != kMicrosoft || (vertical != 0 && vertical != 1)) return;
  if (left > 0xFFFF || right > 0xFFFF) return;
  const auto value =
      searchAll(kernTableCount, kernTables, unitsPerEm, vertical, left << 16 | right);
  if (value) (vertical == 0 ? *outX : *outY) = *value;
}

}  // namespace ulm::truetype
