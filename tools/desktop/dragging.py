"""The drawing dragged out of the preview to another program, and files dropped on the window."""
import os
import pathlib
import signal
import subprocess
import urllib.parse

import ezdxf

from desk import Desk, HERE

FONT = pathlib.Path("/usr/share/fonts/truetype/dejavu/DejaVuSerif-Bold.ttf")


class DragDesk(Desk):
    def other(self, *arguments):
        """Starts the program that takes or gives, and waits for its window."""
        child = self.helper(["/usr/bin/python3", HERE / "drop_target.py", *arguments])
        window = self.wait_for(lambda: self.tool("search", "--onlyvisible", "--name", f"^Drop {arguments[0]}$"))
        self.tool("windowmove", "--sync", window, "0", "20")
        return child, window

    def drag(self, start, end, key=None):
        """By the real pointer, in steps as a hand makes them."""
        held = ["keydown", key] if key else []
        self.tool("mousemove", *map(str, start), *held, "mousedown", "1")
        for step in range(1, 21):
            place = [round(a + (b - a) * step / 20) for a, b in zip(start, end)]
            self.tool("mousemove", *map(str, place), "sleep", "0.02")
        self.tool("sleep", "0.3", "mouseup", "1", *(["keyup", key] if key else []))

    def middle_of_window(self, window):
        told = dict(line.split("=") for line in
                    self.tool_text("getwindowgeometry", "--shell", window).splitlines())
        left, top, width, height = (int(told[key]) for key in ("X", "Y", "WIDTH", "HEIGHT"))
        return left + width // 2, top + height // 2

    def scratch(self):
        """The folders from which files were dragged."""
        return sorted(p for p in (self.home / "tmp" / "Kerno.drag").glob("*") if p.is_dir())


def drag_out(desk, home):
    """Out of the preview into another program, which then has the file that Save writes."""
    taken = home / "taken"
    child, window = desk.other("take", taken)
    try:
        desk.tool("windowactivate", "--sync", desk.window)
        desk.drag(desk.middle(desk.control("Preview")), desk.middle_of_window(window), "ctrl")
        desk.wait_for(taken.exists)
    finally:
        child.terminate()
        child.wait()
    [address] = taken.read_text("utf-8").split()
    taken.unlink()
    assert address.startswith("file://"), address
    return pathlib.Path(urllib.parse.unquote(address.removeprefix("file://")))


def drop(desk, *addresses):
    child, window = desk.other("give", *map(str, addresses))
    try:
        desk.drag(desk.middle_of_window(window), desk.middle(desk.control("Preview")))
        child.wait(15)
    finally:
        child.terminate()
        child.wait()


def as_address(path):
    return "file://" + urllib.parse.quote(str(path))


def check_out(desk, program, home, face):
    file = drag_out(desk, home)
    own = file.parent
    assert own.parent == desk.home / "tmp" / "Kerno.drag", own
    assert os.stat(own.parent.parent).st_mode & 0o077 == 0, "others may look into it"
    [text] = [o["text"] for o in desk.tree() if o["name"] == "Text" and o["role"] == "text"]
    same = home / "same.dxf"
    subprocess.run([pathlib.Path(program).with_name("kerno"), "cut", text, "--face", face,
                    "-o", same], check=True, env=desk.environment)
    assert file.read_bytes() == same.read_bytes(), "what is dragged is not what is written"
    assert len(ezdxf.readfile(file).modelspace()) > 5
    return own


def check_drops(desk, home):
    """What each kind of file does to the page, and what the page says to the others."""
    table, text, gone = home / "signs.csv", home / "words.txt", home / "gone.txt"
    table.write_text("name,room\nAnna,12\nBernd,14\n", "utf-8")
    text.write_text("Fahrstuhl\nzwei Zeilen\n", "utf-8")
    parts = home / "old.ipx"
    parts.write_bytes(b"not drawn here")
    picture = home / "picture.bin"
    picture.write_bytes(bytes(range(256)))
    drop(desk, as_address(text))
    desk.wait_for_text("Text", "Fahrstuhl\nzwei Zeilen\n")
    drop(desk, as_address(FONT))
    desk.wait_for(lambda: any(o["role"] == "combo box" and o["name"] == "Bold" for o in desk.tree()))
    for address, told in (
            (as_address(home), "takes tables, text files and font files"),
            (as_address(parts), "takes tables, text files and font files"),
            (as_address(picture), "takes tables, text files and font files"),
            (as_address(gone), "there is no such file"),
            ("http://localhost/plate.txt", "there is no such file")):
        drop(desk, address)
        desk.wait_for_status_line(told)
    assert desk.control("Text", "text")["text"] == "Fahrstuhl\nzwei Zeilen\n", "nonsense changed the text"
    drop(desk, as_address(picture), as_address(text), as_address(gone))
    desk.wait_for_status_line("there is no such file")
    drop(desk, as_address(table))
    desk.wait_for(lambda: any("signs.csv" in o["name"] for o in desk.tree()))


def check_classic_drops(desk, program, home):
    """The same in Classic, where parts are drawn too and the rest is told by a message."""
    text, parts, table = home / "words.txt", home / "old.ipx", home / "signs.csv"
    text.write_text("Words\n", "utf-8")
    table.write_text("name\nAnna\n", "utf-8")
    subprocess.run([pathlib.Path(program).with_name("kerno"), "convert", "Old", "--face", "DejaVu Sans",
                    "-o", parts], check=True, env=desk.environment)
    for file, told in ((text, "5 characters"), (parts, "old.ipx  ·  5 parts"), (FONT, "DejaVu Serif"),
                       (table, "8 characters")):
        drop(desk, as_address(file))
        desk.wait_for_status(told)
    for address, told in ((as_address(home), "takes text files"), (as_address(home / "gone"), "no such file"),
                          ("http://localhost/plate.txt", "no such file")):
        drop(desk, address)
        desk.wait_for(lambda: any(o["role"] == "alert" for o in desk.tree()))
        desk.wait_for_status_line(told)
        desk.key("Escape")
        desk.wait_for(lambda: len(desk.windows(".")) == 1)
    drop(desk, as_address(text), as_address(parts))
    desk.wait_for_status("old.ipx")
    assert desk.control("Text", "text")["text"] == "Words\n"


def trial(program, folder):
    with DragDesk(program, size="1400x900") as desk:
        home = desk.home / "files"
        home.mkdir()
        check_classic_drops(desk, program, home)
        desk.press("Text", "text")
        desk.choose_cut()
        desk.wait_for_status("paths")
        own = check_out(desk, program, home, "DejaVu Sans")
        desk.picture(folder / "dragged-out.png")
        # A run that is killed leaves its folder to the next one.
        desk.process.send_signal(signal.SIGKILL)
        desk.process.wait()
        assert own.is_dir()
        desk.start()
        desk.wait_for(desk.tree)
        desk.key("shift+Tab", "Right", "space")
        desk.wait_for_status("paths")
        check_drops(desk, home)
        desk.picture(folder / "dropped.png")
        assert drag_out(desk, home).exists()
        assert len(desk.scratch()) == 1, desk.scratch()
        assert desk.close() == 0
        assert not desk.scratch(), "files were left"
