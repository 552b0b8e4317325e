#!/usr/bin/env python3
"""Holds the tree to docs/rooms.txt: which room may include which.

A file belongs to the longest room that starts its path. Quoted includes start at the root. Fails on
an include that the room's line does not allow, on a detail/ header included from outside its room and
the rooms beneath it, on a quoted include of no file, on a cycle of includes, and on a conditional of
the preprocessor in module/ or core/, whose files are the same on every system.
Usage: rooms.py ROOT
"""

import re
import sys
from pathlib import Path

INCLUDE = re.compile(r'^\s*#\s*include\s+(?:"([^"]+)"|<([^>]+)>)', re.MULTILINE)
CONDITIONAL = re.compile(r"^\s*#\s*(if|ifdef|ifndef|elif)\b", re.MULTILINE)
# Rooms without conditional code.
SAME_EVERYWHERE = ("module/", "core/")
# Rooms around the system: they may include any public header, and nothing of the system includes them.
AROUND = ("tests", "bench", "fuzz", "examples")


def read_rooms(root):
    rooms = {}
    for line in (root / "docs/rooms.txt").read_text(encoding="utf-8").splitlines():
        line = line.split("#")[0].strip()
        if line:
            room, _, allowed = line.partition(":")
            rooms[room.strip()] = allowed.split()
    return rooms


def room_of(path, rooms):
    held = [room for room in rooms if path == room or path.startswith(room + "/")]
    return max(held, key=len, default=None)


def sources(root, tops):
    for top in tops:
        for path in sorted((root / top).rglob("*")):
            if path.suffix in (".h", ".cpp"):
                yield path.relative_to(root).as_posix()


def check_include(source, header, rooms, root):
    if not (root / header).is_file():
        return f'{source}: includes "{header}", which is no file'
    from_room, to_room = room_of(source, rooms), room_of(header, rooms)
    if "/detail/" in header:
        owner = header.split("/detail/")[0]
        inside = source.startswith(owner + "/") or source.startswith("tests/" + owner + "/")
        if not inside:
            return f"{source}: includes {header}, private to {owner}"
    if from_room is None:
        return None
    if to_room is None:
        return f"{source}: includes {header}, which belongs to no room"
    if to_room != from_room and to_room not in rooms[from_room]:
        return f"{source}: {from_room} may not include {to_room} ({header})"
    return None


def find_cycle(graph):
    done, path = set(), []

    def visit(node):
        if node in path:
            return path[path.index(node):] + [node]
        if node in done:
            return None
        path.append(node)
        for following in graph.get(node, ()):
            cycle = visit(following)
            if cycle:
                return cycle
        path.pop()
        done.add(node)
        return None

    for start in sorted(graph):
        cycle = visit(start)
        if cycle:
            return cycle
    return None


def main():
    root = Path(sys.argv[1])
    rooms = read_rooms(root)
    tops = sorted({room.split("/")[0] for room in rooms})
    faults, graph = [], {}
    for source in sources(root, [*tops, *(top for top in AROUND if (root / top).is_dir())]):
        text = (root / source).read_text(encoding="utf-8")
        # An include in angle brackets counts as well where it names a file of the tree.
        headers = [quoted or angled for quoted, angled in INCLUDE.findall(text)
                   if quoted or (root / angled).is_file()]
        if source.startswith(SAME_EVERYWHERE) and CONDITIONAL.search(text):
            faults.append(f"{source}: conditional code, which belongs into standin/")
        graph[source] = headers
        faults += filter(None, (check_include(source, header, rooms, root) for header in headers))
        if source.split("/")[0] in tops and room_of(source, rooms) is None:
            faults.append(f"{source}: belongs to no room")
    cycle = find_cycle(graph)
    if cycle:
        faults.append("cycle: " + " -> ".join(cycle))
    for fault in faults:
        print(fault)
    if not graph:
        faults.append("nothing")
        print("no sources found")
    print(f"{len(graph)} sources in {len(rooms)} rooms, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
