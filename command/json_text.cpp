#include "command/json_text.h"

#include <cstdio>

namespace ulm::tools {

std::string jsonText(const Json& object) {
  const std::string plain = object.dump(-1, ' ', false, Json::error_handler_t::replace);
  std::string text;
  // JSON allows C1 controls and DEL without an escape, but a terminal obeys them.
  for (std::size_t i = 0; i < plain.size(); ++i) {
    const auto byte = static_cast<unsigned char>(plain[i]);
    const unsigned next = i + 1 < plain.size() ? static_cast<unsigned char>(plain[i + 1]) : 0u;
    if (byte != 0x7F && (byte != 0xC2 || next >= 0xA0)) {
      text += plain[i];
      continue;
    }
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\u%04x", byte == 0x7F ? 0x7Fu : next);
    text += escape;
    i += byte != 0x7F;
  }
  return text + '\n';
}

}  // namespace ulm::tools
