#include "truetype/result.h"

namespace ulm::truetype {

const char* resultText(FontResult result) noexcept {
  switch (result) {
    case FontResultOk:
      return "done";
    case FontResultBadArgument:
      return "there is no font to open";
    case FontResultNoMemory:
      return "memory ran out";
    case FontResultBadFormat:
      return "not a TrueType font, or a damaged one";
    case FontResultBadFaceIndex:
      return "the collection has no face of that number";
  }
  return "unknown result";
}

}  // namespace ulm::truetype
