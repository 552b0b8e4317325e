// What the product says of itself, in one place; its version stands in product_version.h.
#pragma once

#include <cstdint>

#include "module/product_texts.h"

namespace ulm::module {

inline constexpr char kLongName[] = ULM_LONG_NAME;
inline constexpr char kShortName[] = ULM_SHORT_NAME;
inline constexpr char kIcon[] = "ULM_Main.dll,1";
inline constexpr wchar_t kWldFile[] = L"Ulmira.wld";

// The numbers of the names in the library's string resources.
inline constexpr std::uint16_t kStringLongName = ULM_STRING_LONG_NAME;
inline constexpr std::uint16_t kStringShortName = ULM_STRING_SHORT_NAME;

// The two strings that go with the record to the application.
inline constexpr char kVendorString[] = ULM_VENDOR;
inline constexpr char kProductString[] = "ULM_Main";

}  // namespace ulm::module
