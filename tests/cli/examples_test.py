#!/usr/bin/python3
"""The parts of examples/ that need no large program: the FreeCAD macro's reader against ezdxf, and the bridges of the
OpenSCAD recipe against shapely. tools/try_examples.py runs them in those programs.

Usage: examples_test.py KERNO EXAMPLES
"""
import importlib.machinery
import importlib.util
import json
import math
import os
import pathlib
import re
import subprocess
import sys
import unittest

import ezdxf
import ezdxf.math
from shapely.geometry import Polygon, box
from shapely.ops import unary_union

import programs


def macro():
    sys.dont_write_bytecode = True
    loader = importlib.machinery.SourceFileLoader("kerno_macro", str(EXAMPLES / "freecad" / "Kerno.FCMacro"))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("kerno_macro", loader))
    loader.exec_module(module)
    return module


class FreecadMacro(programs.FolderTest):
    def test_reads_each_piece_as_ezdxf_does(self):
        kerno = macro()
        for text, *options in (["Boing & 8 ÖR\n-x", "--face=DejaVu Sans", "--cap-height=20"],
                               ["日本", "--face=IPAGothic", "--fit=1in", "--offset=0.1"],
                               ["Oslo", "--stroke-font=cursive"], ["--help", "--face=DejaVu Serif", "--curves=lines"]):
            with self.subTest(text):
                paths, warnings = kerno.cut(text, options, KERNO)
                self.assertEqual(warnings, "")
                file = self.folder / "a.dxf"
                subprocess.run([KERNO, "cut", "--text", text, *options, "-o", file], check=True, capture_output=True)
                entities = list(ezdxf.readfile(file).modelspace())
                self.assertEqual([closed for closed, _ in paths], [entity.closed for entity in entities])
                for path, entity in zip(paths, entities):
                    self.compare(list(kerno.pieces(path)), entity)

    def compare(self, pieces, entity):
        points = list(entity.get_points("xyb"))
        ends = points[1:] + (points[:1] if entity.closed else [])
        self.assertEqual([(piece[0], piece[2]) for piece in pieces], [(a[:2], b[:2]) for a, b in zip(points, ends)])
        for (start, middle, end), (_, _, bulge) in zip(pieces, points):
            sagitta = abs(bulge) * math.dist(start, end) / 2
            self.assertEqual(middle is not None, sagitta > 1e-6)
            if middle:
                centre = tuple(ezdxf.math.bulge_center(start, end, bulge))
                radius = ezdxf.math.bulge_radius(start, end, bulge)
                self.assertAlmostEqual(math.dist(centre, middle), radius, delta=1e-9 * max(radius, 1))
                self.assertAlmostEqual(math.dist(start, middle), math.dist(middle, end), delta=1e-9)
                # On the side where the arc is: left of the chord when it runs clockwise.
                side = (end[0] - start[0]) * (middle[1] - start[1]) - (end[1] - start[1]) * (middle[0] - start[0])
                self.assertEqual(side < 0, bulge > 0)

    def test_tells_why_it_fails(self):
        kerno = macro()
        broken = self.folder / "broken"
        broken.write_text("#!/nowhere/sh\n")
        broken.chmod(0o755)
        for text, options, program, wanted in ((" \n", [], KERNO, "no text"), ("x", ["--face=Nope"], KERNO, '"Nope"'),
                                               ("x", [], "/nowhere/kerno", "/nowhere/kerno: there is no such program"),
                                               ("x", [], "/bin/true", "no drawing that can be read"),
                                               ("x", [], str(broken), "does not start"),
                                               ("x", ["--no-such"], KERNO, "too old"),
                                               ("o", ["--curves=curves"], KERNO, "SPLINE")):
            with self.subTest(wanted), self.assertRaisesRegex(kerno.Failed, re.escape(wanted)):
                kerno.cut(text, options, program)


class OpenscadRecipe(programs.FolderTest):
    def sign(self, *words):
        # What OpenSCAD itself would do is left out.
        return subprocess.run(["sh", EXAMPLES / "openscad" / "sign.sh", *words], cwd=self.folder, capture_output=True,
                              text=True, check=False, env=os.environ | {"KERNO": KERNO, "OPENSCAD": "true"})

    def test_nothing_falls_out_of_a_stencil(self):
        for text, *options in (["Boing & 8 ÖR%", "--style", "Bold"],
                               ["@®© Åé\nBgØ0", "--at", "-300,-200", "--align", "right"],
                               ["-ABC-", "--mirror", "--angle", "30"], ["OO88", "--letter-spacing", "-4mm"]):
            with self.subTest(text):
                done = self.sign("stencil", "a b.stl", text, "--face", "DejaVu Sans", *options)
                self.assertEqual((done.returncode, done.stderr), (0, ""))
                letters = Polygon()
                for entity in ezdxf.readfile(self.folder / "a b.dxf").modelspace():
                    letters = letters.symmetric_difference(Polygon([p[:2] for p in entity.get_points("xy")]))
                scad = (self.folder / "a b.values.scad").read_text()
                bounds = json.loads(re.search(r"box = (.*);", scad)[1])
                for found, wanted in zip(bounds, letters.bounds):
                    self.assertAlmostEqual(found, wanted, delta=1e-6)
                counters = json.loads(re.search(r"counters = (.*);", scad)[1])
                bridges = unary_union([box(x - 0.6, low - 1, x + 0.6, high + 1) for x, low, high in counters])
                plate = box(*bounds).buffer(8)
                self.assertGreater(len(plate.difference(letters).geoms), 1)
                self.assertEqual(plate.difference(letters.difference(bridges)).geom_type, "Polygon")

    def test_tells_why_it_fails(self):
        for words, wanted in ((["raised", "a.stl"], "usage: sign.sh"), (["flat", "a.stl", "x"], "flat: is none of"),
                              (["raised", "a", "x"], "a: ends in none of"), (["raised", "a.stl", ""], "holds no text"),
                              (["raised", "a.stl", " "], "no outlines"),
                              (["raised", "a.stl", "x", "--face", "Nope"], '"Nope" is not installed'),
                              (["raised", "no/a.stl", "x"], "no/a"), (["raised", "a.stl", "x", "--help"], "no drawing"),
                              (["raised", "a.stl", "x", "--stroke-font", "cursive"], "open paths"),
                              (["raised", "a>b.stl", "x"], "OpenSCAD includes nothing")):
            with self.subTest(wanted):
                done = self.sign(*words)
                self.assertNotEqual(done.returncode, 0)
                self.assertIn(wanted, done.stderr)
                self.assertEqual(os.listdir(self.folder), [])

    def test_leaves_what_others_wrote(self):
        self.assertEqual(self.sign("raised", "-a.stl", "x").returncode, 0)
        own, values = self.folder / "-a.scad", self.folder / "-a.values.scad"
        for edited, status, variant in ((own.read_text() + "margin = 12;\n", 0, "stencil"), ("cube(1);\n", 1, "raised")):
            own.write_text(edited)
            done = self.sign(variant, "-a.stl", "o")
            self.assertEqual((done.returncode, own.read_text()), (status, edited), done.stderr)
            self.assertIn('variant = "stencil"', values.read_text())


if __name__ == "__main__":
    KERNO, EXAMPLES = os.path.abspath(sys.argv[1]), pathlib.Path(sys.argv[2]).resolve()
    unittest.main(argv=sys.argv[:1], verbosity=1)
