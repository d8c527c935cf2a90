#!/usr/bin/env python3
"""Pictures of the window in each of its states, on a display of their own; of the Windows program under
Wine.

usage: screenshots.py KERNO-DESKTOP FOLDER [STATE...]
"""
import pathlib
import sys
import time

from desktop_session import session_of

SETTLE = 1.5  # seconds until what was typed is shown

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


def cut(session, text=None):
    """The Cut page with its sample, or with a text of one line."""
    session.choose_cut()
    if text:
        session.key("ctrl+a")
        session.type(text)


GERMAN, JAPANESE_LOCALE = {"LC_ALL": "de_DE.UTF-8"}, {"LC_ALL": "ja_JP.UTF-8"}
DARK = {"QT_QPA_PLATFORMTHEME": "gtk3", "GTK_THEME": "Adwaita:dark"}
SMALL, USUAL, LARGE = "800x480", "1000x760", "1920x1080"


def states():
    """Each state: its name, what the user does, the screen, how large things are shown, the environment."""
    draw_latin = lambda s: draw(s, LATIN, "DejaVu Serif")  # noqa: E731
    return [
        ("empty", lambda s: None, USUAL, 1, {}),
        ("latin", draw_latin, USUAL, 1, {}),
        ("latin-small", draw_latin, SMALL, 1, {}),
        ("latin-german-175", draw_latin, LARGE, 1.75, GERMAN),
        ("latin-dark", draw_latin, USUAL, 1, DARK),
        ("japanese", lambda s: draw(s, JAPANESE, "IPAMincho"), USUAL, 1, JAPANESE_LOCALE),
        ("japanese-200", lambda s: draw(s, JAPANESE, "IPAMincho"), "1720x1360", 2, {}),
        ("vertical", lambda s: (draw(s, "縦書きの見本「ー」", "IPAGothic"), s.key("Tab", "space")),
         USUAL, 1, {}),
        ("parts", lambda s: (draw_latin(s), s.key("Tab", "Tab", "Tab", "Tab", "space")), USUAL, 1, {}),
        ("face-list", lambda s: (draw_latin(s), s.key("alt+Down")), USUAL, 1, {}),
        ("suggestions", lambda s: (draw_latin(s), s.key("alt+a", "ctrl+a"), s.type("deja")), USUAL, 1,
         {}),
        ("about", lambda s: (draw_latin(s), s.key("F1")), USUAL, 1, {}),
        ("substitute", lambda s: draw(s, "Kerno あ", "No Such Face"), USUAL, 1, {}),
        ("error", lambda s: (draw_latin(s), s.output_folder().write_text("in the way"),
                             s.key("alt+d")), USUAL, 1, {}),
        ("cut", lambda s: cut(s), "1280x900", 1, {}),
        ("cut-small", lambda s: cut(s), SMALL, 1, {}),
        ("cut-german-175", lambda s: cut(s), LARGE, 1.75, GERMAN),
        ("cut-japanese", lambda s: cut(s, "いろは"), "1280x900", 1, JAPANESE_LOCALE),
        ("cut-dark", lambda s: cut(s), "1280x900", 1, DARK),
    ]


def main():
    program, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    wanted = sys.argv[3:]
    folder.mkdir(parents=True, exist_ok=True)
    for name, act, size, scale, environment in states():
        if wanted and name not in wanted:
            continue
        with session_of(program, size=size, scale=scale, environment=environment) as session:
            time.sleep(SETTLE)
            act(session)
            time.sleep(SETTLE)
            session.screenshot_all(folder / f"{name}.png")
            print(folder / f"{name}.png")


main()
