#!/usr/bin/python3
"""Compares what kerno makes of the same texts on Linux and, under Wine, on Windows.

usage: check_agreement.py KERNO KERNO_EXE [--formats dxf,svg,ipx,x3d,ipl,emf,bmp] [--jobs N] [--verbose]

For every case of the list, horizontal and vertical:
 - the contours are equal in 26.6 units, with the same text metrics,
 - the files of the text formats are equal once the program's path and the times are taken out,
 - the metafile is equal in every byte: both builds write it with the same encoder,
 - the bitmaps, which two different rasterisers draw, look alike (see unlike_pixels).
"""
import argparse
import concurrent.futures
import json
import os
import pathlib
import re
import struct
import sys
import tempfile

import windows_run

# Both systems see the faces of the set-up alone.
FONTS = str(pathlib.Path(__file__).resolve().parents[1] / "tests/fonts.conf")

LATIN = "Kerno 2026: Sphinx of black quartz, judge my vow & pack 8 boxes"
ACCENTS = "ÀÉÎÕÜßçñøŒž €¥±½ “quotes” – — …"
GREEK = "Ελληνικά Кириллица"
KANA = "あいうえおアイウエオがぎぐパピプ、。「」ー"
KANJI = "日本語永東国酬愛鷹三袋龍鬱"
MIXED = "Kerno の 100 mm 文字、2026年（令和8年）！"
MARKS = "：；＝“”‘’…―→↑°¥（）【】！？〜々ぁッｱﾟＡ１g8"
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
    # Kanji alone: contours of its "0" and brackets start off the curve.
    + [("VL Gothic", height, KANJI, []) for height in (9, 13, 17, 33, 45, 74)]
    + [
        ("IPAGothic", 100, LINES, []),
        ("DejaVu Sans", 100, LATIN, ["--width", "30"]),
        ("DejaVu Sans", 100, LATIN, ["--weight", "700"]),
        ("DejaVu Sans", 40, LATIN, ["--weight", "200"]),
        # Not its "6", "8", "9", "b" and "o", where a contour starts off the curve: docs/windows.md tells what Wine does.
        ("DejaVu Sans Light", 60, "AKMSWXaceghijkmstuvwxyz 0123457", []),
        ("IPAMincho", 100, KANJI, ["--width", "70"]),
        ("DejaVu Sans", 90, "a\U0001d49cb\U0001d538", []),
        ("DejaVu Sans", 50, "missing: 日\ud83d\ude00".encode("utf-16", "surrogatepass").decode("utf-16"), []),
        ("DejaVu Sans", 120, LATIN, ["--at", "12.5,-7"]),
    ]
    # Weights that no face of the family has.
    + [(face, height, MIXED, ["--weight", weight])
       for face, height, weight in (("IPAGothic", 100, "700"), ("IPAMincho", 48, "900"),
                                    ("IPAPMincho", 250, "600"), ("IPAPGothic", 64, "550"),
                                    ("IPAGothic", 64, "551"), ("DejaVu Sans Mono", 64, "550"))]
)
VERTICAL = [
    (face, height, text, ["--vertical"])
    for face in JAPANESE_FACES
    for height, text in ((100, KANJI), (64, KANA), (64, MIXED), (33, MARKS))
] + [
    ("IPAPMincho", -50, MIXED, ["--vertical", "--pitch", "cell"]),
    ("IPAGothic", 100, MARKS, ["--vertical", "--width", "70"]),
    ("IPAMincho", 100, MIXED, ["--vertical", "--weight", "700"]),
]

# Drawings for machines: (face, text, more options), written as DXF, SVG and EMF, equal in every byte.
CUT_TEXTS = {"DejaVu Sans": [LATIN, ACCENTS, "AVATAR fi ffl", "Boing 8&@gQ"],
             "DejaVu Serif": ["Öffnungszeiten 9–17 h", GREEK, "سلام"], "DejaVu Sans Mono": [LATIN],
             "IPAMincho": [KANJI, KANA, MIXED], "IPAPGothic": [KANJI, MARKS]}
CUT_OPTIONS = [[], ["--fit", "120mm", "--slant", "12", "--angle", "30"], ["--letter-spacing", "-2mm"],
               ["--offset", "0.15", "--unit", "in"], ["--curves", "curves", "--mirror"]]
CUT_CASES = [(face, text, options) for face, texts in CUT_TEXTS.items() for text in texts
             for options in CUT_OPTIONS] + [("IPAGothic", text, ["--vertical"]) for text in (KANA, KANJI, MARKS)] + [
                 ("DejaVu Sans", "abc שָׁלוֹם (12) سلام", []), ("DejaVu Sans", "שלום abc 12,5", ["--direction", "rtl"]),
                 ("DejaVu Sans", "كتاب جديد", ["--letter-spacing", "1"]), ("DejaVu Sans", "б г", ["--language", "sr"]),
                 ("Lohit Devanagari", "नमस्ते श्री र्कि", []), ("Khmer OS", "ភាសាខ្មែរ ស្ត្រី", []),
                 ("Tlwg Mono", "น้ำ ที่นี่", []), ("IPAMincho", "葛\U000e0100、「東」", ["--language", "ja"]),
                 ("DejaVu Sans", "A日क्ष", ["--fallback", "IPAMincho", "--fallback", "Lohit Devanagari"]),
                 ("IPAMincho", MIXED, ["--vertical", "--tate-chu-yoko", "3"]),
                 ("IPAMincho", "東AV（a）12ー", ["--vertical", "--fallback", "DejaVu Sans"]),
                 ("DejaVu Sans", "a\u202ebcd\u202c e\u0301", [])]
# Fonts of strokes, by their files.
CUT_CASES += [(f"/usr/share/{font}", "Fräse §8 & @%", options)
              for font in ("hershey-fonts/gothiceng.jhf", "librecad/fonts/standard.lff")
              for options in ([], ["--slant", "12", "--angle", "21"], ["--fit", "90x70", "--stretch", "--mirror"])]

# A bitmap of a drawing larger than this is left out: it shows nothing that a smaller one does not.
MOST_PIXELS = 120_000
# The share of inked pixels that may be unlike (4.3 % are, at most), and how many of them besides:
# in a text one unit high every pixel is an edge.
UNLIKE_SHARE = 0.08
UNLIKE_PIXELS = 60

# The times in the files' comments: of the file, and of the program's build.
TIMES = re.compile(rb"\d{4}[/-]\d\d[/-]\d\d[ T]\d\d:\d\d:\d\d|[A-Z][a-z]{2} [ \d]\d \d{4} \d\d:\d\d:\d\d")


def arguments(case):
    face, height, text, more = case
    return ["--face", face, "--height", str(height), "--text", text] + more


def run(command):
    done = windows_run.run(command)
    return done.returncode, done.stdout, done.stderr.decode("utf-8", "replace")


def contours(program, case):
    code, out, err = run(program + ["contours", "--json"] + arguments(case))
    if code != 0:
        return {"error": f"exit {code}: {err.strip()}"}
    return json.loads(out)


def in_raster_units(points):
    return [(round(x * 64), round(y * 64)) for x, y in points]


def contours_difference(ours, theirs):
    """What differs between two answers; empty when nothing does."""
    if "error" in ours or "error" in theirs:
        return [f"failed: {ours.get('error')!r} and {theirs.get('error')!r}"]
    found = []
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


def fits_bitmap(answer):
    points = answer.get("points") or [(0, 0)]
    width, height = (max(p[i] for p in points) - min(p[i] for p in points) for i in (0, 1))
    return width * height <= MOST_PIXELS


def comparable(content, program):
    """A text file's lines without what may differ: the program's path and the times."""
    text = content.decode("utf-16").encode() if content.startswith(b"\xff\xfe") else content
    for name in {program, "Z:" + program.replace("/", "\\")}:
        text = text.replace(name.encode(), b"PROGRAM")
    return TIMES.sub(b"TIME", text).splitlines()


def text_difference(ours, theirs):
    if len(ours) != len(theirs):
        return f"{len(ours)} and {len(theirs)} lines"
    apart = [(i, a, b) for i, (a, b) in enumerate(zip(ours, theirs), 1) if a != b]
    return f"{len(apart)} lines, the first is {apart[0]}" if apart else None


def bitmap_rows(content):
    """The pixels of a bottom-up bitmap of 24 bits a pixel, three bytes each."""
    start, = struct.unpack_from("<I", content, 10)
    width, height, _, bits, packing = struct.unpack_from("<iiHHI", content, 18)
    if bits != 24 or packing != 0:
        raise ValueError(f"{bits} bits a pixel, compression {packing}")
    row = (width * 3 + 3) // 4 * 4
    return [[content[at:at + 3] for at in range(start + y * row, start + y * row + width * 3, 3)]
            for y in range(height)]


def unlike_pixels(ours, theirs):
    """The pixels that are inked in either picture, and how many of them are unlike: more than a
    quarter of the range apart in some colour."""
    inked = unlike = 0
    white = b"\xff\xff\xff"
    for a, b in zip(ours, theirs):
        if a == b:
            inked += len(a) - a.count(white)
            continue
        for p, q in zip(a, b):
            inked += p != white or q != white
            unlike += p != q and max(abs(u - v) for u, v in zip(p, q)) > 64
    return inked, unlike


def bitmap_difference(ours, theirs):
    ours, theirs = bitmap_rows(ours), bitmap_rows(theirs)
    sizes = [(len(rows[0]), len(rows)) for rows in (ours, theirs)]
    if sizes[0] != sizes[1]:
        return f"{sizes[0]} and {sizes[1]} pixels", 0
    inked, unlike = unlike_pixels(ours, theirs)
    share = unlike / max(inked, 1)
    return (f"{unlike} of {inked} inked pixels are unlike" if unlike > UNLIKE_SHARE * inked + UNLIKE_PIXELS else None), share


def written(program, case, formats, folder):
    """Writes all formats in one run. The files are named alike on both systems, in folders of their
    own: metafiles carry their name."""
    folder.mkdir()
    command = program + ["convert", "--quiet"] + arguments(case)
    for extension in formats:
        command += ["-o", str(folder / f"drawing.{extension}")]
    code, _, err = run(command)
    return f"exit {code}: {err.strip()}" if code != 0 else None


def check(case, programs, formats):
    """What differs in one case, a line each, and the bitmaps' share of unlike pixels."""
    ours, theirs = [contours(p, case) for p in programs]
    found = [f"contours: {d}" for d in contours_difference(ours, theirs)]
    formats = [f for f in formats if f != "bmp" or fits_bitmap(ours)]
    share = None
    with tempfile.TemporaryDirectory() as folder:
        folders = [pathlib.Path(folder) / name for name in ("linux", "windows")]
        failed = [written(p, case, formats, f) for p, f in zip(programs, folders)]
        if any(failed):
            return found + [f"convert: {failed[0]!r} and {failed[1]!r}"], share
        for extension in formats:
            a, b = [(f / f"drawing.{extension}").read_bytes() for f in folders]
            if extension == "bmp":
                difference, share = bitmap_difference(a, b)
            elif extension == "emf":
                difference = None if a == b else f"{len(a)} and {len(b)} bytes, not the same"
            else:
                difference = text_difference(*(comparable(content, p[-1])
                                               for content, p in zip((a, b), programs)))
            if difference:
                found.append(f"{extension}: {difference}")
    return found, share


def check_cut(case, programs):
    """What differs in one drawing for a machine, a line each."""
    face, text, options = case
    font = ["--stroke-font" if face.startswith("/") else "--face", face]
    with tempfile.TemporaryDirectory() as folder:
        folders = [pathlib.Path(folder) / name for name in ("linux", "windows")]
        for program, there in zip(programs, folders):
            there.mkdir()
            files = [word for name in ("dxf", "svg", "emf") for word in ("-o", str(there / f"cut.{name}"))]
            code, _, err = run(program + ["cut", "--quiet", "--text", text] + font + options + files)
            if code != 0:
                return [f"cut: exit {code}: {err.strip()}"]
        return [f"cut: {name} is not the same" for name in ("dxf", "svg", "emf")
                if (folders[0] / f"cut.{name}").read_bytes() != (folders[1] / f"cut.{name}").read_bytes()]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("kerno")
    parser.add_argument("kerno_exe")
    parser.add_argument("--formats", default="dxf,svg,ipx,x3d,ipl,emf,bmp")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--verbose", action="store_true", help="name the cases that agree, too")
    options = parser.parse_args()
    os.environ["FONTCONFIG_FILE"] = FONTS
    programs = [windows_run.command(os.path.abspath(program)) for program in (options.kerno, options.kerno_exe)]
    formats = [f for f in options.formats.split(",") if f]
    cases = CASES + VERTICAL
    run(programs[1] + ["--version"])  # makes the prefix, once
    failures = 0
    shares = []
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        results = pool.map(lambda case: check(case, programs, formats), cases)
        for case, (found, share) in zip(cases, results):
            failures += bool(found)
            shares += [share] if share is not None else []
            face, height, text, more = case
            what = f"{face} {height} {' '.join(more)} {text[:20]!r}"
            if found or options.verbose:
                print(f"{'DIFFERS' if found else 'agrees'}: {what}"
                      + (f", {100 * share:.2f} % unlike pixels" if share is not None else ""))
            for line in found:
                print(f"    {line}")
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        for case, found in zip(CUT_CASES, pool.map(lambda case: check_cut(case, programs), CUT_CASES)):
            failures += bool(found)
            for line in found:
                print(f"DIFFERS: {case}\n    {line}")
    print(f"{len(CUT_CASES)} drawings for machines in dxf, svg and emf")
    print(f"{len(CASES)} horizontal and {len(VERTICAL)} vertical cases, {failures} differ; compared: "
          f"{', '.join(['contours'] + formats)}; {len(shares)} pairs of bitmaps, "
          f"{100 * sum(shares) / max(len(shares), 1):.2f} % of the inked pixels unlike on average")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
