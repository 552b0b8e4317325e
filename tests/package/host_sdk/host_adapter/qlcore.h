#pragma once
#include <ql/calls.hpp>
#include <ql/strings.hpp>
#include <ql/values.hpp>

// This host's name for the tag of wide text.
inline constexpr QLVariantTag kQLWideString = QLTAG_WIDE;
