#include "hostsdk/win32/resource_block.h"

namespace {

// A product version at its edges, and another version of the file.
ULM_VERSION_RESOURCE constexpr ulm::win32::VersionBlock kVersion({9, 9, 9, 9}, {0, 65535, 0, 7});

}  // namespace
