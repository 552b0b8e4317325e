// The record of one open face.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ulm::truetype {

// The glyph index of a character code, 0 for none, by a subtable that open has found usable.
using CmapLookup = std::uint16_t (*)(const std::uint8_t* cmapSubtable, std::uint16_t code);

// The tables that have a slot in the record. A tag is four characters as one big-endian number.
enum TableSlot : std::int32_t {
  kSlotMaxp,
  kSlotGlyf,
  kSlotHead,
  kSlotLoca,
  kSlotName,
  kSlotHhea,
  kSlotHmtx,
  kSlotCmap,
  kSlotVhea,
  kSlotVmtx,
  kSlotOs2,
  kSlotPost,
  kSlotKern,
  kSlotCvt,
  kSlotPrep,
  kSlotFpgm,
  kSlotGsub,
};
inline constexpr std::int32_t kTableSlotCount = 17;

inline constexpr std::uint32_t kFontSignature = 0x74746663;

// Made by openTrueTypeFont and released by closeTrueTypeFont. Nothing changes it in between, so any
// number of threads may read it. Lengths are bytes. Borrowed pointers point into `image`, which is
// the caller's and has to stay as it is until the record is closed. Each table begins and ends
// inside the image. Texts end with a zero.
struct TrueTypeFont {
  std::uint32_t signature;        // kFontSignature
  char* fileName;                 // owned; the name given at open
  std::int32_t imageSize;         // bytes
  const std::uint8_t* image;      // borrowed
  char* postScriptName;           // owned, never null
  char* familyName;               // owned, never null
  std::uint16_t* familyNameWide;  // owned, UTF-16 in host order; null for a family of byte text
  char* subfamilyName;            // owned, never null
  std::uint32_t tableCount;
  std::uint32_t directoryOffset;  // of the face's offset table, from image[0]
  std::uint32_t* glyphOffsets;    // owned; numGlyphs + 1 byte offsets into glyf, as stored
  std::uint32_t numGlyphs;
  std::int32_t unitsPerEm;  // never 0
  std::uint32_t numberOfHMetrics;
  std::uint32_t numOfLongVerMetrics;
  const std::uint8_t* cmapSubtable;  // borrowed; null without a usable subtable
  std::int32_t cmapType;             // 10 + Windows encodingID, or -1
  CmapLookup cmapLookup;             // null without a usable subtable
  const std::uint8_t** tables;   // owned array of kTableSlotCount borrowed starts, null if absent
  std::uint32_t* tableLengths;   // owned array of kTableSlotCount
  std::int32_t kernType;         // 0 none, 1 Apple form, 2 Microsoft form
  std::uint32_t kernTableCount;  // as the header of a recognised form says
  // Owned array of kernTableCount borrowed starts; null with kernType 0. An entry is null where the
  // subtable's pairs leave the image.
  const std::uint8_t** kernTables;
};

}  // namespace ulm::truetype
