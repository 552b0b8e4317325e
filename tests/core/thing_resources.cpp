#include "hostsdk/win32/resource_block.h"

namespace {

ULM_STRING_RESOURCE constexpr ulm::win32::StringEntry<6> kString{40, u"things"};

}  // namespace
