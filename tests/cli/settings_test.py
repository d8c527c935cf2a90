#!/usr/bin/env python3
"""Runs "kerno settings" as a user does: places, values, odd files, other processes.

usage: settings_test.py KERNO
"""
import fcntl
import os
import pathlib
import pwd
import re
import resource
import shutil
import sys
import threading
import time
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

    def convert(self, *options, **more):
        output = self.folder / "cwd/out.svg"
        output.parent.mkdir(exist_ok=True)
        done = programs.run([*programs.command(self.program), "convert", "Qo", "-o", output,
                             *options], env=self.environment, **more)
        return done[0], re.sub(rb"[0-9/]+ [0-9:]+\r", b"", output.read_bytes()), done[2]


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

    def test_holders_are_waited_for_ten_seconds_in_all_and_by_none_who_reads(self):
        self.ok("set", "A", "k", "1")
        registry = self.folder / "home/.config/kerno/registry.reg"
        for lock in (fcntl.flock, fcntl.lockf):
            with open(self.ini, "r+b") as held:
                lock(held, fcntl.LOCK_EX)
                began = time.monotonic()
                self.assertEqual(self.ok("get", "A", "k"), "1\n")
                self.assertLess(time.monotonic() - began, 3)
                releaser = threading.Timer(1, lambda: lock(held, fcntl.LOCK_UN))
                releaser.start()
                status, _, err = self.run_kerno("set", "A", "k", "1")
                self.assertFalse(releaser.is_alive())
                releaser.join()
            self.assertEqual((status, err), (0, f"FileWait OpenWrite {self.ini}\n"))
        with open(self.ini, "r+b") as held, open(registry, "r+b") as other:
            fcntl.flock(held, fcntl.LOCK_EX)
            fcntl.flock(other, fcntl.LOCK_EX)
            began = time.monotonic()
            status, _, err = self.run_kerno("set", "A", "k", "2")
            self.assertLess(time.monotonic() - began, 14)
            fcntl.flock(held, fcntl.LOCK_UN)
            began = time.monotonic()
            self.ok("set", "A", "k", "3")  # the registry's note of the time is left out
            self.assertLess(time.monotonic() - began, 3)
        self.assertEqual(status, 1)
        self.assertIn(f"{self.ini}: another process holds the file", err)
        # A file that has to be converted first; --quiet is known before it is waited for.
        self.ini.write_text("[Dec]\n")
        with open(self.ini, "r+b") as held:
            fcntl.flock(held, fcntl.LOCK_EX)
            threading.Timer(1, lambda: fcntl.flock(held, fcntl.LOCK_UN)).start()
            self.assertEqual(self.convert("--quiet")[::2], (0, ""))

    def test_what_cannot_be_read_is_named(self):
        registry = self.folder / "home/.config/kerno/registry.reg"
        for file in (registry, self.ini):
            self.override(self.base)
            self.ok("set", "A", "k", "1")
            file.unlink()
            file.symlink_to("/proc/self/mem")  # answers every reading with an error of the device
            trouble = f"{file}: Input/output error"
            status, out, err = self.run_kerno("get", "Dec", "SvgOut::Precision")
            self.assertEqual((status, out, err.count(trouble)), (1, "15\n", 1), err)
            self.assertEqual(self.run_kerno("list")[0], 1)
            self.assertEqual(self.convert("--quiet")[2].count(trouble), 1)
            self.assertNotIn("basic_", err)
            status, _, err = self.run_kerno("set", "A", "k", "2")
            self.assertEqual(status, 1)
            self.assertIn(trouble, err)
            file.unlink()
            os.mkfifo(file)
            status, _, err = self.run_kerno("set", "A", "k", "2")
            self.assertEqual(status, 1)
            self.assertIn(f"kerno: {file}: is no file", err)
            self.assertTrue(file.is_fifo())
            file.unlink()


class OtherUserTest(SettingsFixture):
    """As a user who may not write everywhere, beside another one who does."""

    def setUp(self):
        if ON_WINDOWS or os.geteuid() != 0:
            self.skipTest("only a superuser of POSIX can be somebody else")
        super().setUp()
        for folder, mode in ((self.folder, 0o755), (self.folder / "tmp", 0o1777)):
            folder.chmod(mode)
        for name in ("cwd", "bin"):
            (self.folder / name).mkdir()
        (self.folder / "cwd").chmod(0o777)
        self.program = shutil.copy(KERNO, self.folder / "bin/kerno")
        (self.folder / "bin/Temp").write_text("no folder, so no place for settings")
        self.person = {"user": 65534, "group": 65534, "extra_groups": [],
                       "cwd": self.folder / "cwd"}

    def test_a_folder_that_cannot_be_written_is_read(self):
        self.ok("set", "Dec", "SvgOut::Precision", "5")
        wanted = self.convert()[1]
        (self.folder / "cwd/out.svg").unlink()
        self.assertEqual(self.ok("get", "Dec", "SvgOut::Precision", **self.person), "5\n")
        self.assertEqual(self.ok("path", **self.person).splitlines()[0], str(self.ini))
        self.assertEqual(self.convert(**self.person)[1:], (wanted, ""))
        for change in (["set", "Dec", "SvgOut::Precision", "6"],
                       ["unset", "Dec", "SvgOut::Precision"]):
            status, _, err = self.run_kerno(*change, **self.person)
            self.assertEqual((status, err), (1, f"kerno: {self.ini}: no permission\n"))
        self.assertEqual(list((self.folder / "tmp").iterdir()), [])
        self.ini.write_text("[Dec]\nSvgOut::Precision=5\n")  # with no mark
        told = f"kerno: {self.ini}: it is read, but not made UTF-16: no permission\n"
        self.assertEqual(self.run_kerno("get", "Dec", "SvgOut::Precision", **self.person), (0, "5\n", told))
        self.assertEqual(self.convert("--quiet", **self.person)[1:], (wanted, told))
        # Without a file there they are kept elsewhere, which each command tells once.
        self.ini.unlink()
        self.assertEqual(self.ok("get", "Dec", "SvgOut::Precision", **self.person), "15\n")
        place = self.folder / "tmp/nobody/Quenkit.ini"
        told = f"kerno: {self.base}: no permission; the settings are in {place}\n"
        self.assertEqual(self.run_kerno("set", "A", "k", "7", **self.person), (0, "", told))
        self.assertEqual(self.run_kerno("get", "A", "k", **self.person), (0, "7\n", told))
        self.assertTrue(place.exists())

    def test_a_full_folder_is_read(self):
        self.ok("set", "A", "k", "1")
        script = ('mount -t tmpfs -o nr_inodes=2 none "$1" && cp "$2" "$1"/Quenkit.ini && shift 2 && '
                  '"$@" get A k && "$@" path && "$@" set A k 2')
        shutil.copy(self.ini, self.folder / "kept.ini")
        status, out, err = programs.run(
            ["unshare", "--mount", "sh", "-c", script, "sh", self.base, self.folder / "kept.ini",
             *programs.command(self.program), "settings"], env=self.environment)
        if "unshare" in err or "mount:" in err:
            self.skipTest("this process may not mount")
        self.assertEqual(out.splitlines()[:2], ["1", str(self.ini)])
        self.assertEqual((status, err), (1, f"kerno: {self.ini}: the disk is full\n"))

    def test_without_a_home_nothing_lands_in_the_current_folder(self):
        planted = pathlib.Path(f"/tmp/kerno-settings-test-{os.getpid()}")
        planted.write_text("nobody's folder")
        self.addCleanup(planted.unlink)
        own = pathlib.Path("/tmp/kerno-" + pwd.getpwuid(self.person["user"]).pw_name)
        if not own.exists():
            self.addCleanup(shutil.rmtree, own, ignore_errors=True)
        for variables in ({"HOME": "/dev/null"}, {"HOME": "/none"}, {}):
            self.environment = {"PATH": os.environ["PATH"], "USER": planted.name,
                                "ASAN_OPTIONS": "detect_leaks=0", **variables}
            status, _, err = self.run_kerno("set", "A", "k", "1", **self.person)
            self.assertEqual((status, err.count("the settings can be had; they are in /tmp/")),
                             (0, 1), err)
            self.convert("--quiet", **self.person)
            (self.folder / "cwd/out.svg").unlink()
            self.assertEqual(list((self.folder / "cwd").iterdir()), [])

    def test_what_others_plant_in_a_shared_folder_is_not_used(self):
        victim = self.folder / "victim"
        shared = self.folder / "tmp"
        for name in ("Quenkit_Setting/Quenkit.ini", "DbgDump/kerno.txt", "Quenkit.ini", "root"):
            link = shared / name
            if link.parent != shared:
                link.parent.mkdir()
            link.symlink_to(victim)
            for place in (link, link.parent):
                if place != shared:
                    os.chown(place, 65534, 65534, follow_symlinks=False)
        self.environment.update(HOME="/dev/null", USER="root")
        for write in (["Debug", "DbgDump", "1"], ["A", "k", "1"]):
            victim.write_bytes(b"old")
            self.run_kerno("set", *write, cwd=self.folder / "cwd")
            self.assertEqual(victim.read_bytes(), b"old", write)
        self.assertEqual(self.run_kerno("get", "A", "k")[:2], (0, "1\n"))
        self.assertTrue((shared / "kerno-root/DbgDump/kerno.txt").exists())
        self.assertEqual((shared / "kerno-root").stat().st_mode & 0o777, 0o700)


if __name__ == "__main__":
    KERNO = os.path.abspath(sys.argv.pop(1))
    ON_WINDOWS = programs.is_windows(KERNO)
    unittest.main()
