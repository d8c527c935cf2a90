#!/usr/bin/env python3
"""The series of the window's Cut page: its rows against Python's csv, its files against those of "kerno cut".

usage: cut_series_test.py KERNO SERIES_STEPS
"""
import csv
import io
import os
import random
import subprocess
import sys
import time
import unittest

import programs

KERNO, STEPS = [], ""


def table(chance, rows, separator, end):
    """A table larger than what is read at a time, with fields of all kinds."""
    pieces = ["a", "名札", "テ", "é" if separator == "\t" else "ﾃ", " ", "x" * 40, ";", "{n}"]
    out = io.StringIO(newline="")
    quoting = csv.QUOTE_ALL if end == "\r" else csv.QUOTE_MINIMAL  # which leaves a line feed bare then
    writer = csv.writer(out, delimiter=separator, lineterminator=end, quoting=quoting)
    writer.writerow(["name", "size", "note"])
    for n in range(rows):
        note = "".join(chance.choices(pieces + ['"', separator, "\n"], k=chance.randint(0, 5)))
        writer.writerow(["".join(chance.choices(pieces, k=3)), n, note])
    return out.getvalue()


class SeriesTest(programs.FolderTest):
    def setUp(self):
        super().setUp()
        self.steps = subprocess.Popen([STEPS], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.addCleanup(self.end)

    def end(self):
        self.steps.communicate()
        self.assertEqual(self.steps.returncode, 0)

    def ask(self, *words):
        self.steps.stdin.write("\t".join(map(str, words)) + "\n")
        self.steps.stdin.flush()
        return self.steps.stdout.readline().rstrip("\n")

    def open(self, data, name="list.csv"):
        path = self.folder / name
        path.write_bytes(data.encode() if isinstance(data, str) else data)
        return self.ask("open", path)

    def write(self, folder, text="{name}", names="{row:03}-{name}", formats="dxf", existing="ask", most=0, options=()):
        return self.ask("write", existing, most, text, names, self.folder / folder, formats, *options)

    def row(self, number):
        answer = self.ask("row", number)
        return [bytes.fromhex(field).decode() for field in answer.split(" ")[1:]] if answer.startswith("ok") else answer

    def files(self, folder):
        root = self.folder / folder
        return {str(f.relative_to(root)): f.read_bytes() for f in root.rglob("*") if f.is_file()} if root.exists() else {}

    def test_any_row_is_that_of_csv(self):
        chance = random.Random(16)
        for encoding, separator, end in (("utf-8", ",", "\n"), ("utf-16", "\t", "\r\n"), ("cp932", ";", "\r\n"),
                                         ("utf-8-sig", ",", "\r"), ("euc_jp", ",", "\n")):
            with self.subTest(encoding):
                text = table(chance, 9000, separator, end)
                rows = list(csv.reader(io.StringIO(text, newline=""), delimiter=separator))[1:]
                self.assertEqual(self.open(text.encode(encoding)), "ok 9000 name size note")
                for number in [1, 2, 512, 513, 514, 9000, 8999, *chance.choices(range(1, 9001), k=80)]:
                    self.assertEqual(self.row(number), rows[number - 1], number)
        self.assertIn("has no row 9001", self.ask("row", 9001))
        # Excel's file of a western desktop, and lines.
        self.assertEqual(self.open("name\nMüller\nKöln – Süd\n".encode("cp1252")), "ok 2 name")
        self.assertEqual(self.row(2), ["Köln – Süd"])
        self.assertEqual(self.open('a,"b\n\nc\n', "list.txt"), "ok 2 line")
        self.assertEqual(self.row(1), ['a,"b'])

    def test_a_changed_list_is_read_again(self):
        self.open("name\nA\nB\n")
        self.assertEqual(self.row(2), ["B"])
        (self.folder / "list.csv").write_text("name\nA\nX\nC and more\n")
        self.assertEqual([self.row(2), self.row(3)], [["X"], ["C and more"]])
        os.remove(self.folder / "list.csv")
        self.assertTrue(self.row(1).startswith("error "))

    def test_files_are_those_of_the_command_line(self):
        self.open('name,size,angle\nAnna,12,0\n"Ö, {B}",30,15\n名札,8mm,-3\nlong name,20,0\n')
        (self.folder / "text").write_text("{name}\nno. {row} {{x}}")
        options = ["--face=DejaVu Sans", "--cap-height={size}", "--angle={angle}", "--fallback=IPAMincho",
                   "--layer={name}", "--weld=glyph"]
        sheets = ["--sheet=500x300", "--gap=3mm", "--numbers", "--frame=220x120", "--copies=3"]
        for case, names, formats, more in (("plain", "{row:03}-{name}", "dxf,svg", []),
                                           ("a {b} 'c'", "{name}/{n}.v2", "dxf", []),
                                           ("sheets", "sheet-{sheet:02}", "svg", sheets)):
            with self.subTest(case):
                text = "{name}\\nno. {row} {{x}}"
                end = self.write(case, text, names, formats, options=options + more)
                wanted = self.folder / "wanted" / case
                out = [f"{wanted}/{names}.{ext}".replace("a {b}", "a {{b}}") for ext in formats.split(",")]
                done = programs.run([*KERNO, "cut", "--data", self.folder / "list.csv", "--text-file", self.folder / "text",
                                     *options, *more, *[word for name in out for word in ("-o", name)]])
                self.assertEqual((done[0], end.split()[0]), (0, "done"), done[2] + end)
                self.assertEqual(self.files(case), self.files(wanted))
                self.assertGreater(len(self.files(case)), 1)
                self.assertEqual(int(end.split()[3]), len(self.files(case)))

    def test_files_that_are_there(self):
        self.open("name\nA\nB\nC\n")
        options = ["--face=DejaVu Sans"]
        sheet = [*options, "--sheet=200x200"]
        (self.folder / "out").mkdir()
        for name in ("002-B.dxf", "sheet-01.dxf"):
            (self.folder / "out" / name).write_text("mine")
        self.assertEqual(self.write("out", options=options), "stand 0 0 0 1")
        self.assertEqual(self.write("out", names="sheet-{sheet:02}", options=sheet), "stand 0 0 0 1")
        self.assertEqual(len(self.files("out")), 2)
        self.assertEqual(self.write("out", existing="keep", options=options), "failed 3 0 2 0")
        self.assertEqual(self.files("out")["002-B.dxf"], b"mine")
        self.assertEqual(self.write("out", existing="replace", options=options), "done 3 0 3 0")
        self.assertEqual(self.write("out", names="sheet-{sheet:02}", existing="replace", options=sheet), "done 3 0 1 0")
        self.assertNotIn(b"mine", self.files("out").values())

    def test_what_is_wrong(self):
        self.open('name,size\nA,10\nB,none\n"C,1\n')
        options = ["--face=DejaVu Sans", "--cap-height={size}"]
        end, *failures = self.write("out", options=options).split("\t")
        self.assertEqual(end, "failed 3 2 1 0")
        self.assertEqual([f[:20] for f in failures], ["2 --cap-height: \"non", "3 : is not whole: a "])
        for change, end, why in (({"names": "same"}, "failed", "rows 1 and 2"), ({"text": "{nme}"}, "usage", "no column"),
                                 ({"names": ""}, "usage", "no file"), ({"names": "{sheet}"}, "usage", "{sheet}"),
                                 ({"options": ["--face=No Such Face"]}, "face", "No Such Face")):
            answer = self.write("out2", **{"options": options, **change})
            self.assertTrue(answer.startswith(end) and why in answer, answer)
        self.assertEqual(self.files("out2"), {})

    def test_cancel_leaves_whole_files(self):
        self.open("name\n" + "".join(f"name {n}\n" for n in range(1000)))
        for names, options in (("{row:04}", []), ("{sheet}", ["--sheet=300x100", "--pack"])):
            with self.subTest(names):
                options = ["--face=DejaVu Sans", *options]
                began = time.monotonic()
                self.assertTrue(self.write("all", names=names, existing="replace", options=options).startswith("done"))
                whole = time.monotonic() - began
                began = time.monotonic()
                end = self.write("part", names=names, most=10, existing="replace", options=options)
                self.assertLess(time.monotonic() - began, whole)
                everything, some = self.files("all"), self.files("part")
                self.assertTrue(end.startswith("stopped "), end)
                self.assertTrue(10 <= len(some) < len(everything), len(some))
                self.assertEqual(some, {name: everything[name] for name in some})
                for folder in ("all", "part"):
                    for file in self.files(folder):
                        os.remove(self.folder / folder / file)


if __name__ == "__main__":
    KERNO, STEPS = programs.command(sys.argv[1]), sys.argv[2]
    unittest.main(argv=sys.argv[:1])
