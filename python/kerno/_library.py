"""libkerno as ctypes sees it: where it is found, its structures, its functions.

The structures and numbers are those of kerno.h.
"""
from __future__ import annotations

import ctypes
import os
import pathlib
from typing import List, Sequence, Tuple

OK, FAILED, BAD_CALL, NO_FACE, NO_MEMORY = range(5)


class Point(ctypes.Structure):
    _fields_ = [("x", ctypes.c_double), ("y", ctypes.c_double)]


class Facts(ctypes.Structure):
    _fields_ = [*((name, ctypes.c_uint64) for name in
                  ("paths", "closed", "lines", "arcs", "curves", "layers", "warnings")),
                *((name, ctypes.c_double) for name in ("length", "left", "bottom", "right", "top")),
                ("unit", ctypes.c_int32), ("reserved", ctypes.c_int32)]


class Path(ctypes.Structure):
    _fields_ = [("segments", ctypes.c_uint64),
                *((name, ctypes.c_int32) for name in ("closed", "depth", "layer", "colour"))]


class Segment(ctypes.Structure):
    _fields_ = [("kind", ctypes.c_int32), ("reserved", ctypes.c_int32),
                *((name, Point) for name in ("start", "end", "control1", "control2", "centre")),
                ("bulge", ctypes.c_double)]


_sign, _text, _size = ctypes.c_uint64, ctypes.c_char_p, ctypes.c_size_t
_FUNCTIONS: Sequence[Tuple[str, object, Sequence[object]]] = (
    ("kerno_version", _text, ()),
    ("kerno_message", _text, ()),
    ("kerno_new", _sign, ()),
    ("kerno_free", ctypes.c_int, (_sign,)),
    ("kerno_set_text", ctypes.c_int, (_sign, _text)),
    ("kerno_set", ctypes.c_int, (_sign, _text, _text)),
    ("kerno_unset", ctypes.c_int, (_sign, _text)),
    ("kerno_make", ctypes.c_int, (_sign,)),
    ("kerno_facts", ctypes.c_int, (_sign, ctypes.POINTER(Facts))),
    ("kerno_path", ctypes.c_int, (_sign, ctypes.c_uint64, ctypes.POINTER(Path))),
    ("kerno_segments", ctypes.c_int,
     (_sign, ctypes.c_uint64, ctypes.c_void_p, _size, ctypes.POINTER(_size))),
    ("kerno_points", ctypes.c_int,
     (_sign, ctypes.c_uint64, ctypes.c_double, ctypes.c_void_p, _size, ctypes.POINTER(_size))),
    ("kerno_layer", _text, (_sign, ctypes.c_uint64)),
    ("kerno_warning", _text, (_sign, ctypes.c_uint64)),
    ("kerno_write", ctypes.c_int, (_sign, _text, _text)),
    ("kerno_faces", _text, ()),
    ("kerno_stroke_fonts", _text, ()),
    ("kerno_formats", _text, ()),
    ("kerno_options", _text, ()),
)


def _candidates() -> List[str]:
    """Where the library may be, the first choice first."""
    given = os.environ.get("KERNO_LIBRARY")
    if given:
        return [given]
    name = "libkerno.so.1"
    here = pathlib.Path(__file__).resolve().parent
    beside = [str(here / name), str(here.parent / name)]
    # Installed in PREFIX/lib/python3/dist-packages, the library is in a lib folder of PREFIX.
    for above in list(here.parents)[:4]:
        if above.name in ("lib", "lib64"):
            for folder in (above, above.parent / "lib", above.parent / "lib64"):
                beside += [str(folder / name), *map(str, sorted(folder.glob(f"*/{name}")))]
    return [*dict.fromkeys(beside), name]


def load() -> ctypes.CDLL:
    """The library with its functions' types; ImportError, with all places and reasons, without it."""
    tried = []
    for place in _candidates():
        if os.sep in place and not os.path.exists(place):
            tried.append(f"{place}: is not there")
            continue
        try:
            library = ctypes.CDLL(place)
            for name, result, arguments in _FUNCTIONS:
                function = getattr(library, name)
                function.restype = result
                function.argtypes = list(arguments)
        except (OSError, AttributeError) as error:
            tried.append(str(error) if place in str(error) else f"{place}: {error}")
        else:
            return library
    raise ImportError("libkerno cannot be loaded:\n  " + "\n  ".join(tried) +
                      "\nKERNO_LIBRARY may name its file.")
