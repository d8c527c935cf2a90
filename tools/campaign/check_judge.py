#!/usr/bin/env python3
"""Whether the judge of the campaigns finds what is wrong, and lets go what a rule allows.

Each line of WRONG is one run that a program must not do, with how the finding begins; each of RIGHT
one that it may. The world: a drawing that was there before, and a setting that changes it.
"""
import errno
import sys

import campaign
from campaign import Case, Fault, Ran, World

OLD, NEW, BARE = b"the old one", b"the new one", b"made with the defaults"
INI = "\ufeff[Dec]\nPrecision=3\n"
SVG = "work/a.svg"
CASE = Case("convert", ["convert", "-o", "a.svg"], targets=(SVG,), names=("DejaVu Sans",))
SET = Case("set", ["settings", "set"], targets=("settings/Quenkit.ini",), names=("Quenkit.ini",))
FIRST = Case("first", ["settings", "set"], targets=SET.targets, names=("Quenkit.ini",))
PATH = Case("path", ["settings", "path"], names=("Quenkit.ini",))
SENT = Case("upload", ["upload", "a.svg"], names=("a.svg",), sends=b"whole")
TABLE = Case("table", ["cut"], targets=("work/1.svg", "work/bad.csv"), names=("row ",),
             failed=("work/bad.csv", b"n,t", {b"1": "work/1.svg"}))
LIST = Case("list", ["faces"])
SIGN = Case("sign", ["a.svg"], targets=(SVG,), library=True)
SHEETS = Case("sheets", ["cut"], targets=(SVG, "work/bad.csv"), names=("row ",), fewer=(None, None),
              failed=("work/bad.csv", b"n,t", {b"1": SVG, b"2": SVG}))
SHEET = Case("sheet", ["cut"], targets=(SVG,), names=("row ",))
TOLD = "kerno: /home/Quenkit.ini: no permission\n"
FULL = "kerno: a.svg: No space left on device\n"
EXE = b"<!--\r\nEXE          \t    \t(TOP)/bin/kerno\r\nTime 1\r\n--><svg/>"
BLIND = EXE.replace(b"(TOP)/bin/kerno", b"")


class Server:
    bodies = [b"who"]


def world_of(case):
    if case is SET:
        return World({SET.targets[0]: INI}, {SET.targets[0]: INI.replace("3", "7")},
                     Ran(0, b"", ""), {SET.targets[0]: "\ufeff[Dec]\nPrecision=7\n"}, b"")
    if case is FIRST:
        made = {SET.targets[0]: ";--\n; TIME\n[Dec]\nPrecision=7\n"}
        return World({}, made, Ran(0, b"", ""), made, b"")
    if case is TABLE:
        made = {"work/1.svg": NEW, "work/bad.csv": b"n,t\n"}
        return World({"work/bad.csv": OLD}, made, Ran(0, b"out", ""), made, b"bare")
    if case is SHEETS:
        made = {SVG: NEW, "work/bad.csv": b"n,t\n"}
        return World({SVG: OLD, "work/bad.csv": OLD}, made, Ran(0, b"out", ""), made, b"bare",
                     ({SVG: b"fewer"}, {SVG: b"others"}))
    return World({SVG: OLD}, {SVG: NEW}, Ran(0, b"out", ""), {SVG: BARE}, b"bare",
                 ({SVG: b"fewer"},) if case is SHEET else ())


def ran(status=0, out=b"out", err="", what="", path="", **fault):
    fault = Fault(fault.pop("group", "write"), 1, str(errno.EIO), **fault)
    return Ran(status, out, err, what=what, path=path, fault=fault)


AWAY = (b"(TOP)/config/kerno/Quenkit_Setting/Quenkit.ini\n"
        b"the folder of the settings cannot be written; this is the temporary one\n")
NONE_YET = b"there is no file yet: every setting has its default\n"
LOOKS = {"group": "look", "on": True}
THREAD = campaign.TLS_GONE + "\n"
NO_CONFIGURATION = ('Fontconfig error: Cannot load default config file\n'
                    'kerno: face: "DejaVu Sans" is not installed\n')
WRONG = [
    ("a torn target", CASE, ran(), {SVG: NEW[:5]}, "changed: " + SVG),
    ("a torn target, with a word of settings", CASE, ran(err=TOLD), {SVG: NEW[:5]}, "changed: " + SVG),
    ("a torn target after a failure", CASE, ran(1, err=FULL), {SVG: NEW[:5]}, "changed: " + SVG),
    ("a target of defaults without a word", CASE, ran(), {SVG: BARE}, "changed: " + SVG),
    ("an old target", CASE, ran(), {SVG: OLD}, "false success: " + SVG),
    ("an old target, with a word of settings", CASE, ran(err=TOLD), {SVG: OLD}, "false success: " + SVG),
    ("no target", CASE, ran(1, err=FULL), {}, "lost: " + SVG),
    ("another output", CASE, ran(out=b"ou"), {SVG: NEW}, "false success: standard output"),
    ("another output, with a word of settings", PATH, ran(out=b"ou", err=TOLD), {SVG: NEW},
     "false success: standard output"),
    ("a place that has no file", PATH, ran(out=AWAY), {SVG: NEW}, "false success: standard output"),
    ("settings that were not set", SET, ran(out=b"", err=TOLD), {SET.targets[0]: INI},
     "false success: settings"),
    ("settings that lost a line", SET, ran(out=b""), {SET.targets[0]: "\ufeff[Dec]\n"},
     "changed: settings"),
    ("settings without their heading or a line", FIRST, ran(out=b"", **LOOKS), {SET.targets[0]: "[Dec]\n"},
     "false success: settings"),
    ("half a request", SENT, ran(), {SVG: NEW}, "false success: the server"),
    ("something beside", CASE, ran(), {SVG: NEW, "work/.kerno-1-2.tmp": b""}, "left: work/.kerno"),
    ("something in the temporary folder", CASE, ran(1, err=FULL), {SVG: OLD, "tmp/x": b""},
     "left: tmp/x"),
    ("no message", CASE, ran(1), {SVG: OLD}, "mute"),
    ("a message without a name", CASE, ran(1, err="kerno: it failed: no space\n"), {SVG: OLD}, "vague"),
    ("a message without a reason", CASE, ran(1, err="kerno: a.svg\n"), {SVG: OLD}, "vague"),
    ("memory where there was enough", CASE, ran(1, err="kerno: memory: there is not enough\n"),
     {SVG: OLD}, "vague"),
    ("standard output where a file failed", CASE,
     ran(1, err="kerno: standard output: No space\n", path="/x/b.svg"), {SVG: OLD}, "vague"),
    ("a font that nothing happened to", CASE,
     ran(1, err="kerno: /usr/share/fonts/a.ttf: Input/output error\n"), {SVG: OLD}, "vague"),
    ("a face that is called absent", CASE, ran(3, err=NO_CONFIGURATION, of="aside", out=b"", on=True,
                                               path="/usr/share/fonts/a.ttf"), {SVG: OLD}, "status 3"),
    ("a list without a face", LIST, ran(on=True, path="/usr/share/fonts", out=b"ou"), {SVG: NEW},
     "false success: standard output"),
    ("memory of a sign as a failure", SIGN, ran(1, err="kerno: memory: there is not enough\nagain: done\n",
                                                group="alloc"), {SVG: OLD}, "memory that is told"),
    ("memory of a sign that is there", SIGN, ran(4, err=FULL + "again: done\n"), {SVG: OLD}, "memory that is not"),
    ("a sign that stays broken", SIGN, ran(1, err=FULL), {SVG: OLD}, "broken"),
    ("a sheet with a row that is in the table", SHEETS, ran(1, err="kerno: row 1: no space\n"),
     {SVG: NEW, "work/bad.csv": b"n,t\n1,a\n"}, "changed: work/bad.csv"),
    ("a torn target without variables of a thread", CASE, ran(127, err=THREAD), {SVG: NEW[:5]},
     "changed: " + SVG),
    ("a torn target without a configuration", CASE,
     ran(3, err=NO_CONFIGURATION, of="aside", out=b"", path=str(campaign.FONTS)), {SVG: NEW[:5]},
     "changed: " + SVG),
    ("a comment without the program", CASE, ran(), {SVG: BLIND}, "changed: " + SVG),
    ("another drawing", CASE, ran(**LOOKS), {SVG: BLIND + b"<path/>"}, "changed: " + SVG),
    ("a failed row that is not in the table", TABLE, ran(1, err="kerno: row 1: no space\n"),
     {"work/bad.csv": b"n,t\n"}, "false table"),
    ("half a row", TABLE, ran(1, err="kerno: row 1: no space\n"), {"work/bad.csv": b"n,t\n1,"},
     "changed: work/bad.csv"),
    ("a sheet without a row", SHEET, ran(), {SVG: b"fewer"}, "changed: " + SVG),
    ("a crash", CASE, ran(-11), {SVG: OLD}, "crash"),
]
RIGHT = [
    ("settings without their heading", FIRST, ran(out=b"", **LOOKS), {SET.targets[0]: "[Dec]\nPrecision=7\n"}),
    ("the new one", CASE, ran(), {SVG: NEW}),
    ("the old one after a failure", CASE, ran(1, err=FULL), {SVG: OLD}),
    ("the defaults, told", CASE, ran(err=TOLD), {SVG: BARE}),
    ("the output of defaults, told", PATH, ran(out=b"bare", err=TOLD), {SVG: NEW}),
    ("a place elsewhere", PATH, ran(out=AWAY + NONE_YET), {SVG: NEW}),
    ("a place that cannot be looked at", PATH, ran(out=AWAY, group="look"), {SVG: NEW}),
    ("settings that went elsewhere", SET, ran(out=b"", err=TOLD),
     {SET.targets[0]: INI, "tmp/nobody/Quenkit.ini": "\ufeff[Dec]\nPrecision=7\n"}),
    ("memory", CASE, ran(1, err="kerno: memory: there is not enough\n", what="malloc"), {SVG: OLD}),
    ("standard output", CASE, ran(1, err="kerno: standard output: No space\n", path="pipe:[1]"),
     {SVG: OLD}),
    ("a font of later calls", CASE, ran(1, err="kerno: /usr/share/fonts/a.ttf: Input/output error\n",
                                        of="aside", on=True), {SVG: OLD}),
    ("a face that Fontconfig passed over", CASE,
     ran(3, err=NO_CONFIGURATION, of="aside", out=b"", path="/usr/share/fonts/a.ttf"), {SVG: OLD}),
    ("memory of a sign", SIGN, ran(4, err="kerno: memory: there is not enough\nagain: done\n", what="malloc",
                                    group="alloc"),
     {SVG: OLD}),
    ("a sheet without a row in the table", SHEETS, ran(1, err="kerno: row 1: no space\n"),
     {SVG: b"fewer", "work/bad.csv": b"n,t\n1,a\n"}),
    ("no configuration", CASE, ran(3, err=NO_CONFIGURATION, of="aside", out=b"",
                                   path=str(campaign.FONTS)), {SVG: OLD}),
    ("a list of what Fontconfig sees", LIST, ran(of="aside", out=b"ou", **LOOKS), {SVG: NEW}),
    ("no look at the program", CASE, ran(**LOOKS), {SVG: BLIND}),
    ("a row in the table", TABLE, ran(1, err="kerno: row 1: no space\n"),
     {"work/bad.csv": b"n,t\n1,a\n"}),
    ("a sheet of the other rows", SHEET, ran(1, err="kerno: row 1: no space\n"), {SVG: b"fewer"}),
]


def judged(case, run, now):
    world = world_of(case)
    if case is CASE and run.fault.group == "look" or any(b"EXE" in v for v in now.values() if isinstance(v, bytes)):
        world.after[SVG] = EXE
    return campaign.judge(case, world, run, now, Server if case is SENT else None)


def main():
    failed = 0
    for name, case, run, now, wanted in WRONG:
        found = judged(case, run, now)
        if not any(finding.startswith(wanted) for finding in found):
            failed += 1
            print(f"not found: {name}: {found}")
    for name, case, run, now in RIGHT:
        if found := judged(case, run, now):
            failed += 1
            print(f"found where nothing is wrong: {name}: {found}")
    print(f"{len(WRONG)} runs that are wrong, {len(RIGHT)} that are right, {failed} judged otherwise")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
