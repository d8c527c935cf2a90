#!/usr/bin/env python3
"""Runs the real command line: exit status, messages, files left, and its numbers computed once more here.

usage: command_line_test.py KERNO
"""
import json
import math
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

import programs

KERNO = []
ON_WINDOWS = False
SANS = ["--face", "DejaVu Sans"]


def run(*arguments, stdin=b"", env=None):
    return programs.run([*KERNO, *arguments], input=stdin, env={**os.environ, **(env or {})})


def contours(*arguments, **more):
    status, out, err = run("contours", "--json", *arguments, **more)
    assert status == 0, err
    return json.loads(out)


class CommandLineTest(programs.FolderTest):
    def files(self):
        return sorted(p.name for p in self.folder.iterdir())

    def test_what_is_wrong_is_named_and_leaves_nothing(self):
        out = str(self.folder / "out.dxf")
        (self.folder / "latin1.txt").write_bytes(b"caf\xe9")
        (self.folder / "adir.dxf").mkdir()
        here = lambda name: str(self.folder / name)
        convert = ["convert", "A", *SANS]
        cases = [  # arguments, exit status, what standard error must hold
            *([] if ON_WINDOWS else [([], 2, "usage")]),  # there is always a display there
            (["frobnicate", "A", "-o", out], 2, '"frobnicate": is no command of kerno (kerno help lists them)'),
            (["convret", "A", "-o", out], 2, 'no command of kerno; the nearest is "convert"'),
            (["convert", "A", "--text", "B", "-o", out], 2, "more than once"),
            (["convert", "", *SANS, "-o", out], 2, "holds no text"),
            (["convert", "--text=", "-o", out], 2, "--text: needs a value (TEXT)"),
            (["convert", "--text=", "--text=", "-o", out], 2, "--text: needs a value (TEXT)"),
            (["convert", "--text", "--face=", *SANS, "-o", out, "B"], 2, "more than once"),
            ([*convert, "-o", "-"], 2, "-o -: needs --format"),
            ([*convert, "-o", ""], 2, "-o: the name is empty"),
            (["convert", "--ipx", here("none.ipx"), "-o", out], 1, "none.ipx"),
            (["convert", "--ipx", here("none.ipx"), "A", "-o", out], 2, "TEXT: does not go with"),
            ([*convert, "-o", here("a.doc")], 2, 'a.doc: the format "doc" is unknown'),
            ([*convert, "-o", here("a.stl")], 2, '"stl" is known but not written'),
            ([*convert, "-o", here("adir.dxf")], 1, "adir.dxf"),
            ([*convert, "-o", "/proc/a.dxf"], 1, "/proc/a.dxf"),
            ([*convert, "--height", "12x", "-o", out], 2, '--height: "12x" is not a whole number'),
            ([*convert, "--height", "99999", "-o", out], 2, '"99999" is outside'),
            ([*convert, "--scale", "1e999", "-o", out], 2, "--scale"),
            ([*convert, "--scale", "1e308", "-o", out], 2, "--scale and --at: take the drawing out"),
            ([*convert, "--at", "0,-1e15", "-o", out], 2, "--at: so far away the drawing loses"),
            ([*convert, "--scale", "nan", "-o", out], 2, "--scale"),
            ([*convert, "--at", "5", "-o", out], 2, '--at: "5" is not a point X,Y'),
            (["convert", "A", "--face", "Deja Vu Sans", "-o", out], 3, "DejaVu Sans"),
            (["convert", "A", "--face", "x" * 300, "-o", out], 3, "is not installed"),
            (["convert", "A", *SANS, "--vertical", "-o", out], 3, 'has no "@" form'),
            (["convert", "A龍", *SANS, "--strict", "-o", out], 3, "龍 (U+9F8D)"),
            *([] if ON_WINDOWS else [  # the widest outline is the system's matter
                (["convert", "iW", *SANS, "--width", "18000", "--strict", "-o", out], 3, "W (U+0057)")]),
            (["convert", "--text-file", here("adir.dxf"), "-o", out], 1, "is a folder"),
            (["convert", "--text-file", here("latin1.txt"), "-o", out], 1, "byte offset 3"),
        ]
        before = self.files()
        for arguments, expected, message in cases:
            with self.subTest(" ".join(arguments)[:100]):
                status, stdout, stderr = run(*arguments)
                self.assertEqual((expected, ""), (status, stdout), stderr)
                self.assertIn(message, stderr)
                for line in stderr.splitlines():
                    self.assertTrue(line.startswith("kerno: "), line)
                self.assertEqual(before, self.files())

    def test_a_failed_output_does_not_stop_the_others(self):
        status, _, err = run("convert", "A", *SANS, "-o", str(self.folder / "x/y.dxf"),
                             "-o", str(self.folder / "B.DXF"))
        self.assertEqual(1, status, err)
        self.assertEqual(["B.DXF"], self.files())
        if not ON_WINDOWS:  # it knows no full devices
            status, _, err = run("convert", "A", *SANS, "--format", "dxf", "-o", "/dev/full")
            self.assertEqual((1, "kerno: /dev/full: the disk is full\n"), (status, err))

    def test_a_parts_file_gives_the_same_drawing_again(self):
        ipx, dxf = self.folder / "a.ipx", self.folder / "a.dxf"
        self.assertEqual(0, run("convert", "AHEL", "--face", "DejaVu Sans", "-o", str(ipx), "-o", str(dxf))[0])
        for arguments in (["-o", str(self.folder / "b.dxf")], ["-o", "-", "--format", "DXF"]):
            status, out, err = run("convert", "--ipx", str(ipx), *arguments)
            self.assertEqual((0, ""), (status, err))
        self.assertEqual(dxf.read_bytes(), (self.folder / "b.dxf").read_bytes())
        self.assertEqual(dxf.read_bytes().decode("ascii"), out)

    def test_a_parts_file_without_elements_is_warned_of(self):
        ipx, out = self.folder / "a.ipx", ["-o", str(self.folder / "b.ipl")]
        self.assertEqual(0, run("convert", "A", *SANS, "-o", str(ipx))[0])
        whole = ipx.read_bytes()
        for lines in (whole.replace(b"\r\n", b"\n"), b"\xff\xfe", b"not of parts"):
            ipx.write_bytes(lines)
            status, _, err = run("convert", "--ipx", str(ipx), *out)
            self.assertEqual(0, status)
            self.assertIn("a.ipx: holds no elements", err)

    def test_placement_computed_once_more(self):
        cases = [(0, 0, (0, 0)), (15, 0, (7, -3)), (0, 33.5, (0, 0)), (-20, 270, (1000.25, 4))]
        for slant, angle, at in cases:
            arguments = ["AgÖ8\r\nx", *SANS, "--height", "37", "--slant", str(slant),
                         "--angle", str(angle), "--at", f"{at[0]},{at[1]}"]
            laid = contours(*arguments, "--unplaced")["points"]
            xs, ys = [p[0] for p in laid] + [0], [p[1] for p in laid] + [0]
            cx, cy = (min(xs) + max(xs)) / 2, (min(ys) + max(ys)) / 2
            placed = contours(*arguments)["points"]
            for (x, y), got in zip(laid, placed):
                a, d = math.radians(slant), y - cy
                x, y = x - d * math.sin(a), cy + d * math.cos(a)
                a, dx, dy = math.radians(angle), x - cx, y - cy
                x, y = cx + dx * math.cos(a) - dy * math.sin(a), cy + dy * math.cos(a) + dx * math.sin(a)
                self.assertAlmostEqual(x + at[0] - cx, got[0], 9, (slant, angle))
                self.assertAlmostEqual(-y + at[1] + cy, got[1], 9, (slant, angle))

    def test_standard_streams_that_are_closed_or_close(self):
        if ON_WINDOWS:
            self.skipTest("descriptors are no names of streams there")
        shell = lambda line: subprocess.run(["bash", "-c", line, "bash", *KERNO], capture_output=True,
                                            cwd=self.folder, env={**os.environ, "TMPDIR": str(self.folder)})
        warned = """ convert "A鬱" --face "DejaVu Sans" -o x.emf"""
        for folder, closed in (("a", ""), ("b", " <&- 2>&-")):
            shell(f'mkdir {folder}; cd {folder}; "$@"{warned}{closed}')
        self.assertEqual((self.folder / "a/x.emf").read_bytes(), (self.folder / "b/x.emf").read_bytes())
        # A pipe that closes ends the program as it does others, and nothing stays.
        before = self.files()
        done = shell("""{ yes 'many letters' | head -5000 | "$@" convert --text-file - --face "DejaVu Sans" """
                     """--format dxf -o -; echo $? >&2; } | head -c 10""")
        self.assertEqual(done.stderr.split()[-1:], [b"141"])
        self.assertEqual(self.files(), before)
        # Every file is whole: that is said when the summary has nowhere to go.
        done = shell('"$@" convert A --face "DejaVu Sans" -o a.dxf >/dev/full')
        self.assertEqual(done.returncode, 1)
        self.assertIn(b"every file is whole", done.stderr)
        done = shell('"$@" convert A --face "DejaVu Sans" --layer "x\033[1m" -o $\'b\\e[1m.dxf\'; cat b*')
        self.assertNotIn(b"\x1b", done.stdout + done.stderr)

    def test_text_of_the_standard_input(self):
        for encoding in ("utf-8", "utf-16"):  # the latter with a mark
            self.assertEqual(contours("A\r\nあ𠮷", "--face", "IPAMincho"),
                             contours("--text-file", "-", "--face", "IPAMincho",
                                      stdin="A\nあ𠮷".encode(encoding)))

    def test_file_names_are_bytes(self):
        if ON_WINDOWS:
            self.skipTest("file names are UTF-16 there")
        folder = os.fsencode(self.folder)
        text, drawing = folder + b"/caf\xe9.txt", folder + b"/caf\xe9.dxf"
        with open(text, "wb") as file:
            file.write(b"A")
        status, _, err = run("convert", "--text-file", text, *SANS, "-o", drawing, "--quiet")
        self.assertEqual((0, ""), (status, err))
        self.assertEqual([b"caf\xe9.dxf", b"caf\xe9.txt"], sorted(os.listdir(folder)))

    def test_warnings_tell_and_do_not_stop(self):
        path = str(self.folder / "a.dxf")
        zero = self.folder / "zero.txt"
        zero.write_bytes(b"AB\0C")
        cases = [
            (["A龍鬱龍", *SANS], "no glyph in DejaVu Sans: 龍 (U+9F8D), 鬱 (U+9B31)"),
            (["漢ー漢", "--face", "IPAGothic", "--vertical"], "--pitch cell"),
            (["   ", *SANS], "has no outlines"),
            (["--text-file", str(zero), *SANS], "ends at a NUL after 2 characters"),
            (["8" * 16, *SANS, "--height", "30000"], "a smaller drawing keeps its fractions"),
            (["A", "--face", "Nowhere Gothic", "--substitute"], "takes its place"),
        ]
        if not ON_WINDOWS:
            cases.append((["iWW", *SANS, "--width", "18000"],
                          "no outline of this size in DejaVu Sans: W (U+0057)\n"))
        for arguments, message in cases:
            with self.subTest(message):
                status, out, err = run("convert", *arguments, "-o", path)
                self.assertEqual(0, status, err)
                self.assertEqual(1, err.count(message), err)
                self.assertIn("contours", out)
                self.assertEqual((0, "", ""), run("convert", *arguments, "--quiet", "-o", path))

    def test_texts_that_begin_like_an_option(self):
        for arguments in (["--", "-abc"], ["--text", "-abc"]):
            status, out, err = run("convert", *SANS, "-o", str(self.folder / "a.dxf"), *arguments)
            self.assertEqual((0, ""), (status, err), arguments)
            self.assertIn("4 characters", out)

    def test_faces_of_the_machine_and_damaged_files_beside_them(self):
        if ON_WINDOWS:
            self.skipTest("the system chooses the files there")
        fonts = self.folder / "fonts"
        fonts.mkdir()
        good = subprocess.run(["fc-match", "-f", "%{file}", "DejaVu Sans:style=Book"], check=True,
                              capture_output=True).stdout.decode()
        data = pathlib.Path(good).read_bytes()
        (fonts / "good.ttf").write_bytes(data)
        (fonts / "cut.ttf").write_bytes(data[:5000])
        (fonts / "zero.ttf").write_bytes(b"")
        (fonts / "noise.otf").write_bytes(bytes(range(256)) * 64)
        config = self.folder / "fonts.conf"
        config.write_text(f"<fontconfig><dir>{fonts}</dir><cachedir>{self.folder}/c</cachedir></fontconfig>")
        env = {"FONTCONFIG_FILE": str(config)}
        status, out, err = run("faces", "--json", env=env)
        self.assertEqual((0, [["good.ttf", ["DejaVu Sans"]]], ""),
                         (status, [[pathlib.Path(f["file"]).name, f["names"]] for f in json.loads(out)], err))
        self.assertIn("noise.otf", run("faces", "--skipped", env=env)[2])
        (fonts / "zero.ttf").unlink()
        for command in (["contours"], ["cut", "-o", self.folder / "a.dxf"]):
            status, _, err = run(*command, "A", "--face", "Nosuch", env=env)
            self.assertEqual(3, status, err)
            self.assertIn('face: "Nosuch" is not installed', err)
        self.assertEqual(contours("AB", *SANS), contours("AB", "--face", "dejavu SANS", env=env))

        bold = pathlib.Path(subprocess.run(["fc-match", "-f", "%{file}", "DejaVu Sans:style=Bold"], check=True,
                                           capture_output=True).stdout.decode())
        shutil.copy(bold, fonts / "bold.ttf")
        drawing = self.folder / "a.dxf"
        writing = [["convert", "-o", drawing], ["cut", "-o", drawing], ["contours"], ["measure"]]
        for name, more in (("bold.ttf", ["--style", "Bold"]), ("good.ttf", [])):
            self.assertEqual(0, run("contours", "A", *SANS, *more, env=env)[0])
            os.truncate(fonts / name, 0)  # the list of the faces keeps it
            for command in writing:
                status, out, err = run(*command, "A", *SANS, *more, env=env)
                self.assertEqual((1, ""), (status, out), f"{command} {err}")
                self.assertIn(f"{name}: is an empty file", err)
        self.assertFalse(drawing.exists())
        config.write_text("<fontconfig/>")
        for command in (["contours"], ["measure"], ["measure", "--height", "6000"]):
            self.assertEqual((3, "", "kerno: faces: the system has none installed\n"), run(*command, "A", env=env))

    def test_a_font_that_may_not_be_read_is_named(self):
        if ON_WINDOWS or os.geteuid() != 0:
            self.skipTest("only a superuser of POSIX can be somebody else")
        self.folder.chmod(0o755)
        fonts = self.folder / "fonts"
        fonts.mkdir()
        good = subprocess.run(["fc-match", "-f", "%{file}", "DejaVu Sans:style=Book"], check=True,
                              capture_output=True).stdout.decode()
        shutil.copy(good, fonts / "closed.ttf")
        (fonts / "closed.ttf").chmod(0o600)
        config = self.folder / "fonts.conf"
        config.write_text(f"<fontconfig><dir>{fonts}</dir><cachedir>{self.folder}/c</cachedir></fontconfig>")
        (self.folder / "c").mkdir(mode=0o777)
        (self.folder / "c").chmod(0o777)
        program = shutil.copy(KERNO[0], self.folder / "kerno")
        for command in ("contours", "cut"):
            done = programs.run([program, command, "A", *SANS, *(["-o", "-", "--format", "svg"] * (command == "cut"))],
                                env={"FONTCONFIG_FILE": str(config), "ASAN_OPTIONS": "detect_leaks=0"}, cwd="/",
                                user=65534, group=65534, extra_groups=[])
            self.assertEqual((1, "", 'kerno: face: "DejaVu Sans" is not installed (kerno faces lists those that are); '
                              f"{fonts}/closed.ttf cannot be read: no permission\n"), done)

    def test_standard_output_is_named_and_terminals_get_codes(self):
        if ON_WINDOWS:
            self.skipTest("POSIX alone has these devices")
        words = ["A", *SANS, "-o", "-", "--format", "svg"]
        for command in ("convert", "cut"):
            err = run(command, *words, env={"TMPDIR": "/nonexist"})[2]
            self.assertRegex(err, r"standard output: .* temporary folder \(TMPDIR\), /nonexist/?: there is no such")
        line = run("convert", *words[:3], "-o", f"{self.folder}/a\n\x1bb.svg")[1]
        self.assertIn("a<0A><1B>b.svg: ", line)
        end, terminal = os.openpty()
        subprocess.run([*KERNO, "page", self.folder], stdout=terminal, check=True)
        shown = os.read(end, 10000)
        self.assertIn(b"a<0A><1B>b", shown)
        with open("/dev/full", "wb") as full:
            for command in (["page", self.folder], ["cut", *words[:3], "-o", self.folder / "c.svg", "--json"]):
                done = subprocess.run([*KERNO, *command], stdout=full, stderr=subprocess.PIPE)
                self.assertIn(b"whole; only", done.stderr)

    def test_sizes_at_their_ends(self):
        for height in (-32768, -1, 0, 1, 32767):
            for width in (0, 1, 32767):
                status, _, err = run("contours", "Aあ", "--face", "IPAGothic", "--height", str(height),
                                     "--width", str(width))
                self.assertEqual(0, status, f"{height} {width} {err}")

    def test_measure_and_the_vertical_form(self):
        status, out, _ = run("measure", "あA", "--face", "IPAGothic", "--height", "6000", "--json")
        self.assertEqual({"length": 9000, "height": 6000}, json.loads(out))
        ink = json.loads(run("measure", "Ag", *SANS, "--ink", "--json", "--at", "5,7", "--scale", "2")[1])
        points = contours("Ag", *SANS, "--at", "5,-7", "--scale", "2")["points"]
        self.assertEqual([min(p[0] for p in points), -max(p[1] for p in points)], [ink["left"], ink["bottom"]])
        self.assertEqual(contours("縦", "--face", "IPAGothic", "--vertical"),
                         contours("縦", "--face", "@IPAGothic"))

    def test_help_explains_every_command(self):
        for command in ("convert", "contours", "measure", "faces"):
            by_help = run("help", command)
            self.assertEqual(by_help, run(command, "--help"))
            self.assertEqual(0, by_help[0])
        self.assertEqual(2, run("help", "nonsense")[0])
        self.assertRegex(run("--version")[1], r"^kerno \d+\.\d+\.\d+\n$")


if __name__ == "__main__":
    ON_WINDOWS = programs.is_windows(sys.argv[1])
    KERNO = programs.command(sys.argv.pop(1))
    with tempfile.TemporaryDirectory() as home:  # nobody's own settings are read or written
        os.environ.update(HOME=home, XDG_CONFIG_HOME=f"{home}/config", XDG_CACHE_HOME=f"{home}/cache")
        unittest.main(verbosity=1)
