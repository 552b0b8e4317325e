// A library under a host's name with none of its exports, but with a string table of its own.
#include "hostsdk/win32/resource_block.h"

namespace {

struct Strings {
  ulm::win32::StringEntry<3> first{1, u"one"};
  ulm::win32::StringEntry<6> second{2, u"second"};
};
ULM_STRING_RESOURCE constexpr Strings kStrings;

}  // namespace
