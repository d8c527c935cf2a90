#!/usr/bin/env python3
"""Shows the lines and faces that ezdxf finds in a drawing file.

usage: render_dxf.py DRAWING.dxf PICTURE.svg
"""
import sys

import ezdxf
from ezdxf.colors import aci2rgb

from line_picture import LinePicture


def colour_of(entity, layers):
    index = entity.dxf.color
    if index == 256:  # the layer's
        index = layers.get(entity.dxf.layer).dxf.color
    red, green, blue = aci2rgb(index) if 0 < index < 256 else (0, 0, 0)
    if (red, green, blue) == (255, 255, 255):
        red = green = blue = 0  # "white" is black on paper
    return f"#{red:02x}{green:02x}{blue:02x}"


def flat(point):
    return point.x, point.y


def main():
    drawing = ezdxf.readfile(sys.argv[1], encoding="cp932")
    picture = LinePicture()
    for entity in drawing.modelspace():
        colour = colour_of(entity, drawing.layers)
        if entity.dxftype() == "LINE":
            picture.line([flat(entity.dxf.start), flat(entity.dxf.end)], colour)
        elif entity.dxftype() == "3DFACE":
            corners = (entity.dxf.vtx0, entity.dxf.vtx1, entity.dxf.vtx2, entity.dxf.vtx3)
            picture.face([flat(corner) for corner in corners], colour)
    picture.write(sys.argv[2])


if __name__ == "__main__":
    main()
