"""A display of its own with the real window in it: real key events, real files.

Nothing of the user's is read or written; no program of the machine's is opened.
"""
import os
import pathlib
import shutil
import subprocess
import tempfile
import time

import windows_run


class DesktopSession:
    """Use in a "with" statement; the program ends with it."""

    def __init__(self, program, size="1280x900", scale=1, arguments=(), environment=None):
        self.home = pathlib.Path(tempfile.mkdtemp(prefix="kerno-session-"))
        self.size = size
        self.opened = self.home / "opened"
        tools = self.home / "bin"
        tools.mkdir()
        opener = tools / "xdg-open"
        opener.write_text(f'#!/bin/sh\necho "$1" >> "{self.opened}"\n')
        opener.chmod(0o755)
        self.environment = {
            **{k: v for k, v in os.environ.items() if k not in ("WAYLAND_DISPLAY", "TMP", "TEMP")},
            "PATH": f"{tools}:{os.environ['PATH']}",
            "QT_SCALE_FACTOR": str(scale),
            "QT_QPA_PLATFORM": "xcb",
            **(environment or {}),
        }
        for variable, folder in (("HOME", "home"), ("XDG_CONFIG_HOME", "config"),
                                 ("XDG_CACHE_HOME", "cache"), ("TMPDIR", "tmp"),
                                 ("XDG_RUNTIME_DIR", "run")):
            (self.home / folder).mkdir(mode=0o700)
            self.environment[variable] = str(self.home / folder)
        # Settings may lie beside the program, so it gets a folder of its own.
        own = tools / pathlib.Path(program).name
        try:
            os.link(program, own)
        except OSError:
            shutil.copy2(program, own)
        self.program = self.command(own, arguments)
        self.server = self.process = None

    def command(self, program, arguments):
        """How the program is started."""
        return [str(program), *arguments]

    def name_of(self, path):
        """A file as the program names it."""
        return str(path)

    def output_folder(self):
        return self.home / "tmp" / "Kerno.tmp"

    def __enter__(self):
        self.start_server()
        self.start()
        return self

    def start_server(self):
        read_end, write_end = os.pipe()
        # Without -noreset the display starts again when its last client leaves, and drops who comes then.
        self.server = subprocess.Popen(
            ["Xvfb", "-noreset", "-displayfd", str(write_end), "-screen", "0", f"{self.size}x24"],
            pass_fds=[write_end], stderr=subprocess.DEVNULL)
        os.close(write_end)
        with os.fdopen(read_end) as answer:
            self.environment["DISPLAY"] = ":" + answer.readline().strip()

    def start(self):
        self.process = subprocess.Popen(self.program, env=self.environment)
        self.window = self.wait_for(self.find_window)
        self.focus()
        self.tool("mousemove", "5", "5")  # no hint covers anything

    def find_window(self):
        status = self.process.poll()
        assert status is None, f"the program ended with {status} before it had a window"
        return self.tool("search", "--onlyvisible", "--name", "^Kerno$")

    def __exit__(self, *_):
        for child in (self.process, self.server):
            if child.poll() is None:
                child.terminate()
            child.wait(20)
        shutil.rmtree(self.home, ignore_errors=True)

    def wait_for(self, question, seconds=30):
        """What the question answers as soon as that is something."""
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            answer = question()
            if answer:
                return answer
            time.sleep(0.05)
        raise AssertionError(f"waited {seconds} s in vain")

    def tool_text(self, *arguments):
        # In the locale of a program under test, which this machine may not have, it types ASCII alone.
        environment = {**self.environment, "LC_ALL": "C.UTF-8"}
        return subprocess.run(["xdotool", *arguments], env=environment, capture_output=True,
                              text=True, check=False).stdout

    def tool(self, *arguments):
        """The last word of what xdotool answers."""
        words = self.tool_text(*arguments).split()
        return words[-1] if words else ""

    def focus(self):
        """Without a window manager nobody else gives the window the keyboard."""
        self.tool("windowfocus", "--sync", self.window)

    def type(self, text):
        self.tool("type", "--delay", "30", text)

    def key(self, *keys):
        self.tool("key", "--delay", "60", *keys)

    def click(self, place):
        """Presses the mouse at a place within the window."""
        self.tool("mousemove", "--window", self.window, *map(str, place), "click", "1")

    def choose_cut(self):
        """Goes from the text box of the classic page to the Cut page, by the switch over both."""
        self.key("shift+Tab", "Right", "space")

    def outputs(self):
        return sorted(self.output_folder().glob("*"))

    def wait_for_output(self, suffix):
        """The file's path once it is there; files appear whole."""
        return self.wait_for(lambda: next((p for p in self.outputs() if p.suffix == suffix), None))

    def folder_was_opened(self):
        """Whether the shell was asked to open a folder since the last question."""
        was_opened = self.opened.exists()
        self.opened.unlink(missing_ok=True)
        return was_opened

    def window_part(self, left, top, width, height):
        """Shares of the window in pixels."""
        across, down = (int(self.tool_text("getwindowgeometry", "--shell", self.window)
                            .split(f"{side}=")[1].split()[0]) for side in ("WIDTH", "HEIGHT"))
        return int(across * left), int(down * top), int(across * width), int(down * height)

    def screenshot(self, file):
        """The window alone."""
        subprocess.run(["import", "-window", self.window, str(file)], env=self.environment,
                       check=True)

    def screenshot_all(self, file):
        """The whole screen, lists and messages included, without its empty rim."""
        subprocess.run(["import", "-window", "root", "-trim", "+repage", str(file)],
                       env=self.environment, check=True)

    def close(self):
        """Closes the window by its own key."""
        self.focus()
        self.key("ctrl+q")
        return self.process.wait(20)


class WindowsSession(DesktopSession):
    """The same with a Windows program under Wine, in a prefix of its own: a prefix has one display.

    The prefix stays for the next time (in KERNO_DESKTOP_WINE, else beside the program); the folder of
    outputs in it is emptied.
    """

    def __init__(self, program, **options):
        place = os.environ.get("KERNO_DESKTOP_WINE")
        self.prefix = (pathlib.Path(place).resolve() if place else
                       pathlib.Path(program).resolve().parent / "wine") / "prefix"
        super().__init__(program, **options)
        self.environment["KERNO_WINEPREFIX"] = str(self.prefix)
        # The prefix keeps links into the home in which it was made.
        home = self.prefix.with_name("home")
        home.mkdir(parents=True, exist_ok=True)
        self.environment["HOME"] = str(home)
        if self.output_folder().is_file():
            self.output_folder().unlink()
        shutil.rmtree(self.output_folder(), ignore_errors=True)
        self.density = 96 * options.get("scale", 1)

    def __enter__(self):
        subprocess.run(self.command("reg", [
            "add", r"HKCU\Control Panel\Desktop", "/v", "LogPixels", "/t", "REG_DWORD", "/d",
            str(self.density), "/f"]), env=self.environment, stdout=subprocess.DEVNULL, check=True)
        self.end_wine()  # what runs now has no display
        return super().__enter__()

    def command(self, program, arguments):
        return [windows_run.RUNNER, str(program), *arguments]

    def choose_cut(self):
        self.key("shift+Tab", "Right")  # the arrow chooses, and the keyboard goes to the text

    def name_of(self, path):
        return "Z:" + str(path).replace("/", "\\")

    def output_folder(self):
        users = self.prefix / "drive_c" / "users"
        temp = [user / "Temp" for user in users.glob("*") if user.name != "Public"]
        return (temp[0] if temp else users / "nobody") / "Kerno.tmp"

    def folder_was_opened(self):
        """Closes the folder in the system's own file manager."""
        find = ("search", "--onlyvisible", "--name", r"Kerno\.tmp")
        opened = self.tool(*find)
        if not opened:
            return False
        self.tool("windowfocus", "--sync", opened)
        self.key("alt+F4")
        self.wait_for(lambda: not self.tool(*find))
        self.click((100, 60))  # in the text box
        return True

    def __exit__(self, *error):
        self.end_wine()
        super().__exit__(*error)

    def end_wine(self):
        """Ends what runs in the prefix: the program, and what it has opened."""
        for order in ("-k", "-w"):  # end, and wait for the end
            subprocess.run(["wineserver", order], check=False, stderr=subprocess.DEVNULL,
                           env={**self.environment, "WINEPREFIX": str(self.prefix)})


def session_of(program, **options):
    """The session for a program of either system."""
    return (WindowsSession if program.endswith(".exe") else DesktopSession)(program, **options)
