// What the product says of itself, in one place; its version stands in product_version.h.
#pragma once

#include <cstdint>

namespace ulm::module {

inline constexpr char kLongName[] = "Ulmira Point Cloud Processing";
inline constexpr char kShortName[] = "Ulmira";
inline constexpr char kIcon[] = "ULM_Main.dll,1";
inline constexpr wchar_t kWldFile[] = L"Ulmira.wld";

// The numbers of the names in the library's string resources.
inline constexpr std::uint16_t kStringLongName = 1;
inline constexpr std::uint16_t kStringShortName = 2;

// The two strings that go with the record to the application.
inline constexpr char kVendorString[] = "The Ulmira developers";
inline constexpr char kProductString[] = "ULM_Main";

}  // namespace ulm::module
