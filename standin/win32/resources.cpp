#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <new>
#include <optional>
#include <string>
#include <string_view>

#include "hostsdk/win32/resource_block.h"
#include "hostsdk/win32/win32.h"
#include "standin/win32/detail/call_log.h"
#include "standin/win32/detail/characters.h"
#include "standin/win32/detail/elf_file.h"
#include "standin/win32/detail/module_list.h"

namespace {

using ulm::win32::detail::fromUtf16;
using ulm::win32::detail::libraryFile;
using ulm::win32::detail::littleEndian;
using ulm::win32::detail::logCall;
using ulm::win32::detail::Module;
using ulm::win32::detail::moduleOf;
using ulm::win32::detail::readElfSection;
using ulm::win32::detail::toAnsi;

// The layout of a version block: length, value length, type (16 bits each), the key with a
// terminator in UTF-16, padding to 4 bytes, the value.
constexpr std::size_t kLengthFields = 6;
constexpr std::u16string_view kVersionKey = {u"VS_VERSION_INFO", 16};  // with its terminator
constexpr std::size_t kFixedOffset = 40;
constexpr std::uint32_t kFixedSignature = 0xFEEF04BD;
static_assert(sizeof(VS_FIXEDFILEINFO) == 52);
static_assert(sizeof(ulm::win32::VersionBlock) == kFixedOffset + sizeof(VS_FIXEDFILEINFO));

// Returns the version block of a file, with the length in its length field; nothing if there is
// none.
std::optional<std::string> versionOf(const wchar_t* fileName) {
  const std::optional<std::string> path = libraryFile(fileName);
  std::optional<std::string> block = path ? readElfSection(*path, ".rsrc_version") : std::nullopt;
  if (!block || block->size() < kLengthFields) return std::nullopt;
  const std::size_t length = littleEndian<std::uint16_t>(*block, 0);
  if (length < kLengthFields || length > block->size()) return std::nullopt;
  block->resize(length);
  return block;
}

std::u16string unitsAt(std::string_view bytes, std::size_t offset, std::size_t count) {
  std::u16string units;
  units.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    units.push_back(littleEndian<char16_t>(bytes, offset + 2 * i));
  }
  return units;
}

// Returns the string with that number in a section of string entries; empty if there is none.
std::wstring findString(std::string_view entries, UINT number) {
  while (entries.size() >= 4) {
    const UINT entryNumber = littleEndian<std::uint16_t>(entries, 0);
    if (entryNumber == 0) {  // padding between two tables
      entries.remove_prefix(2);
      continue;
    }
    const std::size_t length = littleEndian<std::uint16_t>(entries, 2);
    entries.remove_prefix(4);
    if (length > entries.size() / 2) break;
    if (entryNumber == (number & 0xFFFF)) return fromUtf16(unitsAt(entries, 0, length));
    entries.remove_prefix(2 * length);
  }
  return {};
}

std::wstring loadString(HINSTANCE instance, UINT number) {
  const std::optional<Module> module = moduleOf(instance);
  if (!module) return {};
  const std::optional<std::string> entries = readElfSection(module->fileName(), ".rsrc_strings");
  return entries ? findString(*entries, number) : std::wstring();
}

}  // namespace

DWORD GetFileVersionInfoSizeW(const wchar_t* fileName, DWORD* handle) {
  if (handle != nullptr) *handle = 0;
  if (fileName == nullptr) return 0;
  try {
    const std::optional<std::string> version = versionOf(fileName);
    return version ? static_cast<DWORD>(version->size()) : 0;
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

BOOL GetFileVersionInfoW(const wchar_t* fileName, DWORD, DWORD length, void* block) {
  if (fileName == nullptr) return FALSE;
  logCall("GetFileVersionInfoW", fileName);
  if (block == nullptr || length < kLengthFields) return FALSE;
  try {
    std::optional<std::string> version = versionOf(fileName);
    if (!version) return FALSE;
    const std::size_t copied = std::min<std::size_t>(length, version->size());
    // The length field holds the copied length, because VerQueryValueW has no length argument.
    (*version)[0] = static_cast<char>(copied & 0xFF);
    (*version)[1] = static_cast<char>(copied >> 8);
    std::memcpy(block, version->data(), copied);
    return TRUE;
  } catch (const std::bad_alloc&) {
    return FALSE;
  }
}

BOOL VerQueryValueW(const void* block, const wchar_t* subBlock, void** value, UINT* length) {
  if (block == nullptr || subBlock == nullptr || value == nullptr || length == nullptr) {
    return FALSE;
  }
  if (std::wcscmp(subBlock, L"\\") != 0 && *subBlock != L'\0') return FALSE;
  const auto* const start = static_cast<const char*>(block);
  const std::size_t size = littleEndian<std::uint16_t>({start, 2}, 0);
  if (size < kFixedOffset + sizeof kFixedSignature) return FALSE;
  const std::string_view bytes(start, size);
  // A value that is shorter than its structure is reported with its own length.
  const std::size_t valueLength = littleEndian<std::uint16_t>(bytes, 2);
  if (valueLength < sizeof kFixedSignature || valueLength > size - kFixedOffset) return FALSE;
  for (std::size_t i = 0; i < kVersionKey.size(); ++i) {
    if (littleEndian<char16_t>(bytes, kLengthFields + 2 * i) != kVersionKey[i]) return FALSE;
  }
  if (littleEndian<std::uint32_t>(bytes, kFixedOffset) != kFixedSignature) return FALSE;
  *value = const_cast<char*>(start + kFixedOffset);
  *length = static_cast<UINT>(valueLength);
  return TRUE;
}

int LoadStringA(HINSTANCE instance, UINT number, char* buffer, int size) {
  char numberInLog[12];
  std::snprintf(numberInLog, sizeof numberInLog, "%u", number);
  logCall("LoadStringA", numberInLog);
  if (buffer == nullptr || size <= 0) return -1;
  *buffer = '\0';
  try {
    const std::wstring text = loadString(instance, number);
    const std::size_t length = std::min(text.size(), static_cast<std::size_t>(size) - 1);
    for (std::size_t i = 0; i < length; ++i) buffer[i] = toAnsi(text[i]).value_or('?');
    buffer[length] = '\0';
    return static_cast<int>(length);
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

int LoadStringW(HINSTANCE instance, UINT number, wchar_t* buffer, int size) {
  if (buffer == nullptr || size <= 0) return 0;
  try {
    const std::wstring text = loadString(instance, number);
    if (text.empty()) return 0;
    const std::size_t length = std::min(text.size(), static_cast<std::size_t>(size) - 1);
    std::wmemcpy(buffer, text.c_str(), length);
    buffer[length] = L'\0';
    return static_cast<int>(length);
  } catch (const std::bad_alloc&) {
    return 0;
  }
}
