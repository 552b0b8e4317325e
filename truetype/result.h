// The result codes of the font reader.
#pragma once

#include <cstdint>

namespace ulm::truetype {

enum FontResult : std::int32_t {
  FontResultOk = 0,            // the record was built
  FontResultBadArgument = 1,   // no image, or one without bytes
  FontResultNoMemory = 2,      // memory ran out; nothing is left allocated
  FontResultBadFormat = 6,     // the bytes are not an acceptable font
  FontResultBadFaceIndex = 8,  // a collection holds no face of that number
};

// A short English text without a full stop, such as "memory ran out", which is never null and is
// not to be released. Another number than these has one too.
const char* resultText(FontResult result) noexcept;

}  // namespace ulm::truetype
