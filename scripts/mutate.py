#!/usr/bin/env python3
"""Breaks the code on purpose, one fault at a time, and reports which tests notice. Run it by hand before tests
are cut and again after: a fault that was noticed before must be noticed after. It is not part of the tests.

The faults are in scripts/mutations/<room>.txt. Lines that start with '#' are remarks. A fault is

    = id                      unique in its room; letters, digits, '.', '-'
    @ path/of/source.cpp      the file to change
    - old text                matches exactly once in the file. Several '-' lines are joined by line ends, so
    - of one or more lines    the first may start, and the last may end, within a line of the file
    + new text                none deletes the old text

Another '-' after '+' begins a second change of the same file, and another '@' a change of another file. A fault
whose old text does not match once is reported as stale: mend its lines, the code has moved on.

The script works in a copy of the tracked files, build/mutate, with a build of its own in it. Before a fault is
built, the objects that depend on it are set aside. They are put back afterwards, so that each fault costs its own
compilations only. Two runs need two copies (--copy).
ROOMS below lists for each room stages of targets to build and tests to run. The cheapest stage comes first, and
a fault that one stage notices does not reach the next. A test that does not end within the limit of time has
noticed the fault; so has one that needs more than 8 GB.

The outcome of each fault is appended to the results file at once:
    noticed   a test failed or did not end
    survived  all tests passed
    stale     the old text does not match exactly once
    refused   the compiler or the linker did not accept it (warnings are errors)
A fault that the file already has is skipped, unless its text has changed. Start a new file for a new tree.

Usage: mutate.py [ROOM[:ID] ...] [--results FILE] [--list] [--all-tests] [--table] [--again] [--copy FOLDER]
"""
import argparse
import hashlib
import os
import re
import resource
import shutil
import signal
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
COPY = ROOT / "build" / "mutate"
BUILD = COPY / "build" / "gcc"  # as far below the sources as with a preset, so that a compiler cache finds its objects
MEMORY = 8 << 30

# Each stage is the targets to build and a regular expression over the names of tests. A target that the build
# does not have is left out.
NUMBERS = [
    ("bignum_test bignum_plain_test memory_test", r"^(bignum(_plain)?|memory)\."),
    ("bignum_kernels_test bignum_division_fuzz bignum_kernels_fuzz bignum_example digest_example",
     r"^(bignum_kernels|fuzz\.bignum.*|example\.(bignum|digest)$)"),
    ("ulmira", r"^command\.(num_command|commands|streams)$"),
]
FONTS = [
    ("truetype_test memory_test", r"^(truetype|memory)\."),
    ("font_fuzz fuzz_seeds ulmira font_files", r"^(fuzz\.seeds|fuzz\.font.*|command\.font.*)$"),
    ("truetype_peer_test truetype_example subset_example",
     r"^(truetype_peer|example\.(truetype|subset)|subset\.peer)"),
]
MODULE = ("module_probe lookup_probe lookup_probe_exporting ULM_Main ULM_MainVariant", r"^module\.")
HOST = ("ulmira leaky_module", r"^(command\.host_command|structure\.main_library)")
ROOMS = {
    "core": [("core_test memory_test", r"^(core|memory)\."), ("module_parts_test", r"^module_parts"), MODULE, HOST],
    "module": [("module_parts_test core_test", r"^(module_parts|core)\."), MODULE, HOST],
    "standin": [("standin_win32_test standin_win32_layer_test memory_system_test odrx_alloc_test "
                 "od_array_test", r"^(standin|memory_system|odrx|od_array)"),
                ("core_test module_parts_test", r"^(core|module_parts)\."), MODULE, HOST],
    "bignum": NUMBERS,
    "digest": NUMBERS,
    "rsa": NUMBERS,
    "wide": NUMBERS,
    "truetype-format": FONTS,
    "truetype-glyph": FONTS,
    "truetype-reader": FONTS,
    "truetype-writer": FONTS,
    "clip": [("clip_model_test clip_growable_test memory_test", r"^(clip_|memory\.)"),
             ("clip_polygon_fuzz clip_example ulmira", r"^(fuzz\.clip.*|clip\.example|clip\.heap|command\.clip)$"),
             ("clip_exact_results", r"^clip\.enclosing_flags$")],
    "command": [("ulmira font_files file_batch_test", r"^(command\.|file_batch)"), HOST,
                ("", r"^subset\.peer")],
}


class Fault:
    def __init__(self, room, name):
        self.room, self.name, self.changes = room, name, []  # [path, old lines, new lines]

    def digest(self):
        return hashlib.sha256(repr(self.changes).encode()).hexdigest()[:8]


def read_faults(room):
    """The faults of a room. Exits with a message on a line that it cannot read."""
    faults, path = [], None
    source = ROOT / "scripts" / "mutations" / f"{room}.txt"
    for number, line in enumerate(source.read_text().splitlines(), 1):
        mark, text = line[:2].rstrip(), line[2:]
        if line.startswith("#") or not line.strip():
            continue
        if mark == "=":
            faults.append(Fault(room, text.strip()))
            path = None
        elif mark == "@" and faults:
            path = text.strip()
        elif mark == "-" and path:
            changes = faults[-1].changes
            if not changes or changes[-1][0] != path or changes[-1][2]:
                changes.append([path, [], []])
            changes[-1][1].append(text)
        elif mark == "+" and path and faults[-1].changes:
            faults[-1].changes[-1][2].append(text)
        else:
            sys.exit(f"{source}:{number}: not understood")
    names = [fault.name for fault in faults]
    if len(set(names)) != len(names) or not all(fault.changes for fault in faults):
        sys.exit(f"{source}: an id is used twice, or a fault changes nothing")
    return faults


def mutated(fault):
    """The texts of the changed files by path, or None if the fault is stale."""
    texts = {}
    for path, old, new in fault.changes:
        if not (ROOT / path).is_file():
            return None
        text = texts.get(path) or (ROOT / path).read_text()
        before, after = "\n".join(old), "\n".join(new)
        if text.count(before) != 1:
            return None
        texts[path] = text.replace(before, after)
    return texts


def copy_tree():
    """Brings the copy up to date with the tracked files. Files that are equal keep their time stamps, unless an
    interrupted run has left a fault's object, which a build would take for a current one."""
    aside = list((COPY / "build").rglob("*.aside")) if COPY.is_dir() else []
    for path in aside:
        path.unlink()
        path.with_name(path.name[:-len(".aside")]).unlink(missing_ok=True)
    listed = subprocess.run(["git", "ls-files", "-z"], cwd=ROOT, capture_output=True, check=True).stdout
    names = {name for name in listed.decode().split("\0") if name and (ROOT / name).is_file()}
    for name in names:
        source, target = ROOT / name, COPY / name
        if target.is_file() and target.read_bytes() == source.read_bytes():
            continue
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_bytes(source.read_bytes())
        shutil.copymode(source, target)
    for path in list(COPY.rglob("*")):
        if path.is_file() and COPY / "build" not in path.parents and str(path.relative_to(COPY)) not in names:
            path.unlink()
    if aside:  # libraries and programs may have the fault too
        for path in BUILD.rglob("*.a"):
            path.unlink()


def run(command, seconds):
    """Runs a command in a process group of its own. Returns its exit code, or None if it did not end, and its
    output."""
    process = subprocess.Popen(
        command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace",
        start_new_session=True,
        preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY)))
    try:
        output, _ = process.communicate(timeout=seconds)
        return process.returncode, output
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        output, _ = process.communicate()
        return None, output


def known_targets():
    """The targets of the build; configures it first if that has not been done."""
    if not (BUILD / "build.ninja").is_file():
        code, output = run(["cmake", "-S", str(COPY), "-B", str(BUILD), "-G", "Ninja",
                            "-DCMAKE_BUILD_TYPE=RelWithDebInfo", "-DCMAKE_CXX_COMPILER=g++", "-DULM_WERROR=ON",
                            "-DULM_TESTS=ON", "-DULM_FUZZ=ON"], 600)
        if code != 0:
            sys.exit(output)
    _, output = run(["ninja", "-C", str(BUILD), "-t", "targets", "all"], 60)
    return {line.split(":")[0] for line in output.splitlines()}


class Rig:
    def __init__(self, options):
        self.options, self.targets, self.aside, self.made = options, known_targets(), {}, set()

    def build(self, targets, keep=False):
        """True if the targets of a stage are built. With `keep`, the objects that this replaces are set aside."""
        wanted = [name for name in targets.split() if name in self.targets]
        if not wanted:
            return True
        if keep:
            _, plan = run(["ninja", "-C", str(BUILD), "-n", *wanted], 300)
            for kind, name in re.findall(r"\] (Building|Linking) .*?(\S+)$", plan, re.MULTILINE):
                path = BUILD / name
                if kind == "Linking" or (path not in self.aside and not path.is_file()):
                    self.made.add(path)
                elif path not in self.aside and path not in self.made:
                    self.aside[path] = path.with_name(path.name + ".aside")
                    shutil.copy2(path, self.aside[path])
        code, self.output = run(["cmake", "--build", str(BUILD), "--target", *wanted], 3600)
        return code == 0

    def restore(self, sources):
        """Undoes a fault: restores the objects, and removes the libraries and programs that were made of others."""
        for path in sources:
            shutil.copy2(self.pristine(path), COPY / path)
        for path, aside in self.aside.items():
            os.replace(aside, path)
        for path in self.made:
            path.unlink(missing_ok=True)
        self.aside, self.made = {}, set()

    def pristine(self, path):
        return COPY / "build" / "pristine" / path

    def failing(self, tests):
        """The failing tests of a stage."""
        command = ["ctest", "--test-dir", str(BUILD), "-R", tests, "-j2", "--timeout", "120"]
        if not self.options.all_tests:
            command.append("--stop-on-failure")
        code, self.output = run(command, self.options.limit)
        if code == 0:
            return []
        failed = re.findall(r"^\s*\d+ - (.+) \([^()]*\)$", self.output, re.MULTILINE)
        if code is None:
            started = re.findall(r"Start\s+(\d+): (.+)", self.output)
            ended = set(re.findall(r"Test\s+#(\d+):", self.output))
            failed += [f"{name} (no end)" for number, name in started if number not in ended]
        return sorted(set(failed)) or ["ctest: " + self.output.strip().splitlines()[-1]]

    def try_fault(self, fault):
        """The outcome of one fault and the tests that notice it."""
        texts = mutated(fault)
        if texts is None:
            return "stale", []
        for path in texts:
            self.pristine(path).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(COPY / path, self.pristine(path))
        try:
            for path, text in texts.items():
                (COPY / path).write_text(text)
            noticed = []
            for targets, tests in ROOMS[fault.room]:
                if not self.build(targets, keep=True):
                    return "refused", [line for line in self.output.splitlines() if "error:" in line][:1]
                noticed += self.failing(tests)
                if noticed and not self.options.all_tests:
                    break
            return ("noticed" if noticed else "survived"), noticed
        finally:
            self.restore(texts)

    def check_room(self, room, run_tests):
        """Exits if a room does not build without a fault, or its tests fail. What is out of date has to be built
        before the first fault, so that only the objects that depend on a fault are set aside."""
        for targets, tests in ROOMS[room]:
            if not self.build(targets):
                sys.exit(f"{room}: the copy does not build\n{self.output[-4000:]}")
            failed = self.failing(tests) if run_tests else []
            if failed:
                sys.exit(f"{room}: these tests fail without a fault: {', '.join(failed)}\n{self.output[-4000:]}")


def read_results(path):
    """The last outcome of each fault in a results file."""
    found = {}
    if path.is_file():
        for line in path.read_text().splitlines():
            room, name, digest, outcome, seconds, tests = line.split("\t")
            found[room, name] = (digest, outcome, tests)
    return found


def print_table(faults, found):
    counts = {}
    for fault in faults:
        digest, outcome, tests = found.get((fault.room, fault.name), ("", "not run", ""))
        if outcome != "not run" and digest != fault.digest():
            outcome = "changed since"
        print(f"{outcome:9} {fault.room + ':' + fault.name:48} {tests}")
        room = counts.setdefault(fault.room, {})
        room[outcome] = room.get(outcome, 0) + 1
    print()
    total = {}
    for room, outcomes in [*counts.items(), ("all", total)]:
        print(f"{room:16} " + ", ".join(f"{count} {outcome}" for outcome, count in sorted(outcomes.items())))
        if outcomes is not total:
            for outcome, count in outcomes.items():
                total[outcome] = total.get(outcome, 0) + count


def main():
    global COPY, BUILD
    parser = argparse.ArgumentParser(description="Breaks the code on purpose and reports which tests notice.")
    parser.add_argument("chosen", nargs="*", metavar="ROOM[:ID]", help="all rooms by default")
    parser.add_argument("--results", type=Path, default=ROOT / "build" / "mutations.txt", metavar="FILE")
    parser.add_argument("--list", action="store_true", help="lists the faults and checks that none is stale")
    parser.add_argument("--table", action="store_true", help="prints the table of the results file, runs nothing")
    parser.add_argument("--all-tests", action="store_true", help="names all tests that notice, not the first")
    parser.add_argument("--again", action="store_true", help="runs faults that the results file already has")
    parser.add_argument("--unchecked", action="store_true", help="does not first run the tests without a fault")
    parser.add_argument("--copy", type=Path, default=ROOT / "build" / "mutate", metavar="FOLDER",
                        help="another folder for the copy")
    parser.add_argument("--limit", type=int, default=300, metavar="SECONDS", help="for the tests of one stage")
    options = parser.parse_args()
    COPY = options.copy.resolve()
    BUILD = COPY / "build" / "gcc"

    faults = []
    for choice in options.chosen or sorted(path.stem for path in (ROOT / "scripts/mutations").glob("*.txt")):
        room, _, name = choice.partition(":")
        if room not in ROOMS:
            parser.error(f"there is no room {room}; the rooms are {', '.join(ROOMS)}")
        chosen = [fault for fault in read_faults(room) if not name or fault.name == name]
        if not chosen:
            parser.error(f"there is no fault {choice}")
        faults += chosen
    if options.list:
        for fault in faults:
            state = "stale" if mutated(fault) is None else ""
            print(f"{fault.room + ':' + fault.name:48} {fault.changes[0][0]:44} {state}")
        return
    found = read_results(options.results)
    if options.table:
        return print_table(faults, found)

    copy_tree()
    rig, checked = Rig(options), set()
    for fault in faults:
        if not options.again and found.get((fault.room, fault.name), ("",))[0] == fault.digest():
            continue
        if fault.room not in checked:
            rig.check_room(fault.room, not options.unchecked)
        checked.add(fault.room)
        begun = time.monotonic()
        outcome, tests = rig.try_fault(fault)
        seconds = time.monotonic() - begun
        shown = "; ".join(tests) if options.all_tests or outcome == "refused" else "; ".join(tests[:1])
        with options.results.open("a") as results:
            results.write("\t".join([fault.room, fault.name, fault.digest(), outcome, f"{seconds:.0f}", shown]) + "\n")
        print(f"{outcome:9} {fault.room + ':' + fault.name:48} {seconds:4.0f} s  {shown}", flush=True)
    print()
    print_table(faults, read_results(options.results))


main()
