#!/usr/bin/env python3
"""Turns the results of benchmarks into one table, as Markdown and as JSON, and one picture.

Usage: bench_report.py OUT [--docs PAGE] [--build FOLDER] RESULT...
       bench_report.py --check-names PROGRAM...
       bench_report.py --launch LOG COMPILER ARGUMENT...

RESULT is what a program of bench/ writes with --benchmark_out. OUT is a folder that gets performance.md,
performance.json and performance.svg. --docs writes the table into PAGE too, after its mark, and the picture
next to it. --build adds what the build in FOLDER has cost, whose compilers ran under --launch.

A benchmark has the name AREA/OPERATION/WHO/KEY:VALUE..., of which OPERATION may have several parts. WHO is
`ulmira` or begins with `ulmira_` for this system, or names a peer. `limit` is no peer: it measures what
cannot be avoided. Each row has one benchmark of this system and those of all peers with the same area,
operation and values. A peer that is in no row is an error.
"""
import argparse
import json
import math
import re
import resource
import subprocess
import sys
from collections import defaultdict
from pathlib import Path

OURS, LIMIT = "ulmira", "limit"
UNITS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}
MARK = "<!-- The rest of this page is written by scripts/bench.sh --docs. -->"
AIM = 1.5  # times as fast as the fastest peer

# How the time of an operation grows with a value of its name: the exponent of its algorithm, and from which
# value on it is fitted, since constant costs hide it below. With kernel plain the texts, products and
# quotients have exponent 2.
KARATSUBA = math.log2(3)
GROWTH = {
    "bignum/multiply": ("bits", KARATSUBA, 1024),
    "bignum/square": ("bits", KARATSUBA, 1024),
    "bignum/divide": ("bits", KARATSUBA, 1024),
    "bignum/modpow": ("bits", 2, 512),
    "bignum/fullpow": ("bits", 3, 512),
    "bignum/fivepowers": ("bits", 3, 512),
    "bignum/nextprime": ("bits", 4, 256),
    "bignum/gcd": ("bits", 2, 512),
    "bignum/egcd": ("bits", 2, 512),
    "bignum/write10": ("bits", KARATSUBA, 1024),
    "bignum/read10": ("bits", KARATSUBA, 1024),
    "bignum/write16": ("bits", 1, 512),
    "bignum/read16": ("bits", 1, 512),
    "digest": ("bytes", 1, 1024),
    "clip": ("vertices", 1, 8),
    "subset": ("glyphs", 1, 100),
}
MARGIN = 0.1


class BadName(Exception):
    pass


def parse_name(name):
    """The operation, who does it, and the values as pairs."""
    parts = [part for part in name.split("/") if part not in ("manual_time", "real_time")]
    values = []
    while parts and ":" in parts[-1]:
        values.insert(0, tuple(parts.pop().split(":", 1)))
    if len(parts) < 3:
        raise BadName(f"{name}: not AREA/OPERATION/WHO/KEY:VALUE...")
    return "/".join(parts[:-1]), parts[-1], tuple(values)


def is_ours(who):
    return who == OURS or who.startswith(OURS + "_")


def pair(times, works=()):
    """Rows from a dictionary of (operation, who, values) to seconds, and one to the counters `work`."""
    places = defaultdict(dict)
    for (operation, who, values), seconds in times.items():
        places[operation, values][who] = seconds
    rows = []
    for (operation, values), found in places.items():
        ours = [who for who in found if is_ours(who)]
        if not ours:
            raise BadName(f"{operation} {values}: only of {', '.join(found)}")
        peers = {who: seconds for who, seconds in found.items() if not is_ours(who) and who != LIMIT}
        for who in ours:
            fastest = min(peers, key=peers.get, default=None)
            rows.append({
                "operation": operation, "variant": who[len(OURS) + 1:], "size": dict(values),
                "work": dict(works).get((operation, who, values)),
                "ours": found[who], "peers": peers, "limit": found.get(LIMIT),
                "fastest": fastest, "ratio": peers[fastest] / found[who] if fastest else None})
    areas = list(dict.fromkeys(row["operation"].split("/")[0] for row in rows))
    return sorted(rows, key=lambda row: (  # the results come in random order
        areas.index(row["operation"].split("/")[0]), row["operation"], row["size"].get("width") != "64",
        [int(value) if value.isdigit() else value for value in row["size"].values()], row["variant"]))


def read_results(files):
    """The least time of each benchmark in seconds, its counter `work`, and what could not be measured."""
    times, works, failed = {}, {}, []
    for file in files:
        for entry in json.loads(Path(file).read_text(encoding="utf-8"))["benchmarks"]:
            if entry.get("run_type") != "iteration":
                continue
            if entry.get("error_occurred"):
                failed.append(f"{entry['name']}: {entry.get('error_message', '')}")
                continue
            operation, who, values = parse_name(entry["name"])
            if entry.get("label"):  # in place of a number in the name
                values = tuple((key, entry["label"] if key == "font" else value) for key, value in values)
            field = "real_time" if entry["name"].endswith(("manual_time", "real_time")) else "cpu_time"
            seconds = entry.get("each", entry[field] * UNITS[entry.get("time_unit", "ns")])
            place = operation, who, values
            times[place] = min(seconds, times.get(place, math.inf))
            works[place] = entry.get("work")
    return times, works, failed


def fit(points):
    """The slope of a line through the logarithms."""
    logs = [(math.log(x), math.log(y)) for x, y in points]
    x_mean = sum(x for x, _ in logs) / len(logs)
    y_mean = sum(y for _, y in logs) / len(logs)
    return (sum((x - x_mean) * (y - y_mean) for x, y in logs) /
            sum((x - x_mean) ** 2 for x, _ in logs))


def growth(rows):
    """One entry for each operation, variant and set of other values with at least three sizes."""
    series = defaultdict(list)
    for row in rows:
        rule = GROWTH.get(row["operation"]) or GROWTH.get(row["operation"].split("/")[0])
        if rule is None or rule[0] not in row["size"]:
            continue
        key, exponent, start = rule
        size = int(row["size"][key])
        if size < start:
            continue
        others = tuple(value for name, value in row["size"].items() if name != key)
        series[row["operation"], row["variant"], others, key, exponent].append(
            (row["work"] or size, row["ours"]))  # where the size in the name says less than the counter
    entries = []
    for (operation, variant, others, key, exponent), points in series.items():
        if len(points) >= 3:
            entries.append({
                "operation": operation, "variant": variant, "other": " ".join(others), "over": key,
                "from": min(points)[0], "to": max(points)[0], "exponent": fit(points),
                "algorithm": exponent})
    return entries


COMPILES = "compiles.tsv"  # in the folder of a build: processor time in seconds, and source


def launch(log, command):
    """Runs a compiler and adds what it took to a log: processor time, which other programs don't change."""
    code = subprocess.run(command).returncode
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    source = next((word for word in command if word.endswith((".cpp", ".c"))), "")
    with open(log, "a", encoding="utf-8") as out:
        out.write(f"{used.ru_utime + used.ru_stime:.3f}\t{source}\n")
    return code


def build_cost(folder):
    """What the compilations of a build from nothing took, and the sizes of what it made."""
    compiles = [line.split("\t") for line in (Path(folder) / COMPILES).read_text(encoding="utf-8").splitlines()]
    root = Path(__file__).resolve().parent.parent
    seconds, slowest = max((float(time), source) for time, source in compiles)
    libraries = {}
    for file in sorted(Path(folder).rglob("lib*.a")) + sorted(Path(folder).rglob("*ULM_Main*")):
        if not file.is_file() or file.suffix not in (".a", ".so", ".dll"):
            continue
        run = subprocess.run(["size", "-t", str(file)], check=True, capture_output=True, text=True)
        text, data, bss = (int(word) for word in run.stdout.splitlines()[-1].split()[:3])
        libraries[file.name] = {"code": text, "data": data + bss}
    return {"seconds": sum(float(time) for time, _ in compiles), "sources": len(compiles),
            "slowest": str(Path(slowest).resolve().relative_to(root)), "slowest_seconds": seconds,
            "libraries": libraries}


def machine():
    """The processor and the compiler, without names of this machine."""
    info = Path("/proc/cpuinfo").read_text(encoding="utf-8")
    fields = dict(re.findall(r"^(.+?)\s*:\s*(.*)$", info.split("\n\n")[0], re.MULTILINE))
    number = ", ".join(f"{key} {fields[key]}" for key in ("cpu family", "model", "stepping") if key in fields)
    version = subprocess.run(["g++", "-dumpfullversion"], capture_output=True, text=True).stdout.strip()
    return {"processor": f"{fields.get('model name', 'unknown')} ({number})",
            "cores": len(re.findall(r"^processor\s*:", info, re.MULTILINE)), "compiler": f"g++ {version}"}


def time_text(seconds):
    if seconds is None:
        return ""
    for unit, factor in (("ns", 1e-9), ("µs", 1e-6), ("ms", 1e-3)):
        if seconds < 999.5 * factor:
            break
    else:
        unit, factor = "s", 1.0
    value = seconds / factor
    return f"{value:.{0 if value >= 99.95 else 1 if value >= 9.995 else 2}f} {unit}"


def ratio_text(ratio):
    return "" if ratio is None else f"{ratio:.{2 if ratio < 9.995 else 0}f}"


def title(row):
    name = row["operation"].split("/", 1)[1].replace("/", " ").replace("_", " ")
    return name + (f", {row['variant'].replace('_', ' ')}" if row["variant"] else "")


def size_text(size):
    return ", ".join(value if key == "font" else f"{int(value):,} {key}" for key, value in size.items()
                     if (key, value) != ("width", "64"))


def line(*cells):
    return "| " + " | ".join(cells) + " |"


def markdown(report):
    out = [f"{report['machine']['processor']}, {report['machine']['cores']} cores, "
           f"{report['machine']['compiler']}, -O3.", ""]
    areas = defaultdict(list)
    for row in report["rows"]:
        areas[row["operation"].split("/")[0]].append(row)
    out += ["## In short", "", line("Area", "Rows with a peer", "Least ratio", "Median", "Greatest", "Below 1",
                                    f"Below {AIM}"), "|---" * 7 + "|"]
    for area, rows in areas.items():
        ratios = sorted(row["ratio"] for row in rows if row["ratio"] is not None)
        if ratios:
            out.append(line(area, str(len(ratios)), *map(ratio_text, (ratios[0], ratios[len(ratios) // 2],
                            ratios[-1])), *(str(sum(r < bound for r in ratios)) for bound in (1, AIM))))
    for area, rows in areas.items():
        peers = sorted({peer for row in rows for peer in row["peers"]})
        limit = [LIMIT] if any(row["limit"] is not None for row in rows) else []
        out += ["", f"## {area}", "", line("Operation", "Size", "Ours", *peers, *limit, "Ratio"),
                "|---|---" + "|---:" * (2 + len(peers) + len(limit)) + "|"]
        for row in rows:
            cells = [time_text(row["peers"].get(peer)) for peer in peers]
            cells += [time_text(row["limit"])] if limit else []
            out.append(line(title(row), size_text(row["size"]), time_text(row["ours"]), *cells,
                            ratio_text(row["ratio"])))
    if report["growth"]:
        out += ["", "## How the time grows", "",
                line("Operation", "Fitted over", "Exponent", "Of the algorithm"), "|---|---|---:|---:|"]
        for entry in report["growth"]:
            other = entry["other"] if entry["other"] not in ("64", "") else ""
            over = f"{entry['from']:,.0f} to {entry['to']:,.0f} {entry['over']}" + (f", {other}" if other else "")
            over = over.replace(", 32", ", 32 width")
            mark = " (above)" if entry["exponent"] > entry["algorithm"] + MARGIN else ""
            name = entry["operation"].split("/")[0] + " " + title(entry)
            out.append(line(name, over, f"{entry['exponent']:.2f}{mark}", f"{entry['algorithm']:.2f}"))
    if report.get("build"):
        build = report["build"]
        out += ["", "## The build", "", f"The product from nothing takes {build['seconds']:.0f} s of processor time for "
                f"{build['sources']} sources, half of it on two cores. The slowest source is {build['slowest']} with "
                f"{build['slowest_seconds']:.1f} s.", "",
                line("Library", "Bytes of code and constants", "Bytes of data"), "|---|---:|---:|"]
        out += [line(name, f"{sizes['code']:,}", f"{sizes['data']:,}")
                for name, sizes in build["libraries"].items()]
    for name in report["failed"]:
        out += ["", f"Not measured: {name}"]
    return "\n".join(out) + "\n"


def picture(report):
    """A bar for each row from the fastest peer's speed, at 1, to ours, on a logarithmic scale."""
    rows = [row for row in report["rows"] if row["ratio"] is not None]
    step, left, width, top = 13, 390, 520, 40
    low, high = math.log2(1 / 8), math.log2(64)

    def x(ratio):
        return left + width * (min(max(math.log2(ratio), low), high) - low) / (high - low)
    height = top + step * len(rows) + 10
    out = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{left + width + 60}" height="{height}" '
           'font-family="sans-serif" font-size="10"><rect width="100%" height="100%" fill="white"/>',
           '<text x="8" y="14" font-size="12">Speed, with the fastest peer at 1: longer to the right is '
           'faster</text>']
    for power in range(int(low), int(high) + 1):
        at = x(2.0 ** power)
        color = "black" if power == 0 else "#ddd"
        text = str(2 ** power) if power >= 0 else f"1/{2 ** -power}"
        out.append(f'<path d="M{at:.0f} {top - 6}V{height - 8}" stroke="{color}"/>'
                   f'<text x="{at:.0f}" y="{top - 10}" text-anchor="middle">{text}</text>')
    for index, row in enumerate(rows):
        y, ratio = top + step * index, row["ratio"]
        color = "#2a7" if ratio >= AIM else "#db3" if ratio >= 1 else "#c43"
        label = f"{row['operation'].split('/')[0]} {title(row)}, {size_text(row['size'])}"
        start, end = sorted((x(1), x(ratio)))
        out.append(f'<text x="{left - 6}" y="{y + 9}" text-anchor="end">{label}</text>'
                   f'<rect x="{start:.1f}" y="{y + 1}" width="{max(end - start, 1):.1f}" height="{step - 3}" '
                   f'fill="{color}"/><text x="{end + 4:.1f}" y="{y + 9}">{ratio_text(ratio)}</text>')
    return "\n".join(out) + "\n</svg>\n"


def check_names(programs):
    times = {}
    for program in programs:
        run = subprocess.run([program, "--benchmark_list_tests"], check=True, capture_output=True, text=True)
        times.update((parse_name(name), 1.0) for name in run.stdout.splitlines())
    rows = pair(times)
    print(f"{len(times)} benchmarks in {len(rows)} rows")
    return 0 if rows else 1


def main():
    if sys.argv[1:2] == ["--launch"]:
        return launch(sys.argv[2], sys.argv[3:])
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("--check-names", action="store_true")
    parser.add_argument("--docs", type=Path)
    parser.add_argument("--build")
    parser.add_argument("paths", nargs="+")
    options = parser.parse_intermixed_args()
    if options.check_names:
        return check_names(options.paths)
    out = Path(options.paths[0])
    times, works, failed = read_results(options.paths[1:])
    rows = pair(times, works)
    report = {"machine": machine(), "rows": rows, "growth": growth(rows), "failed": failed}
    if options.build:
        report["build"] = build_cost(options.build)
    table, bars = markdown(report), picture(report)
    (out / "performance.json").write_text(json.dumps(report, indent=1) + "\n", encoding="utf-8")
    (out / "performance.md").write_text("# Performance\n\n" + table, encoding="utf-8")
    (out / "performance.svg").write_text(bars, encoding="utf-8")
    if options.docs:
        before = options.docs.read_text(encoding="utf-8").split(MARK)[0]
        options.docs.write_text(before + MARK + "\n\n" + table, encoding="utf-8")
        options.docs.with_suffix(".svg").write_text(bars, encoding="utf-8")
    above = [entry for entry in report["growth"] if entry["exponent"] > entry["algorithm"] + MARGIN]
    print(f"{len(rows)} rows, {sum(row['ratio'] is not None for row in rows)} with a peer; "
          f"{len(above)} grow faster than their algorithm; {out / 'performance.md'}")
    return 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except BadName as fault:
        sys.exit(f"bench_report.py: {fault}")
