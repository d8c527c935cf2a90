"""A display of its own with the real window in it: real key events, real files.

Nothing of the user's is read or written; no program of the machine's is opened.
"""
import os
import pathlib
import shutil
import subprocess
import tempfile
import time


class DesktopSession:
    """Use in a "with" statement; the program ends with it."""

    def __init__(self, program, size="1280x900", scale=1, arguments=()):
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
        self.program = [str(own), *arguments]
        self.server = self.process = None

    def __enter__(self):
        read_end, write_end = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-screen", "0", f"{self.size}x24"],
            pass_fds=[write_end], stderr=subprocess.DEVNULL)
        os.close(write_end)
        with os.fdopen(read_end) as answer:
            self.environment["DISPLAY"] = ":" + answer.readline().strip()
        self.start()
        return self

    def start(self):
        self.process = subprocess.Popen(self.program, env=self.environment)
        self.window = self.wait_for(lambda: self.tool("search", "--onlyvisible", "--name", "^Kerno$"))
        self.focus()

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

    def tool(self, *arguments):
        done = subprocess.run(["xdotool", *arguments], env=self.environment, capture_output=True,
                              text=True, check=False)
        return done.stdout.split()[-1] if done.stdout.split() else ""

    def focus(self):
        """Without a window manager nobody else gives the window the keyboard."""
        self.tool("windowfocus", "--sync", self.window)

    def type(self, text):
        self.tool("type", "--delay", "30", text)

    def key(self, *keys):
        self.tool("key", "--delay", "60", *keys)

    def outputs(self):
        return sorted((self.home / "tmp" / "Kerno.tmp").glob("*"))

    def wait_for_output(self, suffix):
        """The file's path once it is there; files appear whole."""
        return self.wait_for(lambda: next((p for p in self.outputs() if p.suffix == suffix), None))

    def screenshot_all(self, file):
        """The whole screen, lists and messages included, without its empty rim."""
        subprocess.run(["import", "-window", "root", "-trim", "+repage", str(file)],
                       env=self.environment, check=True)

    def close(self):
        """Closes the window by its own key."""
        self.focus()
        self.key("ctrl+q")
        return self.process.wait(20)
