// Builds the resources of a library on systems without resource files: a version block and a string
// table, as constants in sections of the library's file. The emulated system reads them from the
// file.
//   .rsrc_version  one version block in the layout of the VERSIONINFO resource: length, value
//                  length, type 0, the key "VS_VERSION_INFO" in UTF-16, padding to 4 bytes, the
//                  fixed file information.
//   .rsrc_strings  consecutive string entries: number (16 bits, from 1), length in UTF-16 units (16
//                  bits), the units. Zeros between entries are padding. The table ends with the
//                  section.
// All numbers are little-endian.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace ulm::win32 {

// Returns the number whose bytes in memory are those of `value` with the low byte first.
template <class Number>
constexpr Number lowByteFirst(Number value) noexcept {
  if constexpr (std::endian::native == std::endian::little) return value;
  std::uint64_t swapped = 0;
  for (std::size_t i = 0; i < sizeof(Number); ++i) {
    swapped = swapped << 8 | (static_cast<std::uint64_t>(value) >> 8 * i & 0xFF);
  }
  return static_cast<Number>(swapped);
}

struct VersionBlock {
  std::uint16_t length = lowByteFirst<std::uint16_t>(sizeof(VersionBlock));
  std::uint16_t valueLength = lowByteFirst<std::uint16_t>(52);
  std::uint16_t type = 0;
  char16_t key[16] = {};
  std::uint16_t padding = 0;
  std::uint32_t signature = lowByteFirst<std::uint32_t>(0xFEEF04BD);
  std::uint32_t structureVersion = lowByteFirst<std::uint32_t>(0x00010000);
  std::uint32_t fileVersion[2];     // high half, low half: four 16-bit numbers
  std::uint32_t productVersion[2];  // as fileVersion
  std::uint32_t flagsMask = lowByteFirst<std::uint32_t>(0x3F);
  std::uint32_t flags = 0;
  std::uint32_t os = lowByteFirst<std::uint32_t>(0x00040004);
  std::uint32_t fileType = lowByteFirst<std::uint32_t>(2);
  std::uint32_t fileSubtype = 0;
  std::uint32_t date[2] = {0, 0};

  struct Numbers {
    std::uint16_t first, second, third, fourth;
  };
  constexpr VersionBlock(const Numbers& file, const Numbers& product) noexcept
      : fileVersion{pair(file.first, file.second), pair(file.third, file.fourth)},
        productVersion{pair(product.first, product.second), pair(product.third, product.fourth)} {
    for (std::size_t i = 0; i + 1 < std::size(key); ++i)
      key[i] = lowByteFirst(u"VS_VERSION_INFO"[i]);
  }

 private:
  static constexpr std::uint32_t pair(std::uint32_t high, std::uint32_t low) noexcept {
    return lowByteFirst(high << 16 | low);
  }
};
static_assert(sizeof(VersionBlock) == 92, "the block has no hidden padding");

// One entry of a string table. A table is a struct whose members are entries.
template <std::size_t Length>  // in UTF-16 units, without a terminator
struct StringEntry {
  std::uint16_t number;
  std::uint16_t length = lowByteFirst<std::uint16_t>(Length);
  char16_t text[Length];

  // From a literal of UTF-16 units, or of ASCII characters.
  template <class Character>
  constexpr StringEntry(std::uint16_t stringNumber, const Character (&literal)[Length + 1]) noexcept
      : number(lowByteFirst(stringNumber)), text{} {
    for (std::size_t i = 0; i < Length; ++i)
      text[i] = lowByteFirst(static_cast<char16_t>(literal[i]));
  }
};
template <class Character, std::size_t Size>
StringEntry(std::uint16_t, const Character (&)[Size]) -> StringEntry<Size - 1>;

}  // namespace ulm::win32

#define ULM_VERSION_RESOURCE [[gnu::section(".rsrc_version"), gnu::used]]
#define ULM_STRING_RESOURCE [[gnu::section(".rsrc_strings"), gnu::used]]
