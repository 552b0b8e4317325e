// The core library's tagged value: a plain record, and a class that owns what the record holds.
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
// A sequence of bytes. A variant stores the address only; the owner of the bytes keeps them valid.
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
    std::int64_t whole;  // tags 1 to 7, of any width; a flag is 0 or 1
    double real;
    float single;
    char* string;         // owned, from odrxAlloc; null for a null text
    wchar_t* wideString;  // owned, from odrxAlloc; null for a null text
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

// Makes an empty variant in uninitialised memory; `variant` is not null.
ULM_QLCORE_API void QLVariantInit(tagQLVARIANT* variant) noexcept;

// The variant as a class. Constructors and assignments copy text, which may be null. If there is no
// memory, they raise std::bad_alloc and leave the variant unchanged.
class ULM_QLCORE_CLASS CQLVariant : public tagQLVARIANT {
 public:
  CQLVariant() noexcept { QLVariantInit(this); }
  explicit CQLVariant(const char* text);
  // A whole number with a tag from 1 to 7; any other tag makes an empty variant.
  CQLVariant(std::int64_t number, QLVariantTag wholeTag);
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

  // Frees what the variant owns and makes it empty.
  void Clear() noexcept;

  // Returns the text of a narrow string, valid until the variant changes; null for any other tag.
  explicit operator const char*() const noexcept;
  // Returns the low 32 bits of the number with a tag from 1 to 7; 0 for any other tag.
  explicit operator int() const noexcept;

  // Copies a value of the tag's type from `address`. For the two string tags `address` is that of
  // the first character. For tag 1 the value is a bool. Returns 1. Returns 0 for an unknown tag or
  // a null address and leaves the variant unchanged. Raises std::bad_alloc as an assignment does.
  int BindFromValue(QLVariantTag newTag, const void* address);
};
