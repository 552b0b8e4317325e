"""Writes fonts.txt: what fontTools says of fonts in use, each list of numbers as one mixed value."""
import os
import sys

from fontTools.ttLib import TTFont

FONTS = ["/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
         "/usr/share/fonts/truetype/liberation/LiberationSans-Regular.ttf"]


def mixed(numbers):
    value = 1
    for number in numbers:
        value = ((value ^ (number & 0xFFFFFFFF)) * 1099511628211) & 0xFFFFFFFFFFFFFFFF
    return value


def points(font):
    for name in font.getGlyphOrder():
        places, ends, flags = font["glyf"][name].getCoordinates(font["glyf"])
        yield len(places)
        for i, (x, y) in enumerate(places):
            yield from (int(x), int(y), flags[i] & 1, int(i in ends))


with open(sys.argv[1], "w") as out:
    out.write("# Written by make_fonts.py.\n")
    for file in FONTS:
        font = TTFont(file)
        codes = font["cmap"].getcmap(3, 1).cmap
        values = {"Font": file, "Bytes": os.path.getsize(file),
                  "Advances": mixed(font["hmtx"][name][0] for name in font.getGlyphOrder()),
                  "Codes": mixed(font.getGlyphID(codes[code]) if code in codes else 0
                                 for code in range(0x10000)),
                  "Points": mixed(points(font))}
        out.write("\n" + "".join(f"{key} = {value}\n" for key, value in values.items()))
