#!/usr/bin/env python3
"""Sums up the line coverage of a build with --coverage.

Prints the share of each library and writes the lines that nothing reaches to unreached.txt in the build folder.
Fails if a library is below the least share.

Usage: coverage_report.py BUILD
"""
import collections
import json
import pathlib
import subprocess
import sys

LEAST = 95.0  # percent of the lines of a library
LIBRARIES = ("bignum", "truetype", "clip", "core", "module", "command", "standin", "hostsdk")
HELD = ("bignum", "truetype", "clip", "core", "module")  # what ships in the main library


def counts_of(build, root):
    """The executions of each line of each source, summed over all objects and instances."""
    lines = collections.defaultdict(lambda: collections.defaultdict(int))
    data = sorted(path.resolve() for path in build.rglob("*.gcda"))
    for start in range(0, len(data), 40):
        run = subprocess.run(["gcov", "--json-format", "--stdout", *map(str, data[start:start + 40])],
                             cwd=build, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True)
        for text in run.stdout.splitlines():
            report = json.loads(text)
            folder = pathlib.Path(report["current_working_directory"])
            for entry in report["files"]:
                source = (folder / entry["file"]).resolve()
                if not source.is_relative_to(root):
                    continue
                name = source.relative_to(root)
                if name.parts[0] in LIBRARIES:
                    for line in entry["lines"]:
                        lines[name][line["line_number"]] += line["count"]
    return lines


def main():
    build, root = pathlib.Path(sys.argv[1]), pathlib.Path.cwd()
    lines = counts_of(build, root)
    reached, total = collections.Counter(), collections.Counter()
    with (build / "unreached.txt").open("w", encoding="utf-8") as out:
        for name in sorted(lines):
            source = (root / name).read_text(encoding="utf-8").splitlines()
            for number, count in sorted(lines[name].items()):
                total[name.parts[0]] += 1
                reached[name.parts[0]] += count > 0
                if count == 0:
                    print(f"{name}:{number}: {source[number - 1].strip()}", file=out)
    below = []
    for library in LIBRARIES:
        if total[library] == 0:
            continue
        share = 100.0 * reached[library] / total[library]
        print(f"{library:10} {reached[library]:6} of {total[library]:6} lines  {share:5.1f} %")
        if library in HELD and share < LEAST:
            below.append(library)
    print(f"what nothing reaches: {build / 'unreached.txt'}")
    if below:
        sys.exit("below " + str(LEAST) + " %: " + ", ".join(below))


main()
