#!/usr/bin/env python3
"""Times whole runs of the command line against their goals: the best of several, in seconds and MB; and
the memory that a million characters take in each format.

usage: process_bench.py KERNO
"""
import os
import resource
import subprocess
import sys
import tempfile
import time

JAPANESE = "いろはにほへと散りぬるを我が世誰ぞ常ならむ有為の奥山今日越えて浅き夢見じ酔ひもせず"
SENTENCE = "Kerno 2026: Sphinx of black quartz, judge my vow & pack 8 boxes. "
ROUNDS = 7
FORMATS = ("dxf", "svg", "ipx", "emf", "x3d", "ipl", "bmp")
MOST_OF_A_MILLION = 1000  # MB


def best_run(command, rounds=ROUNDS):
    """The shortest wall time in seconds and the largest resident size in MB of several runs."""
    seconds, megabytes = float("inf"), 0
    for _ in range(rounds):
        start = time.perf_counter()
        child = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        _, status, usage = os.wait4(child.pid, 0)
        seconds = min(seconds, time.perf_counter() - start)
        megabytes = max(megabytes, usage.ru_maxrss / 1024)
        if status != 0:
            sys.exit(f"{' '.join(command)}: exit status {status}")
    return seconds, megabytes


def million_characters(kerno, folder):
    """The memory of a text of lines, half Latin and half Japanese; up to 5 GB go to the folder."""
    text = os.path.join(folder, "million.txt")
    lines = SENTENCE[:64] + "\n" + JAPANESE + "\n"
    with open(text, "w", encoding="utf-8") as file:
        file.write((lines * (1000000 // len(lines) + 1))[:1000000])
    print(f"{'a million characters':44} {'seconds':>8} {'':6} {'MB':>6} {'goal':>5}")
    for extension in FORMATS:
        output = os.path.join(folder, f"million.{extension}")
        seconds, megabytes = best_run(
            [kerno, "convert", "--text-file", text, "--face", "IPAGothic", "-o", output], 1)
        os.remove(output)
        print(f"{extension:44} {seconds:8.2f} {'':6} {megabytes:6.1f} {MOST_OF_A_MILLION:5}"
              f"{'  MISSED' if megabytes > MOST_OF_A_MILLION else ''}")


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
        million_characters(kerno, folder)


if __name__ == "__main__":
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    main()
