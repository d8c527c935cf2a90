"""A whole desktop around the real window: a bus of messages, a window manager and helpers of one's own.

Everything runs in a folder of its own and ends with it; nothing of the user's is read or written.
"""
import json
import os
import pathlib
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent))
from desktop_session import DesktopSession  # noqa: E402


class Desk(DesktopSession):
    """Use in a "with" statement. `helpers` are command lines that run as long as the desk stands."""

    def __init__(self, program, manager="openbox", **options):
        super().__init__(program, **options)
        self.environment.setdefault("LC_ALL", "C.UTF-8")
        for variable in ("DBUS_SESSION_BUS_ADDRESS", "XDG_CURRENT_DESKTOP", "XMODIFIERS", "SESSION_MANAGER"):
            self.environment.pop(variable, None)
        data = self.home / "data"
        data.mkdir()
        # Helpers in Python are those of the system: others lack its modules.
        path = f"{self.home / 'bin'}:/usr/bin:{self.environment['PATH']}"
        self.environment.update({"GSETTINGS_BACKEND": "keyfile", "XDG_DATA_HOME": str(data), "PATH": path,
                                 "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"})
        self.manager = manager
        self.children = []

    def start(self):
        if not self.children:
            self.start_bus()
            # A program that starts before it is there does not ask for it.
            self.helper(["/usr/libexec/at-spi-bus-launcher", "--launch-immediately"])
            self.wait_for(lambda: "'" in self.run("gdbus", "call", "--session", "--dest", "org.a11y.Bus",
                                                  "--object-path", "/org/a11y/bus", "--method",
                                                  "org.a11y.Bus.GetAddress"))
            if self.manager:
                self.helper([self.manager])
                self.wait_for(self.has_manager)
            self.prepare()
        super().start()

    def prepare(self):
        """What runs before the window does."""

    def start_bus(self):
        read_end, write_end = os.pipe()
        self.children.append(subprocess.Popen(
            ["dbus-daemon", "--session", "--nofork", f"--print-address={write_end}"],
            pass_fds=[write_end], env=self.environment, stderr=subprocess.DEVNULL))
        os.close(write_end)
        with os.fdopen(read_end) as answer:
            self.environment["DBUS_SESSION_BUS_ADDRESS"] = answer.readline().strip()

    def has_manager(self):
        answer = self.run("xprop", "-root", "_NET_SUPPORTING_WM_CHECK")
        return "window id" in answer

    def helper(self, command, **options):
        options.setdefault("stderr", subprocess.DEVNULL)
        options.setdefault("stdout", subprocess.DEVNULL)
        child = subprocess.Popen(list(map(str, command)), env=self.environment, **options)
        self.children.append(child)
        return child

    def run(self, *command):
        """What a command prints, whatever its exit status."""
        return subprocess.run(list(map(str, command)), env=self.environment, capture_output=True,
                              text=True, check=False).stdout

    def __exit__(self, *error):
        try:
            super().__exit__(*error)
        finally:
            for child in reversed(self.children):
                if child.poll() is None:
                    child.terminate()
                try:
                    child.wait(10)
                except subprocess.TimeoutExpired:
                    child.kill()
                    child.wait()

    # What assistive technology sees: the surest way to read a window.

    def tree(self):
        """The window's objects in reading order, as read_tree.py tells them."""
        return json.loads(self.run("/usr/bin/python3", HERE / "read_tree.py", "kerno") or "[]")

    def control(self, name, role=None):
        """The object that shows and has this name, whose role is the one named if any is."""
        found = [o for o in self.tree() if o["name"] == name and "showing" in o["states"]
                 and role in (None, o["role"])]
        assert len(found) == 1, f"{len(found)} objects are named {name!r} ({role}): {found}"
        return found[0]

    def status(self):
        """The line that says what the drawing is, or what went wrong."""
        picture = next((o for o in self.tree() if o["role"] == "image" and "showing" in o["states"]), None)
        return picture["description"] if picture else ""

    def wait_for_status(self, part, seconds=20):
        try:
            return self.wait_for(lambda: part in self.status(), seconds)
        except AssertionError:
            raise AssertionError(f"the status does not say {part!r} but {self.status()!r}") from None

    def wait_for_status_line(self, part):
        """Until a line of the window says this, also before the drawing's own line."""
        self.wait_for(lambda: any(part in o["name"] and o["role"] == "label" for o in self.tree()), 15)

    def wait_for_text(self, name, wanted):
        """Until the field of this name holds a text."""
        try:
            self.wait_for(lambda: self.control(name, "text")["text"] == wanted, 10)
        except AssertionError:
            raise AssertionError(f"{name} holds {self.control(name, 'text')['text']!r}, not {wanted!r}") from None

    def middle(self, control):
        left, top, width, height = control["place"]
        return left + width // 2, top + height // 2

    def press(self, name, role=None):
        """Clicks on the object of this name."""
        self.click_at(self.middle(self.control(name, role)))

    def click_at(self, place):
        self.tool("mousemove", *map(str, place), "click", "1")

    def windows(self, name):
        """The numbers of the shown windows whose names match."""
        return self.tool_text("search", "--onlyvisible", "--name", name).split()

    def picture(self, file, place=None):
        """A screenshot of a part of the screen, or of all of it."""
        cut = ["-crop", "{2}x{3}+{0}+{1}".format(*place), "+repage"] if place else []
        subprocess.run(["import", "-window", "root", *cut, str(file)], env=self.environment, check=True)
        return file


def differing_pixels(one, other):
    """How many pixels of two pictures of one size differ."""
    answer = subprocess.run(["compare", "-metric", "AE", str(one), str(other), "null:"],
                            capture_output=True, text=True, check=False).stderr
    return int(float(answer.split()[0]))
