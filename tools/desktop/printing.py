"""Drawings printed from the window by a print server of one's own, whose only printer writes files."""
import subprocess

from desk import Desk

FILES = """ServerRoot {0}/etc
StateDir {0}/run
CacheDir {0}/cache
RequestRoot {0}/spool
TempDir {0}/spool
AccessLog {0}/log
ErrorLog {0}/log
PageLog {0}/log
FileDevice Yes
"""
SERVER = """Listen {0}/cups.sock
Browsing Off
WebInterface No
LogLevel warn
DefaultAuthType None
<Location />
  Order allow,deny
  Allow all
</Location>
<Policy default>
  <Limit All>
    Order deny,allow
    Allow all
  </Limit>
</Policy>
"""
DOTS = 300  # by inch, in which what is printed is measured


class PrintDesk(Desk):
    def prepare(self):
        self.place = self.home / "cups"
        for folder in ("etc", "run", "cache", "spool"):
            (self.place / folder).mkdir(parents=True)
        files, server = self.place / "cups-files.conf", self.place / "cupsd.conf"
        files.write_text(FILES.format(self.place))
        server.write_text(SERVER.format(self.place))
        self.environment["CUPS_SERVER"] = str(self.place / "cups.sock")
        self.printed = self.place / "printed.pdf"
        self.server_of_printers = self.helper(["/usr/sbin/cupsd", "-f", "-c", server, "-s", files])
        self.wait_for(lambda: "is running" in self.run("lpstat", "-r"))
        subprocess.run(["/usr/sbin/lpadmin", "-p", "Plate", "-E", "-v", f"file:{self.printed}", "-m", "raw",
                        "-o", "media=iso_a4_210x297mm"], env=self.environment, check=True,
                       stderr=subprocess.DEVNULL)
        subprocess.run(["/usr/sbin/lpadmin", "-d", "Plate"], env=self.environment, check=True)

    def end_printers(self):
        self.server_of_printers.terminate()
        self.server_of_printers.wait()

    def dialog(self, name):
        return self.wait_for(lambda: self.windows(name))[-1]

    def ask_to_print(self):
        self.key("ctrl+p")
        window = self.dialog("^Print$")
        self.tool("windowactivate", "--sync", window)
        return window

    def jobs(self):
        """What arrived at the server, one file for each job."""
        return sorted((self.place / "spool").glob("d*"))

    def wait_for_job(self, number):
        """The PDF of a job that is there as a whole."""
        self.wait_for(lambda: len(self.jobs()) == number and b"%%EOF" in self.jobs()[-1].read_bytes()[-32:])
        return self.jobs()[-1]

    def say_print(self):
        """In the dialog, as soon as its button is there."""
        self.wait_for(lambda: any(o["role"] == "dialog" and o["name"] == "Print" for o in self.tree()))
        self.press_last("Print")

    def press_last(self, name):
        """The button of this name in the window that was opened last."""
        buttons = self.wait_for(lambda: [o for o in self.tree() if o["role"] == "push button"
                                         and o["name"] == name and "showing" in o["states"]])
        self.click_at(self.middle(buttons[-1]))

    def alert(self):
        """What a message says, once there is one."""
        def said():
            tree = self.tree()
            at = next((i for i, o in enumerate(tree) if o["role"] == "alert"), None)
            return None if at is None else " ".join(o["name"] for o in tree[at:] if o["role"] == "label")
        return self.wait_for(said)

    def draw_height(self, height):
        self.press("Height", "text")
        self.key("ctrl+a")
        self.type(str(height))
        self.wait_for_status(f"× {height} mm")


def ink_of(pdf, folder, name):
    """Width and height of what is printed, in millimetres, as Poppler draws it."""
    picture = folder / f"printed-{name}"
    subprocess.run(["pdftoppm", "-r", str(DOTS), "-gray", "-singlefile", str(pdf), str(picture)], check=True)
    size = subprocess.run(["convert", f"{picture}.pgm", "-threshold", "50%", "-trim", "-format", "%w %h",
                           "info:"], check=True, capture_output=True, text=True).stdout.split()
    return [int(pixels) * 25.4 / DOTS for pixels in size]


def check_true_size(desk, folder):
    desk.draw_height(100)
    desk.ask_to_print()
    desk.say_print()
    pdf = desk.wait_for_job(1)
    shown = [float(word) for word in desk.status().split("mm")[0].split("×")]
    for told, measured in zip(shown, ink_of(pdf, folder, "plate")):
        # The line along the edge is 0.1 mm wide, half of it on each side.
        assert abs(measured - told - 0.1) < 0.15, (told, measured)
    print(f"printed 100 mm: {ink_of(pdf, folder, 'plate')[1]:.2f} mm, the line's 0.1 mm included")


def check_larger_than_page(desk, folder):
    desk.draw_height(400)
    desk.ask_to_print()
    desk.say_print()
    told = desk.alert()
    assert "717.5 × 400.0 mm" in told and "cut off" in told, told
    desk.picture(folder / "print-too-large.png")
    desk.key("Escape")
    desk.wait_for(lambda: len(desk.windows(".")) == 1)
    assert len(desk.jobs()) == 1, "printed although it was not wanted"
    desk.ask_to_print()
    desk.say_print()
    desk.alert()
    desk.press_last("Print")
    width, height = ink_of(desk.wait_for_job(2), folder, "cut-off")
    assert width <= 297 and height <= 210, (width, height)


def check_gone(desk, folder):
    desk.draw_height(20)
    desk.ask_to_print()
    desk.wait_for(lambda: any(o["role"] == "dialog" for o in desk.tree()))
    desk.end_printers()
    desk.say_print()
    told = desk.alert()
    assert "cannot be used" in told, told
    desk.picture(folder / "print-gone.png")
    desk.key("Escape")
    desk.wait_for(lambda: len(desk.windows(".")) == 1)


def trial(program, folder):
    with PrintDesk(program) as desk:
        desk.choose_cut()
        desk.wait_for_status("paths")
        desk.press("Text", "text")
        desk.key("ctrl+a")
        desk.type("HH")
        check_true_size(desk, folder)
        desk.ask_to_print()
        desk.key("Escape")
        desk.wait_for(lambda: len(desk.windows(".")) == 1)
        assert len(desk.jobs()) == 1, "the dialog was cancelled"
        check_larger_than_page(desk, folder)
        check_gone(desk, folder)
        assert desk.close() == 0
