#include "hostsdk/win32/resource_block.h"

namespace {

// A product version with extreme numbers, and a different file version.
ULM_VERSION_RESOURCE constexpr ulm::win32::VersionBlock kVersion({9, 9, 9, 9}, {0, 65535, 0, 7});

}  // namespace
