#!/usr/bin/env python3
"""Opens drawings of "kerno cut" in the programs that their users have, without a window: sizes, closed paths, a
face that can be made and its extrusion. The programs are large ("tools/setup.sh programs"); those that are not
installed are named, and with --all count as failures.

usage: check_programs.py [--all] KERNO
"""
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import zlib

import ezdxf.path
from shapely.geometry import Polygon

FACE = ["--face", "DejaVu Sans"]
TEXT = ["Boing & 8 ÖR", *FACE, "--at", "20,20"]
WIDTH, HEIGHT = 120, 5  # of the text, and of what is extruded
INCH = 25.4
INKSCAPE_READER = "/usr/share/inkscape/extensions/dxf_input.py"
MOST_SECONDS = 120

FREECAD = """
import json
import FreeCAD, Import, Part
found = {}
for name in NAMES:
    document = FreeCAD.newDocument("drawing")
    Import.readDXF(FOLDER + "/" + name, document.Name)
    edges = [e for o in document.Objects if hasattr(o, "Shape") for e in o.Shape.Edges]
    wires = [Part.Wire(edges) for edges in Part.sortEdges(edges)]
    face = Part.makeFace(wires, "Part::FaceMakerBullseye")
    solid = face.extrude(FreeCAD.Vector(0, 0, HEIGHT))
    found[name] = [len(wires), sum(w.isClosed() for w in wires), face.BoundBox.XLength, face.Area, solid.Volume,
                   solid.isValid()]
    FreeCAD.closeDocument("drawing")
json.dump(found, open(FOLDER + "/found.json", "w"))
"""


class Checks:
    def __init__(self, kerno, folder):
        self.kerno, self.folder = os.path.abspath(kerno), pathlib.Path(folder)
        self.wrong = 0

    def tell(self, program, name, what, found, wanted, within):
        good = abs(found - wanted) <= within
        self.wrong += not good
        print(f"{program:10} {name:12} {what:24} {found:12.4f} {wanted:12.4f}{'' if good else '  WRONG'}", flush=True)

    def run(self, *words):
        return subprocess.run(words, cwd=self.folder, capture_output=True, text=True, errors="replace", check=False,
                              timeout=MOST_SECONDS, env=os.environ | {"QT_QPA_PLATFORM": "offscreen"})

    def cut(self, name, *options):
        done = self.run(self.kerno, "cut", *TEXT, "-o", name, "--json", *options)
        if done.returncode != 0:
            sys.exit(done.stderr)
        return json.loads(done.stdout)

    def make(self):
        size = ["--fit", f"{WIDTH}mm"]
        self.made = {"r2000.dxf": self.cut("r2000.dxf", *size), "r12.dxf": self.cut("r12.dxf", *size, "--dxf", "r12"),
                     "inch.dxf": self.cut("inch.dxf", *size, "--unit", "in")}
        self.closed = {name: made["closedPaths"] for name, made in self.made.items()}
        # Two frames across, so that a sheet's drawing is as wide as the others.
        frame = (WIDTH - 2) / 2
        done = self.run(self.kerno, "cut", "--count", "6", "--text", "Nr. {n}", *FACE, "--cap-height", "4mm", "-o",
                        "sheet.dxf", "--sheet", f"{WIDTH + 10}x60mm", "--frame", f"{frame}x10mm", "--corner", "2mm", "--json")
        if done.returncode != 0:
            sys.exit(done.stderr)
        rows = [json.loads(line) for line in done.stdout.splitlines()]
        self.closed["sheet.dxf"] = 6 + sum(row["closedPaths"] for row in rows if "row" in row)
        self.cut("lines.dxf", *size, "--curves", "lines")
        self.cut("arcs.svg", *size)
        self.cut("inch.svg", *size, "--unit", "in", "--curves", "curves")
        self.area = 0
        for entity in ezdxf.readfile(self.folder / "r2000.dxf").modelspace():
            polygon = Polygon([(p.x, p.y) for p in ezdxf.path.make_path(entity).flattening(0.0005)])
            self.area += polygon.area if polygon.exterior.is_ccw else -polygon.area

    def freecad(self, program):
        (self.folder / "read.py").write_text(
            f"NAMES, FOLDER, HEIGHT = {list(self.made)}, {str(self.folder)!r}, {HEIGHT}\n{FREECAD}")
        done = self.run(program, "read.py")
        found = self.folder / "found.json"
        if not found.exists():
            self.wrong += 1
            print("freecad    reads nothing:", done.stdout[-500:], done.stderr[-500:])
            return
        for name, (wires, closed, width, area, volume, valid) in json.loads(found.read_text()).items():
            self.tell("freecad", name, "closed wires", closed, self.made[name]["closedPaths"], 0)
            self.tell("freecad", name, "wires", wires, closed, 0)
            self.tell("freecad", name, "width, mm", width, WIDTH, 0.03)
            self.tell("freecad", name, "area, mm2", area, self.area, 0.3)
            self.tell("freecad", name, "volume of a valid solid", volume if valid else 0, HEIGHT * area, 0.01)

    def openscad(self, program):
        # It takes the ends of arcs for corners, and knows no POLYLINE and no unit.
        (self.folder / "a.scad").write_text(f'linear_extrude({HEIGHT}) import("lines.dxf");')
        self.run(program, "-o", "a.stl", "a.scad")
        solid = self.folder / "a.stl"
        words = re.findall(r"vertex (\S+) (\S+) (\S+)", solid.read_text()) if solid.exists() else []
        corners = [tuple(map(float, word)) for word in words]
        volume = sum(a[0] * (b[1] * c[2] - b[2] * c[1]) + a[1] * (b[2] * c[0] - b[0] * c[2])
                     + a[2] * (b[0] * c[1] - b[1] * c[0])
                     for a, b, c in zip(corners[::3], corners[1::3], corners[2::3])) / 6
        across = [corner[0] for corner in corners] or [0]
        self.tell("openscad", "lines.dxf", "width, mm", max(across) - min(across), WIDTH, 0.03)
        self.tell("openscad", "lines.dxf", "volume", volume, HEIGHT * self.area, 0.001 * HEIGHT * self.area)

    def inkscape(self, program):
        # Its reader by itself: the program asks for options in a window.
        for name in self.closed:
            done = self.run("/usr/bin/python3", INKSCAPE_READER, "--scalemethod=file", "--output", name + ".svg", name)
            paths = (self.folder / (name + ".svg")).read_text() if done.returncode == 0 else ""
            closed = len(re.findall(r'<path d="M[^"]*[zZ] *"', paths))
            self.tell("inkscape", name, "closed paths", closed, self.closed[name], 0)
        for name in [*(name + ".svg" for name in self.closed), "arcs.svg", "inch.svg"]:
            done = self.run(program, "-W", name)
            width = float(re.findall(r"^[\d.]+$", done.stdout, re.MULTILINE)[0]) / 96 * INCH
            stroke = 0.4 if name.endswith(".dxf.svg") else 0.04  # as far as it is drawn around corners
            self.tell("inkscape", name, "width, mm", width, WIDTH + stroke / 2, stroke / 2)

    def librecad(self, program):
        for name in ("r2000.dxf", "r12.dxf", "sheet.dxf"):
            self.run(program, "dxf2pdf", name)
            page = (self.folder / name).with_suffix(".pdf")
            drawn = page.read_bytes() if page.exists() else b""
            content = b"".join(zlib.decompress(part) for part in re.findall(rb"stream\r?\n(.*?)\nendstream", drawn, re.S)
                               if part.startswith(b"\x78"))
            unit = float((re.findall(rb"([\d.]+) 0 0 -[\d.]+ 0 [\d.]+ cm", content) or [b"0"])[0]) / 72 * INCH
            strokes = [[tuple(map(int, p)) for p in re.findall(rb"(\d+) (\d+) [ml]\n", run)]
                       for run in re.findall(rb"((?:\d+ \d+ [ml]\n)+)S", content)]
            ends = {}
            for stroke in strokes:
                for end in (stroke[0], stroke[-1]):
                    ends[end] = ends.get(end, 0) + 1
            across = [x for stroke in strokes for x, _ in stroke] or [0]
            self.tell("librecad", name, "width on paper, mm", (max(across) - min(across)) * unit, WIDTH, 0.05)
            odd = [end for end, count in ends.items() if count % 2]
            # Ends are rounded each by itself.
            loose = [a for a in odd if not any(a != b and max(abs(a[0] - b[0]), abs(a[1] - b[1])) < 2 for b in odd)]
            self.tell("librecad", name, "loose ends", len(loose) if ends else -1, 0, 0)


def main():
    all_of_them = "--all" in sys.argv[1:-1]
    with tempfile.TemporaryDirectory() as folder:
        checks = Checks(sys.argv[-1], folder)
        checks.make()
        print(f"{'program':10} {'file':12} {'what':24} {'found':>12} {'wanted':>12}")
        for check, program in ((checks.freecad, "freecadcmd"), (checks.openscad, "openscad"),
                               (checks.inkscape, "inkscape"), (checks.librecad, "librecad")):
            if shutil.which(program):
                check(program)
            else:
                print(f"{program} is not installed")
                checks.wrong += all_of_them
        sys.exit(checks.wrong > 0)


if __name__ == "__main__":
    main()
