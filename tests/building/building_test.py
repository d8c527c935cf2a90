#!/usr/bin/env python3
"""Builds as someone would who has the source alone: what is missing is named, the version is told from one place, the
tarball is the same each time, an install works wherever it is put.

usage: building_test.py CMAKE SOURCE BUILD KERNO
"""
import os
import pathlib
import re
import subprocess
import sys
import tarfile
import tempfile
import unittest

CMAKE, SOURCE, BUILD, KERNO = sys.argv[1], pathlib.Path(sys.argv[2]), sys.argv[3], sys.argv[4]
NO_LIBRARIES = {"PKG_CONFIG_LIBDIR": "/nonexistent", "PKG_CONFIG_PATH": ""}
# Without Qt and GoogleTest, as on a machine that has neither.
BARE = ["-DCMAKE_DISABLE_FIND_PACKAGE_Qt6=ON", "-DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON"]


def run(*command, **environment):
    done = subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          env=os.environ | environment)
    return done.returncode, done.stdout


class Building(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        # Names that break commands in which they are not quoted.
        self.folder = pathlib.Path(holder.name) / "ビルド & folder"
        self.folder.mkdir()

    def configure(self, *options, **environment):
        return run(CMAKE, "-S", SOURCE, "-B", self.folder / "b", *options, **environment)

    def test_names_all_that_is_missing(self):
        status, said = self.configure(*BARE, "-DKERNO_DESKTOP=ON", "-DKERNO_TESTS=ON", "-DKERNO_CLI11_INCLUDE=NO-NOTFOUND",
                                      "-DCMAKE_DISABLE_FIND_PACKAGE_benchmark=ON", "-DKERNO_BENCH=ON", **NO_LIBRARIES)
        self.assertNotEqual(status, 0, said)
        named = dict(re.findall(r"^ +([a-z0-9]+)[>=.\d]*: .+ \(Debian: (\S+)\)$", said, re.MULTILINE))
        self.assertEqual(set(named), {"freetype2", "fontconfig", "harfbuzz", "fribidi", "libagg", "polyclipping",
                                      "libcurl"}, said)
        for module, package in named.items():
            _, files = run("dpkg", "-L", package)
            self.assertIn(f"/{module}.pc\n", files, f"{package} does not bring {module}")
        for package in ["qt6-base-dev", "libgtest-dev libgmock-dev", "libbenchmark-dev"]:
            self.assertIn(f"(Debian: {package})", said)
        told = re.search(r"apt-get install (.+)", said)[1].split()
        set_up = (SOURCE / "tools" / "setup.sh").read_text().split()
        self.assertEqual([package for package in told if package not in set_up], [])

    def test_goes_without_what_is_optional(self):
        status, said = self.configure(*BARE, "-DCMAKE_BUILD_TYPE=None")
        self.assertEqual(status, 0, said)
        self.assertRegex(said, r"Without the window.*qt6-base-dev")
        self.assertRegex(said, r"Without the tests.*libgtest-dev")
        commands = (self.folder / "b" / "compile_commands.json").read_text()
        self.assertIn("main.cpp", commands)
        self.assertNotIn("/tests/", commands)
        # Whoever asks for them is told that they cannot be had, in the same folder, too.
        status, said = self.configure("-DKERNO_DESKTOP=ON")
        self.assertNotEqual(status, 0, said)
        self.assertIn("qt6-base-dev", said)

    def test_takes_known_choices_alone(self):
        for wrong, told in [("KERNO_TESTS=sure", 'KERNO_TESTS is "sure", and may be ON, OFF or AUTO'),
                            ("KERNO_DESKTOP=2", 'KERNO_DESKTOP is "2"'), ("KERNO_FUZZ=ON", "KERNO_FUZZ=ON needs Clang")]:
            status, said = self.configure(*BARE, f"-D{wrong}", CC="gcc", CXX="g++")
            self.assertNotEqual(status, 0, said)
            self.assertIn(told, " ".join(said.split()))
        # In any case they do what they do in capitals: without Qt and GoogleTest, AUTO goes on and ON does not.
        status, said = self.configure(*BARE, "-DKERNO_FUZZ=OFF", "-DKERNO_DESKTOP=auto", "-DKERNO_TESTS=Off")
        self.assertEqual(status, 0, said)
        self.assertRegex(said, r"Without the window.*qt6-base-dev")
        self.assertNotIn("Without the tests", said)
        status, said = self.configure(*BARE, "-DKERNO_DESKTOP=yes")
        self.assertNotEqual(status, 0, said)

    def test_takes_the_date_of_the_source(self):
        status, said = self.configure(*BARE, SOURCE_DATE_EPOCH="1546300805")
        self.assertEqual(status, 0, said)
        commands = (self.folder / "b" / "compile_commands.json").read_text()
        self.assertIn("Jan  1 2019 00:00:05", commands)
        status, said = self.configure(SOURCE_DATE_EPOCH="today")
        self.assertNotEqual(status, 0, said)
        self.assertIn('SOURCE_DATE_EPOCH: "today" is not a number of seconds', said)

    def test_tells_one_version(self):
        version = re.search(r"project\(kerno VERSION ([\d.]+)", (SOURCE / "CMakeLists.txt").read_text())[1]
        newest = re.search(r"^## (.*)", (SOURCE / "CHANGELOG.md").read_text(), re.MULTILINE)[1]
        self.assertRegex(newest, rf"^{re.escape(version)} - 20\d\d-\d\d-\d\d$")
        self.assertEqual(run(KERNO, "--version"), (0, f"kerno {version}\n"))

    @unittest.skipUnless((SOURCE / ".git").exists(), "not a clone")
    def test_packs_the_same_tarball_each_time(self):
        tarballs = []
        for name in ["one", "two"]:
            status, said = run("sh", SOURCE / "tools" / "make_dist.sh", self.folder / name)
            self.assertEqual(status, 0, said)
            tarballs.append(next((self.folder / name).glob("kerno-*.tar.xz")))
        self.assertEqual(*(tarball.read_bytes() for tarball in tarballs))
        with tarfile.open(tarballs[0]) as tarball:
            members = tarball.getmembers()
            root = tarballs[0].name.removesuffix(".tar.xz")
            date = tarball.extractfile(f"{root}/cmake/source-date.txt").read().decode().strip()
        _, committed = run("git", "-C", SOURCE, "log", "-1", "--format=%ct")
        self.assertEqual(date, committed.strip())
        self.assertEqual({(member.mtime, member.uid, member.gid) for member in members}, {(int(date), 0, 0)})
        names = {member.name for member in members}
        self.assertIn(f"{root}/CMakeLists.txt", names)
        self.assertFalse([name for name in names if "/.ci" in name or "/.git" in name or "/build/" in name])

    def test_installs_wherever_it_is_put(self):
        prefix = self.folder / "プレ フィックス"
        status, said = run(CMAKE, "--install", BUILD, "--prefix", prefix, "--component", "cli")
        self.assertEqual(status, 0, said)
        self.assertEqual(run(prefix / "bin" / "kerno", "--version"), run(KERNO, "--version"))
        drawing = prefix / "絵 1.svg"
        status, said = run(prefix / "bin" / "kerno", "cut", "字", "--face", "IPAMincho", "-o", drawing)
        self.assertEqual(status, 0, said)
        self.assertIn("<path", drawing.read_text())
        # A place that takes no files, for root neither.
        status, said = run(CMAKE, "--install", BUILD, "--prefix", "/proc/kerno", "--component", "cli")
        self.assertNotEqual(status, 0, said)
        self.assertIn("/proc/kerno", said)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
