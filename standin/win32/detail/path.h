// The two forms of a file name: /a/b/c is Z:\a\b\c. In the Windows form a backslash within a name
// is U+DC5C, and a byte that is not UTF-8 is U+DC80..U+DCFF, so every name survives the round trip.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ulm::win32::detail {

// Returns the Windows form of an absolute name.
std::wstring windowsPath(std::string_view systemName);

// Returns the system's form of a name with either kind of slash, with or without "Z:". Nothing for
// another drive, and for text that cannot be a file name.
std::optional<std::string> systemPath(std::wstring_view name);

// Return the part after the last slash, and the part up to and including it.
std::string_view baseName(std::string_view systemName) noexcept;
std::string_view folderOf(std::string_view systemName) noexcept;

}  // namespace ulm::win32::detail
