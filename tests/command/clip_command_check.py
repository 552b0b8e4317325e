"""Runs `ulmira clip` on valid and on faulty input.

Usage: clip_command_check.py COMMAND..., the program, after the emulator that runs it if there is one
"""
import json
import os
import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

ULMIRA = sys.argv[1:]
del sys.argv[1:]


def ulmira(arguments, text):
    run = subprocess.run([*ULMIRA, "clip", *arguments], input=text.encode(), capture_output=True)
    return run.returncode, run.stdout.decode(), run.stderr.decode()


class ClipCommand(unittest.TestCase):
    def test_options_in_plain_text(self):
        box = "-1 0 0 1\n0.3 0 0 1\n3 0 5 1\n"
        third = "0 0 0 1\n1.5 0.7 0.1 1\n"
        cut = "0 0 0 1\n1 0.4666666666666666 0.06666666666666667 1\n"
        zeros = "0" * 5000
        for arguments, text, expected in [
                (["--rectangle"], box, "-1 0 0 1\n0.3 0 0 1\n1 0 1.2962962962962963 1\n1 0 2.5 1\n"),
                (["--planes", "ZMAX,xmin"], box,
                 "-1 0 0 1\n0.3 0 0 1\n0.8400000000000001 0 1 1\n-0.20000000000000018 0 1 1\n"),
                (["--float", "--planes", "zmax", "-"], box,
                 "-1 0 0 1\n0.3 0 0 1\n0.84000003 0 1 1\n-0.20000005 0 1 1\n"),
                (["--rectangle", "--planes", "xmax", "--planes", "xmin"], "3 3 9 1\n0 3 9 1\n0 0 9 1",
                 "1 3 9 1\n0 3 9 1\n0 0 9 1\n1 1 9 1\n"),
                (["--segments"], third + "\n\n# gone\nnull\n\n-5e-324 inf -nan 1\n0 2 0 1",
                 cut + "\nnull\n\nnull\n"),
                (["--segments", "--float"], third, "0 0 0 1\n1 0.46666667 0.06666667 1\n"),
                (["--float"], "1e-45 -1e-60 16777217 16777219\n", "1e-45 -0 16777216 16777220\n"),
                # A byte order mark and comments.
                ([], "\ufeff# all\n0 0 0 1 # a\n0.1 0 -nan 1#b\n#c\n0 0.1 0 1\t#\n\nnull#d",
                 "0 0 0 1\n0.1 0 nan 1\n0 0.1 0 1\n\nnull\n"),
                # Headings change the list; the flag is for the shapes before the first heading.
                (["--segments"], f"{third}polygons\nnull\nsegments # more\n{third}",
                 "polygons\nnull\n\nsegments\n" + cut + "\n" + cut),
                # Numbers of many digits, some of them too small for Real.
                ([], f"0.{zeros}1 -0.{zeros}1 1{zeros}e-5000 1{zeros}e-4999\n", "0 -0 1 10\n"),
                ([], f"0.{zeros}1e5001 1e-{zeros}99 1.{zeros}e-{2 ** 70} 1\n", "1 1e-99 0 1\n"),
                # Millions of blank lines are read in linear time.
                ([], (1 << 22) * "\n" + "0 0 0 1", "0 0 0 1\n"),
                ([], "", "")]:
            self.assertEqual(ulmira(arguments, text), (0, expected, ""), (arguments, text[:80]))

    def test_json_in_and_out(self):
        text = ('{"segments":[[[0,0,0,1],[2e0,0,-0.0,1]],null],\n "polygons" : [ null, [],\n'
                '[[0,0,0,1],[0.1,0,0,1.0],[0,1e-999,0,1]], [[9,0,0,1],[8,0,0,1],[8,1,0,1]] ]}')
        code, out, err = ulmira([], text)
        self.assertEqual((code, err), (0, ""))
        read = json.loads(out)
        self.assertEqual(read["segments"], [[[0, 0, 0, 1], [1, 0, 0, 1]], None])
        self.assertEqual(read["polygons"],
                         [None, None, [[0, 0, 0, 1], [0.1, 0, 0, 1], [0, 0, 0, 1]], None])
        # Both forms have the same numbers, and each can be read back without an option.
        text_out = ulmira(["--text"], text)[1]
        for arguments, given, expected in [([], out, out), (["--text"], out, text_out), ([], text_out, text_out),
                                           (["--json", "--segments"], text_out, out),
                                           (["--text"], '{"segments":[]}', "segments\n"),
                                           (["--json"], "segments\n", '{"segments": []}\n')]:
            self.assertEqual(ulmira(arguments, given), (0, expected, ""), given)
        self.assertIn("0.1,", ulmira(["--float"], text)[1])
        self.assertEqual(json.loads(ulmira([], '{"polygons":[]}')[1]), {"polygons": []})

    def test_faults_have_line_and_column(self):
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
                 (["--segments"], "1 2 3 4\n1 2 3 4\n1 2 3 4\n", "3:1"),
                 ([], "\ufeff1 x 3 4", "1:3"), ([], '\ufeff{"polygon":[]}', "1:2"), ([], "1 2 # 3 4", "1:5"),
                 ([], "1" + 10000 * "0" + "e-1 2 3 4", "1:1"), ([], f"0.{10000 * '0'}1e{2 ** 70} 2 3 4", "1:1"),
                 ([], "segments 3", "1:10"),
                 ([], "segments\n0 0 0 1\npolygons", "3:1"), ([], "polygon", "1:1")]
        with tempfile.TemporaryDirectory() as folder:
            for arguments, text, position in cases:
                svg, written = os.path.join(folder, "a.svg"), os.path.join(folder, "out")
                code, out, err = ulmira(arguments + ["--svg", svg, "-o", written], text)
                self.assertEqual((code, out), (1, ""), text)
                self.assertEqual(err.count("\n"), 1)
                self.assertTrue(err.startswith(f"ulmira clip: standard input:{position}: "), (text, err))
                self.assertEqual(os.listdir(folder), [])
        # A result that JSON cannot represent.
        text = "1e308 0 0 1\n-1e308 0 0 1\n0 1 0 1\n"
        code, out, err = ulmira(["--json"], text)
        self.assertEqual((code, out), (1, ""))
        self.assertIn("polygons", err)
        self.assertEqual(ulmira([], text)[0], 0)

    def test_planes_are_one_argument(self):
        names = "xmin, xmax, ymin, ymax, zmin, zmax"
        for arguments, status, message in [
                (["--planes", "xmin", "gone"], 1, "gone: cannot be read"),
                (["--planes", "wmin"], 2, f"clip: --planes: 'wmin' is none of {names}\n"),
                (["--rectangle", "--planes", "xmin,zmax"], 2, "--rectangle excludes zmin and zmax"),
                (["--text", "--json"], 2, "--json excludes --text")]:
            code, out, err = ulmira(arguments, "")
            self.assertEqual((code, out), (status, ""), arguments)
            self.assertIn(message, err)
        self.assertIn(f"Only these planes, of {names}\n", ulmira(["--help"], "")[1])
        self.assertIn("--planes PLANE,...  ", ulmira(["--help"], "")[1])

    def test_picture_of_before_and_after(self):
        with tempfile.TemporaryDirectory() as folder:
            svg = os.path.join(folder, "a.svg")
            text = ("0 0 0 2\n4 0 0 2\n0 1 0 2\n\n3 3 0 1\n2 3 0 1\n2 2 0 1\n\n"
                    "0 0 0 1\n0 1 0 -1\n1 0 0 1\n\n0 0 0 1\n1e9 0 0 1\n0 1 0 1\n\n"
                    "1e308 0 0 1\n-1e308 0 0 1\n0 1 0 1\nsegments\n-1e8 0.5 0 1\n0 0.5 0 1\n")
            self.assertEqual(ulmira(["--svg", svg], text)[0], 0)
            tree = xml.etree.ElementTree.parse(svg)
        tags = [(e.get("class"), e.get("points")) for e in tree.iter() if e.get("points")]
        # Shapes are cut off far outside the visible part.
        self.assertEqual(tags, [("before", "0,0 2,0 0,0.5"), ("before", "3,3 2,3 2,2"),
                                ("before", "0,0 4,0 4,0.999999996 0,1"), ("before", "-4,0.5 0,0.5"),
                                ("after", "0,0 1,0 1,0.25 0,0.5"),
                                ("after", "0,0 0,0.9999999999999999 1,1.0000000000000002 1,0 1,0"),
                                ("after", "0,0 1,0 1,0.999999999 0,1"), ("after", "-1,0.5 0,0.5")])
        # Widths are in units of the picture, which is 3.2 wide.
        style = tree.find("{*}style").text
        widths = [float(width) for width in re.findall(r"stroke-width: ([0-9.]+)", style)]
        self.assertEqual((len(widths), "vector-effect" in style), (3, False))
        self.assertLess(max(widths), 0.02)


unittest.main()
