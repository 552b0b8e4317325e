// Single tables of an open font, by slot or by tag.
#pragma once

#include <cstdint>

#include "truetype/font.h"

namespace ulm::truetype {

// The slot of a tag, or -1 for a tag without one. "cvt " ends in a blank.
std::int32_t tableSlotForTag(std::uint32_t tag) noexcept;

// The slot's entry. `slot` is 0 to 16; the caller vouches for it.
const std::uint8_t* tableBySlot(const TrueTypeFont* font, std::int32_t slot) noexcept;
std::uint32_t tableLengthBySlot(const TrueTypeFont* font, std::int32_t slot) noexcept;

// The start of the table inside the image. Of a table without a slot, the directory's first entry
// counts. Null if the font lacks the table, if a table with a slot has length 0, and if the bytes
// of one without a slot leave the image.
const std::uint8_t* findTableByTag(const TrueTypeFont* font, std::uint32_t tag) noexcept;

// A copy of the table that findTableByTag finds, released with free; null if that is null, or
// without memory. A table without a slot that has no bytes gives an empty buffer. `outLength`,
// which may be null, receives the bytes copied.
std::uint8_t* copyTableByTag(const TrueTypeFont* font, std::uint32_t tag,
                             std::uint32_t* outLength) noexcept;

}  // namespace ulm::truetype
