#!/usr/bin/env python3
"""Runs "kerno cut" and reads what it wrote by other programs: fontTools and Shapely for the outlines,
ezdxf for the drawings. scripts_test.py looks at the glyphs.

usage: cut_test.py KERNO
"""
import json
import math
import os
import re
import subprocess
import sys
import unittest

import ezdxf
from ezdxf import bbox
from fontTools.pens.recordingPen import DecomposingRecordingPen
from fontTools.ttLib import TTFont
from shapely.geometry import Polygon
from shapely.ops import unary_union

import programs

KERNO = []
SANS = ["--face", "DejaVu Sans"]


def run(*arguments):
    return programs.run([*KERNO, "cut", *arguments])


def font_file(face):
    done = subprocess.run(["fc-match", "-f", "%{file}", face], capture_output=True, text=True, check=True)
    return done.stdout


def flattened(entity):
    return [(p.x, p.y) for p in ezdxf.path.make_path(entity).flattening(0.001)]


def glyph_polygons(font, name):
    """The contours of a glyph as many-sided polygons, in font units."""
    glyphs = font.getGlyphSet()
    pen = DecomposingRecordingPen(glyphs)
    glyphs[name].draw(pen)
    contours, at = [], None
    for verb, points in pen.value:
        if verb == "moveTo":
            contours.append([points[0]])
        elif verb == "lineTo":
            contours[-1].append(points[0])
        elif verb == "qCurveTo":
            ends = [((a[0] + b[0]) / 2, (a[1] + b[1]) / 2) for a, b in zip(points, points[1:-1])] + [points[-1]]
            for control, end in zip(points, ends):
                contours[-1] += [tuple((1 - t) ** 2 * at[i] + 2 * t * (1 - t) * control[i] + t * t * end[i]
                                       for i in (0, 1)) for t in (k / 40 for k in range(1, 41))]
                at = end
        if points:
            at = points[-1]
    return [Polygon(c) for c in contours if len(c) > 2]


class CutTest(programs.FolderTest):
    def cut(self, *arguments, name="a.dxf", warnings=""):
        path = self.folder / name
        status, out, err = run(*arguments, "-o", str(path), "--json")
        self.assertEqual((0, warnings), (status, err), arguments)
        return json.loads(out), path

    def test_sizes_places_and_units(self):
        cases = [  # options, unit, left, bottom, right, top (None: whatever it is)
            (["--fit", "120mm"], 4, 0, 0, 120, None),
            (["--fit", "x1in", "--unit", "in"], 1, 0, 0, None, 1),
            (["--fit", "100x50", "--stretch"], 4, 0, 0, 100, 50),
            (["--fit", "100x10", "--at", "5,7", "--anchor", "middle-centre"], 4, None, 2, None, 12),
            (["--fit", "3cm", "--angle", "90", "--mirror", "--slant", "10"], 4, 0, 0, 30, None),
            (["--fit", "80", "--letter-spacing", "2mm"], 4, 0, 0, 80, None),
            (["--em", "72pt", "--anchor", "top-right"], 4, None, None, 0, 0)]
        for version in ("r2000", "r12"):
            for options, unit, *sides in cases:
                with self.subTest(f"{version} {options}"):
                    _, path = self.cut("HxH", *SANS, "--dxf", version, *options)
                    drawing = ezdxf.readfile(path)
                    audit = drawing.audit()
                    self.assertEqual(([], []), (audit.errors, audit.fixes))
                    self.assertEqual(unit, drawing.units)
                    box = bbox.extents(drawing.modelspace())
                    for wanted, found in zip(sides, (box.extmin.x, box.extmin.y, box.extmax.x, box.extmax.y)):
                        if wanted is not None:
                            self.assertAlmostEqual(wanted, found, 5)
                    self.assertTrue(all(e.closed if version == "r2000" else e.is_closed
                                        for e in drawing.modelspace()))
        capital, _ = self.cut("H", *SANS)
        self.assertAlmostEqual(20, capital["height"], 1)

    def test_outlines_are_the_font_s_own(self):
        font = TTFont(font_file("DejaVu Serif"))
        for curves in ("arcs", "lines", "curves"):
            made, path = self.cut("8", "--face", "DejaVu Serif", "--em", str(font["head"].unitsPerEm),
                                  "--tolerance", "1", "--curves", curves)
            outer, *holes = sorted(glyph_polygons(font, "eight"), key=lambda p: -p.area)
            shift = (made["glyphs"][0]["x"], made["glyphs"][0]["y"])
            found = [Polygon([(x - shift[0], y - shift[1]) for x, y in flattened(e)])
                     for e in ezdxf.readfile(path).modelspace()]
            self.assertEqual(3, len(found))
            for polygon in found:
                nearest = min(p.hausdorff_distance(polygon) for p in (outer, *holes))
                self.assertLess(nearest, 1.02, curves)

    def test_overlapping_letters_are_welded_and_counters_come_first(self):
        _, loose = self.cut("Boing", *SANS, "--letter-spacing", "-4", "--weld", "off", "--curves", "lines",
                            warnings="kerno: warning: drawing: 4 paths cross themselves or each other\n")
        apart = [Polygon(flattened(e)) for e in ezdxf.readfile(loose).modelspace()]
        holes = [p for p in apart if any(q is not p and q.contains(p) for q in apart)]
        filled = unary_union([p for p in apart if p not in holes]).difference(unary_union(holes))
        made, path = self.cut("Boing", *SANS, "--letter-spacing", "-4", "--layers", "depth")
        polygons, area = [], 0
        for entity in ezdxf.readfile(path).modelspace():
            polygon = Polygon(flattened(entity))
            inside = entity.dxf.layer == "Cut inside"
            self.assertEqual(not inside, polygon.exterior.is_ccw)
            if inside:
                self.assertFalse(any(p.contains(polygon) for p in polygons), "a counter is cut after its outline")
            area += -polygon.area if inside else polygon.area
            polygons.append(polygon)
        self.assertEqual(0, made["crossingPaths"])
        self.assertLess(len(polygons), len(apart))
        # Counters of one letter under another letter's stroke stay open in neither count.
        self.assertAlmostEqual(filled.area, area, delta=0.02 * made["length"])

    def test_svg_is_of_true_size_and_the_same_each_time(self):
        _, first = self.cut("Öf", *SANS, "--fit", "50x50", name="a.svg")
        _, second = self.cut("Öf", *SANS, "--fit", "50x50", name="b.svg")
        self.assertEqual(first.read_bytes(), second.read_bytes())
        head = re.search(r'width="([\d.]+)mm" height="([\d.]+)mm" viewBox="0 0 ([\d.]+) ([\d.]+)"', first.read_text())
        width, height, *view = (float(n) for n in head.groups())
        self.assertEqual([width, height], view)
        self.assertTrue(math.isclose(50, max(width, height), abs_tol=0.02), head[0])
        self.assertEqual(2, first.read_text().count("<path"))

    def test_times_come_from_the_environment_when_it_says_so(self):
        def cut(date, name, zone="UTC"):
            file = self.folder / name
            environment = os.environ | {"SOURCE_DATE_EPOCH": date, "TZ": zone}
            done = programs.run([*KERNO, "cut", "A", *SANS, "-o", str(file)], env=environment)
            return done, file.read_bytes() if file.exists() else b""

        for kind in ("x3d", "dxf", "svg", "ipx", "emf", "bmp", "ipl"):
            done, first = cut("86399", "a." + kind)
            self.assertEqual(0, done[0], done)
            self.assertTrue(first)
            self.assertEqual(first, cut("86399", "a." + kind, "Asia/Tokyo")[1], kind)
        self.assertIn(b"\t1970/01/01 23:59:59\r\n", cut("86399", "a.x3d")[1])
        for wrong in ("", "-1", "1.5", "yesterday", "253402300800", "9" * 30):
            (status, _, err), written = cut(wrong, "wrong.x3d")
            self.assertEqual((2, b""), (status, written), wrong)
            self.assertIn(f'SOURCE_DATE_EPOCH: "{wrong}" is not a number of seconds', err)

    def test_what_is_wrong_is_named_and_leaves_nothing(self):
        cases = [  # arguments, exit status, what standard error must hold
            (["A", "--cap-height", "20 m m"], 2, '--cap-height: "20 m m" is not a length'),
            (["A", "--em=-5mm"], 2, '--em: "-5mm" is not above 0'),
            (["A", "--em", "1e9mm"], 2, "is too long"), (["A", "--em", "nan"], 2, "is not a length"),
            (["A", "--em", "5", "--fit", "5"], 2, "given more than once"),
            (["A", "--stretch"], 2, "--stretch: needs --fit"), (["A", "--fit", "x"], 2, "is no size"),
            (["A", "--tolerance", "0"], 2, "--tolerance"), (["A", "--anchor", "here"], 2, "bottom-left"),
            ([" ", "--fit", "5"], 1, "the text has no ink to fit"),
            (["AB", *SANS, "--fit", "10", "--letter-spacing", "50"], 1, "leaves the letters no room"),
            (["A", *SANS, "--em", "1e-9"], 1, "too small for the decimals"),
            (["A龍", *SANS, "--strict"], 3, "龍 (U+9F8D)"),
            (["A", "--face", "No Such Face"], 3, '"No Such Face" is not installed'),
            (["A", *SANS, "--style", "Fat"], 3, '"Bold Oblique"'),
            (["O", *SANS, "--curves", "curves", "--dxf", "r12"], 2, "has no curves")]
        for arguments, expected, message in cases:
            with self.subTest(arguments):
                status, out, err = run(*arguments, "-o", str(self.folder / "out.dxf"))
                self.assertEqual((expected, ""), (status, out), err)
                self.assertIn(message, err)
                self.assertEqual([], list(self.folder.iterdir()))
        status, _, err = run("ill", *SANS, "--cap-height", "5", "--offset", "-2", "-o", str(self.folder / "a.svg"))
        self.assertEqual(0, status)
        self.assertIn("4 paths vanished", err)
        # TrueType contours run the other way round until something welds them.
        loose, welded = (run("O", *SANS, "--offset", "0.1", "--weld", weld, "-o", str(self.folder / "a.svg"))[1]
                         for weld in ("off", "text"))
        self.assertIn("2 closed paths", welded)
        self.assertEqual(*(line.split(", ")[:-1] for line in (welded, loose)))


if __name__ == "__main__":
    KERNO = programs.command(sys.argv.pop(1))
    unittest.main()
