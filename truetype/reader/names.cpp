#include "truetype/reader/names.h"

#include <cstdlib>
#include <cstring>

#include "truetype/detail/byte_view.h"
#include "truetype/detail/c_buffer.h"

namespace ulm::truetype {
namespace {

using detail::ByteView;
using detail::CBuffer;

constexpr std::size_t kRecords = 6, kRecordSize = 12;
constexpr std::uint16_t kFamilyName = 1, kSubfamilyName = 2, kPostScriptName = 6;
constexpr std::uint16_t kUnicode = 0, kMacintosh = 1, kWindows = 3;
constexpr std::uint16_t kEnglish = 1033, kJapanese = 1041;

std::size_t recordOffset(std::size_t index) noexcept { return kRecords + index * kRecordSize; }

// The bytes of a record's string; none where they leave the image.
ByteView stringOf(ByteView names, std::size_t index) noexcept {
  const std::size_t record = recordOffset(index);
  const std::size_t start = std::size_t{names.readOrZero<std::uint16_t>(4)} +
                            names.readOrZero<std::uint16_t>(record + 10);
  return names.sub(start, names.readOrZero<std::uint16_t>(record + 8)).value_or(ByteView());
}

CBuffer<char> makeText(const void* characters, std::size_t length) noexcept {
  CBuffer<char> text = detail::makeBuffer<char>(length + 1);
  if (text == nullptr) return nullptr;
  if (length != 0) std::memcpy(text.get(), characters, length);
  text[length] = '\0';
  return text;
}

struct NameText {
  CBuffer<char> narrow;
  CBuffer<std::uint16_t> wide;
};

// Both texts of a string of 16-bit units, or of a byte string the narrow one alone. Without memory
// neither.
NameText makeTexts(ByteView string, bool isUtf16, bool wantsWide) noexcept {
  if (!isUtf16) return {makeText(string.start(), string.size()), nullptr};
  const std::size_t units = string.size() / 2;
  NameText texts{detail::makeBuffer<char>(units + 1), nullptr};
  if (wantsWide) texts.wide = detail::makeBuffer<std::uint16_t>(units + 1);
  if (texts.narrow == nullptr || (wantsWide && texts.wide == nullptr)) return {};
  for (std::size_t i = 0; i < units; ++i) {
    const std::uint16_t unit = string.readOrZero<std::uint16_t>(2 * i);
    texts.narrow[i] = static_cast<char>(unit & 0xFF);
    if (wantsWide) texts.wide[i] = unit;
  }
  texts.narrow[units] = '\0';
  if (wantsWide) texts.wide[units] = 0;
  return texts;
}

struct NameKey {
  std::uint16_t platformID, encodingID, languageID;
  bool isUtf16;
};

// Each list in the order of preference, which is another for each name.
constexpr NameKey kPostScriptKeys[] = {{kWindows, 1, kEnglish, true}, {kMacintosh, 0, 0, false}};
constexpr NameKey kFamilyKeys[] = {{kUnicode, 0, 0, true},
                                   {kWindows, 1, kEnglish, true},
                                   {kMacintosh, 0, 0, false},
                                   {kWindows, 1, kJapanese, true}};
constexpr NameKey kSubfamilyKeys[] = {{kMacintosh, 0, 0, false}, {kWindows, 1, kEnglish, true}};

// What the first key found leads to; `found` tells a lack of records from one of memory.
template <std::size_t Count>
NameText findText(ByteView names, const NameKey (&keys)[Count], std::uint16_t nameID,
                  bool wantsWide, bool& found) noexcept {
  const std::uint16_t count = names.readOrZero<std::uint16_t>(2);
  for (const NameKey& key : keys) {
    const std::int32_t index = findNameRecord(names.start(), count, key.platformID, key.encodingID,
                                              key.languageID, nameID);
    if (index < 0) continue;
    found = true;
    return makeTexts(stringOf(names, static_cast<std::size_t>(index)), key.isUtf16, wantsWide);
  }
  found = false;
  return {};
}

// The file's name without its folders and without what follows the last dot, a leading dot apart.
CBuffer<char> nameOfFile(const char* fileName) noexcept {
  const char* slash = std::strrchr(fileName, '/');
  const char* base = slash == nullptr ? fileName : slash + 1;
  const char* dot = std::strrchr(base, '.');
  return makeText(base, dot == nullptr || dot == base ? std::strlen(base)
                                                      : static_cast<std::size_t>(dot - base));
}

}  // namespace

std::int32_t findNameRecord(const std::uint8_t* nameTable, std::uint32_t recordCount,
                            std::uint16_t platformID, std::uint16_t encodingID,
                            std::uint16_t languageID, std::uint16_t nameID) noexcept {
  const auto key = std::uint64_t{platformID} << 48 | std::uint64_t{encodingID} << 32 |
                   std::uint64_t{languageID} << 16 | nameID;
  std::size_t low = 0, end = recordCount;
  while (low < end) {
    const std::size_t middle = (low + end - 1) / 2;
    const std::size_t record = recordOffset(middle);
    const auto stored =
        std::uint64_t{readUInt32(nameTable, record)} << 32 | readUInt32(nameTable, record + 4);
    if (stored == key) return static_cast<std::int32_t>(middle);
    if (stored < key) {
      low = middle + 1;
    } else {
      end = middle;
    }
  }
  return -1;
}

char* nameRecordText(const std::uint8_t* nameTable, std::uint32_t index, std::int32_t isUtf16,
                     std::uint16_t** outWide) noexcept {
  if (outWide != nullptr) *outWide = nullptr;
  const std::size_t record = recordOffset(index);
  const std::size_t start =
      std::size_t{readUInt16(nameTable, 4)} + readUInt16(nameTable, record + 10);
  const ByteView string(nameTable + start, readUInt16(nameTable, record + 8));
  NameText texts = makeTexts(string, isUtf16 != 0, outWide != nullptr);
  if (outWide != nullptr) *outWide = texts.wide.release();
  return texts.narrow.release();
}

std::int32_t getNameRecords(const TrueTypeFont* font, NameRecord** outRecords) noexcept {
  *outRecords = nullptr;
  const ByteView names = detail::tableView(*font, kSlotName);
  const std::int32_t count = names.readOrZero<std::uint16_t>(2);
  if (count == 0) return 0;
  CBuffer<NameRecord> records =
      detail::makeZeroedBuffer<NameRecord>(static_cast<std::size_t>(count));
  if (records == nullptr) return 0;
  std::size_t total = 0;
  for (std::int32_t i = 0; i < count; ++i) {
    const std::size_t index = static_cast<std::size_t>(i);
    const std::size_t record = recordOffset(index);
    const ByteView string = stringOf(names, index);
    CBuffer<std::uint8_t> data;
    total += string.size();
    if (string.size() != 0) {
      if (total <= kMostNameBytes) data = detail::makeBuffer<std::uint8_t>(string.size());
      if (data == nullptr) {
        releaseNameRecords(records.release(), i);
        return 0;
      }
      string.copy(0, string.size(), data.get());
    }
    records[index] = {
        names.readOrZero<std::uint16_t>(record),     names.readOrZero<std::uint16_t>(record + 2),
        names.readOrZero<std::uint16_t>(record + 4), names.readOrZero<std::uint16_t>(record + 6),
        static_cast<std::uint16_t>(string.size()),   data.release()};
  }
  *outRecords = records.release();
  return count;
}

void releaseNameRecords(NameRecord* records, std::int32_t count) noexcept {
  for (std::int32_t i = 0; i < count; ++i) std::free(records[i].data);
  std::free(records);
}

bool readFontNames(TrueTypeFont* font) noexcept {
  const ByteView names = detail::tableView(*font, kSlotName);
  bool found = false;

  NameText postScript = findText(names, kPostScriptKeys, kPostScriptName, false, found);
  if (!found) postScript.narrow = nameOfFile(font->fileName);
  if (postScript.narrow == nullptr) return false;
  font->postScriptName = postScript.narrow.release();

  NameText family = findText(names, kFamilyKeys, kFamilyName, true, found);
  if (!found) family.narrow = makeText(font->postScriptName, std::strlen(font->postScriptName));
  if (family.narrow == nullptr) return false;
  font->familyName = family.narrow.release();
  font->familyNameWide = family.wide.release();

  NameText subfamily = findText(names, kSubfamilyKeys, kSubfamilyName, false, found);
  if (!found) subfamily.narrow = makeText(nullptr, 0);
  font->subfamilyName = subfamily.narrow.release();
  return font->subfamilyName != nullptr;
}

}  // namespace ulm::truetype
