#!/usr/bin/env python3
"""Names faces to "kerno cut" and "kerno faces" in every way and asks other programs about them:
fc-list, hb-shape, fontTools, Shapely and iconv.

usage: faces_test.py KERNO
"""
import json
import os
import pathlib
import subprocess
import sys

from fontTools.ttLib import TTCollection, TTFont
from fontTools.varLib import instancer
import ezdxf
from shapely.geometry import Polygon
from shapely.ops import unary_union

import cut_test
import programs

KERNO = []
VARIABLE = "/usr/share/fonts/truetype/inter-vf/Inter.var.ttf"
MINCHO = "/usr/share/fonts/opentype/ipafont-mincho/ipam.ttf"
SANS = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"


def run(*arguments, **more):
    return programs.run([*KERNO, *arguments], **more)


def output_of(*words):
    return subprocess.run(words, capture_output=True, check=True).stdout.decode()


class FacesTest(programs.FolderTest):
    def cut(self, text, *options):
        """What was made, what was said, and the closed paths as polygons about the first glyph."""
        path = self.folder / "a.dxf"
        status, out, err = run("cut", text, "-o", str(path), "--json", *options)
        self.assertEqual(0, status, f"{options} {err}")
        made = json.loads(out)
        left, base = made["glyphs"][0]["x"], made["glyphs"][0]["y"]
        polygons = [Polygon([(x - left, y - base) for x, y in cut_test.flattened(e)])
                    for e in ezdxf.readfile(path).modelspace()]
        return made, err, polygons

    def test_every_name_that_fontconfig_knows_finds_its_face(self):
        faces = output_of("fc-list", "--format", "%{family}|%{fullname}|%{style}|%{file}\n").splitlines()
        self.assertGreater(len(faces), 20)
        for families, full_names, styles, file in (face.split("|") for face in faces):
            # One of several names may be an alias that other faces have, too.
            for name in {families.split(",")[-1], *full_names.split(",")}:
                made, err, _ = self.cut("A", "--face", name)
                self.assertIn(made["face"], families.split(","), name)
                if name not in families.split(","):
                    self.assertIn(made["style"], styles.split(","), f"{name} {file}")
            made, err, _ = self.cut("A", "--face", families.split(",")[0], "--style", styles.split(",")[0])
            self.assertEqual((styles.split(",")[0], ""), (made["style"], err))

    def test_glyphs_of_files_features_and_places_are_those_of_another_shaper(self):
        collection = TTCollection()
        collection.fonts = [TTFont(SANS), TTFont(MINCHO)]
        collection.save(self.folder / "two.ttc")
        two = str(self.folder / "two.ttc")
        cases = [  # file, index, text, features, variations
            (VARIABLE, None, "Affil 0 a=>b AVA", "ss01,zero,liga=0", ""),
            (VARIABLE, None, "AVAffi 1/2", "kern=0,-calt,frac[6:9]", "wght=650,slnt=-8"),
            (VARIABLE, None, "AVAToWa", "", "wght=100.5"), (two, 0, "AVAToffi", "liga=0", ""),
            ("/usr/share/fonts/opentype/tlwg/TlwgMono.otf", None, "e\u0301 é", "", ""),
            (two, 1, "日本語、AV", "", ""), (SANS, None, "e\u0301 é fi", "dlig", "")]
        for file, index, text, features, variations in cases:
            with self.subTest(f"{file} {features} {variations}"):
                theirs = json.loads(output_of(
                    "hb-shape", "--no-glyph-names", "--output-format=json", f"--font-file={file}",
                    f"--face-index={index or 0}", f"--features={features}", f"--variations={variations}",
                    f"--text={text}"))
                em = TTFont(file, fontNumber=index or 0)["head"].unitsPerEm
                made, _, _ = self.cut(text, "--font-file", file if index is None else f"{file}#{index}",
                                      "--features", features, "--variation", variations, "--em", str(em),
                                      "--tolerance", "1", "--weld", "off")
                self.assertEqual([g["g"] for g in theirs], [g["glyph"] for g in made["glyphs"]])
                x = 0
                for their, our in zip(theirs, made["glyphs"]):
                    self.assertAlmostEqual(x + their["dx"], our["x"] - made["glyphs"][0]["x"] + theirs[0]["dx"], 4)
                    x += their["ax"]

    def test_outlines_of_a_variable_face_are_those_of_its_instance(self):
        cases = [(["--variation", "wght=650,slnt=-8"], {"wght": 650, "slnt": -8}),
                 (["--style", "black italic"], {"wght": 900, "slnt": -10}),
                 (["--style", "Light", "--variation", "slnt=-4"], {"wght": 300, "slnt": -4})]
        for options, places in cases:
            font = instancer.instantiateVariableFont(TTFont(VARIABLE), places, overlap=False)
            for letter in "g8&":
                theirs = cut_test.glyph_polygons(font, font.getBestCmap()[ord(letter)])
                _, _, ours = self.cut(letter, "--font-file", VARIABLE, "--em", str(font["head"].unitsPerEm),
                                      "--tolerance", "0.5", "--curves", "curves", "--weld", "off", *options)
                self.assertEqual(len(theirs), len(ours))
                for polygon in ours:  # theirs has whole coordinates
                    self.assertLess(min(polygon.hausdorff_distance(p) for p in theirs), 1.6, f"{options} {letter}")

    def test_axes_make_bold_and_slanted_letters_where_no_instance_does(self):
        font, bare = TTFont(VARIABLE), str(self.folder / "bare.ttf")
        font["fvar"].instances = []
        font.save(bare)
        for style, places in (("Oblique Bold", "wght=700,slnt=-10"), ("Bold", "wght=700"), ("Italic", "slnt=-10")):
            made, err, ours = self.cut("Ag&", "--font-file", bare, "--style", style)
            self.assertEqual((places, bare, ""), (made["variations"], made["file"], err))
            _, _, wanted = self.cut("Ag&", "--font-file", VARIABLE, "--variation", places)
            self.assertEqual([p.bounds for p in wanted], [p.bounds for p in ours])
        told = json.loads(run("faces", "--font-file", VARIABLE, "--json")[1])
        self.assertEqual([["wght", "slnt"]], [[axis["tag"] for axis in face["axes"]] for face in told])
        self.assertEqual(len(TTFont(VARIABLE)["fvar"].instances) + 1, len(told[0]["styles"]))

    def test_bold_that_is_not_there_is_the_outline_moved(self):
        font = TTFont(MINCHO)
        em = font["head"].unitsPerEm
        for letter in "永あg":
            made, err, ours = self.cut(letter, "--face", "IPAMincho", "--style", "Bold", "--em", str(em))
            self.assertIn('"IPAMincho" has no bold letters', err)
            self.assertEqual((True, False, 0), (made["madeBold"], made["madeSlanted"], made["crossingPaths"]))
            contours = cut_test.glyph_polygons(font, font.getBestCmap()[ord(letter)])
            holes = [p for p in contours if any(q is not p and q.contains(p) for q in contours)]
            filled = unary_union([p.buffer(0) for p in contours if p not in holes]).difference(unary_union(holes))
            wanted = filled.buffer(em / 48, 64)
            outside = [p for p in ours if not any(q is not p and q.contains(p) for q in ours)]
            found = unary_union(outside).difference(unary_union([p for p in ours if p not in outside]))
            self.assertLess(wanted.symmetric_difference(found).area / wanted.area, 0.002, letter)
        self.assertEqual(3, run("cut", "A", "--face", "IPAMincho", "--style", "Bold", "--strict", "-o",
                                str(self.folder / "b.svg"))[0])

    def test_what_is_told_of_faces_is_in_their_tables(self):
        told = {(face["file"], face["index"]): face for face in json.loads(run("faces", "--json")[1])}
        known = output_of("fc-list", "--format", "%{file}|%{index}\n").splitlines()
        self.assertEqual({(file, int(index)) for file, index in (face.split("|") for face in known)}, set(told))
        env = {**os.environ, "FONTCONFIG_FILE": str(self.folder / "fonts.conf")}
        pathlib.Path(env["FONTCONFIG_FILE"]).write_text(
            f"<fontconfig><dir>{pathlib.Path(VARIABLE).parent}</dir><cachedir>{self.folder}/c</cachedir></fontconfig>")
        options = ["--json", "-o", str(self.folder / "i.svg")]
        for name in (["--face", "Inter Black Italic"], ["--face", "Inter", "--style", "black oblique"]):
            made = json.loads(run("cut", "Ag", *name, *options, env=env)[1])
            self.assertEqual("Black Italic", made["style"], name)
        for face in json.loads(run("faces", "--json", env=env)[1]):
            told[face["file"], face["index"]] = face
        covers = {text: run("faces", "--covers", text)[1].splitlines() for text in ("切文字", "Žlutý", "Яблоко")}
        names = ["installable", "restricted", "preview and print", "preview and print"] + ["editable"] * 4
        for (file, index), face in told.items():
            font = TTFont(file, fontNumber=index)
            axes = [(a.axisTag, a.minValue, a.defaultValue, a.maxValue) for a in font["fvar"].axes] if "fvar" in font else []
            self.assertEqual(axes, [(a["tag"], a["least"], a["default"], a["most"]) for a in face["axes"]], file)
            features = {r.FeatureTag for t in ("GSUB", "GPOS") if t in font and font[t].table.FeatureList
                        for r in font[t].table.FeatureList.FeatureRecord}
            self.assertEqual(sorted(features), face["features"], file)
            self.assertEqual(names[(font["OS/2"].fsType & 14) // 2], face["embedding"], file)
            for text, families in covers.items():
                if all(ord(c) in font.getBestCmap() for c in text) and "fvar" not in font:
                    self.assertIn(face["family"], families, text)
        self.assertEqual(6, len(covers["切文字"]))
        status, out, err = run("faces", "--sample", "切", "-o", str(self.folder / "sheet.dxf"))
        self.assertEqual((0, ""), (status, err))
        self.assertIn("6 families", out)
        self.assertEqual([], ezdxf.readfile(self.folder / "sheet.dxf").audit().errors)

    def test_hidden_options_are_used_by_their_rules(self):
        for words, message in ((["--family", "IPAMincho"], "--family: needs --styles"), (["--names", "--styles"], "--names: "),
                               (["--styles"], "--styles: needs either"), (["--names", "--json"], "--json: does not go"),
                               (["--styles", "--family", "IPAMincho", "--font-file", MINCHO], "--styles: needs either")):
            status, out, err = run("faces", *words)
            self.assertEqual((2, "", True), (status, out, message in err), (words, err))
        self.assertEqual((0, "Regular\n", ""), run("faces", "--styles", "--family", "IPA明朝"))
        for words in (["--family", "DejaVu Sans"], ["--font-file", SANS]):
            listed = run("faces", "--tags", *words)[1].split()
            with TTFont(SANS) as font:
                held = {record.FeatureTag for table in ("GSUB", "GPOS") for record in font[table].table.FeatureList.FeatureRecord}
            self.assertLessEqual({tag.strip() for tag in held}, set(listed))
            self.assertEqual((0, "", ""), run("faces", "--axes", *words))
        self.assertNotIn("\n\n\n", run("help", "faces")[1] + "\n")

    def test_encodings_agree_with_another_converter(self):
        rows = b"".join(bytes([0xA1 + row, 0xA1 + column]) for row in range(84) for column in (0, 33, 93))
        text = subprocess.run(["iconv", "-c", "-f", "EUC-JP-MS", "-t", "UTF-8"], input=rows + b"\x8e\xb1",
                              capture_output=True).stdout
        self.assertGreater(len(text.decode()), 200)
        plain = self.folder / "plain.txt"
        plain.write_bytes(text)
        wanted = None
        for told, theirs in (("UTF-8", "UTF-8"), ("shift_jis", "CP932"), ("EUC-JP", "EUC-JP-MS"), (None, "CP932"),
                             (None, "EUC-JP-MS"), ("UTF-16LE", "UTF-16LE"), ("UTF-16BE", "UTF-16BE")):
            file = self.folder / f"{theirs}.txt"
            file.write_bytes(subprocess.run(["iconv", "-f", "UTF-8", "-t", theirs, str(plain)], check=True,
                                            capture_output=True).stdout)
            made, err, _ = self.cut_file(file, told)
            wanted = wanted or made["glyphs"]
            self.assertEqual(wanted, made["glyphs"], f"{told} {theirs}")
            self.assertEqual("" if told else f"is taken for {theirs[:6] if 'EUC' in theirs else theirs}",
                             err[err.find("is taken"):err.find(", as")] if err else "")

        latin = "Größe: 5 × 3 “Straße” it’s"
        cases = [("社".encode("cp932"), [], 0, "taken for CP932"), ("部品 ﾈｼﾞ".encode("cp932"), [], 0, "for CP932"),
                 ("部品 ﾈｼﾞ".encode("euc-jp"), [], 0, "taken for EUC-JP"), ("Straße".encode("latin-1"), [], 1, "not UTF-8"),
                 ("社".encode("cp932"), ["--strict"], 1, "--encoding CP932"), (latin.encode("cp1252"), [], 1, "not UTF-8"),
                 ("Größe: 5 × 3".encode("latin-1"), [], 1, "not UTF-8"), ("it’s".encode("cp1252"), [], 1, "not UTF-8"),
                 (b"A\0\0\xd8A\0", ["--encoding", "utf-16le"], 1, "(byte offset 2)")]
        for data, options, expected, message in cases:
            file.write_bytes(data)
            status, _, err = run("cut", "--text-file", str(file), *options, "-o", str(self.folder / "t.svg"))
            self.assertEqual((expected, True), (status, message in err), (data, err))
        file.write_bytes(latin.encode("cp1252"))
        plain.write_bytes(latin.encode())
        self.assertEqual(*(self.cut_file(*made)[0]["glyphs"] for made in ((plain, None), (file, "cp1252"))))

    def cut_file(self, file, told):
        status, out, err = run("cut", "--text-file", str(file), *(["--encoding", told] if told else []), "--face",
                               "IPAGothic", "--curves", "lines", "--json", "-o", str(self.folder / "t.svg"))
        self.assertEqual(0, status, err)
        return json.loads(out), err, None

    def test_what_is_wrong_is_named(self):
        noise, cut, empty = (self.folder / name for name in ("noise.ttf", "cut.ttf", "empty.ttf"))
        noise.write_bytes(b"\x00\x01\x00\x00" + bytes(range(256)) * 9)
        cut.write_bytes(pathlib.Path(SANS).read_bytes()[:300000])
        whole, short = pathlib.Path(VARIABLE).read_bytes(), self.folder / "short.ttf"
        short.write_bytes(whole[:max(int.from_bytes(whole[i + 8:i + 12], "big") + int.from_bytes(whole[i + 12:i + 16], "big")
                                     for i in range(12, 12 + 16 * whole[5], 16) if whole[i:i + 4] == b"hmtx") - 1])
        empty.write_bytes(b"")
        (self.folder / "e.txt").write_bytes(b"ab\xff\xff")
        sans = ["--face", "DejaVu Sans"]
        cases = [  # arguments, exit status, what standard error must hold
            (["A", "--font-file", str(self.folder)], 1, "folder"), (["A", "--font-file", __file__], 1, "is no font file"),
            (["A", "--font-file", str(noise)], 1, "noise.ttf"), (["A", "--font-file", str(cut)], 1, "ends before its table"),
            (["A", "--font-file", str(short)], 1, "ends before its table"),
            (["A", "--face", "DejaVu Sans Bold", "--style", "Book"], 3, 'has no "Bold Book"'),
            (["A", "--face", "DejaVu Sans Bold", "--style", "Oblique"], 0, ""), (["A", *sans, "--style", "bold condensed"], 0, ""),
            (["Aक", *sans, "--style", "ExtraLight", "--fallback", "Lohit Devanagari"], 0, 'has no "ExtraLight": 1 character is'),
            (["Aक", *sans, "--style", "ExtraLight", "--fallback", "Lohit Devanagari", "--strict"], 3, 'has no "ExtraLight"'),
            (["A", "--face", "Dejavu Snas"], 3, 'the nearest are "DejaVu Sans"'),
            (["A", "--font-file", str(empty)], 1, "empty file"), (["A", "--font-file", "no.ttf"], 3, "no.ttf"),
            (["A", "--font-file", f"{SANS}#1"], 3, 'has no font 1; it has 0 "DejaVu Sans Book"'),
            (["A", "--font-file", VARIABLE, "--variation", "wdth=80"], 3, "wght 100 to 900, slnt -10 to 0"),
            (["A", "--font-file", VARIABLE, "--variation", "wght=901"], 3, "has no wght 901"),
            (["A", *sans, "--variation", "wght=400"], 3, "it has no axes"),
            (["A", "--font-file", VARIABLE, "--style", "Fat"], 3, '"Black Italic"'),
            (["A", "--variation", "wght"], 2, '--variation: "wght" cannot be read'),
            (["A", "--features", "liga,b["], 2, '--features: "b[" cannot be read'),
            (["A", *sans, "--features", "zzzz"], 0, 'DejaVu Sans Book has no "zzzz"'),
            (["A", "--face", "DejaVu Sanss"], 3, 'the nearest are "DejaVu Sans", "DejaVu'),
            (["A", "--face", "Dejavu Sans Obliqe"], 3, '"DejaVu Sans Oblique"'),
            (["A", "--hieght", "5"], 2, "--hieght: is no option of kerno cut"),
            (["--text", "--hieght", "--angel", "5"], 2, '--angel: is no option of kerno cut; the nearest is "--angle"'),
            (["A", "-face", "x"], 2, '-face: is no option of kerno cut; the nearest is "--face"'),
            (["A", "\u2014face", "x"], 2, 'the nearest is "--face"'), (["A", "B"], 2, '"B": is a second text'),
            (["A", "--fit"], 2, "--fit: needs a value"), (["A", "--fallback", "No"], 3, "--fallback: "),
            (["A", "--features", "日本"], 2, '"日本" cannot be read; it looks like'), (["q\u0308\u05ff"], 0, "(U+05FF)"),
            (["A", "--font-file", VARIABLE, "--variation", "slnt=0", "--variation", "wght=901"], 3, "has no wght 901"),
            (["--text-file", str(self.folder / "e.txt")], 1, "is not UTF-8 (byte offset 2); --encoding"),
            (["--text-file", str(self.folder / "e.txt"), "--encoding", "CP932"], 1, "is not CP932 (byte offset 2)"),
            (["A", "--encoding", "CP932"], 2, "--encoding: needs --text-file"), (["e\u0301\u0483", *sans], 0, ""),
            (["e\u0364\u05ff"], 0, "(U+05FF)")]
        for arguments, expected, message in cases:
            with self.subTest(arguments):
                status, out, err = run("cut", *arguments, "-o", str(self.folder / "out.svg"), "--json")
                self.assertEqual(expected, status, err)
                self.assertIn(message, err)
        convert = [(["--font-file", SANS], 2, "use kerno cut"), (["--style", "Condensed"], 3, "use kerno cut"),
                   (["--style", "Bold", "--weight", "4"], 2, "does not go with --style")]
        for options, expected, message in convert:
            status, _, err = run("convert", "A", *sans, *options, "-o", str(self.folder / "o.svg"))
            self.assertEqual((expected, True), (status, message in err), err)
        _, _, err = run("convert", "A", "--face", "DejaVu Sans Condensed Bold", "-o", str(self.folder / "o.svg"))
        self.assertIn("a width which the system is not asked for", err)
        for text, options in (("龍", []), ("\u05d0", ["--ink"])):
            self.assertEqual(3, run("measure", text, *sans, "--strict", *options)[0], text)
        self.assertIn("--covers: ", run("faces", "--strokes", "--covers", "A")[2])
        for name, options in (("DejaVu Sans Bold Oblique", []), ("DejaVu Sans", ["--style", "Bold Italic"])):
            status, out, _ = run("measure", "Agi", "--face", name, *options, "--ink", "--json")
            self.assertEqual(json.loads(run("measure", "Agi", "--face", "DejaVu Sans", "--style", "Bold Oblique",
                                            "--ink", "--json")[1]), json.loads(out), name)


if __name__ == "__main__":
    KERNO = programs.command(sys.argv.pop(1))
    programs.unittest.main()
