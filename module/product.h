// The texts of the product as constants. Texts that the resources show too, and the version, are
// macros in product_texts.h.
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

// The two strings that the application receives with the identity record.
inline constexpr char kVendorString[] = ULM_VENDOR;
inline constexpr char kProductString[] = "ULM_Main";

}  // namespace ulm::module
