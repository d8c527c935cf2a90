"""Runs the Windows programs under Wine for the tests and checks, and the Linux ones as they are."""
import pathlib
import re
import subprocess
import sys
import tempfile

RUNNER = str(pathlib.Path(__file__).resolve().with_name("run_windows.sh"))
WINE_WORDS = re.compile(rb"^(?:[0-9a-f]{4}:)?err:\w+:.*\n?", re.MULTILINE)
TRIES = 3
MOST_SECONDS = 120


def command(program):
    return [RUNNER, program] if program.endswith(".exe") else [program]


def run(words, **more):
    """The finished process of a command, with what it printed.

    Under Wine a program that fails without a word, or does not end, is tried again: ours say why they
    fail. Wine's own words are taken out and told here.
    """
    if words[0] != RUNNER:
        return subprocess.run(words, capture_output=True, check=False, timeout=MOST_SECONDS, **more)
    for tried in range(1, TRIES + 1):
        done = run_once(words, **more)
        said = b"".join(WINE_WORDS.findall(done.stderr)).decode("utf-8", "replace")
        done.stderr = WINE_WORDS.sub(b"", done.stderr)
        started = done.returncode == 0 or done.stdout or done.stderr
        if said or not started:
            print(f"try {tried}, exit {done.returncode}: {words}\n{said}", file=sys.stderr)
        if started:
            break
    return done


def run_once(words, **more):
    # Into files: what Wine starts besides may keep a pipe open after the program's end.
    with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err:
        try:
            done = subprocess.run(words, stdout=out, stderr=err, check=False, timeout=MOST_SECONDS, **more)
        except subprocess.TimeoutExpired:
            return subprocess.CompletedProcess(words, "no end", b"", b"")
        for file in (out, err):
            file.seek(0)
        done.stdout, done.stderr = out.read(), err.read()
        return done
