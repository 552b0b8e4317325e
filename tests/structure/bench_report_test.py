#!/usr/bin/env python3
"""Holds the report of the benchmarks to a small set of results.

Usage: bench_report_test.py ROOT FOLDER
"""
import json
import subprocess
import sys
from pathlib import Path


MARK = "<!-- The rest of this page is written by scripts/bench.sh --docs. -->"


def entry(name, time, **more):
    return {"name": name, "run_type": "iteration", "cpu_time": time, "real_time": 7.0, "time_unit": "ns", **more}


def run(root, folder, entries):
    (folder / "in.json").write_text(json.dumps({"benchmarks": entries}), encoding="utf-8")
    page = folder / "page.md"
    page.write_text("Kept.\n" + MARK + "old", encoding="utf-8")
    made = subprocess.run([sys.executable, str(root / "scripts/bench_report.py"), str(folder), "--docs", str(page),
                           str(folder / "in.json")], capture_output=True, text=True)
    return made.returncode, made.stderr, folder / "performance.json"


def main():
    root, folder = Path(sys.argv[1]), Path(sys.argv[2])
    folder.mkdir(parents=True, exist_ok=True)
    entries = [entry(f"subset/create/ulmira/font:0/glyphs:{n}", n ** 2, label="a.ttf") for n in (100, 200, 400)]
    entries += [entry("subset/create/harfbuzz/font:0/glyphs:100", 30000, label="a.ttf"),
                entry("subset/create/harfbuzz/font:0/glyphs:100", 20000, label="a.ttf"),  # the least counts
                entry("subset/create/slow/font:0/glyphs:100", 90000, label="a.ttf"),
                entry("subset/create/limit/font:0/glyphs:100", 1, label="a.ttf"),
                entry("clip/a/b/ulmira_fixed/vertices:3/width:32/manual_time", 1),  # real time
                entry("truetype/map/ulmira/font:0", 1, each=5e-9),  # seconds for one of many
                entry("truetype/map/peer/font:0", 1, error_occurred=True, error_message="lacks it")]
    code, errors, made = run(root, folder, entries)
    assert code == 0, errors
    report = json.loads(made.read_text(encoding="utf-8"))
    rows = {(row["operation"], row["variant"], *row["size"].values()): row for row in report["rows"]}
    first = rows["subset/create", "", "a.ttf", "100"]
    assert (first["fastest"], round(first["ratio"], 6)) == ("harfbuzz", 2), first
    assert abs(rows["clip/a/b", "fixed", "3", "32"]["ours"] - 7e-9) < 1e-15
    assert rows["truetype/map", "", "0"]["ours"] == 5e-9 and rows["truetype/map", "", "0"]["ratio"] is None
    assert report["failed"] == ["truetype/map/peer/font:0: lacks it"]
    assert [round(fitted["exponent"], 6) for fitted in report["growth"]] == [2]
    table = (folder / "performance.md").read_text(encoding="utf-8")
    assert "| create | a.ttf, 100 glyphs | 10.0 µs | 20.0 µs | 90.0 µs | 1.00 ns | 2.00 |" in table, table
    assert "2.00 (above) | 1.00 |" in table, table
    page = (folder / "page.md").read_text(encoding="utf-8")
    assert page.startswith("Kept.\n" + MARK + "\n\n") and "old" not in page and "| 2.00 |" in page, page
    assert (folder / "performance.svg").read_text(encoding="utf-8").count("<rect") == 2
    for wrong in ("subset/create/harfbuzz/font:0/glyphs:200", "subset/ulmira", "subset/made/harfbuzz/font:0"):
        assert run(root, folder, [entry(wrong, 1)])[0] != 0, wrong


main()
