#!/usr/bin/python3
"""Installs the window into a folder and asks the desktop's own programs about it.

desktop_entries_test.py BUILD_FOLDER KERNO
"""
import os
import pathlib
import struct
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

SOURCE = pathlib.Path(__file__).resolve().parents[2]
SIZES = (16, 22, 24, 32, 48, 64, 128, 256)
TYPE = "application/x-kerno-ipx"
ICONS = {"apps": "kerno", "mimetypes": "application-x-kerno-ipx"}


def run(*command, **more):
    done = subprocess.run([str(part) for part in command], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, encoding="utf-8", timeout=120, check=False, **more)
    return done.returncode, done.stdout


class DesktopEntries(unittest.TestCase):
    build = kerno = None

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory(prefix="kerno entries 場所 ")
        cls.root = pathlib.Path(cls.folder.name)
        status, said = run("cmake", "--install", cls.build, "--component", "desktop", "--prefix", "/usr",
                           env={**os.environ, "DESTDIR": cls.folder.name})
        assert status == 0, said
        cls.share = cls.root / "usr/share"
        cls.environment = {
            **os.environ, "LC_ALL": "C.UTF-8", "HOME": cls.folder.name, "XDG_DATA_DIRS": str(cls.share),
            "XDG_DATA_HOME": str(cls.root / "home"), "XDG_CONFIG_HOME": str(cls.root / "home"),
            "PATH": f"{cls.root / 'usr/bin'}:{os.environ['PATH']}"}

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def ask(self, *command, **more):
        status, said = run(*command, env=self.environment, **more)
        self.assertEqual(status, 0, said)
        return said

    def test_menu_entry_and_description_are_valid(self):
        self.assertEqual(self.ask("desktop-file-validate", self.share / "applications/kerno.desktop"), "")
        said = self.ask("appstreamcli", "validate-tree", "--no-net", "--no-color", self.root)
        self.assertNotRegex(said, "(?m)^[EWI]: ")
        description = self.share / "metainfo/org.kerno.Kerno.metainfo.xml"
        release = xml.etree.ElementTree.parse(description).find("releases/release")
        self.assertIn(release.get("version"), run(self.kerno, "--version")[1].split())

    def test_parts_files_are_known_by_name_and_by_content(self):
        said = self.ask("update-mime-database", "-V", self.share / "mime")
        self.assertNotRegex(said.lower(), "warning|error|unknown")
        self.ask("update-desktop-database", self.share / "applications")
        for text in ("Hello", "שלום"):  # the second is written as UTF-16
            written = self.root / "written.ipx"
            status, said = run(self.kerno, "convert", text, "--face", "DejaVu Sans", "-o", written)
            self.assertEqual(status, 0, said)
            content = written.rename(self.root / "without-extension")
            written.write_bytes(b"for the name alone")
            for name in (written, content):
                said = self.ask("gio", "info", "-a", "standard::content-type,standard::icon", name)
                self.assertIn(f"content-type: {TYPE}\n", said, f"{text}: {name.name}")
                self.assertIn("icon: application-x-kerno-ipx,", said)
        for other in ("2 7 ;\tPartsB\t\t\t", "PartsA", "2 7"):
            (self.root / "other").write_text(other, encoding="ascii")
            self.assertNotIn(TYPE, self.ask("gio", "info", "-a", "standard::content-type",
                                            self.root / "other"))
        self.assertIn("kerno.desktop", self.ask("gio", "mime", TYPE))

    def test_icons_have_their_sizes_and_are_those_of_the_drawings(self):
        fresh = self.root / "fresh"
        self.ask("sh", SOURCE / "tools/make_icons.sh", fresh)
        for context, name in ICONS.items():
            for size in SIZES:
                icon = self.share / f"icons/hicolor/{size}x{size}/{context}/{name}.png"
                header = icon.read_bytes()[:24]
                self.assertEqual(header[:8], b"\x89PNG\r\n\x1a\n", icon)
                self.assertEqual(struct.unpack(">II", header[16:]), (size, size), icon)
                self.ask("compare", "-metric", "AE", "-fuzz", "2%", icon,
                         fresh / f"{size}x{size}/{name}.png", "null:")
            drawing = self.share / f"icons/hicolor/scalable/{context}/{name}.svg"
            self.assertEqual(xml.etree.ElementTree.parse(drawing).getroot().get("viewBox"), "0 0 128 128")


if __name__ == "__main__":
    DesktopEntries.kerno = sys.argv.pop()
    DesktopEntries.build = sys.argv.pop()
    unittest.main(verbosity=2)
