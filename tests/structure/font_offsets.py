#!/usr/bin/env python3
"""Holds the sources that read or write fonts to the descriptions in truetype/format.

In the given folders no number may be spelled as an offset or a length of font data: not in an argument
of a call that reads or writes bytes, not in a variable or constant that such an argument uses, and not
where a pointer to bytes is moved or indexed. No tag of a table may be spelled there either.
0 is allowed: it is the start. Fails on each such number, and where the folders hold no calls at all.
Usage: font_offsets.py ROOT FOLDER...
"""

import re
import sys
from pathlib import Path

# The calls, and which of their arguments are offsets or lengths.
CALLS = {"read": (0,), "readOrZero": (0,), "readHeld": (0,), "holds": (0, 1), "sub": (0, 1), "from": (0,),
         "copy": (0, 1), "put": (0,), "clear": (0, 1), "record": (0,), "array": (0,), "vouched": (0,),
         "readUInt16": (0, 1), "readInt16": (0, 1), "readUInt32": (0, 1), "readInt32": (0, 1),
         "loadBigEndian": (0,), "storeBigEndian": (0,), "memcpy": (0, 1), "memmove": (0, 1), "memset": (0,)}
NUMBER = r"(?:0[xX][0-9a-fA-F']+|\d[\d']*)[uUlLzZ]*"
LITERAL = re.compile(r"(?<![\w.])(" + NUMBER + r")(?![\w.])")
# A name that is given a value, as in `at = 4 + i;`, `at += 4;` and `std::size_t at{4};`.
VALUE = re.compile(r"(?<!::)\b([A-Za-z_]\w*)\s*(?:[+\-*]?=(?!=)|(?<=\w)\{)\s*([^;{}]*)[;}]")
# A function or lambda that takes an offset by name: `at = [view](std::size_t offset) {`.
TAKES_OFFSET = re.compile(r"\b([A-Za-z_]\w*)\s*(?:=\s*\[[^\]]*\]\s*)?\(\s*(?:const\s+)?std::size_t\s+([A-Za-z_]\w*)\s*\)")
POINTER = re.compile(r"\bu?int8_t\s*\*\s*(?:const\s+)?([A-Za-z_]\w*)")
TAG = re.compile(r"\btag\s*\(\s*\"|\b0[xX]([0-9a-fA-F]{8})\b")


def code_of(text):
    """The source with comments and the contents of strings blanked, line numbers kept."""
    def blank(match):
        found = match.group(0)
        kept = found[0] + "".join("\n" if c == "\n" else " " for c in found[1:-1]) + found[-1]
        return kept if found[0] in "\"'" else re.sub(r"[^\n]", " ", found)
    return re.sub(r"//[^\n]*|/\*.*?\*/|R\"\((?:.|\n)*?\)\"|\"(?:\\.|[^\"\\\n])*\"|(?<!\w)'(?:\\.|[^'\\\n])+'",
                  blank, text, flags=re.DOTALL)


def arguments(code, start):
    """The arguments of a call whose bracket opens before `start`."""
    depth, begin, found = 0, start, []
    for i in range(start, len(code)):
        if code[i] in "([{":
            depth += 1
        elif code[i] in ")]}":
            depth -= 1
        if depth < 0 or (depth == 0 and code[i] == ","):
            found.append(code[begin:i])
            begin = i + 1
        if depth < 0:
            break
    return found


def own_part(expression):
    """The expression without the arguments of calls, which are indices or counts, not offsets."""
    before = None
    while before != expression:
        before = expression
        expression = re.sub(r"([\w>])\s*\([^()]*\)", r"\1", expression)
        expression = re.sub(r"<[^<>()]*>", "", expression) if "<<" not in expression else expression
    return expression


def is_term(part, match):
    """Whether what was matched is a term or factor of the expression, a branch of a choice, or all of it."""
    before, after = part[:match.start()].rstrip(), part[match.end():].lstrip()
    return (before[-1:] in ("", "+", "-", "*", "?", ":", "(", "{") and after[:1] in ("", "+", "-", "*", "?", ":", ")", "}", ",")
            and not before.endswith("::") and not after.startswith("::"))


def spells_offset(expression, tainted):
    part = own_part(expression)
    return (any(is_term(part, match) and int(re.sub(r"[uUlLzZ']", "", match.group(1)), 0) != 0
                for match in LITERAL.finditer(part)) or
            any(is_term(part, match) for name in tainted for match in re.finditer(r"(?<![.>\w])" + name + r"\b", part)))


def tainted_names(code):
    values = [(match.group(1), match.group(2)) for match in VALUE.finditer(code)
              if not re.search(r"\b(for|if|while|return)\b", match.group(2))]
    tainted = set()
    while True:
        more = {name for name, value in values if spells_offset(value, tainted)} - tainted
        if not more:
            return tainted
        tainted |= more


def calls_in(code, names):
    """Each call of these names: where it is, its name and its arguments."""
    pattern = re.compile(r"\b(" + "|".join(map(re.escape, names)) + r")\s*(?:<[^;(){}]*?>)?\s*\(")
    return [(match.start(), match.group(1), arguments(code, match.end())) for match in pattern.finditer(code)]


def forwarders(code):
    """The file's own functions of one offset that hand it on to a call that reads or writes."""
    found = {}
    for match in TAKES_OFFSET.finditer(code):
        body = code[match.end():match.end() + 400].split("\n}", 1)[0]
        offsets = [given[index] for _, name, given in calls_in(body, CALLS)
                   for index in CALLS[name] if index < len(given)]
        if any(re.search(r"\b" + match.group(2) + r"\b", own_part(offset)) for offset in offsets):
            found[match.group(1)] = (0,)
    return found


def check(path, text):
    code, faults, calls = code_of(text), [], 0

    def fault(at, what):
        faults.append(f"{path}:{code.count(chr(10), 0, at) + 1}: {what}")

    tainted = tainted_names(code)
    taking = {**forwarders(code), **CALLS}
    for at, name, given in calls_in(code, taking):
        calls += 1
        for index in taking[name]:
            if index < len(given) and spells_offset(given[index], tainted):
                fault(at, f"{name}: a number as an offset: {given[index].strip()}")
    pointers = set(POINTER.findall(code)) | {"image"}
    for name in pointers:
        for match in re.finditer(r"\b" + name + r"\b\s*(?:\+\s*([^;,()]+)|\[([^\]]*)\])", code):
            if spells_offset(match.group(1) or match.group(2), tainted):
                fault(match.start(), f"a pointer moved by a number: {match.group(0).strip()}")
    for match in TAG.finditer(text if "tag" in text else code):
        number = match.group(1)
        if number is None or all(0x20 <= byte < 0x7F for byte in bytes.fromhex(number)):
            fault(match.start(), f"a tag: {match.group(0)}")
    return faults, calls


def main():
    root, folders = Path(sys.argv[1]), sys.argv[2:]
    faults, calls, count = [], 0, 0
    for folder in folders:
        for path in sorted((root / folder).rglob("*")):
            if path.suffix in (".h", ".cpp"):
                found, made = check(path.relative_to(root).as_posix(), path.read_text(encoding="utf-8"))
                faults += found
                calls += made
                count += 1
    for fault in faults:
        print(fault)
    print(f"{calls} reads and writes in {count} sources, {len(faults)} faults")
    return 1 if faults or not calls else 0


if __name__ == "__main__":
    sys.exit(main())
