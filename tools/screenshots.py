#!/usr/bin/env python3
"""Pictures of the window in each of its states, on a display of their own; of the Windows program under
Wine.

usage: screenshots.py KERNO-DESKTOP FOLDER
"""
import pathlib
import sys
import time

from desktop_session import session_of

SETTLE = 1.0  # seconds until what was typed is shown

LATIN = "Kerno 2026\nSphinx of black quartz, judge my vow"
JAPANESE = "龍と鳳凰、あいうえお\n明朝体の見本"


def choose_face(session, face):
    session.key("alt+a")
    session.key("ctrl+a")
    session.type(face)
    session.key("Escape")  # the list of names that hold what was typed


def draw(session, text, face):
    session.click((100, 60))  # in the text box
    for number, line in enumerate(text.split("\n")):
        if number:
            session.key("Return")
        session.type(line)
    choose_face(session, face)


def states(folder):
    """Each state: its name, how large things are shown, and what the user does."""
    return [
        ("empty", 1, lambda s: None),
        ("latin", 1, lambda s: draw(s, LATIN, "DejaVu Serif")),
        ("japanese", 1, lambda s: draw(s, JAPANESE, "IPAMincho")),
        ("japanese-200", 2, lambda s: draw(s, JAPANESE, "IPAMincho")),
        ("vertical", 1, lambda s: (draw(s, "縦書きの見本「ー」", "IPAGothic"),
                                   s.key("Tab", "space"))),
        ("parts", 1, lambda s: (draw(s, LATIN, "DejaVu Serif"),
                                s.key("Tab", "Tab", "Tab", "Tab", "space"))),
        ("face-list", 1, lambda s: (draw(s, LATIN, "DejaVu Serif"), s.key("alt+Down"))),
        ("about", 1, lambda s: (draw(s, LATIN, "DejaVu Serif"), s.key("F1"))),
        ("substitute", 1, lambda s: draw(s, "Kerno あ", "No Such Face")),
        ("error", 1, lambda s: (draw(s, LATIN, "DejaVu Serif"),
                                s.output_folder().write_text("in the way"),
                                s.key("alt+d"))),
    ]


def main():
    program, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    folder.mkdir(parents=True, exist_ok=True)
    for name, scale, act in states(folder):
        size = "1720x1360" if scale == 2 else "1000x760"
        with session_of(program, size=size, scale=scale) as session:
            time.sleep(SETTLE)
            act(session)
            time.sleep(SETTLE)
            session.screenshot_all(folder / f"{name}.png")
            print(folder / f"{name}.png")


main()
