// The names of a font: their text, and the records of a new family.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "command/font/font_file.h"

namespace ulm::tools {

// Returns the characters of a name record: UTF-16 on the Unicode and Windows platforms, with U+FFFD
// for an unpaired surrogate; Mac Roman in encoding 0 of the Macintosh platform; otherwise Latin-1.
std::u32string charactersOf(const truetype::NameRecord& record);

struct FontNames {
  std::u32string family, style, postScript;
};

// Returns the names in the font's record without the loss of its narrow texts, which hold only the
// low byte of each UTF-16 unit. They come from the same name records.
FontNames fontNames(const FontFile& font);

// The name records of a new family: family, style, full name and PostScript name, each for Windows,
// and for the Macintosh if it is ASCII. The object owns the strings.
class FamilyNames {
 public:
  // `style` is the source's style; control characters are removed, and it is cut at 255 characters.
  // An empty style becomes "Regular". Throws std::runtime_error unless `family` is UTF-8 of 1 to
  // 255 characters without control characters.
  FamilyNames(const std::string& family, const std::u32string& style);
  FamilyNames(const FamilyNames&) = delete;
  FamilyNames& operator=(const FamilyNames&) = delete;

  // The records borrow strings of this object.
  const std::vector<truetype::NameRecord>& records() const { return records_; }

 private:
  void add(std::uint16_t nameID, const std::u32string& text);
  std::vector<std::vector<std::uint8_t>> strings_;
  std::vector<truetype::NameRecord> records_;
};

}  // namespace ulm::tools
