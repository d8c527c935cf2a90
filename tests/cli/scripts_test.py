#!/usr/bin/env python3
"""Runs "kerno cut" on texts of many scripts and compares the glyphs with those of other programs:
hb-shape for each run, FriBidi's own tool for the order of runs. "convert" must say what it does not do.

usage: scripts_test.py KERNO
"""
import functools
import json
import subprocess
import sys
import unittest

import ezdxf
from ezdxf import bbox
from fontTools.ttLib import TTFont

import programs

KERNO = []
SANS, DEVA, THAI, KHMER, MINCHO = "DejaVu Sans", "Lohit Devanagari", "Tlwg Mono", "Khmer OS", "IPAMincho"

# Script, face, direction, language, texts: each text is one run.
TEXTS = [
    ("Latn", SANS, "ltr", "", ["AVATAR Wö To", "office fluffy ffi", "Việt Nam: Nguyễn", "e\u0301\u0323 o\u0308\u0304 x\u0302"]),
    ("Latn", SANS, "ltr", "ro", ["Brașov și Timișoara", "Paşte"]),
    ("Latn", "DejaVu Serif", "ltr", "tr", ["fi fl ffi", "İstanbul ışık", "Ty. Va. P,"]),
    ("Grek", SANS, "ltr", "", ["Ελλάδα", "ᾳ ἄ ὦ Ὕ", "Α\u0301 ο\u0345"]),
    ("Cyrl", SANS, "ltr", "", ["Здравствуйте", "ГАУДИ ТАМ", "й и\u0306 е\u0301"]),
    ("Cyrl", "DejaVu Serif", "ltr", "sr", ["б г д п т", "Београд", "Ђурђевдан"]),
    ("Armn", SANS, "ltr", "", ["Հայաստան", "մեծ և", "մն մե մի"]),
    ("Geor", SANS, "ltr", "", ["საქართველო", "გამარჯობა", "თბილისი 2026"]),
    ("Hebr", SANS, "rtl", "", ["שלום עולם", "שָׁלוֹם", "בְּרֵאשִׁית בָּרָא", "ירושלים"]),
    ("Hebr", SANS, "rtl", "yi", ["ייִדיש", "פֿאַר"]),
    ("Arab", SANS, "rtl", "", ["السلام عليكم", "لا إله", "مُحَمَّدٌ", "بسم الله", "ــكـتـاب", "نستعلیق", "می\u200cخواهم"]),
    ("Arab", SANS, "rtl", "ur", ["پاکستان", "ٹڈ کڑ", "اردو"]),
    ("Arab", SANS, "rtl", "fa", ["فارسی", "گچپژ", "کتاب، گل"]),
    ("Nkoo", SANS, "rtl", "", ["ߒߞߏ", "ߊ߬ ߞߊ߲", "ߡߊ߲߬ߘߋ߲"]),
    ("Deva", DEVA, "ltr", "hi", ["नमस्ते दुनिया", "हिन्दी क्षत्रिय", "र्क र्कि क्र", "ज्ञान श्री द्ध", "स्त्री", "क\u200d्ष क्\u200cष"]),
    ("Deva", DEVA, "ltr", "mr", ["मराठी ल श", "ऱ्य ऱ्ह", "पुणे, मुंबई।"]),
    ("Thai", THAI, "ltr", "th", ["สวัสดีชาวโลก", "น้ำ ทำ", "ที่นี่ ป้ำ", "กรุงเทพฯ", "ฐิ ญุ ปั่"]),
    ("Khmr", KHMER, "ltr", "km", ["ភាសាខ្មែរ", "ស្ត្រី ខ្ញុំ", "កម្ពុជា", "ព្រះ ស្រុក", "ប៉ុន្តែ"]),
    ("Laoo", SANS, "ltr", "lo", ["ສະບາຍດີ", "ນ້ຳ ທີ່", "ຫຼວງພະບາງ"]),
    ("Hani", MINCHO, "ltr", "ja", ["東京都、日本", "葛\U000e0100飾区 辻\U000e0101", "「直骨」"]),
    ("Hani", MINCHO, "ltr", "zh-Hant", ["直骨角", "（東）、。"]),
    ("Hira", MINCHO, "ltr", "ja", ["ひらがな", "か\u3099 は\u309a が", "ありがとう。"]),
    ("Kana", "IPAGothic", "ltr", "ja", ["カタカナー", "ハ\u309aン", "ｶﾞ ﾊﾟ"]),
]

# Face, text, options, and the runs as they stand: text, where it begins, direction, script.
MIXED = [
    (SANS, "abc שלום def", [], [("abc ", 0, "ltr", "Latn"), ("שלום", 4, "rtl", "Hebr"), (" def", 8, "ltr", "Latn")]),
    (SANS, "abc שלום", ["--direction", "rtl"], [("שלום", 4, "rtl", "Hebr"), (" ", 3, "rtl", "Latn"),
                                                ("abc", 0, "ltr", "Latn")]),
    (SANS, "Ab (Грек) cd", [], [("Ab (", 0, "ltr", "Latn"), ("Грек", 4, "ltr", "Cyrl"), (") cd", 8, "ltr", "Latn")]),
    (SANS, "سعر 12,5 كغ", [], [(" كغ", 8, "rtl", "Arab"), ("12,5", 4, "ltr", "Arab"), ("سعر ", 0, "rtl", "Arab")]),
    (MINCHO, "東京タワーへ", ["--language", "ja"], [("東京タワーへ", 0, "ltr", "Hani")]),
    (DEVA, "«श्री», 5", [], [("«श्री», 5", 0, "ltr", "Deva")]),
    ("IPAGothic", "縦、ーッ（「）", ["--vertical"], [("縦、ーッ（「）", 0, "ttb", "Hani")]),
    (MINCHO, "AV社VA", ["--vertical"], [("AV", 0, "turned", "Latn"), ("社", 2, "ttb", "Hani"),
                                       ("VA", 3, "turned", "Hani")]),
]

# Each character is a glyph of its own, so that the order of the glyphs is that of the characters.
ORDERED = ["car is THE CAR in arabic", "אבג abc 123 דהו", "abc אבג 12-34 דהו xyz!", "(אבג) [abc] {דה}", "אבג, 5% (de) 7.5$ זח",
           "a\u2067בג 1\u2069 b ג", "a\u202ebcd\u202c e", "אב\u200e!\u200f 12 x", "1 אב 2 גד 3", "x\u2068אב\u2069: y \u202bגד z\u202c"]

CONTROLS = "\u200e\u200f\u202a\u202b\u202c\u202d\u202e\u2066\u2067\u2068\u2069"


def run(*arguments, command="cut"):
    return programs.run([*KERNO, command, *arguments])


@functools.cache
def font_file(face):
    done = subprocess.run(["fc-match", "-f", "%{file}", face], capture_output=True, text=True, check=True)
    return done.stdout


@functools.cache
def em_of(face):
    return TTFont(font_file(face))["head"].unitsPerEm


@functools.cache
def middle_of(face):
    line = TTFont(font_file(face))["hhea"]
    return (line.ascent + line.descent) / 2


def shaped(face, text, direction, script, language, before="", after=""):
    words = ["hb-shape", "--no-glyph-names", "--output-format=json", "--remove-default-ignorables",
             f"--font-file={font_file(face)}", f"--direction={direction}", f"--script={script}",
             f"--language={language or 'und'}", f"--text-before={before}", f"--text-after={after}", f"--text={text}"]
    return json.loads(subprocess.run(words, capture_output=True, check=True).stdout)


class ScriptsTest(programs.FolderTest):
    def cut(self, text, *options, face=SANS, errors=""):
        status, out, err = run(text, "--face", face, "--em", str(em_of(face)), "--tolerance", "1", "--json",
                               *options, "-o", str(self.folder / "a.dxf"))
        self.assertEqual((0, errors), (status, err), text)
        return json.loads(out)

    def compare(self, theirs, ours):
        """Glyphs as (glyph, x, y), equal but for where they stand as a whole."""
        self.assertEqual([g[0] for g in theirs], [g["glyph"] for g in ours])
        for (_, x, y), glyph in zip(theirs, ours):
            self.assertAlmostEqual(x - theirs[0][1], glyph["x"] - ours[0]["x"], 6)
            self.assertAlmostEqual(y - theirs[0][2], glyph["y"] - ours[0]["y"], 6)

    def test_glyphs_of_every_script_are_those_of_another_shaper(self):
        count = 0
        for script, face, direction, language, texts in TEXTS:
            words = ["--language", language] if language else []
            made = self.cut("\n".join(texts), *words, face=face)
            start, starts = 0, set()
            for text in texts:
                with self.subTest(script=script, text=text):
                    units = len(text.encode("utf-16-le")) // 2
                    ours = [g for g in made["glyphs"] if start <= g["character"] < start + units]
                    theirs, pen = [], 0
                    for glyph in shaped(face, text, direction, script, language):
                        theirs.append((glyph["g"], pen + glyph["dx"], glyph["dy"]))
                        pen += glyph["ax"]
                    self.compare(theirs, ours)
                    starts.add(round(ours[0]["x"] - theirs[0][1], 6))
                start += units + 1
                count += 1
            self.assertEqual(1, len(starts), "lines begin at different places")
        self.assertGreaterEqual(count, 60)
        self.assertGreaterEqual(len({row[0] for row in TEXTS}), 12)

    def test_mixed_lines_are_shaped_run_by_run(self):
        for face, text, options, runs in MIXED:
            with self.subTest(text):
                middle, pen, theirs, turned = middle_of(face), 0, [], []
                language = options[1] if "--language" in options else ""
                for part, start, direction, script in runs:
                    lies = direction == "turned"
                    for g in shaped(face, part, "ltr" if lies else direction, script, language,
                                    text[:start], text[start + len(part):]):
                        if direction == "ttb":
                            theirs.append((g["g"], g["dx"], pen + g["dy"]))
                        elif lies:
                            theirs.append((g["g"], g["dy"] - middle, pen - g["dx"]))
                        else:
                            theirs.append((g["g"], pen + g["dx"], g["dy"]))
                        pen += g["ay"] if direction == "ttb" else -g["ax"] if lies else g["ax"]
                        turned.append(lies)
                made = self.cut(text, *options, face=face)["glyphs"]
                self.compare(theirs, made)
                self.assertEqual(turned, [g.get("turned", False) for g in made])

    def test_order_is_that_of_another_program(self):
        for direction, flag in (("auto", "--wltr"), ("ltr", "--ltr"), ("rtl", "--rtl")):
            made, at = self.cut("\n".join(ORDERED), "--direction", direction)["glyphs"], 0
            for line in ORDERED:
                with self.subTest(line=line, direction=direction):
                    words = ["fribidi", "--nobreak", "--nopad", "--novisual", "--vtol", flag]
                    out = subprocess.run(words, input=line.encode(), capture_output=True, check=True).stdout
                    found = [g["character"] - at for g in made if at <= g["character"] < at + len(line)]
                    # A control may be one with the character after it.
                    found = [next(k for k in range(i, len(line)) if line[k] not in CONTROLS) for i in found]
                    self.assertEqual([int(n) for n in out.split() if line[int(n)] not in CONTROLS], found)
                at += len(line) + 1

    def test_short_numbers_stand_across_the_column(self):
        for text, digits, turned, widest in (("月12日", 2, 0, None), ("月1234日", 4, 0, 1), ("月1234日", 3, 4, None),
                                             ("1.5m", 2, 4, None), ("12:30", 2, 5, None), ("A10", 2, 3, None)):
            made = self.cut(text, "--vertical", "--tate-chu-yoko", str(digits), face=MINCHO)["glyphs"]
            self.assertEqual(turned, sum(g.get("turned", False) for g in made), text)
            if turned == 0:
                self.assertEqual(1, len({g["y"] for g in made[1:-1]}), text)
                em = em_of(MINCHO)
                self.assertAlmostEqual(-2 * em, made[-1]["y"] - made[0]["y"], 6)
                box = bbox.extents(ezdxf.readfile(self.folder / "a.dxf").modelspace())
                self.assertLessEqual(box.size.x, em)
        self.assertEqual((2, "kerno: --tate-chu-yoko: needs --vertical\n"),
                         run("12", "--tate-chu-yoko", "2", "-o", "x.dxf")[::2])

    def test_missing_characters_come_from_the_fallbacks(self):
        made = self.cut("A日B\u0301\u8fbbश्री", "--fallback", MINCHO, "--fallback", DEVA)
        self.assertEqual([(MINCHO, 2), (DEVA, 4)], [(f["face"], f["characters"]) for f in made["fallbacks"]])
        by_face = {face: [g for g in made["glyphs"] if g["face"] == face] for face in (SANS, MINCHO, DEVA)}
        self.assertEqual([TTFont(font_file(MINCHO)).getBestCmap()[ord(c)] for c in "日辻"],
                         [TTFont(font_file(MINCHO)).getGlyphName(g["glyph"]) for g in by_face[MINCHO]])
        self.assertEqual([g["g"] for g in shaped(DEVA, "श्री", "ltr", "Deva", "")],
                         [g["glyph"] for g in by_face[DEVA]])
        # As wide as an em of the first face.
        places = {g["character"]: g["x"] for g in reversed(made["glyphs"])}
        self.assertAlmostEqual(em_of(SANS), places[2] - places[1], 6)
        column = self.cut("東ー", "--vertical", "--fallback", MINCHO)["glyphs"]
        self.assertEqual([g["g"] for g in shaped(MINCHO, "東ー", "ttb", "Hani", "")], [g["glyph"] for g in column])
        # A letter goes with its mark, though the first face has the letter.
        both = self.cut("xx\u0301", "--fallback", SANS, face=DEVA)["glyphs"]
        self.assertEqual([DEVA, SANS], [g["face"] for g in both[:2]])
        status, out, err = run("A日\u0e01", "--face", SANS, "--fallback", MINCHO, "-o", str(self.folder / "a.svg"))
        self.assertEqual((0, "kerno: warning: no glyph in DejaVu Sans, IPAMincho: ก (U+0E01)\n"), (status, err))
        self.assertIn("1 character from IPAMincho", out)
        self.assertEqual(3, run("A日", "--face", SANS, "--strict", "-o", str(self.folder / "b.svg"))[0])
        self.assertEqual(3, run("A", "--fallback", "No Such Face", "-o", str(self.folder / "b.svg"))[0])

    def test_spacing_leaves_joined_letters_together(self):
        for text, face, gaps in (("كتاب جديد", SANS, [3, 4]), ("שלום", SANS, [0, 1, 2]), ("abc", SANS, [0, 1]),
                                 ("क्त हिन्दी", DEVA, [0, 1, 2])):
            places = [{g["character"]: g["x"] for g in self.cut(text, *options, face=face)["glyphs"]}
                      for options in ([], ["--letter-spacing", "100"])]
            order = sorted(places[0], key=places[0].get)
            moved = [round(places[1][i] - places[0][i] - places[1][order[0]] + places[0][order[0]]) for i in order]
            steps = [b - a for a, b in zip(moved, moved[1:])]
            self.assertEqual([100 if i in gaps else 0 for i in range(len(steps))],
                             steps if text == "abc" or face == DEVA else steps[::-1], text)

    def test_controls_of_direction_go_no_further(self):
        for arguments, wanted in ((["A", "--layer", "a\u202eb", "-o", "x.dxf"],
                                   "--layer: the name holds U+202E, a control of direction"),
                                  (["A", "-o", "a\u202egvs"], "a<U+202E>gvs: has no extension"),
                                  (["A", "--language", "ja_", "-o", "x.dxf"], '--language: "ja_" is no language tag'),
                                  (["A", "--direction", "up", "-o", "x.dxf"], '"up" is none of auto')):
            status, _, err = run(*arguments)
            self.assertEqual(2, status)
            self.assertIn(wanted, err)

    def test_convert_names_what_it_does_not_do(self):
        cases = [("Größe 12", ""), ("日本語のガ\U000e0100", ""), ("שלום", "Hebrew text: is set from left to right"),
                 ("سلام", "Arabic text: is set from left to right, its letters are not joined"),
                 ("a नमस्ते", "Devanagari text: its letters are neither reordered nor combined"),
                 ("น้ำ", "Thai text: its marks are not placed"), ("e\u0301", "Latin text: its marks are not placed")]
        for text, wanted in cases:
            lines = f"kerno: warning: {wanted} (kerno cut shapes it)\n" if wanted else ""
            for command, options in (("convert", ["-o", str(self.folder / "a.dxf")]), ("contours", [])):
                with self.subTest(text=text, command=command):
                    status, _, err = run(text, "--face", SANS, *options, command=command)
                    told = "".join(line + "\n" for line in err.splitlines() if "no glyph" not in line)
                    self.assertEqual((0, lines), (status, told))
                    strict = run(text, "--face", SANS, "--strict", *options, command=command)
                    if wanted:
                        self.assertEqual((3, lines.replace("warning: ", "")), strict[::2])


if __name__ == "__main__":
    KERNO[:] = programs.command(sys.argv.pop())
    unittest.main(verbosity=1)
