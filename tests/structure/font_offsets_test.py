#!/usr/bin/env python3
"""Holds font_offsets.py to sources of one fault each, and to one without any.

Usage: font_offsets_test.py
"""

import sys

from font_offsets import check

FAULTY = (
    "x = view.read<std::uint16_t>(4);",
    "x = view.readOrZero<std::uint32_t>(record + 0x8);",
    "x = view.holds(start, 4 * count);",
    "x = readUInt32(entry, 12);",
    "out.put<std::uint16_t>(18, value);",
    "out.clear(offset, wide ? 8 : 6);",
    "std::memcpy(head.get() + 20, created, size);",
    "const std::size_t entry = 12 + i * kSize; x = view.read<std::uint32_t>(entry);",
    "constexpr std::size_t kPairs = 14; const std::size_t pair = kPairs + i; x = view.readHeld<std::uint32_t>(pair);",
    "const auto at = [view](std::size_t offset) { return view.readOrZero<std::int16_t>(offset); }; x = at(68);",
    "const std::uint8_t* bytes = start; x = bytes[2];",
    "const std::uint8_t* entry = font->image + 12;",
    "constexpr std::uint32_t kTagHmtx = 0x686D7478;",
    'x = findTable(font, tag("cvt "));',
)
SOUND = '''
// view.read<std::uint16_t>(4)
const char* text = "readUInt16(bytes, 2)";
x = view.get(Head::kUnitsPerEm) << 16 | view.read<std::uint16_t>(0).value_or(7);
x = view.readHeld<std::uint16_t>(Name::kEntries.at(index + 1));
out.put(Head::kFlags, 3);
for (std::size_t offset = 0; offset < size;) x = view.readHeld<std::uint8_t>(offset++);
if (count < 3 || code > 0xFFFF) return;
'''


def main():
    missed = [line for line in FAULTY if len(check("f.cpp", line + "\n")[0]) == 0]
    faults = check("f.cpp", SOUND)[0]
    for line in missed:
        print(f"no fault found: {line}")
    for fault in faults:
        print(f"no fault: {fault}")
    print(f"{len(FAULTY)} faulty lines, {len(missed) + len(faults)} mistakes")
    return 1 if missed or faults else 0


if __name__ == "__main__":
    sys.exit(main())
