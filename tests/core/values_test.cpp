// Typed values in keyed sets, where each target type accepts only its own tags; and their text.
#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <numeric>
#include <string>
#include <vector>

#include "core/interface_query.h"
#include "core/param_value.h"
#include "core/string_number.h"
#include "core/wide_text.h"
#include "hostsdk/qlcore/services.h"
#include "standin/odrx/alloc_control.h"
#include "standin/qlcore/control.h"

namespace {

using Param = IfaceHolder<IParam>;

// The source of a value of any tag: different bytes, of which the first is a valid flag, then
// zeros.
struct Source {
  alignas(8) char bytes[40] = {1};
  Source() { std::iota(bytes + 1, bytes + 32, '\x82'); }
} const kSource;
// The same bytes as a whole number of each tag.
constexpr std::int64_t kLong = -0x7778797A7B7C7DFF;
constexpr int kInt = -0x7B7C7DFF;
constexpr std::int64_t kWhole[] = {0, 1, 1, 0x8201, 0x84838201, kInt, kLong, kLong};

// A value of each tag, under its number as key.
Param allTags() {
  Param param(new_MemParam());
  for (QLVariantTag tag = 1; tag <= 18; ++tag) {
    CQLVariant value;
    EXPECT_EQ(value.BindFromValue(tag, kSource.bytes), 1) << tag;
    EXPECT_EQ(value.tag, tag);
    EXPECT_EQ(param->SetValue(std::to_string(tag).c_str(), &value), 1);
  }
  return param;
}

// Returns the tags from 0 to 19 that a target accepts, as bits. Any other tag must leave it
// unchanged.
template <class Target>
unsigned takenBy(IParam* set) {
  unsigned tags = 0;
  for (unsigned tag = 0; tag < 20; ++tag) {
    Target target{}, expected{};
    if (Param_GetValue(set, std::to_string(tag).c_str(), target) == 1) {
      tags |= 1u << tag;
      std::memcpy(&expected, kSource.bytes, sizeof expected);
      if constexpr (std::is_integral_v<Target>) expected = static_cast<Target>(kWhole[tag % 8]);
    }
    EXPECT_EQ(std::memcmp(&target, &expected, sizeof target), 0) << tag;
  }
  return tags;
}

template <class... Targets>
std::vector<unsigned> taken(IParam* set) {
  return {takenBy<Targets>(set)...};
}

TEST(ParamValue, EachTargetTakesItsOwnRow) {
  const Param param = allTags();
  IParam* const set = param.get();
  EXPECT_EQ((taken<int, unsigned, long, unsigned long, unsigned short, unsigned char>(set)),
            (std::vector<unsigned>(6, 0xFE)));
  EXPECT_EQ((taken<double, float, tagSIZE, tagRSIZE, tagPOINT, tagRPOINT, tagRECT, tagRRECT>(set)),
            (std::vector<unsigned>{1 << 8, 1 << 9, 1 << 11, 1 << 12, 1 << 13, 1 << 14, 1 << 15,
                                   1 << 16}));
  for (unsigned tag = 0; tag < 20; ++tag) {
    const std::string key = std::to_string(tag);
    CXString text("before");
    EXPECT_EQ(Param_GetValue(set, key.c_str(), text), tag == 10 ? 1 : 0);
    EXPECT_STREQ(text.text, tag == 10 ? kSource.bytes : "before");
    tagQLBLOB blob{9, nullptr};
    EXPECT_EQ(Param_GetValue(set, key.c_str(), blob), tag == 17 ? 1 : 0);
    EXPECT_TRUE(tag == 17 ? blob.size == 0x84838201 && blob.data != nullptr : blob.size == 9);
    CQLVariant variant;
    EXPECT_EQ(Param_GetValue(set, key.c_str(), variant), tag >= 1 && tag <= 18 ? 1 : 0);
    EXPECT_EQ(variant.tag, tag <= 18 ? tag : 0);
  }
}

CQLVariant stored(IParam* set, const char* key) {
  CQLVariant value;
  EXPECT_EQ(Param_GetValue(set, key, value), 1);
  return value;
}

TEST(ParamValue, FiveKindsAreStored) {
  const Param param(new_MemParam());
  IParam* const set = param.get();
  Param_SetValue(set, "narrow", "a");
  Param_SetValue(set, "wide", L"b");
  Param_SetValue(set, "int", -3);
  Param_SetValue(set, "string", CXString("c"));
  Param_SetValue(set, "stringW", CXStringW("d"));
  Param_SetValue(set, "int", 4);  // replaces the first
  EXPECT_EQ(set->GetCount(), 5u);
  EXPECT_STREQ(set->GetKey(2), "int");
  EXPECT_TRUE(stored(set, "int").tag == kQLInt && stored(set, "int").value.whole == 4);
  EXPECT_STREQ(static_cast<const char*>(stored(set, "narrow")), "a");
  EXPECT_STREQ(static_cast<const char*>(stored(set, "string")), "c");
  EXPECT_STREQ(stored(set, "wide").value.wideString, L"b");
  EXPECT_STREQ(stored(set, "stringW").value.wideString, L"d");
  EXPECT_EQ(set->HasKey("INT"), 0) << "keys are exact";
  CXString text("before");
  EXPECT_EQ(Param_GetValue(nullptr, "narrow", text), 0);
  Param_SetValue(set, "narrow", static_cast<const char*>(nullptr));
  EXPECT_EQ(Param_GetValue(set, "narrow", text), 1);
  EXPECT_EQ(text.GetLength(), 0);
  EXPECT_EQ(set->RemoveKey("wide"), 1);
  EXPECT_STREQ(set->GetKey(1), "int");
}

TEST(WideText, TakesTheCodePageOfTheCoreLibrary) {
  const wchar_t* const ansi = L"\u00C3\u00A9";
  // 0 is the ANSI page, which also replaces an unknown page.
  const std::pair<UINT, const wchar_t*> cases[] = {
      {1252, ansi}, {65001, L"\u00E9"}, {0, ansi}, {4711, ansi}};
  for (const auto& [codePage, expected] : cases) {
    qlcoreSetAnsiCodePage(codePage);
    EXPECT_STREQ(ulm::core::WideText("\xC3\xA9").get(), expected) << codePage;
  }
  qlcoreSetAnsiCodePage(1252);
}

TEST(WideText, OwnsItsTextInTheRuntimesMemory) {
  const OdrxAllocCounts before = odrxAllocCounts();
  {
    ulm::core::WideText text("one");
    text = "";
    EXPECT_STREQ(text.get(), L"");
    EXPECT_EQ(odrxAllocCounts().liveBlocks, before.liveBlocks + 1);
    EXPECT_STREQ((text = "four").get(), L"four");
    EXPECT_EQ((text = nullptr).get(), nullptr);
  }
  EXPECT_EQ(odrxAllocCounts().liveBlocks, before.liveBlocks);
}

TEST(Strings, NumbersFoldersAndOwnText) {
  EXPECT_STREQ(CXStringW(UINT{41}).text, L"");
  const char* const cases[][2] = {
      {"Z:\\a\\b.so", "Z:\\a"}, {"Z:\\b.so", "Z:"}, {"b.so", ""}, {"a/b\\", "a/b"}, {"", ""}};
  for (const auto& [name, folder] : cases) EXPECT_STREQ(CXString(name).FilePath().text, folder);
  // A string's own text as the source.
  CXString text("klassisch");
  text.Format("%d of %s", 3, text.text);
  text = text.text;
  EXPECT_STREQ(text.text, "3 of klassisch");
  text.AssignCopy(text.text + 5, 3);
  EXPECT_STREQ(text.text, "kla");
  CXStringW wide("\xFC");
  wide.ConcatCopy(wide.text, wide.GetSize());
  EXPECT_STREQ(wide.text, L"\u00FC\u00FC");
  wide.Format(L"%0300d", 7);
  EXPECT_EQ(wide.GetSize(), 300);
  EXPECT_STREQ(CXString(L"\u00FC\u4E2D").text, "\xFC?");
}

}  // namespace
