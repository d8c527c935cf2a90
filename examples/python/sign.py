#!/usr/bin/env python3
"""A text as a drawing, and its longest path. usage: sign.py [FILE.dxf]"""
import sys

import kerno

with kerno.Sign("Open", face="DejaVu Sans", cap_height=40) as sign:
    print("%.3f x %.3f mm" % sign.size, *sign.warnings)
    longest = max(sign.paths(tolerance=0.05), key=len)
    print(len(longest), "corners from", tuple(longest[0]))
    sign.to_dxf(sys.argv[1] if len(sys.argv) > 1 else "open.dxf")
