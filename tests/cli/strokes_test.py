#!/usr/bin/env python3
"""Runs "kerno cut --stroke-font" with the fonts that are installed and reads what it wrote by ezdxf. The fonts
themselves are read here, too, by other means: Shapely says how long their lines are, each counted once, and
fontTools what the path data of SVG means.

usage: strokes_test.py KERNO
"""
import itertools
import json
import math
import os
import pathlib
import re
import shutil
import sys
import unittest
import unittest.mock

import ezdxf
import ezdxf.path
from fontTools.pens.recordingPen import RecordingPen
from fontTools.svgLib.path import parse_path
from shapely.affinity import affine_transform
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


PATHS = [  # data, as letters from A on
    "M10 10L90 10l0 50H20h-5V80v5M100 0 110 20 120 0m5 5 10 10",
    "M0 0C0 50 50 100 100 100S200 50 200 0s50-50 60 20",
    "M0 0Q50 100 100 0T200 0t100 0M.5.5-1.5.75e1L1e1,2E1",
    "M100 0A50 50 0 0 1 200 0A50 50 0 1 0 300 0a80 40 30 01100 20 80,40,30,1,1,30,10",
    "M0 0a1 1 0 0 0 100 0M10 70A20 20 0 1 1 10.02 70",
    "m10,10 20,0 0,20-20,0zm5 5-10 5zM60 60c10 0 0 10 10 10q5 5 0 10",
]
DOUBLED = [  # data that draws something again, and the lengths of what is left of it
    ("M0 0L100 0L0 0", [100]), ("M0 0L50 50L100 0L50 50Z", [141.421]), ("M0 0H100M100 0H0", [100]),
    ("M0 0H60M100 0H40", [60, 40]), ("M0 0V100M0 60H50V0H0", [100, 160]), ("M10 0H90M0 0H100", [80, 10, 10]),
    ("M0 0C0 50 50 100 100 100C50 100 0 50 0 0", [154.887]), ("M0 0A50 50 0 0 1 100 0A50 50 0 0 0 0 0", [157.08]),
    ("M0 0H10L20 9M20 9L30 0", [23.454, 13.454]), ("M0 0H90V90H0ZM0 90V0", [360]), ("M5 5L5 5M0 0H9", [9]),
    ("m9 9h20v20zl3-4z", [68.284, 5]), ("M0 50A0 10 0 0 0 50 50", [50])]


def svg_font(paths, advance=400):
    glyphs = "".join(f'<glyph unicode="&#{65 + i};" horiz-adv-x="{advance}" d="{d}"/>\n' for i, d in enumerate(paths))
    return f"""<?xml version="1.0"?><!DOCTYPE svg [<!ENTITY a ">">]><svg:svg xmlns:svg="http://www.w3.org/2000/svg">
<!-- <font> --><svg:defs><svg:font horiz-adv-x="300"><svg:font-face font-family='R&amp;D' units-per-em="1000"/>
<missing-glyph/><glyph unicode=" "/><glyph unicode="ff" d="M0 0H9"/>
{glyphs}</svg:font></svg:defs></svg:svg>"""


def path_lines(data):
    """Polylines of path data, as fontTools understands it."""
    pen, lines = RecordingPen(), []
    parse_path(data, pen)
    for verb, points in pen.value:
        if verb == "moveTo":
            lines.append([points[0]])
        elif verb == "closePath":
            lines[-1].append(lines[-1][0])
        elif len(points) == 1:
            lines[-1].append(points[0])
        elif points:
            controls = [lines[-1][-1], *points]
            for t in (k / 200 for k in range(1, 201)):
                level = controls
                while len(level) > 1:
                    level = [tuple(p + (q - p) * t for p, q in zip(a, b)) for a, b in zip(level, level[1:])]
                lines[-1].append(level[0])
    return lines


def union(lines):
    return unary_union([LineString(points) for points in lines if len(set(points)) > 1])


def lines_of(entity, tolerance):
    return [(p.x, p.y) for p in ezdxf.path.make_path(entity).flattening(tolerance)]


class StrokesTest(programs.FolderTest):
    def setUp(self):
        super().setUp()
        # Settings of its own: others that hold the user's would show as a wait on standard error.
        settings = unittest.mock.patch.dict(os.environ, XDG_CONFIG_HOME=str(self.folder.with_suffix(".settings")))
        settings.start()
        self.addCleanup(settings.stop)
        self.addCleanup(shutil.rmtree, os.environ["XDG_CONFIG_HOME"], ignore_errors=True)

    def cut(self, *arguments, name="a.dxf"):
        path = self.folder / name
        status, out, err = run("cut", *arguments, "-o", str(path), "--json")
        self.assertEqual((0, ""), (status, err), arguments)
        return json.loads(out), path

    def font(self, text, name="font.svg"):
        path = self.folder / name
        path.write_bytes(text if isinstance(text, bytes) else text.encode())
        return str(path)

    def check_letters(self, font, letters, em, *options, pose=(1, 0, 0, 1)):
        """Every letter's lines lie where the font has them, and each only once."""
        text = "".join(letter for letter, lines in letters.items() if lines and letter != "\xad")  # never drawn
        made, path = self.cut(text, "--stroke-font", font, "--em", str(em), "--layers", "glyph", *options)
        drawn = {}
        for entity in ezdxf.readfile(path).modelspace():
            drawn.setdefault(entity.dxf.layer, []).append(lines_of(entity, 0.0005 * em))
        self.assertEqual(len(text), len(drawn))
        for letter, glyph, lines in zip(text, made["glyphs"], drawn.values()):
            with self.subTest(font=font, letter=letter, options=options):
                lines = [[(x - glyph["x"], y - glyph["y"]) for x, y in points] for points in lines]
                wanted = affine_transform(union(letters[letter]), [*pose, 0, 0])
                found = MultiLineString(lines)
                self.assertLess(wanted.hausdorff_distance(found), 0.003 * em)
                self.assertLess(abs(found.length - wanted.length), 0.002 * wanted.length + 0.001 * em)

    def test_letters_are_the_font_s_own_and_drawn_once(self):
        for name in os.environ.get("KERNO_HERSHEY", "rowmans rowmand scripts gothiceng timesib").split():
            self.check_letters(name, hershey(f"{HERSHEY}/{name}.jhf"), 32)
        for name in os.environ.get("KERNO_LIBRECAD", "standard iso3098 italicc kochimincho").split():
            self.check_letters(f"{LIBRECAD}/{name}.lff", librecad(f"{LIBRECAD}/{name}.lff"), 9)

    def test_what_shows_nothing_makes_no_glyph_and_marks_are_composed(self):
        font = ["--stroke-font", f"{LIBRECAD}/standard.lff", "--align", "right"]
        plain, odd = (self.cut(text, *font)[0]["glyphs"] for text in
                      ("ü A-B\nC\nD", "u\u0308\tA\u200e\u202e\u200b\ufe0f-B \u3000\u2028C\t\u0085D"))
        self.assertEqual([(g["glyph"], g["x"], g["y"]) for g in plain], [(g["glyph"], g["x"], g["y"]) for g in odd])
        self.assertEqual([0, 2, 3], [g["character"] for g in odd][:3])

    def test_wrapped_lines_are_read_as_one(self):
        lines = pathlib.Path(f"{HERSHEY}/gothiceng.jhf").read_text("ascii").splitlines()
        parts = [line[i:i + 72] for line in lines for i in range(0, len(line), 72)]
        wrapped = self.font("\r\n".join(parts), "w.jhf")
        files = [self.cut("Quiz 8&@", "--stroke-font", font)[1].read_bytes() for font in ("gothiceng", wrapped)]
        self.assertEqual(*files)

    def test_arcs_and_curves_follow_size_and_pose(self):
        lean, turn = math.tan(math.radians(20)), math.sqrt(0.5)
        standard = f"{LIBRECAD}/standard.lff"
        letters = {letter: librecad(standard)[letter] for letter in "BO&8§"}
        curves = {chr(65 + i): path_lines(data) for i, data in enumerate(PATHS)}
        font = self.font(svg_font(PATHS))
        for options, pose in (["--slant", "20"], (1, lean, 0, 1)), (["--mirror"], (-1, 0, 0, 1)), \
                (["--angle", "45"], (turn, -turn, turn, turn)), (["--curves", "lines"], (1, 0, 0, 1)):
            self.check_letters(standard, letters, 9, *options, pose=pose)
            self.check_letters(font, curves, 1000, *options, pose=pose)
        self.check_letters(font, curves, 1000, "--curves", "curves")
        made, path = self.cut("O", "--stroke-font", standard, "--fit", "40x90", "--stretch")
        self.assertLess(math.dist((40, 90), (made["width"], made["height"])), 0.03)
        sizes = {"kst32b.lff": 20, "symath.lff": 20 * 0.857 / 9, "iso3098.lff": 20, "rowmans.jhf": 20}
        for name, height in sizes.items():
            self.assertAlmostEqual(height, self.cut("H", "--stroke-font", name)[0]["height"], 2)
        made, path = self.cut("O", "--stroke-font", standard, "--dxf", "r12")
        self.assertEqual(2, made["arcs"])
        bulges = [abs(round(v.dxf.bulge, 6)) for v in ezdxf.readfile(path).modelspace()[0].vertices]
        self.assertEqual([0, 0, 1, 1], sorted(bulges))

    def test_nothing_is_drawn_twice(self):
        font = self.font(svg_font([data for data, _ in DOUBLED]))
        for i, (data, lengths) in enumerate(DOUBLED):
            with self.subTest(data):
                _, path = self.cut(chr(65 + i), "--stroke-font", font, "--em", "1000", "--order", "text")
                found = [LineString(lines_of(e, 0.01)).length for e in ezdxf.readfile(path).modelspace()]
                self.assertEqual([round(n, 1) for n in lengths], [round(n, 1) for n in found])

    def test_strokes_stay_open_in_the_order_of_writing_with_short_ways(self):
        for letter in "EHKQ&":
            found = {}
            for order in ("text", "inside-first"):
                made, path = self.cut(letter, "--stroke-font", "rowmans", "--order", order)
                drawing = ezdxf.readfile(path)
                audit = drawing.audit()
                self.assertEqual(([], []), (audit.errors, audit.fixes))
                entities = list(drawing.modelspace())
                self.assertEqual((made["openPaths"], made["closedPaths"]),
                                 (sum(not e.closed for e in entities), sum(e.closed for e in entities)))
                lines = [lines_of(e, 0.1) for e in entities]
                found[order] = [(points[0], points[-1]) for points in lines]
            text, short = found.values()
            self.assertEqual([sorted(ends) for ends in text], [sorted(ends) for ends in short])
            ways = [sum(math.dist(a[1], b[0]) for a, b in zip(ends, ends[1:]))
                    for ends in itertools.product(*[(ends, ends[::-1]) for ends in text])]
            self.assertAlmostEqual(min(ways), sum(math.dist(a[1], b[0]) for a, b in zip(short, short[1:])), 6, letter)
        made, path = self.cut("EHXQ", "--stroke-font", "rowmans", "--svg-style", "fill", name="a.svg")
        self.assertIn('fill="none"', path.read_text())
        self.assertEqual((11, 1), (path.read_text().count("M"), path.read_text().count("z")))

    def test_columns_stack_upright_letters(self):
        made, _ = self.cut("AMI\nW", "--stroke-font", "rowmans", "--vertical", "--em", "32", "--at", "0,0")
        widths = {"A": 18, "M": 24, "I": 8, "W": 24}
        centres = [round(g["x"] + widths[c] / 2, 6) for g, c in zip(made["glyphs"], "AMIW")]
        self.assertEqual(centres[0:1] * 3 + [centres[0] - 32], centres)
        heights = [round(g["y"] - made["glyphs"][0]["y"], 6) for g in made["glyphs"]]
        self.assertEqual([0, -32, -64, 0], heights)

    def test_fonts_are_found_and_listed(self):
        folder = self.folder / "kerno/stroke-fonts"
        folder.mkdir(parents=True)
        for name in ("rowmans.svg", "Mine.SVG", "notes.txt"):
            (folder / name).write_text(svg_font(PATHS))
        env = {**os.environ, "XDG_DATA_HOME": str(self.folder), "XDG_DATA_DIRS": "/usr/share"}
        status, out, _ = run("faces", "--strokes", "--json", env=env)
        listed = {font["name"]: font["file"] for font in json.loads(out)}
        self.assertEqual((0, str(folder / "Mine.SVG")), (status, listed["Mine"]))
        self.assertEqual([str(folder / "rowmans.svg"), f"{HERSHEY}/rowmans.jhf"],
                         [listed["rowmans"], listed["rowmans.jhf"]])
        self.assertNotIn("notes", listed)
        for name, family in (("mine", "R&D"), ("ROWMANS.JHF", "rowmans"), ("Standard", "ISO 3098-2")):
            words = ["cut", "A", "--stroke-font", name, "--em", "9", "--json", "-o", str(self.folder / "a.ipx")]
            status, out, err = run(*words, env=env)
            self.assertEqual((0, ""), (status, err))
            self.assertEqual(family, json.loads(out)["face"])

    def test_what_is_wrong_is_named_with_its_line(self):
        broken_lff = "[0041] A\n0,0;1,1\n[0042] B\n0,0;1;2,2\n[0043] C\nC0043\n[0044] D\n0,0;1,x\n[0045] E\nC0099\n"
        lff = self.font(broken_lff, "b.lff")
        svg = self.font(svg_font(["M0 0L5", "L1 1", "M0 0J5", 'M0 0A1 1 0 2 0 5 5']), "b.svg")
        jhf = self.font("  501  9I[RFJ[\n  502  3I[RF\x80[\n", "b.jhf")
        face = svg_font([]).replace("1000", "0")
        cases = [  # font, text, exit status, what standard error must hold
            (lff, "B", 1, "b.lff, line 4: U+0042: is no list of points"), (lff, "C", 1, "line 6: U+0043: leads"),
            (lff, "D", 1, "line 8"), (lff, "E", 1, "line 10: U+0045: names a character"),
            (f"{LIBRECAD}/cursive.lff", "∅", 1, "cursive.lff, line 582: U+2205"),
            (svg, "A", 1, "b.svg, line 4: U+0041: path data has a broken or missing number after L"),
            (svg, "B", 1, "line 5: U+0042: path data does not begin with M"), (svg, "C", 1, "no command"),
            (svg, "D", 1, "line 7"), (jhf, " ", 1, "b.jhf, line 1: U+0020: ends before its last point"),
            (jhf, "!", 1, "line 2: U+0021: holds characters"), (self.font("  501  1JZ\nJZ", "c.jhf"), "A", 1, "line 2"),
            (self.font(face, "f.svg"), "A", 1, "f.svg, line 2: the font's units-per-em"),
            (self.font("<svg><font><glyph unicode='A' d='M", "g.svg"), "A", 1, "line 1: is no XML"),
            (self.font("<svg><font>", "h.svg"), "A", 1, "ends before </font>"),
            (self.font("<svg></svg>", "i.svg"), "A", 1, "holds no <font>"),
            (self.font("Dear reader", "letter.txt"), "A", 1, "is no stroke font"),
            (self.font("", "empty.jhf"), "A", 1, "is no stroke font"), (str(self.folder), "A", 1, ""),
            (self.font(b"\xff\xfe<\0", "u.svg"), "A", 1, "UTF-16"), ("/no/such.jhf", "A", 3, "/no/such.jhf"),
            ("rowman", "A", 3, 'the nearest are "rowmand", "rowmans"')]
        before = sorted(self.folder.iterdir())
        for font, text, expected, message in cases:
            with self.subTest(font=font, text=text):
                status, out, err = run("cut", text, "--stroke-font", font, "-o", str(self.folder / "out.dxf"))
                self.assertEqual((expected, ""), (status, out), err)
                self.assertIn(message, err)
                self.assertEqual(before, sorted(self.folder.iterdir()))
        out = ["-o", str(self.folder / "out.dxf")]
        for options, expected, message in ((["--offset", "1"], 2, "--offset: strokes have no outside"),
                                           (["--face", "Arial"], 2, "--face"), (["--strict"], 3, "龍 (U+9F8D)")):
            status, _, err = run("cut", "A龍", "--stroke-font", "rowmans", *options, *out)
            self.assertEqual(expected, status)
            self.assertIn(message, err)
        self.assertEqual((0, "kerno: warning: no glyph in rowmans: 龍 (U+9F8D)\n"),
                         run("cut", "A龍", "--stroke-font", "rowmans", *out)[::2])


if __name__ == "__main__":
    KERNO = programs.command(sys.argv.pop(1))
    unittest.main()
