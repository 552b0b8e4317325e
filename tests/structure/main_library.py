#!/usr/bin/env python3
"""Holds the finished ULM_Main to what its build promises.

Checks that it exports its two entry points and nothing else; that no type whose memory is managed inside
the language's shared library comes near it (a block of one heap could be freed into the other); that it
carries allocation operators of its own; that its big integers have the plain kernel and no other; that it
holds no static object of a function, and not the compiler's slow test of processor features; and that of
all static initialisers linked into it only the library's entry has the default priority, which makes it the
last to run.
Usage: main_library.py LIBRARY OBJECT_OR_ARCHIVE...
"""

import re
import subprocess
import sys

EXPORTS = {"odrxGetAPIVersion", "odrxCreateModuleObject"}
ENTRY_SOURCE = "dll_entry"
FOREIGN = re.compile(
    r"std::(__cxx11::)?(basic_(string|i?o?stream|filebuf|stringbuf)<|ios_base|locale|filesystem::)")
# Static objects of functions, and of threads, are taken down in an order of their own.
LATE_STATICS = re.compile(r"__cxa_guard_acquire|__cxa_thread_atexit")
# All that an initialiser may hold which does nothing.
IDLE = re.compile(r"\t(push|pop|ret|endbr64|nop\S*|mov\s+%rsp,%rbp|data16|cs nopw|xchg\s+%ax,%ax)\b")
KERNEL = re.compile(r" ulm::bignum::kernel::(\w+)::")
# Asks for all features of the processor at every load, although no source mentions it.
FEATURES = re.compile(r" __cpu_(indicator_init|model)\b")
OPERATORS = ("operator new(unsigned long)", "operator delete(void*)")


def lines(*command):
    run = subprocess.run(command, capture_output=True, text=True, check=True)
    return run.stdout.splitlines()


def check_exports(library):
    names = {line.split()[-1] for line in lines("nm", "-D", "--defined-only", library)}
    if names != EXPORTS:
        yield f"{library} exports {sorted(names)}"


def check_symbols(library):
    defined = "\n".join(lines("nm", "-C", "--defined-only", library))
    for operator in OPERATORS:
        if not re.search(rf" t {re.escape(operator)}$", defined, re.MULTILINE):
            yield f"{library} has no {operator} of its own"
    kernels = set(KERNEL.findall(defined))
    if kernels != {"plain"}:
        yield f"{library} has the big integers' kernels {sorted(kernels)}"
    if FEATURES.search(defined):
        yield f"{library} holds the compiler's test of processor features: it slows down every load"
    for line in lines("nm", "-D", "-C", "--undefined-only", library):
        if LATE_STATICS.search(line):
            yield f"{library} uses {line.strip()}: a static object outside the load order"
        if FOREIGN.search(line):
            yield f"{library} uses {line.strip()}: its memory belongs to the language's library"


def idle_initialisers(part):
    """Whether what stands under the default priority does nothing: some compilers leave such a shell
    behind where all initialisers of a source have a priority."""
    inside, found = False, False
    for line in lines("objdump", "-d", "--no-show-raw-insn", part):
        if line.endswith(">:"):
            inside = "<_GLOBAL__sub_I_" in line
            found = found or inside
        elif inside and "\t" in line and not IDLE.search(line):
            return False
    return found


def check_initialisers(library, parts):
    entries = 0
    for part in parts:
        member = part
        for line in lines("readelf", "-S", "-W", part):
            if line.startswith("File: "):
                member = line
            section = re.search(r"\s(\.(init_array|ctors)\S*)\s", line)
            if section is None or section.group(1).startswith(".rela"):
                continue
            if section.group(1) in (".init_array", ".ctors"):
                entries += 1
                if ENTRY_SOURCE not in member and not idle_initialisers(part):
                    yield f"{member}: a static initialiser without a priority would run unordered"
    if entries == 0:
        yield f"no initialiser of {ENTRY_SOURCE} found: is the entry linked at all?"


def main():
    library, parts = sys.argv[1], sys.argv[2:]
    faults = [*check_exports(library), *check_symbols(library), *check_initialisers(library, parts)]
    for fault in faults:
        print(fault)
    print(f"{library}: {len(parts)} parts, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
