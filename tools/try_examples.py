#!/usr/bin/env python3
"""Runs examples/inkscape, examples/freecad and examples/openscad in the programs that they are for, and measures what
comes out with these programs, ezdxf and shapely. "tools/setup.sh programs" installs them; one that is missing is a
failure.

usage: try_examples.py KERNO [inkscape|freecad|openscad ...]
"""
import json
import math
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as Tree

import ezdxf
import ezdxf.path
from shapely.geometry import Polygon, box
from shapely.ops import unary_union

from check_programs import Checks

EXAMPLES = pathlib.Path(__file__).resolve().parents[1] / "examples"
EXTENSIONS = "/usr/share/inkscape/extensions"
INCH = 25.4
PIXEL = INCH / 96  # mm
HAIRLINE = 0.0254  # mm
TEXT = "Boing & 8 ÖR"
HEAD = ('<svg xmlns="http://www.w3.org/2000/svg" xmlns:inkscape="http://www.inkscape.org/namespaces/inkscape" '
        'xmlns:sodipodi="http://sodipodi.sourceforge.net/DTD/sodipodi-0.dtd" ')
LAYER = ('<sodipodi:namedview inkscape:current-layer="L"/><g id="L" inkscape:groupmode="layer" inkscape:label="Lay" '
         'transform="{}"/></svg>')
A4 = HEAD + 'width="210mm" height="297mm" viewBox="0 0 210 297">'
DOCUMENTS = {"no size": HEAD + "/>", "no viewBox": HEAD + 'width="400" height="300"/>',
             "viewBox alone": HEAD + 'viewBox="0 0 200 100"/>',
             "per cent": HEAD + 'width="100%" height="100%" viewBox="0 0 200 100"/>',
             "px": HEAD + 'width="800px" height="600px" viewBox="0 0 800 600"/>', "mm": A4 + "</svg>",
             "in": HEAD + 'width="8in" height="6in" viewBox="10 20 80 60"/>',
             "wide page": HEAD + 'width="200mm" height="100mm" viewBox="0 0 100 100"/>',
             "stretched": HEAD + 'width="200mm" height="100mm" viewBox="0 0 100 100" preserveAspectRatio="none"/>',
             "turned layer": A4 + LAYER.format("rotate(30) scale(2) translate(5,7)"),
             "mirrored layer": A4 + LAYER.format("scale(-1,1)"),
             "broken viewBox": HEAD + 'width="-5" height="0" viewBox="0 0 100mm nan"/>',
             "leaning layer": A4 + LAYER.format("skewX(30) scale(2,-3)")}
SELECTED = A4 + """<style>.bold { font-weight: bold }</style>
<g transform="rotate(20) scale(1.5,1.2)">
<text id="t1" x="40" y="30" style="font-family:'DejaVu Sans';font-size:10px">Boing ÖR</text>
<text id="t2" x="50" y="60" text-anchor="middle" font-style="oblique" class="bold" transform="skewX(10)"
 style="font-family:'DejaVu Sans', sans-serif;font-size:3mm">Mitte 8g</text></g>
<text id="t3" style="font-family:'DejaVu Serif';font-size:24pt;line-height:1.25;letter-spacing:2px;text-anchor:end"
 x="150" y="150"><tspan sodipodi:role="line" x="150" y="150">Erste</tspan><tspan sodipodi:role="line" x="150"
 y="190">Zweite Q</tspan></text>
<text id="t4" x="20" y="260" style="font-family:'DejaVu Sans Mono';font-size:12px"><tspan>i&lt;&amp;"x"</tspan></text>
<text id="t5" x="20" y="280" style="font-size:12px">Generic</text>
<clipPath id="c"><rect x="100" y="200" width="30" height="90"/></clipPath><text id="t6" clip-path="url(#c)" x="110" y="240"
 style="font-family:Nope, 'DejaVu Serif';white-space:pre"><title>A tip</title>Ab<!-- no --><a href="x">link Q</a></text></svg>"""
# Choices of the dialog that need something beside them.
BESIDE = {"selected": ["--id=t1"], "cursive.lff": ["--source=selected", "--id=t2"]}
TOO_OLD = 'echo "kerno: cut: is no command of kerno (kerno help lists them)" >&2; exit 2'
# Arguments of the extension and words of what it says.
BAD = {"no program": (["--program=/nowhere/kerno"], "/nowhere/kerno: there is no such program"),
       "not in PATH": (["--program="], "not installed, or not in a folder of PATH"),
       "too old": (["--program=OLD"], "too old"), "prints no drawing": (["--program=TRUE"], "no drawing"),
       "does not run": (["--program=BROKEN"], "does not start"), "no text": (["--text= "], "no text to cut"),
       "no face": (["--text=x", "--face=Nope"], 'face: "Nope" is not installed'),
       "no style": (["--text=x", "--face=DejaVu Sans", "--style=Foo"], 'has no "Foo"'),
       "only blanks": (["--text=\u3000"], "no text to cut"),
       "nothing selected": (["--source=selected"], "No text is selected"),
       "strokes": (["--text=x", "--stroke_font=nope"], "there is no such stroke font")}
# Texts that stay as they are when they are selected, and the reason.
LEFT = {"several faces": ('x="1">a<tspan font-weight="bold">b</tspan>', "several faces"),
        "by hand": ('x="1 4">ab', "moved one by one"),
        "spaced by hand": ('x="1">a<tspan dx="2">b</tspan>', "moved one by one"),
        "in a frame": ('style="inline-size:40">ab', "flows in a frame"),
        "columns": ('style="writing-mode:vertical-rl">ab', "from top to bottom"),
        "per cent": ('x="50%">ab', 'x "50%" is no plain length'), "large": ('font-size="large">ab', "no plain length"),
        "relative size": ('font-size="150%">ab', "no plain length"), "bolder": ('font-weight="bolder">ab', "no plain one"),
        "spacing": ('letter-spacing="0.5em">ab', "no plain length"), "words": ('word-spacing="3">a b', "word-spacing"),
        "raised": ('x="1">m<tspan baseline-shift="super">2</tspan>', "baseline-shift"),
        "right to left": ('style="direction:rtl">ab', "direction"),
        "features": ("style=\"font-feature-settings:'tnum'\">12", "font-feature-settings"),
        "tspan after letters": ('x="1" y="9">a<tspan x="1" y="20">b</tspan>', "a place of their own"),
        "tspan without place": ('><tspan x="1" y="9">a</tspan><tspan x="1" y="20">b</tspan><tspan>c</tspan>', "a place of"),
        "tspan at the pen": ('y="9"><tspan x="1" y="9">a</tspan><tspan x="20">b</tspan>', "a place of their own"),
        "ends of lines": ('style="white-space:pre">a\nb', "ends of lines"),
        "hidden part": ('>a<tspan display="none">b</tspan>', "hidden on its own"),
        "nested": ('><tspan><tspan x="1" y="9">a</tspan><tspan x="1" y="20">b</tspan></tspan>', "a place of their own"),
        "on a path": ('x="1"><textPath>ab</textPath>', "on a path"), "empty": ('x="1"> ', "no text to cut"),
        "flat": ('transform="scale(1,0)">ab', "no width or no height")}
GOOD_TEXTS = ['"quotes" \'single\' & <tags>', "-x", "--help", "日本語 ＡＢＣ", "two\\nlines", "{field}", "%s $HOME `ls`"]

FREECAD = """
import importlib.machinery, json, sys
import FreeCAD, Part
macro = importlib.machinery.SourceFileLoader("macro", MACRO).load_module()
found = []
for words in CASES:
    try:
        made = macro.make(**words)
        shape = made.Shape
        box = shape.BoundBox
        Part.export([made], FOLDER + "/a.step")
        again = Part.read(FOLDER + "/a.step")
        again = again.Volume if words.get("kind") == "solid" else again.Area
        found.append(dict(label=made.Label, options=made.KernoOptions, valid=shape.isValid(), wires=len(shape.Wires),
                          closed=sum(wire.isClosed() for wire in shape.Wires), area=shape.Area, volume=shape.Volume,
                          arcs=sum(isinstance(edge.Curve, Part.Circle) for edge in shape.Edges), again=again,
                          size=[box.XLength, box.YLength, box.ZLength]))
        FreeCAD.closeDocument(FreeCAD.ActiveDocument.Name)
    except macro.Failed as failure:
        found.append(dict(failed=str(failure)))
json.dump(found, open(FOLDER + "/found.json", "w"))
"""
# In its window: fills in the dialog of the macro, presses OK; again for the object that is selected then, elsewhere;
# undoes both; then lets it fail.
FREECAD_WINDOW = """
import json, os, traceback
import FreeCAD, FreeCADGui
from PySide2 import QtCore, QtWidgets
said, found = [], {}

def fill(face):
    def later():
        dialog = QtWidgets.QApplication.activeModalWidget()
        dialog.findChild(QtWidgets.QPlainTextEdit, "text").setPlainText("Zwei\\nZeilen")
        dialog.findChild(QtWidgets.QLineEdit, "face").setText(face)
        for name, value in (("size", "width"), ("kind", "solid")):
            box = dialog.findChild(QtWidgets.QComboBox, name)
            box.setCurrentIndex(box.findData(value))
        dialog.findChild(QtWidgets.QDoubleSpinBox, "length").setValue(80)
        QtCore.QTimer.singleShot(1500, close_message)
        dialog.accept()
    return later

def widen():
    dialog = QtWidgets.QApplication.activeModalWidget()
    found["asked again"] = dialog.findChild(QtWidgets.QPlainTextEdit, "text").toPlainText()
    dialog.findChild(QtWidgets.QDoubleSpinBox, "length").setValue(90)
    dialog.accept()

def close_message():
    box = QtWidgets.QApplication.activeModalWidget()
    if box:
        said.append(box.text())
        box.accept()

def work():
    try:
        code = compile(open(MACRO).read(), MACRO, "exec")
        FreeCAD.newDocument("sign").UndoMode = 1
        QtCore.QTimer.singleShot(500, fill("DejaVu Sans"))
        exec(code, {"__name__": "__main__"})
        document = FreeCAD.ActiveDocument
        shape = document.Objects[0].Shape
        found.update(width=shape.BoundBox.XLength, height=shape.BoundBox.ZLength,
                     selected=[o.Label for o in FreeCADGui.Selection.getSelection()], undo=document.UndoCount)
        document.Objects[0].Placement.Base = FreeCAD.Vector(7, 8, 9)
        QtCore.QTimer.singleShot(500, widen)
        exec(code, {"__name__": "__main__"})
        box = document.Objects[0].Shape.BoundBox
        found["wider"], found["at"], found["objects"] = box.XLength, box.ZMin, len(document.Objects)
        while document.UndoCount:
            document.undo()
        found["left"] = len(document.Objects)
        QtCore.QTimer.singleShot(500, fill("Nope"))
        exec(code, {"__name__": "__main__"})
        found["said"], found["left after it"] = said, len(document.Objects)
    except BaseException:
        found["error"] = traceback.format_exc()
    json.dump(found, open(FOLDER + "/found.json", "w"))
    os._exit(0)

QtCore.QTimer.singleShot(3000, work)
"""


def corners(file):
    words = re.findall(r"vertex (\S+) (\S+) (\S+)", file.read_text()) if file.exists() else []
    found = [tuple(map(float, word)) for word in words]
    return list(zip(found[::3], found[1::3], found[2::3]))


def volume(triangles):
    return sum(a[0] * (b[1] * c[2] - b[2] * c[1]) + a[1] * (b[2] * c[0] - b[0] * c[2]) + a[2] * (b[0] * c[1] - b[1] * c[0])
               for a, b, c in triangles) / 6


def bodies(triangles):
    """How many pieces a solid has: triangles that share a corner are of one."""
    above = {}

    def top(corner):
        while above.setdefault(corner, corner) != corner:
            corner = above[corner]
        return corner

    for a, b, c in triangles:
        above[top(a)] = top(b)
        above[top(b)] = top(c)
    return len({top(corner) for triangle in triangles for corner in triangle})


def exact_area(file):
    """Of the lines and arcs of a drawing: under the chords, and between them and their arcs."""
    area = 0
    for entity in ezdxf.readfile(file).modelspace():
        points = list(entity.get_points("xyb"))
        for (x, y, bulge), (ahead, up, _) in zip(points, points[1:] + points[:1]):
            area += (x * up - ahead * y) / 2
            if bulge:
                angle = 4 * math.atan(bulge)
                radius = math.hypot(ahead - x, up - y) / 2 / math.sin(angle / 2)
                area += radius * radius * (angle - math.sin(angle)) / 2
    return area


def swept_area(file):
    """Of a drawing whose pieces follow one another, each an entity."""
    area = 0
    for entity in ezdxf.readfile(file).modelspace():
        points = [(p.x, p.y) for p in ezdxf.path.make_path(entity).flattening(0.001)]
        area += sum(a[0] * b[1] - b[0] * a[1] for a, b in zip(points, points[1:])) / 2
    return abs(area)


def figures(file):
    """What the paths of a drawing of lines fill."""
    filled = Polygon()
    for entity in ezdxf.readfile(file).modelspace():
        filled = filled.symmetric_difference(Polygon([point[:2] for point in entity.get_points("xy")]))
    return filled


class Trials(Checks):
    def __init__(self, kerno, folder):
        super().__init__(kerno, folder)
        os.environ["KERNO"] = self.kerno

    def expect(self, program, name, what, good, found=""):
        self.wrong += not good
        print(f"{program:10} {name:16} {what}{'' if good else f'  WRONG: {found}'}", flush=True)

    def cut_dxf(self, *options):
        done = self.run(self.kerno, "cut", "-o", "own.dxf", *options)
        if done.returncode != 0:
            sys.exit(done.stderr)
        return self.folder / "own.dxf"

    # Inkscape.

    def extension(self, document, *words, **more):
        (self.folder / "in.svg").write_text(document)
        (self.folder / "out.svg").unlink(missing_ok=True)
        environment = os.environ | {"PYTHONPATH": EXTENSIONS, "PYTHONDONTWRITEBYTECODE": "1"} | more
        return subprocess.run(["/usr/bin/python3", EXAMPLES / "inkscape/kerno.py", *words, "--output=out.svg", "in.svg"],
                              cwd=self.folder, capture_output=True, text=True, check=False, env=environment)

    def numbers(self, program, file, *options):
        done = self.run(program, *options, file)
        return [float(word) * PIXEL for word in re.findall(r"^-?[\d.]+$", done.stdout, re.MULTILINE)]

    def boxes(self, program, file):
        rows = re.findall(r"^(t\d),(.*)$", self.run(program, "-S", file).stdout, re.MULTILINE)
        return {name: [float(word) * PIXEL for word in words.split(",")] for name, words in rows}

    def inkscape(self, program):
        inx = EXAMPLES / "inkscape/kerno.inx"
        done = self.run("xmllint", "--noout", "--relaxng", EXTENSIONS + "/inkscape.extension.rng", inx)
        self.expect("inkscape", "kerno.inx", "follows Inkscape's own schema", done.returncode == 0, done.stderr)
        self.each_choice(inx)
        self.documents(program)
        self.selected(program)
        self.dialog_action(program)
        self.bad_inputs()

    def each_choice(self, inx):
        """The dialog's values as it starts with them, and each of its choices once."""
        space = "{http://www.inkscape.org/namespace/inkscape/extension}"
        given, choices = {}, []
        for param in Tree.parse(inx).iter(space + "param"):
            options = [option.get("value") for option in param.findall(space + "option")]
            given[param.get("name")] = options[0] if options else param.text or ""
            choices += [(param.get("name"), option) for option in options]
            if param.get("type") == "notebook":
                given[param.get("name")] = param.find(space + "page").get("name")
            elif param.get("type") == "bool":
                choices.append((param.get("name"), "true"))
            elif param.get("type") == "color":
                given[param.get("name")] = str(int(param.text, 16))  # as Inkscape passes it
        choices += [("stroke_font", "cursive"), ("stroke_font", "cursive.lff"), ("layer", "New layer"), ("offset", "-0.1")]
        for name, value in choices:
            words = [f"--{key}={what}" for key, what in (given | {name: value}).items()]
            done = self.extension(SELECTED, *words, *BESIDE.get(value, []))
            made = (self.folder / "out.svg").read_text() if done.returncode == 0 else ""
            self.expect("inkscape", "kerno.py", f"{name}: {value}", "<path" in made and not done.stderr, done.stderr)

    def documents(self, program):
        own = exact_area(self.cut_dxf("--text", TEXT, "--face", "DejaVu Sans", "--fit", "50mm", "--tolerance", "0.01mm"))
        height = ezdxf.readfile(self.folder / "own.dxf").header["$EXTMAX"][1]
        for name, document in DOCUMENTS.items():
            done = self.extension(document, f"--text={TEXT}", "--face=DejaVu Sans", "--size=width", "--length=50")
            self.expect("inkscape", name, "says nothing", (done.returncode, done.stderr) == (0, ""), done.stderr)
            found = self.numbers(program, "out.svg", "-W", "-H")
            for what, size, wanted in zip(("width, mm", "height, mm"), found or [0, 0], (50, height)):
                self.tell("inkscape", name, what, size, wanted + HAIRLINE, HAIRLINE)
            unit = {"px": PIXEL, "in": INCH, "mm": 1, "turned layer": 1, "mirrored layer": 1}.get(name)
            if unit:
                # Its own writer of DXF, which takes the unit of the page's width.
                written = subprocess.run(["/usr/bin/python3", EXTENSIONS + "/dxf_outlines.py", "--POLY=true", "out.svg"],
                                         cwd=self.folder, capture_output=True, check=False)
                (self.folder / "out.dxf").write_bytes(written.stdout)
                area = swept_area(self.folder / "out.dxf") * unit * unit
                self.tell("inkscape", name, "area as DXF, mm2", area, own, 0.001 * own)
        self.run(program, "-o", "out.png", "-d", "600", "--export-background=#ffffff", "out.svg")
        self.expect("inkscape", "leaning layer", "is drawn", (self.folder / "out.png").exists())

    def selected(self, program):
        ids = [f"t{i}" for i in range(1, 7)]
        done = self.extension(SELECTED, "--source=selected", "--face=DejaVu Sans", *(f"--id={name}" for name in ids))
        self.expect("inkscape", "selected", "says nothing", (done.returncode, done.stderr) == (0, ""), done.stderr)
        # What Inkscape makes of the same texts.
        self.run(program, "--actions", f"select-by-id:{','.join(ids)};object-to-path;export-filename:paths.svg;export-do",
                 "in.svg")
        wanted, found = self.boxes(program, "paths.svg"), self.boxes(program, "out.svg")
        self.expect("inkscape", "selected", "no text is left", "<text" not in (self.folder / "out.svg").read_text())
        for name in ids:
            for what, is_now, was in zip(("left", "top", "width", "height"), found.get(name, [0] * 4), wanted[name]):
                # Letter spacing is rounded there.
                self.tell("inkscape", name, what + ", mm", is_now, was, 0.25 if name == "t3" else 0.05)

    def dialog_action(self, program):
        """As from its menu, with what the dialog was last set to; then Undo."""
        profile = self.folder / "profile"
        (profile / "extensions").mkdir(parents=True)
        for name in ("kerno.inx", "kerno.py"):
            shutil.copy(EXAMPLES / "inkscape" / name, profile / "extensions")
        (profile / "preferences.xml").write_text(
            '<?xml version="1.0"?>\n<inkscape version="1"><group id="extensions" org.kerno.cut.text="Menu" '
            'org.kerno.cut.source="typed" org.kerno.cut.size="width" org.kerno.cut.length="50"/></inkscape>\n')
        (self.folder / "in.svg").write_text(A4 + "</svg>")
        subprocess.run(["xvfb-run", "-a", program, "-g", "--batch-process", "--actions=org.kerno.cut.noprefs;"
                        "export-filename:done.svg;export-do;undo;export-filename:undone.svg;export-do", "in.svg"],
                       cwd=self.folder, env=os.environ | {"INKSCAPE_PROFILE_DIR": str(profile)}, capture_output=True,
                       check=False, timeout=120)
        found = self.numbers(program, "done.svg", "-W") if (self.folder / "done.svg").exists() else []
        self.tell("inkscape", "from the menu", "width, mm", found[0] if found else 0, 50 + HAIRLINE, HAIRLINE)
        undone = self.folder / "undone.svg"
        self.expect("inkscape", "from the menu", "one Undo takes all back",
                    undone.exists() and "<path" not in undone.read_text())

    def bad_inputs(self):
        for name, said in (("OLD", f"#!/bin/sh\n{TOO_OLD}\n"), ("TRUE", "#!/bin/sh\n"), ("BROKEN", "#!/nowhere/sh\n")):
            (self.folder / name).write_text(said)
            (self.folder / name).chmod(0o755)
        for name, (words, wanted) in BAD.items():
            words = [re.sub("=(OLD|TRUE|BROKEN)$", f"={self.folder}/\\1", word) for word in words]
            words = words if any(word.startswith("--text") for word in words) else ["--text=x", *words]
            alone = {"KERNO": "", "PATH": "/nowhere", "HOME": "/nowhere"} if name == "not in PATH" else {}
            done = self.extension(A4 + "</svg>", *words, **alone)
            good = done.returncode != 0 and wanted in done.stderr and "Traceback" not in done.stderr
            self.expect("inkscape", name, "is told", good and not (self.folder / "out.svg").exists(), done.stderr)
        for name, (rest, wanted) in LEFT.items():
            document = f'{A4}<text id="t" font-family="DejaVu Sans" {rest}</text></svg>'
            done = self.extension(document, "--source=selected", "--id=t")
            good = done.returncode != 0 and wanted in done.stderr and "Traceback" not in done.stderr
            self.expect("inkscape", name, "is left as it is", good and not (self.folder / "out.svg").exists(), done.stderr)
        done = self.extension(f'{A4}<text id="t" style="display:none">ab</text></svg>', "--source=selected", "--id=t",
                              "--face=DejaVu Sans")
        self.run("inkscape", "-o", "out.png", "out.svg")
        colours = self.run("identify", "-format", "%k", "out.png").stdout
        self.expect("inkscape", "hidden", "stays hidden", (done.returncode, colours) == (0, "1"), done.stderr + colours)
        for text in GOOD_TEXTS:
            done = self.extension(A4 + "</svg>", f"--text={text}", "--face=IPAGothic")
            self.expect("inkscape", "a text", text, (done.returncode, done.stderr) == (0, ""), done.stderr)

    # FreeCAD.

    def freecad(self, program):
        cases = [{"text": TEXT, "face": "DejaVu Sans", "fit": "120"},
                 {"text": "@®© 8%", "face": "DejaVu Sans", "style": "Bold", "kind": "solid", "height": 3},
                 {"text": "日本語\n\"quotes\" -x", "face": "IPAGothic", "align": "centre"},
                 {"text": "--help", "face": "DejaVu Serif", "cap_height": 2, "offset": 0.05, "kind": "wires"},
                 {"text": "Oslo", "stroke_font": "cursive"},
                 {"text": " "}, {"text": "x", "face": "Nope"}, {"text": "x", "program": "/nowhere/kerno"},
                 {"text": "x", "program": "/bin/true"}, {"text": 5}, {"text": "x", "kind": "sheet"},
                 {"text": "x", "kind": "solid", "height": 0}, {"text": "x", "kind": "solid", "height": 1e-12},
                 {"text": "x", "face": "\ud800"}, {"text": "half \ud800", "face": "DejaVu Sans"}]
        self.script("make.py", f"CASES = {cases}\n{FREECAD}")
        done = self.run(program, "make.py")
        if not (self.folder / "found.json").exists():
            self.expect("freecad", "macro", "runs", False, done.stdout[-1500:] + done.stderr[-500:])
            return
        results = json.loads((self.folder / "found.json").read_text())
        for words, made in zip(cases, results):
            words["text"] = str(words["text"]).replace("\ud800", "\ufffd")
            name = words["text"].splitlines()[0][:16]
            if "failed" in made:
                self.expect("freecad", "bad input", made["failed"].splitlines()[0], "DejaVu" not in words.get("face", ""))
                continue
            file = self.cut_dxf("--text", words["text"], *[w if w.startswith("--") else "--" + w
                                                           for w in made["options"].split(" --")])
            drawing = ezdxf.readfile(file)
            paths, low, high = list(drawing.modelspace()), drawing.header["$EXTMIN"], drawing.header["$EXTMAX"]
            solid = words.get("kind") == "solid"
            faces = words.get("kind", "face") == "face" and "stroke_font" not in words
            named = made["label"] == words["text"].splitlines()[0]
            self.expect("freecad", name, "valid, named by the text", made["valid"] and named, made)
            self.tell("freecad", name, "width, mm", made["size"][0], high[0] - low[0], 1e-5)
            self.tell("freecad", name, "height, mm", made["size"][1], high[1] - low[1], 1e-5)
            if not solid:
                self.tell("freecad", name, "wires", made["wires"], len(paths), 0)
                self.tell("freecad", name, "closed wires", made["closed"], sum(path.closed for path in paths), 0)
                # Of the paths, what has a bulge that FreeCAD can tell from a line.
                self.tell("freecad", name, "arcs", made["arcs"],
                          sum(abs(p[2]) > 0 for path in paths for p in path.get_points("xyb")), 3)
            if faces:
                self.tell("freecad", name, "area, mm2", made["area"], exact_area(file), 1e-6)
                self.tell("freecad", name, "area of its STEP", made["again"], made["area"], 1e-6)
            if solid:
                self.tell("freecad", name, "volume, mm3", made["volume"], 3 * exact_area(file), 1e-5)
                self.tell("freecad", name, "volume of its STEP", made["again"], made["volume"], 1e-5)
        self.tell("freecad", "bad input", "told in words", sum("failed" in made for made in results), 9, 0)
        self.freecad_window()

    def script(self, name, code):
        macro = EXAMPLES / "freecad/Kerno.FCMacro"
        (self.folder / name).write_text(f"MACRO, FOLDER = {str(macro)!r}, {str(self.folder)!r}\n{code}")

    def freecad_window(self):
        (self.folder / "found.json").unlink()
        self.script("window.py", FREECAD_WINDOW)
        subprocess.run(["xvfb-run", "-a", "freecad", "window.py"], cwd=self.folder, capture_output=True, check=False,
                       env=os.environ | {"HOME": str(self.folder), "QTWEBENGINE_DISABLE_SANDBOX": "1"}, timeout=180)
        file = self.folder / "found.json"
        found = json.loads(file.read_text()) if file.exists() else {}
        self.tell("freecad", "from the dialog", "width, mm", found.get("width", 0), 80, 0.01)
        self.tell("freecad", "from the dialog", "height of the solid, mm", found.get("height", 0), 3, 1e-6)
        self.tell("freecad", "asked again", "width, mm", found.get("wider", 0), 90, 0.01)
        self.tell("freecad", "asked again", "where it stood, mm", found.get("at", 0), 9, 1e-6)
        self.expect("freecad", "asked again", "with its own text, no second object",
                    (found.get("asked again"), found.get("objects")) == ("Zwei\nZeilen", 1), found)
        self.expect("freecad", "from the dialog", "is selected, one Undo takes it back",
                    found.get("selected") == ["Zwei"] and (found["undo"], found["left"]) == (1, 0), found)
        self.expect("freecad", "from the dialog", "a missing face is told, nothing is made",
                    any("Nope" in text for text in found.get("said", [])) and found["left after it"] == 0, found)

    # OpenSCAD.

    def sign(self, *words):
        return self.run("sh", EXAMPLES / "openscad/sign.sh", *words)

    def openscad(self, program):
        folder = self.folder / "Schild \"1\" 日本"
        folder.mkdir()
        for options in (["--face", "DejaVu Sans", "--fit", "120mm"],
                        ["--face", "DejaVu Serif", "--style", "Bold", "--cap-height", "9mm", "--at", "-30,7"]):
            for variant in ("raised", "engraved", "stencil"):
                self.one_sign(folder / f"{variant}.stl", variant, options)
        self.openscad_page()
        for words, wanted in ((["flat", "a.stl", "x"], "is none of"), (["raised", "a.txt", "x"], "ends in none of"),
                              (["raised", "a.stl", ""], "holds no text"), (["raised", "a.stl", "\u3000"], "no outlines"),
                              (["raised", "a.stl", "x", "--face", "Nope"], '"Nope" is not installed'),
                              (["raised", "a.stl", "x", "--stroke-font", "cursive"], "open paths")):
            done = self.sign(*words)
            self.expect("openscad", "bad input", wanted, done.returncode != 0 and wanted in done.stderr
                        and not (self.folder / "a.stl").exists(), done.stderr)
        for text in ("-x", "--help", "\"quotes\" \\ 'single' $HOME"):
            done = self.sign("raised", "b.stl", text, "--face", "DejaVu Sans")
            self.expect("openscad", "a text", text, done.returncode == 0 and bodies(corners(self.folder / "b.stl")) == 1,
                        done.stderr)
        self.run("xvfb-run", "-a", "sh", EXAMPLES / "openscad/sign.sh", "raised", "c.png", "8", "--face", "DejaVu Sans")
        colours = self.run("identify", "-format", "%k", "c.png").stdout
        self.tell("openscad", "picture", "colours", float(colours or 0), 100, 95)

    def openscad_page(self):
        """The commands of README.md, in a copy of its folder; then again, where the sign was edited."""
        folder = self.folder / "copy"
        shutil.copytree(EXAMPLES / "openscad", folder)
        commands = re.search(r"```sh\n(sh sign.sh.*?)```", (folder / "README.md").read_text(), re.DOTALL)[1]
        self.run("sh", "-ec", f"cd copy; {commands}")
        for name in ("boing", "stencil"):
            self.tell("openscad", f"{name}.stl", "pieces", bodies(corners(folder / f"{name}.stl")), 1, 0)
        self.expect("openscad", "sign.scad", "is as it was",
                    (folder / "sign.scad").read_bytes() == (EXAMPLES / "openscad/sign.scad").read_bytes())
        self.run("sh", "-ec", f"cd copy; echo 'variant = \"engraved\"; plate = 7;' >>boing.scad; {commands}")
        heights = [corner[2] for triangle in corners(folder / "boing.stl") for corner in triangle]
        self.tell("openscad", "edited sign", "height, mm", max(heights, default=0) - min(heights, default=0), 7, 1e-4)

    def one_sign(self, file, variant, options):
        done = self.sign(variant, file, "Boing & 8\nÖRe", *options)
        triangles = corners(file)
        if done.returncode != 0 or not triangles:
            self.expect("openscad", variant, "is made", False, done.stderr)
            return
        letters = figures(file.with_suffix(".dxf"))
        left, bottom, right, top = letters.bounds
        # The values that sign.scad starts with.
        plate, depth, margin, corner, hole, bridge, sides = 3, 1, 8, 4, 3.5, 1.2, 11.5
        area = box(left - margin - sides, bottom - margin, right + margin + sides, top + margin).area
        area -= corner**2 * (4 - 32 * math.sin(math.pi / 32)) + 2 * 32 * (hole / 2)**2 * math.sin(math.pi / 32)
        bars = unary_union([box(x - bridge / 2, low - 1, x + bridge / 2, high + 1) for x, low, high in json.loads(
            re.search(r"counters = (.*);", file.with_suffix(".values.scad").read_text())[1])])
        wanted = {"raised": plate * area + depth * letters.area, "engraved": plate * area - depth * letters.area,
                  "stencil": plate * (area - letters.difference(bars).area)}[variant]
        self.tell("openscad", variant, "volume, mm3", volume(triangles), wanted, 1e-5 * wanted)
        self.tell("openscad", variant, "pieces", bodies(triangles), 1, 0)


def main():
    with tempfile.TemporaryDirectory() as folder:
        trials = Trials(sys.argv[1], folder)
        for trial, program in ((trials.inkscape, "inkscape"), (trials.freecad, "freecadcmd"),
                               (trials.openscad, "openscad")):
            if sys.argv[2:] and trial.__name__ not in sys.argv[2:]:
                continue
            if shutil.which(program):
                trial(program)
            else:
                trials.wrong += 1
                print(f"{program} is not installed: tools/setup.sh programs")
        print(f"{trials.wrong} wrong")
        sys.exit(trials.wrong > 0)


if __name__ == "__main__":
    main()
