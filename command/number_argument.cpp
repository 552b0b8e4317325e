#include "command/number_argument.h"

#include <stdexcept>

#include "bignum/text.h"
#include "command/support/text.h"

namespace ulm::tools {

bignum::QLInteger parseNumber(const std::string& text) {
  if (text.find('\0') != std::string::npos) throw std::runtime_error("a zero byte in a number");
  const bignum::NumberText scanned = bignum::scanNumberText(text.c_str());
  for (const char* digit = scanned.first; digit != scanned.last; ++digit) {
    if (bignum::DigitValue(*digit, scanned.radix) < 0) {
      throw std::runtime_error("'" + printable(std::string(1, *digit)) + "' at position " +
                               std::to_string(digit - text.c_str() + 1) + " of \"" +
                               printable(text) + "\" is not a digit of radix " +
                               std::to_string(scanned.radix));
    }
  }
  if (scanned.first == scanned.last)
    throw std::runtime_error("\"" + printable(text) + "\" has no digits");
  return bignum::parseInteger(text.c_str());
}

}  // namespace ulm::tools
