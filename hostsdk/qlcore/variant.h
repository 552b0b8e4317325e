// The core library's tagged value: a plain record, and the class over it.
#pragma once

#include <cstdint>

#include "hostsdk/export.h"
#include "hostsdk/qlcore/strings.h"
#include "hostsdk/win32/win32.h"

struct tagRSIZE {
  double cx, cy;
};
struct tagRPOINT {
  double x, y;
};
struct tagRRECT {
  double left, top, right, bottom;
};
// A run of bytes that stays its owner's: a variant holds the address, never a copy.
struct tagQLBLOB {
  std::uint32_t size;  // in bytes
  const void* data;
};

using QLVariantTag = std::uint16_t;
inline constexpr QLVariantTag kQLEmpty = 0;
inline constexpr QLVariantTag kQLFlag = 1;
inline constexpr QLVariantTag kQLUnsignedChar = 2;
inline constexpr QLVariantTag kQLUnsignedShort = 3;
inline constexpr QLVariantTag kQLUnsignedInt = 4;
inline constexpr QLVariantTag kQLInt = 5;
inline constexpr QLVariantTag kQLLong = 6;
inline constexpr QLVariantTag kQLUnsignedLong = 7;
inline constexpr QLVariantTag kQLDouble = 8;
inline constexpr QLVariantTag kQLFloat = 9;
inline constexpr QLVariantTag kQLString = 10;
inline constexpr QLVariantTag kQLSize = 11;
inline constexpr QLVariantTag kQLRealSize = 12;
inline constexpr QLVariantTag kQLPoint = 13;
inline constexpr QLVariantTag kQLRealPoint = 14;
inline constexpr QLVariantTag kQLRect = 15;
inline constexpr QLVariantTag kQLRealRect = 16;
inline constexpr QLVariantTag kQLBlob = 17;
inline constexpr QLVariantTag kQLWideString = 18;

struct tagQLVARIANT {
  union Value {
    std::int64_t whole;  // tags 1 to 7, whatever their width; a flag is 0 or 1
    double real;
    float single;
    char* string;         // owned; null for a null text
    wchar_t* wideString;  // owned; null for a null text
    tagSIZE size;
    tagRSIZE realSize;
    tagPOINT point;
    tagRPOINT realPoint;
    tagRECT rect;
    tagRRECT realRect;
    tagQLBLOB blob;
  };

  QLVariantTag tag;
  Value value;
};

// Makes an empty variant of raw memory.
ULM_QLCORE_API void QLVariantInit(tagQLVARIANT* variant) noexcept;

// Assignments copy text; where there is no memory they raise std::bad_alloc and leave the variant
// as it was.
class ULM_QLCORE_CLASS CQLVariant : public tagQLVARIANT {
 public:
  CQLVariant() noexcept { QLVariantInit(this); }
  explicit CQLVariant(const char* text);
  CQLVariant(std::int64_t number,
             QLVariantTag wholeTag);  // a tag outside 1 to 7 gives an empty one
  CQLVariant(const CQLVariant& other);
  CQLVariant(CQLVariant&& other) noexcept;
  ~CQLVariant() { Clear(); }

  CQLVariant& operator=(const CQLVariant& other);
  CQLVariant& operator=(CQLVariant&& other) noexcept;
  CQLVariant& operator=(const char* text);
  CQLVariant& operator=(const wchar_t* text);
  CQLVariant& operator=(const CXString& text);
  CQLVariant& operator=(const CXStringW& text);
  CQLVariant& operator=(int number);
  CQLVariant& operator=(long number);

  void Clear() noexcept;  // gives up what it owns; empty

  // The text of a narrow string, valid while the variant keeps it; null for any other tag.
  explicit operator const char*() const noexcept;
  // The number of tags 1 to 7, cut to 32 bits; 0 for any other tag.
  explicit operator int() const noexcept;

  // Takes a value of the tag's type from its address (the address of the first character for the
  // two string tags; tag 1 is a bool). 1, or 0 for an unknown tag or a null address, the variant as
  // it was.
  int BindFromValue(QLVariantTag newTag, const void* address);
};
