// The conversions between the code pages and wide characters, and those of the system's own names.
// An input is a byte of choices, the size of a buffer, and the text.
#include <string>
#include <vector>

#include "fuzz/input.h"
#include "hostsdk/win32/win32.h"
#include "standin/win32/detail/characters.h"

using namespace ulm::fuzz;
using namespace ulm::win32::detail;

namespace {

// Converts into a buffer of exactly the size asked for, and into one of another size.
template <class Target, class Convert>
std::basic_string<Target> converted(Convert convert, std::size_t room) {
  const int needed = convert(nullptr, 0);
  require(needed >= 0, "a size");
  std::basic_string<Target> whole(static_cast<std::size_t>(needed), Target());
  if (needed == 0) return whole;
  require(convert(whole.data(), needed) == needed, "the size that was asked for is enough");
  std::vector<Target> other(room + 1, Target(7));
  const int written = convert(other.data(), static_cast<int>(room));
  if (room != 0) {
    require(written == (static_cast<std::size_t>(needed) <= room ? needed : 0),
            "a buffer that is too small is a failure");
    const std::size_t filled = std::min(room, whole.size());
    require(std::equal(other.begin(), other.begin() + static_cast<std::ptrdiff_t>(filled),
                       whole.begin()),
            "a buffer is filled as far as possible");
  }
  require(other[room] == Target(7), "nothing is written after a buffer");
  return whole;
}

std::wstring wideOf(UINT page, DWORD flags, const std::string& text, std::size_t room) {
  return converted<wchar_t>(
      [&](wchar_t* target, int size) {
        return MultiByteToWideChar(page, flags, text.data(), static_cast<int>(text.size()), target,
                                   size);
      },
      room);
}
std::string narrowOf(UINT page, const std::wstring& text, std::size_t room) {
  return converted<char>(
      [&](char* target, int size) {
        return WideCharToMultiByte(page, 0, text.data(), static_cast<int>(text.size()), target,
                                   size, nullptr, nullptr);
      },
      room);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 3 || size > 1024) return 0;
  Input input(data, size);
  const std::size_t room = input.u16() % 2048;
  const Bytes bytes = input.takeRest();
  const std::string text = input.text(bytes);

  const std::wstring utf8 = wideOf(CP_UTF8, 0, text, room);
  const std::wstring strict = wideOf(CP_UTF8, MB_ERR_INVALID_CHARS, text, room);
  require(strict.empty() || (strict == utf8 && narrowOf(CP_UTF8, utf8, room) == text),
          "valid UTF-8 comes back");
  require(narrowOf(CP_UTF8, wideOf(CP_UTF8, 0, narrowOf(CP_UTF8, utf8, room), room), room) ==
              narrowOf(CP_UTF8, utf8, room),
          "a second conversion changes nothing");
  require(narrowOf(CP_ACP, wideOf(CP_ACP, 0, text, room), room) == text,
          "each byte of the code page comes back");
  narrowOf(CP_ACP, utf8, room);

  const std::optional<std::string> name = toSystem(fromSystem(text));
  require(name && *name == text, "each name of the system comes back");
  std::wstring wide;
  std::u16string units;
  for (std::size_t i = 0; i + 3 < bytes.size(); i += 4) {
    std::uint32_t value = 0;
    std::memcpy(&value, &bytes[i], 4);
    wide += static_cast<wchar_t>(value);
    units += static_cast<char16_t>(value);
    units += static_cast<char16_t>(value >> 16);
  }
  const std::string encoded =
      narrowOf(CP_UTF8, wide, room);  // of values that are no characters too
  require(wideOf(CP_UTF8, MB_ERR_INVALID_CHARS, encoded, room).size() == wide.size(),
          "what is encoded is UTF-8");
  if (const std::optional<std::string> made = toSystem(wide)) {
    require(fromSystem(*made) == wide, "a text of the system comes back");
  }
  for (const wchar_t character : fromUtf16(units)) {
    require(isCharacter(static_cast<char32_t>(character)), "UTF-16 gives characters");
  }
  return 0;
}
