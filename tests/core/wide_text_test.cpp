// Narrow text made wide, and strings of the library's own resources.
#include <gtest/gtest.h>

#include <new>

#include "core/string_number.h"
#include "core/wide_text.h"
#include "platform/odrx/alloc_control.h"
#include "platform/qlcore/control.h"
#include "platform/win32/resource_block.h"

namespace {

struct Strings {
  ulm::win32::StringEntry<5> entry{40, u"f\u00FCnf!"};
};
ULM_STRING_RESOURCE constexpr Strings kStrings;

TEST(WideText, TakesTheCodePageOfTheCoreLibrary) {
  struct Case {
    UINT codePage;
    const wchar_t* expected;  // of the bytes C3 A9
  } const cases[] = {{1252, L"\u00C3\u00A9"},
                     {65001, L"\u00E9"},
                     {0, L"\u00C3\u00A9"},      // the ANSI page
                     {4711, L"\u00C3\u00A9"}};  // unknown: falls back to the ANSI page
  for (const Case& tested : cases) {
    qlcoreSetAnsiCodePage(tested.codePage);
    EXPECT_STREQ(ulm::core::WideText("\xC3\xA9").get(), tested.expected) << tested.codePage;
  }
  qlcoreSetAnsiCodePage(1252);
}

TEST(WideText, OwnsItsTextInTheRuntimesMemory) {
  const OdrxAllocCounts before = odrxAllocCounts();
  {
    EXPECT_EQ(ulm::core::WideText(nullptr).get(), nullptr);
    ulm::core::WideText text("one");
    EXPECT_EQ(odrxAllocCounts().liveBlocks, before.liveBlocks + 1);
    text = "";
    EXPECT_STREQ(text.get(), L"");
    EXPECT_EQ(odrxAllocCounts().liveBlocks, before.liveBlocks + 1);
    odrxAllocFail(0, 1);
    EXPECT_THROW(text = "two", std::bad_alloc);
    EXPECT_EQ(text.get(), nullptr);

    std::set_new_handler([] {});
    odrxAllocFail(0, 1);
    text = "three";
    EXPECT_EQ(text.get(), nullptr);
    std::set_new_handler(nullptr);
    text = "four";
    text = nullptr;
    EXPECT_EQ(text.get(), nullptr);
  }
  EXPECT_EQ(odrxAllocCounts().liveBlocks, before.liveBlocks);
}

TEST(StringNumber, LoadsFromTheLibrarysOwnResources) {
  EXPECT_STREQ(CXStringW(UINT{40}).text, L"f\u00FCnf!");
  EXPECT_STREQ(CXStringW(UINT{41}).text, L"");
}

TEST(Strings, FoldersAndOwnText) {
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
