"""Text as outlines of true size for machines that cut.

    import kerno
    with kerno.Sign("Open", face="DejaVu Sans", cap_height=40) as sign:
        print(sign.size, sign.warnings)
        sign.to_dxf("open.dxf")

Coordinates are in the sign's unit (millimetres, or inches with unit="in"), y up. Signs may be used
from several threads; methods of the same sign wait for each other.
"""
from __future__ import annotations

import ctypes
import decimal
import functools
import math
import numbers
import operator
import os
import sys
import threading
from types import TracebackType
from typing import (Any, Callable, Dict, List, Mapping, NamedTuple, Optional, Sequence, SupportsIndex,
                    Tuple, Type, TypeVar, Union, cast)

from . import _library

__all__ = ["BadCall", "Box", "FaceError", "Facts", "KernoError", "Outline", "Segment", "Sign",
           "faces", "formats", "options", "stroke_fonts"]

Length = Union[str, float]  # "20mm", "1in", or a number in the sign's unit
Number = Union[str, float]
Whole = Union[str, int]
FileName = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]
Pair = Tuple[float, float]


class KernoError(Exception):
    """What went wrong, and why."""


class BadCall(KernoError, ValueError):
    """Options or arguments that are wrong, or a sign that was closed."""


class FaceError(KernoError, LookupError):
    """A face that is not installed, or with strict=True a character without a glyph."""


_lib = _library.load()
_ERRORS: Mapping[int, Type[Exception]] = {
    _library.BAD_CALL: BadCall, _library.NO_FACE: FaceError, _library.NO_MEMORY: MemoryError}

__version__: str = _lib.kerno_version().decode()


def _message() -> str:
    return bytes(_lib.kerno_message()).decode("utf-8", "replace")


def _check(result: int) -> None:
    if result != _library.OK:
        raise _ERRORS.get(result, KernoError)(_message())


def _lines(text: Optional[bytes]) -> List[str]:
    if text is None:
        raise MemoryError(_message())
    return text.decode("utf-8", "replace").split("\n")[:-1]  # each line ends with one


def faces() -> List[str]:
    """The families that are installed."""
    return _lines(_lib.kerno_faces())


def stroke_fonts() -> List[str]:
    """The fonts of single lines, for stroke_font."""
    return _lines(_lib.kerno_stroke_fonts())


def formats() -> List[str]:
    """The formats that a sign is written in, by their extensions."""
    return _lines(_lib.kerno_formats())


def options() -> List[str]:
    """The options of a sign as keywords."""
    return [name.replace("-", "_") for name in _lines(_lib.kerno_options())]


class Box(NamedTuple):
    left: float
    bottom: float
    right: float
    top: float


class Facts(NamedTuple):
    """What a drawing consists of."""
    paths: int
    closed: int   # paths
    lines: int    # segments of all paths
    arcs: int
    curves: int
    length: float  # of all paths together
    unit: str      # "mm" or "in"


class Outline(NamedTuple):
    """What there is to know of a path beside its points."""
    closed: bool
    depth: int   # of how many other contours it lies inside: even of outer ones, odd of counters
    layer: str
    colour: int  # AutoCAD colour index of the layer


class Segment(NamedTuple):
    """A piece of a path; what does not belong to its kind is zero."""
    kind: str  # "line", "arc" or "cubic"
    start: Pair
    end: Pair
    control1: Pair  # of a cubic
    control2: Pair
    centre: Pair    # of an arc
    bulge: float    # of an arc: the tangent of a quarter of its angle, above 0 counter-clockwise


def _segment_of(told: _library.Segment) -> Segment:
    start, end, control1, control2, centre = (
        (point.x, point.y)
        for point in (told.start, told.end, told.control1, told.control2, told.centre))
    return Segment(("line", "arc", "cubic")[told.kind], start, end, control1, control2, centre, told.bulge)


def _numpy() -> Any:
    try:
        import numpy
    except ImportError:
        return None
    return numpy


def _wrong(option: str, value: object, wanted: str) -> TypeError:
    return TypeError(f"{option} must be {wanted}, not {type(value).__name__}")


def _is_number(value: object) -> bool:
    """Python's numbers and numpy's; True and False are none."""
    if hasattr(value, "dtype"):
        return getattr(value, "shape", None) == () and getattr(value.dtype, "kind", "") in "iuf"
    return isinstance(value, (numbers.Real, decimal.Decimal)) and not isinstance(value, bool)


def _real(option: str, value: Any) -> float:
    try:
        number = float(value)
    except (ArithmeticError, ValueError) as error:
        raise BadCall(f"{option}: {error}") from None
    if not math.isfinite(number):
        raise BadCall(f"{option}: {number} is not a number that a drawing can have")
    return number


def _length(option: str, value: object, unit: str) -> str:
    if isinstance(value, str):
        return value
    if _is_number(value):
        return repr(_real(option, value)) + unit
    raise _wrong(option, value, f"a length: text, or a number in {unit}")


def _number(option: str, value: object, unit: str) -> str:
    if isinstance(value, str):
        return value
    if _is_number(value):
        return repr(_real(option, value))
    raise _wrong(option, value, "a number or text")


def _whole(option: str, value: object, unit: str) -> str:
    if isinstance(value, str):
        return value
    if _is_number(value) and isinstance(value, SupportsIndex):
        try:
            return str(operator.index(value))
        except TypeError:
            pass  # an array of numpy with one number that is not whole
        except ValueError as error:
            raise BadCall(f"{option}: {error}") from None
    raise _wrong(option, value, "a whole number or text")


def _text(option: str, value: object, unit: str) -> str:
    if isinstance(value, str):
        return value
    raise _wrong(option, value, "text")


def _file(option: str, value: object, unit: str) -> bytes:
    if isinstance(value, (str, bytes, os.PathLike)):
        return os.fsencode(value)
    raise _wrong(option, value, "a path")


def _flag(option: str, value: object, unit: str) -> str:
    if isinstance(value, bool):
        return "on" if value else "off"
    raise _wrong(option, value, "True or False")


def _point(option: str, value: object, unit: str) -> str:
    if isinstance(value, str):
        return value
    if isinstance(value, (tuple, list)) and len(value) == 2:
        return ",".join(_length(option, part, unit) for part in value)
    raise _wrong(option, value, "text or two lengths")


def _size(option: str, value: object, unit: str) -> str:
    """"120x40mm": a width, or a width and a height, either of which may be None."""
    if isinstance(value, (tuple, list)) and len(value) == 2:
        width, height = ("" if part is None else _length(option, part, unit) for part in value)
        return f"{width}x{height}" if height else width
    if isinstance(value, str) or _is_number(value):
        return _length(option, value, unit)
    raise _wrong(option, value, "text, a width, or a width and a height")


def _axes(option: str, value: object, unit: str) -> str:
    if isinstance(value, Mapping):
        return ",".join(f"{axis}={_number(option, place, unit)}" for axis, place in value.items())
    return _text(option, value, unit)


_READERS: Mapping[str, Any] = {
    "face": _text, "style": _text, "font_file": _file, "variation": _axes, "features": _text,
    "fallback": _text, "stroke_font": _file, "language": _text, "direction": _text,
    "vertical": _flag, "tate_chu_yoko": _whole, "cap_height": _length, "em": _length, "fit": _size,
    "stretch": _flag, "unit": _text, "align": _text, "line_spacing": _number,
    "letter_spacing": _length, "at": _point, "anchor": _text, "angle": _number, "slant": _number,
    "mirror": _flag, "curves": _text, "tolerance": _length, "weld": _text, "offset": _length,
    "order": _text, "dxf": _text, "layer": _text, "layers": _text, "colour": _whole,
    "svg_style": _text, "strict": _flag,
}


def _bytes(option: str, value: Union[str, bytes]) -> bytes:
    """For C, where a NUL ends a text."""
    encoded = value.encode("utf-8", "surrogatepass") if isinstance(value, str) else value
    if b"\0" in encoded:
        raise BadCall(f"{option} holds a NUL")
    return encoded


_Method = TypeVar("_Method", bound=Callable[..., Any])


def _alone(method: _Method) -> _Method:
    """While it runs no other thread changes its sign, of which it asks the library several times."""
    @functools.wraps(method)
    def held(sign: Sign, *arguments: Any, **keywords: Any) -> Any:
        with sign._lock:
            return method(sign, *arguments, **keywords)
    return cast(_Method, held)


class Sign:
    """A text with the options of "kerno cut", and the drawing that is made of them.

    Numbers are lengths in the sign's unit; texts may name another ("1in") and hold sums. The
    drawing is made when something of it is first asked for, which is when wrong values, and faces
    that are not there, are told.
    """

    def __init__(self, text: str, *,
                 face: Optional[str] = None, style: Optional[str] = None,
                 font_file: Optional[FileName] = None,
                 variation: Union[None, str, Mapping[str, float]] = None,
                 features: Optional[str] = None,
                 fallback: Union[None, str, Sequence[str]] = None,
                 stroke_font: Optional[FileName] = None,
                 language: Optional[str] = None, direction: Optional[str] = None,
                 vertical: Optional[bool] = None, tate_chu_yoko: Optional[Whole] = None,
                 cap_height: Optional[Length] = None, em: Optional[Length] = None,
                 fit: Union[None, Length, Tuple[Optional[Length], Optional[Length]]] = None,
                 stretch: Optional[bool] = None, unit: Optional[str] = None,
                 align: Optional[str] = None, line_spacing: Optional[Number] = None,
                 letter_spacing: Optional[Length] = None,
                 at: Union[None, str, Tuple[Length, Length]] = None,
                 anchor: Optional[str] = None, angle: Optional[Number] = None,
                 slant: Optional[Number] = None, mirror: Optional[bool] = None,
                 curves: Optional[str] = None, tolerance: Optional[Length] = None,
                 weld: Optional[str] = None, offset: Optional[Length] = None,
                 order: Optional[str] = None, dxf: Optional[str] = None,
                 layer: Optional[str] = None, layers: Optional[str] = None,
                 colour: Optional[Whole] = None, svg_style: Optional[str] = None,
                 strict: Optional[bool] = None) -> None:
        given = {name: value for name, value in locals().items()
                 if name in _READERS and value is not None}
        self._lock = threading.RLock()
        self._number = 0
        self._unit = "mm"
        number = _lib.kerno_new()
        if number == 0:
            raise MemoryError(_message())
        self._number = number
        try:
            self.text = text
            self.set(**given)
        except BaseException:
            self.close()
            raise

    # Its life.

    @_alone
    def close(self) -> None:
        """Frees what the sign holds; it cannot be used afterwards. A second time does nothing."""
        number, self._number = self._number, 0
        if number:
            _check(_lib.kerno_free(number))

    def __enter__(self) -> Sign:
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        self.close()

    def __del__(self) -> None:
        if getattr(self, "_number", 0) and not sys.is_finalizing():
            self.close()

    def __copy__(self) -> Sign:
        raise TypeError("a sign cannot be copied: make another one")

    def __deepcopy__(self, memo: object) -> Sign:
        return self.__copy__()

    def __reduce__(self) -> str:
        raise TypeError("a sign lives in its process: it cannot be pickled")

    def __repr__(self) -> str:
        return f"<kerno.Sign {self._text!r}>" if self._number else "<kerno.Sign, closed>"

    @property
    def _open(self) -> int:
        if not self._number:
            raise BadCall("the sign is closed")
        return self._number

    # What it is made of.

    @property
    def text(self) -> str:
        return self._text

    @text.setter
    @_alone
    def text(self, text: str) -> None:
        if not isinstance(text, str):
            raise _wrong("text", text, "text")
        _check(_lib.kerno_set_text(self._open, _bytes("text", text)))
        self._text = text

    @_alone
    def set(self, **values: object) -> None:
        """Gives options values, by the keywords of Sign; None: the option has its default again."""
        for name in values:
            if name not in _READERS:
                raise TypeError(f"set() got an unexpected keyword argument '{name}'")
        unit = values.get("unit", self._unit)
        unit_name = "in" if unit == "in" else "mm"
        read: Dict[str, List[bytes]] = {}
        for name, value in values.items():
            several = name == "fallback" and isinstance(value, (tuple, list))
            parts: Sequence[object] = value if several else [value]  # type: ignore[assignment]
            if value is not None:
                read[name] = [_bytes(name, _READERS[name](name, part, unit_name)) for part in parts]
        for name in values:
            option = name.replace("_", "-").encode()
            if name == "fallback" or name not in read:
                _check(_lib.kerno_unset(self._open, option))
            for text in read.get(name, []):
                _check(_lib.kerno_set(self._open, option, text))
        if "unit" in values:
            self._unit = unit_name

    # What became of it.

    def _told(self) -> _library.Facts:
        told = _library.Facts()
        _check(_lib.kerno_facts(self._open, ctypes.byref(told)))
        return told

    @property
    def facts(self) -> Facts:
        told = self._told()
        return Facts(told.paths, told.closed, told.lines, told.arcs, told.curves, told.length,
                     ("mm", "in")[told.unit])

    @property
    def box(self) -> Box:
        """Around all paths."""
        told = self._told()
        return Box(told.left, told.bottom, told.right, told.top)

    @property
    def size(self) -> Pair:
        """Width and height of the box."""
        box = self.box
        return box.right - box.left, box.top - box.bottom

    @property
    @_alone
    def warnings(self) -> List[str]:
        """What the user should know of the drawing, and of the file that was written last."""
        texts: List[str] = []
        for number in range(self._told().warnings):
            text = _lib.kerno_warning(self._open, number)
            if text is None:
                raise KernoError(_message())
            texts.append(text.decode("utf-8", "replace"))
        return texts

    @_alone
    def outlines(self) -> List[Outline]:
        """The paths, in the order in which they are cut; paths() and segments() have the same."""
        told = self._told()
        layers: List[str] = []
        for number in range(told.layers):
            name = _lib.kerno_layer(self._open, number)
            if name is None:
                raise KernoError(_message())
            layers.append(name.decode("utf-8", "replace"))
        found = []
        for number in range(told.paths):
            path = _library.Path()
            _check(_lib.kerno_path(self._open, number, ctypes.byref(path)))
            found.append(Outline(path.closed == 1, path.depth, layers[path.layer], path.colour))
        return found

    @_alone
    def paths(self, tolerance: float = 0, *, as_lists: bool = False) -> List[Any]:
        """Each path as the corners of straight lines, no farther than `tolerance` from it (0: that
        of the sign). A closed path ends with its first corner again.

        Arrays of numpy with a row for each corner; without numpy, or with as_lists, lists of (x, y).
        """
        if not _is_number(tolerance):
            raise _wrong("tolerance", tolerance, "a number")
        stray = _real("tolerance", tolerance)
        numpy = None if as_lists else _numpy()
        paths: List[Any] = []
        for number, outline in enumerate(self.outlines()):
            points = self._fetch(_library.Point, lambda items, room, count:
                                 _lib.kerno_points(self._open, number, stray, items, room, count))
            corners: Any
            if numpy is not None:
                corners = numpy.frombuffer(points, dtype=numpy.float64).reshape(-1, 2)
                corners = numpy.vstack((corners, corners[:1])) if outline.closed else corners.copy()
            else:
                corners = [(point.x, point.y) for point in points]
                corners += corners[:1] if outline.closed else []
            paths.append(corners)
        return paths

    @_alone
    def segments(self, *, as_lists: bool = False) -> List[Any]:
        """Each path as lines, arcs and curves: structured arrays of numpy (fields as those of
        Segment, `kind` 0 line, 1 arc, 2 cubic; points have x and y), or lists of Segment."""
        numpy = None if as_lists else _numpy()
        paths: List[Any] = []
        for number in range(self._told().paths):
            found = self._fetch(_library.Segment, lambda items, room, count:
                                _lib.kerno_segments(self._open, number, items, room, count))
            if numpy is not None:
                paths.append(numpy.frombuffer(found, dtype=numpy.dtype(_library.Segment)).copy())
            else:
                paths.append([_segment_of(one) for one in found])
        return paths

    @staticmethod
    def _fetch(kind: Any, call: Any) -> Any:
        """An array of what the library hands out, asked for again where there is more than room."""
        room, count = 256, ctypes.c_size_t(0)
        while True:
            items = (kind * room)()
            _check(call(items, room, ctypes.byref(count)))
            if count.value <= room:
                return (kind * count.value).from_buffer_copy(items)
            room = count.value

    @_alone
    def write(self, file: FileName, format: Optional[str] = None) -> None:
        """Writes the drawing, whole or not at all, in the format of the file's extension or in the
        one named."""
        name = _bytes("file", _file("file", file, ""))
        kind = b"" if format is None else _bytes("format", _text("format", format, ""))
        _check(_lib.kerno_write(self._open, name, kind))

    def to_dxf(self, file: FileName) -> None:
        self.write(file, "dxf")

    def to_svg(self, file: FileName) -> None:
        self.write(file, "svg")
