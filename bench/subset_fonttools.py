"""Subsets of real fonts by Ulmira, HarfBuzz and fontTools, in one run: medians of processor time, and
sizes in bytes.

Usage: subset_fonttools.py SUBSET_BENCH [ROUNDS], with the benchmark program of the preset `bench`.
The settings are those of the benchmark: hints, the outline of .notdef and OS/2 are kept; layout, kerning
and glyph names are omitted. fontTools can't use a font twice, so its time includes the opening of the
source, as the time of the others does in "opened".
"""
import io
import json
import logging
import statistics
import subprocess
import sys
import time

from fontTools import subset
from fontTools.ttLib import TTFont

FOLDER = "/usr/share/fonts/truetype/"
FILES = ["dejavu/DejaVuSans.ttf", "freefont/FreeSerif.ttf", "liberation/LiberationSans-Regular.ttf",
         "wqy/wqy-microhei.ttc"]
GAPLESS = 20000
DROPPED = "GSUB GPOS GDEF BASE JSTF MATH kern vhea vmtx VORG gasp hdmx LTSH VDMX DSIG FFTM PCLT".split()


def characters(font, count):
    """The first characters that have different glyphs, as in the benchmark."""
    codes, seen = [], {".notdef"}
    for code, name in sorted(font.getBestCmap().items()):
        if (0x4E00 if count == GAPLESS else 1) <= code < 0xFFFF and name not in seen:
            seen.add(name)
            codes.append(code)
    return codes[:count]


def by_fonttools(file, codes):
    options = subset.Options(
        hinting=True, layout_features=[], glyph_names=False, notdef_outline=True, name_IDs=[6],
        prune_unicode_ranges=False, recalc_timestamp=False, legacy_cmap=False, symbol_cmap=False)
    options.drop_tables = list(set(options.drop_tables) | set(DROPPED))
    begin = time.process_time()
    font = TTFont(file, fontNumber=0, lazy=True)
    subsetter = subset.Subsetter(options)
    subsetter.populate(unicodes=codes)
    subsetter.subset(font)
    made = io.BytesIO()
    font.save(made)
    return time.process_time() - begin, len(made.getvalue())


def main():
    rounds = int(sys.argv[2]) if len(sys.argv) > 2 else 3
    logging.disable(logging.WARNING)
    run = subprocess.run(
        [sys.argv[1], "--benchmark_format=json", f"--benchmark_repetitions={rounds}",
         "--benchmark_enable_random_interleaving=true", "--benchmark_min_time=0.1"],
        check=True, capture_output=True)
    cases = {}
    for entry in json.loads(run.stdout)["benchmarks"]:
        if entry.get("aggregate_name") == "median" and not entry.get("error_occurred"):
            parts = entry["run_name"].split("/")
            place = (int(parts[-2]), int(parts[-1].split(":")[1]))
            cases.setdefault(place, {})["/".join(parts[1:-2])] = (
                entry["cpu_time"] / 1e6, int(entry["bytes"]))
    columns = ["ulmira", "harfbuzz", "opened/ulmira", "opened/harfbuzz", "fonttools"]
    print(f"{'milliseconds and bytes':32}" + "".join(f"{name:>26}" for name in columns))
    for (index, count), found in sorted(cases.items()):
        file = FOLDER + FILES[index]
        with TTFont(file, fontNumber=0, lazy=True) as source:
            codes = characters(source, count)
        timed = [by_fonttools(file, codes) for _ in range(rounds)]
        found["fonttools"] = (statistics.median(each[0] for each in timed) * 1e3, timed[0][1])
        cells = [found.get(name) for name in columns]
        print(f"{FILES[index].split('/')[1][:22]:24}{len(codes):8}" +
              "".join(f"{cell[0]:14.3f}{cell[1]:12}" if cell else f"{'-':>26}" for cell in cells),
              flush=True)


if __name__ == "__main__":
    main()
