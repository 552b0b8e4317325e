// The debug switches. They are read once from the optional profile file "mt.ini" in the library's
// folder.
//
//   section "mt"   key "JumpArrOnAdd"      bit 0 of the mask
//                  key "JumpArrOnRemove"   bit 1
//                  key "DefecateMem"       bit 2
//                  key "mqlassert"         the assert switch, read only if a debug monitor runs
// A missing key counts as 0. A switch is on if its number is not 0; negative numbers count too.
#pragma once

#include <cstdint>

inline constexpr std::uint32_t kSwitchJumpArrOnAdd = 1u << 0;
inline constexpr std::uint32_t kSwitchJumpArrOnRemove = 1u << 1;
inline constexpr std::uint32_t kSwitchDefecateMem = 1u << 2;

// Returns the mask of the first three switches. The first call reads the file. If the file's name
// cannot be found, the mask is 0 for the life of the process.
std::uint32_t DebugSwitches_Read() noexcept;

// Returns true if asserts are on: the assert switch is on, and a top-level window of the class
// "_indebmon" (the debug monitor) exists at the first call. The first call decides for the life of
// the process. It raises std::bad_alloc if there is no memory for its buffer (see allocation.h);
// all later calls return false then.
bool DebugSwitches_AssertEnabled();
