#!/usr/bin/env python3
"""Misfortunes that are no failing call: closed descriptors, planted links, held files, no rights.

usage: cases.py [--only WORDS] [--folder FOLDER] PROGRAM

Each case prepares the world, runs the program as it is and says what is wrong. Those that take two
users need the superuser and are left out, and named, without.
"""
import argparse
import errno
import fcntl
import os
import shutil
import signal
import struct
import subprocess
import sys
import time

import campaign
import commands
from campaign import Case

USER, OTHER = 65534, 65533  # nobody, and somebody else
FACE = commands.FACE
FONT = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"
NOTHING = Case("", [])

place = None
program = None


def run(words, *, user=None, env=None, **more):
    """Status, standard output and standard error."""
    rights = {"user": user, "group": user, "extra_groups": []} if user else {}
    streams = {"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE, "stderr": subprocess.PIPE}
    done = subprocess.run([str(place.program), *words], cwd=more.pop("cwd", place.work),
                          env={**place.env, **(env or {})}, timeout=60,
                          **{**streams, **more}, **rights)
    return done.returncode, done.stdout or b"", (done.stderr or b"").decode("utf-8", "replace")


def own_folders(user):
    for name in ("home", "config", "cache", "tmp", "work"):
        os.chown(place.top / name, user, user)
    os.chmod(place.top, 0o755)


def foreign_user():
    """The folders belong to USER; the program and its folder to the superuser."""
    own_folders(USER)
    os.chmod(place.program.parent, 0o755)


def files_below(folder):
    return sorted(os.path.relpath(os.path.join(base, name), folder)
                  for base, folders, names in os.walk(folder) for name in names + folders)


# ---- streams -------------------------------------------------------------------------------------


def closed_descriptors():
    """1. No message lands in an output whose descriptor took the place of a closed stream."""
    commands.parts_file(place)
    wanted, found = {}, []
    for extension in ("svg", "dxf", "emf", "bmp"):
        name = "a." + extension
        words = ["convert", "--ipx", "parts.ipx", "-o", name]  # warns of what it leaves out
        for closed in range(8):
            (place.work / name).unlink(missing_ok=True)
            streams = [n for n in range(3) if closed >> n & 1]
            process = subprocess.Popen(
                [str(place.program), *words], cwd=place.work, env=place.env, stdin=subprocess.DEVNULL,
                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                preexec_fn=lambda s=streams: [os.close(n) for n in s])
            status = process.wait(timeout=60)
            now = None
            if (place.work / name).is_file():
                now = campaign.settled(name, (place.work / name).read_bytes(), place.top)
            wanted.setdefault(name, now)
            if now != wanted[name] and (now is not None or status == 0):
                found.append(f"{name}, closed {streams}: the output is another, status {status}")
    return found


def closed_pipe():
    """2. A reader that goes away leaves nothing in the temporary folder, nor does a kill."""
    found = []
    for end in ("pipe", "kill"):
        process = subprocess.Popen(
            [str(place.program), "convert", "--text", "Abgq" * 4000, *FACE, "--format", "svg", "-o",
             "-", "--quiet"], cwd=place.work, env=place.env, stdout=subprocess.PIPE,
            stderr=subprocess.PIPE)
        process.stdout.read(1)
        if end == "kill":
            process.kill()
        process.stdout.close()
        err = process.stderr.read().decode()
        status = process.wait(timeout=60)
        left = files_below(place.top / "tmp")
        if left:
            found.append(f"{end}: left {left[0]} and {len(left) - 1} more, status {status}")
        if status not in (1, -signal.SIGPIPE, -signal.SIGKILL) or err.count("\n") > 1:
            found.append(f"{end}: status {status}: {err[:150]}")
    return found


def full_device():
    """9. Where only the summary cannot be printed, the message says that the file is whole."""
    with open("/dev/full", "wb") as full:
        status, _, err = run(["convert", "--text", "Ab", *FACE, "-o", "a.svg"], stdout=full)
    if (place.work / "a.svg").is_file() and (status != 1 or "whole" not in err):
        return [f"status {status}: {err.strip()!r}"]
    return []


# ---- settings ------------------------------------------------------------------------------------


def read_only_settings():
    """3. Settings that can be read and not written are read; a change says what became of it."""
    commands.beside(place)
    foreign_user()
    for path in (place.program.parent / "Quenkit_Setting").rglob("*"):
        os.chmod(path, 0o644)
    found, file = [], str(place.program.parent / "Quenkit_Setting" / "Quenkit.ini")
    status, out, err = run(["settings", "get", "Dec", "SvgOut::Precision"], user=USER)
    if out.strip() != b"3":
        found.append(f"get: {out!r}, status {status}: {err.strip()!r}")
    status, out, err = run(["settings", "path"], user=USER)
    if file not in out.decode() or "no file yet" in out.decode():
        found.append(f"path: {out.decode()!r}")
    status, _, err = run(["convert", "--text", "Ab", *FACE, "-o", "a.svg"], user=USER)
    if b"SvgOut::Precision\t3" not in (place.work / "a.svg").read_bytes() and "warning" not in err:
        found.append(f"convert: defaults without a word, status {status}: {err.strip()!r}")
    status, _, err = run(["settings", "set", "Dec", "SvgOut::Precision", "9"], user=USER)
    again = run(["settings", "get", "Dec", "SvgOut::Precision"], user=USER)[1].strip()
    if not err or (status == 0 and again != b"9"):
        found.append(f"set: status {status}, then {again!r}: {err.strip()!r}")
    return found


def no_home():
    """3. Without a home nothing is written into the current folder."""
    foreign_user()
    found = []
    env = {key: "" for key in ("HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME")}
    for words in (["settings", "get", "Dec", "SvgOut::Precision"],
                  ["settings", "set", "Dec", "SvgOut::Precision", "9"], ["faces"],
                  ["measure", "--text", "Ab", *FACE]):
        run(words, user=USER, env=env)
        left = files_below(place.work)
        if left:
            found.append(f"{' '.join(words[:2])}: wrote {left}")
            break
    return found


def held(words, name):
    """A lock on the settings, as another program takes it."""
    file = place.program.parent / "Quenkit_Setting" / "Quenkit.ini"
    with open(file, "rb+") as holder:
        fcntl.fcntl(holder, 37, struct.pack("hhqqi4x", fcntl.F_WRLCK, 0, 0, 0, 0))  # F_OFD_SETLK
        fcntl.flock(holder, fcntl.LOCK_EX)
        began = time.monotonic()
        status, _, err = run(words)
        seconds = time.monotonic() - began
    found = []
    if seconds > 13:
        found.append(f"{name}: waited {seconds:.0f} s where ten are documented")
    if "--quiet" in words and "FileWait" in err:
        found.append(f"{name}: {err.strip()[:120]!r}")
    return found, status, err


def held_settings():
    """8. Settings that another process holds: ten seconds at most, and words that say so."""
    commands.beside(place)
    found = held(["convert", "--text", "Ab", *FACE, "--quiet", "-o", "a.svg"], "convert --quiet")[0]
    more, status, err = held(["settings", "set", "Dec", "SvgOut::Precision", "9"], "set")
    if status == 0 or "hold" not in err:
        more.append(f"set: status {status}: {err.strip()[:120]!r}")
    return found + more


# ---- other users ---------------------------------------------------------------------------------


def shared_temporary():
    """TMPDIR as /tmp is; USER's own file, which nothing may change."""
    foreign_user()
    shared = place.top / "shared"
    shared.mkdir()
    os.chmod(shared, 0o1777)
    mine = place.top / "home" / "mine"
    mine.mkdir()
    (mine / "precious").write_bytes(b"mine alone\n")
    for path in (mine, mine / "precious"):
        os.chown(path, USER, USER)
    return shared, mine


def plant(path, link_to=None):
    if link_to:
        os.symlink(link_to, path)
    else:
        path.mkdir()
        os.chmod(path, 0o777)
    os.chown(path, OTHER, OTHER, follow_symlinks=False)


def untouched(mine, folders, what, planted=()):
    """What was done to the user's own file and folder, and what lies in folders of another."""
    found = []
    if (mine / "precious").read_bytes() != b"mine alone\n":
        found.append(f"{what}: overwrote the user's file by a planted link")
    if files_below(mine) != ["precious"]:
        found.append(f"{what}: wrote {files_below(mine)} into the user's folder by a planted link")
    for folder in folders:
        real = [n for n in files_below(folder)
                if n not in planted and not os.path.islink(folder / n)]
        if real:
            found.append(f"{what}: wrote {real} into another user's folder")
    return found


def planted_log():
    """5. DbgDump in a shared temporary folder."""
    found = []
    for is_link in (True, False):
        place.reset(NOTHING)
        shared, mine = shared_temporary()
        settings = place.top / "settings"
        commands.elsewhere(place)
        commands.write(place, "settings/Quenkit.ini", "[Debug]\r\nLog=1\r\nDbgDump=1\r\n")
        for folder in (settings, place.top / "config"):
            for base, _, names in os.walk(folder):
                for name in [".", *names]:
                    os.chown(os.path.join(base, name), USER, USER)
        plant(shared / "DbgDump", mine if is_link else None)
        if not is_link:
            name = time.strftime("ProfileStore_%m%d_%H.txt", time.gmtime())
            plant(shared / "DbgDump" / name, mine / "precious")
        run(["measure", "--text", "Ab", *FACE], user=USER, env={"TMPDIR": str(shared)})
        run(["settings", "get", "Dec", "SvgOut::Precision"], user=USER, env={"TMPDIR": str(shared)})
        found += untouched(mine, [] if is_link else [shared / "DbgDump"],
                           "a link" if is_link else "a folder")
    return found


def planted_settings():
    """5. Quenkit_Setting in a shared temporary folder, where no other place can be written."""
    found = []
    for is_link in (True, False):
        place.reset(NOTHING)
        shared, mine = shared_temporary()
        shutil.rmtree(place.top / "config")
        (place.top / "config").write_bytes(b"")  # nothing can be made below it
        plant(shared / "Quenkit_Setting", mine if is_link else None)
        if not is_link:
            plant(shared / "Quenkit_Setting" / "Quenkit.ini", mine / "precious")
        run(["settings", "set", "Dec", "SvgOut::Precision", "9"], user=USER,
            env={"TMPDIR": str(shared)})
        found += untouched(mine, [] if is_link else [shared / "Quenkit_Setting"],
                           "a link" if is_link else "a folder")
    return found


def planted_copy():
    """5. The copy of an upload's request in a shared temporary folder."""
    found = []
    for is_link in (True, False):
        place.reset(Case("", [], sends=b"<svg/>"))
        shared, mine = shared_temporary()
        commands.to_server(True)(place)
        os.chmod(place.top / "config" / "kerno", 0o777)
        os.chmod(place.top / "work" / "a.svg", 0o644)
        plant(shared / "Quenkit.tmp", mine if is_link else None)
        if not is_link:
            day = shared / "Quenkit.tmp" / time.strftime("%Y%m%d", time.gmtime())
            plant(day)
            plant(day / "a.svg.txt", mine / "precious")
        run(["upload", "a.svg"], user=USER, env={"TMPDIR": str(shared)})
        found += untouched(mine, [] if is_link else [shared / "Quenkit.tmp"],
                           "a link" if is_link else "a folder", () if is_link else (day.name,))
    return found


def unreadable_page_folder():
    """4. A folder that cannot be listed keeps its pages."""
    commands.pages(with_page=True)(place)
    foreign_user()
    runs = place.work / "runs"
    os.chown(runs, USER, USER)
    os.chmod(runs, 0o333)
    before = (runs / "Face_72_one.html").read_bytes()
    status, _, err = run(["page", "runs"], user=USER)
    os.chmod(runs, 0o777)
    found = [] if (runs / "Face_72_one.html").read_bytes() == before else ["the page is another"]
    return found + ([] if status == 1 and "runs" in err else [f"status {status}: {err.strip()!r}"])


# ---- fonts ---------------------------------------------------------------------------------------


def own_fonts(folder):
    """The settings of Fontconfig for this folder alone."""
    file = place.top / "home" / "fonts.conf"
    file.write_text('<?xml version="1.0"?><!DOCTYPE fontconfig SYSTEM "urn:fontconfig:fonts.dtd">'
                    f"<fontconfig><dir>{folder}</dir>"
                    '<cachedir prefix="xdg">fontconfig</cachedir></fontconfig>')
    return {"FONTCONFIG_FILE": str(file)}


def unreadable_font():
    """6. A font file that cannot be read is a failure with its reason, not a face that is absent."""
    folder = place.top / "fonts"
    folder.mkdir()
    shutil.copy(FONT, folder / "Face.ttf")
    foreign_user()
    env, found = own_fonts(folder), []
    # With it Fontconfig looks at the folder again each time, and leaves out what it cannot read.
    place.env.pop("SOURCE_DATE_EPOCH")
    run(["faces"], user=USER, env=env)  # Fontconfig notes what is there
    os.chmod(folder / "Face.ttf", 0)
    for words in (["convert", *FACE], ["cut", *FACE], ["cut", "--font-file", folder / "Face.ttf"]):
        words = [*map(str, words), "--text", "Ab", "-o", "a.svg"]
        status, _, err = run(words, user=USER, env=env)
        if status != 1 or "not installed" in err or "permission" not in err:
            found.append(f"{' '.join(words[:2])}: status {status}: {err.strip()[:150]!r}")
        if (place.work / "a.svg").exists():
            found.append(f"{' '.join(words[:2])}: wrote a file")
    return found


def unreadable_font_folder():
    """6. Where a folder of fonts cannot be read, no face is told absent without a word of that."""
    folder = place.top / "fonts"
    folder.mkdir()
    shutil.copy(FONT, folder / "Face.ttf")
    foreign_user()
    os.chmod(folder, 0)
    env, found = own_fonts(folder), []
    for command in ("convert", "cut"):
        status, _, err = run([command, *FACE, "--text", "Ab", "-o", "a.svg"], user=USER, env=env)
        if status != 1 or f"{folder} cannot be read: no permission" not in err:
            found.append(f"{command}: status {status}: {err.strip()[:150]!r}")
    return found


def no_fonts():
    """6. With no face at all every command that needs one fails alike."""
    (place.top / "fonts").mkdir()
    env, found = own_fonts(place.top / "fonts"), []
    for words in (["measure"], ["contours"], ["convert", "-o", "a.svg"], ["cut", "-o", "a.svg"]):
        for face in ([], FACE):
            status, out, err = run([*words, "--text", "Ab", *face], env=env)
            if status == 0 or out or not err.startswith("kerno: "):
                found.append(f"{words[0]} {' '.join(face)}: status {status}, {out!r}, {err!r}")
    return found


# ---- messages and names --------------------------------------------------------------------------


def plain_messages():
    """9. Names never steer a terminal, and an empty value is called what it is."""
    found, escape = [], "\x1b[31mred\x07"
    # No output that is whole holds them either; the formats have no place for them.
    status, out, err = run(["convert", "--text", "Ab", *FACE, "--layer", escape, "-o", "a.dxf"])
    if status == 0 and b"\x1b" in (place.work / "a.dxf").read_bytes():
        found.append("convert --layer: raw in the DXF file")
    for words in (["convert", "--text", "Ab", *FACE, "-o", escape + ".svg"],
                  ["convert", "--text", "Ab", "--face", escape, "-o", "a.svg"],
                  ["convert", "--text", "Ab", *FACE, "-o", f"none/{escape}.svg"],
                  ["cut", "--text", "Ab", "--face", escape, "-o", "a.svg"],
                  ["cut", "--text", "Ab", "--font-file", escape, "-o", "a.svg"],
                  ["convert", "--ipx", escape, "-o", "a.svg"], ["upload", escape],
                  ["settings", "get", escape, escape]):
        status, out, err = run(words)
        if "\x1b" in err or b"\x1b" in out or "\x07" in err:
            found.append(f"{' '.join(words[:2])}: raw on a terminal")
    status, _, err = run(["convert", "--text=", *FACE, "-o", "a.svg"])
    if "more than once" in err or status == 0:
        found.append(f"--text=: status {status}: {err.strip()!r}")
    return found


def left_over_names():
    """11. Names that a killed run left are removed by the next; those of a living one stay."""
    dead = 4194303  # above the largest number of a process on most systems
    while True:
        try:
            os.kill(dead, 0)
        except OSError as error:
            if error.errno == errno.ESRCH:
                break
        dead -= 1
    old, living = f".kerno-{dead}-1.tmp", f".kerno-{os.getpid()}-1.tmp"
    for name in (old, living, "mine.tmp"):
        commands.write(place, "work/" + name, b"half")
    commands.write(place, f"bin/Temp/Quenkit_Setting/{old}", b"half")
    commands.write(place, "bin/Temp/Quenkit_Setting/WriteTst.tmp", b"")
    run(["convert", "--text", "Ab", *FACE, "-o", "a.svg"])
    run(["settings", "set", "Dec", "SvgOut::Precision", "9"])
    found = []
    left = files_below(place.work)
    if old in left or living not in left or "mine.tmp" not in left:
        found.append(f"beside the output: {left}")
    left = files_below(place.program.parent / "Temp" / "Quenkit_Setting")
    if left != ["Quenkit.ini"]:
        found.append(f"beside the settings: {left}")
    return found


ANYBODY = [closed_descriptors, closed_pipe, full_device, held_settings, no_fonts, plain_messages,
           left_over_names]
SUPERUSER = [read_only_settings, no_home, planted_log, planted_settings, planted_copy,
             unreadable_page_folder, unreadable_font, unreadable_font_folder]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--only", default="")
    parser.add_argument("--folder")
    parser.add_argument("program")
    options = parser.parse_args()
    global place, program
    campaign.scratch(options.folder)
    program = os.path.abspath(options.program)
    place = campaign.Place(program, "", campaign.is_sanitized(program))
    os.umask(0o022)
    failed = 0
    for case in ANYBODY + SUPERUSER:
        if options.only not in case.__name__:
            continue
        if case in SUPERUSER and os.geteuid() != 0:
            print(f"left out: {case.__name__} needs the superuser")
            continue
        place.reset(NOTHING)
        found = case()
        failed += bool(found)
        for finding in found:
            print(f"FOUND by {case.__name__} ({case.__doc__.split('.')[0]}): {finding}", flush=True)
    print(f"cases: {len(ANYBODY + SUPERUSER)}, of which {failed} found something")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
