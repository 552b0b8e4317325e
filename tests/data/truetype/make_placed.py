"""Writes placed.txt: where composites put a point, in exact integers that share no code with the library."""
import sys

ONE = 0x4000  # 2.14


def cut(product):  # by 16 bits towards zero
    return product // 65536 if product >= 0 else -(-product // 65536)


def along(p, x, q, y, by, move):
    """One row of the matrix: p of x and q of y; the last step is cut down."""
    terms = (p * x * 65536, q * y * 65536)
    total = sum(t // by if t >= 0 else -(-t // by) for t in terms) + move * 65536
    return ((cut(by * total) >> 16) & 0xFFFF ^ 0x8000) - 0x8000


def factor(p, q):
    p, q = abs(p), abs(q)
    return max(p, q) * (2 if abs(p - q) <= 33 else 1)


def block(out, flags, record, point, at):
    out.write("\nFlags = %d\nRecord = %s\nPoint = %d %d\nAt = %d %d\n" %
              (flags, " ".join(map(str, record)), *point, *at))


BY_HAND = [  # flags, words behind the glyph index, point, place
    (0x0003, (10, -20), (100, 50), (110, 30)),
    (0x0001, (-10, -20), (100, 50), (90, 30)),  # words are signed in any case
    (0x0000, (0xC8FF,), (0, 0), (200, 255)),  # two bytes
    (0x0002, (0xC8FF,), (0, 0), (-56, -1)),
    (0x000B, (10, 20, ONE // 2), (100, 50), (55, 35)),
    (0x000B, (10, 20, ONE), (100, 50), (110, 70)),
    (0x0043, (3, 4, ONE * 3 // 2, ONE // 2), (7, 5), (15, 4)),
    (0x0043, (3, 4, ONE * 3 // 2, ONE // 2), (7, -13), (15, -5)),
    (0x0083, (0, 0, 0, ONE, -ONE, 0), (100, 50), (-50, 100)),
    (0x00CB, (10, 20, ONE // 2), (100, 50), (55, 35)),  # the single scale counts
    (0x00C3, (3, 4, ONE * 3 // 2, ONE // 2), (7, 5), (15, 4)),
    (0x000B, (10, 20, 0), (100, 50), (10, 20)),
    (0x0083, (10, 20, 0, 0, ONE, ONE), (3, 5), (10, 45)),
    (0x0003, (1, 0), (32767, -32768), (-32768, -32768)),
]

MATRICES = [[v * ONE // 4 for v in (a, b, d)] for a in (3, -5, 2) for b in (3, 1, -2) for d in (6, -1, 2)]
# A row's factor doubles where its magnitudes are at most 33 / 65536 apart: 8 of these units, not 9.
MATRICES += [[12288, 12288 - apart, 12288 + 2 * apart] for apart in (8, 9, 16, 17)]
# Rows with factors near 4.0, the largest, whose remainders have up to 18 bits.
MATRICES += [[31000, 30998, 12000], [32767, 32760, -32766]]

with open(sys.argv[1], "w") as out:
    out.write("# Written by make_placed.py.\n")
    for row in BY_HAND:
        block(out, *row)
    for a, b, d in MATRICES:
        p, q, s = 4 * a, 4 * b, 4 * d
        for x, y in ((1000, -777), (-3, 7), (1999, 1), (16001, 12007)):
            at = (along(p, x, -q, y, factor(p, q), -7), along(q, x, s, y, factor(q, s), 9))
            block(out, 0x0083, (-7, 9, a, b, -b, d), (x, y), at)
