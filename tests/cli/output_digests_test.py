#!/usr/bin/env python3
"""Compares the bytes of every format, and what is printed, with recorded digests: drawings of the same
text stay as they are from version to version. Times and the program's path are taken out first.

usage: output_digests_test.py KERNO [--record]
"""
import hashlib
import json
import os
import pathlib
import re
import sys
import unittest

import programs

DATA = pathlib.Path(__file__).resolve().parents[1] / "data"
RECORDED = DATA / "output-digests.json"
TIMES = re.compile(rb"\d{4}[/-]\d\d[/-]\d\d[ T]\d\d:\d\d:\d\d|[A-Z][a-z]{2} [ \d]\d \d{4} \d\d:\d\d:\d\d")
FORMATS = ["dxf", "svg", "ipx", "x3d", "emf", "bmp", "ipl"]
MIXED = "Kerno の 100 mm 文字、2026年！"
MARKS = "：；“”…ー（）〜々ぁッｱ１g8"

CASES = [
    [MIXED, "--face", "DejaVu Serif", "--height", "40"],
    ["AVWa fi&\tx\r\ny", "--face", "DejaVu Sans", "--height", "-50", "--weight", "700", "--elements", "both"],
    [MIXED, "--face", "IPAMincho", "--height", "64", "--elements", "faces", "--layer", "層 1"],
    [MIXED + MARKS, "--face", "IPAGothic", "--vertical", "--units", "mm"],
    [MIXED + MARKS, "--face", "@IPAPMincho", "--pitch", "cell", "--width", "30", "--size", "300x200"],
    ["Lean", "--face", "DejaVu Sans", "--slant", "12.5", "--angle", "33.3", "--at", "3.3,-7"],
    ["Lean", "--face", "DejaVu Sans", "--angle", "90", "--scale", "-0.3333333", "--at", "1e3,1e-3"],
    ["a\nb\rc", "--face", "DejaVu Sans Mono", "--line-ends", "keep", "--dxf-layers", "colour", "--layer", ""],
    ["永", "--face", "IPAMincho", "--height", "3000", "--aci", "nearest"],
    ["--ipx", str(DATA / "ipx" / "every-kind.ipx")],
    ["--ipx", str(DATA / "ipx" / "every-kind.ipx"), "--dxf-layers", "colour", "--aci", "nearest"],
]
KERNO = []


def digest(content):
    if content.startswith(b"\xff\xfe"):
        content = content.decode("utf-16").encode()
    content = content.replace(os.path.abspath(KERNO[-1]).encode(), b"PROGRAM")
    return hashlib.sha256(TIMES.sub(b"TIME", content)).hexdigest()[:16]


def digests(case, folder):
    outputs = [word for name in FORMATS for word in ("-o", str(folder / f"o.{name}"))]
    status, _, err = programs.run([*KERNO, "convert", "--quiet", *case, *outputs])
    assert status == 0, err
    found = {name: digest((folder / f"o.{name}").read_bytes()) for name in FORMATS}
    if "--ipx" not in case:
        drawing_only = {"--elements", "--layer", "--dxf-layers", "--aci", "--units", "--size"}
        words = [w for i, w in enumerate(case) if w not in drawing_only and case[i - 1] not in drawing_only]
        for command in (["contours", "--json"], ["contours", "--unplaced"], ["measure"]):
            status, out, err = programs.run([*KERNO, *command, *words])
            assert status == 0, err
            found[" ".join(command)] = digest(out.encode())
    return found


class OutputDigestsTest(programs.FolderTest):
    def test_every_output_is_as_recorded(self):
        recorded = json.loads(RECORDED.read_text())
        self.assertEqual(len(CASES), len(recorded))
        for case, expected in zip(CASES, recorded):
            with self.subTest(" ".join(case)[-60:]):
                self.assertEqual(expected, digests(case, self.folder))

    def record(self):
        RECORDED.write_text(json.dumps([digests(case, self.folder) for case in CASES], indent=1) + "\n")


if __name__ == "__main__":
    KERNO = programs.command(sys.argv[1])
    if sys.argv[2:] == ["--record"]:
        recorder = OutputDigestsTest("record")
        sys.exit(not unittest.TextTestRunner().run(recorder).wasSuccessful())
    unittest.main(argv=sys.argv[:1])
