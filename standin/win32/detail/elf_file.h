// Reads sections of ELF files and checks whether a file can be loaded. The input may be any file:
// every offset and size in it is checked against the file before it is used.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ulm::win32::detail {

// Returns the unsigned little-endian number at `offset`; the caller has checked that `bytes`
// contains it.
template <class Number>
constexpr Number littleEndian(std::string_view bytes, std::size_t offset) noexcept {
  std::uint64_t number = 0;
  for (std::size_t i = sizeof(Number); i-- > 0;) {
    number = number << 8 | static_cast<unsigned char>(bytes[offset + i]);
  }
  return static_cast<Number>(number);
}

// Returns the content of the first section of that name. Nothing if the file is not a 64-bit
// little-endian ELF file, has no such section, or stores no bytes for it.
std::optional<std::string> readElfSection(const std::string& path, std::string_view name);

// Returns in one line why the system's loader must not open the file as a library; null if it may.
// The loader maps what the headers describe without checking the file's size, so a truncated file
// would end the process. It also reports a library for another architecture as a missing file. The
// loader itself reports all other faults, and those of the libraries that this one links.
const char* libraryFault(const std::string& path);

}  // namespace ulm::win32::detail
