"""Reads drawing files with ezdxf and prints what it found, one fact a line.

usage: read_dxf.py FILE...
       read_dxf.py --palette
"""
import collections
import sys

import ezdxf
from ezdxf.colors import DXF_DEFAULT_COLORS, int2rgb


def facts(path):
    drawing = ezdxf.readfile(path, encoding="cp932")
    audit = drawing.audit()
    yield f"errors {len(audit.errors)} fixes {len(audit.fixes)}"
    space = drawing.modelspace()
    kinds = collections.Counter(e.dxftype() for e in space)
    yield "entities " + " ".join(f"{kind}:{count}" for kind, count in sorted(kinds.items()))
    listed = {l.dxf.name: l.color for l in drawing.layers if l.dxf.name not in ("0", "Defpoints")}
    yield "layers " + " ".join(f"{name}:{color}" for name, color in listed.items())
    used = collections.Counter((e.dxf.layer, e.dxf.color) for e in space)
    yield "used " + " ".join(f"{l}:{c}x{n}" for (l, c), n in sorted(used.items()))
    yield "extents " + " ".join(
        f"{v:g}" for name in ("$EXTMIN", "$EXTMAX") for v in tuple(drawing.header[name])[:2])
    for text in space.query("TEXT"):
        yield (f"text {text.dxf.text} style {text.dxf.style} height {text.dxf.height:g} "
               f"rotation {text.dxf.rotation:g} width {text.dxf.width:g} oblique {text.dxf.oblique:g}")
    for arc in space.query("ARC"):
        yield f"arc {arc.dxf.radius:g} {arc.dxf.start_angle:g} {arc.dxf.end_angle:g}"


def main():
    if sys.argv[1] == "--palette":
        for index in range(10, 250):
            print(index, *int2rgb(DXF_DEFAULT_COLORS[index]))
        return
    for path in sys.argv[1:]:
        for fact in facts(path):
            print(fact)


main()
