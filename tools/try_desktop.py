#!/usr/bin/env python3
"""Tries the window among real programs of a desktop: an input method, other windows that files are dragged
to and from, a print server, assistive technology, ends of the session, changes of the desktop's looks.

usage: try_desktop.py KERNO-DESKTOP FOLDER [TRIAL...]

Each trial has a display, a bus and a home of its own; pictures of what happened go into FOLDER, to be
looked at. Ends with 1 when a trial failed.
"""
import importlib
import pathlib
import sys
import time
import traceback

TRIALS = ("input_method", "dragging", "printing", "accessibility", "endings", "looks")


def passed(name, program, folder):
    print(f"-- {name.replace('_', ' ')}", flush=True)
    begin = time.monotonic()
    try:
        importlib.import_module(name).trial(program, folder)
    except Exception:  # the others are tried all the same
        traceback.print_exc()
        print(f"-- {name}: FAILED", flush=True)
        return False
    print(f"-- {name}: ok, {time.monotonic() - begin:.0f} s", flush=True)
    return True


def main():
    program, folder = sys.argv[1], pathlib.Path(sys.argv[2]).resolve()
    wanted = sys.argv[3:] or TRIALS
    unknown = set(wanted) - set(TRIALS)
    if unknown:
        sys.exit(f"try_desktop.py: no trial {', '.join(sorted(unknown))}; there are {', '.join(TRIALS)}")
    sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent / "desktop"))
    folder.mkdir(parents=True, exist_ok=True)
    failed = [name for name in wanted if not passed(name, program, folder)]
    sys.exit(f"failed: {', '.join(failed)}" if failed else 0)


main()
