#!/usr/bin/env python3
"""kerno.dll as it is packed: the functions that it shows, and programs that are built with its import
library or load it by name.

usage: windows_library_test.py KERNO_EXE KERNO_DLL IMPORT_LIBRARY
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools"))
import windows_run  # noqa: E402

KERNO, LIBRARY, IMPORTS = sys.argv[1:4]
MINGW = "x86_64-w64-mingw32-"
HEADER = (ROOT / "src/api/kerno.h").read_text()
LISTED = re.findall(r"^    (\w+);", (ROOT / "src/api/kerno.map").read_text(), re.M)


def build(*words):
    subprocess.run([str(word) for word in words], check=True)


def windows_name(path):
    return "Z:" + str(path).replace("/", "\\")


def run(*words):
    done = windows_run.run(windows_run.command(str(words[0])) + [str(word) for word in words[1:]])
    return done.returncode, done.stdout.decode(), done.stderr.decode("utf-8", "replace")


class WindowsLibraryTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="kerno "))
        cls.addClassCleanup(shutil.rmtree, cls.folder, ignore_errors=True)
        os.environ["SOURCE_DATE_EPOCH"] = "1700000000"
        for file in (LIBRARY, IMPORTS, ROOT / "src/api/kerno.h"):
            shutil.copy(file, cls.folder)
        for kind in ("dxf", "svg"):
            status, _, err = run(KERNO, "cut", "Open", "--face", "DejaVu Sans", "--cap-height", "40mm", "-o",
                                 windows_name(cls.folder / f"wanted.{kind}"))
            assert status == 0, err

    def program(self, source, *words):
        program = self.folder / (source.stem + ".exe")
        build(MINGW + "gcc", "-std=gnu11", "-Wall", "-Wextra", "-Werror", "-I", self.folder, source, *words, "-o", program)
        return program

    def wanted(self, kind):
        return (self.folder / f"wanted.{kind}").read_bytes()

    def test_the_functions_that_are_shown_are_those_of_the_list(self):
        listing = subprocess.run([MINGW + "objdump", "-p", LIBRARY], check=True, capture_output=True, text=True).stdout
        shown = re.findall(r"^\t\[ *\d+\] (?:\+base\[ *\d+\] +\w+ )?(\w+)$",
                           listing.split("[Ordinal/Name Pointer] Table")[1], re.M)
        declared = re.findall(r"^KERNO_API .*?(\w+)\(", HEADER, re.M)
        self.assertEqual([LISTED, LISTED], [sorted(shown), sorted(declared)])
        symbols = subprocess.run([MINGW + "nm", IMPORTS], check=True, capture_output=True, text=True).stdout
        self.assertEqual(LISTED, sorted(re.findall(r" T (\w+)$", symbols, re.M)))
        flags = int(re.search(r"^DllCharacteristics\s+([0-9a-f]+)", listing, re.M).group(1), 16)
        self.assertEqual(0x160, flags & 0x160, "placed anywhere, with random bits, data never run")

    def test_programs_that_link_it(self):
        run_abi = run(self.program(ROOT / "tests/api/abi.c", "-L", self.folder, "-lkerno"))
        self.assertEqual((0, ""), (run_abi[0], run_abi[2]))
        made = self.folder / "made.dxf"
        program = self.program(ROOT / "examples/c/sign.c", "-L", self.folder, "-lkerno")
        status, out, err = run(program, windows_name(made))
        self.assertEqual((0, ""), (status, err))
        self.assertRegex(out, r"^\d+ paths, \d+\.\d{3} x \d+\.\d{3} mm")
        self.assertEqual(self.wanted("dxf"), made.read_bytes())

    def test_a_program_that_loads_it_and_lets_go(self):
        program = self.program(ROOT / "tests/api/loaded.c", "-municode")
        status, out, err = run(program, windows_name(self.folder / "kerno.dll"), windows_name(self.folder))
        self.assertEqual((0, ""), (status, err))
        self.assertGreater(float(out), 1000)
        for i, kind in enumerate(("dxf", "svg")):
            self.assertEqual(self.wanted(kind), (self.folder / f"切 {i}.{kind}").read_bytes())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
