"""Runs `ulmira clip` beside an exact model of its own, and on input that is at fault.

Usage: clip_command_check.py ULMIRA
"""
import json
import math
import os
import random
import struct
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

ULMIRA = sys.argv.pop(1)
# Name, axis, whether at w; in the order in which planes are run.
PLANES = [("xmin", 0, False), ("xmax", 0, True), ("ymax", 1, True),
          ("ymin", 1, False), ("zmax", 2, True), ("zmin", 2, False)]
HOSTILE = [0.0, -0.0, 1.0, -1.0, 0.5, 2.0, math.inf, -math.inf, math.nan, 5e-324, 1e-45, 1e308, 3e38]


def single(value):
    """The nearest 32-bit value. One operation in 64 bits rounded so is the operation in 32 bits."""
    try:
        return struct.unpack("<f", struct.pack("<f", value))[0]
    except OverflowError:
        return math.copysign(math.inf, value)


class Model:
    def __init__(self, wide, planes):
        self.round = (lambda value: value) if wide else single
        self.planes = [plane for plane in PLANES if plane[0] in planes]

    def divide(self, a, b):
        if b != 0 or math.isnan(a):
            return self.round(a / b) if b != 0 else a
        return math.nan if a == 0 else math.copysign(math.inf, a) * math.copysign(1, b)

    def distance(self, plane, p):
        return self.round(p[3] - p[plane[1]] if plane[2] else p[plane[1]] + p[3])

    def crossing(self, plane, p, q):
        start = self.distance(plane, p)
        t = self.divide(start, self.round(start - self.distance(plane, q)))
        r = self.round
        return [r(r(r(b - a) * t) + a) for a, b in zip(p, q)]

    def beyond(self, plane, p):
        return p[plane[1]] > p[3] if plane[2] else -p[3] > p[plane[1]]

    def polygon(self, points):
        codes = [{plane for plane in self.planes if self.beyond(plane, p)} for p in points]
        if not points or set.intersection(*codes):
            return None
        for plane in self.planes:
            if plane not in set.union(*codes):
                continue
            made = []
            for i, now in enumerate(points + points[:1]):
                if i > 0 and self.beyond(plane, points[i - 1]) != self.beyond(plane, now):
                    made.append(self.crossing(plane, points[i - 1], now))
                if i < len(points) and not self.beyond(plane, now):
                    made.append(now)
            points = made
            if len(points) < 3:
                return None
        return points

    def segment(self, points):
        a, b = points
        for plane in self.planes:
            _, axis, high = plane
            a_out = a[axis] > a[3] if high else not a[axis] >= -a[3]
            b_in = b[3] >= b[axis] if high else b[axis] >= -b[3]
            if a_out and not b_in:
                return None
            if a_out:
                a = self.crossing(plane, a, b)
            elif not b_in:
                b = self.crossing(plane, a, b)
        return [a, b]


def ulmira(arguments, text):
    run = subprocess.run([ULMIRA, "clip", *arguments], input=text.encode(), capture_output=True)
    return run.returncode, run.stdout.decode(), run.stderr.decode()


def groups(text):
    """The shapes of the plain text form, each number as its digits."""
    return [None if group == "null" else [line.split() for line in group.split("\n")]
            for group in text.strip("\n").split("\n\n")]


def plain(shapes):
    return "\n\n".join("\n".join(" ".join(map(repr, p)) for p in shape) for shape in shapes) + "\n"


class ClipCommand(unittest.TestCase):
    def compare(self, digits, expected, wide):
        if expected is None or digits is None:
            return self.assertEqual(digits, expected)
        self.assertEqual(len(digits), len(expected))
        for point, wanted in zip(digits, expected):
            for text, value in zip(point, wanted):
                read = float(text) if wide else single(float(text))
                self.assertEqual(struct.pack("<d", abs(read) if math.isnan(read) else read),
                                 struct.pack("<d", abs(value) if math.isnan(value) else value), text)
                if wide and math.isfinite(value):
                    count = lambda t: len(t.split("e")[0].replace(".", "").strip("-0"))
                    self.assertLessEqual(count(text), count(repr(value)))

    def test_results_have_the_bits_of_the_model(self):
        chance = random.Random(5)

        def point(kind):
            if kind == 0:
                p = [chance.choice(HOSTILE) for _ in range(4)]
            else:
                p = [chance.uniform(-2, 2) if kind == 1 else chance.randrange(-4, 5) / 2
                     for _ in range(3)] + [chance.choice([0.0, 1.0, chance.uniform(0, 2)])]
            return p

        for wide in (True, False):
            for planes in ([p[0] for p in PLANES], [p[0] for p in PLANES[:4]], ["zmin", "xmax"]):
                arguments = ["--text"] + ([] if wide else ["--float"])
                arguments += (["--rectangle"] if len(planes) == 4 else
                              ["--planes", ",".join(planes)] if len(planes) == 2 else [])
                model = Model(wide, planes)
                for segments in (False, True):
                    shapes = []
                    for _ in range(1500):
                        kind = chance.randrange(3)
                        count = 2 if segments else chance.choice([1, 2, 3, 4, 5, 8, 50])
                        shapes.append([point(kind) for _ in range(count)])
                    if not wide:  # what is too large for 32 bits is refused, and tested elsewhere
                        shapes = [[[k if not math.isfinite(k) else single(min(k, 3e38)) for k in p]
                                   for p in s] for s in shapes]
                    clip = model.segment if segments else model.polygon
                    code, out, err = ulmira(arguments + ["--segments"] * segments, plain(shapes))
                    self.assertEqual((code, err), (0, ""))
                    results = groups(out)
                    self.assertEqual(len(results), len(shapes))
                    for shape, result in zip(shapes, results):
                        self.compare(result, clip(shape), wide)

    def test_json_in_and_out(self):
        text = ('{"segments":[[[0,0,0,1],[2e0,0,-0.0,1]],null],\n "polygons" : [ null, [],\n'
                '[[0,0,0,1],[0.1,0,0,1.0],[0,1e-999,0,1]], [[9,0,0,1],[8,0,0,1],[8,1,0,1]] ]}')
        code, out, err = ulmira([], text)
        self.assertEqual((code, err), (0, ""))
        read = json.loads(out)
        self.assertEqual(read["segments"], [[[0, 0, 0, 1], [1, 0, 0, 1]], None])
        self.assertEqual(read["polygons"],
                         [None, None, [[0, 0, 0, 1], [0.1, 0, 0, 1], [0, 0, 0, 1]], None])
        self.assertEqual(ulmira([], out)[1], out)
        self.assertIn("0.1,", ulmira(["--float"], text)[1])
        self.assertEqual(json.loads(ulmira([], '{"polygons":[]}')[1]), {"polygons": []})

    def test_faults_are_told_by_line_and_column(self):
        one = '{"polygons":[[[0,0,0,1],[0,0,0,1]'
        cases = [([], "{", "1:2"), ([], '{"polygon":[]}', "1:2"), ([], one, "1:34"),
                 ([], one + "]]} x", "1:38"), ([], '{"polygons":\n[[[1,2,3]]]}', "2:9"),
                 ([], '{"polygons":[[[1,2,3,4,5]]]}', "1:23"), ([], '{"polygons":[3]}', "1:14"),
                 ([], '{"polygons":[[["1",2,3,4]]]}', "1:16"), ([], '{"polygons":[[[01,2,3,4]]]}', "1:17"),
                 ([], '{"polygons":[[[1.,2,3,4]]]}', "1:18"), ([], '{"polygons":[[[1,2,3,NaN]]]}', "1:22"),
                 ([], '{"polygons":[[[1,\n2,1e999,4]]]}', "2:3"),
                 (["--float"], '{"polygons":[[[1,2,1e39,4]]]}', "1:20"),
                 ([], '{"polygons":[],\n"polygons":[]}', "2:1"),
                 ([], '{"segments":[[[1,2,3,4]]]}', "1:24"),
                 ([], '{"segments":[[[0,0,0,1],[0,0,0,1],[0,0,0,1]]]}', "1:34"),
                 ([], "1 2 3 4\n1 2 3\n", "2:6"), ([], "1 2 3 4 5", "1:9"),
                 ([], "# note\n1 x 3 4", "2:3"), ([], "1 2 3 4\nnull", "2:1"),
                 ([], "null\n1 2 3 4", "2:1"), ([], "0x1 2 3 4", "1:1"), ([], "1 2 3 1e999", "1:7"),
                 (["--segments"], "1 2 3 4\n\n1 2 3 4\n", "2:1"),
                 (["--segments"], "1 2 3 4\n1 2 3 4\n1 2 3 4\n", "3:1")]
        with tempfile.TemporaryDirectory() as folder:
            for arguments, text, place in cases:
                svg, written = os.path.join(folder, "a.svg"), os.path.join(folder, "out")
                code, out, err = ulmira(arguments + ["--svg", svg, "-o", written], text)
                self.assertEqual((code, out), (1, ""), text)
                self.assertEqual(err.count("\n"), 1)
                self.assertTrue(err.startswith(f"ulmira clip: standard input:{place}: "), (text, err))
                self.assertEqual(os.listdir(folder), [])
        # A result that JSON has no number for.
        code, out, err = ulmira([], "1e308 0 0 1\n-1e308 0 0 1\n0 1 0 1\n")
        self.assertEqual((code, out), (1, ""))
        self.assertIn("polygons", err)
        self.assertEqual(ulmira(["--text"], "1e308 0 0 1\n-1e308 0 0 1\n0 1 0 1\n")[0], 0)
        self.assertEqual(ulmira(["/no/such/file"], "")[0], 1)
        self.assertEqual(ulmira(["--planes", "wmin"], "")[0], 2)

    def test_picture_of_before_and_after(self):
        with tempfile.TemporaryDirectory() as folder:
            svg = os.path.join(folder, "a.svg")
            text = ("0 0 0 2\n4 0 0 2\n0 1 0 2\n\n9 9 0 1\n8 9 0 1\n8 8 0 1\n\n"
                    "0 0 0 1\n0 1 0 -1\n1 0 0 1\n")
            self.assertEqual(ulmira(["--svg", svg], text)[0], 0)
            tags = [(e.get("class"), e.get("points"))
                    for e in xml.etree.ElementTree.parse(svg).iter() if e.get("points")]
        self.assertEqual(tags[:2], [("before", "0,0 2,0 0,0.5"), ("before", "9,9 8,9 8,8")])
        self.assertEqual(tags[2], ("after", "0,0 1,0 1,0.25 0,0.5"))


unittest.main()
