#!/usr/bin/env python3
"""Holds finished programs and libraries to the hardening that the build asks for.

Of an ELF file: it can be loaded anywhere, its stack is not executable, its tables of addresses are
read-only before it starts, and nothing in its code is relocated. Of a Windows file: the flags of its header.
Of both, with --checked: some function checks its stack, and with --fortified some call checks a buffer.

Usage: hardening.py [--objdump=NAME] [--checked] [--fortified] FILE...
"""
import re
import subprocess
import sys

DLL_FLAGS = ("HIGH_ENTROPY_VA", "DYNAMIC_BASE", "NX_COMPAT")


def output(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def elf_faults(path):
    header = output("readelf", "-h", "-l", "-d", "-W", path)
    if not re.search(r"Type:\s+DYN", header):
        yield "is linked to a fixed address"
    if not re.search(r"GNU_STACK.* RW ", header):
        yield "has an executable stack"
    if "GNU_RELRO" not in header or not re.search(r"BIND_NOW|FLAGS_1.*NOW", header):
        yield "has tables of addresses that stay writable"
    if "TEXTREL" in header:
        yield "has relocations in its code"


def windows_faults(path, objdump):
    header = output(objdump, "-p", path)
    for flag in DLL_FLAGS:
        if flag not in header:
            yield f"is linked without {flag}"


def main():
    options = {a for a in sys.argv[1:] if a.startswith("--")}
    objdump = next((o.split("=")[1] for o in options if o.startswith("--objdump=")), "objdump")
    paths = [a for a in sys.argv[1:] if not a.startswith("--")]
    faults, names = [], ""
    for path in paths:
        with open(path, "rb") as file:
            elf = file.read(4) == b"\x7fELF"
        faults += [f"{path} {fault}" for fault in (elf_faults(path) if elf else windows_faults(path, objdump))]
        names += output("nm", "-D", path) if elf else output(objdump, "-p", path) + output(objdump, "-t", path)
    if "--checked" in options and "__stack_chk_fail" not in names:
        faults.append("no function checks its stack")
    if "--fortified" in options and not re.search(r"__\w+_chk\b", names):
        faults.append("no call checks a buffer")
    print("\n".join(faults + [f"{len(paths)} files, {len(faults)} faults"]))
    return 1 if faults or not paths else 0


sys.exit(main())
