// What the kinds of table objects share: how an object is made, and the image of its bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "truetype/detail/c_buffer.h"
#include "truetype/format/byte_sink.h"
#include "truetype/writer/result.h"
#include "truetype/writer/table.h"

namespace ulm::truetype::detail {

// An object that takes over its payload. Null, the payload being freed, where the payload is null
// or memory runs out.
template <class Payload>
WriterTable* makeTable(std::uint32_t tag, CBuffer<Payload> payload) noexcept {
  if (payload == nullptr) return nullptr;
  auto* table = static_cast<WriterTable*>(std::malloc(sizeof(WriterTable)));
  if (table != nullptr) *table = {tag, nullptr, payload.release()};
  return table;
}

// A raw table that takes over `bytes`, which may be null with length 0. The buffer has `length`
// bytes and room up to a multiple of 4, which is filled with zeros. Null without memory, the bytes
// being freed.
WriterTable* makeRawTable(std::uint32_t tag, std::uint32_t length,
                          CBuffer<std::uint8_t> bytes) noexcept;

// The outputs of getTableImage.
struct TableImage {
  const std::uint8_t* bytes;
  std::uint32_t length;
  std::uint32_t tag;
};

// Bytes of a new font while they are made: a buffer with room up to a multiple of 4, the padding
// zero and the rest unset, filled through a sink.
class NewBytes {
 public:
  explicit NewBytes(std::size_t length) noexcept;

  bool hasMemory() const noexcept { return bytes_ != nullptr; }
  // The bytes without the padding.
  format::ByteSink sink() noexcept { return {bytes_.get(), length_, &overflowed_}; }

  // Each hands out the buffer, to the caller or as the image of a table. WriterResultBadTable, with
  // the outputs as they were, where a write did not fit.
  WriterResult release(CBuffer<std::uint8_t>* out) noexcept;
  WriterResult becomeImage(WriterTable* table, std::uint32_t tag, TableImage* out) noexcept;

 private:
  CBuffer<std::uint8_t> bytes_;
  std::size_t length_;
  bool overflowed_ = false;
};

}  // namespace ulm::truetype::detail
