"""Outlines of installed fonts as the text that drawing_tool reads, and measures of what it prints."""
import math
import subprocess

import numpy
from fontTools.pens.basePen import BasePen
from fontTools.ttLib import TTFont

FONTS = {
    "DejaVu Sans": "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
    "Liberation Serif": "/usr/share/fonts/truetype/liberation/LiberationSerif-Regular.ttf",
    "Inter": "/usr/share/fonts/opentype/inter/Inter-Regular.otf",
    "IPAMincho": "/usr/share/fonts/opentype/ipafont-mincho/ipam.ttf",
}
HEIGHT = 20  # of an em


class ContourPen(BasePen):
    """Keeps contours as lists of pieces; a piece is its points, Bézier control points included."""

    def __init__(self, glyphs, scale, left=0):
        super().__init__(glyphs)
        self.contours, self.scale, self.left = [], scale, left

    def _place(self, p):
        return (p[0] * self.scale + self.left, p[1] * self.scale)

    def _moveTo(self, p):
        self.contours.append([])
        self.first = self.at = self._place(p)

    def _add(self, *points):
        points = [self._place(p) for p in points]
        self.contours[-1].append((self.at, *points))
        self.at = points[-1]

    _lineTo = _curveToOne = _qCurveToOne = _add

    def _closePath(self):
        if self.at != self.first:
            self.contours[-1].append((self.at, self.first))
        if not self.contours[-1]:
            self.contours.pop()


class Face:
    def __init__(self, name):
        font = TTFont(FONTS[name], fontNumber=0)
        self.glyphs, self.names = font.getGlyphSet(), font.getBestCmap()
        self.scale = HEIGHT / font["head"].unitsPerEm

    def contours(self, text, advance=1.0):
        """Of all letters of a line; `advance` below 1 makes them overlap."""
        contours, left = [], 0
        for letter in text:
            glyph = self.glyphs[self.names[ord(letter)]]
            pen = ContourPen(self.glyphs, self.scale, left)
            glyph.draw(pen)
            contours += pen.contours
            left += glyph.width * self.scale * advance
        return contours


def text_of(contour):
    words = ["closed", *contour[0][0]]
    for piece in contour:
        words.append("?lqc"[len(piece) - 1])
        words += [value for p in piece[1:] for value in p]
    return " ".join(word if isinstance(word, str) else repr(float(word)) for word in words)


def run(tool, stage, tolerance, contours, *more):
    """What the tool prints for these contours, as contours: a piece of four values is an arc with its
    bulge, other pieces are points."""
    lines = "".join(text_of(contour) + "\n" for contour in contours)
    printed = subprocess.run([tool, stage, str(tolerance), *map(str, more)], input=lines,
                             stdout=subprocess.PIPE, text=True, check=True)
    return [read(line) for line in printed.stdout.splitlines()]


class Arc(tuple):
    """Start, end, bulge."""


def read(line):
    words = iter(line.split()[1:])
    point = lambda: (float(next(words)), float(next(words)))
    contour, at = [], point()
    for kind in words:
        points = [point() for _ in range({"l": 1, "a": 1, "q": 2, "c": 3}[kind])]
        contour.append(Arc((at, points[0], float(next(words)))) if kind == "a" else (at, *points))
        at = points[-1]
    return contour


def centre_of(arc):
    (x0, y0), (x1, y1), bulge = arc
    factor = (1 - bulge * bulge) / (4 * bulge)
    return numpy.array([(x0 + x1) / 2 - (y1 - y0) * factor, (y0 + y1) / 2 + (x1 - x0) * factor])


def sampled(piece, count):
    """Points along a piece, its ends among them."""
    t = numpy.linspace(0, 1, count + 1)[:, None]
    if isinstance(piece, Arc):
        centre = centre_of(piece)
        spoke = numpy.array(piece[0]) - centre
        angle = 4 * math.atan(piece[2]) * t[:, 0]
        turned = [spoke[0] * numpy.cos(angle) - spoke[1] * numpy.sin(angle),
                  spoke[0] * numpy.sin(angle) + spoke[1] * numpy.cos(angle)]
        return centre + numpy.array(turned).T
    points = [numpy.array(p)[None, :] for p in piece]
    while len(points) > 1:
        points = [a * (1 - t) + b * t for a, b in zip(points, points[1:])]
    return points[0] + numpy.zeros((count + 1, 2))


def polyline(contour, count):
    """Closed: it ends where it starts."""
    points = numpy.concatenate([sampled(piece, 1 if len(piece) == 2 else count)[:-1]
                                for piece in contour])
    return numpy.concatenate([points, points[:1]])


def dense(contour, count):
    """Points all along, lines included."""
    return numpy.concatenate([sampled(piece, count)[:-1] for piece in contour])


def farthest(points, line):
    """The farthest of the points from a line of chords."""
    a, d = line[:-1], numpy.diff(line, axis=0)
    length = numpy.maximum((d * d).sum(axis=1), 1e-300)
    worst = 0
    for chunk in numpy.array_split(points, max(1, len(points) * len(a) // 2000000)):
        v = chunk[:, None, :] - a[None]
        t = numpy.clip((v * d).sum(axis=2) / length, 0, 1)
        gap = v - t[:, :, None] * d
        worst = max(worst, (gap * gap).sum(axis=2).min(axis=1).max())
    return math.sqrt(worst)


def direction(piece, at_end):
    if isinstance(piece, Arc):
        (x0, y0), (x1, y1), bulge = piece
        angle = math.atan2(y1 - y0, x1 - x0) + (2 if at_end else -2) * math.atan(bulge)
        return angle
    points = list(piece)[::-1] if at_end else list(piece)
    for p in points[1:]:
        if math.dist(p, points[0]) > 1e-9:
            sign = -1 if at_end else 1
            return math.atan2(sign * (p[1] - points[0][1]), sign * (p[0] - points[0][0]))
    return 0


def turns(contour):
    """Where pieces meet and by how many degrees the contour turns there."""
    for before, after in zip(contour[-1:] + contour[:-1], contour):
        turn = math.degrees(direction(after, False) - direction(before, True))
        yield after[0], abs((turn + 180) % 360 - 180)
