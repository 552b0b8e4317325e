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

namespace ulm::win32 {

static_assert(std::endian::native == std::endian::little,
              "the constants below are stored in the byte order of the machine");

struct VersionBlock {
  std::uint16_t length = sizeof(VersionBlock);
  std::uint16_t valueLength = 52;
  std::uint16_t type = 0;
  char16_t key[16] = u"VS_VERSION_INFO";
  std::uint16_t padding = 0;
  std::uint32_t signature = 0xFEEF04BD;
  std::uint32_t structureVersion = 0x00010000;
  std::uint32_t fileVersion[2];     // high half, low half: four 16-bit numbers
  std::uint32_t productVersion[2];  // as fileVersion
  std::uint32_t flagsMask = 0x3F;
  std::uint32_t flags = 0;
  std::uint32_t os = 0x00040004;
  std::uint32_t fileType = 2;
  std::uint32_t fileSubtype = 0;
  std::uint32_t date[2] = {0, 0};

  struct Numbers {
    std::uint16_t first, second, third, fourth;
  };
  constexpr VersionBlock(const Numbers& file, const Numbers& product) noexcept
      : fileVersion{pair(file.first, file.second), pair(file.third, file.fourth)},
        productVersion{pair(product.first, product.second), pair(product.third, product.fourth)} {}

 private:
  static constexpr std::uint32_t pair(std::uint32_t high, std::uint32_t low) noexcept {
    return high << 16 | low;
  }
};
static_assert(sizeof(VersionBlock) == 92, "the block has no hidden padding");

// One entry of a string table. A table is a struct whose members are entries.
template <std::size_t Length>  // in UTF-16 units, without a terminator
struct StringEntry {
  std::uint16_t number;
  std::uint16_t length = Length;
  char16_t text[Length];

  // From a literal of UTF-16 units, or of ASCII characters.
  template <class Character>
  constexpr StringEntry(std::uint16_t stringNumber, const Character (&literal)[Length + 1]) noexcept
      : number(stringNumber), text{} {
    for (std::size_t i = 0; i < Length; ++i) text[i] = static_cast<char16_t>(literal[i]);
  }
};
template <class Character, std::size_t Size>
StringEntry(std::uint16_t, const Character (&)[Size]) -> StringEntry<Size - 1>;

}  // namespace ulm::win32

#define ULM_VERSION_RESOURCE [[gnu::section(".rsrc_version"), gnu::used]]
#define ULM_STRING_RESOURCE [[gnu::section(".rsrc_strings"), gnu::used]]
