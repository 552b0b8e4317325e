#include "hostsdk/win32/resource_block.h"

namespace {

ULM_VERSION_RESOURCE constexpr ulm::win32::VersionBlock kVersion({1, 2, 3, 4}, {1, 5, 5798, 3294});

struct Strings {
  ulm::win32::StringEntry<5> plain{7, u"Plain"};
  ulm::win32::StringEntry<6> mixed{300, u"\u20AC \u0416 \U0001F600"};
  ulm::win32::StringEntry<6> second{7, u"Second"};
};
ULM_STRING_RESOURCE constexpr Strings kStrings;

}  // namespace
