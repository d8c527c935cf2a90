#!/usr/bin/env python3
"""Starts the real Windows window under Wine on a display of its own, types with real keys, presses
the buttons, and opens the files with independent readers.

usage: windows_end_to_end_test.py KERNO-DESKTOP.EXE TOOLS [SCREENSHOTS]
"""
import pathlib
import re
import sys

sys.path.insert(0, sys.argv[2])
from desktop_session import WindowsSession  # noqa: E402
from output_checks import (check_bmp, check_dxf, check_emf, check_ipx, check_rtf,  # noqa: E402
                           check_svg, ink)

TEXT = "Kerno 8 O"
# Of the window: where the preview stands, whatever the sizes of fonts.
PREVIEW = (0.10, 0.45, 0.80, 0.30)
TEXT_BOX = (100, 60)  # a place in it, by the window's corner


class Window:
    """The session with what this test asks of it again and again."""

    def __init__(self, session, pictures):
        self.session = session
        self.pictures = pictures

    def picture(self, name):
        file = self.pictures / f"windows-{name}.png"
        self.session.screenshot(file)
        return file

    def preview_ink(self, name):
        width, height = (int(n) for n in re.findall(
            r"Geometry: (\d+)x(\d+)", self.session.tool_text("getwindowgeometry",
                                                             self.session.window))[0])
        left, top, across, down = PREVIEW
        region = (f"{int(width * across)}x{int(height * down)}"
                  f"+{int(width * left)}+{int(height * top)}")
        return ink(self.picture(name), region)

    def wait_for_preview(self, name, least, most):
        """Until the share of ink in the preview lies between the two."""
        self.session.wait_for(lambda: least <= self.preview_ink(name) <= most)

    def close_opened_folder(self):
        """The folder that the first output opens, in the system's own file manager."""
        session = self.session
        opened = session.wait_for(self.opened_folder)
        session.tool("windowfocus", "--sync", opened)
        session.key("alt+F4")
        session.wait_for(lambda: not self.opened_folder())
        session.click(TEXT_BOX)

    def opened_folder(self):
        return self.session.tool("search", "--onlyvisible", "--name", r"Kerno\.tmp")

    def press(self, key, *suffixes):
        self.session.key(key)
        return [self.session.wait_for_output(suffix) for suffix in suffixes]


def choose_height(session, height):
    session.key("alt+h")
    session.key("ctrl+a")
    session.type(height)


def first_run(window):
    session = window.session
    window.wait_for_preview("empty", 0, 0)
    session.type(TEXT)  # the text box has the keyboard at the start
    choose_height(session, "250")
    window.wait_for_preview("typed", 0.02, 0.6)
    rtf, dxf, emf = window.press("alt+d", ".rtf", ".dxf", ".emf")
    window.close_opened_folder()
    check_dxf(dxf)
    check_emf(emf)
    check_rtf(rtf, TEXT)
    assert re.fullmatch(r".+_250_" + TEXT + r"\.rtf", rtf.name), rtf
    svg, page = window.press("alt+s", ".svg", ".html")
    check_svg(svg)
    assert TEXT in page.read_text(encoding="utf-8"), page
    ipx, _ = window.press("alt+i", ".ipx", ".ipl")
    check_ipx(ipx)
    check_bmp(*window.press("alt+b", ".bmp"))
    stems = {p.name.removesuffix(p.suffix) for p in session.outputs()}
    assert stems == {rtf.stem}, stems
    assert not window.opened_folder(), "opened once"
    assert session.close() == 0
    return rtf


def second_run(window, rtf):
    """The text, face and height are those with which the first run ended."""
    session = window.session
    for file in session.outputs():
        file.unlink()
    session.start()
    window.wait_for_preview("again", 0.02, 0.6)
    again, dxf = window.press("alt+d", ".rtf", ".dxf")
    window.close_opened_folder()
    assert again.name == rtf.name, again
    check_rtf(again, TEXT)
    check_dxf(dxf)
    assert session.close() == 0


def main():
    pictures = pathlib.Path(sys.argv[3] if len(sys.argv) > 3 else
                            pathlib.Path(sys.argv[1]).resolve().parent / "screenshots")
    pictures.mkdir(parents=True, exist_ok=True)
    with WindowsSession(sys.argv[1]) as session:
        session.tool("mousemove", "5", "5")  # no hint shall cover anything
        window = Window(session, pictures)
        try:
            second_run(window, first_run(window))
        except BaseException:
            session.screenshot_all(pictures / "windows-failure.png")
            raise
    print("ok")


main()
