"""A picture of coloured lines and faces as an SVG, for the scripts that show what other readers see."""


class LinePicture:
    """Collects lines and faces with y up; writes them upright with a margin."""

    MARGIN = 4

    def __init__(self):
        self.items = []  # (points, colour, filled)

    def line(self, points, colour):
        self.items.append((list(points), colour, False))

    def face(self, points, colour):
        self.items.append((list(points), colour, True))

    def write(self, path):
        every = [p for points, _, _ in self.items for p in points] or [(0, 0)]
        left, right = min(x for x, _ in every), max(x for x, _ in every)
        low, high = min(y for _, y in every), max(y for _, y in every)
        margin = self.MARGIN
        width, height = right - left + 2 * margin, high - low + 2 * margin
        with open(path, "w", encoding="utf-8") as out:
            out.write(f'<svg xmlns="http://www.w3.org/2000/svg" width="{width:g}" height="{height:g}">\n')
            for points, colour, filled in self.items:
                at = " ".join(f"{x - left + margin:g},{high - y + margin:g}" for x, y in points)
                paint = f'fill="{colour}"' if filled else f'fill="none" stroke="{colour}"'
                shape = "polygon" if filled else "polyline"
                out.write(f'<{shape} points="{at}" {paint}/>\n')
            out.write("</svg>\n")
