#!/usr/bin/env python3
"""Writes the table of the Unicode property Vertical_Orientation, asked of the installed ICU.

usage: make_vertical_orientation.py FILE          writes the table
       make_vertical_orientation.py --check FILE  tells whether the table says what ICU says

Characters without an entry are R.
"""
import ctypes
import ctypes.util
import re
import sys

VERTICAL_ORIENTATION = 0x1018  # UCHAR_VERTICAL_ORIENTATION
NAMES = ["R", "Tr", "Tu", "U"]  # UVerticalOrientation, in order
KINDS = {"Tr": "kTransformedRotated", "Tu": "kTransformedUpright", "U": "kUpright"}
LAST = 0x10FFFF


def orientations():
    name = ctypes.util.find_library("icuuc")
    if not name:
        sys.exit("make_vertical_orientation: libicuuc is not installed")
    version = name.rsplit(".", 1)[1]
    ask = getattr(ctypes.CDLL(name), f"u_getIntPropertyValue_{version}")
    ask.argtypes = [ctypes.c_int32, ctypes.c_int]
    ask.restype = ctypes.c_int32
    return [NAMES[ask(ch, VERTICAL_ORIENTATION)] for ch in range(LAST + 1)]


def ranges(values):
    start = 0
    for ch in range(1, LAST + 2):
        if ch > LAST or values[ch] != values[start]:
            if values[start] != "R":
                yield start, ch - 1, values[start]
            start = ch


def write(path, values):
    with open(path, "w", encoding="ascii", newline="\n") as out:
        out.write("// Made by tools/make_vertical_orientation.py: first, last, orientation.\n")
        for first, last, value in ranges(values):
            out.write(f"{{0x{first:04X}, 0x{last:04X}, VerticalOrientation::{KINDS[value]}}},\n")


def check(path, values):
    by_kind = {kind: name for name, kind in KINDS.items()}
    row = re.compile(r"\{0x([0-9A-F]+), 0x([0-9A-F]+), VerticalOrientation::(\w+)\},")
    table = ["R"] * (LAST + 1)
    with open(path, encoding="ascii") as lines:
        for first, last, kind in row.findall(lines.read()):
            for ch in range(int(first, 16), int(last, 16) + 1):
                table[ch] = by_kind[kind]
    wrong = [ch for ch in range(LAST + 1) if table[ch] != values[ch]]
    for ch in wrong[:20]:
        print(f"U+{ch:04X}: {table[ch]} in the table, {values[ch]} in ICU")
    print(f"{LAST + 1} characters, {len(wrong)} wrong")
    return 1 if wrong else 0


def main():
    if len(sys.argv) == 3 and sys.argv[1] == "--check":
        return check(sys.argv[2], orientations())
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    write(sys.argv[1], orientations())
    return 0


if __name__ == "__main__":
    sys.exit(main())
