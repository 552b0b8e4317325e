// Typed values in keyed sets: each target takes only its own tags.
#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <string>

#include "core/iface_holder.h"
#include "core/param_value.h"
#include "platform/odrx/alloc_control.h"
#include "platform/qlcore/control.h"
#include "platform/qlcore/services.h"

namespace {

using Param = IfaceHolder<IParam>;

// A value under each tag, at the key of its number.
Param allTags() {
  Param param(new_MemParam());
  const bool flag = true;
  const unsigned char byte = 200;
  const unsigned short half = 60000;
  const unsigned int word = 4000000000u;
  const int number = -5;
  const long longNumber = -6;
  const unsigned long unsignedLong = 7;
  const double real = 8.5;
  const float single = 9.25f;
  const tagSIZE size{11, 110};
  const tagRSIZE realSize{12, 120};
  const tagPOINT point{13, 130};
  const tagRPOINT realPoint{14, 140};
  const tagRECT rect{15, 150, 151, 152};
  const tagRRECT realRect{16, 160, 161, 162};
  const tagQLBLOB blob{17, "blob"};
  const void* const values[] = {
      &flag, &byte, &half,     &word,  &number,    &longNumber, &unsignedLong, &real, &single,
      "ten", &size, &realSize, &point, &realPoint, &rect,       &realRect,     &blob, L"eighteen"};
  for (QLVariantTag tag = 1; tag <= 18; ++tag) {
    CQLVariant value;
    EXPECT_EQ(value.BindFromValue(tag, values[tag - 1]), 1) << tag;
    EXPECT_EQ(value.tag, tag);
    EXPECT_EQ(param->SetValue(std::to_string(tag).c_str(), &value), 1);
  }
  return param;
}

// The tags from 0 to 19 that a target takes, as bits; a target that is not written keeps its value.
template <class Target>
unsigned acceptedTags(IParam* param, const Target& untouched) {
  unsigned accepted = 0;
  for (unsigned tag = 0; tag < 20; ++tag) {
    Target target = untouched;
    const int result = Param_GetValue(param, std::to_string(tag).c_str(), target);
    if (result == 1) accepted |= 1u << tag;
    const bool kept = std::memcmp(&target, &untouched, sizeof target) == 0;
    EXPECT_TRUE(result == 1 || kept) << tag;
  }
  return accepted;
}

TEST(ParamValue, EachTargetTakesItsOwnRow) {
  const Param param = allTags();
  IParam* const set = param.get();
  const unsigned whole = 0xFE;
  EXPECT_EQ(acceptedTags(set, 99), whole);
  EXPECT_EQ(acceptedTags(set, 99u), whole);
  EXPECT_EQ(acceptedTags(set, 99l), whole);
  EXPECT_EQ(acceptedTags(set, 99ul), whole);
  EXPECT_EQ(acceptedTags<unsigned short>(set, 99), whole);
  EXPECT_EQ(acceptedTags<unsigned char>(set, 99), whole);
  EXPECT_EQ(acceptedTags(set, 0.5), 1u << 8);
  EXPECT_EQ(acceptedTags(set, 0.5f), 1u << 9);
  EXPECT_EQ(acceptedTags(set, tagSIZE{}), 1u << 11);
  EXPECT_EQ(acceptedTags(set, tagRSIZE{}), 1u << 12);
  EXPECT_EQ(acceptedTags(set, tagPOINT{}), 1u << 13);
  EXPECT_EQ(acceptedTags(set, tagRPOINT{}), 1u << 14);
  EXPECT_EQ(acceptedTags(set, tagRECT{}), 1u << 15);
  EXPECT_EQ(acceptedTags(set, tagRRECT{}), 1u << 16);
  EXPECT_EQ(acceptedTags(set, tagQLBLOB{}), 1u << 17);
  for (unsigned tag = 0; tag < 20; ++tag) {
    const std::string key = std::to_string(tag);
    CXString text("before");
    EXPECT_EQ(Param_GetValue(set, key.c_str(), text), tag == 10 ? 1 : 0);
    EXPECT_STREQ(text.text, tag == 10 ? "ten" : "before");
    CQLVariant variant;
    EXPECT_EQ(Param_GetValue(set, key.c_str(), variant), tag >= 1 && tag <= 18 ? 1 : 0);
    EXPECT_EQ(variant.tag, tag <= 18 ? tag : 0);
  }
}

template <class Target>
Target valueOf(IParam* param, const char* key) {
  Target target{};
  EXPECT_EQ(Param_GetValue(param, key, target), 1);
  return target;
}

TEST(ParamValue, ValuesComeBackWhole) {
  const Param param = allTags();
  IParam* const set = param.get();
  const long long whole[] = {1, 200, 60000, 4000000000, -5, -6, 7};
  for (int tag = 1; tag <= 7; ++tag) {
    const std::string key = std::to_string(tag);
    EXPECT_EQ(valueOf<long>(set, key.c_str()), static_cast<long>(whole[tag - 1])) << tag;
    EXPECT_EQ(valueOf<unsigned char>(set, key.c_str()), whole[tag - 1] & 0xFF) << tag;  // low bits
  }
  EXPECT_EQ(valueOf<double>(set, "8"), 8.5);
  EXPECT_EQ(valueOf<float>(set, "9"), 9.25f);
  EXPECT_EQ(valueOf<tagSIZE>(set, "11").cy, 110);
  EXPECT_EQ(valueOf<tagRECT>(set, "15").bottom, 152);
  EXPECT_EQ(valueOf<tagRRECT>(set, "16").bottom, 162);
  EXPECT_STREQ(static_cast<const char*>(valueOf<tagQLBLOB>(set, "17").data), "blob");
}

TEST(ParamValue, FiveKindsAreStored) {
  const Param param(new_MemParam());
  IParam* const set = param.get();
  Param_SetValue(set, "narrow", "a");
  Param_SetValue(set, "wide", L"b");
  Param_SetValue(set, "int", -3);
  Param_SetValue(set, "string", CXString("c"));
  Param_SetValue(set, "stringW", CXStringW("d"));
  EXPECT_EQ(set->GetCount(), 5u);
  Param_SetValue(set, "int", 4);  // in the place of the first
  EXPECT_EQ(set->GetCount(), 5u);
  EXPECT_STREQ(set->GetKey(2), "int");
  EXPECT_EQ(valueOf<int>(set, "int"), 4);
  EXPECT_STREQ(valueOf<CXString>(set, "narrow").text, "a");
  EXPECT_STREQ(valueOf<CXString>(set, "string").text, "c");
  EXPECT_STREQ(valueOf<CQLVariant>(set, "wide").value.wideString, L"b");
  EXPECT_STREQ(valueOf<CQLVariant>(set, "stringW").value.wideString, L"d");
  EXPECT_EQ(set->HasKey("INT"), 0) << "keys are exact";
  Param_SetValue(set, "narrow", static_cast<const char*>(nullptr));
  EXPECT_EQ(valueOf<CXString>(set, "narrow").GetLength(), 0);
  int number = 4;
  EXPECT_EQ(Param_GetValue<int>(nullptr, "int", number), 0);
  EXPECT_EQ(number, 4);
  EXPECT_EQ(set->RemoveKey("wide"), 1);
  EXPECT_STREQ(set->GetKey(1), "int");
}

TEST(ParamValue, MemoryThatRunsOutLeavesTheSetAndNothingBehind) {
  const OdrxAllocCounts before = odrxAllocCounts();
  {
    const Param param = allTags();
    const std::uint64_t live = odrxAllocCounts().liveBlocks;
    for (std::uint64_t n = 0; n < 2; ++n) {  // the variant's copy, the set's
      odrxAllocFail(n, 1);
      EXPECT_THROW(Param_SetValue(param.get(), "10", "other"), std::bad_alloc);
      CXString text("before");
      odrxAllocFail(n, 1);
      EXPECT_THROW(Param_GetValue(param.get(), "10", text), std::bad_alloc);
      odrxAllocFail(0, 0);
      EXPECT_STREQ(text.text, "before");
    }
    EXPECT_STREQ(valueOf<CXString>(param.get(), "10").text, "ten");
    EXPECT_EQ(odrxAllocCounts().liveBlocks, live);
  }
  EXPECT_EQ(odrxAllocCounts().liveBlocks, before.liveBlocks);
  EXPECT_EQ(qlcoreHeldParams(), 0);
}

}  // namespace
