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
import unittest

import programs

KERNO = ""
ON_WINDOWS = False


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
        text = ("Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Software\\Quenkit\\"
                f'Quenkit]\r\n"IniFullBase"="{folder}"\r\n')
        registry.write_bytes(b"\xff\xfe" + text.encode("utf-16-le"))

    def run_kerno(self, *arguments, program=None, **more):
        words = programs.command(str(program or self.program))
        return programs.run([*words, "settings", *arguments], env=self.environment, **more)

    def ok(self, *arguments, **more):
        status, out, err = self.run_kerno(*arguments, **more)
        self.assertEqual((status, err), (0, ""), arguments)
        return out


class SettingsTest(SettingsFixture):
    def test_values_come_and_go(self):
        precision, search = ("Dec", "SvgOut::Precision"), ("Parts", "P3A::Search__MaxSearch")
        cases = [(precision, "0x9", "9"), (search, "-2147483648", "-2147483648"),
                 (search, "0x0ffffffff", "-1"), (("Mine", "k"), " 日本 ", " 日本 "),
                 (("Debug\\Parts", "oprator+=...UseMerge"), "0", "0")]
        for names, value, read in cases:
            self.ok("set", *names, "--", value)
            self.assertEqual(self.ok("get", *[n.lower() for n in names]), read + "\n")
        rows = [line.split("\t") for line in self.ok("list").splitlines()]
        values = {tuple(row[:2]): row[2:5] for row in rows}
        self.assertEqual(values[precision], ["integer", "15", "9"])
        self.assertEqual(values["Parts", "横書フェイス名"], ["text", "ＭＳ ゴシック", "ＭＳ ゴシック"])
        self.assertEqual(values["Position\\Dialog", "Kerno_LTRB"], ["rectangle"] + 2 * ["0 0 0 0"])
        self.ok("unset", *precision)
        self.assertEqual(self.ok("get", *precision), "15\n")
        self.ok("unset", "Never", "set")

    def test_wrong_usage_is_named(self):
        wanted = "an integer is wanted, from 1 to 40"
        whole = "an integer is wanted, from -2147483648 to 2147483647"
        cases = [(["get", "A", "b"], 1, "A/b: it is not set"),
                 (["set", "A", "b", "1\n[C]"], 1, "A/b: a line break"),
                 (["set", "", "b", "1"], 1, "a section and a key"),
                 *[(["set", "Dec", "SvgOut::Precision", "--", value], 2, wanted)
                   for value in ("nine", "0", "41", "0x100000001")],
                 (["set", "Dialog", "Vertical", "2147483648"], 2, whole),
                 (["set", "Position\\Dialog", "Kerno_LTRB", "1 2 3"], 2, "four integers"),
                 (["set", "A", "b"], 2, "VALUE"),
                 *([] if ON_WINDOWS else  # arguments are UTF-16 there
                   [([b"set", b"A", b"\xff", b"1"], 2, "KEY: not UTF-8 at byte 0")])]
        for arguments, status, message in cases:
            done = self.run_kerno(*arguments)
            self.assertEqual(done[:2], (status, ""), arguments)
            self.assertIn(message, done[2])
        self.assertFalse(self.ini.exists())


class PosixSettingsTest(SettingsFixture):
    """Places, limits and locks of POSIX systems."""

    def setUp(self):
        if ON_WINDOWS:
            self.skipTest("the system has its own")
        super().setUp()

    def test_the_path_tells_why(self):
        program = self.folder / "bin/kerno"
        program.parent.mkdir()
        shutil.copy(KERNO, program)

        def expect(ini, reason):
            lines = self.ok("path", program=program).splitlines()
            self.assertEqual(lines[0], str(self.folder / ini))
            self.assertIn(reason, lines[1])

        expect("ini/Quenkit.ini", "the registry value IniFullBase names this folder")
        (self.folder / "home/.config/kerno/registry.reg").unlink()
        expect("bin/Temp/Quenkit_Setting/Quenkit.ini", "can be written")
        (self.folder / "bin/Quenkit_Setting").mkdir()
        expect("bin/Quenkit_Setting/Quenkit.ini", "stands beside the program")
        (self.folder / "bin/Quenkit_Setting").rmdir()
        shutil.rmtree(self.folder / "bin/Temp")
        (self.folder / "bin/Temp").write_text("no folder")
        expect("home/.config/kerno/Quenkit_Setting/Quenkit.ini", "configuration folder")
        self.environment["XDG_CONFIG_HOME"] = "/proc/none"
        expect("tmp/Quenkit_Setting/Quenkit.ini", "neither")
        del self.environment["XDG_CONFIG_HOME"]
        self.override("/proc")
        expect("tmp/Quenkit.ini", "cannot be written")
        self.environment = {"ASAN_OPTIONS": "detect_leaks=0"}  # neither a home nor a temporary folder
        self.ok("set", "A", "b", "1", program=program)
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

    def test_a_held_file_is_waited_for(self):
        self.ok("set", "A", "k", "1")
        for lock in (fcntl.flock, fcntl.lockf):
            with open(self.ini, "r+b") as held:
                lock(held, fcntl.LOCK_EX)
                releaser = threading.Timer(1, lambda: lock(held, fcntl.LOCK_UN))
                releaser.start()
                status, out, err = self.run_kerno("get", "A", "k")
                self.assertFalse(releaser.is_alive())
                releaser.join()
            self.assertEqual((status, out), (0, "1\n"))
            self.assertIn(f"FileWait OpenRead  {self.ini}", err)


if __name__ == "__main__":
    KERNO = os.path.abspath(sys.argv.pop(1))
    ON_WINDOWS = programs.is_windows(KERNO)
    unittest.main()
