"""Japanese typed with a real input method (ibus with kkc) into both pages."""
from desk import Desk, differing_pixels

SETTINGS = """[org/freedesktop/ibus/general]
preload-engines=['kkc']

[org/freedesktop/ibus/engine/kkc/common]
input-mode=0
"""
CANDIDATES = ("search", "--onlyvisible", "--class", "ibus-ui-gtk3")
FAR = 80  # pixels: candidates stand nearer to what they are for


class JapaneseDesk(Desk):
    def __init__(self, program):
        super().__init__(program, environment={"QT_IM_MODULE": "ibus"})
        settings = self.home / "config" / "glib-2.0" / "settings"
        settings.mkdir(parents=True)
        (settings / "keyfile").write_text(SETTINGS)

    def prepare(self):
        self.helper(["ibus-daemon", "--panel=/usr/libexec/ibus-ui-gtk3", "--config=/usr/libexec/ibus-memconf"])
        self.wait_for(lambda: "unix:" in self.run("ibus", "address"))

    def use_engine(self):
        """Once more where the panel, which starts slowly, has taken another one meanwhile."""
        self.wait_for(lambda: self.run("ibus", "engine", "kkc") or
                      self.run("ibus", "engine").strip() == "kkc")

    def candidates(self):
        """The place of the list of candidates, or nothing while it is not shown."""
        for window in self.tool_text(*CANDIDATES).split():
            lines = self.tool_text("getwindowgeometry", "--shell", window).splitlines()
            values = dict(line.split("=") for line in lines)
            return [int(values[key]) for key in ("X", "Y", "WIDTH", "HEIGHT")]
        return None


class Trial:
    def __init__(self, desk, folder):
        self.desk, self.folder = desk, folder

    def field(self, name):
        return self.desk.control(name, "text")

    def see(self, name, place=None):
        return self.desk.picture(self.folder / f"input-{name}.png", place)

    def compose(self, name, romaji, page):
        """Types, and sees that what is composed is shown in its field and nowhere else."""
        desk = self.desk
        desk.use_engine()
        field, preview = self.field(name), desk.control("Preview")["place"]
        before = self.see("before", field["place"])
        drawn = self.see("drawn", preview)
        for letter in romaji:
            desk.type(letter)
            assert differing_pixels(drawn, self.see("drawn-while", preview)) == 0, "the drawing changed"
        desk.wait_for(lambda: differing_pixels(before, self.see("composed", field["place"])) > 50)
        text = self.field(name)["text"]
        assert text == field["text"], f"what is composed is no text yet: {text!r}"
        assert differing_pixels(drawn, self.see("drawn-while", preview)) == 0, "the drawing changed"
        self.see(f"{page}-composing")

    def convert(self, name, page):
        """Asks for the candidates, which stand at the field."""
        desk = self.desk
        desk.key("space", "space")
        place = desk.wait_for(desk.candidates)
        left, top, width, height = self.field(name)["place"]
        assert left - FAR <= place[0] <= left + width, (place, self.field(name)["place"])
        near = min(abs(place[1] - top), abs(place[1] - top - height), abs(place[1] + place[3] - top))
        assert near <= FAR, (place, self.field(name)["place"])
        self.see(f"{page}-candidates")
        desk.key("Up")  # back to the first one

    def commit(self, name, wanted):
        desk = self.desk
        windows = set(desk.windows("."))
        desk.key("Return")
        desk.wait_for_text(name, wanted)
        assert set(desk.windows(".")) <= windows, "the key that ends the composing opened a window"

    def cancel(self, name, page):
        desk = self.desk
        text = self.field(name)["text"]
        self.compose(name, "neko", page)
        desk.key("Escape", "Escape")
        desk.type("m")  # what is typed next begins from nothing
        desk.key("BackSpace")
        assert self.field(name)["text"] == text, self.field(name)
        assert desk.process.poll() is None and desk.windows("^Kerno$"), "Escape closed the window"


    def type_number(self, name, number):
        """Goes in as it is typed: nothing is composed of it."""
        desk = self.desk
        desk.press(name, "text")
        desk.use_engine()
        desk.key("ctrl+a")
        windows = desk.windows(".")
        desk.type(number)
        desk.wait_for_text(name, number)
        desk.key("Return")
        assert desk.windows(".") == windows, "the key after a number opened a window"

    def search_faces(self):
        desk = self.desk
        desk.press("Search faces", "text")
        self.compose("Search faces", "goshikku", "search")
        desk.key("F7")  # as katakana
        self.commit("Search faces", "ゴシック")
        rows = desk.wait_for(lambda: [o["name"] for o in desk.tree() if o["role"] == "list item"
                                      and "Gothic" in o["name"] and "showing" in o["states"]])
        assert "IPAGothic" in rows, rows
        self.see("search-found")


def trial(program, folder):
    with JapaneseDesk(program) as desk:
        run = Trial(desk, folder)
        run.compose("Text", "nihongo", "classic")
        run.convert("Text", "classic")
        run.commit("Text", "日本語")
        desk.wait_for_status("3 characters")
        run.cancel("Text", "classic-cancel")
        run.type_number("Height", "250")
        desk.wait_for_status("190 units")
        desk.press("Text", "text")
        desk.choose_cut()
        desk.wait_for_status("mm")
        desk.key("ctrl+a", "Delete")
        run.compose("Text", "nihongo", "cut")
        run.convert("Text", "cut")
        run.commit("Text", "日本語")
        desk.wait_for_status("paths")
        run.cancel("Text", "cut-cancel")
        run.type_number("Height", "2cm")
        desk.wait_for_status("paths")
        run.search_faces()
