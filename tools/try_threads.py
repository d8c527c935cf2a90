#!/usr/bin/env python3
"""Runs what works on several threads, built with the sanitizer that finds races (make tsan).

usage: try_threads.py KERNO [PROGRAM...]

KERNO cuts texts and series; each PROGRAM runs as it is. Fails where the sanitizer found something, and
where what one thread writes is not what several do.
"""
import os
import pathlib
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
FACE = ["--face", "DejaVu Sans", "--fallback", "IPAGothic"]
LETTERS = " ".join(chr(code) for code in [*range(0x41, 0x7f), *range(0xc0, 0x17f), *range(0x4e00, 0x4e40)])
ROWS = [f"{number},Row {number} Äß\\n切文字 {number * 7}" for number in range(1, 25)]
SERIES = ["cut", "--data", "list.csv", "--text", "{text}", *FACE, "--replace", "--weld", "text"]
SHEETS = ["--em", "6mm", "--sheet", "200x100mm", "--pack", "--numbers", "--marks", "--copies", "2"]
# What is made with one thread at work and with several.
COMMANDS = {
    "a long text": ["cut", "--text", LETTERS, *FACE, "--offset", "0.1mm", "-o", "long.dxf", "-o", "long.svg"],
    "a long text for the rasteriser": ["convert", "--text", LETTERS, "--face", "DejaVu Sans", "--quiet", "-o",
                                       "long.emf", "-o", "long.bmp"],
    "a series": [*SERIES, "-o", "row-{row}.dxf", "-o", "row-{row}.pdf"],
    "a series by way of the parts model": [*SERIES, "-o", "row-{row}.ipx", "-o", "row-{row}.emf"],
    "sheets": [*SERIES, *SHEETS, "-o", "sheet-{sheet}.plt"],
}


def environment(report):
    supported = f"suppressions={HERE / 'threads.supp'}"
    return {**os.environ, "TSAN_OPTIONS": f"log_path={report}:{supported}:exitcode=66:second_deadlock_stack=1",
            "FONTCONFIG_FILE": str(HERE.parent / "tests" / "fonts.conf"), "SOURCE_DATE_EPOCH": "1700000000"}


def run(name, words, folder, report):
    """Whether it ended well and without a word of the sanitizer."""
    done = subprocess.run(words, cwd=folder, env=environment(report), capture_output=True, text=True)
    reports = sorted(report.parent.glob(report.name + ".*"))
    for file in reports:
        print(f"FOUND by {name}:\n{file.read_text()}")
        file.unlink()
    if done.returncode != 0:
        print(f"FOUND by {name}: status {done.returncode}: {(done.stdout + done.stderr)[-2000:]}")
    print(f"tried: {name}", flush=True)
    return done.returncode == 0 and not reports


def files_of(folder):
    return {file.name: file.read_bytes() for file in folder.iterdir() if file.name != "list.csv"}


def cut(kerno, top, jobs):
    folder = top / f"{jobs} at work"
    folder.mkdir()
    (folder / "list.csv").write_text("name,text\n" + "\n".join(ROWS) + "\n")
    good = True
    for name, words in COMMANDS.items():
        more = ["--jobs", str(jobs)] if "--data" in words else []
        good &= run(f"{name}, {jobs} at work", [kerno, *words, *more], folder, top / "report")
    return good, files_of(folder)


def main():
    kerno, programs = os.path.abspath(sys.argv[1]), sys.argv[2:]
    for program in (kerno, *programs):
        if b"__tsan_init" not in pathlib.Path(program).read_bytes():
            sys.exit(f"{program} is built without the sanitizer of threads")
    with tempfile.TemporaryDirectory() as name:
        top = pathlib.Path(name)
        good, one = cut(kerno, top, 1)
        fine, several = cut(kerno, top, 4)
        good &= fine
        if one != several or not one:
            good = False
            print(f"FOUND: several threads write otherwise: {sorted(n for n in one if one[n] != several.get(n))}")
        for program in programs:
            good &= run(os.path.basename(program), [os.path.abspath(program)], top, top / "report")
    print(f"threads: {len(one)} files, {'nothing found' if good else 'FAILED'}")
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
