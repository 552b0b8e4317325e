// Which table each slot of a font's record is for.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "truetype/font.h"
#include "truetype/format/cmap.h"
#include "truetype/format/directory.h"
#include "truetype/format/field.h"
#include "truetype/format/glyf.h"
#include "truetype/format/head.h"
#include "truetype/format/hhea.h"
#include "truetype/format/hmtx.h"
#include "truetype/format/kern.h"
#include "truetype/format/maxp.h"
#include "truetype/format/name.h"
#include "truetype/format/os2.h"
#include "truetype/format/post.h"

namespace ulm::truetype::detail {

// The tag of each slot.
inline constexpr std::array<std::uint32_t, kTableSlotCount> kSlotTags = [] {
  std::array<std::uint32_t, kTableSlotCount> tags{};
  tags[kSlotMaxp] = format::Maxp::kTag;
  tags[kSlotGlyf] = format::GlyphHeader::kGlyfTag;
  tags[kSlotHead] = format::Head::kTag;
  tags[kSlotLoca] = format::Loca::kTag;
  tags[kSlotName] = format::Name::kTag;
  tags[kSlotHhea] = format::Hhea::kTag;
  tags[kSlotHmtx] = format::LongMetrics::kHmtxTag;
  tags[kSlotCmap] = format::Cmap::kTag;
  tags[kSlotVhea] = format::Vhea::kTag;
  tags[kSlotVmtx] = format::LongMetrics::kVmtxTag;
  tags[kSlotOs2] = format::Os2::kTag;
  tags[kSlotPost] = format::Post::kTag;
  tags[kSlotKern] = format::Kern::kTag;
  tags[kSlotCvt] = format::kCvtTag;
  tags[kSlotPrep] = format::kPrepTag;
  tags[kSlotFpgm] = format::kFpgmTag;
  tags[kSlotGsub] = format::kGsubTag;
  return tags;
}();

// -1 for a tag without a slot. A chain of comparisons that compilers turn into a decision tree.
constexpr std::int32_t slotForTag(std::uint32_t tag) noexcept {
  std::int32_t slot = -1;
  [&]<std::size_t... Slots>(std::index_sequence<Slots...>) {
    (void)((tag == kSlotTags[Slots] && (slot = Slots, true)) || ...);
  }
  (std::make_index_sequence<kTableSlotCount>());
  return slot;
}

// The slot of a table that truetype/format describes.
template <class Table>
inline constexpr auto kSlotOf = static_cast<TableSlot>(slotForTag(Table::kTag));

}  // namespace ulm::truetype::detail
