#!/usr/bin/env python3
"""Times whole runs of the command line against their goals: the best of several, in seconds and MB.

usage: process_bench.py KERNO
"""
import os
import resource
import subprocess
import sys
import tempfile
import time

SENTENCE = "Kerno 2026: Sphinx of black quartz, judge my vow & pack 8 boxes. "
ROUNDS = 7


def best_run(command):
    """The shortest wall time in seconds and the largest resident size in MB of several runs."""
    seconds, megabytes = float("inf"), 0
    for _ in range(ROUNDS):
        start = time.perf_counter()
        child = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        _, status, usage = os.wait4(child.pid, 0)
        seconds = min(seconds, time.perf_counter() - start)
        megabytes = max(megabytes, usage.ru_maxrss / 1024)
        if status != 0:
            sys.exit(f"{' '.join(command)}: exit status {status}")
    return seconds, megabytes


def main():
    kerno = sys.argv[1]
    with tempfile.TemporaryDirectory() as folder:
        text = os.path.join(folder, "text.txt")
        with open(text, "w", encoding="utf-8") as file:
            file.write((SENTENCE * 200)[:10000])
        convert = [kerno, "convert", "--text-file", text, "--face", "DejaVu Sans", "-o"]
        runs = [  # what, command, goal in seconds, goal in MB (0: none)
            ("kerno --version", [kerno, "--version"], 0.010, 0),
            ("convert, 10,000 Latin characters, DXF", [*convert, os.path.join(folder, "a.dxf")], 0.15, 120),
        ]
        baseline, _ = best_run(["/bin/true"])
        print(f"{'whole process':44} {'seconds':>8} {'goal':>6} {'MB':>6} {'goal':>5} {'/ true':>8}")
        for what, command, most_seconds, most_megabytes in runs:
            seconds, megabytes = best_run(command)
            missed = seconds > most_seconds or (most_megabytes and megabytes > most_megabytes)
            print(f"{what:44} {seconds:8.4f} {most_seconds:6.3f} {megabytes:6.1f} {most_megabytes or '-':>5} "
                  f"{seconds / baseline:8.1f}{'  MISSED' if missed else ''}")
        version, _ = best_run([kerno, "--version"])
        setting, _ = best_run([kerno, "settings", "get", "Dec", "SvgOut::Precision"])
        more = setting - version
        print(f"{'settings get, more than --version':44} {more:8.4f} {0.010:6.3f}"
              f"{'  MISSED' if more > 0.010 else ''}")


if __name__ == "__main__":
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    main()
