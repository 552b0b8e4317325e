// The debug switches: read once a process from the optional profile file "mt.ini" beside the
// library.
//
//   section "mt"   key "JumpArrOnAdd"      bit 0 of the mask
//                  key "JumpArrOnRemove"   bit 1
//                  key "DefecateMem"       bit 2
//                  key "mqlassert"         the assert switch; read only while a debug monitor runs
// A key that is missing reads as 0; any other number than 0, a negative one too, means on.
#pragma once

#include <cstdint>

inline constexpr std::uint32_t kSwitchJumpArrOnAdd = 1u << 0;
inline constexpr std::uint32_t kSwitchJumpArrOnRemove = 1u << 1;
inline constexpr std::uint32_t kSwitchDefecateMem = 1u << 2;

// The mask. The first call reads the file; any step that fails leaves the mask 0 for good.
std::uint32_t DebugSwitches_Read() noexcept;

// Whether asserts are on: only with a top-level window of the class "_indebmon" (the debug monitor)
// at the first call. That call decides for the life of the process. std::bad_alloc where its buffer
// cannot be had (see allocation.h), and then the answer is false for good.
bool DebugSwitches_AssertEnabled();
