#!/usr/bin/env python3
"""Cuts small fonts of every kind of outline out of installed ones, as first inputs for fuzz_font.

usage: make_font_seeds.py FOLDER
"""
import io
import pathlib
import sys

from fontTools import subset
from fontTools.ttLib import TTFont

FOLDERS = pathlib.Path("/usr/share/fonts")
FONTS = {"truetype": "truetype/dejavu/DejaVuSans.ttf", "cff": "opentype/tlwg/TlwgMono.otf",
         "variable": "truetype/inter-vf/Inter.var.ttf", "wide": "opentype/ipafont-gothic/ipag.ttf"}
TEXT = "Affi Öe\u0301سلامक्षि縦、ー"

folder = pathlib.Path(sys.argv[1])
folder.mkdir(parents=True, exist_ok=True)
for name, place in FONTS.items():
    if not (FOLDERS / place).exists():
        continue
    options = subset.Options(layout_features=["*"], name_IDs=["*"], notdef_outline=True, hinting=False)
    options.drop_tables += ["FFTM"]
    font = TTFont(FOLDERS / place)
    cutter = subset.Subsetter(options)
    cutter.populate(text=TEXT)
    cutter.subset(font)
    file = io.BytesIO()
    font.save(file)
    # The first byte: as it is, and bold, slanted, elsewhere on its axes.
    for choice in (0, 7):
        (folder / f"{name}-{choice}").write_bytes(bytes([choice]) + file.getvalue())
