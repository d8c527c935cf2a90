#!/usr/bin/env python3
"""Stages of drawings over outlines of installed fonts, measured with NumPy and Shapely.

usage: outlines_test.py DRAWING_TOOL
"""
import math
import os
import random
import subprocess
import sys
import unittest

from shapely.geometry import Point
from shapely.ops import unary_union

from outlines import Face, dense, faces, farthest, filled, run, text_of, turns

TOOL = sys.argv.pop(1)
LETTERS = "agS&"
TEXTS = {"DejaVu Sans": LETTERS, "Liberation Serif": LETTERS, "Inter": LETTERS, "IPAMincho": "永あ"}


def curved(contours):
    return sum(len(piece) > 2 for contour in contours for piece in contour)


def lines(contour):
    return {piece for piece in contour if len(piece) == 2}


class Arcs(unittest.TestCase):
    def test_fit_outlines_within_the_tolerance(self):
        for name, text in TEXTS.items():
            outlines = Face(name).contours(text)
            for tolerance in (0.001, 0.01, 0.1):
                fitted = run(TOOL, "arcs", tolerance, outlines)
                for outline, arcs in zip(outlines, fitted, strict=True):
                    with self.subTest(face=name, tolerance=tolerance, at=outline[0][0]):
                        self.check(outline, arcs, tolerance)

    def check(self, outline, arcs, tolerance):
        self.assertLessEqual(farthest(dense(outline, 13), arcs), tolerance)
        self.assertLessEqual(farthest(dense(arcs, 17), outline), tolerance)
        corners = {p for p, turn in turns(outline) if turn > 1}
        joints = dict(turns(arcs))
        self.assertLessEqual(corners, joints.keys())
        self.assertLessEqual(max((turn for p, turn in joints.items() if p not in corners), default=0), 1)
        self.assertLessEqual(lines(outline), lines(arcs))
        self.assertEqual(arcs[0][0], arcs[-1][1])

    def test_are_few_against_chords(self):
        letters = "".join(map(chr, range(ord("a"), ord("z") + 1)))
        texts = dict.fromkeys(TEXTS, letters + letters.upper() + "0123456789&@") | {
            "IPAMincho": "日本語漢字花鳥風月あいうえおのん夢愛鬱龍"}
        arcs = chords = 0
        for name, text in texts.items():
            outlines = Face(name).contours(text)
            straight = sum(map(len, outlines)) - curved(outlines)
            arcs += sum(map(len, run(TOOL, "arcs", 0.01, outlines))) - straight
            chords += sum(map(len, run(TOOL, "flatten", 0.01, outlines))) - straight
        self.assertLessEqual(arcs, 0.35 * chords)


class Chords(unittest.TestCase):
    def test_stay_within_the_tolerance_and_use_it(self):
        for name, text in TEXTS.items():
            outlines = Face(name).contours(text)
            for tolerance in (0.001, 0.1):
                flat = run(TOOL, "flatten", tolerance, outlines)
                worst = max(farthest(dense(outline, 60), chords)
                            for outline, chords in zip(outlines, flat, strict=True))
                with self.subTest(face=name, tolerance=tolerance):
                    self.assertLessEqual(worst, tolerance)
                    self.assertGreater(worst, 0.9 * tolerance)


class Welds(unittest.TestCase):
    def test_fill_what_the_outlines_fill(self):
        for name, text in {"Liberation Serif": "Sphi&x8", "Inter": "Sphi&x8", "IPAMincho": "永あの鬱"}.items():
            outlines = Face(name).contours(text, 0.5)
            welded = run(TOOL, "weld", 0.01, outlines)
            with self.subTest(face=name):
                wanted, found = filled(outlines), filled(welded)
                self.assertLess(wanted.symmetric_difference(found).buffer(-0.0005).area, 1e-9)
                self.assertLess(wanted.symmetric_difference(found).area, 1e-5 * found.length)
                thick = [around for face, around in faces(welded) if face.buffer(-0.0005).area > 0]
                self.assertEqual(set(thick), {0, 1} & set(thick))
                # Parts of the curves themselves, not of chords.
                self.assertLess(sum(map(len, welded)), 1.3 * sum(map(len, outlines)))


class Tiles(unittest.TestCase):
    """Unions that are made in parts."""

    def check(self, contours, tolerance, around=0):
        tiled = run(TOOL, "tiles", tolerance, contours, around)
        wanted = [(face, (winds + around != 0) - (around != 0)) for face, winds in faces(contours, 1)]
        found = faces(tiled, 1)
        size = tolerance / 64  # a few steps of the grid
        inside = unary_union([face for face, winds in wanted])
        for winds in (-1, 1):  # unfilled in a plane that is filled, and filled in an empty one
            one = unary_union([face for face, w in wanted if w == winds])
            # The plane's own outline goes around everything.
            other = unary_union([face for face, w in found if w - (around != 0) == winds])
            strays = one.symmetric_difference(other.intersection(inside))
            self.assertEqual(strays.buffer(-size).area, 0, f"{around}: {contours}")
        return tiled

    def test_fill_what_tangles_fill(self):
        chance = random.Random(8)
        for _ in range(24):
            contours = []
            for _ in range(chance.randint(1, 8)):
                # On a coarse grid, where corners meet and edges run along each other.
                points = [(chance.randint(0, 6), chance.randint(0, 6)) for _ in range(chance.randint(3, 12))]
                contours.append([(p, q) for p, q in zip(points, points[1:] + points[:1]) if p != q])
            for around in (-1, 0, 1):
                self.check(contours, 0.001, around)

    def test_join_a_line_of_letters(self):
        outlines = Face("DejaVu Sans").contours("WxOHW" * 8, 0.7)
        chords = run(TOOL, "flatten", 0.001, outlines)
        self.assertEqual(len(self.check(chords, 0.001)), len(run(TOOL, "weld", 0.01, outlines)))

    def test_keep_curves_and_do_not_depend_on_processors(self):
        # More than go to the polygon library at once.
        outlines = Face("Inter").contours("Sphi&x8" * 24, 0.75)
        welded = run(TOOL, "weld", 0.001, outlines)
        self.assertLess(filled(outlines, 40).symmetric_difference(filled(welded, 40)).buffer(-0.001).area, 1e-9)
        self.assertLess(sum(map(len, welded)), 1.1 * sum(map(len, outlines)))
        everywhere = os.sched_getaffinity(0)
        try:
            os.sched_setaffinity(0, {min(everywhere)})
            self.assertEqual(welded, run(TOOL, "weld", 0.001, outlines))
        finally:
            os.sched_setaffinity(0, everywhere)


def area_of(contour):
    return sum(p[0] * q[1] - p[1] * q[0] for p, q in contour) / 2


class Areas(unittest.TestCase):
    """By windings, which tell whether the polygon library has lost a part."""

    def test_are_those_of_tangles(self):
        chance, lost = random.Random(5), 0
        for tangle in range(60):
            contours = []
            for _ in range(chance.randint(2, 6)):
                points = [(chance.randint(0, 4), chance.randint(0, 4)) for _ in range(chance.randint(8, 14))]
                contours.append([(p, q) for p, q in zip(points, points[1:] + points[:1]) if p != q])
            lines = "".join(text_of(contour) + "\n" for contour in contours)
            printed = subprocess.run([TOOL, "area", "0.0003"], input=lines, stdout=subprocess.PIPE, text=True, check=True)
            area, slack, library = map(float, printed.stdout.split())
            wanted = filled(contours, 1).area
            self.assertLess(slack, 1e-3)
            self.assertAlmostEqual(wanted, area, delta=slack, msg=f"{tangle}: {contours}")
            lost += abs(library - wanted) > 100 * slack
            # Welds are made again where the library was wrong.
            welded = run(TOOL, "weld", 0.01, contours)
            self.assertAlmostEqual(wanted, sum(area_of(path) for path in welded), delta=1e-3, msg=str(contours))
        self.assertGreater(lost, 0, "tangles that the polygon library gets wrong")


def bend(boundary, p):
    """By how many degrees lines turn near a point."""
    near = boundary.intersection(Point(p).buffer(0.1))
    ways = [math.degrees(math.atan2(y1 - y0, x1 - x0)) for line in getattr(near, "geoms", [near])
            for (x0, y0), (x1, y1) in zip(line.coords, line.coords[1:])]
    return max((abs((a - b + 180) % 360 - 180) for a in ways for b in ways), default=0)


class Offsets(unittest.TestCase):
    def test_move_outlines_by_the_distance(self):
        for name, text in {"Liberation Serif": "S&8", "IPAMincho": "あの"}.items():
            outlines = run(TOOL, "weld", 0.01, Face(name).contours(text))
            shape = filled(outlines).simplify(0.0002)  # too many points are too much for buffer()
            for distance in (0.1, 1.1, 3, -0.1, -0.4, -2):
                moved = run(TOOL, "offset", 0.01, outlines, distance)
                with self.subTest(face=name, distance=distance):
                    wanted = shape.buffer(distance, resolution=64)
                    strays = wanted.symmetric_difference(filled(moved))
                    self.assertEqual(strays.buffer(-0.0055).area, 0)
                    parts = [part for part in getattr(wanted, "geoms", [wanted]) if part.area > 0]
                    self.assertEqual(len(moved), sum(1 + len(part.interiors) for part in parts))
                    self.assertGreater(min((math.dist(*piece[:2]) for path in moved for piece in path),
                                           default=1), 0.001)
                    for p, turn in (joint for path in moved for joint in turns(path)):
                        if 1 < turn < 150:  # a sharper tip may stand farther from its place
                            self.assertLess(turn, bend(wanted.boundary, p) + 3, p)  # of which simplify() took some


if __name__ == "__main__":
    unittest.main(verbosity=1)
