"""Subsets of real fonts by fontTools, as rows for subset_bench in the form of its own output.

Usage: subset_fonttools.py FILE [ROUNDS]. The settings are those of the benchmark: hints, the outline of
.notdef and OS/2 are kept; layout, kerning and glyph names are omitted. fontTools can't use a font twice,
so its time includes the opening of the source, as "open_create" does.
"""
import io
import json
import logging
import os
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
    rows = []
    for index, name in enumerate(FILES):
        file = FOLDER + name
        if not os.path.exists(file):
            continue
        for count in {2: (100, 1000), 3: (100, 1000, 5000, GAPLESS)}.get(index, (100, 1000, 5000)):
            with TTFont(file, fontNumber=0, lazy=True) as source:
                codes = characters(source, count)
            for _ in range(rounds):
                seconds, length = by_fonttools(file, codes)
                rows.append({"name": f"subset/open_create/fonttools/font:{index}/glyphs:{count}",
                             "run_type": "iteration", "label": os.path.basename(file),
                             "cpu_time": seconds * 1e9, "real_time": seconds * 1e9, "time_unit": "ns",
                             "bytes": length})
    with open(sys.argv[1], "w", encoding="utf-8") as out:
        json.dump({"benchmarks": rows}, out, indent=1)


if __name__ == "__main__":
    main()
