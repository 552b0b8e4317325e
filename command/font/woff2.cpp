#include "command/font/woff2.h"

#include <cstdint>
#include <stdexcept>

#if ULMIRA_WOFF2
#include <woff2/encode.h>

#include "command/support/program.h"
#endif

namespace ulm::tools {

bool isWoff2(std::string_view bytes) { return bytes.substr(0, 4) == "wOF2"; }

#if ULMIRA_WOFF2

void requireWoff2() {}

std::string toWoff2(std::string_view font) {
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(font.data());
  std::size_t length = woff2::MaxWOFF2CompressedSize(bytes, font.size());
  std::string packed(length, '\0');
  const SilencedErrorStream silenced;  // some builds of the library print sizes there
  if (!woff2::ConvertTTFToWOFF2(bytes, font.size(), reinterpret_cast<std::uint8_t*>(packed.data()),
                                &length)) {
    throw std::runtime_error(
        "the new font cannot be compressed as WOFF2, since an outline is damaged; without --woff2 "
        "it is written as TrueType");
  }
  packed.resize(length);
  return packed;
}

#else

void requireWoff2() {
  throw std::runtime_error(
      "this build cannot write WOFF2, since libwoff was not there when it was built; leave out "
      "--woff2, or build with Debian's package libwoff-dev");
}

std::string toWoff2(std::string_view) {
  requireWoff2();
  return {};
}

#endif

}  // namespace ulm::tools
