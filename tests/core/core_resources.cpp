#include "hostsdk/win32/resource_block.h"

namespace {

ULM_STRING_RESOURCE constexpr ulm::win32::StringEntry<5> kString{40, u"f\u00FCnf!"};

}  // namespace
