#include "command/number_argument.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>
#include <vector>

#include "bignum/number_theory.h"
#include "bignum/text.h"
#include "command/support/text.h"

namespace ulm::tools {
namespace {

using bignum::QLInteger;

// A number text without its sign, and its radix.
struct Digits {
  bool negative = false;
  std::uint32_t radix = 10;
  std::string_view text;
};

bool isOneOf(char character, const char* list) { return std::strchr(list, character) != nullptr; }

std::uint32_t radixOfMark(char mark) {
  return isOneOf(mark, "xXhH") ? 16 : isOneOf(mark, "oO") ? 8 : isOneOf(mark, "bB") ? 2 : 0;
}

// Reads the sign, and the radix before or after the digits. A text that is only marks has no
// digits. `text` has no zero byte.
Digits scanDigits(std::string_view text, std::uint32_t radix) {
  Digits digits{!text.empty() && text.front() == '-', radix, text};
  if (!text.empty() && isOneOf(text.front(), "+-")) text.remove_prefix(1);
  const std::size_t hash = text.find('#');
  const bool isDigit =
      !text.empty() && bignum::DigitValue(text.back(), static_cast<std::int32_t>(radix)) >= 0;
  if (hash == 1 || hash == 2) {
    digits.radix = 0;
    for (const char digit : text.substr(0, hash)) {
      if (digit < '0' || digit > '9') throw std::runtime_error("the radix before '#' is no number");
      digits.radix = 10 * digits.radix + static_cast<std::uint32_t>(digit - '0');
    }
    if (digits.radix < 2 || digits.radix > 16) {
      throw std::runtime_error("the radix before '#' is not 2 to 16");
    }
    text.remove_prefix(hash + 1);
  } else if (text.size() > 1 && text[0] == '0' && isOneOf(text[1], "xX")) {
    digits.radix = 16;
    text.remove_prefix(2);
    if (!text.empty() && isOneOf(text.back(), "hH")) text.remove_suffix(1);
  } else if (!text.empty() && !isDigit && isOneOf(text.back(), "bBoOhH")) {
    digits.radix = radixOfMark(text.back());
    text.remove_suffix(1);
  } else if (text.size() > 2 && text[0] == '0' && isOneOf(text[1], "bBoO") &&
             bignum::DigitValue(text[1], static_cast<std::int32_t>(radix)) < 0) {
    digits.radix = radixOfMark(text[1]);
    text.remove_prefix(2);
  }
  digits.text = text;
  return digits;
}

// Returns the number of a few checked digits.
QLInteger valueOfPart(std::string_view digits, std::int32_t radix) {
  QLInteger value(0);
  for (const char digit : digits) {
    value *= radix;
    value += bignum::DigitValue(digit);
  }
  return value;
}

// Returns the number of checked digits. The library reads four radices only. For the others
// neighbouring parts are joined in pairs, so that long texts take few and large products.
QLInteger valueOf(std::string_view digits, std::uint32_t radix) {
  if (radix == 2 || radix == 8 || radix == 10 || radix == 16) {
    const char* mark = radix == 16 ? "h" : radix == 10 ? "" : radix == 8 ? "o" : "b";
    return bignum::parseInteger((std::string(digits) + mark).c_str());
  }
  constexpr std::size_t kDigitsOfPart = 128;
  const auto factor = static_cast<std::int32_t>(radix);
  std::vector<QLInteger> parts;  // the lowest first
  while (!digits.empty()) {
    const std::size_t start = digits.size() - std::min(digits.size(), kDigitsOfPart);
    parts.push_back(valueOfPart(digits.substr(start), factor));
    digits.remove_suffix(digits.size() - start);
  }
  QLInteger scale = bignum::Pow(QLInteger(factor), QLInteger(std::int32_t{kDigitsOfPart}));
  for (; parts.size() > 1; scale *= QLInteger(scale)) {
    std::vector<QLInteger> joined;
    for (std::size_t i = 0; i < parts.size(); i += 2) {
      joined.push_back(i + 1 < parts.size() ? parts[i + 1] * scale + parts[i]
                                            : std::move(parts[i]));
    }
    parts.swap(joined);
  }
  return parts.front();
}

// Returns a text for a message, in quotation marks and without the rest of a long one.
std::string quoted(const std::string& text) {
  constexpr std::size_t kMaxShown = 60;
  return '"' + printable(text.substr(0, kMaxShown)) + (text.size() > kMaxShown ? "..." : "") + '"';
}

}  // namespace

QLInteger parseNumber(const std::string& text, std::uint32_t radix) {
  if (text.find('\0') != std::string::npos) throw std::runtime_error("a zero byte in a number");
  std::string joined = text;
  if (text.find(':') != std::string::npos) {
    std::erase_if(joined, [](char c) { return isOneOf(c, ": \t\r\n\v\f"); });
    radix = 16;
  }
  const Digits digits = scanDigits(joined, radix);
  for (const char& digit : digits.text) {
    if (bignum::DigitValue(digit, static_cast<std::int32_t>(digits.radix)) < 0) {
      throw std::runtime_error("'" + printable(std::string(1, digit)) + "' at position " +
                               std::to_string(&digit - joined.data() + 1) + " of " +
                               quoted(joined) + " is not a digit of radix " +
                               std::to_string(digits.radix));
    }
  }
  if (digits.text.empty()) throw std::runtime_error(quoted(text) + " has no digits");
  QLInteger value = valueOf(digits.text, digits.radix);
  if (digits.negative && value.IsNonZero()) value.Negate();
  return value;
}

std::string numberText(const QLInteger& number, std::uint32_t radix, NumberForm form) {
  std::string text = bignum::toString(number, radix);
  if (radix == 10) return text;
  const bool common = radix == 2 || radix == 8 || radix == 16;
  if (common && form == NumberForm::Mark) return text;
  text.pop_back();  // the mark of the radix, which is no usable one for the other radices
  if (form == NumberForm::Bare) return text;
  const std::string prefix = radix == 16  ? "0x"
                             : radix == 8 ? "0o"
                             : radix == 2 ? "0b"
                                          : std::to_string(radix) + '#';
  return text.insert(number.IsNegative() ? 1 : 0, prefix);
}

}  // namespace ulm::tools
