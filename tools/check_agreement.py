#!/usr/bin/python3
"""Compares what kerno makes of the same texts on Linux and, under Wine, on Windows.

usage: check_agreement.py KERNO KERNO_EXE [--formats dxf,svg,ipx]

For every case of the list the contours must be equal in 26.6 units, with the same text metrics, and
the files of each format must differ only in lines that name the program, its path or the time.
Vertical ("@") texts are compared too; what differs there is listed, not counted.
"""
import argparse
import json
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
WINE = str(ROOT / "tools" / "run_windows.sh")

LATIN = "Kerno 2026: Sphinx of black quartz, judge my vow & pack 8 boxes"
ACCENTS = "ÀÉÎÕÜßçñøŒž €¥±½ “quotes” – — …"
GREEK = "Ελληνικά Кириллица"
KANA = "あいうえおアイウエオがぎぐパピプ、。「」ー"
KANJI = "日本語永東国酬愛鷹三袋龍鬱"
MIXED = "Kerno の 100 mm 文字、2026年（令和8年）！"
LINES = "one\r\ntwo\tthree\r\n\r\n四"

LATIN_FACES = ["DejaVu Sans", "DejaVu Serif", "DejaVu Sans Mono", "DejaVu Sans Condensed"]
JAPANESE_FACES = ["IPAGothic", "IPAMincho", "IPAPGothic", "IPAPMincho"]

# (face, height, text, more options)
CASES = (
    [(face, height, LATIN, []) for face in LATIN_FACES for height in (12, 100, 333)]
    + [("DejaVu Sans", height, LATIN, []) for height in (0, 1, 7, -50, 1000, 10000)]
    + [(face, 64, text, []) for face in ("DejaVu Sans", "DejaVu Serif") for text in (ACCENTS, GREEK)]
    + [(face, height, KANA, []) for face in JAPANESE_FACES for height in (20, 100)]
    + [(face, height, KANJI, []) for face in JAPANESE_FACES for height in (16, 48, 250)]
    + [(face, 75, MIXED, []) for face in JAPANESE_FACES]
    + [
        ("IPAGothic", 100, LINES, []),
        ("DejaVu Sans", 100, LATIN, ["--width", "30"]),
        ("DejaVu Sans", 100, LATIN, ["--weight", "700"]),
        ("IPAMincho", 100, KANJI, ["--width", "70"]),
        ("DejaVu Sans", 90, "a\U0001d49cb\U0001d538", []),
        ("DejaVu Sans", 50, "missing: 日\ud83d\ude00".encode("utf-16", "surrogatepass").decode("utf-16"), []),
        ("DejaVu Sans", 120, LATIN, ["--at", "12.5,-7"]),
    ]
)
VERTICAL = [
    (face, height, text, ["--vertical"])
    for face in JAPANESE_FACES
    for height, text in ((100, KANJI), (64, KANA), (64, MIXED))
]

# Lines that may differ: those that name the program, its path, or the time.
PASSING = re.compile(rb"kerno|\d{4}[/-]\d\d[/-]\d\d|\d\d:\d\d:\d\d", re.IGNORECASE)


def run(command):
    done = subprocess.run(command, capture_output=True, check=False)
    return done.returncode, done.stdout, done.stderr.decode("utf-8", "replace")


def contours(program, case):
    face, height, text, more = case
    code, out, err = run(program + ["contours", "--json", "--face", face, "--height", str(height),
                                    "--text", text] + more)
    if code != 0:
        return {"error": f"exit {code}: {err.strip()}"}
    return json.loads(out)


def in_raster_units(points):
    return [(round(x * 64), round(y * 64)) for x, y in points]


def difference(ours, theirs):
    """What differs between two answers; empty when nothing does."""
    found = []
    if "error" in ours or "error" in theirs:
        if ours.get("error") != theirs.get("error"):
            found.append(f"errors {ours.get('error')!r} and {theirs.get('error')!r}")
        return found
    if ours["textMetrics"] != theirs["textMetrics"]:
        found.append(f"metrics {ours['textMetrics']} and {theirs['textMetrics']}")
    if ours["counts"] != theirs["counts"]:
        found.append(f"{len(ours['counts'])} and {len(theirs['counts'])} contours, "
                     f"{sum(ours['counts'])} and {sum(theirs['counts'])} points")
    elif in_raster_units(ours["points"]) != in_raster_units(theirs["points"]):
        pairs = zip(in_raster_units(ours["points"]), in_raster_units(theirs["points"]))
        apart = [(i, a, b) for i, (a, b) in enumerate(pairs) if a != b]
        i, a, b = apart[0]
        most = max(max(abs(a[0] - b[0]), abs(a[1] - b[1])) for _, a, b in apart)
        found.append(f"{len(apart)} of {len(ours['points'])} points, at most {most}/64 apart, "
                     f"the first is {i}: {a} and {b} in 1/64")
    return found


def written(program, case, extension, folder, name):
    face, height, text, more = case
    path = folder / f"{name}.{extension}"
    code, _, err = run(program + ["convert", "--quiet", "--face", face, "--height", str(height),
                                  "--text", text, "-o", str(path)] + more)
    if code != 0:
        return f"exit {code}: {err.strip()}".encode()
    return path.read_bytes()


def file_difference(ours, theirs, extension):
    if extension == "ipx" and ours.startswith(b"\xff\xfe") and theirs.startswith(b"\xff\xfe"):
        ours = ours.decode("utf-16").encode()
        theirs = theirs.decode("utf-16").encode()
    ours, theirs = ours.splitlines(), theirs.splitlines()
    if len(ours) != len(theirs):
        return [f"{len(ours)} and {len(theirs)} lines"]
    apart = [(i, a, b) for i, (a, b) in enumerate(zip(ours, theirs), 1)
             if a != b and not (PASSING.search(a) and PASSING.search(b))]
    return [f"{len(apart)} lines, the first is {apart[0]}"] if apart else []


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("kerno")
    parser.add_argument("kerno_exe")
    parser.add_argument("--formats", default="dxf,svg,ipx")
    options = parser.parse_args()
    ours, theirs = [options.kerno], [WINE, options.kerno_exe]
    formats = [f for f in options.formats.split(",") if f]
    failures = 0
    for number, case in enumerate(CASES + VERTICAL):
        counted = number < len(CASES)
        found = [f"contours: {d}" for d in difference(contours(ours, case), contours(theirs, case))]
        with tempfile.TemporaryDirectory() as folder:
            folder = pathlib.Path(folder)
            for extension in formats:
                a = written(ours, case, extension, folder, "kerno-linux")
                b = written(theirs, case, extension, folder, "kerno-windows")
                found += [f"{extension}: {d}" for d in file_difference(a, b, extension)]
        face, height, text, more = case
        what = f"{face} {height} {' '.join(more)} {text[:20]!r}"
        if found:
            failures += counted
            print(f"{'DIFFERS' if counted else 'vertical differs'}: {what}")
            for line in found:
                print(f"    {line}")
    print(f"{len(CASES)} horizontal cases, {failures} differ; formats compared: "
          f"{', '.join(['contours'] + formats)}; {len(VERTICAL)} vertical cases listed above where they differ")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
