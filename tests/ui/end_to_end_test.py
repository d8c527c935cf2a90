#!/usr/bin/env python3
"""Starts the real window on a display of its own, types with real keys, presses the buttons, and
opens the files with independent readers.

usage: end_to_end_test.py KERNO-DESKTOP TOOLS
"""
import pathlib
import re
import subprocess
import sys

import ezdxf

sys.path.insert(0, sys.argv[2])
from desktop_session import DesktopSession  # noqa: E402

HERE = pathlib.Path(__file__).parent


def check_dxf(path):
    drawing = ezdxf.readfile(path, encoding="cp932")
    lines = drawing.modelspace().query("LINE")
    assert len(lines) > 50 and not drawing.audit().errors, path
    # "8" and "O" have holes: more closed loops than letters.
    starts = {tuple(round(c, 6) for c in line.dxf.start) for line in lines}
    ends = {tuple(round(c, 6) for c in line.dxf.end) for line in lines}
    assert starts == ends, "every contour is closed"


def check_ipx(path):
    text = path.read_bytes().decode("cp932")
    assert "Kerno" in text and text.count("\r\n") > 50, path


def check_rtf(path, expected):
    read = subprocess.run([sys.executable, HERE.parent / "app" / "read_rtf.py", path], check=True,
                          capture_output=True).stdout.decode("utf-8")
    assert read == expected, read


def check_emf(path):
    data = path.read_bytes()
    assert data[:4] == b"\x01\0\0\0" and data[40:44] == b" EMF", path
    assert int.from_bytes(data[48:52], "little") == len(data), "the header knows the length"


def main():
    with DesktopSession(sys.argv[1]) as session:
        session.type("Kerno 8 O")  # the text box has the keyboard at the start
        session.key("alt+d")
        check_emf(session.wait_for_output(".emf"))
        check_dxf(session.wait_for_output(".dxf"))
        base = session.wait_for_output(".rtf")
        check_rtf(base, "Kerno 8 O")
        assert re.fullmatch(r".+_100_Kerno 8 O\.rtf", base.name), base
        session.wait_for(session.opened.exists)

        session.type("!")  # another text, the same run
        session.key("alt+i")
        session.wait_for_output(".ipl")
        check_ipx(session.wait_for_output(".ipx"))
        session.key("alt+s")
        page = session.wait_for_output(".html").read_text(encoding="utf-8")
        assert "Kerno 8 O!" in page and base.stem in page, page
        subprocess.run(["xmllint", "--noout", session.wait_for_output(".svg")], check=True)
        stems = {p.name.removesuffix(p.suffix) for p in session.outputs()}
        assert stems == {base.stem}, stems
        assert session.opened.read_text().splitlines() == [str(base.parent)], "opened once"
        assert session.close() == 0

        session.start()  # the next run begins where this one ended
        session.key("alt+i")
        check_ipx(session.wait_for(lambda: next(
            (p for p in session.outputs() if p.name.endswith("_Kerno 8 O!.ipx")), None)))
    print("ok")


main()
