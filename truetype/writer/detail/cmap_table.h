// The cmap table of a new font.
#pragma once

#include <cstddef>
#include <cstdint>

#include "truetype/writer/detail/table_object.h"
#include "truetype/writer/table.h"

namespace ulm::truetype::detail {

inline CmapTableData& cmapOf(const WriterTable* table) noexcept {
  return *static_cast<CmapTableData*>(table->data);
}

WriterTable* makeEmptyCmapTable() noexcept;  // null without memory
void disposeCmap(WriterTable* table) noexcept;

// addCharMapping, and the same of `count` pairs at once, the glyphs being new indices or -1.
void appendMapping(WriterTable* cmapTable, std::uint32_t charCode, std::uint32_t glyphId) noexcept;
void appendMappings(WriterTable* cmapTable, const std::uint16_t* charCodes,
                    const std::int32_t* glyphIds, std::size_t count) noexcept;

// The image handler: WriterResultCmapTooLarge or WriterResultNoMemory, with `out` as it was.
WriterResult makeCmapImage(WriterTable* table, TableImage* out) noexcept;

}  // namespace ulm::truetype::detail
