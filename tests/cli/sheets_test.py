#!/usr/bin/python3
"""Sheets of signs, counted and measured again from the files by other readers: ezdxf for DXF, an XML
parser for SVG, poppler for PDF.

Usage: sheets_test.py KERNO
"""
import json
import re
import subprocess
import sys
import unittest
import xml.etree.ElementTree as Tree

import ezdxf
import ezdxf.path

import programs

FACE = ["--face", "DejaVu Sans"]


def run(*words):
    return subprocess.run([str(word) for word in words], capture_output=True, text=True, check=False)


def boxes(file):
    """For each layer the boxes (left, bottom, right, top) of its paths in the file's order."""
    layers = {}
    for entity in ezdxf.readfile(file).modelspace():
        points = list(ezdxf.path.make_path(entity).flattening(0.0005))
        xs, ys = [p.x for p in points], [p.y for p in points]
        layers.setdefault(entity.dxf.layer, []).append((min(xs), min(ys), max(xs), max(ys)))
    return layers


def around(some):
    lefts, bottoms, rights, tops = zip(*some)
    return min(lefts), min(bottoms), max(rights), max(tops)


def inside(box, frame, near=1e-3):
    return (box[0] >= frame[0] - near and box[1] >= frame[1] - near
            and box[2] <= frame[2] + near and box[3] <= frame[3] + near)


class Sheets(programs.FolderTest):
    def cut(self, *options, status=0):
        done = run(KERNO, "cut", *options)
        self.assertEqual(done.returncode, status, done.stderr)
        return done

    def assert_near(self, some, others, delta=2e-3):
        for one, other in zip(some, others, strict=True):
            self.assertAlmostEqual(one, other, delta=delta)

    def test_frames_stand_in_rows_and_columns_with_their_texts_in_the_middle(self):
        self.cut("--count", "150", "--text", "No. {n:04}", *FACE, "--cap-height", "6mm", "--quiet",
                 "--sheet", "300x200mm", "--gap", "4mm", "--frame", "40x15mm", "--corner", "2mm",
                 "--numbers", "--marks", "-o", self.folder / "plates-{sheet}.dxf")
        files = sorted(file.name for file in self.folder.iterdir())
        self.assertEqual(files, ["plates-1.dxf", "plates-2.dxf", "plates-3.dxf"])
        columns, rows = (300 - 10 + 4) // 44, (200 - 10 + 4) // 19
        left = 150
        for name in files:
            found = boxes(self.folder / name)
            count = min(left, columns * rows)
            frames = found["Cut frame"]
            self.assertEqual(len(frames), count)
            texts = iter(found["Cut"])
            numbers = found["Cut numbers"]
            for i, frame in enumerate(frames):
                x, y = 5 + i % columns * 44, 200 - 5 - 15 - i // columns * 19
                self.assert_near(frame, (x, y, x + 40, y + 15))
                row = 150 - left + i + 1
                # "N", "o", ".", and the digits with their counters.
                paths = 4 + sum({"0": 2, "4": 2, "6": 2, "8": 3, "9": 2}.get(d, 1) for d in f"{row:04}")
                text = around([next(texts) for _ in range(paths)])
                self.assertTrue(inside(text, frame))
                self.assert_near([(text[0] + text[2]) / 2, (text[1] + text[3]) / 2], [x + 20, y + 7.5])
            self.assertIsNone(next(texts, None))
            self.assertTrue(all(any(inside(n, f) for f in frames) for n in numbers[:40]))
            marks = [((m[0] + m[2]) / 2, (m[1] + m[3]) / 2) for m in found["Cut marks"]]
            self.assertEqual({(round(x, 3), round(y, 3)) for x, y in marks},
                             {(2.5, 2.5), (297.5, 2.5), (297.5, 197.5), (2.5, 197.5)})
            left -= count
        self.assertEqual(left, 0)
        colors = {layer.dxf.name: layer.dxf.color for layer in ezdxf.readfile(self.folder / name).layers}
        self.assertEqual((colors["Cut"], colors["Cut frame"], colors["Cut numbers"]), (1, 5, 3))

    def test_places_without_frames(self):
        names = self.folder / "names.txt"
        words = ["I", "Wohnungstür", "gy", "Ä", "Hausmeister", "Lager 12"] * 12
        names.write_text("\n".join(words) + "\n", encoding="utf-8")
        common = ["--lines", names, "--text", "{line}", *FACE, "--cap-height", "9mm", "--quiet",
                  "--weld", "text", "--layers", "line", "--sheet", "300x200mm"]
        for pack in ([], ["--pack"]):
            with self.subTest(pack):
                self.cut(*common, *pack, "-o", self.folder / "s{sheet}.svg", "-o", self.folder / "s{sheet}.dxf",
                         "-o", self.folder / "s{sheet}.pdf", "--replace")
                sheets = sorted(self.folder.glob("s*.dxf"))
                every = 0
                for sheet in sheets:
                    found = [box for some in boxes(sheet).values() for box in some]
                    self.assertTrue(inside(around(found), (5, 5, 295, 195)))
                    every += len(found)
                single = sum(json.loads(self.cut(word, *FACE, "--json", "-o", self.folder / "one.dxf")
                                        .stdout)["closedPaths"] for word in words[:6])
                self.assertEqual(every, 12 * single)
                (self.folder / "one.dxf").unlink()
                if not pack:
                    count = len(sheets)
                else:
                    self.assertLess(len(sheets), count)
                picture = Tree.parse(self.folder / "s1.svg").getroot()
                self.assertEqual((picture.get("width"), picture.get("viewBox")), ("300mm", "0 0 300 200"))
                facts = run("pdfinfo", self.folder / "s1.pdf").stdout
                self.assertRegex(facts, r"Page size: *851 x 567 pts")
                for file in self.folder.glob("s*.*"):
                    file.unlink()

    def test_copies_and_what_does_not_fit(self):
        rows = self.folder / "rows.csv"
        rows.write_text("name\nAB\nA much too long name for it\nCD\n")
        options = ["--data", rows, "--text", "{name}", *FACE, "--cap-height", "6mm", "--sheet", "100x60mm",
                   "--frame", "30x10mm", "--copies", "3", "-o", self.folder / "s-{sheet}.dxf"]
        done = self.cut(*options, status=1)
        self.assertRegex(done.stderr, r"row 2: .*does not stand free in the frame of 30 x 10 mm")
        self.assertEqual(len(boxes(self.folder / "s-1.dxf")["Cut frame"]), 6)
        for wrong, why in ((["--sheet=8x8mm"], "leaves nothing of the sheet"),
                           (["--sheet=90x60mm", "--frame=20x10mm", "--corner=6mm"],
                            "more than half of the frame"),
                           (["--sheet=90x60mm", "--margin=0", "--marks"], "need a --margin"),
                           (["--sheet=90x60mm", "--frame=200x10mm"], "does not fit on the sheet")):
            self.assertIn(why, self.cut("A", "-o", self.folder / "x.dxf", *wrong, status=2).stderr)
        self.assertIn("needs --sheet", self.cut("A", "--pack", "-o", self.folder / "x.dxf", status=2).stderr)

    def test_rows_of_a_sheet_that_cannot_be_written_are_failed(self):
        (self.folder / "s-2.dxf").mkdir()
        told = set()
        for jobs in "127":
            done = run(KERNO, "cut", *FACE, "--count", "12", "--text", "No.", "--cap-height", "5mm", "--sheet", "100x40mm",
                       "--frame", "25x10mm", "--copies", "2", "--numbers", "--jobs", jobs, "--replace", "--json",
                       "--failed", self.folder / "failed.csv", "-o", self.folder / "s-{sheet}.dxf")
            self.assertRegex(done.stderr, r"^kerno: sheet 2: .*s-2.dxf: it is a folder \(rows 4 to 6\)\n$")
            rows = [json.loads(line) for line in done.stdout.splitlines()]
            self.assertEqual(["failed" if row in (4, 5, 6) else "made" for row in range(1, 13)],
                             [row["outcome"] for row in rows if "row" in row])
            self.assertRegex(rows[3]["error"], "^sheet 2: ")
            self.assertEqual("row\n4\n5\n6\n", (self.folder / "failed.csv").read_text())
            told.add((done.returncode, re.sub(r'"milliseconds": \d+', "", done.stdout)))
        self.assertEqual(len(told), 1)
        # The rows have their numbers again.
        self.cut("--data", self.folder / "failed.csv", *FACE, "--text", "No.", "--cap-height", "5mm", "--sheet", "100x40mm",
                 "--frame", "25x10mm", "--copies", "2", "--numbers", "-o", self.folder / "again.dxf")
        (self.folder / "s-2.dxf").rmdir()
        self.cut("--count", "12", *FACE, "--text", "No.", "--cap-height", "5mm", "--sheet", "100x40mm", "--frame",
                 "25x10mm", "--copies", "2", "--numbers", "--resume", "-o", self.folder / "s-{sheet}.dxf")
        self.assertEqual(boxes(self.folder / "s-2.dxf"), boxes(self.folder / "again.dxf"))
        for frame in ([], ["--frame", "25x10mm"]):  # more sheets than one name
            done = self.cut("--count", "60", *FACE, "--text", "No.", "--cap-height", "5mm", "--sheet", "100x40mm", *frame,
                            "--failed", self.folder / "failed.csv", "-o", self.folder / "one.dxf", status=1)
            self.assertRegex(done.stdout, "^60 rows: 0 made, 60 failed, 0 sheets, 0 files")
            self.assertNotIn("--resume", done.stderr)
            self.assertEqual(len((self.folder / "failed.csv").read_text().splitlines()), 61)


if __name__ == "__main__":
    KERNO = sys.argv.pop(1)
    unittest.main()
