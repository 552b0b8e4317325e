// Number texts, hexadecimal texts and bytes. An input is a radix, the size of a buffer, and bytes
// that serve as a text and as the bytes of a number.
#include <string>
#include <vector>

#include "bignum/text.h"
#include "fuzz/number_input.h"

namespace {

using namespace ulm::bignum;
using namespace ulm::fuzz;

// The value of a text by the rules of scanNumberText and FromText, one digit at a time.
QLInteger valueOf(const NumberText& text) {
  QLInteger value(0);
  for (const char* at = text.first; at != text.last; ++at) {
    const std::int32_t digit = DigitValue(*at, text.radix);
    if (digit < 0) continue;
    value *= text.radix;
    value += digit;
  }
  if (text.negative && value.IsNonZero()) value.MakeNegative();
  return value;
}

void checkReading(const std::string& text) {
  const NumberText scanned = scanNumberText(text.c_str());
  require(text.c_str() <= scanned.first && scanned.first <= scanned.last &&
              scanned.last <= text.c_str() + text.size(),
          "the digits are a part of the text");
  require(scanned.radix == 2 || scanned.radix == 8 || scanned.radix == 10 || scanned.radix == 16,
          "the radix");
  const QLInteger value = parseInteger(text.c_str());
  requireNormal(value);
  require(value == valueOf(scanned), "the value of the digits");
#ifdef ULM_FUZZ_WITH_GMP
  std::string digits;
  for (const char* at = scanned.first; at != scanned.last; ++at) {
    if (DigitValue(*at, scanned.radix) >= 0) digits += *at;
  }
  Peer peer;
  if (!digits.empty()) mpz_set_str(peer.number, digits.c_str(), scanned.radix);
  if (scanned.negative) mpz_neg(peer.number, peer.number);
  requireAsPeer(value, peer, "the value is the peer's");
#endif
}

void checkWriting(const QLInteger& value, std::uint32_t radix, std::uint32_t size) {
  const std::string text = toString(value, radix);
  std::vector<char> buffer(size, 'x');  // of the exact size
  const std::uint32_t written = ToText(value, buffer.data(), size, radix);
  if (radix < 2 || radix > 16) {
    require(text.empty() && written == size, "no text of another radix");
    return;
  }
  require((written < size) == (text.size() + 2 <= size), "a text takes its length and two bytes");
  require(written >= size || (written == text.size() + 1 && text == buffer.data()), "the text");
  if (radix == 2 || radix == 8 || radix == 10 || radix == 16) {
    require(parseInteger(text.c_str()) == value, "the text reads back");
  }
}

void checkBytes(Bytes bytes) {
  const QLInteger low = fromBytesLowFirst(bytes);
  requireNormal(low);
  const std::vector<std::uint8_t> turned(bytes.rbegin(), bytes.rend());
  require(low == fromBytesHighFirst(turned), "both orders are one number");
  const ByteRange range = bytesLowFirst(low);
  require(range.size() <= bytes.size() &&
              std::equal(range.begin(), range.end(), bytes.begin(),
                         bytes.begin() + static_cast<std::ptrdiff_t>(range.size())),
          "the bytes come back");
  std::vector<std::uint8_t> exact(bytes.size());
  ToBytes(low, exact.data(), static_cast<std::uint32_t>(exact.size()));
  require(std::equal(exact.begin(), exact.end(), bytes.begin()), "ToBytes writes all bytes");
}

void checkHexadecimal(const std::string& text, Bytes bytes, std::uint32_t room) {
  const auto length = static_cast<std::uint32_t>(bytes.size());
  const std::uint32_t whole = 2 * length + 1;
  std::vector<char> buffer(std::min(room, whole), 'x');
  const auto size = static_cast<std::uint32_t>(buffer.size());
  require(BytesToHex(buffer.data(), size, bytes.data(), length) == whole, "the size of the digits");
  if (size == whole) {
    std::vector<std::uint8_t> back(length);
    require(HexToBytes(back.data(), length, buffer.data()) == static_cast<std::int32_t>(length) &&
                std::equal(back.begin(), back.end(), bytes.begin()),
            "digits read back");
  } else {
    require(std::all_of(buffer.begin(), buffer.end(), [](char c) { return c == 'x'; }),
            "a refusal writes nothing");
  }
  std::vector<std::uint8_t> read(room % 256, 0xEE);
  const std::int32_t count =
      HexToBytes(read.data(), static_cast<std::uint32_t>(read.size()), text.c_str());
  const std::size_t needed = (std::char_traits<char>::length(text.c_str()) + 1) / 2;
  require(needed > read.size() ? count == static_cast<std::int32_t>(needed)
                               : count >= 0 && static_cast<std::size_t>(count) <= needed,
          "the bytes of a text");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 3 || size > 200) return 0;
  Input input(data, size);
  const std::uint8_t radix = input.u8();
  const std::uint16_t room = input.u16();
  const Bytes bytes = input.takeRest();
  const std::string text = input.text(bytes);
  checkReading(text);
  checkBytes(bytes);
  checkHexadecimal(text, bytes, room);
  QLInteger value = numberOfRuns(bytes.first(std::min<std::size_t>(bytes.size(), 8)));
  if ((radix & 0x80) != 0) value.MakeNegative();
  checkWriting(value, radix & 31, room % 2048);
  return 0;
}
