#!/usr/bin/env python3
"""Runs "kerno settings" as a user does: places, values, odd files, other processes.

usage: settings_test.py KERNO
"""
import fcntl
import os
import resource
import shutil
import sys
import threading
import time
import unittest

import programs

KERNO = ""
ON_WINDOWS = False
HEADER = "Windows Registry Editor Version 5.00\r\n\r\n"


class SettingsFixture(programs.FolderTest):
    def setUp(self):
        super().setUp()
        if ON_WINDOWS:
            self.program = self.folder / "kerno.exe"
            self.base = self.folder / "Quenkit_Setting"  # it counts when it stands beside the program
            self.base.mkdir()
            shutil.copy(KERNO, self.program)
            self.ini = self.base / "Quenkit.ini"
            self.environment = dict(os.environ)
            return
        self.program = KERNO
        self.base = self.folder / "ini"
        self.ini = self.base / "Quenkit.ini"
        self.environment = {"PATH": os.environ["PATH"], "HOME": str(self.folder / "home"),
                            "TMPDIR": str(self.folder / "tmp"),
                            "ASAN_OPTIONS": "detect_leaks=0"}
        (self.folder / "tmp").mkdir()
        self.override(self.base)

    def override(self, folder):
        registry = self.folder / "home/.config/kerno/registry.reg"
        registry.parent.mkdir(parents=True, exist_ok=True)
        text = (HEADER + "[HKEY_CURRENT_USER\\Software\\Quenkit\\Quenkit]\r\n"
                f'"IniFullBase"="{folder}"\r\n')
        registry.write_bytes(b"\xff\xfe" + text.encode("utf-16-le"))

    def run_kerno(self, *arguments, program=None, **more):
        words = programs.command(str(program or self.program))
        return programs.run([*words, "settings", *arguments], env=self.environment, **more)

    def ok(self, *arguments, **more):
        status, out, err = self.run_kerno(*arguments, **more)
        self.assertEqual((status, err), (0, ""), arguments)
        return out

    def text(self):
        data = self.ini.read_bytes()
        self.assertEqual(data[:2], b"\xff\xfe")
        return data[2:].decode("utf-16-le")


class SettingsTest(SettingsFixture):
    def test_values_come_and_go(self):
        self.assertEqual(self.ok("get", "Dec", "SvgOut::Precision"), "15\n")
        self.ok("set", "Dec", "SvgOut::Precision", "0x9")
        self.assertEqual(self.ok("get", "dec", "svgout::precision"), "9\n")
        self.ok("set", "Parts", "P3A::Search__MaxSearch", "-5")
        self.ok("set", "Mine", "k", " 日本 ")
        self.assertEqual(self.ok("get", "Mine", "K"), " 日本 \n")
        self.ok("set", "Mine", "k", "--", "-x")
        self.ok("set", "Debug\\Parts", "oprator+=...UseMerge", "0")
        self.assertEqual(self.ok("get", "Debug\\Parts", "oprator+=...UseMerge"), "0\n")
        rows = [line.split("\t") for line in self.ok("list").splitlines()]
        self.assertEqual({len(row) for row in rows}, {6})
        values = {tuple(row[:2]): row[4] for row in rows}
        self.assertEqual(values["Dec", "SvgOut::Precision"], "9")
        self.assertEqual(values["Parts", "P3A::Search__MaxSearch"], "-5")
        self.assertEqual(values["Parts", "横書フェイス名"], "ＭＳ ゴシック")
        self.ok("unset", "Dec", "SvgOut::Precision")
        self.assertEqual(self.ok("get", "Dec", "SvgOut::Precision"), "15\n")
        self.ok("unset", "Never", "set")
        for value, read in (("-2147483648", "-2147483648"), ("0002147483647", "2147483647"),
                            ("0x0ffffffff", "-1")):
            self.ok("set", "Parts", "P3A::Search__MaxSearch", "--", value)
            self.assertEqual(self.ok("get", "Parts", "P3A::Search__MaxSearch"), read + "\n")

    def test_wrong_usage_is_named(self):
        cases = [(["get", "A", "b"], 1, "A/b: it is not set"),
                 (["set", "A", "b", "1\n[C]"], 1, "A/b: a line break"),
                 (["set", "A", "[b", "1"], 1, "A/[b: "),
                 (["set", "", "b", "1"], 1, "a section and a key"),
                 (["set", "Dec", "SvgOut::Precision", "nine"], 2, "an integer is wanted"),
                 (["set", "Dec", "SvgOut::Precision", "2147483648"], 2, "an integer is wanted"),
                 (["set", "Dec", "SvgOut::Precision", "--", "-2147483649"], 2, "an integer is wanted"),
                 (["set", "Dec", "SvgOut::Precision", "0x100000000"], 2, "an integer is wanted"),
                 (["set", "Position\\MainFrame", "Position199902_LTRB", "1 2 3"], 2, "four integers"),
                 (["set", "A", "b"], 2, "VALUE"), (["get"], 2, "SECTION"), ([], 2, "subcommand"),
                 *([] if ON_WINDOWS else  # arguments are UTF-16 there
                   [([b"set", b"A", b"\xff", b"1"], 2, "KEY: not UTF-8 at byte 0")])]
        for arguments, wanted, message in cases:
            status, out, err = self.run_kerno(*arguments)
            self.assertEqual((status, out), (wanted, ""), arguments)
            self.assertIn(message, err)
        self.assertFalse(self.ini.exists())

    def test_odd_files_lose_nothing(self):
        self.base.mkdir(exist_ok=True)
        for text in ("; 日本\r\n[A]\r\nold=語", "[A]\r\nold=" + "y" * 20000):
            self.ini.write_bytes(text.encode("cp932"))
            self.ok("set", "New", "k", "v")
            self.assertIn(text, self.text())
            self.assertEqual(self.ok("get", "New", "k"), "v\n")
            self.assertEqual(self.ok("get", "A", "old"), text.split("old=")[1][:10000] + "\n")
        binary = bytes(range(256)) * 20
        self.ini.write_bytes(binary)
        status, _, err = self.run_kerno("set", "New", "k", "v")
        self.assertEqual(status, 0)
        self.assertIn("Quenkit.ini.orig", err)
        self.assertEqual((self.base / "Quenkit.ini.orig").read_bytes(), binary)
        self.assertEqual(self.ok("get", "New", "k"), "v\n")


class PosixSettingsTest(SettingsFixture):
    """Places, limits and locks of POSIX systems."""

    def setUp(self):
        if ON_WINDOWS:
            self.skipTest("the system has its own")
        super().setUp()

    def test_the_path_tells_why(self):
        def path(**more):
            return self.ok("path", **more).splitlines()

        self.assertEqual(path()[:2], [str(self.ini), "the registry value IniFullBase names this folder"])
        (self.folder / "home/.config/kerno/registry.reg").unlink()
        program = self.folder / "bin/kerno"
        program.parent.mkdir()
        shutil.copy(KERNO, program)
        self.assertEqual(path(program=program)[0],
                         str(self.folder / "bin/Temp/Quenkit_Setting/Quenkit.ini"))
        (self.folder / "bin/Quenkit_Setting").mkdir()
        self.assertEqual(path(program=program)[:2],
                         [str(self.folder / "bin/Quenkit_Setting/Quenkit.ini"),
                          "the folder Quenkit_Setting stands beside the program"])
        shutil.rmtree(self.folder / "bin/Quenkit_Setting")
        shutil.rmtree(self.folder / "bin/Temp")
        (self.folder / "bin/Temp").write_text("no folder")
        lines = path(program=program)
        self.assertEqual(lines[0], str(self.folder / "home/.config/kerno/Quenkit_Setting/Quenkit.ini"))
        self.assertIn("configuration folder", lines[1])
        self.environment["XDG_CONFIG_HOME"] = str(self.folder / "xdg")
        self.assertEqual(path(program=program)[0],
                         str(self.folder / "xdg/kerno/Quenkit_Setting/Quenkit.ini"))
        self.environment["XDG_CONFIG_HOME"] = "/proc/none"
        lines = path(program=program)
        self.assertEqual(lines[0], str(self.folder / "tmp/Quenkit_Setting/Quenkit.ini"))
        self.assertIn("neither", lines[1])
        self.override("/proc")
        del self.environment["XDG_CONFIG_HOME"]
        lines = path(program=program)
        self.assertEqual(lines[0], str(self.folder / "tmp/Quenkit.ini"))
        self.assertIn("cannot be written", lines[1])

    def test_without_a_home_there_are_still_settings(self):
        program = self.folder / "bin/kerno"
        program.parent.mkdir()
        shutil.copy(KERNO, program)
        for gone in ("HOME", "TMPDIR"):
            del self.environment[gone]
        self.ok("set", "A", "b", "1", program=program)
        self.assertEqual(self.ok("get", "A", "b", program=program), "1\n")
        self.environment = {"ASAN_OPTIONS": "detect_leaks=0"}
        self.assertEqual(self.ok("get", "A", "b", program=program), "1\n")

    def test_failures_leave_the_file_as_it_was(self):
        self.ok("set", "A", "k", "1")
        before = self.ini.read_bytes()

        def small_files():
            resource.setrlimit(resource.RLIMIT_FSIZE, (100, 100))

        status, _, err = self.run_kerno("set", "A", "k", "2", preexec_fn=small_files)
        self.assertEqual(status, 1)
        self.assertIn("Quenkit.ini: ", err)
        self.assertEqual(self.ini.read_bytes(), before)
        self.assertEqual([p.name for p in self.base.iterdir()], ["Quenkit.ini"])
        self.ini.unlink()
        self.ini.mkdir()
        self.assertEqual(self.ok("get", "Dec", "SvgOut::Precision"), "15\n")
        status, _, err = self.run_kerno("set", "A", "k", "2")
        self.assertEqual((status, err), (1, f"kerno: {self.ini}: it is a folder\n"))

    def test_a_held_file_is_waited_for(self):
        self.ok("set", "A", "k", "1")
        for lock in (fcntl.flock, fcntl.lockf):
            with open(self.ini, "r+b") as held:
                lock(held, fcntl.LOCK_EX)
                releaser = threading.Timer(1, lambda: lock(held, fcntl.LOCK_UN))
                releaser.start()
                start = time.monotonic()
                status, out, err = self.run_kerno("get", "A", "k")
                releaser.join()
            self.assertEqual((status, out), (0, "1\n"))
            self.assertGreater(time.monotonic() - start, 0.9)
            self.assertIn(f"FileWait OpenRead  {self.ini}", err)


if __name__ == "__main__":
    KERNO = os.path.abspath(sys.argv.pop(1))
    ON_WINDOWS = programs.is_windows(KERNO)
    unittest.main()
