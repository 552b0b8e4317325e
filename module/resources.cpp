// The resources of the library on systems without resource files: its version and its strings, as
// constants in sections of the library.
#include "hostsdk/win32/resource_block.h"
#include "module/product.h"
#include "module/product_texts.h"

namespace {

constexpr ulm::win32::VersionBlock::Numbers kNumbers{ULM_VERSION_MAJOR, ULM_VERSION_MINOR,
                                                     ULM_VERSION_BUILD, ULM_VERSION_REVISION};
ULM_VERSION_RESOURCE constexpr ulm::win32::VersionBlock kVersion(kNumbers, kNumbers);

struct Strings {
  ulm::win32::StringEntry<sizeof ulm::module::kLongName - 1> longName;
  ulm::win32::StringEntry<sizeof ulm::module::kShortName - 1> shortName;
};
ULM_STRING_RESOURCE constexpr Strings kStrings{
    {ulm::module::kStringLongName, ulm::module::kLongName},
    {ulm::module::kStringShortName, ulm::module::kShortName}};

}  // namespace
