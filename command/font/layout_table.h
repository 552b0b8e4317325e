// The bytes of GSUB or GPOS, read by the descriptions of truetype/format/layout.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "command/font/font_file.h"
#include "truetype/format/byte_view.h"
#include "truetype/format/field.h"
#include "truetype/reader/tables.h"

namespace ulm::tools {

// A copy of a table. A read beyond its end returns 0. The number of reads is bounded, because in a
// table whose parts overlap the work could grow with the square of its size or worse; every read
// after the bound is reached returns 0.
class LayoutTable {
 public:
  LayoutTable(const FontFile& font, std::uint32_t tag)
      : bytes_(takeBlock(truetype::copyTableByTag(font.get(), tag, &length_))) {
    if (bytes_ == nullptr) length_ = 0;
  }
  bool empty() const { return length_ == 0; }
  bool isExhausted() const { return work_ > kMaxWork; }
  // Counts work that reads no bytes.
  void charge(std::uint64_t work) const { work_ += work; }
  // Returns the number of a field, or of an element of an array, of the record at offset `base`.
  template <class Record, std::size_t Offset>
  std::uint32_t u16(std::size_t base,
                    truetype::format::Field<Record, std::uint16_t, Offset>) const {
    return number(base + Offset);
  }
  template <class Record, std::size_t Offset>
  std::uint32_t u16(std::size_t base, truetype::format::Array<Record, std::uint16_t, Offset> array,
                    std::size_t index) const {
    return number(base + array.at(index));
  }
  template <class Record, std::size_t Offset>
  std::uint32_t u32(std::size_t base,
                    truetype::format::Field<Record, std::uint32_t, Offset>) const {
    const std::size_t upper = base + Offset;
    return number(upper) << 16 | number(upper + truetype::format::kElementSize<std::uint16_t>);
  }
  // Reads the 16-bit offset in a field or an element of the record at `base`, to which it is
  // relative, and returns the offset in the table. For the null offset 0 the result is beyond the
  // end of the table.
  template <class... Member>
  std::size_t target(std::size_t base, Member... member) const {
    return resolve(base, u16(base, member...));
  }
  // Returns the offset in the table for an offset that is relative to `base`.
  static std::size_t resolve(std::size_t base, std::size_t offset) {
    return offset == 0 ? kBeyondEnd : base + offset;
  }

 private:
  static constexpr std::size_t kBeyondEnd = SIZE_MAX / 2;
  static constexpr std::uint64_t kMaxWork = 20'000'000;

  std::uint32_t number(std::size_t offset) const {
    if (++work_ > kMaxWork) return 0;
    return truetype::format::ByteView(bytes_.get(), length_).readOrZero<std::uint16_t>(offset);
  }

  std::uint32_t length_ = 0;
  std::unique_ptr<std::uint8_t[], FreeBlock> bytes_;
  mutable std::uint64_t work_ = 0;
};

}  // namespace ulm::tools
