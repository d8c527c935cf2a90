#!/usr/bin/env python3
"""Times whole runs of "kerno cut" against hb-view, which writes the same glyphs of the same face as SVG:
pairs of runs in turn, medians of CPU time (user and system) and of wall time. Then how time and memory
grow with the text. A figure beyond its goal is marked, and is no failure.

usage: cut_process_bench.py KERNO
"""
import os
import random
import resource
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

WORDS = """the quick brown fox jumps over a lazy dog while Sphinx of black quartz judge my vow & pack
five dozen liquor jugs To AVATAR Wave LTD. Typography (1999) office, affluent shuffle; Quay Street 27–31
"Yes," Zoë said: naïve façade, Öffnungszeiten 9–17 h, coöperate? Ærø! km² ½ No. 5 Für Elise""".split()
HINDI = "नमस्ते दुनिया यह हिन्दी का एक लम्बा वाक्य है जिसमें क्षत्रिय ज्ञान श्री और स्त्री आते हैं कर्म विद्या शक्ति प्रेम".split()
LINE = 80
PAIRS = 7
SANS, MINCHO, DEVA = "DejaVu Sans", "IPAMincho", "Lohit Devanagari"


def lines_of(words, count):
    chance = random.Random(1)
    lines, left = [], count
    while left > 0:
        line = chance.choice(words)
        while len(line) < LINE:
            line += " " + chance.choice(words)
        lines.append(line[:min(LINE, left)])
        left -= len(lines[-1])
    return "\n".join(lines)


def japanese(count, different):
    """Of the first level of JIS X 0208, by its order."""
    kanji = [bytes((row, cell)).decode("euc_jp", "ignore")
             for row in range(0xB0, 0xD0) for cell in range(0xA1, 0xFF)]
    kanji = [ch for ch in kanji if ch][:different]
    text = [kanji[i % different] for i in range(count)]
    random.Random(1).shuffle(text)
    return "\n".join("".join(text[i:i + LINE]) for i in range(0, count, LINE))


def run(command):
    """CPU seconds, wall seconds, megabytes of the largest resident size."""
    start = time.perf_counter()
    child = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    _, status, usage = os.wait4(child.pid, 0)
    if status != 0:
        sys.exit(f"{' '.join(command)}: exit status {status}")
    return usage.ru_utime + usage.ru_stime, time.perf_counter() - start, usage.ru_maxrss / 1024


def font_file(face):
    return subprocess.run(["fc-match", "-f", "%{file}", face], capture_output=True, text=True, check=True).stdout


class Bench:
    def __init__(self, kerno, folder):
        self.kerno, self.folder = kerno, folder

    def path(self, name):
        return os.path.join(self.folder, name)

    def text(self, name, text):
        with open(self.path(name), "w", encoding="utf-8") as file:
            file.write(text)
        return self.path(name)

    def cut(self, face, text, output, *options):
        return [self.kerno, "cut", "--text-file", text, "--face", face, "-o", self.path(output), *options]

    def pairs(self):
        text, kanji = self.text("latin.txt", lines_of(WORDS, 10000)), self.text("kanji.txt", japanese(10000, 2000))
        hindi = self.text("hindi.txt", lines_of(HINDI, 10000))
        print(f"{'kerno cut against hb-view --output-format=svg':46} {'CPU s':>7} {'other':>7} {'ratio':>6} "
              f"{'goal':>5} {'wall s':>7} {'other':>7} {'ratio':>6}")
        for what, goal, face, source, output, options in (
                ("10,000 Latin characters, DXF", 2, SANS, text, "a.dxf", []),
                ("the same, SVG with curves", 1.5, SANS, text, "a.svg", ["--curves", "curves"]),
                ("10,000 Japanese characters (2,000), DXF", 2, MINCHO, kanji, "b.dxf", []),
                ("10,000 of Devanagari, SVG with curves", 1.5, DEVA, hindi, "c.svg", ["--curves", "curves"])):
            ours = self.cut(face, source, output, *options)
            theirs = ["hb-view", "--output-format=svg", "--output-file=" + self.path("other.svg"),
                      "--font-file=" + font_file(face), "--text-file=" + source]
            runs = [(run(ours), run(theirs)) for _ in range(PAIRS + 1)][1:]
            cpu, other_cpu, wall, other_wall = (
                statistics.median(pair[which][kind] for pair in runs) for kind in (0, 1) for which in (0, 1))
            print(f"{what:46} {cpu:7.3f} {other_cpu:7.3f} {cpu / other_cpu:6.2f} {goal:5.1f} {wall:7.3f} "
                  f"{other_wall:7.3f} {wall / other_wall:6.2f}{'  MISSED' if cpu > goal * other_cpu else ''}")

    def growth(self):
        print(f"{'characters to DXF':46} {'CPU s':>7} {'grown':>7} {'goal':>6} {'wall s':>7} {'MB':>7} {'goal':>6}")
        before = None
        for count in (10000, 100000, 1000000):
            command = self.cut(SANS, self.text("grow.txt", lines_of(WORDS, count)), "grow.dxf")
            runs = [run(command) for _ in range(3 if count < 1000000 else 1)]
            cpu, wall = (statistics.median(r[kind] for r in runs) for kind in (0, 1))
            most = max(r[2] for r in runs)
            goal = 1500 if count == 1000000 else 0
            missed = (before and cpu > 12 * before) or (goal and most > goal)
            grown = f"{cpu / before:7.1f} {12:6}" if before else f"{'':14}"
            print(f"{count:<46,} {cpu:7.3f} {grown} {wall:7.3f} {most:7.0f} {goal or '':6}"
                  f"{'  MISSED' if missed else ''}", flush=True)
            before = cpu


def main():
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    if not shutil.which("hb-view"):
        sys.exit("cut_process_bench.py: hb-view is not installed")
    with tempfile.TemporaryDirectory() as folder:
        bench = Bench(os.path.abspath(sys.argv[1]), folder)
        bench.pairs()
        bench.growth()


if __name__ == "__main__":
    main()
