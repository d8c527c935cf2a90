#!/usr/bin/env python3
"""Runs series of "kerno cut": lists against Python's csv, files against single runs, names, failures,
stops in between.

usage: series_test.py KERNO ROWS_DUMP
"""
import codecs
import csv
import io
import json
import os
import pathlib
import pty
import random
import re
import shutil
import signal
import subprocess
import sys
import time
import unittest

import programs

KERNO, DUMP = [], ""
SANS = ["--face", "DejaVu Sans"]


def run(*arguments, **more):
    return programs.run([*KERNO, "cut", *arguments], **more)


def nasty_table(chance, separator):
    """Bytes that a table may hold, well and badly formed ones."""
    pieces = ["a", "é", "日本", "😀", " ", "''", ";" if separator != ";" else ",", "=1+2", "\\n", "{name}", "x" * 300]
    columns = chance.randint(1, 5)
    end = chance.choice(["\n", "\r\n", "\r"])
    lines = [separator.join(f"c{i}" for i in range(columns)) + end]
    for _ in range(chance.randint(0, 30)):
        fields = []
        for _ in range(columns if chance.random() < 0.9 else chance.randint(1, 7)):
            field = "".join(chance.choices(pieces, k=chance.randint(0, 4)))
            if chance.random() < 0.4:
                field += "".join(chance.choices(['""', separator, "\n", "\r\n", "\r", "b"], k=chance.randint(0, 3)))
                field = f'"{field}"' + (chance.choice(["", "", "", "x"]) if chance.random() < 0.1 else "")
            elif chance.random() < 0.1:
                field = "a" + field + '"'
            fields.append(field)
        lines.append(separator.join(fields) + end + (end if chance.random() < 0.1 else ""))
    text = "".join(lines)
    if chance.random() < 0.2:
        text = text.rstrip("\r\n")
    return text + (f'"open{separator}' if chance.random() < 0.05 else "")


def rows_of_csv(text, separator):
    """What csv reads: fields, or nothing where the row is no row of the table."""
    rows, header = [], None
    for row in csv.reader(io.StringIO(text, newline=""), delimiter=separator):
        if not row:
            continue
        header = header or row
        rows.append(row if len(row) == len(header) else None)
    return rows


def rows_are_strict(text, separator):
    try:
        list(csv.reader(io.StringIO(text, newline=""), delimiter=separator, strict=True))
    except csv.Error:
        return False
    return True


class ListTest(programs.FolderTest):
    def dump(self, data, *encoding):
        path = self.folder / "list.csv"
        path.write_bytes(data)
        out = subprocess.run([DUMP, str(path), *encoding], capture_output=True, check=True, timeout=60).stdout.decode()
        if "error " in out:
            return out
        lines = [line.split(" ")[:-1] for line in out.splitlines()]
        self.assertEqual([str(i) for i in range(len(lines))], [line[0] for line in lines])
        return [[bytes.fromhex(field).decode() for field in line[2:]] if line[1] == "ok" else None for line in lines]

    def test_csv_reads_the_same_rows(self):
        chance = random.Random(17)
        bad = 0
        for number in range(200):
            separator = chance.choice(",;\t")
            text = nasty_table(chance, separator)
            if "\r" in text and chance.random() < 0.3:
                text = text.replace("c0", "c0" * 40000, 1)  # a header over several pieces
            coding, mark = chance.choice([("utf-8", b""), ("utf-8", codecs.BOM_UTF8), ("utf-16-le", codecs.BOM_UTF16_LE),
                                          ("utf-16-be", codecs.BOM_UTF16_BE)])
            wanted = rows_of_csv(text, separator)
            found = self.dump(mark + text.encode(coding))
            if separator not in text.splitlines()[0]:  # of one column: any separator
                continue
            with self.subTest(number=number, text=text[:500]):
                if rows_are_strict(text, separator):
                    self.assertEqual(wanted, found)
                else:  # the reader that forgives gives rows that ours names as faults
                    bad += 1
                    self.assertEqual(len(wanted), len(found))
                    self.assertTrue(all(f is None or f == w for w, f in zip(wanted, found)))
                    self.assertIn(None, found)
        self.assertGreater(bad, 5)

    def test_pieces_of_a_long_list_end_anywhere(self):
        for coding, mark in (("utf-8", b""), ("utf-16-le", codecs.BOM_UTF16_LE)):
            for start in range(30):  # the first piece ends within the second row
                text = "a,b\r\n" + "x" * ((1 << 16) // len("x".encode(coding)) - 8 - start)
                text += ',\r\n"q""\r\n😀é",日\r\n\r\nz,\r\n'
                self.assertEqual(rows_of_csv(text, ","), self.dump(mark + text.encode(coding)), (coding, start))

    def test_encodings_and_what_is_no_table(self):
        for coding, name, text in (("cp932", "CP932", "表,能\nソ,十\n"), ("euc-jp", "EUC-JP", "表,能\nソ,十\n"),
                                   ("cp1252", "CP1252", "ä;ö\n€;ß\n"), ("utf-16-le", "UTF-16LE", "ä\tö\n😀\tß")):
            wanted = [re.split("[,;\t]", line) for line in text.splitlines()]
            self.assertEqual(wanted, self.dump(text.encode(coding), name), coding)
        self.assertEqual([["ä", "b"], None, ["x", "y"]], self.dump("ä,b\nü,\udcfc\nx,y".encode("utf-8", "surrogateescape")))
        self.assertEqual([["a", "b"], None, ["x", "y"]], self.dump(b"a,b\nu\0,v\nx,y"))
        self.assertEqual([["a", "b"], None, ["x", "y"]],
                         self.dump(b'a,b\n"' + b"u" * 100_000_000 + b'",v\nx,y'))
        for data in (b"", b"\n\r\n", codecs.BOM_UTF8):
            self.assertEqual("error holds no header\n", self.dump(data))
        self.assertIn("half a unit", self.dump(codecs.BOM_UTF16_LE + b"a\0,\0b\0\n\0x\0,"))


class SeriesTest(programs.FolderTest):
    def series(self, *arguments, table=None, status=0, warnings=None):
        """Runs in the folder; the lines of messages."""
        if table is not None:
            (self.folder / "list.csv").write_bytes(table if isinstance(table, bytes) else table.encode())
            arguments = ("--data", "list.csv", *arguments)
        found, out, err = run(*([] if "--face" in arguments else SANS), *arguments, cwd=self.folder)
        self.assertEqual(status, found, (arguments, out, err))
        return out, err.splitlines()

    def files(self, under="."):
        return sorted(str(p.relative_to(self.folder)) for p in (self.folder / under).rglob("*")
                      if p.is_file() and p.suffix != ".csv")

    def test_files_are_those_of_single_runs_for_any_number_of_jobs(self):
        table = ("name,table,width,face,weld,height\n"
                 '"Ann ""Q"" Lee",4,80,DejaVu Sans,text,9mm\nBoël,12,60,DejaVu Serif,off,1in\nAVA,7,,DejaVu Sans,glyph,9mm\n'
                 "日本,1,3cm,IPAMincho,text,12pt\n=SUM(A1),{name},9,DejaVu Sans,text,9mm\n")
        rows = list(csv.DictReader(io.StringIO(table))) * 6
        table = table.splitlines()[0] + "\n" + "".join(table.splitlines(True)[1:]) * 6
        for what, options in (
                ("size", ["--cap-height", "{height}", "--letter-spacing", "-1"]),
                ("fit", ["--fit", "{table}0x20mm", "--weld", "{weld}", "--layer", "L {name}"]),
                ("same", ["--em", "9mm", "--fallback", "IPAMincho", "--offset", "0.1"])):
            face = ["--face", "{face}"] if what == "size" else []
            told = set()
            for jobs in ("1", "2", "7"):
                *_, out = self.series(*face, *options, "--text", "{name}\\n\\\\{{Table {table:02}}}", "-o",
                                      f"{what}{jobs}/{{row:03}}-{{name}}.dxf", "-o", f"{what}{jobs}/{{n}}.svg",
                                      "--jobs", jobs, table=table, status=1)
                told.add("\n".join(out))
            self.assertEqual(1, len(told), told)
            alone = {}  # the files of single runs, by the names in the rows
            for number, row in enumerate(rows, 1):
                paths = [f"{{}}/{number}.svg", f"{{}}/{number:03}-{row['name'].replace(chr(34), '_')}.dxf"]
                if row["table"] == "{name}":
                    self.assertFalse((self.folder / paths[0].format(what + "1")).exists())
                    continue
                fill = {"{" + key + "}": value for key, value in row.items()}
                single = [re.sub(r"{\w+}", lambda m: fill[m[0]], option) for option in face + options]
                if row["name"] not in alone:
                    files = [self.folder / "alone.svg", self.folder / "alone.dxf"]
                    text = f"{row['name']}\n\\{{Table {row['table']:0>2}}}"
                    self.series(*single, "--text", text, *(word for file in files for word in ("-o", str(file))))
                    alone[row["name"]] = [file.read_bytes() for file in files]
                for path, wanted in zip(paths, alone[row["name"]]):
                    for jobs in "127":
                        self.assertEqual(wanted, (self.folder / path.format(what + jobs)).read_bytes(), (what, jobs, path))
            self.assertEqual(4, len(alone))

    def test_templates(self):
        table = "name,n,a:02,two,two\nx,5,q,1,2\n"
        for text, why in (
                ("{nmae}", 'text: there is no column "nmae"; the columns are name, n, a:02, two, two, and row and n'),
                ("{name", 'text: "{" has no partner; "{{" is a brace'), ("a}", 'text: "}" has no partner; "}}" is a brace'),
                ("{two}", 'text: two columns are called "two"'),
                ("{sheet}", "{sheet}: is known only where rows go on sheets (--sheet)"),
                ("{n:4}", 'text: "n:4" has no number of digits such as 04 after its colon')):
            self.assertEqual([f"kerno: {why}"], self.series("--text", text, "-o", "a.svg", table=table, status=2)[1])
        self.series("--text", "x", "-o", "{ row:03 }{n:02}{a:02}{{}}.svg", table=table)
        self.assertEqual(["00105q{}.svg"], self.files())  # the column "n" goes before the number
        _, err = self.series("--text", "{name:03}", "-o", "b.svg", table=table, status=1)
        self.assertEqual(['kerno: row 1: text: "name" is "x", no whole number'], err)
        for options, why in ((["--lines", "list.csv", "--count", "2"], "rows: are given more than once (--data, --lines, --count)"),
                             (["--rows", "3-2", "--count", "2"], '--rows: "3-2" ends before it begins'),
                             (["--resume"], "--resume: needs rows: --data, --lines or --count")):
            self.assertEqual([f"kerno: {why}"], self.series("--text", "x", "-o", "b.svg", *options, status=2)[1])

    def test_names_lead_nowhere_else_and_clash_before_anything_is_written(self):
        nasty = ["../../up", "/etc/x", "con", ".", "..", "", "a:b", "tab\there", "\u202eexe", "-o", "é" * 300, "a" * 200]
        table = "name\n" + "".join(f'"{name}"\n' for name in nasty)
        self.series("--text", "x{name}", "-o", "new/{row}/{name}/{name}.svg", table=table)
        self.assertEqual(len(nasty), len(self.files("new")))
        self.assertEqual(["new/1/_._.._up/_._.._up.svg", "new/3/_con/_con.svg", "new/5/_/_.svg"],
                         [f for f in self.files("new") if re.match("new/[135]/", f)])
        self.assertEqual([], [f for f in self.files() if not f.startswith("new/")])
        for name, row, why in (("{name}.svg", "x/y\nx:y\n", "x_y.svg: rows 1 and 2 would both write it"),
                               ("o/./{name}.svg", "a\nb\na\n", "o/a.svg: rows 1 and 3 would both write it"),
                               ("one.svg", "a\nb\n", "one.svg: rows 1 and 2 would both write it")):
            _, err = self.series("--text", "x", "-o", name, "--rows", "1", table="name\n" + row, status=1)
            self.assertEqual([f"kerno: {why}; nothing is written"], err)
        self.series("--text", "x", "-o", "{name}.svg", "-o", "./{name}.svg", table="name\na\n", status=1)
        self.assertEqual([], [f for f in self.files() if not f.startswith("new/")])
        self.series("--text", "x", "-o", "case/{name}.svg", table="name\nAnn\nann\nANN\n")  # told apart here
        self.assertEqual(3, len(self.files("case")))

    def test_files_that_are_there_stay_unless_replaced(self):
        lines = ["--lines", "lines.txt", "-o", "{line}.svg"]
        (self.folder / "lines.txt").write_bytes(codecs.BOM_UTF8 + "eins\r\n\r\nzwei\rdrei".encode())
        (self.folder / "zwei.svg").write_text("mine")
        out, err = self.series(*lines, status=1)
        self.assertEqual(["kerno: row 2: files that are there are kept (--replace writes them again, --resume takes them "
                          "for done)"], err)
        self.assertRegex(out, r"^3 rows: 2 made, 1 kept, 2 files, \d+ bytes\n$")
        self.series(*lines, "--resume")
        self.assertEqual("mine", (self.folder / "zwei.svg").read_text())
        self.series(*lines, "--replace", "--quiet")
        self.assertNotEqual("mine", (self.folder / "zwei.svg").read_text())
        self.assertEqual(["drei.svg", "eins.svg", "lines.txt", "zwei.svg"], self.files())

    def test_failed_rows_can_be_given_back(self):
        for start, coding, end in ((b"", "utf-8", "\n"), (codecs.BOM_UTF16_LE, "utf-16-le", "\r\n"), (b"", "cp1252", "\r\n")):
            rows = ["size;näme", '5mm;"a;""b"', "wide;c", '6mm;"d', 'd"', "bad;é", "1;2;3", "7mm;€"]
            table = start + "".join(row + end for row in rows).encode(coding)
            encoding = ["--encoding", coding.replace("utf-16-le", "UTF-16LE")]
            fields = ["--text", "{näme}", "--em", "{size}", "-o", "t{row}/{n:02}.svg", *encoding]
            _, err = self.series(*fields, "--failed", "failed.csv", table=table, status=1)
            self.assertEqual(["row 2", "row 4", "row 5"], [line.split(": ")[1] for line in err])
            left = ["size;näme;row;n", "wide;c;2;2", "bad;é;4;4", "1;2;3;5;5"]
            failed = (self.folder / "failed.csv").read_bytes()
            self.assertEqual(start + "".join(row + end for row in left).encode(coding), failed)
            mended = failed.decode(coding).replace("wide", "8mm").replace("bad", "9mm")
            self.series(*fields, "--failed", "again.csv", table=mended.encode(coding), status=1)
            self.assertTrue((self.folder / "t2/02.svg").exists() and (self.folder / "t4/04.svg").exists())
            again = (self.folder / "again.csv").read_bytes().decode(coding).removeprefix("\ufeff").splitlines()
            self.assertEqual([left[0], left[3]], again)
            for path in self.folder.glob("t*/*"):
                path.unlink()
        self.series("--count", "3", "--text", "{n}", "--em", "5", "-o", "c{n}.svg", "--failed", "failed.csv")
        self.assertEqual("n\n", (self.folder / "failed.csv").read_text())

    def test_the_list_itself_takes_no_failed_rows(self):
        (self.folder / "other.csv").symlink_to("list.csv")
        for name in ("list.csv", "./other.csv"):
            _, err = self.series("--text", "{a}", "-o", "{a}.svg", "--failed", name, table="a\nx\n", status=2)
            self.assertEqual([f'kerno: --failed: "{name}" is the list itself'], err)
        self.assertEqual(("a\nx\n", []), ((self.folder / "list.csv").read_text(), self.files()))

    def test_what_no_stopped_run_leaves_is_not_done(self):
        (self.folder / "a.svg").mkdir()
        (self.folder / "b.svg").touch()
        out, _ = self.series("--text", "{a}", "-o", "{a}.svg", "--resume", "--json", table="a\na\nb\nc\n", status=1)
        self.assertEqual([("failed", "a.svg: is a folder, no file that is done"),
                          ("failed", "b.svg: is empty: no earlier run wrote it"), ("made", None)],
                         [(row["outcome"], row.get("error")) for row in map(json.loads, out.splitlines())])

    @unittest.skipUnless(shutil.which("parallel"), "GNU Parallel is not installed")
    def test_hosts_get_the_arguments_as_they_are(self):
        ssh = self.folder / "ssh"
        ssh.write_text('#!/bin/sh\nwhile [ "$1" != -- ]; do shift; done\nshift\nunset SHELL\nexec sh -c "$*"\n')
        ssh.chmod(0o755)
        (self.folder / "hosts").write_text("1/one\n1/two\n")
        script = pathlib.Path(__file__).resolve().parents[2] / "examples/cluster/hosts.sh"
        words = ["cut", *SANS, "--count", "90", "--text", "it's {n} {{1}} {{#}} {{.}} {{}} $HOME\nx"]

        def hosts(*more, rows="90", shard="7"):
            return subprocess.Popen(["sh", script, "hosts", rows, shard, *words, "-o", "t/{n} {{1}}.svg", *more],
                                    cwd=self.folder, stderr=subprocess.PIPE, start_new_session=True,
                                    env={**os.environ, "KERNO": os.path.abspath(KERNO[0]), "SSH": str(ssh)})
        killed = hosts()
        began = time.time()
        while not list(self.folder.glob("t/*.svg")) and time.time() - began < 60:  # no poll: until it is waited for,
            time.sleep(0.002)                                                      # the group is there, ended or not
        os.killpg(killed.pid, signal.SIGKILL)
        killed.communicate()
        for refused in (hosts(shard="8"), hosts("--em", "5"), hosts(rows="0"), hosts("--failed=x"), hosts("--sheet", "1x1")):
            self.assertRegex(refused.communicate()[1].decode(), "^hosts.sh: ")
            self.assertEqual(2, refused.returncode)
        again = hosts()
        self.assertEqual((0, 0), (len(again.communicate()[1]), again.returncode))
        self.series(*words[3:], "-o", "u/{n} {{1}}.svg")
        self.assertEqual(90, len(list(self.folder.glob("t/*"))))
        for path in self.folder.glob("u/*"):
            self.assertEqual(path.read_bytes(), (self.folder / "t" / path.name).read_bytes())

    def test_one_bad_row_in_a_million(self):
        with open(self.folder / "million.csv", "w") as file:
            file.write("id,name\n")
            file.writelines(f"{i},n\n" if i != 999_998 else "x\n" for i in range(1, 1_000_001))
        out, err = self.series("--data", "million.csv", "--rows", "999990-", "--text", "{id}", "-o", "m/{id}.svg", "--json",
                               status=1)
        self.assertEqual(["kerno: row 999998: has 1 field, the header has 2"], err)
        lines = [json.loads(line) for line in out.splitlines()]
        self.assertEqual(list(range(999990, 1000001)), [line["row"] for line in lines])
        self.assertEqual(["failed"], [line["outcome"] for line in lines if line["row"] == 999998])
        self.assertEqual([f"m/{i}.svg" for i in range(999990, 1000001) if i != 999998],
                         [line["files"][0]["name"] for line in lines if "files" in line])
        self.assertEqual(10, len(self.files("m")))

    def test_killed_and_resumed(self):
        words = [*KERNO, "cut", *SANS, "--count", "400", "--text", "Plate {n:04}", "-o", "p/{n:04}.dxf", "-o", "q/{n}.svg"]
        for _ in range(3):
            child = subprocess.Popen([*words, "--resume", "--quiet"], cwd=self.folder)
            begun = len(self.files())
            while child.poll() is None and len(self.files()) < begun + 60:
                time.sleep(0.002)
            child.send_signal(signal.SIGKILL)
            child.wait()
        before = {name: (self.folder / name).stat().st_ino for name in self.files()}
        self.assertLess(len(before), 800)
        left = [self.folder / "p" / name for name in (".kerno-1-2.tmp", ".kerno-1-3.tmp", ".kerno-notes.tmp")]
        for path, age in zip(left, (100, 0, 100)):
            path.write_text("half")
            os.utime(path, (time.time() - age,) * 2)
        self.assertEqual(0, programs.run([*words, "--resume"], cwd=self.folder)[0])
        self.assertEqual([False, True, True], [path.exists() for path in left])
        for path in left[1:]:
            path.unlink()
        after = {name: (self.folder / name).stat().st_ino for name in self.files()}
        self.assertEqual(before, {name: after[name] for name in before})  # whole files are not written again
        self.assertEqual(800, len(after))
        self.series("--count", "400", "--text", "Plate {n:04}", "-o", "r/{n:04}.dxf")
        for number in range(1, 401):
            self.assertEqual((self.folder / f"r/{number:04}.dxf").read_bytes(), (self.folder / f"p/{number:04}.dxf").read_bytes())

    def test_full_disk_stops_the_run(self):
        script = 'mount -t tmpfs -o size=1m none small && cd small && "$@"; status=$?; ls d | wc -l; exit $status'
        (self.folder / "small").mkdir()
        done = subprocess.run(["unshare", "-rm", "sh", "-c", script, "sh", *map(os.path.abspath, KERNO), "cut", *SANS,
                               "--count", "2000", "--text", "No. {n:04}", "-o", "d/{n}.dxf", "--failed", "../failed.csv"],
                              cwd=self.folder, capture_output=True, text=True)
        if "unshare" in done.stderr or "mount" in done.stderr:
            self.skipTest("no file systems can be mounted here")
        self.assertEqual(1, done.returncode)
        made = int(done.stdout.splitlines()[1])
        self.assertIn("the disk is full", done.stderr)
        self.assertRegex(done.stderr, r"stops, for files cannot be written: \d+ rows are not tried \(--resume goes on\)")
        rows = (self.folder / "failed.csv").read_text().splitlines()
        self.assertEqual("n", rows[0])
        self.assertEqual(2000, made + len(rows) - 1)

    def test_a_terminal_is_shown_progress_and_a_pipe_nothing(self):
        leader, follower = pty.openpty()
        child = subprocess.Popen([*KERNO, "cut", *SANS, "--count", "200000", "--text", "Progress {n}", "-o", "p/{n}.dxf"],
                                 cwd=self.folder, stderr=follower, stdout=subprocess.DEVNULL)
        os.close(follower)
        began, text = time.time(), b""
        while time.time() - began < 4.5:
            text += os.read(leader, 1000) if child.poll() is None else b""
            if text.count(b" a second") >= 3:
                break
        child.kill()
        child.wait()
        os.close(leader)
        shown = re.findall(rb"(\d+) of 200000 rows, \d+ a second", text)
        self.assertTrue(2 <= len(shown) <= time.time() - began + 1, text)
        self.assertEqual(sorted(map(int, shown)), list(map(int, shown)))


if __name__ == "__main__":
    KERNO = programs.command(sys.argv.pop(1))
    DUMP = os.path.abspath(sys.argv.pop(1))
    unittest.main()
