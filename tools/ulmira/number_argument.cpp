#include "tools/ulmira/number_argument.h"

#include <stdexcept>

#include "bignum/text.h"

namespace ulm::tools {
namespace {

// What a user typed, safe to print: bytes that are no ASCII text as their number.
std::string shown(const std::string& text) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string made;
  for (const char byte : text) {
    const auto code = static_cast<unsigned char>(byte);
    if (code >= 0x20 && code < 0x7F) {
      made += byte;
    } else {
      made += {'\\', 'x', kDigits[code >> 4], kDigits[code & 15]};
    }
  }
  return made;
}

}  // namespace

// FromText passes over what is no digit; a user's slip is not to go by unseen.
bignum::QLInteger parseNumber(const std::string& text) {
  if (text.find('\0') != std::string::npos) throw std::runtime_error("a zero byte in a number");
  const bignum::NumberText scanned = bignum::scanNumberText(text.c_str());
  for (const char* next = scanned.first; next != scanned.last; ++next) {
    if (bignum::DigitValue(*next, scanned.radix) < 0) {
      throw std::runtime_error("'" + shown(std::string(1, *next)) + "' at position " +
                               std::to_string(next - text.c_str() + 1) + " of \"" + shown(text) +
                               "\" is no digit of radix " + std::to_string(scanned.radix));
    }
  }
  if (scanned.first == scanned.last)
    throw std::runtime_error("\"" + shown(text) + "\" has no digits");
  return bignum::parseInteger(text.c_str());
}

}  // namespace ulm::tools
