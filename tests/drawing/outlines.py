"""Outlines of installed fonts as the text that drawing_tool reads, and measures of what it prints."""
import math
import subprocess

import numpy
from fontTools.pens.basePen import BasePen
from fontTools.ttLib import TTFont
from shapely.geometry import LineString
from shapely.ops import polygonize, unary_union

FONTS = {
    "DejaVu Sans": "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
    "Liberation Serif": "/usr/share/fonts/truetype/liberation/LiberationSerif-Regular.ttf",
    "Inter": "/usr/share/fonts/opentype/inter/Inter-Regular.otf",
    "IPAMincho": "/usr/share/fonts/opentype/ipafont-mincho/ipam.ttf",
}
HEIGHT = 20  # of an em


class ContourPen(BasePen):
    """Keeps contours as lists of pieces; a piece is its points, Bézier control points included."""

    def __init__(self, glyphs, scale, left=0, bottom=0):
        super().__init__(glyphs)
        self.contours, self.scale, self.left, self.bottom = [], scale, left, bottom

    def _place(self, p):
        return (p[0] * self.scale + self.left, p[1] * self.scale + self.bottom)

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
    """Closed: it ends where it starts. So many chords of a curve; of an arc, so many for a third of a circle."""
    def chords(piece):
        return max(16, round(2 * count * abs(math.atan(piece[2])))) if isinstance(piece, Arc) else count
    points = numpy.concatenate([sampled(piece, 1 if len(piece) == 2 else chords(piece))[:-1]
                                for piece in contour])
    return numpy.concatenate([points, points[:1]])


def dense(contour, count):
    """Points all along, lines included."""
    return numpy.concatenate([sampled(piece, count)[:-1] for piece in contour])


def farthest(points, contour):
    """The farthest of the points from the contour itself, not from chords of it."""
    straight = [piece for piece in contour if len(piece) == 2]
    arcs = [piece for piece in contour if isinstance(piece, Arc)]
    curves = [piece for piece in contour if len(piece) > 2 and not isinstance(piece, Arc)]
    measures = [(measure, pieces, size) for measure, pieces, size in (
        (gaps_to_lines, straight, 1), (gaps_to_arcs, arcs, 1), (gaps_to_curves, curves, STEPS)) if pieces]
    worst = 0
    for chunk in numpy.array_split(points, max(1, len(points) * len(contour) * STEPS // 1000000)):
        gaps = [measure(chunk, pieces) for measure, pieces, _ in measures]
        worst = max(worst, numpy.min(gaps, axis=0).max(initial=0))
    return worst


def gaps_to_lines(points, pieces):
    ends = numpy.array(pieces)
    a, d = ends[:, 0], ends[:, 1] - ends[:, 0]
    v = points[:, None, :] - a[None]
    t = numpy.clip((v * d).sum(axis=2) / numpy.maximum((d * d).sum(axis=1), 1e-300), 0, 1)
    gap = v - t[:, :, None] * d
    return numpy.sqrt((gap * gap).sum(axis=2).min(axis=1))


def gaps_to_arcs(points, pieces):
    centres = numpy.array([centre_of(arc) for arc in pieces])
    ends = numpy.array([arc[:2] for arc in pieces])
    bulges = numpy.array([arc[2] for arc in pieces])
    radii = numpy.hypot(*(ends[:, 0] - centres).T)
    middles = (ends[:, 0] + ends[:, 1]) / 2 + ((ends[:, 1] - ends[:, 0])[:, ::-1] * [1, -1]) * bulges[:, None] / 2
    v, axis = points[:, None, :] - centres[None], middles - centres
    distance = numpy.hypot(v[..., 0], v[..., 1])
    beside = abs(numpy.arctan2(v[..., 0] * axis[:, 1] - v[..., 1] * axis[:, 0], (v * axis).sum(axis=2)))
    to_ends = numpy.sqrt(((points[:, None, None, :] - ends[None]) ** 2).sum(axis=3)).min(axis=2)
    is_beside = beside <= 2 * abs(numpy.arctan(bulges))
    return numpy.where(is_beside, abs(distance - radii), to_ends).min(axis=1)


STEPS = 24


def gaps_to_curves(points, pieces):
    """Step by step closer, from the nearest chord of each piece that may hold the nearest point."""
    c = numpy.array([coefficients(piece) for piece in pieces])
    near = at_parameter(c[:, None], numpy.linspace(0, 1, STEPS + 1)[None])
    chords = numpy.diff(near, axis=1)
    v = points[:, None, None, :] - near[None, :, :-1]
    t = numpy.clip((v * chords).sum(axis=3) / numpy.maximum((chords * chords).sum(axis=2), 1e-300), 0, 1)
    gaps = numpy.sqrt(((v - t[..., None] * chords) ** 2).sum(axis=3))
    first, gaps = (gaps.argmin(axis=2) + 0.5) / STEPS, gaps.min(axis=2)
    stray = numpy.hypot(*(2 * abs(c[:, 2]) + 6 * abs(c[:, 3])).T) / (8 * STEPS * STEPS)  # of chords, at most
    which, piece = numpy.nonzero(gaps - stray <= (gaps + stray).min(axis=1)[:, None])
    gaps += stray
    own, goal, at = c[piece][:, None], points[which][:, None], first[which, piece]
    for step in 1 / STEPS / 5.0 ** numpy.arange(10):
        tried = numpy.clip(at[:, None] + step * numpy.linspace(-1, 1, 15), 0, 1)
        found = numpy.hypot(*(at_parameter(own, tried) - goal).transpose(2, 0, 1))
        best = found.argmin(axis=1)[:, None]
        at = numpy.take_along_axis(tried, best, axis=1)[:, 0]
    gaps[which, piece] = numpy.minimum(gaps[which, piece], numpy.take_along_axis(found, best, axis=1)[:, 0])
    return gaps.min(axis=1)


def coefficients(piece):
    """Of the polynomial of third degree."""
    p = [numpy.array(point) for point in piece]
    if len(p) == 3:
        return p[0], 2 * (p[1] - p[0]), p[0] - 2 * p[1] + p[2], numpy.zeros(2)
    return p[0], 3 * (p[1] - p[0]), 3 * (p[0] - 2 * p[1] + p[2]), p[3] - p[0] + 3 * (p[1] - p[2])


def at_parameter(c, t):
    t = t[..., None]
    return c[..., 0, :] + t * (c[..., 1, :] + t * (c[..., 2, :] + t * c[..., 3, :]))


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


def faces(contours, count=150):
    """What the non-zero rule fills, and how often each face of the plane is gone around."""
    rings = [ring for ring in (polyline(contour, count) for contour in contours) if len(ring) > 3]
    found = []
    for face in polygonize(unary_union([LineString(ring) for ring in rings])):
        point = numpy.array(face.representative_point().coords[0])
        found.append((face, sum(winding(ring, point) for ring in rings)))
    return found


def winding(ring, point):
    a, b = ring[:-1] - point, ring[1:] - point
    left = a[:, 0] * b[:, 1] - a[:, 1] * b[:, 0]
    return int(((a[:, 1] <= 0) & (b[:, 1] > 0) & (left > 0)).sum()
               - ((a[:, 1] > 0) & (b[:, 1] <= 0) & (left < 0)).sum())


def filled(contours, count=150):
    return unary_union([face for face, around in faces(contours, count) if around != 0])


def sharp_points(contour, radius):
    """Where it turns by more than a degree, and where its curves bend more closely than a circle of the radius."""
    points = [p for p, turn in turns(contour) if turn > 1]
    t = numpy.linspace(0, 1, 801)[:, None]
    for piece in contour:
        if len(piece) == 2:
            continue
        _, d1, d2, d3 = coefficients(piece)
        speed, bend = d1 + t * (2 * d2 + 3 * t * d3), 2 * d2 + 6 * t * d3
        cross = abs(speed[:, 0] * bend[:, 1] - speed[:, 1] * bend[:, 0])
        points += list(sampled(piece, 800)[numpy.hypot(*speed.T) ** 3 < radius * cross])
    return numpy.array(points).reshape(-1, 2)
