"""The commands that the campaigns run, each with what it finds, promises and may name."""
import shutil

from campaign import HERE, Case

PARTS_FILE = HERE.parents[1] / "tests" / "data" / "ipx" / "every-kind.ipx"
STROKES = "/usr/share/hershey-fonts/futural.jhf"
FACE = ["--face", "DejaVu Sans"]
FORMATS = ["svg", "dxf", "emf", "bmp", "x3d", "ipx", "ipl", "plt", "pdf"]
UPLOADED = b"<svg/>" * 3000
OLD = b"what stood here before\n" * 40
PAGE = """<!DOCTYPE html>
<meta name="kerno-text" content="one">
<meta name="kerno-face" content="Face">
<meta name="kerno-height" content="72">
<p>as it was</p>
"""
INI = "[Dec]\r\nSvgOut::Precision=3\r\n; a comment\r\n[Other]\r\nKey=永\r\n"


def write(place, name, content):
    path = place.top / name
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(content if isinstance(content, bytes) else content.encode("utf-16"))


def old(*names):
    return lambda place: [write(place, "work/" + name, OLD) for name in names]


def beside(place):
    write(place, "bin/Quenkit_Setting/Quenkit.ini", INI)


def in_temp_beside(place):
    write(place, "bin/Temp/Quenkit_Setting/Quenkit.ini", INI)


def elsewhere(place):
    """The registry names the folder of the settings."""
    folder = str(place.top / "settings")
    write(place, "config/kerno/registry.reg",
          "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Software\\Quenkit]\r\n"
          "\"RegKey_Base は\"=\"Quenkit\"\r\n\r\n[HKEY_CURRENT_USER\\Software\\Quenkit\\Quenkit]\r\n"
          f"\"IniFullBase\"=\"{folder}\"\r\n\"IniFullBase は\"=\"{folder}\"\r\n")
    write(place, "settings/Quenkit.ini", INI)


def without_mark(place):
    """Settings as another program wrote them, to be converted."""
    write(place, "bin/Quenkit_Setting/Quenkit.ini", "[Dec]\nSvgOut::Precision=3\n".encode())


def pages(*, with_page):
    def prepare(place):
        for name in ("Face_72_one.svg", "Face_72_one.dxf", "Face_72_two.ipx"):
            write(place, "work/runs/" + name, b"<svg/>")
        if with_page:
            write(place, "work/runs/Face_72_one.html", PAGE.encode())
    return prepare


def to_server(debug):
    def prepare(place):
        text = f"[UpFile]\r\nserver={place.server.address}\r\nopen_http=http\r\n"
        if debug:
            text += "[Preference_202206]\r\nDebug=1\r\n"
        write(place, "config/kerno/UpFile.ini", text.encode())
        write(place, "work/a.svg", UPLOADED)
    return prepare


def all_of(*steps):
    return lambda place: [step(place) for step in steps]


def parts_file(place):
    shutil.copy(PARTS_FILE, place.work / "parts.ipx")


def text_file(place):
    write(place, "work/text.txt", "Ab 永\r\n".encode())


def converts():
    for extension in FORMATS:
        name = "a." + extension
        yield Case(f"convert over {extension}", ["convert", "--text", "Ab", *FACE, "-o", name],
                   old(name), ("work/" + name,), FACE[1:])
    for extension in ("svg", "bmp"):
        name = "a." + extension
        yield Case(f"convert to new {extension}", ["convert", "--text", "Ab", *FACE, "-o", name],
                   None, ("work/" + name,), FACE[1:])
    for extension in ("svg", "emf"):
        yield Case(f"convert {extension} to standard output",
                   ["convert", "--text", "Ab", *FACE, "--format", extension, "-o", "-"],
                   names=(*FACE[1:], "tmp", "output"))
    yield Case("convert to several", ["convert", "--text", "Ab", *FACE, "-o", "a.svg", "-o", "b.dxf",
                                      "-o", "c.ipl"],
               old("a.svg", "c.ipl"), ("work/a.svg", "work/b.dxf", "work/c.ipl"), FACE[1:])
    yield Case("convert with settings", ["convert", "--text", "Ab", *FACE, "-o", "a.svg"],
               all_of(beside, old("a.svg")), ("work/a.svg",), (*FACE[1:], "Quenkit.ini"))
    yield Case("convert with settings elsewhere", ["convert", "--text", "Ab", *FACE, "-o", "a.svg"],
               elsewhere, ("work/a.svg",), (*FACE[1:], "Quenkit.ini", "registry.reg"))
    yield Case("convert long", ["convert", "--text", "Abg永" * 60, *FACE, "--quiet", "--height",
                                "700", "-o", "a.svg"], old("a.svg"), ("work/a.svg",), FACE[1:])
    yield Case("convert a parts file", ["convert", "--ipx", "parts.ipx", "-o", "a.svg", "-o", "b.emf"],
               all_of(parts_file, old("a.svg")), ("work/a.svg", "work/b.emf"), ("parts.ipx",))
    yield Case("convert a text file", ["convert", "--text-file", "text.txt", *FACE, "-o", "a.dxf"],
               all_of(text_file, old("a.dxf")), ("work/a.dxf",), (*FACE[1:], "text.txt"))


def cuts():
    for extension in FORMATS:
        name = "a." + extension
        yield Case(f"cut over {extension}", ["cut", "--text", "Ab", *FACE, "-o", name],
                   old(name), ("work/" + name,), FACE[1:])
    yield Case("cut to new dxf", ["cut", "--text", "Ab", *FACE, "-o", "a.dxf"], None,
               ("work/a.dxf",), FACE[1:])
    yield Case("cut to standard output", ["cut", "--text", "Ab", *FACE, "--format", "dxf", "-o", "-"],
               names=(*FACE[1:], "tmp", "output"))
    yield Case("cut welded, with a report",
               ["cut", "--text", "Abg 永", *FACE, "--weld", "text", "--offset", "0.2mm", "--json",
                "-o", "a.dxf", "-o", "b.svg"],
               old("a.dxf", "b.svg"), ("work/a.dxf", "work/b.svg"), FACE[1:])
    yield Case("cut strokes", ["cut", "--text", "Ab", "--stroke-font", STROKES, "-o", "a.svg"],
               old("a.svg"), ("work/a.svg",), ("futural.jhf",))
    yield Case("cut a font file", ["cut", "--text", "Ab", "--font-file",
                                   "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf", "-o", "a.dxf"],
               old("a.dxf"), ("work/a.dxf",), ("DejaVuSans.ttf",))


    yield Case("cut layers to a plot and a page",
               ["cut", "--text", "Ab", *FACE, "--layers", "glyph", "--json", "-o", "a.plt", "-o", "b.pdf"],
               old("a.plt"), ("work/a.plt", "work/b.pdf"), FACE[1:])
    yield Case("cut columns with a fallback",
               ["cut", "--text", "A永12", *FACE, "--fallback", "IPAGothic", "--vertical", "--tate-chu-yoko",
                "2", "-o", "a.svg"],
               old("a.svg"), ("work/a.svg",), (*FACE[1:], "IPAGothic", "ipag"))


def rows_of(*rows):
    return lambda place: write(place, "work/list.csv", b"\n".join([b"name,text", *rows, b""]))


def series():
    rows = [b"one,Ab", b"two,g", b"three,x1"]
    words = ["cut", "--data", "list.csv", "--text", "{text}", *FACE, "--jobs", "1"]
    files = {row.split(b",")[0]: f"work/{row.split(b',')[0].decode()}.dxf" for row in rows}
    yield Case("cut a table", [*words, "--replace", "-o", "{name}.dxf"],
               all_of(rows_of(*rows), old("two.dxf")), tuple(files.values()),
               (*FACE[1:], "list.csv", "row "))
    yield Case("cut a table, with failures", [*words, "--replace", "--failed", "bad.csv", "-o", "{name}.dxf"],
               all_of(rows_of(*rows), old("bad.csv")), (*files.values(), "work/bad.csv"),
               (*FACE[1:], "list.csv", "row "), failed=("work/bad.csv", b"name,text", files))
    two = rows_of(*rows[:2])
    yield Case("cut on sheets", ["cut", "--data", "list.csv", "--text", "{text}", *FACE, "--jobs", "1",
                                 "--sheet", "60x40mm", "--replace", "-o", "s-{sheet}.svg"],
               all_of(two, old("s-1.svg")), ("work/s-1.svg", "work/s-2.svg"),
               (*FACE[1:], "list.csv", "row ", "sheet"),
               fewer=tuple(all_of(rows_of(row), old("s-1.svg")) for row in rows[:2]))


    yield Case("cut the rest of a table", [*words[:-1], "2", "--resume", "-o", "{name}.dxf"],
               all_of(rows_of(*rows), old("two.dxf")), tuple(files.values()),
               (*FACE[1:], "list.csv", "row "))
    yield Case("cut a table of standard input",
               ["cut", "--data", "-", "--text", "{text}", *FACE, "--jobs", "2", "--replace", "-o",
                "{name}.svg"],
               None, ("work/one.svg", "work/two.svg"), (*FACE[1:], "standard input", "row ", ".list"),
               input=b"name,text\none,Ab\ntwo,g\n")
    yield Case("cut lines to plots and pages",
               ["cut", "--lines", "list.txt", *FACE, "--jobs", "1", "--json", "--replace", "-o",
                "{line}.plt", "-o", "{line}.pdf"],
               lambda place: write(place, "work/list.txt", b"Ab\ng\n"),
               tuple(f"work/{name}.{kind}" for name in ("Ab", "g") for kind in ("plt", "pdf")),
               (*FACE[1:], "list.txt", "row "))
    yield Case("cut a count into folders",
               ["cut", "--count", "3", "--text", "No. {n}", *FACE, "--jobs", "2", "--replace", "-o",
                "new/{n:02}.svg"],
               None, tuple(f"work/new/0{n}.svg" for n in (1, 2, 3)), (*FACE[1:], "row ", "new"))
    for more in (["--frame", "50x30mm", "--corner", "2mm", "--marks", "--replace", "-o", "s.pdf"],
                 ["--pack", "--copies", "2", "--resume", "-o", "s.dxf"]):
        name = more[-1]
        yield Case(f"cut on one {name[2:]} sheet, with failures",
                   ["cut", "--data", "list.csv", "--text", "{text}", *FACE, "--jobs", "1",
                    "--sheet", "120x60mm", "--numbers", "--failed", "bad.csv", *more],
                   all_of(two, old("bad.csv")), ("work/" + name, "work/bad.csv"),
                   (*FACE[1:], "list.csv", "row ", "sheet"),
                   fewer=tuple(all_of(numbered_rows(n, rows[n - 1]), old("bad.csv")) for n in (2, 1)),
                   failed=("work/bad.csv", b"name,text,row",
                           {row.split(b",")[0]: "work/" + name for row in rows[:2]}))


def numbered_rows(number, row):
    """One row, with the number that it has in its table."""
    return lambda place: write(place, "work/list.csv", b"name,text,row\n%s,%d\n" % (row, number))


def settings():
    places = {"none yet": None, "beside": beside, "in Temp": in_temp_beside,
              "elsewhere": elsewhere, "without a mark": without_mark}
    files = {"beside": "bin/Quenkit_Setting/Quenkit.ini", "none yet":
             "bin/Temp/Quenkit_Setting/Quenkit.ini", "in Temp":
             "bin/Temp/Quenkit_Setting/Quenkit.ini", "elsewhere": "settings/Quenkit.ini",
             "without a mark": "bin/Quenkit_Setting/Quenkit.ini"}
    names = ("Quenkit.ini", "registry.reg", "Quenkit_Setting", "settings")
    for where, prepare in places.items():
        target = (files[where],)
        yield Case(f"settings set, {where}", ["settings", "set", "Dec", "SvgOut::Precision", "7"],
                   prepare, target, names)
        yield Case(f"settings get, {where}", ["settings", "get", "Dec", "SvgOut::Precision"],
                   prepare, (), names)
        if where in ("beside", "elsewhere"):
            yield Case(f"settings unset, {where}", ["settings", "unset", "Dec", "SvgOut::Precision"],
                       prepare, target, names)
            yield Case(f"settings list, {where}", ["settings", "list"], prepare, (), names)
        if where != "without a mark":
            yield Case(f"settings path, {where}", ["settings", "path"], prepare, (), names)


def others():
    one, two = "work/runs/Face_72_one.html", "work/runs/Face_72_two.html"
    for with_page in (True, False):
        yield Case("page over a page" if with_page else "page", ["page", "runs"],
                   pages(with_page=with_page), (one, two), ("runs",))
    for debug in (False, True):
        yield Case("upload with a copy" if debug else "upload", ["upload", "a.svg"],
                   to_server(debug), (), ("a.svg", "UpFile.ini", "127.0.0.1"), sends=UPLOADED)
    yield Case("faces", ["faces"], names=("font", "faces"))
    yield Case("faces as JSON", ["faces", "--json"], names=("font", "faces"))
    yield Case("contours", ["contours", "--text", "Ab", *FACE, "--json"], names=(*FACE[1:], "font"))
    yield Case("measure", ["measure", "--text", "Ab", *FACE, "--ink"], names=(*FACE[1:], "font"))


    yield Case("fonts of strokes", ["faces", "--strokes"], names=("font", "hershey", "jhf"))


def library():
    """By its user, kerno_signs."""
    face = "face=" + FACE[1]
    names = ("a." + extension for extension in FORMATS)
    several = tuple(names)
    yield Case("library over dxf", ["Ab", face, "a.dxf"], old("a.dxf"), ("work/a.dxf",), FACE[1:],
               library=True)
    yield Case("library to every format", ["Ag", face, "layers=glyph", *several], old(*several[::2]),
               tuple("work/" + name for name in several), FACE[1:], library=True)
    yield Case("library with a font file",
               ["A永", "font-file=/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf", "fallback=IPAGothic",
                "fit=40x20mm", "a.svg"],
               None, ("work/a.svg",), ("DejaVuSans.ttf", "IPAGothic", "ipag"), library=True)
    yield Case("library with strokes", ["Ab", "stroke-font=" + STROKES, "a.plt"], None, ("work/a.plt",),
               ("futural.jhf",), library=True)
    yield Case("library, its lists", [], names=("font", "faces"), library=True)


def all_cases():
    return [*converts(), *cuts(), *series(), *settings(), *others(), *library()]
