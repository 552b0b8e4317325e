#!/usr/bin/env python3
"""Holds the tree to docs/rooms.txt: the order of its rooms and what each kind of room may include.

Fails on an include of a room that is listed later or that the kind of the room does not allow, on an
include of a header in a detail/ folder from outside its room and the rooms inside it, on a declaration
whose definition is in another room, on an include of no file, on a cycle of includes, on an exception
that nothing needs, and on a conditional of the preprocessor in module/ or core/, whose files are the
same on every system. Quoted includes start at the root.
Usage: rooms.py ROOT
"""

import re
import sys
from collections import defaultdict
from dataclasses import dataclass
from pathlib import Path

INCLUDE = re.compile(r'^\s*#\s*include\s+(?:"([^"]+)"|<([^>]+)>)', re.MULTILINE)
CONDITIONAL = re.compile(r"^\s*#\s*(if|ifdef|ifndef|elif)\b", re.MULTILINE)
# Rooms without conditional code.
SAME_EVERYWHERE = ("module/", "core/")
# Folders around the rooms: they may include any public header, and no room includes them.
AROUND = ("tests", "bench", "fuzz", "examples")
# The kinds that a kind may include in addition to itself. A closed kind includes headers of any other kind
# only where its line names them; facilities, moreover, only their own top folder.
ALLOWED = {
    "interface": (),
    "declared": ("interface",),
    "adapter": ("interface", "declared"),
    "module": ("adapter",),
    "facility": (),
    "support": (),
    "stand-in": ("interface", "declared", "adapter", "module", "support"),
    "command": ("facility", "support"),
}


@dataclass
class Room:
    name: str
    kind: str
    rank: int
    headers: tuple

    @property
    def top(self):
        return self.name.split("/")[0]


def read_rooms(root):
    """The rooms by name, in order, and the headers that are excepted from the check of definitions."""
    rooms, exceptions = {}, []
    for line in (root / "docs/rooms.txt").read_text(encoding="utf-8").splitlines():
        words = line.split("#")[0].split()
        if not words:
            continue
        kind, name, *headers = words
        if kind == "exception":
            exceptions.append(name)
        elif kind not in ALLOWED:
            sys.exit(f"docs/rooms.txt: no kind of room is called {kind}")
        else:
            rooms[name] = Room(name, kind, len(rooms), tuple(headers))
    return rooms, exceptions


def room_of(path, rooms):
    held = [name for name in rooms if (path + "/").startswith(name + "/")]
    return rooms[max(held, key=len)] if held else None


def sources(root, tops):
    for top in tops:
        for path in sorted((root / top).rglob("*")):
            if path.suffix in (".h", ".cpp"):
                yield path.relative_to(root).as_posix()


def headers_of(text, root):
    # An include in angle brackets counts as well where it names a file of the tree.
    return [quoted or angled for quoted, angled in INCLUDE.findall(text)
            if quoted or (root / angled).is_file()]


def check_include(source, header, rooms, root):
    if not (root / header).is_file():
        return f'{source}: includes "{header}", which is no file'
    own, other = room_of(source, rooms), room_of(header, rooms)
    if "/detail/" in header:
        owner = header.split("/detail/")[0]
        if not source.startswith((owner + "/", "tests/" + owner + "/", "fuzz/" + owner + "/")):
            return f"{source}: includes {header}, private to {owner}"
    if own is None:
        return None
    if other is None:
        return f"{source}: includes {header}, which belongs to no room"
    if other.rank > own.rank:
        return f"{source}: {own.name} is listed before {other.name} ({header})"
    if other is own or header in own.headers:
        return None
    if own.kind == "facility" and other.top != own.top:
        return f"{source}: a facility may not include {header}"
    if other.kind != own.kind and other.kind not in ALLOWED[own.kind]:
        return f"{source}: {own.kind} {own.name} may not include {other.kind} {other.name} ({header})"
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


# --- Declarations and definitions, as far as the text shows them reliably ---

NOISE = re.compile(r"""//[^\n]*|/\*.*?\*/|R"(\w*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|'(?:\\.|[^'\\\n])+'""",
                   re.DOTALL)
DIRECTIVE = re.compile(r"^[ \t]*#(?:[^\n]*\\\n)*[^\n]*", re.MULTILINE)
NAMESPACE = re.compile(r"(?:inline )?namespace(?: ([\w:]+))?$")
CLASS = re.compile(r"\b(?:class|struct)\s+(?:[A-Z_]+\s+)?(\w+)\b[^()]*$")
FUNCTION = re.compile(r"([\w:~]+|operator\s*\S+?)\s*\($")
NO_FUNCTION = re.compile(r"^(?:using|typedef|static_assert|friend|enum|template\s*<|return|extern template)\b")


def entities(text):
    """What a source says at namespace scope: (form, scope, name), where the form is "declares" or
    "defines" for functions and "class" for the definition of a class. Templates are left out, since
    they are defined where they are declared, and so is what an unnamed namespace holds."""
    text = NOISE.sub(lambda match: " " if match.group().startswith("/") else '""', text)
    text = DIRECTIVE.sub("", text)
    scopes, start, at = [], 0, 0  # a scope is a namespace's name, or None for any other block
    for match in re.finditer(r"[{};]", text):
        at = match.start()
        chunk = " ".join(re.sub(r"\[\[.*?\]\]", "", text[start:at]).split())
        start = match.end()
        if match.group() == "}":
            if scopes:
                scopes.pop()
            continue
        outer = [scope for scope in scopes if scope is not None]
        visible = None not in scopes and "" not in scopes
        opens = match.group() == "{"
        if opens:
            named = NAMESPACE.match(chunk)
            if named:
                scopes.append(named.group(1) or "")
                continue
            if chunk in ('extern ""', "extern"):
                scopes.append("::")
                continue
            scopes.append(None)
        if not visible or not chunk or NO_FUNCTION.match(chunk):
            continue
        scope = "::".join(name for name in outer if name != "::")
        head = chunk.split("(")[0]
        if "(" in chunk and "=" not in head.replace("operator", ""):
            function = FUNCTION.search(head + "(")
            if function and (" " in head.strip() or "::" in function.group(1)):
                yield ("defines" if opens else "declares", scope, function.group(1))
        elif opens and CLASS.search(chunk.split(" : ")[0]):
            yield ("class", scope, CLASS.search(chunk.split(" : ")[0]).group(1))


def check_definitions(texts, rooms, exceptions):
    """Faults of headers whose functions, or whose classes' members, another room defines."""
    declared, classes = defaultdict(set), defaultdict(set)
    defined = defaultdict(set)
    for source, text in texts.items():
        for form, scope, name in entities(text):
            full = f"{scope}::{name}" if scope else name
            if form == "defines":
                defined[full].add(source)
            elif form == "class" and source.endswith(".h"):
                classes[full].add(source)
            elif form == "declares" and source.endswith(".h"):
                declared[full].add(source)
    faults, needed = [], set()

    def compare(header, definers, what):
        own = room_of(header, rooms)
        if own.kind == "declared" or own in (room_of(definer, rooms) for definer in definers):
            return  # a library that takes part in the closed side defines what that declares
        needed.add(header)
        if header not in exceptions:
            faults.append(f"{header}: declares {what}, which {sorted(definers)[0]} defines")

    for full, headers in declared.items():
        if defined[full] and len(headers) == 1:
            compare(*headers, defined[full], full)
    for full, definers in list(defined.items()):
        owner = full.rpartition("::")[0]
        if len(classes.get(owner, ())) == 1:
            compare(*classes[owner], definers, full)
    faults += [f"docs/rooms.txt: nothing needs the exception of {name}" for name in exceptions
               if name not in needed]
    return faults


def main():
    root = Path(sys.argv[1])
    rooms, exceptions = read_rooms(root)
    tops = sorted({room.top for room in rooms.values()})
    faults, graph, texts = [], {}, {}
    for source in sources(root, [*tops, *(top for top in AROUND if (root / top).is_dir())]):
        text = (root / source).read_text(encoding="utf-8")
        if source.startswith(SAME_EVERYWHERE) and CONDITIONAL.search(text):
            faults.append(f"{source}: conditional code, which belongs into hostsdk/ or standin/")
        graph[source] = headers_of(text, root)
        faults += filter(None, (check_include(source, header, rooms, root) for header in graph[source]))
        if source.split("/")[0] in tops:
            if room_of(source, rooms) is None:
                faults.append(f"{source}: belongs to no room")
            else:
                texts[source] = text
    cycle = find_cycle(graph)
    if cycle:
        faults.append("cycle: " + " -> ".join(cycle))
    faults += check_definitions(texts, rooms, exceptions)
    for fault in faults:
        print(fault)
    if not graph:
        faults.append("nothing")
        print("no sources found")
    print(f"{len(graph)} sources in {len(rooms)} rooms, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
