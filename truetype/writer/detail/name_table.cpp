#include "truetype/writer/detail/name_table.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "truetype/detail/c_buffer.h"
#include "truetype/format/byte_sink.h"
#include "truetype/format/name.h"

namespace ulm::truetype::detail {
namespace {

using format::Name, format::NameEntry;

constexpr std::uint64_t kMaxStrings = 0xFFFF;  // bytes

// A record with its index in the list, which settles the order of equal keys.
struct SortedRecord {
  const NameRecord* record;
  std::uint64_t key;
  std::uint32_t index;
};

// Fills an array with the records of the list; returns the bytes of their strings.
std::uint64_t readRecords(const TTList& records, SortedRecord* out) noexcept {
  std::uint64_t strings = 0;
  std::uint32_t count = 0;
  for (const TTListNode* node = records.first; node != nullptr; node = node->next, ++count) {
    const auto& record = *static_cast<const NameRecord*>(node->item);
    const std::uint64_t key =
        NameEntry::key(record.platformID, record.encodingID, record.languageID, record.nameID);
    out[count] = {&record, key, count};
    strings += record.length;
  }
  return strings;
}

// The header, the records and their strings.
void writeTable(const SortedRecord* records, std::uint16_t count, format::ByteSink out) noexcept {
  const format::RecordSink<Name> table(out);
  const auto stringOffset = static_cast<std::uint16_t>(Name::kEntries.at(count));
  table.put(Name::kFormat, 0);
  table.put(Name::kCount, count);
  table.put(Name::kStringOffset, stringOffset);
  std::uint16_t offset = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const NameRecord& record = *records[i].record;
    const auto entry = table.at(Name::kEntries, i);
    entry.put(NameEntry::kPlatformID, record.platformID);
    entry.put(NameEntry::kEncodingID, record.encodingID);
    entry.put(NameEntry::kLanguageID, record.languageID);
    entry.put(NameEntry::kNameID, record.nameID);
    entry.put(NameEntry::kLength, record.length);
    entry.put(NameEntry::kOffset, offset);
    out.copy(std::size_t{stringOffset} + offset, {record.data, record.length});
    offset = static_cast<std::uint16_t>(offset + record.length);
  }
}

void freeRecord(void* record) noexcept {
  if (record == nullptr) return;
  std::free(static_cast<NameRecord*>(record)->data);
  std::free(record);
}

}  // namespace

WriterTable* makeEmptyNameTable() noexcept {
  CBuffer<NamePayload> payload = makeZeroedBuffer<NamePayload>(1);
  if (payload == nullptr) return nullptr;
  listSetDestructor(&payload[0].records, freeRecord);
  return makeTable(kTagName, std::move(payload));
}

void disposeNames(WriterTable* table) noexcept {
  listClear(&namesOf(table).records);
  std::free(table->data);
}

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
  TTList* records = &namesOf(nameTable).records;
  const std::uint32_t count = records->count;
  listAppend(records, copy.get());
  if (records->count == count) return false;
  *copy.release() = {keys.platformID, keys.encodingID, keys.languageID,
                     keys.nameID,     length,          data.release()};
  return true;
}

WriterResult makeNameImage(WriterTable* table, TableImage* out) noexcept {
  const TTList& records = namesOf(table).records;
  if (namesOf(table).incomplete) return WriterResultNoMemory;
  if (records.count == 0) return WriterResultNoData;
  const CBuffer<SortedRecord> sorted = makeZeroedBuffer<SortedRecord>(records.count);
  if (sorted == nullptr) return WriterResultNoMemory;
  const std::uint64_t strings = readRecords(records, sorted.get());
  if (strings > kMaxStrings) return WriterResultNameTooLong;
  const std::uint64_t stringOffset = Name::kEntries.at(records.count);
  if (stringOffset > UINT16_MAX) return WriterResultNameOutOfRange;
  std::sort(sorted.get(), sorted.get() + records.count,
            [](const SortedRecord& a, const SortedRecord& b) {
              return a.key != b.key ? a.key < b.key : a.index < b.index;
            });
  NewBytes image(static_cast<std::size_t>(stringOffset + strings));
  if (!image.hasMemory()) return WriterResultNoMemory;
  writeTable(sorted.get(), static_cast<std::uint16_t>(records.count), image.sink());
  return image.becomeImage(table, kTagName, out);
}

}  // namespace ulm::truetype::detail
