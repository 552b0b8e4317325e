// Typed reading and writing of the values in a keyed set.
#pragma once

#include <cstring>
#include <type_traits>

#include "hostsdk/adapter/interfaces.h"
#include "hostsdk/adapter/qlcore.h"

namespace ulm::core {

// One row of the table that Param_GetValue describes: which tags a target type accepts, and how the
// value reaches the target. A value is never converted from one row to another.
template <class Target>
struct ParamRow;

template <class Target>
requires std::is_integral_v<Target>
struct ParamRow<Target> {
  static_assert(std::is_same_v<Target, int> || std::is_same_v<Target, unsigned int> ||
                    std::is_same_v<Target, long> || std::is_same_v<Target, unsigned long> ||
                    std::is_same_v<Target, unsigned short> || std::is_same_v<Target, unsigned char>,
                "this integer type is not a target");
  static bool accepts(QLVariantTag tag) noexcept {
    return tag >= kQLFlag && tag <= kQLUnsignedLong;
  }
  // A value that is too large for the target keeps only its low bits.
  static void take(const CQLVariant& from, Target& to) {
    to = static_cast<Target>(from.value.whole);
  }
};

// A type that accepts one tag and is copied from one member of the variant's union.
template <class Target, QLVariantTag Tag, auto Member>
struct PlainParamRow {
  static bool accepts(QLVariantTag tag) noexcept { return tag == Tag; }
  static void take(const CQLVariant& from, Target& to) { to = from.value.*Member; }
};
using ParamValues = tagQLVARIANT::Value;
template <>
struct ParamRow<double> : PlainParamRow<double, kQLDouble, &ParamValues::real> {};
template <>
struct ParamRow<float> : PlainParamRow<float, kQLFloat, &ParamValues::single> {};
template <>
struct ParamRow<tagSIZE> : PlainParamRow<tagSIZE, kQLSize, &ParamValues::size> {};
template <>
struct ParamRow<tagRSIZE> : PlainParamRow<tagRSIZE, kQLRealSize, &ParamValues::realSize> {};
template <>
struct ParamRow<tagPOINT> : PlainParamRow<tagPOINT, kQLPoint, &ParamValues::point> {};
template <>
struct ParamRow<tagRPOINT> : PlainParamRow<tagRPOINT, kQLRealPoint, &ParamValues::realPoint> {};
template <>
struct ParamRow<tagRECT> : PlainParamRow<tagRECT, kQLRect, &ParamValues::rect> {};
template <>
struct ParamRow<tagRRECT> : PlainParamRow<tagRRECT, kQLRealRect, &ParamValues::realRect> {};
template <>
struct ParamRow<tagQLBLOB> : PlainParamRow<tagQLBLOB, kQLBlob, &ParamValues::blob> {};

template <>
struct ParamRow<CXString> {
  static bool accepts(QLVariantTag tag) noexcept { return tag == kQLString; }
  static void take(const CQLVariant& from, CXString& to) {
    const auto text = static_cast<const char*>(from);
    to.AssignCopy(text, text != nullptr ? static_cast<int>(std::strlen(text)) : 0);
  }
};

template <>
struct ParamRow<CQLVariant> {
  static bool accepts(QLVariantTag /*tag*/) noexcept { return true; }
  static void take(const CQLVariant& from, CQLVariant& to) { to = from; }
};

}  // namespace ulm::core

// Reads the value under `key` into `target`. Returns 1. Returns 0 and leaves the target unchanged
// if `param` is null, if the key is absent, or if the target's type does not accept the value's
// tag:
//   int, unsigned int, long, unsigned long, unsigned short, unsigned char   tags 1 to 7
//   double 8, float 9, CXString 10, tagSIZE 11, tagRSIZE 12, tagPOINT 13, tagRPOINT 14, tagRECT 15,
//   tagRRECT 16, tagQLBLOB 17 (only the address is copied; the bytes keep their owner)
//   CQLVariant                                                              every tag
// `key` may be null, which is an absent key. Text is copied; std::bad_alloc if there is no memory.
template <class Target>
int Param_GetValue(IParam* param, const char* key, Target& target) {
  using Row = ulm::core::ParamRow<Target>;
  CQLVariant value;
  if (param == nullptr || param->GetValue(key, &value) == 0) return 0;
  if (!Row::accepts(value.tag)) return 0;
  Row::take(value, target);
  return 1;
}

// Stores a copy of `value` under `key`; text keeps its kind, and a null text is stored as one.
// `param` must not be null. With a null `key` nothing is stored. std::bad_alloc if there is no
// memory.
void Param_SetValue(IParam* param, const char* key, const char* value);
void Param_SetValue(IParam* param, const char* key, const wchar_t* value);
void Param_SetValue(IParam* param, const char* key, int value);
void Param_SetValue(IParam* param, const char* key, const CXString& value);
void Param_SetValue(IParam* param, const char* key, const CXStringW& value);
