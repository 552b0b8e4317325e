#!/usr/bin/env python3
"""Counts the tests that run under Wine and those that are left out by their label, and fails where any
other test of this system is missing there.

Usage: windows_tests.py NATIVE_BUILD WINDOWS_BUILD
"""
import collections
import json
import subprocess
import sys

# What these compare with, drive or look into doesn't exist for Windows; its test preset leaves them out.
LEFT_OUT = ("peer", "sanitizer", "fuzz", "browser", "structure")


def tests(folder):
    """The names of a build's tests, each with its labels."""
    run = subprocess.run(["ctest", "--test-dir", folder, "--show-only=json-v1"],
                         stdout=subprocess.PIPE, check=True)
    found = {}
    for test in json.loads(run.stdout)["tests"]:
        properties = {entry["name"]: entry["value"] for entry in test.get("properties", [])}
        found[test["name"]] = properties.get("LABELS", [])
    return found


def main():
    native, all_windows = tests(sys.argv[1]), tests(sys.argv[2])
    windows = {name for name, labels in all_windows.items() if not set(labels) & set(LEFT_OUT)}
    left, missing = collections.Counter(), []
    for name, labels in native.items():
        reason = next((label for label in LEFT_OUT if label in labels), None)
        if reason is not None:
            left[reason] += 1
        elif name not in windows:
            missing.append(name)
    told = ", ".join(f"{count} {label}" for label, count in left.most_common())
    print(f"{len(windows)} tests run under Wine; {sum(left.values())} are left out by label: {told}")
    for name in missing:
        print(f"missing under Wine: {name}")
    return 1 if missing or not windows else 0


sys.exit(main())
