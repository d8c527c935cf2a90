#!/usr/bin/env python3
"""Compares the manual pages, as mandoc shows them, with what "kerno help" prints, has mandoc, groff and
lexgrog judge them, and runs their examples.

usage: manual_pages_test.py KERNO PAGES
"""
import os
import pathlib
import re
import subprocess
import sys

import programs

KERNO = ""
PAGES = pathlib.Path()


def output_of(*words, **more):
    return subprocess.run(words, capture_output=True, check=True, **more).stdout.decode()


def shown(page, width):
    """A page as text, without the overstriking of terminals."""
    text = output_of("mandoc", "-T", "utf8", "-O", f"width={width}", str(page))
    return re.sub(".\b", "", text)


def plain(text):
    return re.sub(r"\s+", " ", text).strip()


def help_of(*words):
    return output_of(KERNO, *words, "--help") if words else output_of(KERNO, "help")


def listed(text, heading):
    """The entries of one part of a help: what stands on the left, and what on the right."""
    part = re.search(rf"^{heading}:\n(.*?)(?=^\S|\Z)", text, re.M | re.S)
    entries = []
    for line in part[1].splitlines() if part else ():
        if line[2:3].strip():
            # A long left side has the right one on the next line.
            is_long = bool(line[28:30].strip())
            entries.append([line.strip(), ""] if is_long else [line[:30].strip(), line[30:]])
        elif entries:
            entries[-1][1] += line[30:]
    return entries


def commands():
    return [name for name, _ in listed(help_of(), "Subcommands")]


class ManualPagesTest(programs.FolderTest):
    def check_entry(self, text, left, right, page):
        """An option with its value and default, and its description, stand in the page."""
        name, _, rest = left.partition(" ")
        value, _, default = rest.replace(" ...", "").partition("=")
        if rest.endswith(",..."):  # "TAG[=N],..." has no default
            value, default = rest, ""
        line = plain(f"{name} {value}") + (" ..." if left.endswith(" ...") else "")
        wanted = right[0].upper() + right[1:] if not right.split(" ")[0].endswith(":") else right
        wanted = wanted.rstrip(".") + "."
        if default:
            wanted += f" The default is {default}."
        at = text.find(f"{line} {plain(wanted)}")
        self.assertGreaterEqual(at, 0, f"{page}: {line} | {plain(wanted)}")

    def test_every_command_and_option_of_the_help_is_in_its_page(self):
        names = commands()
        self.assertGreaterEqual(len(names), 9)
        pages = {page.name for page in PAGES.glob("*.1")}
        self.assertEqual({f"kerno-{name}.1" for name in names} | {"kerno.1", "kerno-desktop.1"}, pages)
        overview = plain(shown(PAGES / "kerno.1", 500))
        count = 0
        for name, description in listed(help_of(), "Subcommands"):
            self.assertIn(f"kerno-{name}(1) " + plain(description)[0].upper() + plain(description)[1:], overview)
        for words in [(), *((name,) for name in names)]:
            page = "-".join(["kerno", *words])
            text, help_text = plain(shown(PAGES / f"{page}.1", 500)), help_of(*words)
            for heading in ("Options", "Series"):
                for left, right in listed(help_text, heading):
                    self.check_entry(text, left, right, page)
                    count += 1
            for inner, description in listed(help_text, "Subcommands") if words else ():
                arguments = [left.split()[0] for left, _ in listed(help_of(*words, inner), "Positionals")]
                wanted = plain(f"{inner} {' '.join(arguments)} {description[0].upper()}{description[1:]}.")
                self.assertIn(wanted, text)
        self.assertGreater(count, 140)

    def test_other_programs_find_nothing_wrong(self):
        for page in sorted(PAGES.glob("*.1")):
            with self.subTest(page.name):
                # In the folder where each finds the others. What it says of its own database is not ours.
                lint = subprocess.run(["mandoc", "-T", "lint", page.name], capture_output=True, cwd=PAGES)
                self.assertEqual((0, b""), (lint.returncode, lint.stdout), lint.stderr)
                made = subprocess.run(["man", "--warnings", "-E", "UTF-8", "-l", str(page)], capture_output=True,
                                      env={**os.environ, "LC_ALL": "C.UTF-8", "MANWIDTH": "80"})
                self.assertEqual((0, b""), (made.returncode, made.stderr))
                groff = re.sub(".\b|\x1b\\[[0-9;]*m", "", made.stdout.decode())
                for text in (groff, shown(page, 80)):
                    self.assertEqual([], [line for line in text.splitlines() if len(line) > 80])
                self.assertRegex(output_of("lexgrog", str(page)), rf'"{page.stem} - \w')
                # What one of them shows the other shows, too.
                letters = {c for c in shown(page, 80) if ord(c) > 0x2FF and not 0x2000 <= ord(c) < 0x2100}
                self.assertEqual(set(), letters - set(groff))

    def test_the_examples_work(self):
        place = self.folder / "bin"
        place.mkdir()
        try:
            os.link(KERNO, place / "kerno")  # settings may stand beside the program
        except OSError:
            (place / "kerno").write_bytes(pathlib.Path(KERNO).read_bytes())
            (place / "kerno").chmod(0o755)
        env = {**os.environ, "PATH": f"{place}:{os.environ['PATH']}", "LC_ALL": "C.UTF-8",
               "XDG_CONFIG_HOME": str(self.folder / "config")}
        blocks = []
        for page in sorted(PAGES.glob("kerno*.1")):
            part = re.search(r"^EXAMPLES\n(.*?)(?=^\S)", shown(page, 78), re.M | re.S)
            lines = part[1].splitlines() if part else []
            blocks += re.findall(r"(?:^ {11}.*\n?)+", "\n".join(lines), re.M)
        self.assertGreaterEqual(len(blocks), 15)
        for block in blocks:
            if "kerno-desktop " in block:
                continue
            with self.subTest(block):
                done = subprocess.run(["sh", "-e", "-c", block], cwd=self.folder, env=env, capture_output=True)
                self.assertEqual((0, b""), (done.returncode, done.stderr))
                for name in re.findall(r'-o "?([^\s"]+)', block):
                    pattern = re.sub(r"\{[^}]*\}", "*", name)
                    files = list(self.folder.glob(pattern))
                    self.assertTrue(files and all(file.stat().st_size > 0 for file in files), name)
                self.assertTrue(done.stdout)


if __name__ == "__main__":
    KERNO, PAGES = os.path.abspath(sys.argv.pop(1)), pathlib.Path(sys.argv.pop(1))
    programs.unittest.main()
