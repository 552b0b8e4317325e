// The two forms of a file name: /a/b/c is Z:\a\b\c. A backslash within a name of the system reads
// as U+DC5C, as bytes that are not UTF-8 read as U+DC80..U+DCFF, so that every name comes back.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ulm::win32::detail {

// The Windows form of an absolute name.
std::wstring windowsPath(std::string_view systemName);

// The system's form of a name with either kind of slash, with or without "Z:". Nothing for another
// drive and for text that cannot be a name of the system.
std::optional<std::string> systemPath(std::wstring_view name);

// What stands behind the last slash, and everything up to and with it.
std::string_view baseName(std::string_view systemName) noexcept;
std::string_view folderOf(std::string_view systemName) noexcept;

}  // namespace ulm::win32::detail
