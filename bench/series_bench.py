#!/usr/bin/env python3
"""Times series of "kerno cut": 10,000 rows to as many DXF files against a C program (write_files.c) that
writes the same bytes with the same durability, one job against two where no disk takes part, all rows
on one sheet against one text, and peak memory against the number of rows. A figure beyond its goal is marked, and is no failure.

usage: series_bench.py KERNO [FOLDER [ROWS]]    (FOLDER is on the disk to be measured)
"""
import csv
import os
import pathlib
import random
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

FIRST = "Anna Ben Clara David Emma Finn Greta Hans Ida Jonas Klara Lukas Mia Noah Olga Paul".split()
LAST = "Müller Schmidt Schneider Fischer Weber Meyer Wagner Becker Schulz Hoffmann Koch Bauer".split()
ROUNDS = 3
SIZES = {"cap height": ["--cap-height", "6mm"], "fitted": ["--fit", "80x20mm"]}


def write_list(path, rows):
    chance = random.Random(1)
    with open(path, "w", newline="", encoding="utf-8") as file:
        out = csv.writer(file)
        out.writerow(["name", "table"])
        out.writerows([f"{chance.choice(FIRST)} {chance.choice(LAST)}", chance.randint(1, 99)] for _ in range(rows))


def run(command):
    """Wall seconds, CPU seconds, megabytes of the largest resident size.

    That size is looked at while the process runs: what the system tells at its end may be this program's own.
    """
    start = time.perf_counter()
    child = subprocess.Popen(command, stdout=subprocess.DEVNULL)
    most = 0
    while True:
        with open(f"/proc/{child.pid}/status", encoding="utf-8") as file:
            most = max([most] + [int(line.split()[1]) for line in file if line.startswith("VmHWM")])
        time.sleep(0.01)
        pid, status, usage = os.wait4(child.pid, os.WNOHANG)
        if pid and status != 0:
            sys.exit(f"{' '.join(map(str, command))}: exit status {status}")
        if pid:
            break
    return time.perf_counter() - start, usage.ru_utime + usage.ru_stime, most / 1024


class Bench:
    def __init__(self, kerno, rows):
        self.kerno, self.rows = kerno, rows

    def series(self, folder, size, *options, rows=None):
        shutil.rmtree(folder / "tags", ignore_errors=True)
        write_list(folder / "list.csv", rows or self.rows)
        return run([self.kerno, "cut", "--data", folder / "list.csv", "--text", "{name}\\nTable {table}",
                    "--face", "DejaVu Sans", *SIZES[size], "-o", f"{folder}/tags/{{row:05}}.dxf", *options])

    def against_plain_writes(self, folder):
        writer = folder / "write_files"
        source = pathlib.Path(__file__).with_name("write_files.c")
        subprocess.run(["cc", "-O2", "-o", writer, source], check=True)
        print(f"{self.rows:,} rows to files on the disk{'':16} {'wall s':>7} {'C':>7} {'ratio':>6} {'goal':>5} {'CPU s':>7}")
        for size in SIZES:
            ours, theirs, cpu = [], [], []
            for _ in range(ROUNDS):
                wall, used, _ = self.series(folder, size)
                ours.append(wall)
                cpu.append(used)
                kept = folder / "kept"
                shutil.rmtree(kept, ignore_errors=True)
                (folder / "tags").rename(kept)
                for path in kept.iterdir():
                    path.rename(path.with_suffix(""))
                done = subprocess.run([writer, kept, folder / "plain", str(self.rows)], capture_output=True, check=True)
                theirs.append(float(done.stdout))
                shutil.rmtree(folder / "plain")
                shutil.rmtree(kept)
            wall, other = statistics.median(ours), statistics.median(theirs)
            print(f"{'  ' + size:44} {wall:7.2f} {other:7.2f} {wall / other:6.2f} {1.5:5.1f} {statistics.median(cpu):7.2f}"
                  f"{'  MISSED' if wall > 1.5 * other else ''}", flush=True)

    def jobs(self, folder):
        print(f"{'the same without a disk':44} {'1 job':>7} {'2 jobs':>7} {'times':>6} {'goal':>5} {'CPU s':>7} {'CPU s':>7}")
        for size in SIZES:
            runs = [[self.series(folder, size, "--jobs", jobs) for jobs in ("1", "2")] for _ in range(ROUNDS)]
            (one, cpu_one), (two, cpu_two) = (
                [statistics.median(pair[which][kind] for pair in runs) for kind in (0, 1)] for which in (0, 1))
            print(f"{'  ' + size:44} {one:7.2f} {two:7.2f} {one / two:6.2f} {1.7:5.1f} {cpu_one:7.2f} {cpu_two:7.2f}"
                  f"{'  MISSED' if one < 1.7 * two else ''}", flush=True)

    def one_sheet(self, folder):
        """All rows on one sheet against one text of the same characters."""
        lines = folder / "lines.txt"
        chance = random.Random(2)
        lines.write_text("".join(f"{chance.choice(FIRST)} {chance.choice(LAST)}\n" for _ in range(self.rows)),
                         encoding="utf-8")
        options = ["--face", "DejaVu Sans", "--cap-height", "6mm", "--quiet", "-o", folder / "one.dxf"]
        sheet = ["--lines", lines, "--replace", "--sheet", "20000x20000mm", "--pack"]
        runs = [[run([self.kerno, "cut", *source, *options]) for source in (["--text-file", lines], sheet)]
                for _ in range(2 * ROUNDS + 1)]
        (text, cpu_text), (laid, cpu_laid) = (
            [statistics.median(pair[which][kind] for pair in runs) for kind in (0, 1)] for which in (0, 1))
        print(f"{'rows on one sheet':44} {'wall s':>7} {'text':>7} {'ratio':>6} {'goal':>5} {'CPU s':>7} {'text':>7}")
        print(f"{'  packed':44} {laid:7.2f} {text:7.2f} {laid / text:6.2f} {3:5.1f} {cpu_laid:7.2f} {cpu_text:7.2f}"
              f"{'  MISSED' if laid > 3 * text else ''}", flush=True)

    def memory(self, folder):
        print(f"{'peak memory':44} {'MB':>7}")
        for size in SIZES:
            before = None
            for rows in (self.rows // 10, self.rows):
                most = self.series(folder, size, "--jobs", "2", rows=rows)[2]
                missed = before and most > 1.1 * before + 1
                print(f"  {f'{size}, {rows:,} rows':42} {most:7.1f}{'  MISSED' if missed else ''}", flush=True)
                before = most


def main():
    bench = Bench(os.path.abspath(sys.argv[1]), int(sys.argv[3]) if len(sys.argv) > 3 else 10000)
    with tempfile.TemporaryDirectory(dir=sys.argv[2] if len(sys.argv) > 2 else None) as disk:
        bench.against_plain_writes(pathlib.Path(disk))
    with tempfile.TemporaryDirectory(dir="/dev/shm") as memory:
        bench.jobs(pathlib.Path(memory))
        bench.one_sheet(pathlib.Path(memory))
        bench.memory(pathlib.Path(memory))


if __name__ == "__main__":
    main()
