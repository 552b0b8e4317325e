#include "truetype/glyph/placement.h"

#include "truetype/format/glyf.h"

namespace ulm::truetype::detail {
namespace {

using format::Component;

std::int32_t largerDoubledIfAlike(std::int32_t one, std::int32_t other) noexcept {
  const std::int32_t p = one < 0 ? -one : one;
  const std::int32_t q = other < 0 ? -other : other;
  const std::int32_t larger = p > q ? p : q;
  const std::int32_t apart = p > q ? p - q : q - p;
  return apart <= 33 ? larger * 2 : larger;  // 33 / 65536
}

// The sign of a number in all bits, and the bits with a sign.
std::uint32_t signOf(std::uint32_t bits) noexcept { return 0u - (bits >> 31); }
std::uint32_t withSign(std::uint32_t bits, std::uint32_t sign) noexcept {
  return (bits ^ sign) - sign;
}

// What gives one coordinate: the two weighted ones, each divided by the row's factor, plus the
// offset, and all of it multiplied by that factor. The arithmetic is that of fixedMultiplyDivide
// and fixedMultiply, shortened for coordinates without a fraction. A factor of 0 leaves the offset.
class Row {
 public:
  Row(std::int32_t weightX, std::int32_t weightY, std::int32_t factor,
      std::uint16_t offset) noexcept
      : weightX_(static_cast<std::uint32_t>(weightX)),
        weightY_(static_cast<std::uint32_t>(weightY)),
        factor_(static_cast<std::uint32_t>(factor)),
        offset_(offset) {}

  std::uint16_t at(std::int16_t x, std::int16_t y) const noexcept {
    if (factor_ == 0) return offset_;
    std::uint32_t sum = std::uint32_t{offset_} << 16;
    // A weight of 0 adds nothing, and is the common case.
    if (weightX_ != 0) sum += weighted(weightX_, x);
    if (weightY_ != 0) sum += weighted(weightY_, y);
    const std::uint32_t sign = signOf(sum);
    const std::uint64_t product = std::uint64_t{withSign(sum, sign)} * factor_;
    return static_cast<std::uint16_t>(withSign(static_cast<std::uint32_t>(product >> 16), sign) >>
                                      16);
  }

 private:
  std::uint32_t weighted(std::uint32_t weight, std::int16_t coordinate) const noexcept {
    const std::uint32_t product =
        weight * static_cast<std::uint32_t>(std::int32_t{coordinate});  // modulo 2^32
    const std::uint32_t sign = signOf(product);
    const std::uint32_t magnitude = withSign(product, sign);
    const std::uint32_t quotient = magnitude / factor_;
    const std::uint32_t remainder = magnitude % factor_;
    // Remainder and divisor are halved until the remainder has 16 bits. It is below 2^18.
    const std::uint32_t halvings = (remainder > 0xFFFF ? 1u : 0u) + (remainder > 0x1FFFF ? 1u : 0u);
    const std::uint32_t fraction = (remainder >> halvings << 16) / (factor_ >> halvings);
    return withSign(fraction + (quotient << 16), sign);
  }

  std::uint32_t weightX_, weightY_;  // 16.16, as is the factor
  std::uint32_t factor_;             // at most 4.0
  std::uint16_t offset_;
};

}  // namespace

PointOffset readOffset(ByteView glyph, const ComponentRecord& record) noexcept {
  const RecordView<Component> arguments(glyph.from(record.offset));
  if ((record.flags & Component::kArgumentsAreWords) != 0) {
    return {arguments.readOrZero(Component::kWords, 0), arguments.readOrZero(Component::kWords, 1)};
  }
  const bool areSigned = (record.flags & Component::kArgumentsAreSigned) != 0;
  const auto argument = [&](std::size_t index) {
    const std::int32_t byte = arguments.readOrZero(Component::kBytes, index);
    return static_cast<std::uint16_t>(areSigned && byte > 0x7F ? byte - 0x100 : byte);
  };
  return {argument(0), argument(1)};
}

void placePoints(ByteView glyph, const ComponentRecord& record, PointOffset then,
                 GlyphPoint* points, std::uint32_t count) noexcept {
  const std::uint16_t flags = record.flags;
  const auto value = [&](std::size_t index) {  // 2.14 into 16.16
    return glyph.readOrZero<std::int16_t>(record.offset + Component::scale(flags, index)) * 4;
  };
  std::int32_t a = 0x10000, b = 0, c = 0, d = 0x10000;
  if ((flags & Component::kHasScale) != 0) {
    a = d = value(0);
  } else if ((flags & Component::kHasTwoScales) != 0) {
    a = value(0);
    d = value(1);
  } else if ((flags & Component::kHasMatrix) != 0) {
    a = value(0);
    b = value(1);
    c = value(2);
    d = value(3);
  }
  const PointOffset offset = readOffset(glyph, record);
  const Row toX(a, c, largerDoubledIfAlike(a, b), offset.x);
  const Row toY(b, d, largerDoubledIfAlike(c, d), offset.y);
  for (GlyphPoint* point = points; point != points + count; ++point) {
    const std::int16_t x = point->x, y = point->y;
    point->x = static_cast<std::int16_t>(toX.at(x, y) + then.x);
    point->y = static_cast<std::int16_t>(toY.at(x, y) + then.y);
  }
}

}  // namespace ulm::truetype::detail
