// The profile file mt.ini. An input is the file; the four switches are read from it. A file of
// plain bytes gives the same numbers in UTF-8 and in UTF-16 of both byte orders, and with other
// line ends.
#include <array>
#include <string>

#include "fuzz/memory_file.h"
#include "hostsdk/win32/win32.h"

using namespace ulm::fuzz;

namespace {

using Numbers = std::array<UINT, 4>;

Numbers numbersIn(const std::string& content, int defaultValue) {
  static const MemoryFile file;
  file.set(content);
  const std::wstring name = file.windowsName();
  Numbers numbers{};
  const wchar_t* const keys[] = {L"JumpArrOnAdd", L"JumpArrOnRemove", L"DefecateMem", L"mqlassert"};
  for (std::size_t i = 0; i < 4; ++i) {
    numbers[i] = GetPrivateProfileIntW(L"mt", keys[i], defaultValue, name.c_str());
  }
  return numbers;
}

std::string utf16(const std::wstring& text, bool bigEndian) {
  std::string bytes = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
  for (const wchar_t unit : text) {
    const char low = static_cast<char>(unit & 0xFF), high = static_cast<char>(unit >> 8 & 0xFF);
    bytes += bigEndian ? high : low;
    bytes += bigEndian ? low : high;
  }
  return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 4096) return 0;
  const std::string content(data, data + size);
  const Numbers numbers = numbersIn(content, 0);
  const Numbers withDefault = numbersIn(content, 77);
  for (std::size_t i = 0; i < 4; ++i) {
    require(numbers[i] == withDefault[i] || (numbers[i] == 0 && withDefault[i] == 77),
            "only an absent value is the default");
  }
  const std::string start = content.substr(0, 3);
  if (size == 0 || start.starts_with("\xFF\xFE") || start.starts_with("\xFE\xFF") ||
      start == "\xEF\xBB\xBF") {
    return 0;
  }
  std::wstring wide(size, L'\0');
  require(MultiByteToWideChar(CP_ACP, 0, content.data(), static_cast<int>(size), wide.data(),
                              static_cast<int>(size)) == static_cast<int>(size),
          "each byte of the code page is a character");
  std::string utf8(4 * size, '\0');
  utf8.resize(static_cast<std::size_t>(
      WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(size), utf8.data(),
                          static_cast<int>(utf8.size()), nullptr, nullptr)));
  require(numbersIn("\xEF\xBB\xBF" + utf8, 0) == numbers, "the same numbers from UTF-8");
  require(numbersIn(utf16(wide, false), 0) == numbers, "the same numbers from UTF-16");
  require(numbersIn(utf16(wide, true), 0) == numbers, "the same numbers from UTF-16, high first");
  std::string lines;
  for (const char byte : content) lines += byte == '\n' ? "\r\n" : std::string(1, byte);
  require(numbersIn(lines, 0) == numbers, "line ends of two characters");
  return 0;
}
