#!/usr/bin/env python3
"""Inkscape extension: text as cut paths of true size, made by the command "kerno cut". See README.md beside it."""
import json
import math
import os
import re
import shutil
import subprocess
import sys
import tempfile

import inkex
from lxml import etree

SVG = "{http://www.w3.org/2000/svg}"
SILENT = (SVG + "title", SVG + "desc", SVG + "metadata")  # of a text, but none of its letters
INCH = 25.4  # mm
PIXEL = INCH / 96  # of CSS, in mm
HAIRLINE = 0.0254  # mm
MOST_SECONDS = 120
STEP = re.compile(r"([A-Za-z])([^A-Za-z]*)")
NUMBER = re.compile(r"-?\d+(?:\.\d+)?")
LENGTH = re.compile(r"\s*([-+]?(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?)\s*([a-z]*)\s*$")
UNITS = {"": PIXEL, "px": PIXEL, "mm": 1, "cm": 10, "in": INCH, "pt": INCH / 72, "pc": INCH / 6, "q": 0.25}
MEDIUM = 12  # the size that Inkscape takes where a text has none; units of the document
FONT = ("font-family", "font-size", "font-weight", "font-style", "font-stretch", "letter-spacing")
# Properties that kerno has no word for, and what they are where they change nothing.
PLAIN = {"baseline-shift": ("baseline", "0", "0%"), "direction": ("ltr",), "dominant-baseline": ("auto", "alphabetic"),
         "font-feature-settings": ("normal",), "font-kerning": ("auto", "normal"), "font-size-adjust": ("none",),
         "font-variant": ("normal",), "font-variant-alternates": ("normal",), "font-variant-caps": ("normal",),
         "font-variant-east-asian": ("normal",), "font-variant-ligatures": ("normal",),
         "font-variant-numeric": ("normal",), "font-variant-position": ("normal",),
         "font-variation-settings": ("normal",), "text-decoration": ("none",), "text-decoration-line": ("none",),
         "text-indent": ("0",), "text-transform": ("none",),
         "unicode-bidi": ("normal", "embed", "isolate", "plaintext"), "word-spacing": ("normal", "0")}
# What a text has as a whole, which the group of its paths takes over.
WHOLE = ("clip-path", "mask", "filter", "display", "visibility", "opacity", "mix-blend-mode", "isolation")
# Families that a style sheet may name without meaning one.
GENERIC = {"serif", "sans-serif", "sans", "monospace", "cursive", "fantasy", "system-ui", ""}
WEIGHTS = {"thin": 100, "hairline": 100, "extralight": 200, "ultralight": 200, "light": 300, "demilight": 350,
           "book": 400, "regular": 400, "normal": 400, "roman": 400, "medium": 500, "demibold": 600, "semibold": 600,
           "demi": 600, "bold": 700, "extrabold": 800, "ultrabold": 800, "black": 900, "heavy": 900}


class Failed(Exception):
    """Told to the user as it stands."""


# The command.

def find_program(named):
    """The file of the command: the one that is named, KERNO of the environment, PATH, the usual folders."""
    given = named or os.environ.get("KERNO", "")
    if given:
        found = shutil.which(given)
        if not found:
            raise Failed(f"{given}: there is no such program. The page \"Program\" of the dialog names where kerno is.")
        return found
    folders = [os.environ.get("PATH", ""), "/usr/local/bin", "/usr/bin", os.path.expanduser("~/.local/bin")]
    folders += [os.path.join(os.environ[name], *rest) for name, *rest in
                (("LOCALAPPDATA", "Programs", "Kerno"), ("ProgramFiles", "Kerno")) if name in os.environ]
    found = shutil.which("kerno", path=os.pathsep.join(folders))
    if not found:
        raise Failed("The command kerno is not installed, or not in a folder of PATH. The page \"Program\" of the "
                     "dialog can name where it is.")
    return found


def run(program, words, text=""):
    """What the command prints, and its warnings."""
    hidden = {"creationflags": subprocess.CREATE_NO_WINDOW} if sys.platform == "win32" else {}
    try:
        done = subprocess.run([program, *words], input=text.encode("utf-8", "replace"), capture_output=True,
                              check=False, timeout=MOST_SECONDS, **hidden)
    except OSError as error:
        raise Failed(f"{program} does not start: {error.strerror}") from error
    except subprocess.TimeoutExpired as error:
        raise Failed(f"{program} has not finished after {MOST_SECONDS} seconds.") from error
    said = done.stderr.decode("utf-8", "replace").strip()
    if done.returncode != 0:
        reason = said or f"it ended with the code {done.returncode} and told no reason"
        if re.search(r"is no (option|command) of kerno", reason):
            reason += " This kerno is too old for the extension."
        raise Failed(f"{reason}\n({program})")
    return done.stdout.decode("utf-8", "replace"), said


class Cut:
    """The paths of one text: in mm, y down, from the top left corner of the ink."""

    def __init__(self, program, text, options):
        if not text.strip():
            raise Failed("There is no text to cut.")
        with tempfile.TemporaryDirectory(prefix="kerno") as folder:
            file = os.path.join(folder, "cut.svg")
            told, self.warnings = run(program, ["cut", "--text-file=-", f"-o{file}", "--json", *options], text)
            try:
                root = etree.parse(file).getroot()
                self.report = json.loads(told)
                self.paths = [path.get("d") for path in root.iter(SVG + "path")]
                self.width, self.height = map(float, root.get("viewBox").split()[2:])
            except (OSError, ValueError, AttributeError, etree.XMLSyntaxError) as error:
                raise Failed(f"{program} wrote no drawing that can be read: {error}") from error
        if not self.paths:
            raise Failed(self.warnings or "The text has no outlines.")

    def origin(self):
        """Where the first glyph of the text stands on its line."""
        first = min(self.report["glyphs"], key=lambda glyph: glyph["character"])
        return first["x"] - self.report["left"], self.height - (first["y"] - self.report["bottom"])

    def last(self):
        return max(self.report["glyphs"], key=lambda glyph: glyph["character"])["x"] - self.report["left"]


# Geometry.

def keeps_circles(matrix):
    (a, c, _), (b, d, _) = matrix
    size = math.hypot(a, b)
    return abs(abs(a) - abs(d)) + abs(abs(b) - abs(c)) < 1e-12 * size and abs(a * c + b * d) < 1e-12 * size * size


def moved(path, matrix):
    """The path, placed by a matrix that keeps circles."""
    (a, c, e), (b, d, f) = matrix
    scale = math.sqrt(abs(a * d - b * c))
    decimals = min(max(0, math.ceil(8 - math.log10(scale))), 15)  # of 1e-8 mm

    def word(value):
        return f"{value:.{decimals}f}".rstrip("0").rstrip(".") if decimals else f"{value:.0f}"

    def points(numbers, across, down):
        return [word(value) for x, y in zip(numbers[::2], numbers[1::2])
                for value in (a * x + c * y + across, b * x + d * y + down)]

    steps = []
    for letter, rest in STEP.findall(path):
        numbers = [float(n) for n in NUMBER.findall(rest)]
        if letter == "a":
            words = []
            for radius, _, _, large, sweep, x, y in zip(*[iter(numbers)] * 7):
                turned = int(sweep) ^ (a * d < b * c)
                words += [word(radius * scale)] * 2 + ["0", str(int(large)), str(turned), *points([x, y], 0, 0)]
        elif letter in "Mlqc":
            words = points(numbers, *((e, f) if letter == "M" else (0, 0)))
        elif letter == "z":
            words = []
        else:
            raise Failed(f"kerno wrote a step \"{letter}\" that this extension does not know.")
        steps.append(letter + " ".join(words))
    return "".join(steps)


def length(words):
    """In mm; None where it is no length of its own."""
    match = LENGTH.match(words or "")
    return float(match[1]) * UNITS[match[2].lower()] if match and match[2].lower() in UNITS else None


class Sheet:
    """The units of a document: mm of one unit across and down, and where its view and its page have their middle."""

    def __init__(self, svg):
        try:
            box = [float(n) for n in re.split(r"[\s,]+", (svg.get("viewBox") or "").strip())]
        except ValueError:
            box = []
        box = box if len(box) == 4 and min(box[2:]) > 0 else None
        page = [length(svg.get("width")), length(svg.get("height"))]
        if box:
            page = [size if size and size > 0 else side * PIXEL for size, side in zip(page, box[2:])]
            scales = [size / side for size, side in zip(page, box[2:])]
            ratio = svg.get("preserveAspectRatio") or "xMidYMid"
            if "none" not in ratio:
                scales = [max(scales) if "slice" in ratio else min(scales)] * 2
            left = [size - side * scale for size, side, scale in zip(page, box[2:], scales)]  # over, of the page
            before = [0 if axis + "Min" in ratio else 1 if axis + "Max" in ratio else 0.5 for axis in "xY"]
        else:
            box, scales, left, before = [0, 0, 0, 0], [PIXEL, PIXEL], [0, 0], [0, 0]
        self.across, self.down = scales
        self.corner = [box[i] - left[i] * before[i] / scales[i] for i in (0, 1)]
        self.page = [(size or 0) / 2 for size in page]  # mm from the corner
        view = svg.find(inkex.addNS("namedview", "sodipodi"))
        self.view = self.page
        if view is not None and length(view.get(inkex.addNS("cx", "inkscape"))) is not None:
            self.view = [length(view.get(inkex.addNS(name, "inkscape"))) or 0 for name in ("cx", "cy")]

    def middle(self, of_page):
        across, down = self.page if of_page else self.view
        return self.corner[0] + across / self.across, self.corner[1] + down / self.down


# Texts of the document.

class Line:
    """A line of a text object: what it says, where it begins, and the properties of its style."""

    def __init__(self, element, words, style, text):
        self.words, self.style, self.text = words, style, text
        self.x, self.y = (self.first(element, name) for name in "xy")

    def units(self, name, given):
        """Of a length that depends on nothing else."""
        found = length(given)
        if found is None:
            raise Failed(f"{self.text.get_id()}: the {name} \"{given}\" is no plain length, such as 12px; give it as one "
                         "first.")
        return found / PIXEL

    def first(self, element, name):
        return self.units(name, (element.get(name) or self.text.get(name) or "0").strip())

    def families(self):
        names = [name.strip(" \"'") for name in (self.style.get("font-family") or "").split(",")]
        return [name for name in names if name.lower() not in GENERIC]

    def size(self):
        given = str(self.style.get("font-size") or "medium").strip()
        return MEDIUM if given == "medium" else self.units("font-size", given)

    def spacing(self):
        given = str(self.style.get("letter-spacing") or "normal").strip()
        return 0 if given == "normal" else self.units("letter-spacing", given)

    def weight(self):
        given = str(self.style.get("font-weight") or "normal").strip()
        if not given.isdigit() and given not in WEIGHTS:
            raise Failed(f"{self.text.get_id()}: the font-weight \"{given}\" is no plain one, such as 700; give it as one "
                         "first.")
        return int(given) if given.isdigit() else WEIGHTS[given]

    def leans(self):
        return (self.style.get("font-style") or "normal").strip() in ("italic", "oblique")

    def narrow(self):
        return "condensed" in (self.style.get("font-stretch") or "")

    def anchor(self):
        """The part of the line that lies before its x."""
        return {"middle": 0.5, "end": 1}.get((self.style.get("text-anchor") or "").strip(), 0)


def set_by_hand(text):
    """What a text asks for that a line of kerno cannot give; empty when there is nothing."""
    style = text.specified_style()
    if any(isinstance(part, inkex.TextPath) for part in text.iterdescendants()):
        return "stands on a path"
    frames = [(style.get(name) or "none").strip() for name in ("shape-inside", "inline-size")]
    if any(frame not in ("none", "auto", "0", "0px") for frame in frames):
        return "flows in a frame"
    if (style.get("writing-mode") or "lr").strip()[:2] not in ("lr", "rl", "ho"):
        return "runs from top to bottom"
    for part in parts_of(text):
        if any(part.get(name) for name in ("dx", "dy", "rotate", "textLength")) \
                or any(len((part.get(name) or "").replace(",", " ").split()) > 1 for name in "xy"):
            return "has letters that were moved one by one"
        style = part.specified_style()
        for name, plain in PLAIN.items():
            given = str(style.get(name) or part.get(name) or plain[0]).strip()
            if given.lower() not in plain and not ("0" in plain and length(given) == 0):
                return f"has {name} \"{given}\", which kerno does not follow"
        own = part.cascaded_style() if part is not text else {}
        if any(own.get(name) for name in ("display", "visibility")):
            return "has a part that is shown or hidden on its own"
    return ""


def parts_of(element):
    """An element and those in it that have letters: what tells of it, and comments, has none."""
    yield element
    for child in element:
        if isinstance(child.tag, str) and child.tag not in SILENT:
            yield from parts_of(child)


def words_of(element):
    inner = [words_of(child) if isinstance(child.tag, str) and child.tag not in SILENT else "" for child in element]
    return (element.text or "") + "".join(words + (child.tail or "") for words, child in zip(inner, element))


def spans_of(text):
    """The parts of a text that are lines of their own; a text of one line is one itself."""
    parts = list(parts_of(text))
    placed = [part for part in parts[1:] if part.get("x") or part.get("y")]
    spans = [part for part in parts if part.getparent() is text]
    around = (text.text or "") + "".join(child.tail or "" for child in text)
    alone = bool(spans) and not around.strip()
    # From the second on, a line stands where both its x and its y say.
    if alone and all(span in spans for span in placed) and len(placed) == len(spans) \
            and all(span.get("x") and span.get("y") for span in spans[1:]):
        return [(span, span) for span in spans]
    if placed or (len(spans) > 1 and any(span.get(inkex.addNS("role", "sodipodi")) == "line" for span in spans)):
        raise Failed(f"{text.get_id()}: has parts with a place of their own beside others without; make it a plain text "
                     "first.")
    return [(text, spans[0] if alone else text)]


def lines_of(text):
    breaks = (text.specified_style().get("white-space") or "").strip().startswith("pre")
    as_it_stands = breaks or text.get("{http://www.w3.org/XML/1998/namespace}space") == "preserve"

    def line(element, styled):
        words = words_of(element)
        if breaks and re.search(r"[\r\n]", words):
            raise Failed(f"{text.get_id()}: has ends of lines within its letters; make it a plain text first.")
        words = re.sub(r"[\t\r\n]", " ", words) if as_it_stands else re.sub(r"\s+", " ", words).strip()
        style = styled.specified_style()
        for part in parts_of(element):
            other = part.specified_style()
            if part is not element and any(other.get(name) != style.get(name) for name in FONT) \
                    and words_of(part).strip():
                raise Failed(f"{text.get_id()}: has several faces or sizes in one line; cut it in pieces first.")
        return Line(element, words, style, text)

    reason = set_by_hand(text)
    if reason:
        raise Failed(f"{text.get_id()}: {reason}; make it a plain text first.")
    return [each for each in (line(*span) for span in spans_of(text)) if each.words.strip()]


def style_like(styles, line):
    """The style of a family that fits best what a style sheet asks for."""
    def distance(style):
        words = re.findall(r"[a-z]+", style.lower().replace("semi bold", "semibold").replace("extra ", "extra"))
        weight = next((WEIGHTS[word] for word in words if word in WEIGHTS), 400)
        leans = any(word in ("italic", "oblique", "slanted") for word in words)
        narrow = any("condensed" in word or "narrow" in word for word in words)
        return abs(weight - line.weight()) + 1000 * (leans != line.leans()) + 2000 * (narrow != line.narrow())

    return min(styles, key=distance) if styles else ""


class TextToPaths(inkex.EffectExtension):
    def add_arguments(self, pars):
        for name, default in {"tab": "", "source": "typed", "text": "", "face": "", "style": "", "stroke_font": "",
                              "align": "left", "size": "cap", "unit": "mm", "weld": "text", "curves": "arcs",
                              "look": "hairline", "layer": "", "place": "view", "program": ""}.items():
            pars.add_argument(f"--{name}", default=default)
        for name, default in {"line_spacing": 1, "length": 20, "box_height": 20, "tolerance": 0.01, "offset": 0}.items():
            pars.add_argument(f"--{name}", type=float, default=default)
        pars.add_argument("--vertical", type=inkex.Boolean, default=False)
        pars.add_argument("--colour", type=inkex.Color, default=inkex.Color("#ff0000"))

    def effect(self):
        try:
            self.program = find_program(self.options.program.strip())
            self.sheet = Sheet(self.svg)
            if self.options.source == "selected":
                self.replace_selected()
            else:
                self.add_typed()
        except Failed as failure:
            raise inkex.AbortExtension(str(failure)) from failure

    def add_typed(self):
        options = self.options
        # The dialog writes the ends of lines like this.
        text = options.text.replace("\\n", "\n")
        cut = Cut(self.program, text, [*self.size(), *self.face(options.face, options.style), *self.paths(1),
                                       f"--align={options.align}", f"--line-spacing={options.line_spacing:.6f}",
                                       *["--vertical"] * options.vertical])
        x, y = self.sheet.middle(options.place == "page")
        across, down = 1 / self.sheet.across, 1 / self.sheet.down
        layer = self.layer()
        placed = inkex.Transform((across, 0, 0, down, x - cut.width / 2 * across, y - cut.height / 2 * down))
        around = layer.composed_transform()
        if abs(around.a * around.d - around.b * around.c) < 1e-12:
            raise Failed(f"The layer \"{layer.get('inkscape:label', layer.get_id())}\" has no width or no height.")
        layer.add(self.group(cut, -around @ placed, text.strip().splitlines()[0]))
        self.tell(cut)

    def replace_selected(self):
        texts = list(self.svg.selection.get(inkex.TextElement))
        if not texts:
            raise Failed("No text is selected.")
        # All are cut before one is replaced.
        for text, groups in [(text, [self.line_as_paths(line) for line in lines_of(text)]) for text in texts]:
            if not groups:
                raise Failed(f"{text.get_id()}: there is no text to cut.")
            whole = inkex.Group()
            whole.set("inkscape:label", groups[0].get("inkscape:label"))
            whole.transform = text.transform
            own = text.cascaded_style()
            taken = {name: str(own.get(name)) for name in WHOLE if own.get(name)}
            if taken:
                whole.style = inkex.Style(taken)
            for group in groups:
                whole.add(group)
            named, place = text.get_id(), text.getparent()
            place.replace(text, whole)
            # It stays selected by this name.
            whole.set("id", named)

    def line_as_paths(self, line):
        """In units of the text, so that whatever turns or stretches it does so with the paths."""
        (a, c, _), (b, d, _) = line.text.composed_transform().matrix
        scale = math.sqrt(abs(a * d - b * c) * self.sheet.across * self.sheet.down)
        if scale < 1e-9:
            raise Failed(f"{line.text.get_id()}: the text has no width or no height.")
        families, style = line.families() or [self.options.face], ""
        family = families[0]
        if not self.options.stroke_font.strip():
            # As Inkscape does, the first that is there.
            family = next((name for name in families if self.styles(name)), family)
            style = style_like(self.styles(family), line)
        options = [*self.face(family, style), *self.paths(scale), f"--em={line.size():.9f}mm",
                   f"--letter-spacing={line.spacing():.9f}mm"]
        cut = Cut(self.program, line.words, options)
        x, y = cut.origin()
        if line.anchor():
            measured = Cut(self.program, line.words.rstrip() + "|", options)
            x += line.anchor() * (measured.last() - measured.origin()[0] - line.spacing())
        self.tell(cut)
        placed = inkex.Transform((1, 0, 0, 1, line.x - x, line.y - y))
        return self.group(cut, placed, line.words.strip(), HAIRLINE / scale)

    def styles(self, family):
        if not hasattr(self, "faces"):
            try:
                self.faces = json.loads(run(self.program, ["faces", "--json"])[0])
            except ValueError as error:
                raise Failed(f"{self.program} lists no faces that can be read: {error}") from error
        return [style for face in self.faces if face.get("outlines") and family.lower() in
                [name.lower() for name in (face["family"], *face.get("names", []))] for style in face["styles"]]

    def face(self, face, style):
        stroke = self.options.stroke_font.strip()
        if stroke:
            return [f"--stroke-font={stroke}"]
        return [f"--face={face.strip()}"] * bool(face.strip()) + [f"--style={style.strip()}"] * bool(style.strip())

    def size(self):
        options = self.options
        given = f"{options.length:.6f}{options.unit}"
        return {"cap": [f"--cap-height={given}"], "em": [f"--em={given}"], "width": [f"--fit={given}"],
                "height": [f"--fit=x{given}"],
                "box": [f"--fit={options.length:.6f}x{options.box_height:.6f}{options.unit}"]}[options.size]

    def paths(self, scale):
        """With lengths of mm in a text of which a unit is so many mm."""
        options = self.options
        tolerance = max(options.tolerance / scale, 0.00001)
        offset = [f"--offset={options.offset / scale:.9f}mm"] * bool(options.offset)
        return [f"--weld={options.weld}", f"--curves={options.curves}", f"--tolerance={tolerance:.9f}mm", *offset]

    def layer(self):
        name = self.options.layer.strip()
        if not name:
            return self.svg.get_current_layer()
        for group in self.svg.iter(SVG + "g"):
            if group.get("inkscape:groupmode") == "layer" and group.get("inkscape:label") == name:
                return group
        layer = inkex.Layer.new(name)
        self.svg.add(layer)
        return layer

    def group(self, cut, matrix, label, hairline=None):
        """Of the paths, placed; what a path cannot take up without losing its arcs, the group does."""
        group = inkex.Group()
        group.set("inkscape:label", label[:60])
        group.set("id", self.svg.get_unique_id("kerno"))
        if not keeps_circles(matrix.matrix):
            group.transform = matrix
            matrix = inkex.Transform()
        (a, c, _), (b, d, _) = matrix.matrix
        colour, opacity = self.options.colour.to_rgb(), self.options.colour.alpha
        width = hairline or HAIRLINE * math.sqrt(abs(a * d - b * c))
        drawn = {"fill": str(colour), "fill-rule": "nonzero", "stroke": "none"}
        # Open lines enclose nothing.
        if self.options.look == "hairline" or self.options.stroke_font.strip():
            drawn = {"fill": "none", "stroke": str(colour), "stroke-width": f"{width:.9g}"}
        group.style = inkex.Style(drawn | ({"opacity": f"{opacity:.3f}"} if opacity < 1 else {}))
        for path in cut.paths:
            element = inkex.PathElement()
            element.set("d", moved(path, matrix.matrix))
            group.add(element)
        return group

    def tell(self, cut):
        """Warnings, beside which the paths stand."""
        warnings = [line for line in cut.warnings.splitlines() if "warning:" in line]
        if warnings:
            inkex.errormsg("\n".join(warnings))


if __name__ == "__main__":
    TextToPaths().run()
