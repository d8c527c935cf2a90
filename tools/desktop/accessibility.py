"""What assistive technology is told of both pages, in each language."""
from desk import Desk

LANGUAGES = {"English": "C.UTF-8", "German": "de_DE.UTF-8", "Japanese": "ja_JP.UTF-8"}
CONTROLS = {"push button", "check box", "combo box", "text", "spin button", "list", "slider", "image",
            "radio button"}
CLASSIC_ALONE = ("Write SVG", "Write DXF", "Write a bitmap")
CUT_ALONE = ("Search faces", "Print...", "Fit")
# In German as in English.
SAME_IN_GERMAN = {"Text", "Name"}


class Page:
    """The tree of one page in one language."""

    def __init__(self, tree):
        self.tree = tree
        self.shown = [o for o in tree if "showing" in o["states"]]
        self.controls = [o for o in self.shown if o["role"] in CONTROLS and "focusable" in o["states"]]

    def name(self, control):
        """What is read out before the value."""
        return control["captions"][0] if control["captions"] else control["name"]

    def names(self):
        return [(o["role"], self.name(o)) for o in self.controls]


def check_page(page, where):
    for control in page.controls:
        assert page.name(control).strip(), f"{where}: a {control['role']} without a name at {control['place']}"
        assert "(" not in page.name(control), f"{where}: {page.name(control)} tells its key as a word"
        chosen_alone = control["role"] == "combo box" and not control["captions"] and ": " not in control["name"]
        assert not chosen_alone, f"{where}: of {control} only the choice is told"
        left, top, width, height = control["place"]
        assert width > 0 and height > 0, f"{where}: {control}"
    below = None  # the depth of a control, whose parts are the toolkit's
    for part in page.tree:
        if below is not None and part["depth"] > below:
            continue
        below = part["depth"] if part["role"] in CONTROLS | {"menu bar"} else None
        assert part["role"] not in CONTROLS or "visible" in part["states"], f"{where}: hidden {part}"
    [picture] = [o for o in page.shown if o["role"] == "image" and "focusable" in o["states"]]
    assert picture["description"] in {o["name"] for o in page.shown if o["role"] == "label"}, where


def check_absent(page, names, where):
    found = {o["name"] for o in page.tree}
    for name in names:
        assert name not in found, f"{where}: {name} belongs to the other page"


def read_pages(program, language, folder):
    with Desk(program, size="1280x1000", environment={"LC_ALL": LANGUAGES[language]}) as desk:
        desk.wait_for(desk.status)
        classic = Page(desk.tree())
        desk.picture(folder / f"accessible-classic-{language}.png")
        desk.choose_cut()
        desk.wait_for(lambda: "mm" in desk.status())
        cut = Page(desk.tree())
        before = desk.status()
        desk.type("x")
        desk.wait_for(lambda: "mm" in desk.status() and desk.status() != before)
        check_page(Page(desk.tree()), f"{language} after typing")
        return {"Classic": classic, "Cut": cut}


def check_language(english, other, language, page):
    """The same controls in the same order, each by a name of that language."""
    assert [role for role, _ in english] == [role for role, _ in other], f"{page} in {language}"
    for (role, name), (_, named) in zip(english, other):
        if language == "Japanese":
            is_said = any(ord(letter) >= 0x3040 for letter in named)
        else:
            is_said = named != name or name in SAME_IN_GERMAN
        assert is_said or not any(c.isalpha() for c in name), f"{page} in {language}: {role} {named!r}"


def trial(program, folder):
    pages = {language: read_pages(program, language, folder) for language in LANGUAGES}
    for language, read in pages.items():
        for page, found in read.items():
            check_page(found, f"{page} in {language}")
            if language != "English":
                check_language(pages["English"][page].names(), found.names(), language, page)
            print(f"{page} in {language}: {len(found.controls)} controls, each with a name")
    check_absent(pages["English"]["Classic"], CUT_ALONE, "Classic")
    check_absent(pages["English"]["Cut"], CLASSIC_ALONE, "Cut")
