// The name table: texts by platform, encoding, language and kind.
#pragma once

#include <cstdint>

#include "truetype/format/field.h"

namespace ulm::truetype::format {

struct NameEntry {
  static constexpr std::size_t kSize = 12;
  static constexpr Field<NameEntry, std::uint16_t, 0> kPlatformID{};
  static constexpr Field<NameEntry, std::uint16_t, 2> kEncodingID{};
  static constexpr Field<NameEntry, std::uint16_t, 4> kLanguageID{};
  static constexpr Field<NameEntry, std::uint16_t, 6> kNameID{};
  static constexpr Field<NameEntry, std::uint16_t, 8> kLength{};   // bytes
  static constexpr Field<NameEntry, std::uint16_t, 10> kOffset{};  // from the start of the strings
  // The four IDs as one number, by which entries are sorted: key() of them.
  static constexpr Field<NameEntry, std::uint64_t, 0> kKey{};

  static constexpr std::uint64_t key(std::uint16_t platformID, std::uint16_t encodingID,
                                     std::uint16_t languageID, std::uint16_t nameID) noexcept {
    return std::uint64_t{platformID} << 48 | std::uint64_t{encodingID} << 32 |
           std::uint64_t{languageID} << 16 | nameID;
  }
};

struct Name {
  static constexpr std::uint32_t kTag = tag("name");

  static constexpr std::size_t kSize = 6;
  static constexpr Field<Name, std::uint16_t, 0> kFormat{};
  static constexpr Field<Name, std::uint16_t, 2> kCount{};
  static constexpr Field<Name, std::uint16_t, 4> kStringOffset{};  // from the start of the table
  static constexpr Array<Name, NameEntry, kSize> kEntries{};       // kCount of them
};

// A string of the Unicode and Windows platforms.
struct Utf16 {
  static constexpr Array<Utf16, std::uint16_t, 0> kUnits{};
};

}  // namespace ulm::truetype::format
