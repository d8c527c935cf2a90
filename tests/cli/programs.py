"""How the tests start kerno: as it is, or, the Windows one, under Wine."""
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

RUNNER = pathlib.Path(__file__).resolve().parents[2] / "tools" / "run_windows.sh"


def is_windows(program):
    return program.endswith(".exe")


def command(program):
    program = os.path.abspath(program)
    return [str(RUNNER), program] if is_windows(program) else [program]


def run(words, **more):
    """The exit status, standard output and standard error of a command."""
    done = subprocess.run(words, capture_output=True, timeout=300, check=False, **more)
    return done.returncode, done.stdout.decode("utf-8"), done.stderr.decode("utf-8", "replace")


class FolderTest(unittest.TestCase):
    """Gives each test a folder of its own."""

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
