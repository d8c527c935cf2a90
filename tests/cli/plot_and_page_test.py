#!/usr/bin/python3
"""HPGL and PDF of the command line against readers of other makers: hp2xx for the size of plots, qpdf
and poppler for pages. Areas are compared with those of the DXF of the same run.

Usage: plot_and_page_test.py KERNO
"""
import json
import re
import subprocess
import sys
import unittest
import xml.etree.ElementTree as Tree

import ezdxf
import ezdxf.path
from fontTools.pens.areaPen import AreaPen
from fontTools.pens.recordingPen import RecordingPen
from fontTools.pens.transformPen import TransformPen
from fontTools.svgLib.path import parse_path

import programs

MM_PER_POINT = 25.4 / 72
SIGN = ["Öffnung 9–17 S&8", "--face", "DejaVu Sans"]


def run(*words):
    return subprocess.run([str(word) for word in words], capture_output=True, text=True, check=False)


def dxf_areas(file):
    """Of the closed polylines in order, negative where they run clockwise."""
    areas = []
    for entity in ezdxf.readfile(file).modelspace():
        points = [(p.x, p.y) for p in ezdxf.path.make_path(entity).flattening(0.001)]
        areas.append(sum(a[0] * b[1] - b[0] * a[1] for a, b in zip(points, points[1:])) / 2)
    return areas


def page_areas(svg):
    """Signed, in square millimetres, of the stroked paths of a page as poppler draws it."""
    areas = []
    for path in Tree.parse(svg).getroot().iter("{http://www.w3.org/2000/svg}path"):
        if "stroke" not in path.attrib and "stroke:" not in path.get("style", ""):
            continue
        matrix = [float(v) for v in re.findall(r"[-\d.e]+", path.get("transform", "1 0 0 1 0 0"))]
        # Closing the path twice, as poppler's text does after a move back, adds an empty contour.
        recorded, pen = RecordingPen(), AreaPen()
        parse_path(path.get("d"), recorded)
        recorded.replay(TransformPen(pen, matrix))
        areas.append(-pen.value * MM_PER_POINT**2)  # y down
    return areas


def plot_paths(file):
    """The point lists of the pen-down moves, each with its pen."""
    paths, pen, here = [], 0, None
    for word in file.read_text().replace("\n", "").split(";"):
        name, values = word[:2], [int(v) for v in word[2:].split(",") if v]
        points = list(zip(values[::2], values[1::2]))
        if name == "SP":
            pen = values[0]
        elif name == "PU" and points:
            here = points[-1]
            paths.append((pen, [here]))
        elif name == "PD":
            paths[-1][1].extend(points)
    return paths


class PlotAndPage(programs.FolderTest):
    def cut(self, *options):
        """Writes a.dxf, a.plt and a.pdf; the numbers of the first."""
        outputs = [word for kind in ("dxf", "plt", "pdf") for word in ("-o", self.folder / f"a.{kind}")]
        done = run(KERNO, "cut", "--json", *options, *outputs)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return json.loads(done.stdout)

    def test_sizes_and_areas_are_those_of_the_dxf(self):
        for options in ([*SIGN, "--fit", "120mm"],
                        [*SIGN, "--cap-height", "5mm", "--curves", "curves", "--layers", "depth"],
                        ["8あ", "--face", "IPAGothic", "--fit", "6000mm", "--tolerance", "0.1"],
                        [*SIGN, "--unit", "in", "--fit", "5in", "--layers", "glyph"]):
            with self.subTest(options):
                made = self.cut(*options)
                per_unit = 25.4 if "in" in options else 1
                width, height = made["width"] * per_unit, made["height"] * per_unit
                length = made["length"] * per_unit
                areas = [area * per_unit**2 for area in dxf_areas(self.folder / "a.dxf")]
                # ezdxf turns closed splines round.
                seen_as = abs if "curves" in options else float
                areas = [seen_as(area) for area in areas]
                if "--layers" in options:
                    areas.sort()

                plot = plot_paths(self.folder / "a.plt")
                self.assertEqual({points[0] == points[-1] for _, points in plot}, {True})
                plotted = [sum(a[0] * b[1] - b[0] * a[1] for a, b in zip(p, p[1:])) / 3200
                           for _, p in plot]
                seen = run("hp2xx", "-m", "svg", "-t", "-f", self.folder / "h.svg",
                           self.folder / "a.plt").stderr
                shown = re.search(r"height: *([\d.]+) x +([\d.]+) mm, true sizes", seen)
                self.assertAlmostEqual(float(shown[1]), width, delta=max(0.06, 2e-5 * width))
                self.assertAlmostEqual(float(shown[2]), height, delta=max(0.06, 2e-5 * width))

                page = self.folder / "a.pdf"
                checked = run("qpdf", "--check", page)
                self.assertEqual((checked.returncode, checked.stderr), (0, ""))
                facts = run("pdfinfo", page).stdout
                points = [float(v) for v in re.search(r"Page size: *([\d.]+) x ([\d.]+)", facts).groups()]
                unit = float((re.search(rb"/UserUnit (\d+)", page.read_bytes()) or [0, 1])[1])
                self.assertEqual(unit > 1, width > 5080)
                for shown, size in zip(points, (width, height)):
                    self.assertTrue(-1e-6 < shown * unit - size / MM_PER_POINT < unit, (shown, size))
                run("pdftocairo", "-svg", page, self.folder / "p.svg")
                drawn = [area * unit**2 for area in page_areas(self.folder / "p.svg")]

                for found, near in ((plotted, 0.03), (drawn, 0.012)):
                    found = [seen_as(area) for area in found]
                    if "--layers" in options:
                        found.sort()
                    self.assertEqual(len(found), len(areas))
                    near = max(near, 0.1 if "0.1" in options else 0)
                    for one, other in zip(found, areas):
                        self.assertAlmostEqual(one, other, delta=near * length / len(areas))

    def test_pens_layers_and_strokes(self):
        self.cut("AB\nCD", "--face", "DejaVu Sans", "--layers", "glyph", "--fit", "50mm")
        self.assertEqual([pen for pen, _ in plot_paths(self.folder / "a.plt")], [1, 1, 2, 2, 2, 3, 4, 4])
        names = re.findall(rb"/Name <FEFF([0-9A-F]+)>", (self.folder / "a.pdf").read_bytes())
        self.assertEqual([bytes.fromhex(name.decode()).decode("utf-16-be") for name in names],
                         ["Cut 1", "Cut 2", "Cut 3", "Cut 4"])
        self.cut("A", "--stroke-font", "rowmans", "--fit", "50mm")
        self.assertIn(False, [p[0] == p[-1] for _, p in plot_paths(self.folder / "a.plt")])

    def test_classic_drawings_and_places_below_zero(self):
        for name in ("a.plt", "a.pdf"):
            done = run(KERNO, "convert", "B8", "--face", "DejaVu Sans", "-o", self.folder / name)
            self.assertEqual(done.returncode, 0, done.stderr)
        points = [p for _, path in plot_paths(self.folder / "a.plt") for p in path]
        self.assertEqual((min(x for x, _ in points), min(y for _, y in points)), (0, 0))
        self.assertEqual(run("qpdf", "--check", self.folder / "a.pdf").returncode, 0)
        done = run(KERNO, "cut", *SIGN, "--at=-1,0", "-o", self.folder / "b.plt")
        self.assertIn("b.plt: the drawing reaches below 0, where many plotters cannot go", done.stderr)


if __name__ == "__main__":
    KERNO = sys.argv.pop(1)
    unittest.main()
