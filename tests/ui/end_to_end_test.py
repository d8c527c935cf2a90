#!/usr/bin/env python3
"""Starts the real window on a display of its own (the Windows program's under Wine), types with real
keys, presses the buttons, and opens files with independent readers.

usage: end_to_end_test.py KERNO-DESKTOP TOOLS
"""
import pathlib
import re
import subprocess
import sys

import ezdxf

sys.path.insert(0, sys.argv[2])
from desktop_session import session_of  # noqa: E402

READ_RTF = pathlib.Path(__file__).resolve().parents[1] / "app" / "read_rtf.py"
TEXT = "Kerno 8 O"


def printed(*command):
    return subprocess.run(list(map(str, command)), check=True, capture_output=True).stdout.decode("utf-8")


def check_rtf(path):
    read = printed(sys.executable, READ_RTF, path)
    assert read == TEXT, read


def ink(picture, *cut):
    """The share of a picture's pixels that are not about white."""
    return float(printed("convert", picture, *cut, "-alpha", "off", "-colorspace", "gray", "-negate",
                         "-threshold", "10%", "-format", "%[fx:mean]", "info:"))


def preview_ink(session, picture):
    """The share of ink in a place that the preview covers, whatever the sizes of fonts."""
    session.screenshot(picture)
    left, top, width, height = session.window_part(0.10, 0.45, 0.80, 0.30)
    return ink(picture, "-crop", f"{width}x{height}+{left}+{top}", "+repage")


def press(session, key, *suffixes):
    session.key(key)
    return [session.wait_for_output(suffix) for suffix in suffixes]


def first_run(session, picture):
    session.wait_for(lambda: preview_ink(session, picture) == 0)
    session.key("alt+a", "ctrl+a")
    session.type("DejaVu Sans")  # several faces are offered that begin so
    session.click((100, 60))  # in the text box: the list of them takes no click
    session.type(TEXT)
    session.key("alt+h", "ctrl+a")
    session.type("250")
    session.wait_for(lambda: 0.02 <= preview_ink(session, picture) <= 0.6)
    rtf, dxf, emf = press(session, "alt+d", ".rtf", ".dxf", ".emf")
    session.wait_for(session.folder_was_opened)
    assert len(ezdxf.readfile(dxf, encoding="cp932").modelspace().query("LINE")) > 50, dxf
    assert emf.read_bytes()[40:44] == b" EMF", emf
    check_rtf(rtf)
    assert re.fullmatch(r".+_250_" + TEXT + r"\.rtf", rtf.name), rtf
    svg, page = press(session, "alt+s", ".svg", ".html")
    printed("xmllint", "--noout", svg)
    assert TEXT in page.read_text(encoding="utf-8"), page
    ipx, _ = press(session, "alt+i", ".ipx", ".ipl")
    assert b"Kerno" in ipx.read_bytes(), ipx
    assert 0.01 < ink(*press(session, "alt+b", ".bmp")) < 0.9
    stems = {p.name.removesuffix(p.suffix) for p in session.outputs()}
    assert stems == {rtf.stem}, stems
    assert not session.folder_was_opened(), "opened once"
    assert session.close() == 0
    return rtf


def cut_run(session):
    """The Cut page by keys alone, with the system's own dialog, writes what the command line writes."""
    is_windows = sys.argv[1].endswith(".exe")
    session.choose_cut()
    plate, same = session.home / "plate.dxf", session.home / "same.dxf"
    session.key("ctrl+s")
    # Wine's prefix is a Japanese one.
    dialog = session.wait_for(lambda: session.tool("search", "--onlyvisible", "--name", "^(Save|図面を保存)"))
    session.tool("windowfocus", "--sync", dialog)
    session.key("ctrl+a")
    session.type(session.name_of(plate))
    session.key("Return")
    session.wait_for(plate.exists)
    folder = pathlib.Path(sys.argv[1]).parent
    kerno = folder / "../../cli/kerno.exe" if is_windows else folder / "kerno"
    words = ["cut", TEXT, "-o", session.name_of(same), "--quiet"]  # in the face of who names none
    assert subprocess.run(session.command(kerno.resolve(), words), env=session.environment).returncode == 0
    assert plate.read_bytes() == same.read_bytes()
    if is_windows:
        return
    # A process that is asked to end keeps what was typed and chosen.
    session.focus()
    session.type("!")
    session.process.terminate()
    assert session.process.wait(20) == 0
    session.start()
    session.key("shift+Tab", "Left", "space")
    for file in session.outputs():
        file.unlink()
    [written] = press(session, "alt+d", ".dxf")
    assert written.stem.endswith(TEXT + "!"), written


def main():
    picture = pathlib.Path(sys.argv[1]).resolve().parent / "window.png"
    with session_of(sys.argv[1]) as session:
        rtf = first_run(session, picture)
        for file in session.outputs():
            file.unlink()
        session.start()  # the next run begins where the first one ended
        session.wait_for(lambda: preview_ink(session, picture) >= 0.02)
        again, _ = press(session, "alt+d", ".rtf", ".dxf")
        assert again.name == rtf.name, again
        check_rtf(again)
        session.wait_for(session.folder_was_opened)
        cut_run(session)
        assert session.close() == 0
    print("ok")


main()
