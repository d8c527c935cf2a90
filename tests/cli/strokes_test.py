#!/usr/bin/env python3
"""Runs "kerno cut --stroke-font" with the fonts that are installed and reads what it wrote by ezdxf. The fonts
themselves are read here, too, by other means: Shapely says how long their lines are, each counted once, and
fontTools what the path data of SVG means.

usage: strokes_test.py KERNO
"""
import glob
import json
import math
import os
import pathlib
import re
import sys
import unittest

import ezdxf
import ezdxf.path
from fontTools.pens.recordingPen import RecordingPen
from fontTools.svgLib.path import parse_path
from shapely.geometry import LineString, MultiLineString
from shapely.ops import unary_union

import programs

KERNO = []
HERSHEY = "/usr/share/hershey-fonts"
LIBRECAD = "/usr/share/librecad/fonts"


def run(*arguments, **more):
    return programs.run([*KERNO, *arguments], **more)


def hershey(path):
    """The letters of a file in the order of ASCII: polylines about the pen."""
    letters = {}
    for number, line in enumerate(pathlib.Path(path).read_text("ascii").splitlines()[:95]):
        pairs = [(ord(a) - ord("R"), ord("R") - ord(b) + 9) for a, b in zip(line[8::2], line[9::2])]
        left, lines = pairs[0][0], [[]]
        for (x, y), raw in zip(pairs[1:], zip(line[10::2], line[11::2])):
            if raw == (" ", "R"):
                lines.append([])
            else:
                lines[-1].append((x - left, y))
        letters[chr(32 + number)] = [points for points in lines if len(points) > 1]
    return letters


def bulged(start, end, bulge):
    """Points of an arc, by its centre and angles."""
    (x0, y0), (x1, y1) = start, end
    angle = 4 * math.atan(bulge)
    reach = (1 - bulge * bulge) / (4 * bulge)
    x, y = (x0 + x1) / 2 - (y1 - y0) * reach, (y0 + y1) / 2 + (x1 - x0) * reach
    steps = max(2, math.ceil(abs(angle) * 40))
    for i in range(1, steps + 1):
        c, s = math.cos(angle * i / steps), math.sin(angle * i / steps)
        yield (x + (x0 - x) * c - (y0 - y) * s, y + (x0 - x) * s + (y0 - y) * c)


def librecad(path):
    letters, current = {}, None
    for line in pathlib.Path(path).read_text("utf-8", "replace").splitlines():
        head = re.match(r"\[+#?([0-9A-Fa-f]+)\]", line)
        if head:
            current = letters[chr(int(head[1], 16))] = []
        elif re.match("C[0-9A-Fa-f]+$", line.strip()):
            current.append(chr(int(line[1:], 16)))
        elif current is not None and "," in line and not line.startswith("#"):
            points = []
            for vertex in line.strip().split(";"):
                x, y, *bulge = vertex.split(",") if vertex else (None, None)
                if x is None:
                    continue
                at = (float(x), float(y))
                arc = float(bulge[0][1:]) if bulge else 0
                points += bulged(points[-1], at, arc) if points and arc and points[-1] != at else [at]
            current.append(points)

    def lines(letter):
        return [p for part in letters[letter] for p in (lines(part) if isinstance(part, str) else [part]) if len(p) > 1]

    return {letter: lines(letter) for letter in letters}


def union(lines):
    return unary_union([LineString(points) for points in lines if len(set(points)) > 1])


class StrokesTest(programs.FolderTest):
    def cut(self, *arguments, name="a.dxf"):
        path = self.folder / name
        status, out, err = run("cut", *arguments, "-o", str(path), "--json")
        self.assertEqual((0, ""), (status, err), arguments)
        return json.loads(out), path

    def check_letters(self, font, letters, em):
        """Every letter's lines lie where the font has them, and each only once."""
        text = "".join(letter for letter, lines in letters.items() if lines)
        made, path = self.cut(text, "--stroke-font", font, "--em", str(em), "--layers", "glyph", "--at", "0,0")
        drawn = {}
        for entity in ezdxf.readfile(path).modelspace():
            points = [(p.x, p.y) for p in ezdxf.path.make_path(entity).flattening(0.0005 * em)]
            drawn.setdefault(entity.dxf.layer, []).append(points)
        self.assertEqual(len(text), len(drawn))
        for letter, glyph, lines in zip(text, made["glyphs"], drawn.values()):
            with self.subTest(font=font, letter=letter):
                lines = [[(x - glyph["x"], y - glyph["y"]) for x, y in points] for points in lines]
                wanted, found = union(letters[letter]), MultiLineString(lines)
                self.assertLess(wanted.hausdorff_distance(found), 0.003 * em)
                self.assertLess(abs(found.length - wanted.length), 0.002 * wanted.length + 0.001 * em)

    def test_letters_are_the_font_s_own_and_drawn_once(self):
        for name in os.environ.get("KERNO_HERSHEY", "rowmans rowmand scripts gothiceng timesib").split():
            self.check_letters(name, hershey(f"{HERSHEY}/{name}.jhf"), 32)
        for name in os.environ.get("KERNO_LIBRECAD", "standard iso3098 italicc kochimincho").split():
            self.check_letters(f"{LIBRECAD}/{name}.lff", librecad(f"{LIBRECAD}/{name}.lff"), 9)


if __name__ == "__main__":
    KERNO = programs.command(sys.argv.pop(1))
    unittest.main()
