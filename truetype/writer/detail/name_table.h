// The name table of a new font.
#pragma once

#include <cstdint>

#include "truetype/list.h"
#include "truetype/records.h"
#include "truetype/writer/detail/table_object.h"
#include "truetype/writer/table.h"

namespace ulm::truetype::detail {

// The list comes first, so that the payload is also the list.
struct NamePayload {
  TTList records;
  bool incomplete;  // a record was lost for want of memory
};

inline NamePayload& namesOf(const WriterTable* table) noexcept {
  return *static_cast<NamePayload*>(table->data);
}

WriterTable* makeEmptyNameTable() noexcept;  // null without memory
void disposeNames(WriterTable* table) noexcept;

// Appends a record with the IDs of `keys` and a copy of `length` bytes. False without memory, the
// list being as it was.
bool appendNameRecord(WriterTable* nameTable, const NameRecord& keys, const std::uint8_t* bytes,
                      std::uint16_t length) noexcept;

// The image handler: WriterResultNoData, WriterResultNameTooLong, WriterResultNameOutOfRange or
// WriterResultNoMemory, with `out` as it was.
WriterResult makeNameImage(WriterTable* table, TableImage* out) noexcept;

}  // namespace ulm::truetype::detail
