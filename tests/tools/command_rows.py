"""Runs the command as its users do, by the rows of a file.

Usage: command_rows.py ROWS [--windows] COMMAND...
ROWS holds blocks of "Key = value", parted by blank lines; '#' starts a line for people. Run is a line for
the shell in a folder with a file abc of these three letters; $U is the command, and num stands for
`$U num`. Prints is all that it prints, both streams together, without the last line end, \\n being a line
end and \\\\ a backslash; Tells is a part of that, written the same way. Status is the exit code if it is not
0. On = posix marks what Windows has no such thing for.
"""
import pathlib
import shlex
import subprocess
import sys
import tempfile

PRELUDE = 'printf abc >abc\nnum() { $U num "$@"; }\n'


def blocks(text):
    for block in text.split("\n\n"):
        lines = [line for line in block.splitlines() if line and not line.startswith("#")]
        if lines:
            yield dict(line.split(" =", 1) for line in lines)


def plain(value):
    return value.replace("\\\\", "\0").replace("\\n", "\n").replace("\0", "\\")


def fault(row, command):
    """What is wrong with a row, or nothing."""
    row = {key: value[1:] for key, value in row.items()}
    run, status = row.pop("Run"), int(row.pop("Status", "0"))
    with tempfile.TemporaryDirectory() as folder:
        ran = subprocess.run(["sh", "-c", f"U={shlex.quote(command)}\n{PRELUDE}{{ {run}\n}} 2>&1"],
                             cwd=folder, stdin=subprocess.DEVNULL, capture_output=True)
    output = ran.stdout.decode(errors="backslashreplace")
    if "Prints" in row:
        right = output == plain(row.pop("Prints")) + "\n"
    else:
        right = plain(row.pop("Tells")) in output
    assert not row, f"unknown keys {sorted(row)}"
    if right and ran.returncode == status:
        return ""
    return f"{run}\n  gave {ran.returncode} and\n  {output!r}\n"


def main():
    rows, *command = sys.argv[1:]
    windows = command[0] == "--windows"
    found = [row for row in blocks(pathlib.Path(rows).read_text())
             if row.pop("On", "") != " posix" or not windows]
    faults = [text for text in (fault(row, " ".join(command[windows:])) for row in found) if text]
    print("".join(faults) + f"{len(found)} rows, {len(faults)} faults")
    return 1 if faults or not found else 0


sys.exit(main())
