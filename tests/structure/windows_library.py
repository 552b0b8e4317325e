#!/usr/bin/env python3
"""Holds the finished ULM_Main.dll to what its build promises: it exports its two entry points and nothing
else, takes nothing of the language's run-time whose memory is managed in there, and shares that run-time
with its host.

Usage: windows_library.py ULM_Main.dll
"""
import re
import subprocess
import sys

EXPORTS = {"odrxGetAPIVersion", "odrxCreateModuleObject"}
RUNTIME = {"libstdc++-6.dll", "libgcc_s_seh-1.dll"}
FOREIGN = re.compile(r"std::(__cxx11::)?(basic_(string|i?o?stream|filebuf|stringbuf)<|ios_base|locale|filesystem::)")
OWN = re.compile(r"operator (new|delete)")


def main():
    library = sys.argv[1]
    dump = subprocess.run(["x86_64-w64-mingw32-objdump", "-p", "--demangle", library],
                          capture_output=True, text=True, check=True).stdout
    table = dump[dump.index("[Ordinal/Name Pointer] Table"):]
    exports = set(re.findall(r"^\s*\[\s*\d+\]\s*(?:\+base\[\s*\d+\]\s*\S+\s+)?(\w+)$", table, re.MULTILINE))
    imports = re.findall(r"^\t[0-9a-f]+\t\s*\d+\s+(.+)$", dump, re.MULTILINE)
    names = subprocess.run(["x86_64-w64-mingw32-c++filt"], input="\n".join(imports), capture_output=True,
                           text=True, check=True).stdout.splitlines()
    faults = []
    if exports != EXPORTS:
        faults.append(f"exports {sorted(exports)}")
    if not RUNTIME <= set(re.findall(r"DLL Name: (\S+)", dump)):
        faults.append("has a run-time of its own")
    faults += [f"imports {name}" for name in names if FOREIGN.search(name) or OWN.search(name)]
    for fault in faults:
        print(f"{library} {fault}")
    print(f"{library}: {len(exports)} exports, {len(names)} imports, {len(faults)} faults")
    return 1 if faults or not names else 0


sys.exit(main())
