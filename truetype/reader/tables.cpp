#include "truetype/reader/tables.h"

#include <optional>

#include "truetype/detail/c_buffer.h"
#include "truetype/detail/font_views.h"
#include "truetype/format/directory.h"

namespace ulm::truetype {
namespace {

using detail::ByteView;
using format::OffsetTable;
using format::TableEntry;

std::optional<ByteView> findTable(const TrueTypeFont& font, std::uint32_t tag) noexcept {
  const ByteView image = detail::imageView(font);
  const std::int32_t slot = tableSlotForTag(tag);
  if (slot >= 0) {
    if (font.tableLengths[slot] == 0) return std::nullopt;
    return ByteView(font.tables[slot], font.tableLengths[slot]);
  }
  const detail::RecordView<OffsetTable> face(image.from(font.directoryOffset));
  for (std::size_t i = 0; i < font.tableCount; ++i) {
    const auto entry = face.at(OffsetTable::kTables, i);
    if (entry.readOrZero(TableEntry::kTag) != tag) continue;
    return image.sub(entry.readOrZero(TableEntry::kOffset), entry.readOrZero(TableEntry::kLength));
  }
  return std::nullopt;
}

}  // namespace

std::int32_t tableSlotForTag(std::uint32_t tag) noexcept { return detail::slotForTag(tag); }

const std::uint8_t* tableBySlot(const TrueTypeFont* font, std::int32_t slot) noexcept {
  return font->tables[slot];
}

std::uint32_t tableLengthBySlot(const TrueTypeFont* font, std::int32_t slot) noexcept {
  return font->tableLengths[slot];
}

const std::uint8_t* findTableByTag(const TrueTypeFont* font, std::uint32_t tag) noexcept {
  const std::optional<ByteView> table = findTable(*font, tag);
  return table ? table->start() : nullptr;
}

std::uint8_t* copyTableByTag(const TrueTypeFont* font, std::uint32_t tag,
                             std::uint32_t* outLength) noexcept {
  if (outLength != nullptr) *outLength = 0;
  const std::optional<ByteView> table = findTable(*font, tag);
  if (!table) return nullptr;
  auto copy = detail::makeBuffer<std::uint8_t>(table->size());
  if (copy == nullptr || !table->copy(0, table->size(), copy.get())) return nullptr;
  if (outLength != nullptr) *outLength = static_cast<std::uint32_t>(table->size());
  return copy.release();
}

}  // namespace ulm::truetype
