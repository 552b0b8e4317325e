#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "hostsdk/win32/win32.h"
#include "standin/win32/detail/characters.h"

namespace {

using ulm::win32::detail::DecodedCharacter;
using ulm::win32::detail::decodeUtf8;
using ulm::win32::detail::EncodedCharacter;
using ulm::win32::detail::encodeUtf8;
using ulm::win32::detail::fromAnsi;
using ulm::win32::detail::toAnsi;

constexpr UINT kAnsiPage = 1252;
constexpr DWORD kDecodeFlags = 15;  // only MB_ERR_INVALID_CHARS has an effect in these pages

enum class CodePage { Ansi, Utf8, Unknown };

CodePage pageOf(UINT number) noexcept {
  if (number == CP_ACP || number == kAnsiPage) return CodePage::Ansi;
  return number == CP_UTF8 ? CodePage::Utf8 : CodePage::Unknown;
}

// Counts characters and writes them to a buffer until it is full. Without a buffer it only counts.
template <class Character>
class CountingWriter {
 public:
  CountingWriter(Character* target, int size) noexcept
      : target_(target), capacity_(static_cast<std::size_t>(size)) {}

  void put(Character character) noexcept {
    if (count_ < capacity_) target_[count_] = character;
    ++count_;
  }
  // Returns the count; 0 if the buffer was too small or the count does not fit an int.
  int result() const noexcept {
    if (count_ > INT_MAX || (capacity_ != 0 && count_ > capacity_)) return 0;
    return static_cast<int>(count_);
  }

 private:
  Character* target_;
  std::size_t capacity_;
  std::size_t count_ = 0;
};

// Checks the arguments that both directions have in common.
bool isUsable(CodePage page, const void* source, int sourceLength, const void* target,
              int targetSize) noexcept {
  if (page == CodePage::Unknown || source == nullptr) return false;
  if (sourceLength == 0 || targetSize < 0) return false;
  return targetSize == 0 || (target != nullptr && target != source);
}

}  // namespace

HGLOBAL GlobalAlloc(UINT flags, SIZE_T bytes) {
  const SIZE_T size = std::max<SIZE_T>(bytes, 1);
  return (flags & GMEM_ZEROINIT) != 0 ? std::calloc(1, size) : std::malloc(size);
}

HGLOBAL GlobalFree(HGLOBAL block) {
  std::free(block);
  return nullptr;
}

wchar_t* lstrcpynW(wchar_t* target, const wchar_t* source, int size) {
  if (target == nullptr || source == nullptr) return nullptr;
  if (size <= 0) return target;
  int i = 0;
  for (; i < size - 1 && source[i] != L'\0'; ++i) target[i] = source[i];
  target[i] = L'\0';
  return target;
}

int MultiByteToWideChar(UINT codePage, DWORD flags, const char* source, int sourceLength,
                        wchar_t* target, int targetSize) {
  const CodePage page = pageOf(codePage);
  if (!isUsable(page, source, sourceLength, target, targetSize)) return 0;
  if ((flags & ~kDecodeFlags) != 0) return 0;
  std::string_view rest(
      source, sourceLength < 0 ? std::strlen(source) + 1 : static_cast<std::size_t>(sourceLength));
  CountingWriter<wchar_t> writer(target, targetSize);
  if (page == CodePage::Ansi) {
    for (const char byte : rest) writer.put(fromAnsi(byte));
    return writer.result();
  }
  while (!rest.empty()) {
    const DecodedCharacter next = decodeUtf8(rest);
    if (!next.valid && (flags & MB_ERR_INVALID_CHARS) != 0) return 0;
    writer.put(static_cast<wchar_t>(next.character));
    rest.remove_prefix(next.length);
  }
  return writer.result();
}

int WideCharToMultiByte(UINT codePage, DWORD flags, const wchar_t* source, int sourceLength,
                        char* target, int targetSize, const char* defaultChar,
                        BOOL* usedDefaultChar) {
  const CodePage page = pageOf(codePage);
  if (!isUsable(page, source, sourceLength, target, targetSize) || flags != 0) return 0;
  const std::wstring_view text(
      source, sourceLength < 0 ? std::wcslen(source) + 1 : static_cast<std::size_t>(sourceLength));
  CountingWriter<char> writer(target, targetSize);
  if (page == CodePage::Utf8) {
    if (defaultChar != nullptr || usedDefaultChar != nullptr) return 0;
    for (const wchar_t character : text) {
      const EncodedCharacter encoded = encodeUtf8(static_cast<char32_t>(character));
      for (std::size_t i = 0; i < encoded.length; ++i) writer.put(encoded.bytes[i]);
    }
    return writer.result();
  }
  const char substitute = defaultChar != nullptr ? *defaultChar : '?';
  bool substituted = false;
  for (const wchar_t character : text) {
    const std::optional<char> byte = toAnsi(character);
    substituted = substituted || !byte;
    writer.put(byte.value_or(substitute));
  }
  if (usedDefaultChar != nullptr) *usedDefaultChar = substituted ? TRUE : FALSE;
  return writer.result();
}

UINT GetACP() { return kAnsiPage; }
