"""Runs the command as its users do, by the rows of a file.

Usage: command_rows.py ROWS [--files FOLDER] [--windows] COMMAND...
ROWS holds blocks of "Key = value", parted by blank lines; '#' starts a line for people. Run is a line for
the shell in a folder with a file abc of these three letters and copies of the files of FOLDER; $U is the
command, and num and font are short for `$U num` and `$U font`. Prints is all that it prints, both streams
together, without the last line end, \\n being a line end and \\\\ a backslash; Tells is a part of that,
written the same way. Status is the exit code if it is not 0. With FOLDER a run that fails must leave all
files as they were and, where only Tells says what it prints and the call is no wrong one, print one line.
On = posix marks what Windows has no such thing for.
"""
import pathlib
import shlex
import shutil
import subprocess
import sys
import tempfile

PRELUDE = 'num() { $U num "$@"; }\nfont() { $U font "$@"; }\n'
USAGE_ERROR = 2


def blocks(text):
    for block in text.split("\n\n"):
        lines = [line for line in block.splitlines() if line and not line.startswith("#")]
        if lines:
            yield dict(line.split(" =", 1) for line in lines)


def plain(value):
    return value.replace("\\\\", "\0").replace("\\n", "\n").replace("\0", "\\")


def contents(folder):
    return {path.name: path.is_file() and path.read_bytes() for path in folder.iterdir()}


def fault(row, command, files):
    """What is wrong with a row, or nothing."""
    row = {key: value[1:] for key, value in row.items()}
    run, status = row.pop("Run"), int(row.pop("Status", "0"))
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        if files:
            shutil.copytree(files, folder, dirs_exist_ok=True)
        (folder / "abc").write_text("abc")
        before = contents(folder)
        ran = subprocess.run(["sh", "-c", f"U={shlex.quote(command)}\n{PRELUDE}{{ {run}\n}} 2>&1"],
                             cwd=folder, stdin=subprocess.DEVNULL, capture_output=True)
        changed = before != contents(folder)
    output = ran.stdout.decode(errors="backslashreplace")
    if "Prints" in row:
        right = output == plain(row.pop("Prints")) + "\n"
    else:
        right = plain(row.pop("Tells")) in output
        if files and status not in (0, USAGE_ERROR):
            right &= output.count("\n") == 1
    assert not row, f"unknown keys {sorted(row)}"
    if files and status != 0:
        right &= not changed
    if right and ran.returncode == status:
        return ""
    return f"{run}\n  gave {ran.returncode} and\n  {output!r}\n" + "  and changed files\n" * changed


def main():
    rows, *command = sys.argv[1:]
    files = command[1] if command[0] == "--files" else None
    command = command[2:] if files else command
    windows = command[0] == "--windows"
    found = [row for row in blocks(pathlib.Path(rows).read_text())
             if row.pop("On", "") != " posix" or not windows]
    faults = [text for text in (fault(row, " ".join(command[windows:]), files) for row in found) if text]
    print("".join(faults) + f"{len(found)} rows, {len(faults)} faults")
    return 1 if faults or not found else 0


sys.exit(main())
