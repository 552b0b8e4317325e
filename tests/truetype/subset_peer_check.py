"""Makes subsets of fonts in use with `ulmira font subset`: the browsers' sanitizer has to let them
pass, and fontTools to read them to the last table, with the sources' glyphs at the mapped codes.

Usage: subset_peer_check.py ULMIRA. Ends with 77, and a line, where a peer is not installed.
"""
import json
import logging
import os
import shutil
import subprocess
import sys
import tempfile

try:
    from fontTools.ttLib import TTFont
except ImportError:
    TTFont = None

FOLDER = "/usr/share/fonts/truetype/"
ALPHABETS = ["--unicodes", "U+0020-052F"]
CASES = [  # font, face, what is taken; None for all composites
    ("dejavu/DejaVuSans.ttf", 0, ALPHABETS),
    ("dejavu/DejaVuSans.ttf", 0, None),
    ("freefont/FreeSerif.ttf", 0, ALPHABETS + ["--name", "\u00c4 b"]),
    ("liberation/LiberationSans-Regular.ttf", 0, ALPHABETS + ["--generic-name"]),
    ("wqy/wqy-microhei.ttc", 0, ["--unicodes", "U+0020-007E,U+4E00-9C1F"]),
    ("wqy/wqy-microhei.ttc", 1, ["--unicodes", "U+4E00-5DFF"]),
]


HINTS = ("maxZones", "maxTwilightPoints", "maxStorage", "maxFunctionDefs", "maxInstructionDefs",
         "maxStackElements", "maxSizeOfInstructions")


def glyph(font, number):
    table, name = font["glyf"], font.getGlyphName(number)
    points, ends, flags = table[name].getCoordinates(table)
    hints = getattr(table[name], "program", None)
    return list(points), list(ends), bytes(flags), font["hmtx"][name], hints and hints.getBytecode()


def check(file, face, taken, folder):
    source = TTFont(file, fontNumber=face, lazy=True)
    if taken is None:
        kinds = [source["glyf"][name].isComposite() for name in source.getGlyphOrder()]
        taken = ["--glyphs", ",".join(str(i) for i, composite in enumerate(kinds) if composite)]
    out, mapping = os.path.join(folder, "out.ttf"), os.path.join(folder, "map.json")
    subprocess.run([sys.argv[1], "font", "subset", file, "--face", str(face), "-o", out,
                    "--mapping", mapping, *taken], check=True, capture_output=True)
    subprocess.run(["ots-sanitize", out], check=True, stdout=subprocess.DEVNULL)
    made = TTFont(out, checkChecksums=2)  # a wrong sum is an error
    made.ensureDecompiled()
    with open(mapping, encoding="ascii") as stream:
        told = json.load(stream)
    fresh = {str(code): made.getGlyphID(name) for code, name in made.getBestCmap().items() if code}
    assert fresh == told["new"] and fresh.keys() == told["chars"].keys() and len(fresh) > 300
    for code, name in source.getBestCmap().items():
        assert told["chars"].get(str(code), source.getGlyphID(name)) == source.getGlyphID(name), code
    for code in fresh:
        assert glyph(made, fresh[code]) == glyph(source, told["chars"][code]), code
    assert [getattr(made["maxp"], name) for name in HINTS] == [getattr(source["maxp"], name) for name in HINTS]
    for name in ("unitsPerEm", "flags", "macStyle", "lowestRecPPEM"):
        assert getattr(made["head"], name) == getattr(source["head"], name), name
    assert (made["hhea"].ascent, made["hhea"].descent) == (source["hhea"].ascent, source["hhea"].descent)
    for tag in ("cvt ", "fpgm", "prep", "OS/2"):
        assert (tag in made) == (tag in source), tag
        assert tag not in made or made.reader[tag] == source.reader[tag], tag


if __name__ == "__main__":
    if TTFont is None or shutil.which("ots-sanitize") is None:
        print("skipped: python3-fonttools or opentype-sanitizer is not installed")
        sys.exit(77)
    logging.disable(logging.WARNING)
    for case in CASES:
        print(*case[:2], flush=True)
        with tempfile.TemporaryDirectory() as work:
            if os.path.exists(FOLDER + case[0]):
                check(FOLDER + case[0], *case[1:], work)
