"""How the tests start kerno: as it is, or, the Windows one, under Wine."""
import os
import pathlib
import shutil
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
import windows_run  # noqa: E402


def is_windows(program):
    return program.endswith(".exe")


def command(program):
    return windows_run.command(os.path.abspath(program))


def windows_name(path):
    return "Z:" + str(path).replace("/", "\\")


def run(words, **more):
    """The exit status, standard output and standard error of a command."""
    done = windows_run.run(words, **more)
    return done.returncode, done.stdout.decode("utf-8"), done.stderr.decode("utf-8", "replace")


class FolderTest(unittest.TestCase):
    """Gives each test a folder of its own."""

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
