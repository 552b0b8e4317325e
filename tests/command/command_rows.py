"""Runs the command in a shell, as the rows of a file describe.

Usage: command_rows.py ROWS [--files FOLDER] [--windows] COMMAND...
ROWS contains blocks of "Key = value" lines, separated by blank lines. '#' starts a comment line.
  Run     a shell command. The current folder contains a file abc with the text "abc" and copies of the
          files of FOLDER. $U is COMMAND; num and font are short for `$U num` and `$U font`. $here is the
          folder of the program, $library the ending of its libraries.
  Prints  the complete output of both streams without the last line end. \\n is a line end, \\\\ a backslash.
  Tells   a part of the output, in the same form. A row has either Prints or Tells.
  Status  the exit code; 0 without this key.
  On      posix or windows, for a row that needs a facility of this system.
With FOLDER, a row with another Status than 0 must not change any file; if the row has Tells and is not a
usage error, its output must be one line.
"""
import pathlib
import shlex
import shutil
import subprocess
import sys
import tempfile

PRELUDE = """num() { $U num "$@"; }
font() { $U font "$@"; }
here=$(dirname "${U##* }")
case $U in *.exe) library=.dll;; *) library=.so;; esac
"""
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
    """Returns a description of what is wrong with a row, or an empty text."""
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
    here = " windows" if windows else " posix"
    found = [row for row in blocks(pathlib.Path(rows).read_text())
             if row.pop("On", here) == here]
    faults = [text for text in (fault(row, " ".join(command[windows:]), files) for row in found) if text]
    print("".join(faults) + f"{len(found)} rows, {len(faults)} faults")
    return 1 if faults or not found else 0


sys.exit(main())
