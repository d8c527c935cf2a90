#!/usr/bin/env python3
"""Asks fontTools and fc-list about the faces that the catalogue lists, its styles, axes, characters, scripts and
samples: faces of the set-up, and fonts that are made here by name, with symbols, with axes and damaged.

usage: face_catalogue_test.py FACES_DUMP
"""
import json
import os
import pathlib
import shutil
import subprocess
import sys
import unittest

from fontTools import unicodedata as scripts
from fontTools.subset import Options, Subsetter
from fontTools.ttLib import TTCollection, TTFont
from fontTools.ttLib.tables._c_m_a_p import CmapSubtable

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "cli"))
import programs  # noqa: E402

DUMP = []
VARIABLE = "/usr/share/fonts/truetype/inter-vf/Inter.var.ttf"
MINCHO = "/usr/share/fonts/opentype/ipafont-mincho/ipam.ttf"
SANS = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"
OUTLINES, SYMBOLS, STROKES, FILE = range(4)
CODES = {"Kanji": "Hani", "Devanagari": "Deva", "Hangul": "Hang"}  # others: found by name


def small(path, characters):
    font, options = TTFont(path), Options()
    options.name_IDs, options.name_languages, options.notdef_outline = ["*"], ["*"], True
    options.drop_tables += ["FFTM"]
    subsetter = Subsetter(options)
    subsetter.populate(unicodes=[ord(c) for c in characters])
    subsetter.subset(font)
    return font


def rename(font, names):
    """Families by language; the faces have no other names."""
    font["name"].names = []
    for language, name in names.items():
        for number, text in ((1, name), (2, "Regular"), (4, f"{name} Regular"), (6, "f" + str(abs(hash(name))))):
            font["name"].setName(text, number, 3, 1, language)


def covered(face):
    return {ch for first, last in face["characters"] for ch in range(first, last + 1)}


class FaceCatalogueTest(programs.FolderTest):
    def dump(self, language, has, sample, *files):
        status, out, err = programs.run([*DUMP, language, has, sample, *map(str, files)])
        self.assertEqual((0, ""), (status, err))
        told = json.loads(out)
        return {face["given"]: face for face in told if "given" in face}, [f for f in told if "why" in f]

    def use(self, *fonts):
        """A configuration with these fonts, and those of the set-up where it stands there."""
        config = self.folder / "fonts.conf"
        folders = "".join(f"<dir>{font}</dir>" for font in fonts)
        config.write_text(f"<fontconfig>{folders}<cachedir>{self.folder}/cache</cachedir></fontconfig>")
        before = os.environ["FONTCONFIG_FILE"]
        os.environ["FONTCONFIG_FILE"] = str(config)
        self.addCleanup(os.environ.__setitem__, "FONTCONFIG_FILE", before)

    def check_styles(self, face, files):
        """Each style is a face of its own in the files, its options find it again."""
        for style in face["styles"]:
            where = (face["given"], style["name"])
            self.assertTrue(style["found_again"], where)
            self.assertEqual(style["made"], style["found_made"], where)
            self.assertIn(style["file"], files, where)
            font = TTFont(style["file"], fontNumber=style["index"])
            if "fvar" in font:
                axes = {a.axisTag: (a.minValue, a.defaultValue, a.maxValue) for a in font["fvar"].axes}
                self.assertEqual(axes, {tag: tuple(rest) for tag, *rest, _ in style["axes"]})
                places = [i.coordinates for i in font["fvar"].instances
                          if font["name"].getDebugName(i.subfamilyNameID) == style["name"]]
                self.assertEqual(places[0], {axis[0]: axis[-1] for axis in style["axes"]}, where)
            elif not style["made"]:
                self.assertEqual([], style["axes"])
                self.assertEqual(font["OS/2"].usWeightClass, style["weight"], where)
                self.assertEqual(bool(font["OS/2"].fsSelection & 0x201), style["slanted"], where)
        order = [(s["made"], abs(s["width"] - 100), s["width"], s["weight"], s["slanted"]) for s in face["styles"]]
        self.assertEqual(sorted(order), order, face["given"])
        self.assertIn(face["styles"][face["regular"]]["name"].lower(), ("regular", "book"))

    def test_faces_of_the_set_up_are_as_their_files_say(self):
        text = "切Ёé"
        listed = {}
        for line in subprocess.run(["fc-list", "--format", "%{file}|%{family[0]}|%{style[0]}\n", ":outline=true"],
                                   capture_output=True, check=True).stdout.decode().splitlines():
            file, family, style = line.split("|")
            listed.setdefault(family, {})[style] = file
        faces, _ = self.dump("ja", text, "Kerno")
        outlines = {given: face for given, face in faces.items() if face["kind"] == OUTLINES}
        self.assertEqual(set(listed), set(outlines))
        japanese = 0
        for given, face in outlines.items():
            self.check_styles(face, listed[given].values())
            self.assertEqual(set(listed[given]), {s["name"] for s in face["styles"] if not s["made"]})
            regular = face["styles"][face["regular"]]
            font = TTFont(regular["file"])
            names = {r.langID: str(r) for number in (1, 16) for r in font["name"].names
                     if r.platformID == 3 and r.nameID == number}
            self.assertEqual(names.get(0x411, names[0x409]), face["name"])
            japanese += 0x411 in names
            self.assertLessEqual(set(names.values()), {name for name, _ in face["names"]})
            characters = set(font.getBestCmap())
            self.assertEqual(characters - set(range(32)), covered(face) - set(range(32)), given)
            self.assertEqual(all(ord(c) in characters for c in text), face["has"], given)
            self.assertEqual(bool(font["post"].isFixedPitch) or "Mono" in given or given in ("IPAGothic", "IPAMincho"),
                             face["fixed"], given)
            counts = {}
            for ch in characters:
                counts[scripts.script(chr(ch))] = counts.get(scripts.script(chr(ch)), 0) + 1
            said = {CODES.get(name) or scripts.script_code(name.replace("Kana", "Katakana")) for name in face["scripts"]}
            for code in said:
                self.assertGreaterEqual(counts.get(code, 0), 16, f"{given} {code}")
            for code in set(counts) & {"Latn", "Grek", "Cyrl", "Kana", "Hani", "Deva", "Thai", "Khmr", "Arab", "Hebr"}:
                if counts[code] > 110:
                    self.assertIn(code, said, given)
        self.assertEqual(6, japanese)
        self.assertGreater(len([f for f in faces.values() if f["kind"] == STROKES]), 50)
        for given in ("rowmans", "amiri-regular", "IPAMincho", "DejaVu Sans"):
            self.assertTrue(faces[given]["styles"][0]["found_again"], given)
        # Letters are as high in every sample, and stand within it.
        marks = {given: face["sample"] for given, face in faces.items()}
        for given in [*outlines, "rowmans", "kst32b"]:
            self.assertLess(30_000, marks[given]["ink"], given)
            self.assertTrue(2 <= marks[given]["first"] <= 10 and 21 <= marks[given]["last"] <= 29, (given, marks[given]))
        self.assertEqual(len(outlines), len({marks[given]["digest"] for given in outlines}))

    def test_made_fonts_show_what_they_have(self):
        fonts = self.folder / "fonts"
        fonts.mkdir()
        symbols = small(SANS, "♠♣♥♦★☎")
        table = CmapSubtable.newSubtable(4)
        table.platformID, table.platEncID, table.language = 3, 0, 0
        table.cmap = {0xF041 + i: name for i, name in enumerate(symbols.getGlyphOrder()[1:7])}
        symbols["cmap"].tables = [table]
        rename(symbols, {0x409: "Pictures"})
        symbols.save(fonts / "pictures.ttf")
        german = small(MINCHO, "切る文字")
        rename(german, {0x409: "Cutting", 0x407: "Schneiden", 0x411: "切り文字"})
        german.save(fonts / "german.ttf")
        broken = TTFont(SANS)
        rename(broken, {0x409: "Broken"})
        broken.save(fonts / "broken.ttf")
        whole = (fonts / "broken.ttf").read_bytes()
        variable = shutil.copy(VARIABLE, fonts)
        self.use(fonts)
        subprocess.run(["fc-cache"], check=True)
        stamp = os.stat(fonts / "broken.ttf")
        with open(fonts / "broken.ttf", "r+b") as file:  # after it was listed
            file.truncate(len(whole) // 3)
        os.utime(fonts / "broken.ttf", ns=(stamp.st_atime_ns, stamp.st_mtime_ns))
        shown = {language: self.dump(language, "A", "文字")[0] for language in ("de", "ja", "fr")}
        self.assertEqual(["Schneiden", "切り文字", "Cutting"],
                         [shown[language]["Cutting"]["name"] for language in ("de", "ja", "fr")])
        faces = shown["de"]
        self.assertEqual((SYMBOLS, [], True), tuple(faces["Pictures"][key] for key in ("kind", "scripts", "has")))
        self.assertEqual((False, OUTLINES), (faces["Cutting"]["has"], faces["Inter"]["kind"]))
        self.check_styles(faces["Inter"], [variable])
        self.assertEqual(18, len(faces["Inter"]["styles"]))
        self.assertEqual("wght=466.6666666666667,slnt=-6.666666666666667", next(s for s in faces["Inter"]["styles"] if s["name"] == "Italic")
                         ["options"]["--variation"])
        marks = {name: faces[name]["sample"] for name in ("Pictures", "Cutting", "Inter")}  # two lack the text
        self.assertEqual(3, len({mark["digest"] for mark in marks.values()}))
        self.assertLess(30_000, min(mark["ink"] for mark in marks.values()))
        self.assertEqual(0, faces["Broken"]["sample"]["ink"])

    def test_opened_files_have_styles_of_their_own(self):
        collection, noise = TTCollection(), self.folder / "noise.ttf"
        collection.fonts = [small(SANS, "Kerno"), small(MINCHO, "Kerno"), small(MINCHO, "Kern")]
        two, name = str(self.folder / "two.ttc"), str(self.folder / "one#2.ttf")
        collection.save(two)
        small(SANS, "Kerno").save(name)
        noise.write_bytes(b"\x00\x01\x00\x00" + bytes(range(256)) * 9)
        lines = "/usr/share/hershey-fonts/rowmant.jhf"
        faces, failed = self.dump("en", "o", "Kerno", two, name, VARIABLE, noise, two, lines)
        self.assertEqual([str(noise)], [file["file"] for file in failed])
        self.assertEqual([("DejaVu Sans Book", 0), ("IPAMincho Regular", 1), ("IPAMincho Regular", 2)],
                         [(style["name"], style["index"]) for style in faces[two]["styles"]])
        self.assertEqual([f"{two}#{i}" for i in range(3)],
                         [style["options"]["--font-file"] for style in faces[two]["styles"]])
        self.assertEqual(("two.ttc", FILE, True), tuple(faces[two][key] for key in ("name", "kind", "has")))
        self.assertEqual(["Book", "Oblique", "Bold", "Bold Oblique"], [s["name"] for s in faces[name]["styles"]])
        self.assertEqual([{"--font-file": name}, {"--font-file": name, "--style": "Oblique"}],
                         [s["options"] for s in faces[name]["styles"]][:2])
        self.check_styles(faces[VARIABLE], [VARIABLE])
        for face in (faces[two], faces[name]):
            for style in face["styles"]:
                self.assertTrue(style["found_again"], (face["given"], style))
                self.assertEqual(style["made"], style["found_made"])
            self.assertLess(30_000, face["sample"]["ink"])


if __name__ == "__main__":
    DUMP = [sys.argv.pop(1)]
    unittest.main(argv=sys.argv[:1])
