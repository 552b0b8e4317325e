"""Runs `ulmira clip` on good input and on input that is at fault.

Usage: clip_command_check.py ULMIRA..., a program that runs it before it where one must
"""
import json
import os
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
        for arguments, text, expected in [
                (["--rectangle"], box, "-1 0 0 1\n0.3 0 0 1\n1 0 1.2962962962962963 1\n1 0 2.5 1\n"),
                (["--planes", "ZMAX,xmin"], box,
                 "-1 0 0 1\n0.3 0 0 1\n0.8400000000000001 0 1 1\n-0.20000000000000018 0 1 1\n"),
                (["--float", "--planes", "zmax"], box,
                 "-1 0 0 1\n0.3 0 0 1\n0.84000003 0 1 1\n-0.20000005 0 1 1\n"),
                (["--segments"], third + "\n\n# gone\nnull\n\n-5e-324 inf nan 1\n0 2 0 1",
                 "0 0 0 1\n1 0.4666666666666666 0.06666666666666667 1\n\nnull\n\nnull\n"),
                (["--segments", "--float"], third, "0 0 0 1\n1 0.46666667 0.06666667 1\n"),
                (["--float"], "1e-45 -1e-60 16777217 16777219\n", "1e-45 -0 16777216 16777220\n"),
                ([], "", "")]:
            self.assertEqual(ulmira(["--text", *arguments], text), (0, expected, ""), arguments)

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
