#include "truetype/reader/tables.h"

#include <optional>

#include "truetype/detail/byte_view.h"
#include "truetype/detail/c_buffer.h"

namespace ulm::truetype {
namespace {

using detail::ByteView;

consteval std::uint32_t tagOf(const char (&text)[5]) {
  std::uint32_t tag = 0;
  for (int i = 0; i < 4; ++i) tag = tag << 8 | static_cast<std::uint8_t>(text[i]);
  return tag;
}

std::optional<ByteView> findTable(const TrueTypeFont& font, std::uint32_t tag) noexcept {
  const ByteView image = detail::imageView(font);
  const std::int32_t slot = tableSlotForTag(tag);
  if (slot >= 0) {
    if (font.tableLengths[slot] == 0) return std::nullopt;
    return ByteView(font.tables[slot], font.tableLengths[slot]);
  }
  const ByteView directory = image.from(std::size_t{font.directoryOffset} + 12);
  for (std::size_t i = 0; i < font.tableCount; ++i) {
    if (directory.readOrZero<std::uint32_t>(16 * i) != tag) continue;
    return image.sub(directory.readOrZero<std::uint32_t>(16 * i + 8),
                     directory.readOrZero<std::uint32_t>(16 * i + 12));
  }
  return std::nullopt;
}

}  // namespace

std::int32_t tableSlotForTag(std::uint32_t tag) noexcept {
  switch (tag) {
    case tagOf("maxp"):
      return kSlotMaxp;
    case tagOf("glyf"):
      return kSlotGlyf;
    case tagOf("head"):
      return kSlotHead;
    case tagOf("loca"):
      return kSlotLoca;
    case tagOf("name"):
      return kSlotName;
    case tagOf("hhea"):
      return kSlotHhea;
    case tagOf("hmtx"):
      return kSlotHmtx;
    case tagOf("cmap"):
      return kSlotCmap;
    case tagOf("vhea"):
      return kSlotVhea;
    case tagOf("vmtx"):
      return kSlotVmtx;
    case tagOf("OS/2"):
      return kSlotOs2;
    case tagOf("post"):
      return kSlotPost;
    case tagOf("kern"):
      return kSlotKern;
    case tagOf("cvt "):
      return kSlotCvt;
    case tagOf("prep"):
      return kSlotPrep;
    case tagOf("fpgm"):
      return kSlotFpgm;
    case tagOf("GSUB"):
      return kSlotGsub;
    default:
      return -1;
  }
}

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
