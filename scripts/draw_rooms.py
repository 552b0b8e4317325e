#!/usr/bin/env python3
"""Draws the rooms of docs/rooms.txt, and the includes between them as the sources have them, into
docs/architecture.md.

An arrow goes from a room to a room that it includes. One that follows from others is left out of the
picture; the table below it has all. Tests, benchmarks, fuzz targets and examples are not drawn.
Usage: draw_rooms.py [--check]   --check changes nothing and fails where the picture is out of date
"""

import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests/structure"))
import rooms as structure  # noqa: E402

PAGE = ROOT / "docs/architecture.md"
BEGIN, END = "<!-- rooms: begin -->\n", "<!-- rooms: end -->\n"
TITLES = {
    "interface": "declares the closed side",
    "declared": "declares the closed side",
    "adapter": "declares the closed side",
    "facility": "ships: the libraries",
    "module": "ships: the module",
    "stand-in": "stands in for the closed side",
    "support": "the command",
    "command": "the command",
}


def read_includes(rooms):
    includes = {name: set() for name in rooms}
    for source in structure.sources(ROOT, sorted({room.top for room in rooms.values()})):
        own = structure.room_of(source, rooms)
        for header in structure.headers_of((ROOT / source).read_text(encoding="utf-8"), ROOT):
            other = structure.room_of(header, rooms)
            if other is not None and other is not own:
                includes[own.name].add(other.name)
    return includes


def reachable(includes, name):
    found, pending = set(), list(includes[name])
    while pending:
        step = pending.pop()
        if step not in found:
            found.add(step)
            pending += includes[step]
    return found


def draw(rooms, includes):
    def node(name):
        return name.replace("/", "_")

    lines = ["```mermaid", "flowchart TB"]
    for number, title in enumerate(dict.fromkeys(TITLES.values())):
        lines.append(f'  subgraph part{number}["{title}"]')
        lines += [f"    {node(name)}[{name}]" for name, room in rooms.items() if TITLES[room.kind] == title]
        lines.append("  end")
    for name in reversed(rooms):
        implied = set().union(*(reachable(includes, other) for other in includes[name]))
        lines += [f"  {node(name)} --> {node(other)}" for other in rooms
                  if other in includes[name] - implied]
    lines += ["```", "", "| Room | Kind | Includes |", "|---|---|---|"]
    for name, room in rooms.items():
        others = ", ".join(f"`{other}`" for other in rooms if other in includes[name])
        lines.append(f"| `{name}` | {room.kind} | {others} |")
    return "\n".join(lines) + "\n"


def main():
    rooms, _ = structure.read_rooms(ROOT)
    page = PAGE.read_text(encoding="utf-8")
    before, found, rest = page.partition(BEGIN)
    _, ended, after = rest.partition(END)
    if not found or not ended:
        sys.exit(f"{PAGE}: the marks of the picture are missing")
    drawn = before + BEGIN + draw(rooms, read_includes(rooms)) + END + after
    if drawn == page:
        return 0
    if "--check" in sys.argv[1:]:
        print("docs/architecture.md: the picture is out of date; run scripts/draw_rooms.py")
        return 1
    PAGE.write_text(drawn, encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main())
