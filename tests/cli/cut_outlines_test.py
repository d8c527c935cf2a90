#!/usr/bin/env python3
"""What "kerno cut" makes of the outlines of many faces, read from its drawings by ezdxf, against the curves
that fontTools reads and the unions that Shapely makes of them. A sample of it by default.

usage: cut_outlines_test.py KERNO [--all | --face NAME]   (these print a table, too)
"""
import json
import os
import pathlib
import random
import subprocess
import sys
import tempfile
import unicodedata
import warnings

import ezdxf
import numpy
from fontTools.ttLib import TTFont
from shapely.geometry import Polygon
from shapely.validation import explain_validity

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "drawing"))
from outlines import Arc, ContourPen, dense, farthest, filled, polyline, sharp_points, turns  # noqa: E402

EM = 20
TOLERANCES = (0.001, 0.01, 0.1)
ROUNDING = 1e-6  # the last decimal of a drawing
FONTS = "/usr/share/fonts/"
KANJI = range(0x4E00, 0x9FA0)
# Family, style, file, place on the axes.
FACES = {
    "DejaVu Sans": ("DejaVu Sans", "Book", "truetype/dejavu/DejaVuSans.ttf", None),
    "DejaVu Serif": ("DejaVu Serif", "Book", "truetype/dejavu/DejaVuSerif.ttf", None),
    "Liberation Serif": ("Liberation Serif", "Regular", "truetype/liberation/LiberationSerif-Regular.ttf", None),
    "Caladea": ("Caladea", "Italic", "truetype/crosextra/Caladea-Italic.ttf", None),
    "IPAMincho": ("IPAMincho", "Regular", "opentype/ipafont-mincho/ipam.ttf", None),
    "Inter": ("Inter", "Regular", "opentype/inter/Inter-Regular.otf", None),
    "Inter variable": ("Inter", "Regular", "truetype/inter-vf/Inter.var.ttf", {"wght": 400, "slnt": 0}),
    "Inter variable, bold": ("Inter", "Bold", "truetype/inter-vf/Inter.var.ttf", {"wght": 700, "slnt": 0}),
    "Cantarell": ("Cantarell", "Regular", "opentype/cantarell/Cantarell-Regular.otf", None),
    "Tlwg Mono": ("Tlwg Mono", "Regular", "opentype/tlwg/TlwgMono.otf", None),
    "Dancing Script": ("Dancing Script", "Regular", "opentype/dancingscript/DancingScript-Regular.otf", None),
    "Kaushan Script": ("Kaushan Script", "Regular", "opentype/kaushanscript/KaushanScript-Regular.otf", None),
    "Lobster Two": ("Lobster Two", "Italic", "opentype/lobstertwo/LobsterTwo-Italic.otf", None),
    "Lohit Devanagari": ("Lohit Devanagari", "Regular", "truetype/lohit-devanagari/Lohit-Devanagari.ttf", None),
    "Gargi": ("Gargi", "Regular", "truetype/Gargi/Gargi.ttf", None),
}
DEVANAGARI = ("Lohit Devanagari", "Gargi")
SAMPLE = {"Liberation Serif": 3, "Inter variable, bold": 3, "Kaushan Script": 3, "Lohit Devanagari": 3}


def texts(font, name, count):
    """Characters all over the face, of Devanagari syllables with conjuncts and marks."""
    chance = random.Random(1)
    if name in DEVANAGARI:
        letters = [chr(code) for code in range(0x915, 0x93A) if code not in (0x929, 0x931, 0x934)]
        return [chance.choice(letters) + chance.choice(["", "\u094d" + chance.choice(letters)])
                + chance.choice(["", "ि", "ी", "ु", "े", "ौ", "ं"]) for _ in range(count)]
    codes = sorted(code for code in font.getBestCmap() if unicodedata.category(chr(code))[0] in "LNPS"
                   and unicodedata.bidirectional(chr(code)) in ("L", "EN", "ON", "ES", "CS", "ET"))
    kanji = [code for code in codes if code in KANJI]
    codes = kanji or codes
    return [chr(codes[i * len(codes) // count]) for i in range(count)]


def words(letters):
    """Letters that overlap the next ones, by the face's own spacing or by a tight one."""
    return ["".join(letters[i:i + 5]) for i in range(0, len(letters), 5)]


class Face:
    def __init__(self, name, kerno, folder):
        self.name, self.kerno, self.folder = name, kerno, pathlib.Path(folder)
        self.family, self.style, file, self.place = FACES[name]
        self.file = FONTS + file
        self.font = TTFont(self.file)
        self.glyphs = self.font.getGlyphSet(location=self.place)
        if self.place:  # in the steps of the font's own numbers
            steps = {axis: round(at * 16384) / 16384 for axis, at in self.glyphs.location.items()}
            self.glyphs = self.font.getGlyphSet(location=steps, normalized=True)
        # This file alone, whatever else has its name.
        (self.folder / "fonts.conf").write_text(
            '<?xml version="1.0"?><!DOCTYPE fontconfig SYSTEM "urn:fontconfig:fonts.dtd"><fontconfig>'
            f"<dir>{os.path.dirname(self.file)}</dir><selectfont>"
            f"<acceptfont><glob>{self.file}</glob></acceptfont><rejectfont><glob>*</glob></rejectfont>"
            "</selectfont><cachedir>/var/cache/fontconfig</cachedir></fontconfig>")

    def shift(self, name):
        """By which a glyph out of others stands beside the place that its metrics say, which fontTools leaves."""
        glyph = self.font["glyf"][name] if "glyf" in self.font and not self.place else None
        return self.font["hmtx"][name][1] - glyph.xMin if glyph and glyph.isComposite() else 0

    def told(self, lines, *options):
        text = self.folder / "text.txt"
        text.write_text("\n".join(lines), encoding="utf-8")
        done = subprocess.run(
            [*self.kerno, "cut", "--text-file", str(text), "--face", self.family, "--style", self.style, "--em",
             str(EM), "--layers", "line", "--line-spacing", "2", "--json", "-o", str(self.folder / "cut.dxf"), *options],
            env=os.environ | {"FONTCONFIG_FILE": str(self.folder / "fonts.conf")}, capture_output=True, check=False)
        if done.returncode != 0:
            raise RuntimeError(done.stderr.decode())
        return json.loads(done.stdout)

    def shaped(self, lines):
        text = self.folder / "shaped.txt"
        text.write_text("\n".join(lines) + "\n", encoding="utf-8")
        place = [f"--variations={','.join(f'{k}={v}' for k, v in self.place.items())}"] if self.place else []
        done = subprocess.run(["hb-shape", "--no-glyph-names", "--output-format=json", f"--font-file={self.file}",
                               f"--text-file={text}", *place], capture_output=True, check=True)
        return [json.loads(line) for line in done.stdout.splitlines()]

    @staticmethod
    def starts(lines):
        """Of each line, and after the last one, in UTF-16."""
        return numpy.cumsum([0] + [len(line.encode("utf-16-le")) // 2 + 1 for line in lines])

    def cut(self, lines, tolerance, *options):
        """For each line of text the contours of the face, and those of the drawing; the paths that cross."""
        told = self.told(lines, "--tolerance", str(tolerance), *options)
        scale, names = EM / self.font["head"].unitsPerEm, self.font.getGlyphOrder()
        starts, wanted, drawn = self.starts(lines), [[] for _ in lines], [[] for _ in lines]
        for glyph in told["glyphs"]:
            name = names[glyph["glyph"]]
            pen = ContourPen(self.glyphs, scale, glyph["x"] + self.shift(name) * scale, glyph["y"])
            self.glyphs[name].draw(pen)
            line = wanted[numpy.searchsorted(starts, glyph["character"], "right") - 1]
            line += [contour for contour in map(without_points, pen.contours) if contour]
        for entity in ezdxf.readfile(self.folder / "cut.dxf").modelspace():
            points = [((x, y), bulge) for x, y, bulge in entity.get_points("xyb")]
            drawn[int(entity.dxf.layer.split()[-1]) - 1].append(
                [Arc((a, b, bulge)) if bulge else (a, b)
                 for (a, bulge), (b, _) in zip(points, points[1:] + points[:1])])
        return wanted, drawn, told["crossingPaths"]


def without_points(contour):
    """Without pieces that go nowhere."""
    return [piece for piece in contour if any(p != piece[0] for p in piece[1:])]


# Each check yields what is wrong as words; `facts` keeps the largest figure of each kind.

def largest(facts, name, value):
    facts[name] = max(facts.get(name, 0), value)
    return value


def check_outlines(face, lines, tolerance, facts):
    """Deviation both ways, corners, and the joints between."""
    for text, contours, paths in zip(lines, *face.cut(lines, tolerance, "--weld", "off", "--order", "text")[:2]):
        if len(contours) != len(paths):
            yield f"{text}: {len(contours)} contours, {len(paths)} paths"
            continue
        for contour, path in zip(contours, paths):
            out = max(farthest(dense(contour, 21), path), farthest(dense(path, 21), contour))
            if largest(facts, "deviation", out) > tolerance + ROUNDING:
                yield f"{text}: {out:.7f} away"
            corners = numpy.array([p for p, turn in turns(contour) if turn > 1]).reshape(-1, 2)
            joints = numpy.array([p for p, _ in turns(path)])
            if len(corners) and (gap := farthest_pair(corners, joints)) > 2 * ROUNDING:
                yield f"{text}: a corner is {gap:.6f} from the next joint"
            # What bends within the tolerance is as good as a corner. Rounding turns short pieces.
            sharp = sharp_points(contour, tolerance)
            slack = numpy.degrees(4 * ROUNDING / min(numpy.hypot(*numpy.subtract(p[0], p[1])) for p in path))
            for joint, turn in turns(path):
                is_sharp = len(sharp) and farthest_pair(numpy.array([joint]), sharp) < max(tolerance, 2 * ROUNDING)
                if not is_sharp and largest(facts, "smooth turn", turn) > 1 + slack:
                    yield f"{text}: turns by {turn:.2f} degrees at {joint}"


def check_shaping(face, lines):
    """The glyphs of hb-shape, and their places from the first on of each line."""
    wanted, starts = face.shaped(lines), face.starts(lines)
    told, scale = face.told(lines), EM / face.font["head"].unitsPerEm
    for text, start, end, theirs in zip(lines, starts[:-1], starts[1:], wanted, strict=True):
        ours = [glyph for glyph in told["glyphs"] if start <= glyph["character"] < end]
        if [glyph["glyph"] for glyph in ours] != [glyph["g"] for glyph in theirs]:
            yield f"{text}: glyphs {[glyph['glyph'] for glyph in ours]}, not {[glyph['g'] for glyph in theirs]}"
            continue
        pen, gaps = numpy.zeros(2), []
        for glyph, other in zip(ours, theirs):
            gaps.append(numpy.array([glyph["x"], glyph["y"]]) - (pen + [other["dx"], other["dy"]]) * scale)
            pen += [other["ax"], other["ay"]]
        if numpy.ptp(gaps, axis=0).max() > ROUNDING:
            yield f"{text}: places differ by {numpy.ptp(gaps, axis=0)}"


def farthest_pair(points, others):
    return numpy.sqrt(((points[:, None] - others[None]) ** 2).sum(axis=2)).min(axis=1).max()


def check_unions(face, lines, tolerance, facts, *options):
    wanted, drawn, crossing = face.cut(lines, tolerance, *options)
    for text, contours, paths in zip(lines, wanted, drawn):
        shape = filled(contours, 130)
        polygons = [Polygon(polyline(path, 300)) for path in paths]
        area = sum(p.area if p.exterior.is_ccw else -p.area for p in polygons)
        for i, polygon in enumerate(polygons):
            inside = "Self" in explain_validity(polygon) and abs(polygon.buffer(0).area - polygon.area)
            if largest(facts, "self-crossing", inside) > ROUNDING * polygon.length:
                yield f"{text}: path {i} crosses itself, {inside:.2g} mm2"
            for j, other in enumerate(polygons[:i]):
                both = 0
                if polygon.intersects(other):
                    both = polygon.buffer(0).intersection(other.buffer(0)).area
                part = min(both, polygon.area - both, other.area - both)
                if largest(facts, "crossing", part) > ROUNDING * polygon.length:
                    yield f"{text}: paths {j} and {i} cross, {part:.2g} mm2"
        if abs(area - shape.area) > tolerance * max(shape.length, EM):
            yield f"{text}: area {area:.5f}, not {shape.area:.5f}"
        if not all(p.is_valid for p in polygons):
            continue
        strays = shape
        for polygon in polygons:
            strays = strays.symmetric_difference(polygon)
        if not strays.buffer(-0.6 * tolerance - 0.0005).is_empty:
            yield f"{text}: not the union, {strays.area:.4f} mm2"
    if largest(facts, "told", crossing) > 0:
        yield f"{crossing} paths are told to cross"


def check(name, count, kerno, tolerances=TOLERANCES):
    """Yields the kind of each check, its figures and its faults."""
    with tempfile.TemporaryDirectory() as folder:
        face = Face(name, kerno, folder)
        letters = texts(face.font, name, count)
        yield "shaping", {}, list(check_shaping(face, letters + words(letters)))
        for tolerance in tolerances:
            facts = {}
            faults = list(check_outlines(face, letters, tolerance, facts))
            yield f"outlines {tolerance}", facts, faults
        tight = [] if name in DEVANAGARI or "Script" in name else ["--letter-spacing", "-3"]
        for kind, lines, options in (("welded glyphs", letters, ["--weld", "text"]),
                                     ("welded words", words(letters), tight)):
            facts = {}
            yield kind, facts, list(check_unions(face, lines, 0.01, facts, *options))


def main():
    warnings.simplefilter("ignore")
    kerno, *more = sys.argv[1:]
    if not more:
        chosen, count = SAMPLE, None
    else:
        chosen, count = ([more[1]] if more[0] == "--face" else FACES), 200
    wrong = 0
    for name in chosen:
        for kind, facts, faults in check(name, count or SAMPLE[name], [kerno]):
            wrong += len(faults)
            if more or faults:
                figures = ", ".join(f"{key} {value:.3g}" for key, value in facts.items())
                print(f"{name:22} {kind:16} {figures}", flush=True)
            for fault in faults:
                print("   ", fault, flush=True)
    sys.exit(wrong > 0)


if __name__ == "__main__":
    main()
