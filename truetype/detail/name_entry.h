// One record of a font's name table.
#pragma once

#include <cstddef>

#include "truetype/format/byte_view.h"
#include "truetype/format/name.h"
#include "truetype/records.h"

namespace ulm::truetype::detail {

// The bytes of a record's string; none where one of them is outside the image.
inline format::ByteView nameString(format::RecordView<format::Name> names,
                                   std::size_t index) noexcept {
  using format::Name, format::NameEntry;
  const auto entry = names.at(Name::kEntries, index);
  const std::size_t start =
      std::size_t{names.readOrZero(Name::kStringOffset)} + entry.readOrZero(NameEntry::kOffset);
  return names.bytes()
      .sub(start, entry.readOrZero(NameEntry::kLength))
      .value_or(format::ByteView());
}

// The record's IDs, and its length as stored, without its string.
inline NameRecord nameKeys(format::RecordView<format::Name> names, std::size_t index) noexcept {
  using format::Name, format::NameEntry;
  const auto entry = names.at(Name::kEntries, index);
  return {entry.readOrZero(NameEntry::kPlatformID), entry.readOrZero(NameEntry::kEncodingID),
          entry.readOrZero(NameEntry::kLanguageID), entry.readOrZero(NameEntry::kNameID),
          entry.readOrZero(NameEntry::kLength),     nullptr};
}

}  // namespace ulm::truetype::detail
