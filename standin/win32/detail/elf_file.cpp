#include "standin/win32/detail/elf_file.h"

#include "standin/win32/detail/file.h"

// The ELF header of the library that this code is linked into. The linker defines it.
extern "C" [[gnu::visibility("hidden")]] const char __ehdr_start[];

// Layout: System V Application Binary Interface, chapter 4, "ELF header" and "Sections", chapter 5,
// "Program Header".
namespace ulm::win32::detail {

namespace {

constexpr std::string_view kMark = "\177ELF";
constexpr std::string_view kMarkOf64BitLittleEndian = "\177ELF\2\1";
constexpr std::size_t kClassOffset = 4;  // the byte order follows
constexpr std::size_t kMachineOffset = 18;
constexpr std::size_t kFileHeaderSize = 64;
constexpr std::size_t kSectionHeaderSize = 64;
constexpr std::size_t kSegmentHeaderSize = 56;
constexpr std::uint32_t kLoad = 1;    // a segment's type: the loader maps it
constexpr std::uint32_t kNoBits = 8;  // a section's type: the file stores no bytes for it

struct SectionHeader {
  std::uint32_t nameOffset;
  std::uint32_t type;
  std::uint64_t offset, size;
};

// `table` contains complete headers only, and more than `index` of them.
SectionHeader headerAt(std::string_view table, std::size_t index) noexcept {
  const std::string_view bytes = table.substr(index * kSectionHeaderSize, kSectionHeaderSize);
  return {littleEndian<std::uint32_t>(bytes, 0), littleEndian<std::uint32_t>(bytes, 4),
          littleEndian<std::uint64_t>(bytes, 24), littleEndian<std::uint64_t>(bytes, 32)};
}

bool isForThisMachine(std::string_view header) noexcept {
  const std::string_view own(__ehdr_start, kFileHeaderSize);
  return header.substr(kClassOffset, 2) == own.substr(kClassOffset, 2) &&
         header.substr(kMachineOffset, 2) == own.substr(kMachineOffset, 2);
}

bool isName(std::string_view names, std::size_t offset, std::string_view name) noexcept {
  if (offset >= names.size() || names.size() - offset <= name.size()) return false;
  return names.substr(offset, name.size()) == name && names[offset + name.size()] == '\0';
}

}  // namespace

std::optional<std::string> readElfSection(const std::string& path, std::string_view name) {
  const InputFile file(path.c_str());
  const std::optional<std::string> header = file.read(0, kFileHeaderSize);
  if (!header || !header->starts_with(kMarkOf64BitLittleEndian)) return std::nullopt;
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

const char* libraryFault(const std::string& path) {
  const InputFile file(path.c_str());
  const std::optional<std::string> header = file.read(0, kFileHeaderSize);
  if (!header || !header->starts_with(kMark)) return nullptr;
  if (!isForThisMachine(*header)) return "the library is for another architecture";

  constexpr const char* kTruncated =
      "the file is incomplete: it ends before what its headers describe";
  const std::size_t segmentSize = littleEndian<std::uint16_t>(*header, 54);
  if (segmentSize != kSegmentHeaderSize) return nullptr;
  const std::size_t segmentCount = littleEndian<std::uint16_t>(*header, 56);
  const std::optional<std::string> segments =
      file.read(littleEndian<std::uint64_t>(*header, 32), segmentCount * segmentSize);
  if (!segments) return kTruncated;
  for (std::size_t at = 0; at < segments->size(); at += segmentSize) {
    if (littleEndian<std::uint32_t>(*segments, at) != kLoad) continue;
    const auto offset = littleEndian<std::uint64_t>(*segments, at + 8);
    if (!file.holds(offset, littleEndian<std::uint64_t>(*segments, at + 32))) return kTruncated;
  }
  // The loader does not need the sections, but the resources are in them.
  const std::size_t sectionSize = littleEndian<std::uint16_t>(*header, 58);
  const std::size_t sectionCount = littleEndian<std::uint16_t>(*header, 60);
  const auto sections = littleEndian<std::uint64_t>(*header, 40);
  return file.holds(sections, sectionCount * sectionSize) ? nullptr : kTruncated;
}

}  // namespace ulm::win32::detail
