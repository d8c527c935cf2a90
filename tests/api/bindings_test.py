#!/usr/bin/env python3
"""The Python package: drawings that agree with the command and with another reader of DXF, and what
is said when it is used wrongly. PYTHONPATH and KERNO_LIBRARY say where it is.

usage: bindings_test.py [--bare] KERNO

--bare is for a Python without numpy, ezdxf or fontTools: what needs them is skipped.
"""
import concurrent.futures
import copy
import ctypes
import decimal
import importlib
import inspect
import math
import os
import pathlib
import pickle
import shutil
import subprocess
import sys
import tempfile
import threading
import unittest

import kerno

BARE = sys.argv[1] == "--bare"
KERNO = sys.argv[2 if BARE else 1]
del sys.argv[1:3 if BARE else 2]


def module(name):
    try:
        return importlib.import_module(name)
    except Exception:  # an older one may fail in any way under a newer Python
        if not BARE:
            raise
        return None


numpy, ezdxf, font_tools = module("numpy"), module("ezdxf"), module("fontTools.ttLib")
DEJAVU = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"
MOMENT = {"SOURCE_DATE_EPOCH": "1700000000"}


class FolderTest(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        os.environ.update(MOMENT)

    def python(self, code, **env):
        done = subprocess.run([sys.executable, "-B", "-c", code], capture_output=True, text=True,
                              env={**os.environ, **env})
        return done.returncode, done.stdout, done.stderr

    def font_with(self, permissions, name="F.ttf"):
        font = font_tools.TTFont(DEJAVU)
        font["OS/2"].fsType = permissions
        font.save(self.folder / name)
        return self.folder / name


class Drawings(FolderTest):
    CASES = (
        ("Ag", {}, []),
        ("Öffnung\n切文字", dict(face="DejaVu Sans", style="Bold", fallback=["IPAGothic", "VL Gothic"], fit=(120, 40),
                              align="centre", layers="line"),
         ["--face", "DejaVu Sans", "--style", "Bold", "--fallback", "IPAGothic", "--fallback", "VL Gothic", "--fit",
          "120x40mm", "--align", "centre", "--layers", "line"]),
        ("Kerno", dict(face="DejaVu Serif", em=1.5, unit="in", at=(1, "10mm"), anchor="middle-centre", angle=30,
                       slant=10.5, mirror=True, curves="curves", layer="Züge", colour=numpy.int64(3) if numpy else 3, weld="off"),
         ["--face", "DejaVu Serif", "--em", "1.5in", "--unit", "in", "--at", "1in,10mm", "--anchor", "middle-centre",
          "--angle", "30", "--slant", "10.5", "--mirror", "--curves", "curves", "--layer", "Züge", "--colour", "3",
          "--weld", "off"]),
        ("令和12年", dict(face="IPAMincho", vertical=True, tate_chu_yoko=2, cap_height="10+10mm", offset=0.2,
                        tolerance=numpy.float32(0.5) if numpy else 0.5),
         ["--face", "IPAMincho", "--vertical", "--tate-chu-yoko", "2", "--cap-height", "10+10mm", "--offset", "0.2mm",
          "--tolerance", "0.5mm"]),
        ("Panel", dict(stroke_font="rowmans", fit=(None, "12mm")), ["--stroke-font", "rowmans", "--fit", "x12mm"]),
        ("Wide", dict(font_file=pathlib.Path(DEJAVU), fit=(60, 5), stretch=True, features="liga=0", letter_spacing=1),
         ["--font-file", DEJAVU, "--fit", "60x5mm", "--stretch", "--features", "liga=0", "--letter-spacing", "1mm"]),
    )

    def test_files_are_those_of_the_command(self):
        program, ours_program = os.path.realpath(KERNO), os.path.realpath("/proc/self/exe")
        for text, values, words in self.CASES:
            with kerno.Sign(text, **values) as sign:
                for kind in kerno.formats():
                    if kind == "emf":
                        continue  # names the program that wrote it, in a header whose length that changes
                    ours, theirs = self.folder / f"ours.{kind}", self.folder / f"theirs.{kind}"
                    sign.write(ours)
                    subprocess.run([KERNO, "cut", text, *words, "-o", str(theirs), "--quiet"], check=True)
                    wanted = theirs.read_bytes()
                    if kind in ("ipx", "x3d"):  # name it, too
                        for coding in ("utf-8", "utf-16-le"):
                            wanted = wanted.replace(program.encode(coding), ours_program.encode(coding))
                    self.assertTrue(ours.read_bytes() == wanted, (text, kind))
                sign.to_svg(self.folder / "a")
                self.assertIn(b"<svg", (self.folder / "a").read_bytes())

    @unittest.skipUnless(numpy and ezdxf, "numpy and ezdxf are wanted")
    def test_paths_are_those_that_another_program_reads(self):
        for text, values, words in self.CASES:
            file = self.folder / "cut.dxf"
            subprocess.run([KERNO, "cut", text, *words, "-o", str(file), "--quiet"], check=True)
            drawn = [e for e in ezdxf.readfile(file).modelspace() if e.dxftype() in ("LWPOLYLINE", "SPLINE", "LINE")]
            with kerno.Sign(text, **values) as sign:
                outlines, segments, paths = sign.outlines(), sign.segments(), sign.paths(0.001)
                lists = sign.segments(as_lists=True)
                facts, box = sign.facts, sign.box
            self.assertEqual(len(paths), facts.paths)
            self.assertEqual({o.layer for o in outlines}, {e.dxf.layer for e in drawn})
            if values.get("curves") != "curves":
                self.assertEqual(len(outlines), len(drawn), text)
                for outline, pieces, entity in zip(outlines, segments, drawn):
                    self.assertEqual((entity.closed, entity.dxf.layer), (outline.closed, outline.layer))
                    points = numpy.array(entity.get_points("xyb"))
                    count = len(pieces)
                    starts = numpy.column_stack([pieces["start"]["x"], pieces["start"]["y"], pieces["bulge"]])
                    numpy.testing.assert_allclose(points[:count], starts, atol=2e-6)
            ends = numpy.concatenate(paths)
            span = [*ends.min(axis=0), *ends.max(axis=0)]
            numpy.testing.assert_allclose(span, box, atol=0.002)
            length = sum(numpy.hypot(*numpy.diff(p, axis=0).T).sum() for p in paths)
            self.assertAlmostEqual(facts.length, length, delta=0.002 * facts.length)
            kinds = [piece.kind for pieces in lists for piece in pieces]
            self.assertEqual([facts.lines, facts.arcs, facts.curves], [kinds.count(k) for k in ("line", "arc", "cubic")])
            for outline, pieces, path in zip(outlines, lists, paths):
                chain = [piece.start for piece in pieces] + [pieces[-1].end]
                self.assertEqual(chain[1:], [piece.end for piece in pieces])
                self.assertEqual(outline.closed, numpy.allclose(chain[0], chain[-1], atol=0) and outline.closed)
                self.assertEqual(outline.closed, bool((path[0] == path[-1]).all()))
                for piece in pieces:
                    if piece.kind == "arc":
                        radius = math.dist(piece.centre, piece.start)
                        self.assertAlmostEqual(radius, math.dist(piece.centre, piece.end), delta=1e-9 * radius + 1e-9)
                        half = math.dist(piece.start, piece.end) / 2
                        self.assertAlmostEqual(half / radius, abs(math.sin(2 * math.atan(piece.bulge))), places=6)

    @unittest.skipUnless(numpy, "numpy is wanted")
    def test_lists_are_the_arrays(self):
        with kerno.Sign("Ag", face="DejaVu Sans") as sign:
            for array, listed in zip(sign.paths(), sign.paths(as_lists=True)):
                self.assertEqual(array.tolist(), [list(corner) for corner in listed])
                self.assertTrue(array.flags.owndata or array.base is not None and array.flags.writeable)
            self.assertGreater(sum(map(len, sign.paths(0.001))), sum(map(len, sign.paths(0.5))))
        status, out, err = self.python("import sys; sys.modules['numpy'] = None\nimport kerno\n"
                                       "s = kerno.Sign('I'); print(type(s.paths()[0]), type(s.segments()[0][0]))")
        self.assertEqual((0, "<class 'list'> <class 'kerno.Segment'>\n", ""), (status, out, err))

    def test_a_sign_changes(self):
        with kerno.Sign("A", face="DejaVu Sans", fallback="IPAGothic", cap_height=10) as sign:
            self.assertEqual((0.0, 10.0), (round(sign.box.left, 9), round(sign.size[1], 9)))
            sign.set(cap_height=1, unit="in", fallback=None)
            self.assertEqual(("in", 1.0), (sign.facts.unit, round(sign.size[1], 9)))
            sign.text = "A鍵"
            self.assertEqual(["no glyph in DejaVu Sans: 鍵 (U+9375)"], sign.warnings)
            sign.set(fallback=("IPAGothic",))
            self.assertEqual([], sign.warnings)
            sign.set(cap_height=None, unit=None)
            self.assertEqual(("mm", "A鍵"), (sign.facts.unit, sign.text))

    @unittest.skipUnless(font_tools, "fontTools is wanted")
    def test_fonts_without_permission_to_embed_are_told_about(self):
        for permissions, is_told in ((0, False), (2, True), (4, False), (6, False), (8, False), (0x100, False),
                                     (0x102, True), (0x200, True), (0x208, True)):
            with kerno.Sign("A", font_file=self.font_with(permissions)) as sign:
                self.assertEqual(is_told, any("does not permit embedding" in w for w in sign.warnings), permissions)
                self.assertEqual(2, len(sign.paths()))
            command = [KERNO, "cut", "A", "--font-file", str(self.folder / "F.ttf"), "-o", str(self.folder / "a.svg")]
            done = subprocess.run(command, check=True, capture_output=True, text=True)
            self.assertEqual(is_told, "warning: licence: DejaVu Sans Book does not permit" in done.stderr, permissions)
            fonts = self.folder / "fonts.conf"
            fonts.write_text(f"<fontconfig><dir>{self.folder}</dir><cachedir>{self.folder}/c</cachedir></fontconfig>")
            command = [KERNO, "convert", "A", "--face", "DejaVu Sans", "-o", str(self.folder / "b.svg")]
            done = subprocess.run(command, check=True, capture_output=True, text=True,
                                  env={**os.environ, "FONTCONFIG_FILE": str(fonts)})
            self.assertEqual(is_told, "warning: licence: DejaVu Sans does not permit" in done.stderr, permissions)
            measured = subprocess.run([KERNO, "measure", "A", "--face", "DejaVu Sans", "--ink"], check=True,
                                      capture_output=True, text=True, env={**os.environ, "FONTCONFIG_FILE": str(fonts)})
            self.assertEqual("", measured.stderr, "no outlines leave the program")


class WrongUse(FolderTest):
    def test_wrong_types_are_named(self):
        for name, value, told in (
                ("cap_height", True, "cap_height must be a length: text, or a number in mm, not bool"),
                ("cap_height", [20], "not list"), ("cap_height", 2j, "not complex"), ("face", 7, "face must be text, not int"),
                ("face", b"DejaVu Sans", "not bytes"), ("mirror", "yes", "mirror must be True or False, not str"),
                ("mirror", 1, "not int"), ("fit", (1, 2, 3), "fit must be"), ("at", 5, "at must be"),
                ("fallback", ["IPAGothic", 3], "fallback must be text, not int"), ("colour", 1.5, "not float"),
                ("font_file", 3, "font_file must be a path, not int"),
                ("variation", {"wght": None}, "not NoneType"), ("hight", 3, "unexpected keyword argument 'hight'"),
                *((("em", numpy.bool_(True), "not bool"), ("em", numpy.array("3"), "not ndarray"),
                   ("colour", numpy.array(1.5), "not ndarray"), ("angle", numpy.array([1, 2]), "not ndarray"))
                  if numpy else ())):
            with self.assertRaises(TypeError, msg=name) as caught:
                kerno.Sign("A", **{name: value})
            self.assertIn(told, str(caught.exception))
        sign = kerno.Sign("A")
        for call in (lambda: kerno.Sign(5), lambda: kerno.Sign(b"A"), lambda: kerno.Sign("A", "DejaVu Sans"),
                     lambda: sign.write(None), lambda: sign.write("a.dxf", 3), lambda: sign.paths("fine"),
                     lambda: setattr(sign, "text", None), lambda: copy.deepcopy(sign), lambda: pickle.dumps(sign)):
            self.assertRaises(TypeError, call)
        self.assertRaises(TypeError, sign.set, face="Nobody", em=[])  # all or nothing
        self.assertEqual(2, len(sign.paths()))

    def test_wrong_values_are_errors_of_their_kind(self):
        for error, base, told, make in (
                (kerno.BadCall, ValueError, "text: holds no text", lambda: kerno.Sign("").paths()),
                (kerno.BadCall, ValueError, "text holds a NUL", lambda: kerno.Sign("a\0b")),
                (kerno.BadCall, ValueError, "text: is not UTF-8", lambda: kerno.Sign("a\ud800")),
                (kerno.BadCall, ValueError, '--em: "20 spans"', lambda: kerno.Sign("A", em="20 spans").size),
                (kerno.BadCall, ValueError, "em: nan is not a number", lambda: kerno.Sign("A", em=math.nan)),
                (kerno.BadCall, ValueError, "em: ", lambda: kerno.Sign("A", em=10**400)),
                (kerno.BadCall, ValueError, "angle: ", lambda: kerno.Sign("A", angle=decimal.Decimal("sNaN"))),
                (kerno.BadCall, ValueError, "tolerance: ", lambda: kerno.Sign("A").paths(10**400)),
                (kerno.BadCall, ValueError, "--em", lambda: kerno.Sign("A", em=-3).size),
                (kerno.BadCall, ValueError, "given more than once", lambda: kerno.Sign("A", em=3, fit=4).size),
                (kerno.FaceError, LookupError, "DejaVu San", lambda: kerno.Sign("A", face="DejaVu San").size),
                (kerno.FaceError, LookupError, "U+9375", lambda: kerno.Sign("鍵", face="DejaVu Sans", strict=True).size),
                (kerno.BadCall, ValueError, "has no extension", lambda: kerno.Sign("A").write("drawing")),
                (kerno.KernoError, Exception, "nowhere", lambda: kerno.Sign("A").to_dxf("/nowhere/at/all.dxf"))):
            with self.assertRaises(error) as caught:
                make()
            self.assertIsInstance(caught.exception, base)
            self.assertIn(told, str(caught.exception))

    def test_a_closed_sign_says_so(self):
        with kerno.Sign("A") as sign:
            pass
        sign.close()
        for call in (lambda: sign.size, sign.paths, sign.segments, lambda: sign.write("a.dxf"), lambda: sign.set(em=3),
                     lambda: setattr(sign, "text", "B"), lambda: sign.warnings):
            with self.assertRaisesRegex(kerno.BadCall, "the sign is closed"):
                call()
        self.assertEqual("<kerno.Sign, closed>", repr(sign))

    def test_names_of_files_are_bytes(self):
        with kerno.Sign("A") as sign:
            name = os.fsencode(self.folder) + b"/\xff \xe6\x97.dxf"
            for form in (name, os.fsdecode(name), pathlib.Path(os.fsdecode(name))):
                sign.write(form)
                self.assertTrue(os.path.exists(name))
                os.remove(name)
            with self.assertRaises(kerno.KernoError) as caught:
                sign.write(b"/nowhere/\xff.dxf")
            self.assertIn("/nowhere/\ufffd.dxf", str(caught.exception))

    def test_without_the_library_the_import_says_where_it_looked(self):
        shutil.copytree(pathlib.Path(kerno.__file__).parent, self.folder / "kerno")
        broken = self.folder / "kerno" / "libkerno.so.1"
        env = {"PYTHONPATH": str(self.folder), "KERNO_LIBRARY": ""}
        status, _, err = self.python("import kerno", **env)
        self.assertEqual(1, status)
        self.assertIn(f"ImportError: libkerno cannot be loaded:\n  {broken}: is not there", err)
        broken.write_bytes(b"no library")
        self.assertIn(f"{broken}: ", self.python("import kerno", **env)[2])
        shutil.copy(os.environ["KERNO_LIBRARY"], broken)
        installed, library = self.folder / "lib/python3/dist-packages", self.folder / "lib64/libkerno.so.1"
        shutil.copytree(pathlib.Path(kerno.__file__).parent, installed / "kerno")
        library.parent.mkdir()
        shutil.copy(os.environ["KERNO_LIBRARY"], library)
        told = self.python("import kerno; print(kerno._lib._name)", PYTHONPATH=str(installed), KERNO_LIBRARY="")
        self.assertEqual((0, f"{library}\n", ""), told)
        self.assertEqual((0, f"{kerno.__version__}\n", ""), self.python("import kerno; print(kerno.__version__)", **env))


class Process(FolderTest):
    def test_keywords_are_the_options_of_the_library(self):
        keywords = inspect.signature(kerno.Sign).parameters
        self.assertEqual(sorted(kerno.options()), sorted(set(keywords) - {"text"}))
        listed = subprocess.run([KERNO, "faces"], check=True, capture_output=True, text=True).stdout
        self.assertEqual(listed.splitlines(), kerno.faces())
        version = subprocess.run([KERNO, "--version"], check=True, capture_output=True, text=True).stdout
        self.assertEqual(f"kerno {kerno.__version__}\n", version)

    def test_threads_and_children(self):
        def make(n):
            with kerno.Sign(f"No. {n % 7}", face="DejaVu Sans") as sign:
                sign.to_svg(self.folder / f"{n}.svg")
            return (self.folder / f"{n}.svg").read_bytes()
        with concurrent.futures.ThreadPoolExecutor(8) as pool:
            made = list(pool.map(make, range(56)))
        self.assertEqual(made[:7] * 8, made)
        with kerno.Sign("A", face="DejaVu Sans") as sign:
            def change():
                for n in range(200):
                    sign.text = ("A", "ABC%")[n % 2]
            changing = threading.Thread(target=change)
            changing.start()
            while changing.is_alive():
                self.assertIn(len(sign.paths()), (2, 11))
                self.assertIn(len(sign.segments()), (2, 11))
                sign.outlines()
            changing.join()
        child = os.fork()
        if child == 0:
            os._exit(0 if make(3) == made[3] else 1)
        self.assertEqual(0, os.waitpid(child, 0)[1])

    def test_nothing_is_left_in_the_user_s_folders(self):
        home = self.folder / "home"
        home.mkdir()
        env = {"HOME": str(home), "XDG_CONFIG_HOME": str(home / "c"), "XDG_CACHE_HOME": str(home / "k"),
               "XDG_DATA_HOME": str(home / "d"), "TMPDIR": str(home)}
        code = ("import kerno\nwith kerno.Sign('A') as s:\n  for f in kerno.formats(): s.write('%s/a.' + f)\n"
                "print(kerno.stroke_fonts()[:1] != [])" % self.folder)
        self.assertEqual((0, "True\n", ""), self.python(code, **env))
        left = [file for file in home.rglob("*") if file.is_file() and "fontconfig" not in file.parts]
        self.assertEqual([], left)

    def test_types_are_checked(self):
        if subprocess.run([sys.executable, "-m", "mypy", "--version"], capture_output=True).returncode != 0:
            self.skipTest("mypy is not here")
        package = pathlib.Path(kerno.__file__).parent
        wrong = self.folder / "wrong.py"
        wrong.write_text("import kerno\nkerno.Sign('A', em=[3])\nkerno.Sign('A').set(3)\n")
        command = [sys.executable, "-m", "mypy", "--strict", "--cache-dir", str(self.folder / "cache")]
        env = {name: value for name, value in os.environ.items() if name != "LD_PRELOAD"}
        done = subprocess.run([*command, str(package)], capture_output=True, text=True, env=env)
        self.assertEqual(0, done.returncode, done.stdout)
        done = subprocess.run([*command, str(wrong)], capture_output=True, text=True,
                              env={**env, "MYPYPATH": str(package.parent)})
        self.assertIn("Found 2 errors", done.stdout)


if __name__ == "__main__":
    unittest.main()
