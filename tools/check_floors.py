#!/usr/bin/env python3
"""Checks that no room includes a room above it, and that outside libraries stay where they belong.

usage: check_floors.py SRC
"""
import pathlib
import re
import sys

FLOORS = ["platform", "base", "setup", "drawing", "parts", "outline", "export", "web", "app", "api", "ui", "cli"]
# Rooms side by side on the top floor.
APART = {"cli": ("api", "ui"), "ui": ("api",)}
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
STANDARD = re.compile(r"^[a-z_0-9]+$")  # <vector>, <cstdint>: no slash, no ".h"


# Libraries of which both systems build the same source, each behind a header of ours.
# kerno.h is C.
LIBRARIES = {"api/kerno.h": {"stddef.h", "stdint.h"},
             "drawing/polygon_union.cpp": {"polyclipping/clipper.hpp"},
             "drawing/vector.h": {"emmintrin.h"},  # the compiler's own
             "outline/bidi.cpp": {"fribidi.h"},
             "outline/font_details.cpp": {"hb.h", "hb-ot.h"},
             "outline/scripts.cpp": {"hb.h"},
             "outline/shaping_font.cpp": {"hb.h", "hb-ot.h"}}


def may_use_libraries(room, path):
    return room in ("ui", "cli") or path.parts[1:2] in (("posix",), ("win32",))


def complaints_about(src, path):
    relative = path.relative_to(src)
    room = relative.parts[0]
    floor = FLOORS.index(room)
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        match = INCLUDE.match(line)
        if not match:
            continue
        kind, target = match.groups()
        where = f"{relative}:{number}"
        first = target.split("/")[0]
        if kind == '"' and first in FLOORS:
            if FLOORS.index(first) > floor or first in APART.get(room, ()):
                yield f"{where}: {room}/ includes {target}, a room above it"
        elif kind == "<" and not STANDARD.match(target) and not may_use_libraries(room, relative) \
                and target not in LIBRARIES.get(relative.as_posix(), ()):
            yield f"{where}: <{target}> is not of the standard library"
        elif kind == '"' and "/" not in target and not may_use_libraries(room, relative):
            yield f"{where}: name the room in \"{target}\""


def main():
    src = pathlib.Path(sys.argv[1])
    files = sorted(p for p in src.rglob("*") if p.suffix in (".h", ".cpp"))
    found = [c for p in files for c in complaints_about(src, p)]
    for complaint in found:
        print(complaint)
    print(f"{len(files)} files, {len(found)} complaints")
    return 1 if found or not files else 0


if __name__ == "__main__":
    sys.exit(main())
