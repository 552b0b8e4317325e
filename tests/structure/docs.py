#!/usr/bin/env python3
"""Holds the documents to the tree: every relative link, and every path in backticks that starts with a
folder of the tree, leads to a file or folder.

Usage: docs.py ROOT
"""

import re
import subprocess
import sys
from pathlib import Path

LINK = re.compile(r"\]\(([^)#]+)(?:#[^)]*)?\)")
PATH = re.compile(r"`([\w.-]+/[\w./-]*)`")
MADE = ("build", "install")  # folders that a build makes


def main():
    root = Path(sys.argv[1])
    files = subprocess.run(["git", "ls-files"], cwd=root, capture_output=True, text=True, check=True)
    files = files.stdout.splitlines()
    tops = {name.split("/")[0] for name in files if "/" in name}
    faults, seen = [], 0
    for name in (name for name in files if name.endswith((".md", "rooms.txt"))):
        page = root / name
        text = page.read_text(encoding="utf-8")
        targets = [page.parent / link for link in LINK.findall(text) if "://" not in link]
        targets += [root / path for path in PATH.findall(text)
                   if path.split("/")[0] in tops and path.split("/")[0] not in MADE]
        seen += len(targets)
        faults += [f"{name}: there is no {target.relative_to(root)}" for target in targets
                   if not target.exists()]
    for fault in faults:
        print(fault)
    print(f"{seen} links and paths, {len(faults)} faults")
    return 1 if faults or not seen else 0


sys.exit(main())
