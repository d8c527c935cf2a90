#!/usr/bin/env python3
"""Starts the real window on a display of its own, types with real keys, presses the buttons, and
opens the files with independent readers.

usage: end_to_end_test.py KERNO-DESKTOP TOOLS
"""
import re
import sys

sys.path.insert(0, sys.argv[2])
from desktop_session import DesktopSession  # noqa: E402
from output_checks import check_bmp, check_dxf, check_emf, check_ipx, check_rtf, check_svg  # noqa: E402


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
        check_svg(session.wait_for_output(".svg"))
        session.key("alt+b")
        check_bmp(session.wait_for_output(".bmp"))
        stems = {p.name.removesuffix(p.suffix) for p in session.outputs()}
        assert stems == {base.stem}, stems
        assert session.opened.read_text().splitlines() == [f"{base.parent}/"], "opened once"
        assert session.close() == 0

        session.start()  # the next run begins where this one ended
        session.key("alt+i")
        check_ipx(session.wait_for(lambda: next(
            (p for p in session.outputs() if p.name.endswith("_Kerno 8 O!.ipx")), None)))
    print("ok")


main()
