#!/usr/bin/env python3
"""Prints in one line how many tests of each kind the given presets run. All must be built.

A kind is a label; tests without one are plain. A test that several presets of this system run counts once.
The tests of the preset windows run under Wine and are counted separately.

Usage: count_tests.py PRESET...
"""
import collections
import json
import subprocess
import sys


def kinds(preset):
    """The names of the tests of a preset, each with its kind."""
    run = subprocess.run(["ctest", "--preset", preset, "--show-only=json-v1"],
                         stdout=subprocess.PIPE, check=True)
    found = {}
    for test in json.loads(run.stdout)["tests"]:
        properties = {entry["name"]: entry["value"] for entry in test.get("properties", [])}
        labels = properties.get("LABELS", ["plain"])
        found[test["name"]] = "smoke" if "smoke" in labels else labels[0]  # a benchmark is a peer too
    return found


def main():
    here = {}
    for preset in sys.argv[1:]:
        if preset != "windows":
            here.update(kinds(preset))
    counted = collections.Counter(here.values()).most_common()
    if "windows" in sys.argv[1:]:
        counted.append(("under Wine", len(kinds("windows"))))
    print("== tests: " + ", ".join(f"{count} {kind}" for kind, count in counted))


main()
