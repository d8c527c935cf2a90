#!/usr/bin/env python3
"""Cuts small fonts of every kind of outline out of installed ones: first inputs for fuzz_font and fuzz_faces, and
the fonts that the other fuzzers have in place of the machine's.

usage: make_font_seeds.py SEEDS FONTS
"""
import io
import pathlib
import string
import sys

from fontTools import subset
from fontTools.ttLib import TTFont

FOLDERS = pathlib.Path("/usr/share/fonts")
FONTS = {"truetype": "truetype/dejavu/DejaVuSans.ttf", "cff": "opentype/tlwg/TlwgMono.otf",
         "variable": "truetype/inter-vf/Inter.var.ttf", "wide": "opentype/ipafont-gothic/ipag.ttf"}
TEXT = "Affi Öe\u0301سلامक्षि縦、ー"
OWN = {"Fuzz": "truetype", "Fuzz Wide": "wide"}
CONFIGURATION = "<fontconfig><dir>{0}</dir><cachedir>{0}/cache</cachedir></fontconfig>"


def cut(place, text):
    options = subset.Options(layout_features=["*"], name_IDs=["*"], notdef_outline=True, hinting=False)
    options.drop_tables += ["FFTM"]
    font = TTFont(FOLDERS / place)
    cutter = subset.Subsetter(options)
    cutter.populate(text=text)
    cutter.subset(font)
    return font


seeds, fonts = map(pathlib.Path, sys.argv[1:])
for folder in (seeds / "font", seeds / "faces", fonts):
    folder.mkdir(parents=True, exist_ok=True)
for name, place in FONTS.items():
    if not (FOLDERS / place).exists():
        continue
    file = io.BytesIO()
    cut(place, TEXT).save(file)
    # The first byte of fuzz_font: as it is, and bold, slanted, elsewhere on its axes.
    for choice in (0, 7):
        (seeds / "font" / f"{name}-{choice}").write_bytes(bytes([choice]) + file.getvalue())
    # The first three of fuzz_faces: 32 units high; then upright in columns, bold, of another width.
    for choice in (b"\x00\x20\x64", b"\x0A\x20\xC8"):
        (seeds / "faces" / f"{name}-{choice[0]}").write_bytes(choice + file.getvalue())
for family, kind in OWN.items():
    font = cut(FONTS[kind], TEXT + string.printable)
    for record in font["name"].names:
        if record.nameID in (1, 4, 6, 16):
            record.string = family
    font.save(fonts / f"{family}.ttf")
(fonts / "fonts.conf").write_text(CONFIGURATION.format(fonts))
