// A library with a host's name. It has none of the host's exports, but its own string table.
#include "hostsdk/win32/resource_block.h"

namespace {

struct Strings {
  ulm::win32::StringEntry<3> first{1, u"one"};
  ulm::win32::StringEntry<6> second{2, u"second"};
};
ULM_STRING_RESOURCE constexpr Strings kStrings;

}  // namespace
