"""Runs the Windows programs under Wine for the tests and checks, and the Linux ones as they are."""
import pathlib
import re
import subprocess
import sys

RUNNER = str(pathlib.Path(__file__).resolve().with_name("run_windows.sh"))
WINE_WORDS = re.compile(rb"^(?:[0-9a-f]{4}:)?err:\w+:.*\n?", re.MULTILINE)
TRIES = 3


def command(program):
    return [RUNNER, program] if program.endswith(".exe") else [program]


def run(words, **more):
    """The finished process of a command, with what it printed.

    Wine's own words are taken out and told here. Our programs say why they fail: one that fails without
    a word has not been started, and is tried again.
    """
    for tried in range(1, TRIES + 1):
        done = subprocess.run(words, capture_output=True, check=False, **more)
        if words[0] != RUNNER:
            return done
        said = b"".join(WINE_WORDS.findall(done.stderr)).decode("utf-8", "replace")
        done.stderr = WINE_WORDS.sub(b"", done.stderr)
        started = done.returncode == 0 or done.stdout or done.stderr
        if said or not started:
            print(f"try {tried}, exit {done.returncode}: {words}\n{said}", file=sys.stderr)
        if started:
            break
    return done
