"""Runs the test processes of the module as the rows of a file describe, each row in a process of its own.

Usage: module_rows.py ROWS FOLDER LIBRARY EMULATOR...
FOLDER contains the programs and LIBRARY. A row is "[name]", then
"> process step step ...", then the lines that the process prints; a blank line ends it. Before '>' there may be
  place: NAME    copies LIBRARY to a folder NAME; {library} in a step is the copy. For a number the folder is
                 named so that the full name of the copy has that many characters. {start} in a line is the
                 folder above, as the module names it
  profile: TEXT  writes mt.ini there; \\n is a line end
  version: N     sets the length of the copy's fixed version information to N
  times: N       repeats the steps and the lines
  fails: TEXT    the process ends with a failure, after a message with this text
'#' starts a comment line; "layer: " and "windows: " a line for one system. A row without '>' is for the other.
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor

file, programs, library, *emulator = sys.argv[1:]
ending = ".exe" if library.endswith(".dll") else ""
system = "windows: " if ending else "layer: "
# Freed blocks in the allocator's caches count as used, and their number depends on the length of names.
environment = dict(os.environ, GLIBC_TUNABLES="glibc.malloc.tcache_count=0")


def rows(text):
    for line in text.splitlines():
        if line.startswith("[") and line.endswith("]"):
            row = {"name": line[1:-1], "lines": ""}
            yield row
        elif line.startswith(("layer: ", "windows: ")) and not line.startswith(system):
            continue
        elif line and not line.startswith("#"):
            line = line.removeprefix(system)
            key, separator, value = line.partition(": ")
            if "steps" not in row and separator and not line.startswith(">"):
                row[key] = value.encode().decode("unicode_escape")
            elif line.startswith("> "):
                row["steps"] = line[2:].split()
            else:
                row["lines"] += line + "\n"


def place(row, own):
    """Copies the library to the row's folder and returns the copy."""
    name = row.pop("place")
    if name.isdigit():
        name = "n" * (int(name) - len(windows_name(own)) - len("//") - len(library))
        name = "".join("/" if at % 200 == 0 and 0 < at < len(name) - 1 else n for at, n in enumerate(name))
    copy = own / name / library
    copy.parent.mkdir(parents=True)
    content = pathlib.Path(programs, library).read_bytes()
    if "version" in row:
        at = content.index(b"\xBD\x04\xEF\xFE") - 38  # from the signature of the information
        content = content[:at] + bytes([int(row.pop("version"))]) + content[at + 1:]
    copy.write_bytes(content)
    if "profile" in row:
        (copy.parent / "mt.ini").write_text(row.pop("profile"), newline="")
    return copy


def windows_name(path):
    return "Z:" + str(path).replace("/", "\\")


def fault(row):
    """Returns a description of what is wrong with a row, or an empty text."""
    own = pathlib.Path(tempfile.mkdtemp(prefix="ulmira-"))
    try:
        copy = place(row, own) if "place" in row else own
        named = windows_name(copy) if ending else str(copy)
        times = int(row.pop("times", "1"))
        program, *steps = row.pop("steps")
        steps = [step.replace("{library}", named) for step in steps] * times
        ran = subprocess.run([*emulator, str(pathlib.Path(programs, program + ending)), *steps], env=environment,
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    finally:
        shutil.rmtree(own, ignore_errors=True)
    output = ran.stdout.decode(errors="backslashreplace").replace("\r\n", "\n")
    name, lines, message = row.pop("name"), row.pop("lines"), row.pop("fails", None)
    assert not row, f"unknown keys {sorted(row)}"
    expected = lines.replace("{start}", windows_name(own)) * times
    right = output == expected and ran.returncode == 0
    if message:
        right = message in output and ran.returncode != 0
    return "" if right else f"{name}: ended with {ran.returncode}, printed\n{output}instead of\n{expected}\n"


def main():
    found = [row for row in list(rows(pathlib.Path(file).read_text())) if "steps" in row]
    with ThreadPoolExecutor(2) as pool:
        faults = [text for text in pool.map(fault, found) if text]
    print("".join(faults) + f"{len(found)} rows, {len(faults)} faults")
    return 1 if faults or not found else 0


sys.exit(main())
