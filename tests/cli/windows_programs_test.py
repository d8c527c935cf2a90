#!/usr/bin/env python3
"""What only the Windows programs have: names and paths of that system, settings beside the program, and
resources, which other readers see, too.

usage: windows_programs_test.py KERNO_EXE KERNO_DESKTOP_EXE
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import unittest

import programs

KERNO = DESKTOP = ""


def resource(program, kind):
    return subprocess.run(["wrestool", "-x", "--raw", "-t", str(kind), program], check=True,
                          capture_output=True).stdout


class WindowsProgramsTest(programs.FolderTest):
    def setUp(self):
        super().setUp()
        self.program = str(self.folder / "kerno.exe")
        shutil.copy(KERNO, self.program)

    def run_kerno(self, *arguments, **more):
        return programs.run([*programs.command(self.program), *arguments], **{"cwd": self.folder, **more})

    def test_without_a_command_the_window_is_started(self):
        # The system has a display that no variable names; here the window's program is not there.
        environment = {k: v for k, v in os.environ.items()
                       if k not in ("DISPLAY", "WAYLAND_DISPLAY")}
        status, _, error = self.run_kerno(env=environment)
        self.assertEqual(1, status)
        self.assertIn("kerno-desktop: cannot be started", error)

    def there(self, name):
        return programs.windows_name(self.folder / name)

    def test_names_of_a_series(self):
        words = ["cut", "--data", "list.csv", "--text", "A", "-o", "t\\u\\{name}.dxf", "-o", "t/{row}.svg", "--quiet"]
        for rows, status, wanted in (
                ("Ann\r\nann", 1, 'kerno: t\\u\\Ann.dxf: rows 1 and 2 would both write it ("t\\u\\ann.dxf" is the same '
                                  'file there); nothing is written\n'),
                ("Ann\r\nBé ..\\x\r\ncon\r\na/b:c", 0, "")):
            (self.folder / "list.csv").write_bytes(f"name\r\n{rows}\r\n".encode())
            found, _, err = self.run_kerno(*words)
            self.assertEqual((status, wanted), (found, err))
            self.assertEqual(status == 0, (self.folder / "t").exists())
        self.assertEqual(["Ann.dxf", "Bé .._x.dxf", "_con.dxf", "a_b_c.dxf"], sorted(os.listdir(self.folder / "t/u")))

    def test_paths_of_every_form(self):
        deep = "/".join(["d" * 100] * 4)
        (self.folder / deep).mkdir(parents=True)
        good = {  # the argument, and the file that is written
            self.there(f"{deep}/a.dxf"): f"{deep}/a.dxf",
            "\\\\?\\" + self.there("c.dxf"): "c.dxf",
            self.there("𠮷ñ☃.dxf"): "𠮷ñ☃.dxf",
        }
        for argument, name in good.items():
            status, _, err = self.run_kerno("convert", "A", "--quiet", "-o", argument)
            self.assertEqual((0, ""), (status, err), argument)
            self.assertTrue((self.folder / name).read_bytes().endswith(b"EOF\r\n"), argument)
        bad = {
            r"\\nowhere\share\a.dxf": "its folder does not exist",
            r"Q:\a.dxf": "there is no such file or folder",
            "a<b.dxf": "the name holds characters that no file can have",
            "CON.dxf": "the name stands for a device of the system",
            self.there("nul.svg"): "the name stands for a device of the system",
            self.there("n" * 300 + ".dxf"): "",
        }
        before = sorted(self.folder.rglob("*"))
        for argument, message in bad.items():
            status, out, err = self.run_kerno("convert", "A", "-o", argument)
            self.assertEqual((1, ""), (status, out), argument)
            self.assertTrue(err.startswith(f"kerno: {argument}: {message}"), err)
        self.assertEqual(before, sorted(self.folder.rglob("*")))

    def test_settings_beside_the_program(self):
        settings = self.folder / "Quenkit_Setting"
        settings.mkdir()
        status, out, err = self.run_kerno("settings", "path")
        self.assertEqual((0, ""), (status, err))
        self.assertEqual(self.there("Quenkit_Setting/Quenkit.ini"), out.splitlines()[0])
        for value in ("日本 𠮷ñ☃", " blanks ", "y" * 9999):
            self.assertEqual((0, "", ""), self.run_kerno("settings", "set", "A", "b", value))
            self.assertEqual((0, value + "\n", ""), self.run_kerno("settings", "get", "A", "b"))
        writers = [subprocess.Popen([*programs.command(self.program), "settings", "set", "S", f"k{i}", str(i)])
                   for i in range(8)]
        self.assertEqual([0] * 8, [w.wait() for w in writers])
        text = (settings / "Quenkit.ini").read_bytes().decode("utf-16")
        for i in range(8):
            self.assertEqual(1, text.count(f"\r\nk{i}={i}\r\n"), text[-500:])
        self.assertEqual(["Quenkit.ini"], [p.name for p in settings.iterdir()])

    def test_resources(self):
        version = re.fullmatch(r"kerno (\S+)\n", self.run_kerno("--version")[1]).group(1)
        for program, name in ((KERNO, "kerno.exe"), (DESKTOP, "kerno-desktop.exe")):
            strings = resource(program, 16).decode("utf-16-le", "replace").split("\0")
            self.assertLess({name, version}, set(strings))
            manifest = resource(program, 24).decode()
            for wanted in ("longPathAware", "PerMonitorV2"):
                self.assertIn(wanted, manifest)
        self.assertIn("Microsoft.Windows.Common-Controls", resource(DESKTOP, 24).decode())

    def test_no_library_beside_the_systems_is_needed(self):
        own = {"advapi32", "comctl32", "comdlg32", "dwmapi", "gdi32", "imm32", "kernel32", "msvcrt", "ole32",
               "shcore", "shell32", "user32", "uxtheme", "wininet"}
        for program in (KERNO, DESKTOP):
            listing = subprocess.run(["x86_64-w64-mingw32-objdump", "-p", program], check=True,
                                     capture_output=True, text=True).stdout
            needed = {name.lower() for name in re.findall(r"DLL Name: (\S+)\.dll", listing, re.I)}
            self.assertIn("kernel32", needed)
            self.assertEqual(set(), {n for n in needed if not n.startswith("api-ms-win-")} - own)


if __name__ == "__main__":
    KERNO, DESKTOP = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
