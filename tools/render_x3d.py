#!/usr/bin/env python3
"""Shows the line sets and face sets of an X3D scene, seen from above.

usage: render_x3d.py SCENE.x3d PICTURE.svg
"""
import sys
import xml.etree.ElementTree as ElementTree

from line_picture import LinePicture


def numbers(text):
    return [float(word) for word in (text or "").replace(",", " ").split()]


def chains(text):
    chain = []
    for index in (text or "").replace(",", " ").split():
        if index == "-1":
            yield chain
            chain = []
        else:
            chain.append(int(index))
    if chain:
        yield chain


def colour_of(shape, filled):
    for material in shape.iter("Material"):
        value = material.get("emissiveColor") if not filled else material.get("diffuseColor")
        value = value or material.get("diffuseColor") or material.get("emissiveColor")
        if value:
            return "#" + "".join(f"{round(255 * v):02x}" for v in numbers(value)[:3])
    return "#000000"


def main():
    picture = LinePicture()
    for shape in ElementTree.parse(sys.argv[1]).getroot().iter("Shape"):
        for kind in ("IndexedLineSet", "IndexedFaceSet"):
            for geometry in shape.iter(kind):
                flat = [v for c in geometry.iter("Coordinate") for v in numbers(c.get("point"))]
                points = [(flat[i], flat[i + 1]) for i in range(0, len(flat) - 2, 3)]
                filled = kind == "IndexedFaceSet"
                for chain in chains(geometry.get("coordIndex")):
                    add = picture.face if filled else picture.line
                    add([points[i] for i in chain], colour_of(shape, filled))
    picture.write(sys.argv[2])


if __name__ == "__main__":
    main()
