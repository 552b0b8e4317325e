#include "truetype/reader/names.h"

#include <cstdlib>
#include <cstring>
#include <utility>

#include "truetype/detail/bisect.h"
#include "truetype/detail/c_buffer.h"
#include "truetype/detail/font_views.h"
#include "truetype/detail/name_entry.h"
#include "truetype/format/name.h"

namespace ulm::truetype {
namespace {

using detail::ByteView;
using detail::CBuffer;
using detail::RecordView;
using format::Name, format::NameEntry, format::Utf16;

constexpr std::uint16_t kFamilyName = 1, kSubfamilyName = 2, kPostScriptName = 6;
constexpr std::uint16_t kUnicode = 0, kMacintosh = 1, kWindows = 3;
constexpr std::uint16_t kEnglish = 1033, kJapanese = 1041;

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

// Both texts of a string of 16-bit units, or the narrow text of a byte string. Neither without
// memory.
NameText makeTexts(ByteView string, bool isUtf16, bool wantsWide) noexcept {
  CBuffer<char> narrow;
  CBuffer<std::uint16_t> wide;
  if (!isUtf16) {
    narrow = makeText(string.start(), string.size());
    return {std::move(narrow), nullptr};
  }
  const std::size_t units = string.size() / sizeof(std::uint16_t);
  narrow = detail::makeBuffer<char>(units + 1);
  if (wantsWide) wide = detail::makeBuffer<std::uint16_t>(units + 1);
  if (narrow == nullptr || (wantsWide && wide == nullptr)) return {};
  const RecordView<Utf16> text(string);
  for (std::size_t i = 0; i < units; ++i) {
    const std::uint16_t unit = text.readOrZero(Utf16::kUnits, i);
    narrow[i] = static_cast<char>(unit & 0xFF);
    if (wantsWide) wide[i] = unit;
  }
  narrow[units] = '\0';
  if (wantsWide) wide[units] = 0;
  return {std::move(narrow), std::move(wide)};
}

struct NameKey {
  std::uint16_t platformID, encodingID, languageID;
  bool isUtf16;
};

// Each list is in the order of preference, which differs from name to name.
constexpr NameKey kPostScriptKeys[] = {{kWindows, 1, kEnglish, true}, {kMacintosh, 0, 0, false}};
constexpr NameKey kFamilyKeys[] = {{kUnicode, 0, 0, true},
                                   {kWindows, 1, kEnglish, true},
                                   {kMacintosh, 0, 0, false},
                                   {kWindows, 1, kJapanese, true}};
constexpr NameKey kSubfamilyKeys[] = {{kMacintosh, 0, 0, false}, {kWindows, 1, kEnglish, true}};

// The texts of the first key that has a record. `found` is false if none has one; no text with
// `found` true means that memory ran out.
template <std::size_t Count>
NameText findText(RecordView<Name> names, const NameKey (&keys)[Count], std::uint16_t nameID,
                  bool wantsWide, bool& found) noexcept {
  const std::uint16_t count = names.readOrZero(Name::kCount);
  for (const NameKey& key : keys) {
    const std::int32_t index = findNameRecord(names.bytes().start(), count, key.platformID,
                                              key.encodingID, key.languageID, nameID);
    if (index < 0) continue;
    found = true;
    return makeTexts(detail::nameString(names, static_cast<std::size_t>(index)), key.isUtf16,
                     wantsWide);
  }
  found = false;
  return {};
}

// The file's name without its folders and its extension. A dot at the start begins no extension.
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
  const std::uint64_t key = NameEntry::key(platformID, encodingID, languageID, nameID);
  const RecordView<Name> names(ByteView(nameTable, Name::kEntries.at(recordCount)));
  const detail::Bisected found = detail::bisect({0, recordCount}, 0, [&](std::size_t index) {
    return names.held(Name::kEntries, index).get(NameEntry::kKey) <=> key;
  });
  return found.size == 0 ? -1 : static_cast<std::int32_t>(found.low);
}

char* nameRecordText(const std::uint8_t* nameTable, std::uint32_t index, std::int32_t isUtf16,
                     std::uint16_t** outWide) noexcept {
  if (outWide != nullptr) *outWide = nullptr;
  const RecordView<Name> names(ByteView(nameTable, Name::kEntries.at(index + std::size_t{1})));
  const auto entry = names.held(Name::kEntries, index);
  const std::size_t start =
      std::size_t{names.readOrZero(Name::kStringOffset)} + entry.get(NameEntry::kOffset);
  const ByteView string(nameTable + start, entry.get(NameEntry::kLength));
  NameText texts = makeTexts(string, isUtf16 != 0, outWide != nullptr);
  if (outWide != nullptr) *outWide = texts.wide.release();
  return texts.narrow.release();
}

std::int32_t getNameRecords(const TrueTypeFont* font, NameRecord** outRecords) noexcept {
  *outRecords = nullptr;
  const auto names = detail::tableOf<Name>(*font);
  const std::int32_t count = names.readOrZero(Name::kCount);
  if (count == 0) return 0;
  CBuffer<NameRecord> records =
      detail::makeZeroedBuffer<NameRecord>(static_cast<std::size_t>(count));
  if (records == nullptr) return 0;
  std::size_t total = 0;
  for (std::int32_t i = 0; i < count; ++i) {
    const std::size_t index = static_cast<std::size_t>(i);
    const ByteView string = detail::nameString(names, index);
    CBuffer<std::uint8_t> data;
    total += string.size();
    if (string.size() != 0) {
      if (total <= kMaxNameBytes) data = detail::makeBuffer<std::uint8_t>(string.size());
      if (data == nullptr) {
        releaseNameRecords(records.release(), i);
        return 0;
      }
      string.copy(0, string.size(), data.get());
    }
    records[index] = detail::nameKeys(names, index);
    records[index].length = static_cast<std::uint16_t>(string.size());
    records[index].data = data.release();
  }
  *outRecords = records.release();
  return count;
}

void releaseNameRecords(NameRecord* records, std::int32_t count) noexcept {
  for (std::int32_t i = 0; i < count; ++i) std::free(records[i].data);
  std::free(records);
}

bool readFontNames(TrueTypeFont* font) noexcept {
  const auto names = detail::tableOf<Name>(*font);
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
