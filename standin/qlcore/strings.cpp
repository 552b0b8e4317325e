#include "hostsdk/qlcore/strings.h"

#include <algorithm>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <utility>

#include "standin/qlcore/detail/text_memory.h"

namespace {

using ulm::qlcore::copyText;
using ulm::qlcore::kMaxFormat;
using ulm::qlcore::kMaxResource;
using ulm::qlcore::narrowText;
using ulm::qlcore::newText;
using ulm::qlcore::TextMemory;
using ulm::qlcore::wideText;

constexpr char kEmpty[] = "";
constexpr wchar_t kEmptyWide[] = L"";

int lengthOf(std::size_t length) noexcept {
  return length > INT_MAX ? INT_MAX : static_cast<int>(length);
}

// Frees the text that `text` owns and takes over `replacement`; null means empty.
template <class Character>
void replaceText(const Character*& text, const Character* empty,
                 TextMemory<Character> replacement) {
  if (text != empty) odrxFree(const_cast<Character*>(text));
  text = replacement != nullptr ? replacement.release() : empty;
}

}  // namespace

// --- CXString ---

CXString::CXString() noexcept : text(kEmpty) {}
CXString::CXString(const char* source) : text(kEmpty) { *this = source; }
CXString::CXString(const wchar_t* source) : text(kEmpty) { *this = source; }
CXString::CXString(const CXString& other) : text(kEmpty) { *this = other.text; }
CXString::CXString(CXString&& other) noexcept : text(std::exchange(other.text, kEmpty)) {}
CXString::~CXString() { replaceText<char>(text, kEmpty, nullptr); }

CXString& CXString::operator=(const CXString& other) {
  return this != &other ? *this = other.text : *this;
}
CXString& CXString::operator=(CXString&& other) noexcept {
  std::swap(text, other.text);
  return *this;
}
CXString& CXString::operator=(const char* source) {
  replaceText(text, kEmpty, source != nullptr ? copyText(source, std::strlen(source)) : nullptr);
  return *this;
}
CXString& CXString::operator=(const wchar_t* source) {
  replaceText(text, kEmpty, source != nullptr ? narrowText(source) : nullptr);
  return *this;
}

int CXString::GetLength() const noexcept { return lengthOf(std::strlen(text)); }
int CXString::Compare(const char* other) const noexcept {
  return std::strcmp(text, other != nullptr ? other : kEmpty);
}
int CXString::Find(const char* wanted, int from) const noexcept {
  if (wanted == nullptr || from < 0 || from > GetLength()) return -1;
  const char* found = std::strstr(text + from, wanted);
  return found != nullptr ? lengthOf(static_cast<std::size_t>(found - text)) : -1;
}
CXString CXString::Extract(int first, int length) const {
  CXString part;
  first = std::clamp(first, 0, GetLength());
  length = std::clamp(length, 0, GetLength() - first);
  part.AssignCopy(text + first, length);
  return part;
}
void CXString::Format(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(nullptr, 0, format, arguments);
  va_end(arguments);
  if (length < 0) return;
  TextMemory<char> created = newText<char>(static_cast<std::size_t>(length));
  va_start(arguments, format);
  std::vsnprintf(created.get(), static_cast<std::size_t>(length) + 1, format, arguments);
  va_end(arguments);
  replaceText(text, kEmpty, std::move(created));
}
void CXString::AssignCopy(const char* source, int length) {
  const bool some = source != nullptr && length > 0;
  replaceText(text, kEmpty, some ? copyText(source, static_cast<std::size_t>(length)) : nullptr);
}
CXString CXString::FilePath() const {
  const char* separator = nullptr;
  for (const char* at = text; *at != '\0'; ++at) {
    if (*at == '\\' || *at == '/') separator = at;
  }
  CXString folder;
  if (separator != nullptr)
    folder.AssignCopy(text, lengthOf(static_cast<std::size_t>(separator - text)));
  return folder;
}

// --- CXStringW ---

CXStringW::CXStringW() noexcept : text(kEmptyWide) {}
CXStringW::CXStringW(const char* narrow) : text(kEmptyWide) { *this = narrow; }
CXStringW::CXStringW(const CXStringW& other) : text(kEmptyWide) { *this = other; }
CXStringW::CXStringW(CXStringW&& other) noexcept : text(std::exchange(other.text, kEmptyWide)) {}
CXStringW::~CXStringW() { replaceText<wchar_t>(text, kEmptyWide, nullptr); }

CXStringW& CXStringW::operator=(const CXStringW& other) {
  if (this != &other) AssignCopy(other.text, other.GetSize());
  return *this;
}
CXStringW& CXStringW::operator=(CXStringW&& other) noexcept {
  std::swap(text, other.text);
  return *this;
}
CXStringW& CXStringW::operator=(const char* narrow) {
  replaceText(text, kEmptyWide, narrow != nullptr ? wideText(narrow) : nullptr);
  return *this;
}

int CXStringW::GetSize() const noexcept { return lengthOf(std::wcslen(text)); }
void CXStringW::AssignCopy(const wchar_t* source, int length) {
  const bool some = source != nullptr && length > 0;
  replaceText(text, kEmptyWide,
              some ? copyText(source, static_cast<std::size_t>(length)) : nullptr);
}
void CXStringW::ConcatCopy(const wchar_t* source, int length) {
  if (source == nullptr || length <= 0) return;
  const std::size_t before = std::wcslen(text);
  const auto added = static_cast<std::size_t>(length);
  TextMemory<wchar_t> created = newText<wchar_t>(before + added);
  std::wmemcpy(created.get(), text, before);
  std::wmemcpy(created.get() + before, source, added);
  replaceText(text, kEmptyWide, std::move(created));
}
void CXStringW::Format(const wchar_t* format, ...) {
  // vswprintf cannot report the length in advance, so the capacity doubles until the text fits.
  for (std::size_t capacity = 64; capacity <= kMaxFormat; capacity *= 2) {
    TextMemory<wchar_t> created = newText<wchar_t>(capacity);
    std::va_list arguments;
    va_start(arguments, format);
    const int length = std::vswprintf(created.get(), capacity + 1, format, arguments);
    va_end(arguments);
    // Some systems return the full length of a text that does not fit.
    if (length < 0 || static_cast<std::size_t>(length) > capacity) continue;
    replaceText(text, kEmptyWide, std::move(created));
    return;
  }
}
bool CXStringW::Load(HINSTANCE instance, UINT number) {
  TextMemory<wchar_t> created = newText<wchar_t>(kMaxResource);
  const int length = LoadStringW(instance, number, created.get(), kMaxResource + 1);
  AssignCopy(created.get(), length);
  return length > 0;
}
void CXStringW::Init() noexcept { text = kEmptyWide; }
