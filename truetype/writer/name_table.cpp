// The names of a new font (OpenType, name, format 0).
#include <algorithm>
#include <cstring>

#include "truetype/writer/detail/payloads.h"

namespace ulm::truetype {
namespace {

using detail::CBuffer;
using detail::NamePayload;
using detail::put16;

constexpr std::uint32_t kHeader = 6;
constexpr std::uint32_t kRecord = 12;

// A record with its place in the list, which settles the order of equal keys.
struct Entry {
  const NameRecord* record;
  std::uint64_t keys;
  std::uint32_t place;
};

std::uint64_t keysOf(const NameRecord& record) noexcept {
  return std::uint64_t{record.platformID} << 48 | std::uint64_t{record.encodingID} << 32 |
         std::uint64_t{record.languageID} << 16 | record.nameID;
}

}  // namespace

void addNameRecord(WriterTable* nameTable, const NameRecord* record) noexcept {
  if (!detail::appendNameRecord(nameTable, *record, record->data, record->length)) {
    static_cast<NamePayload*>(nameTable->data)->incomplete = true;
  }
}

namespace detail {

bool appendNameRecord(WriterTable* nameTable, const NameRecord& keys, const std::uint8_t* bytes,
                      std::uint16_t length) noexcept {
  CBuffer<std::uint8_t> data;
  if (length != 0) {
    data = makeBuffer<std::uint8_t>(length);
    if (data == nullptr) return false;
    std::memcpy(data.get(), bytes, length);
  }
  CBuffer<NameRecord> copy = makeBuffer<NameRecord>(1);
  if (copy == nullptr) return false;
  TTList* records = listOf(nameTable);
  const std::uint32_t count = records->count;
  listAppend(records, copy.get());
  if (records->count == count) return false;
  *copy.release() = {keys.platformID, keys.encodingID, keys.languageID,
                     keys.nameID,     length,          data.release()};
  return true;
}

void freeNameRecord(void* record) noexcept {
  if (record == nullptr) return;
  std::free(static_cast<NameRecord*>(record)->data);
  std::free(record);
}

WriterResult makeNameImage(WriterTable* table, TableImage* out) noexcept {
  const auto& payload = *static_cast<const NamePayload*>(table->data);
  const TTList& records = payload.records;
  if (payload.incomplete) return WriterResultNoMemory;
  if (records.count == 0) return WriterResultNoData;
  const CBuffer<Entry> entries = makeBuffer<Entry>(records.count);
  if (entries == nullptr) return WriterResultNoMemory;
  std::uint64_t strings = 0;
  std::uint32_t count = 0;
  for (const TTListNode* node = records.first; node != nullptr; node = node->next, ++count) {
    const auto* record = static_cast<const NameRecord*>(node->item);
    entries[count] = {record, keysOf(*record), count};
    strings += record->length;
  }
  if (strings >= 0x10000) return WriterResultNameTooLong;
  const std::uint64_t stringOffset = kHeader + std::uint64_t{kRecord} * count;
  if (stringOffset > 0xFFFF) return WriterResultNameOutOfRange;
  std::sort(entries.get(), entries.get() + count, [](const Entry& a, const Entry& b) {
    return a.keys != b.keys ? a.keys < b.keys : a.place < b.place;
  });

  const auto length = static_cast<std::uint32_t>(stringOffset + strings);
  std::uint8_t* image = makeImage(table, length);
  if (image == nullptr) return WriterResultNoMemory;
  put16(image, 0, 0);
  put16(image, 2, count);
  put16(image, 4, static_cast<std::uint32_t>(stringOffset));
  std::uint32_t offset = 0;
  for (std::uint32_t i = 0; i < count; ++i) {
    const NameRecord& record = *entries[i].record;
    std::uint8_t* out16 = image + kHeader + std::size_t{kRecord} * i;
    put16(out16, 0, record.platformID);
    put16(out16, 2, record.encodingID);
    put16(out16, 4, record.languageID);
    put16(out16, 6, record.nameID);
    put16(out16, 8, record.length);
    put16(out16, 10, offset);
    if (record.length != 0) std::memcpy(image + stringOffset + offset, record.data, record.length);
    offset += record.length;
  }
  *out = {image, length, kTagName};
  return WriterResultOk;
}

}  // namespace detail
}  // namespace ulm::truetype
