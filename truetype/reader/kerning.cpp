#include "truetype/reader/kerning.h"

#include <compare>
#include <cstdio>
#include <cstdlib>
#include <optional>

#include "truetype/bytes.h"
#include "truetype/detail/bisect.h"
#include "truetype/detail/c_buffer.h"
#include "truetype/detail/font_views.h"
#include "truetype/format/kern.h"

namespace ulm::truetype {
namespace {

using detail::ByteView;
using detail::RecordView;
using format::AppleKern, format::AppleKernSubtable, format::Kern, format::KernPair;
using format::KernSubtable;

constexpr std::int32_t kNone = 0, kApple = 1, kMicrosoft = 2;
constexpr std::uint32_t kMinTableLength = 32;

void printUnimplemented() noexcept {
  std::fputs("MacOS kerning tables have not been implemented yet!\n", stderr);
}

// True if searching this subtable stays inside the image. Subtables with other coverage are never
// searched, so only their coverage has to be there.
bool staysInside(RecordView<KernSubtable> subtable) noexcept {
  const std::optional<std::uint16_t> coverage = subtable.read(KernSubtable::kCoverage);
  if (!coverage) return false;
  if ((*coverage & ~KernSubtable::kHorizontal) != 0) return true;
  const std::optional<std::uint16_t> pairs = subtable.read(KernSubtable::kPairCount);
  return pairs && (*pairs == 0 || subtable.holds(KernSubtable::kPairs, *pairs));
}

// What a request reads of a subtable that staysInside has passed: the coverage first, and of one
// that is searched the pairs.
class SearchableSubtable {
 public:
  explicit SearchableSubtable(const std::uint8_t* start) noexcept : start_(start) {}

  std::uint16_t coverage() const noexcept { return get(KernSubtable::kCoverage); }
  // The value of the pair, in font units; nothing if it is not there. The pairs are compared in the
  // order of a bisection. As long as the key is below all of them, these are the pairs before
  // (count + 1) / 2, (count + 1) / 4 and so on, which a shorter loop compares: most of the
  // subtables that a font has for other glyphs are left by that way.
  std::optional<std::int16_t> find(std::uint32_t key) const noexcept {
    const auto pair = [this](std::size_t index) {
      return format::FixedView<KernPair>::vouched(start_ + KernSubtable::kPairs.at(index));
    };
    std::size_t end = get(KernSubtable::kPairCount) + std::size_t{1};
    std::size_t next = end / 2;
    for (; next != 0 && key < pair(next - 1).get(KernPair::kKey); next /= 2) end = next;
    if (next == 0) return std::nullopt;
    if (pair(next - 1).get(KernPair::kKey) == key) return pair(next - 1).get(KernPair::kValue);
    const detail::Bisected found =
        detail::bisect({next, end - 1 - next}, 0,
                       [&](std::size_t index) { return pair(index).get(KernPair::kKey) <=> key; });
    if (found.size == 0) return std::nullopt;
    return pair(found.low).get(KernPair::kValue);
  }

 private:
  template <class Field>
  typename Field::Value get(Field field) const noexcept {
    return format::FixedView<KernSubtable, Field::kEnd>::vouched(start_).get(field);
  }

  const std::uint8_t* start_;
};

// The scaled value of the last subtable that holds the pair. Subtables of length 0 follow each
// other at one address, which is searched once.
std::optional<std::int32_t> searchAll(std::uint32_t count, const std::uint8_t* const* tables,
                                      std::int32_t unitsPerEm, std::int32_t vertical,
                                      std::uint32_t key) noexcept {
  const std::uint16_t coverage = vertical == 0 ? KernSubtable::kHorizontal : std::uint16_t{0};
  const std::uint8_t* searched = nullptr;
  for (std::uint32_t i = count; i-- > 0;) {
    if (tables[i] == searched || tables[i] == nullptr) continue;
    searched = tables[i];
    const SearchableSubtable subtable(searched);
    if (subtable.coverage() != coverage) continue;
    if (const auto value = subtable.find(key)) return scaleToThousandths(unitsPerEm, *value);
  }
  return std::nullopt;
}

}  // namespace

bool analyseKernTable(TrueTypeFont* font) noexcept {
  std::free(font->kernTables);  // those of an analysis before
  font->kernType = kNone;
  font->kernTableCount = 0;
  font->kernTables = nullptr;
  if (font->tables[kSlotKern] == nullptr || font->tableLengths[kSlotKern] < kMinTableLength) {
    return true;
  }
  const auto kern = detail::tableOf<Kern>(*font);
  const RecordView<AppleKern> appleKern(kern.bytes());
  const bool apple = kern.readOrZero(Kern::kVersion) != 0;
  if (apple && appleKern.readOrZero(AppleKern::kVersion) != AppleKern::kVersion1) return true;
  const std::uint32_t count =
      apple ? appleKern.readOrZero(AppleKern::kCount) : kern.readOrZero(Kern::kCount);
  font->kernTableCount = count;
  std::size_t position = apple ? AppleKern::kSize : Kern::kSize;
  if (apple && count > (kern.bytes().size() - position) / AppleKernSubtable::kLength.kEnd) {
    return true;
  }

  auto tables = detail::makeZeroedBuffer<const std::uint8_t*>(count);
  if (tables == nullptr) return false;
  for (std::uint32_t i = 0; i < count; ++i) {
    const ByteView bytes = kern.bytes().from(position);
    const RecordView<KernSubtable> subtable(bytes);
    const auto stored = apple
                            ? RecordView<AppleKernSubtable>(bytes).read(AppleKernSubtable::kLength)
                            : std::optional<std::uint32_t>(subtable.read(KernSubtable::kLength));
    if (!stored || *stored > bytes.size()) return true;
    if (apple || staysInside(subtable)) tables[i] = bytes.start();
    position += *stored;
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
