// The resources of the library on systems without resource files: its version and its strings, in
// the library's own file.
#include "module/product_version.h"
#include "platform/win32/resource_block.h"

namespace {

ULM_VERSION_RESOURCE constexpr ulm::win32::VersionBlock kVersion(ULM_VERSION_MAJOR,
                                                                 ULM_VERSION_MINOR,
                                                                 ULM_VERSION_BUILD,
                                                                 ULM_VERSION_REVISION);

}  // namespace
