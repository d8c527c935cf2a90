"""Changes while the window is open: the desktop's colours, sliders, the Tab key's way, a second window."""
import pathlib
import subprocess

from dragging import DragDesk, as_address, drop

VARIABLE_FONT = pathlib.Path("/usr/share/fonts/truetype/inter-vf/Inter.var.ttf")
LIGHT = {"paper": "252,252,252", "window": "239,240,241", "ink": "35,38,41"}
DARK = {"paper": "27,30,32", "window": "42,46,50", "ink": "252,252,252"}
GROUPS = {"Colors:Window": "window", "Colors:View": "paper", "Colors:Button": "window",
          "Colors:Tooltip": "window"}


def scheme(colors):
    groups = "".join(f"[{group}]\nBackgroundNormal={colors[paper]}\nForegroundNormal={colors['ink']}\n"
                     f"BackgroundAlternate={colors[paper]}\n" for group, paper in GROUPS.items())
    return groups + "[Colors:Selection]\nBackgroundNormal=61,174,233\nForegroundNormal=252,252,252\n"


class LookingDesk(DragDesk):
    """A desktop whose colours stand in a file, with a signal to the programs that it has changed."""

    def __init__(self, program, **options):
        super().__init__(program, environment={"QT_QPA_PLATFORMTHEME": "kde", "KDE_FULL_SESSION": "true",
                                               "KDE_SESSION_VERSION": "5"}, **options)
        self.environment["XDG_CURRENT_DESKTOP"] = "KDE"
        self.write_colors(LIGHT)

    def write_colors(self, colors):
        (self.home / "config" / "kdeglobals").write_text(scheme(colors))

    def change_colors(self, colors):
        self.write_colors(colors)
        self.run("gdbus", "emit", "--session", "--object-path", "/org/freedesktop/portal/desktop",
                 "--signal", "org.freedesktop.portal.Settings.SettingChanged",
                 "'org.kde.kdeglobals.General'", "'ColorScheme'", "<'other'>")

    def color_at(self, place):
        """Of a pixel of the screen, as R,G,B."""
        left, top = place
        told = subprocess.run(["import", "-window", "root", "-crop", f"1x1+{left}+{top}", "-depth", "8",
                               "rgb:-"], env=self.environment, capture_output=True, check=True).stdout
        return ",".join(map(str, told[:3]))

    def look_of(self, name, role=None):
        """The colour inside a control's upper right corner, where no text stands."""
        left, top, width, _ = self.control(name, role)["place"]
        return self.color_at((left + width - 24, top + 8))

    def brightness_of(self, button):
        """At its left edge, 0 to 255."""
        left, top, _, height = self.control(button, "push button")["place"]
        return sum(map(int, self.color_at((left + 4, top + height - 5)).split(","))) / 3

    def corner_of_preview(self):
        """Of the paper, beside rulers and drawing."""
        left, top, width, height = self.control("Preview")["place"]
        return self.color_at((left + width - 6, top + height - 6))

    def contrast_of(self, file, place):
        """The difference between the darkest and the lightest pixel, 0 to 255."""
        self.picture(file, place)
        told = subprocess.run(["convert", str(file), "-colorspace", "gray", "-format",
                               "%[fx:255*(maxima-minima)]", "info:"], check=True, capture_output=True, text=True)
        return float(told.stdout)


# Black letters keep their white paper in Classic, whatever the desktop's colours are.
PAPERS = {"classic": {"dark": "255,255,255", "light": LIGHT["paper"]},
          "cut": {"dark": DARK["paper"], "light": LIGHT["paper"]}}
LEGIBLE = 100  # of 255, between letters and paper


def check_colors(desk, folder):
    """Text box, preview and status follow in both pages, and back."""
    for mode, sign in (("classic", "units"), ("cut", "paths")):
        desk.wait_for_status(sign)
        for colors, name in ((DARK, "dark"), (LIGHT, "light")):
            desk.change_colors(colors)
            paper = PAPERS[mode][name]
            desk.wait_for(lambda: desk.look_of("Text", "text") == paper)
            desk.wait_for(lambda: desk.corner_of_preview() == paper)
            status = desk.control(desk.status(), "label")
            contrast = desk.contrast_of(folder / "status.png", status["place"])
            assert contrast >= LEGIBLE, f"{mode}, {name}: the status line has a contrast of {contrast}"
            desk.picture(folder / f"live-{mode}-{name}.png")
            if mode == "cut":
                buttons = [desk.brightness_of(button) for button in ("Other formats", "Copy as SVG")]
                assert abs(buttons[0] - buttons[1]) < LEGIBLE, f"{name}: of two buttons one is not {name}"
        desk.press("Text", "text")
        if mode == "classic":
            desk.choose_cut()


def check_sliders(desk, folder):
    drop(desk, as_address(VARIABLE_FONT))
    slider = desk.wait_for(lambda: next((o for o in desk.tree() if o["role"] == "slider"
                                         and o["name"] == "Weight"), None))
    desk.wait_for(lambda: "Inter" in {o["name"] for o in desk.tree()})

    def figure():
        return float(desk.control("Weight", "spin button")["value"])
    seen = [(figure(), desk.status())]

    def after(act, grows):
        act()
        desk.wait_for(lambda: (figure() > seen[-1][0]) == grows and figure() != seen[-1][0])
        desk.wait_for(lambda: "mm" in desk.status() and desk.status() != seen[-1][1])
        seen.append((figure(), desk.status()))
    left, top, width, height = slider["place"]
    after(lambda: desk.click_at((left + width - 4, top + height // 2)), True)  # a page towards it
    after(lambda: desk.key("Right", "Right", "Right"), True)
    after(lambda: desk.key("Home"), False)
    after(lambda: desk.key("End"), True)
    assert figure() == 900, figure()
    desk.drag((left + width - 6, top + height // 2), (left + width // 3, top + height // 2))
    after(lambda: None, False)
    desk.picture(folder / "sliders.png")


def focused(desk):
    """What has the keyboard. The current row of a list says so of itself at all times."""
    tree = desk.tree()
    found = [o for o in tree if {"focused", "focusable"} <= set(o["states"]) and o["role"] != "list item"]
    assert found, "nothing has the keyboard"
    _, top, _, height = next(o["place"] for o in tree if o["role"] == "frame")
    assert top <= desk.middle(found[0])[1] <= top + height, f"out of sight: {found[0]}"
    return found[0]["role"], found[0]["name"], found[0]["description"]


def check_tab_order(desk, page, fewest):
    """Shift and Tab go the way back that Tab came, over every stop."""
    desk.press("Text", "text")
    start, way = focused(desk), []
    for _ in range(80):
        desk.key("Tab")
        way.append(focused(desk))
        if way[-1] == start:
            break
    assert way[-1] == start, f"{page}: Tab does not come round: {way}"
    back = []
    for _ in way:
        desk.key("shift+Tab")
        back.append(focused(desk))
    assert back == list(reversed(way[:-1])) + [start], f"{page}:\n{way}\n{back}"
    assert len(way) >= fewest, f"{page}: {way}"
    print(f"{page}: {len(way)} stops of the Tab key, the same way back")


def outer_place(desk, window):
    """Of the content; the frame's bar stands over it."""
    told = dict(line.split("=") for line in
                desk.tool_text("getwindowgeometry", "--shell", window).splitlines())
    return [int(told[key]) for key in ("X", "Y", "WIDTH", "HEIGHT")]


def check_second_window(desk, folder):
    first = desk.window
    before = outer_place(desk, first)
    second = subprocess.Popen(desk.program, env=desk.environment)
    try:
        both = desk.wait_for(lambda: len(desk.windows("^Kerno$")) == 2 and desk.windows("^Kerno$"))
        other = next(w for w in both if w != first)
        desk.wait_for(lambda: outer_place(desk, other)[:2] != [0, 0])
        place = outer_place(desk, other)
        desk.picture(folder / "second-window.png")
        assert place[0] - before[0] >= 16 and place[1] - before[1] >= 16, (before, place)
    finally:
        second.terminate()
        assert second.wait(20) == 0
    # It comes back where it was closed, frame included, run after run.
    desk.tool("windowmove", "--sync", first, "140", "90")
    desk.wait_for(lambda: outer_place(desk, first)[:2] != before[:2])
    moved = outer_place(desk, first)
    for _ in range(2):
        assert desk.close() == 0
        desk.start()
        desk.wait_for(lambda: outer_place(desk, desk.window) == moved)
    desk.press("Text", "text")


def trial(program, folder):
    with LookingDesk(program, size="1500x1000") as desk:
        desk.wait_for(desk.tree)
        desk.type("Hamburg")
        check_second_window(desk, folder)
        check_tab_order(desk, "Classic", 15)
        check_colors(desk, folder)
        check_tab_order(desk, "Cut", 35)
        check_sliders(desk, folder)
        assert desk.close() == 0
