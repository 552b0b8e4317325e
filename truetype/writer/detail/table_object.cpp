#include "truetype/writer/detail/table_object.h"

#include <cassert>
#include <utility>

#include "truetype/format/directory.h"

namespace ulm::truetype::detail {

WriterTable* makeRawTable(std::uint32_t tag, std::uint32_t length,
                          CBuffer<std::uint8_t> bytes) noexcept {
  CBuffer<RawTableData> payload = makeBuffer<RawTableData>(1);
  if (payload == nullptr) return nullptr;
  for (std::size_t i = length; i < format::padded(length); ++i) bytes[i] = 0;
  RawTableData& raw = payload[0];
  raw = {tag, length, nullptr};
  WriterTable* table = makeTable(kTagRaw, std::move(payload));
  if (table != nullptr) raw.bytes = bytes.release();
  return table;
}

NewBytes::NewBytes(std::size_t length) noexcept
    : bytes_(makeBuffer<std::uint8_t>(static_cast<std::size_t>(format::padded(length)))),
      length_(length) {
  for (std::size_t i = length; bytes_ != nullptr && i < format::padded(length); ++i) bytes_[i] = 0;
}

WriterResult NewBytes::release(CBuffer<std::uint8_t>* out) noexcept {
  assert(!overflowed_);
  if (overflowed_) return WriterResultBadTable;
  *out = std::move(bytes_);
  return WriterResultOk;
}

WriterResult NewBytes::becomeImage(WriterTable* table, std::uint32_t tag,
                                   TableImage* out) noexcept {
  CBuffer<std::uint8_t> image;
  const WriterResult result = release(&image);
  if (result != WriterResultOk) return result;
  table->image = image.release();
  *out = {table->image, static_cast<std::uint32_t>(length_), tag};
  return WriterResultOk;
}

}  // namespace ulm::truetype::detail
