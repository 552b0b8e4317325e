// ELF files, judged and searched by reading the file. Any file at all may be named: every offset
// and size in it is held against the file before it is followed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ulm::win32::detail {

// The unsigned little-endian number of `Width` bytes at `offset`; the caller has tested that
// `bytes` holds it.
template <class Number>
constexpr Number littleEndian(std::string_view bytes, std::size_t offset) noexcept {
  std::uint64_t number = 0;
  for (std::size_t i = sizeof(Number); i-- > 0;) {
    number = number << 8 | static_cast<unsigned char>(bytes[offset + i]);
  }
  return static_cast<Number>(number);
}

// The content of the first section of that name; nothing where the file is no 64-bit little-endian
// ELF file, has no such section, or keeps no bytes for it.
std::optional<std::string> readElfSection(const std::string& path, std::string_view name);

// Why the system's loader must not open the file as a library, in one line, or null where nothing
// speaks against it. The loader maps what the headers describe without asking for the file's size,
// so that a file that ends too early would end the process; and it reports a library for another
// architecture as a missing file. Any other fault is left to the loader, and so are the libraries
// that this one links.
const char* libraryFault(const std::string& path);

}  // namespace ulm::win32::detail
