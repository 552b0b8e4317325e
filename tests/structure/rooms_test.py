#!/usr/bin/env python3
"""Tests rooms.py on a small tree: it passes as it is, and each change below makes one fault.

Usage: rooms_test.py WORK_FOLDER
"""

import shutil
import subprocess
import sys
from pathlib import Path

ROOMS = """
interface core/iface
declared  hostsdk
adapter   hostsdk/adapter
facility  bignum hostsdk/alloc.h
facility  truetype
facility  truetype/reader
module    core
stand-in  standin
command   command
"""
TREE = {
    "docs/rooms.txt": ROOMS,
    "core/iface/object.h": "class IObject {};",
    "hostsdk/alloc.h": '#include "core/iface/object.h"\nextern "C" void* allocate(int size);',
    "hostsdk/text.h": "class Text { Text(); };",
    "bignum/words.h": '#include "hostsdk/alloc.h"\nnamespace n {\nint words(const char* text);\n}',
    "bignum/words.cpp": '#include "bignum/words.h"\nint n::words(const char*) { return \'{\'; }',
    "truetype/detail/view.h": "namespace t {\nclass View { int size() const; };\nint peek();\n}",
    "truetype/view.cpp": '#include "truetype/detail/view.h"\n'
                         "namespace t {\nint View::size() const { return 0; }\nint peek() { return 1; }\n}",
    "truetype/reader/open.cpp": '#include "truetype/detail/view.h"',
    "hostsdk/adapter/text.h": '#include "hostsdk/text.h"',
    "core/list.h": '#include "hostsdk/adapter/text.h"',
    "standin/text.cpp": '#include "hostsdk/text.h"\n#include "core/list.h"\nText::Text() {}',
    "command/main.cpp": '#include "bignum/words.h"\n// int peek() {}\nnamespace { int peek() { return 2; } }',
    "tests/truetype/view_test.cpp": '#include "truetype/detail/view.h"',
}
# A file, a line that is added to it, and the fault that rooms.py then reports.
CHANGES = [
    ("core/iface/object.h", '#include "core/list.h"', "core/iface is listed before core"),
    ("bignum/words.h", '#include "hostsdk/text.h"', "a facility may not include hostsdk/text.h"),
    ("truetype/reader/open.cpp", '#include "bignum/words.h"', "a facility may not include"),
    ("core/list.h", '#include "truetype/font.h"', "is no file"),
    ("core/list.h", '#include "hostsdk/text.h"', "module core may not include declared hostsdk"),
    ("core/list.h", '#include "bignum/words.h"', "module core may not include facility bignum"),
    ("standin/text.cpp", '#include "bignum/words.h"', "stand-in standin may not include facility"),
    ("command/main.cpp", '#include "core/list.h"', "command command may not include module core"),
    ("command/main.cpp", '#include "truetype/detail/view.h"', "private to truetype"),
    ("core/list.h", '#include "tests/truetype/view_test.cpp"', "belongs to no room"),
    ("core/list.h", "#ifdef X\n#endif", "conditional code"),
    ("hostsdk/text.h", '#include "hostsdk/alloc.h"\n#include "hostsdk/text.h"', "cycle"),
    ("docs/rooms.txt", "exception truetype/detail/view.h", "nothing needs the exception"),
    ("truetype/reader/open.cpp", "int t::peek() { return 3; }", None),  # an overload, for all we know
    ("command/main.cpp", "int n::words(const char*) { return 0; }", None),
]
# A file, where it moves to, and the fault.
MOVED = [
    ("truetype/view.cpp", "truetype/reader/view.cpp", "t::peek, which truetype/reader/view.cpp defines"),
    ("truetype/view.cpp", "truetype/reader/view.cpp", "t::View::size, which truetype/reader/view.cpp"),
    ("bignum/words.cpp", "command/words.cpp", "n::words, which command/words.cpp defines"),
]


def check(work, tree):
    shutil.rmtree(work, ignore_errors=True)
    for name, text in tree.items():
        (work / name).parent.mkdir(parents=True, exist_ok=True)
        (work / name).write_text(text + "\n", encoding="utf-8")
    run = subprocess.run([sys.executable, Path(__file__).parent / "rooms.py", work],
                         capture_output=True, text=True, check=False)
    return run.returncode, run.stdout + run.stderr


def main():
    work = Path(sys.argv[1])
    rows = [(TREE, None)]
    for name, text, fault in CHANGES:
        rows.append(({**TREE, name: TREE[name] + "\n" + text}, fault))
    for name, target, fault in MOVED:
        rows.append(({key: text for key, text in TREE.items() if key != name} | {target: TREE[name]}, fault))
    faults = 0
    for tree, fault in rows:
        code, output = check(work, tree)
        if code != (fault is not None) or (fault or "0 faults") not in output:
            faults += 1
            print(f"expected {fault or 'no fault'}, exit code {code}:\n{output}")
    shutil.rmtree(work, ignore_errors=True)
    print(f"{len(rows)} trees, {faults} faults")
    return 1 if faults else 0


sys.exit(main())
