"""Ends of a run that the user does not choose: text and settings are there the next time."""
import signal

from desk import Desk


class EndingDesk(Desk):
    def start_again(self):
        """The window on the same display, or on a new one where that has gone."""
        if self.server.poll() is not None:
            for child in self.children:
                child.terminate()
                child.wait()
            self.children.clear()
            self.start_server()
        self.start()
        self.wait_for(self.tree)

    def end_by(self, number):
        self.process.send_signal(number)

    def close_connection(self):
        """As the user's last means against a program that hangs, here one that does not."""
        self.helper(["xkill", "-id", self.window]).wait(10)

    def end_server(self):
        self.server.terminate()
        self.server.wait()


ENDS = (("SIGTERM", lambda desk: desk.end_by(signal.SIGTERM), 0),
        ("SIGHUP", lambda desk: desk.end_by(signal.SIGHUP), 0),
        ("SIGINT", lambda desk: desk.end_by(signal.SIGINT), 0),
        ("the connection to the display closed", EndingDesk.close_connection, 1),
        ("the display gone", EndingDesk.end_server, 1))


def trial(program, _folder):
    with EndingDesk(program) as desk:
        for number, (name, end, status) in enumerate(ENDS):
            height, text = str(30 + number), f"Kept {number}"
            desk.press("Text", "text")
            desk.key("ctrl+a")
            desk.type(text)
            desk.press("Height", "text")
            desk.key("ctrl+a")
            desk.type(height)
            desk.wait_for_text("Height", height)
            end(desk)
            assert desk.process.wait(20) == status, f"{name}: {desk.process.returncode}"
            desk.start_again()
            desk.wait_for_text("Text", text)
            desk.wait_for_text("Height", height)
            print(f"{name}: text and height are kept")
