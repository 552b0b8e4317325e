#include "standin/win32/detail/elf_file.h"

#include "standin/win32/detail/file.h"

// Layout: System V Application Binary Interface, chapter 4, "ELF header" and "Sections".
namespace ulm::win32::detail {

namespace {

constexpr std::size_t kFileHeaderSize = 64;
constexpr std::size_t kSectionHeaderSize = 64;
constexpr std::uint32_t kNoBits = 8;  // a section's type: it takes no room in the file

struct SectionHeader {
  std::uint32_t nameOffset;
  std::uint32_t type;
  std::uint64_t offset, size;
};

// `table` holds whole headers, more than `index`.
SectionHeader headerAt(std::string_view table, std::size_t index) noexcept {
  const std::string_view bytes = table.substr(index * kSectionHeaderSize, kSectionHeaderSize);
  return {littleEndian<std::uint32_t>(bytes, 0), littleEndian<std::uint32_t>(bytes, 4),
          littleEndian<std::uint64_t>(bytes, 24), littleEndian<std::uint64_t>(bytes, 32)};
}

bool isName(std::string_view names, std::size_t offset, std::string_view name) noexcept {
  if (offset >= names.size() || names.size() - offset <= name.size()) return false;
  return names.substr(offset, name.size()) == name && names[offset + name.size()] == '\0';
}

}  // namespace

std::optional<std::string> readElfSection(const std::string& path, std::string_view name) {
  const InputFile file(path.c_str());
  const std::optional<std::string> header = file.read(0, kFileHeaderSize);
  // The mark, 64 bits, little-endian.
  if (!header || header->compare(0, 6,
                                 "\x7F"
                                 "ELF\2\1") != 0)
    return std::nullopt;
  const auto tableOffset = littleEndian<std::uint64_t>(*header, 40);
  const std::size_t entrySize = littleEndian<std::uint16_t>(*header, 58);
  const std::size_t count = littleEndian<std::uint16_t>(*header, 60);
  const std::size_t namesIndex = littleEndian<std::uint16_t>(*header, 62);
  if (entrySize != kSectionHeaderSize || namesIndex >= count) return std::nullopt;

  const std::optional<std::string> table = file.read(tableOffset, count * kSectionHeaderSize);
  if (!table) return std::nullopt;
  const SectionHeader namesHeader = headerAt(*table, namesIndex);
  if (namesHeader.type == kNoBits) return std::nullopt;
  const std::optional<std::string> names = file.read(namesHeader.offset, namesHeader.size);
  if (!names) return std::nullopt;

  for (std::size_t i = 0; i < count; ++i) {
    const SectionHeader section = headerAt(*table, i);
    if (section.type == kNoBits || !isName(*names, section.nameOffset, name)) continue;
    return file.read(section.offset, section.size);
  }
  return std::nullopt;
}

}  // namespace ulm::win32::detail
