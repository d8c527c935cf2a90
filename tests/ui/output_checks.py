"""Opens the window's outputs with independent readers."""
import pathlib
import subprocess
import sys

import ezdxf

HERE = pathlib.Path(__file__).parent


def check_dxf(path):
    drawing = ezdxf.readfile(path, encoding="cp932")
    lines = drawing.modelspace().query("LINE")
    assert len(lines) > 50 and not drawing.audit().errors, path
    # "8" and "O" have holes: more closed loops than letters.
    starts = {tuple(round(c, 6) for c in line.dxf.start) for line in lines}
    ends = {tuple(round(c, 6) for c in line.dxf.end) for line in lines}
    assert starts == ends, "every contour is closed"


def check_ipx(path):
    text = path.read_bytes().decode("cp932")
    assert "Kerno" in text and text.count("\r\n") > 50, path


def check_rtf(path, expected):
    read = subprocess.run([sys.executable, HERE.parent / "app" / "read_rtf.py", path], check=True,
                          capture_output=True).stdout.decode("utf-8")
    assert read == expected, read


def check_emf(path):
    data = path.read_bytes()
    assert data[:4] == b"\x01\0\0\0" and data[40:44] == b" EMF", path
    assert int.from_bytes(data[48:52], "little") == len(data), "the header knows the length"


def check_svg(path):
    subprocess.run(["xmllint", "--noout", path], check=True)


def magick(*arguments):
    """What ImageMagick prints."""
    return subprocess.run(["convert", *map(str, arguments)], check=True, capture_output=True,
                          text=True).stdout.strip()


def ink(picture, region=None):
    """The share of a picture's pixels (of a region WxH+X+Y of it) that are not about white."""
    crop = ["-crop", region, "+repage"] if region else []
    return float(magick(picture, *crop, "-alpha", "off", "-colorspace", "gray", "-negate",
                        "-threshold", "10%", "-format", "%[fx:mean]", "info:"))


def check_bmp(path):
    assert path.read_bytes()[:2] == b"BM", path
    share = ink(path)
    assert 0.01 < share < 0.9, f"{path}: {share:.3f} of it is ink"
