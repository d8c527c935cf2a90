"""What the campaigns share: folders of their own, one run of the program, and the judgement of it.

A run finds the world as its case prepared it (before). A run without a fault shows what the command
makes of it (after). Whatever fails in between, each file must be as it was before or as it is
after, never a third thing, and success may be told only where all is as it is after.
"""
import atexit
import ctypes
import dataclasses
import errno
import functools
import http.server
import os
import pathlib
import re
import shutil
import signal
import struct
import subprocess
import tempfile
import threading
import time

HERE = pathlib.Path(__file__).resolve().parent
FONTS = HERE.parents[1] / "tests" / "fonts.conf"
SYSTEM_CACHE = "/var/cache/fontconfig"
LIMIT = 30  # seconds, after which a run hangs
SLOW = 15   # seconds; a file that somebody holds is waited for ten
# The C library ends a program that has no memory for variables of a thread; nobody can prevent it.
TLS_GONE = "cannot allocate memory for thread-local data: ABORT"

# What belongs to fonts and to the system: thousands of calls of libraries, counted apart.
ASIDE = ["/usr", "/var/cache", "/etc", "/lib", "/lib64", "/opt"]
# What these make for themselves: Fontconfig a cache where it could not read its own.
FOREIGN = re.compile(r"(cache/fontconfig|home/\.cache/fontconfig)(/|$)")
# Empty folders that the program makes where it looks for a place, and keeps.
LOGS = re.compile(r"tmp/DbgDump(/\w+_\d{4}_\d\d\.txt)?$")  # the program's own, kept for ten days
# Where settings go when their own place fails, and copies of requests, which a message must tell.
RESORT = re.compile(r"(tmp|tmp/nobody|cache/kerno)/(Quenkit\.ini|Quenkit_Setting/.*)$"
                    r"|(cache/kerno|tmp/nobody)$")
COPIES = re.compile(r"(bin/Temp|tmp|cache/kerno)/Quenkit\.tmp(/.*)?$|cache/kerno$")
OWN_PART = re.compile(r"tmp/nobody(/Quenkit\.tmp(/.*)?)?$")  # of a folder that others may write in
SETTINGS = ("Quenkit.ini", "registry.reg", "Quenkit_Setting", "/settings")
LASTING = {"bin/Temp", "bin/Temp/Quenkit_Setting", "config", "config/kerno",
           "config/kerno/Quenkit_Setting", "tmp/Quenkit_Setting", "cache"}

PROGRAMS = {"kerno", "kerno_signs"}
GROUPS = ["open", "read", "write", "look", "name", "keep", "map", "net", "thread", "alloc"]
STACKS_AT = 16 * len(GROUPS) + 3 * 8 + 512
NAME_OF = {getattr(errno, name): name for name in dir(errno) if name.startswith("E")}


@dataclasses.dataclass
class Fault:
    group: str
    at: int = 0
    do: str = ""          # an errno, "short", "kill" or "stacks"
    on: bool = False      # all later calls, too
    of: str = "own"       # or "aside"
    named: bool = False   # as if there were no files without a name

    def env(self, log):
        env = {"FAULT_GROUP": self.group, "FAULT_AT": str(self.at), "FAULT_DO": self.do,
               "FAULT_OF": self.of, "FAULT_LOG": str(log)}
        if self.on:
            env["FAULT_ON"] = "1"
        if self.named:
            env["FAULT_NAMED"] = "1"
        return env

    def __str__(self):
        do = NAME_OF.get(int(self.do), self.do) if self.do.isdigit() else self.do
        more = (" and all later" if self.on else "") + (" of fonts and system" if
                                                        self.of == "aside" else "")
        return f"{self.group} {self.at}{more}: {do}" + (", named files" if self.named else "")


@dataclasses.dataclass
class Ran:
    status: int
    out: bytes
    err: str
    hung: bool = False
    seconds: float = 0
    hit: int = 0
    kept: int = 0
    what: str = ""
    path: str = ""
    own: dict = dataclasses.field(default_factory=dict)
    aside: dict = dataclasses.field(default_factory=dict)
    stacks: tuple = ()
    fault: Fault | None = None
    let_go: str = ""      # by which rule a finding was let go, which is counted


@dataclasses.dataclass
class Finding:
    """What was wrong with one run, as reports and journals have it."""
    case: str
    fault: str
    what: str             # in a line that begins with its kind
    status: int = 0
    err: str = ""
    call: str = ""
    path: str = ""

    @staticmethod
    def of(case, fault, ran, what):
        return Finding(case, str(fault), what, ran.status, ran.err.strip()[:200], ran.what, ran.path)


@dataclasses.dataclass
class Case:
    name: str
    words: list                 # of the command; "{work}" is its folder
    prepare: object = None      # called with the Place before each run
    targets: tuple = ()         # files that success promises, from the place's top
    names: tuple = ()           # further words by which a message may name the thing
    env: dict = dataclasses.field(default_factory=dict)
    sends: bytes = b""          # wants a server, which gets this
    groups: tuple = tuple(GROUPS)
    input: bytes = b""
    fewer: tuple = ()           # prepare functions: what may stand there where a row failed
    failed: tuple = ()          # a table of failures, its header, and the file of each row
    library: bool = False       # run by the library's user, kerno_signs, in the command's place


class Server:
    """Takes files on loopback, as the receiver of an upload."""

    def __init__(self):
        self.bodies = bodies = []

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_POST(self):
                bodies.append(self.rfile.read(int(self.headers["Content-Length"])))
                self.send_response(200)
                self.send_header("Content-Length", "3")
                self.end_headers()
                self.wfile.write(b"OK\n")

            def log_message(self, *_):
                pass

        class Quiet(http.server.ThreadingHTTPServer):
            def handle_error(self, *_):  # a client that goes away is what is tried
                pass

        self.server = Quiet(("127.0.0.1", 0), Handler)
        self.address = "127.0.0.1:%d" % self.server.server_address[1]
        threading.Thread(target=self.server.serve_forever, daemon=True).start()


def same_addresses():
    """Lets a program be loaded where it is each time, so that the stacks of runs can be compared."""
    ctypes.CDLL(None).personality(0x0040000)  # ADDR_NO_RANDOMIZE


def bring(file, to):
    try:  # a link is cheap where it can be had
        os.link(file, to)
    except OSError:
        shutil.copy2(file, to)


def signs_beside(injector):
    """The user of the library, which is built beside the injector."""
    return pathlib.Path(injector).with_name("kerno_signs")


class Place:
    """Folders of its own, with a copy of the program: bin, home, config, cache, tmp, work."""

    def __init__(self, program, injector, sanitized):
        self.top = pathlib.Path(tempfile.mkdtemp(prefix="place-"))
        self.program = self.top / "bin" / "kerno"
        self.signs = self.top / "bin" / "kerno_signs"
        self.program.parent.mkdir()
        bring(program, self.program)
        if injector and signs_beside(injector).is_file():  # where the library is built
            bring(signs_beside(injector), self.signs)
        self.log = self.top.with_name(self.top.name + ".log")
        self.injector = str(injector)
        self.fonts = self.top.with_name(self.top.name + ".fonts")
        self.fonts.mkdir()
        self.work = self.top / "work"
        self.server = None
        self.env = {
            "PATH": os.environ["PATH"], "HOME": str(self.top / "home"), "LANG": "C.UTF-8",
            "USER": "nobody",
            "XDG_CONFIG_HOME": str(self.top / "config"), "XDG_CACHE_HOME": str(self.top / "cache"),
            "XDG_DATA_HOME": str(self.top / "home" / "share"), "TMPDIR": str(self.top / "tmp"),
            "FONTCONFIG_FILE": str(self.fonts / "fonts.conf"), "SOURCE_DATE_EPOCH": "1700000000", "TZ": "UTC",
            "no_proxy": "*"}
        if sanitized:
            self.env["ASAN_OPTIONS"] = ("detect_leaks=0:verify_asan_link_order=0:"
                                        "alloc_dealloc_mismatch=0:allocator_may_return_null=1")
        self.note_fonts()

    def note_fonts(self):
        """Fontconfig's notes of the fonts, of this place alone: what a run with a fault notes would
        hide faces from all others."""
        cache = self.fonts / "cache"
        text = FONTS.read_text()
        assert SYSTEM_CACHE in text
        (self.fonts / "fonts.conf").write_text(text.replace(SYSTEM_CACHE, str(cache)))
        subprocess.run([str(self.program), "faces"], env=self.env, check=True, cwd=self.fonts,
                       stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
        shutil.copytree(cache, self.fonts / "kept")
        self.noted = self.notes()

    def notes(self):
        try:
            return {entry.name: (entry.stat().st_ino, entry.stat().st_mtime_ns)
                    for entry in os.scandir(self.fonts / "cache")}
        except OSError:
            return {}

    def restore_notes(self):
        if self.notes() != self.noted:
            shutil.rmtree(self.fonts / "cache", ignore_errors=True)
            shutil.copytree(self.fonts / "kept", self.fonts / "cache")
            self.noted = self.notes()

    def close(self):
        shutil.rmtree(self.fonts, ignore_errors=True)
        shutil.rmtree(self.top, ignore_errors=True)
        self.log.unlink(missing_ok=True)

    def reset(self, case):
        self.restore_notes()
        for entry in list(os.scandir(self.top)):
            if entry.name == "bin":
                for other in os.scandir(entry.path):
                    if other.name not in PROGRAMS:
                        shutil.rmtree(other.path) if other.is_dir() else os.unlink(other.path)
            elif entry.is_dir(follow_symlinks=False):
                shutil.rmtree(entry.path)
            else:
                os.unlink(entry.path)
        for name in ("home", "config", "cache", "tmp", "work"):
            (self.top / name).mkdir()
        if case.sends and not self.server:
            self.server = Server()
        if self.server:
            self.server.bodies.clear()
        if case.prepare:
            case.prepare(self)

    def words(self, case):
        program = self.signs if case.library else self.program
        return [str(program), *(w.replace("{work}", str(self.work)) for w in case.words)]

    def environment(self, case, fault=None):
        env = {**self.env, **{k: v.replace("{top}", str(self.top)) for k, v in case.env.items()}}
        if fault:
            own_cache = [str(self.top / "cache"), str(self.top / "home"), str(self.fonts)]
            env.update(fault.env(self.log), LD_PRELOAD=self.injector,
                       FAULT_ASIDE=":".join(ASIDE + own_cache))
        return env

    def run(self, case, fault=None):
        self.log.unlink(missing_ok=True)
        process = subprocess.Popen(self.words(case), cwd=self.work, env=self.environment(case, fault),
                                   stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE,
                                   preexec_fn=same_addresses if fault and fault.do == "stacks"
                                   else None)
        hung, began = False, time.monotonic()
        try:
            out, err = process.communicate(case.input, timeout=LIMIT)
        except subprocess.TimeoutExpired:
            hung = True
            process.kill()
            out, err = process.communicate()
        ran = Ran(process.returncode, settled("", out, self.top), err.decode("utf-8", "replace"), hung,
                  time.monotonic() - began, fault=fault)
        if fault:
            self.read_log(ran, fault.do == "stacks")
        return ran

    def read_log(self, ran, with_stacks):
        with open(self.log, "rb") as file:
            head = file.read(STACKS_AT)
            counts = struct.unpack_from("<%dQ" % (2 * len(GROUPS)), head)
            number, ran.hit, ran.kept = struct.unpack_from("<3Q", head, 16 * len(GROUPS))
            text = head[16 * len(GROUPS) + 24:]
            ran.what = text[:32].split(b"\0")[0].decode()
            ran.path = text[32:].split(b"\0")[0].decode("utf-8", "replace")
            ran.own = dict(zip(GROUPS, counts))
            ran.aside = dict(zip(GROUPS, counts[len(GROUPS):]))
            if with_stacks:
                number = min(number, 1 << 20)
                ran.stacks = struct.unpack("<%dQ" % number, file.read(8 * number))

    def look(self):
        """Every file with its bytes, every folder, every link, by its name from the top."""
        found = {}
        for folder, folders, files in os.walk(self.top):
            base = os.path.relpath(folder, self.top)
            for name in folders + files:
                short = os.path.normpath(os.path.join(base, name))
                path = os.path.join(folder, name)
                if (base == "bin" and name in PROGRAMS) or FOREIGN.search(short):
                    continue
                if os.path.islink(path):
                    found[short] = ("link", os.readlink(path))
                elif os.path.isdir(path):
                    found[short] = None
                else:
                    with open(path, "rb") as file:
                        found[short] = settled(short, file.read(), self.top)
        return found


TIMES = re.compile(r"\d{4}/\d\d/\d\d \d\d:\d\d:\d\d|(?<=ThisMTimeV=)\d+")
# What the program notes of the place that it used, which is its last resort where others fail, and
# of the time, which it writes after the value that it was asked to write.
NOTED = re.compile(r'^("(IniFullBase は|ThisMTimeS_[^"]*)"=|ThisMTime[SV]|\[ProfileINI\]).*\n?',
                   re.MULTILINE)
BYTE_TIMES = re.compile(rb"\d{4}/\d\d/\d\d \d\d:\d\d:\d\d|(?<=-UpFile__)\d{6}"
                        rb"|\d+ ms|(?<=\"milliseconds\": )\d+|(?<=127\.0\.0\.1:)\d+")


def settled(name, content, top):
    """The bytes without the times, sizes and the port that some hold, and without the name of the
    place, which is as long as any other's."""
    for coding in ("utf-8", "utf-16-le"):
        content = content.replace(str(top).encode(coding), "(TOP)".encode(coding))
    if name.endswith((".ini", ".reg")):
        content = BYTE_TIMES.sub(b"N", content)
        coding = "utf-16" if content.startswith(b"\xff\xfe") else "utf-8"
        return TIMES.sub("TIME", NOTED.sub("", content.decode(coding, "replace")))
    # A summary leaves out a size that cannot be told; the file itself is compared.
    return re.sub(rb', \d+ bytes|, "bytes": (\d+|null)', b"", BYTE_TIMES.sub(b"N", content))


ABSENT = object()


def is_between(found, before, after):
    """Whether settings were changed in part, line by line: a command may change several values, and
    each change replaces the file. What no change touches must be there."""
    if not isinstance(found, str) or not found:
        return False
    first, *lines = found.splitlines()
    old = before.splitlines() if isinstance(before, str) else []
    new = after.splitlines() if isinstance(after, str) else []
    return (first in (old[:1] + new[:1]) and set(lines) <= set(old) | set(new)
            and set(old) & set(new) <= set(found.splitlines())
            and keys_of(old) & keys_of(new) <= keys_of(lines))


def keys_of(lines):
    return {line.split("=")[0] for line in lines if "=" in line}


@dataclasses.dataclass
class World:
    before: dict
    after: dict
    ran: Ran
    bare: dict            # what it makes without settings, where the case has some
    bare_out: bytes
    fewer: tuple = ()     # what it makes of fewer rows


def bare_of(place, case):
    """What the case makes where it finds no settings, and so takes the defaults."""
    place.reset(case)
    for name in ("bin/Quenkit_Setting", "bin/Temp", "settings"):
        shutil.rmtree(place.top / name, ignore_errors=True)
    (place.top / "config" / "kerno" / "registry.reg").unlink(missing_ok=True)
    ran = place.run(case)
    return place.look(), ran.out


def world_of(place, case):
    """What the case makes without a fault, counted."""
    if case.library and not place.signs.exists():
        raise SystemExit(f"{case.name}: there is no {place.signs.name}")
    fewer = []
    for prepare in case.fewer:
        one = dataclasses.replace(case, prepare=prepare)
        place.reset(one)
        place.run(one)
        fewer.append(place.look())
    bare, bare_out = bare_of(place, case)
    place.reset(case)
    before = place.look()
    ran = place.run(case, Fault("open"))
    if ran.status != 0:
        raise SystemExit(f"{case.name}: without a fault, status {ran.status}: {ran.err}")
    after = place.look()
    for target in case.targets:
        if target not in after:
            raise SystemExit(f"{case.name}: without a fault, there is no {target}")
    return World(before, after, ran, bare, bare_out, tuple(fewer))


def tells_of_settings(ran):
    """Whether a message says that settings could not be read or written where they belong."""
    return any(line.startswith("kerno: ") and len(line.split(": ")) >= 3
               and any(name in line for name in SETTINGS) for line in ran.err.splitlines())


# The comment of an SVG file names the program, whose name cannot be found out without a look.
PROGRAM_LINE = re.compile(rb"(?m)^(EXE +\t +\t)[^\r\n]+")


# The comment of a new file of settings with the time, which is no setting.
HEADING = re.compile(r"\A(;[^\n]*\n)+")


def lacks_comment(name, found, after, ran):
    """Whether all of a file is there but a comment: the name of the program, or the heading of new
    settings, where each look failed."""
    if not (ran.fault and ran.fault.on and ran.fault.group == "look" and ran.fault.of == "own"):
        return False
    if name.endswith(".ini") and isinstance(after, str):
        return found == HEADING.sub("", after)
    return (name.endswith(".svg") and isinstance(found, bytes) and isinstance(after, bytes)
            and found == PROGRAM_LINE.sub(rb"\1", after))


def is_sheet_without(case, world, keys, now):
    """Whether the one sheet of all rows stands as it is without those rows that failed."""
    files = case.failed[2]
    sheet = next(iter(files.values()))
    allowed = {(): [world.after], tuple(files): [world.before]}
    allowed.update({(key,): [state] for key, state in zip(files, world.fewer)})
    return any(now.get(sheet, ABSENT) == state.get(sheet, ABSENT)
               for state in allowed.get(tuple(keys), []))


def is_table(case, world, name, now):
    """Whether a table of failures has its header, whole rows, and each row whose file is not made."""
    if not case.failed or name != case.failed[0] or not isinstance(now.get(name), bytes):
        return False
    _, header, files = case.failed
    first, *rows = now[name].split(b"\n")
    keys = [row.split(b",")[0] for row in rows[:-1]]
    if case.fewer:
        return first == header and rows[-1:] == [b""] and is_sheet_without(case, world, keys, now)
    missing = {key for key, file in files.items() if now.get(file, ABSENT) != world.after[file]}
    return (first == header and rows[-1:] == [b""] and len(set(keys)) == len(keys)
            and missing <= set(keys) <= set(files))


def may_stand(case, ran, world, name, now):
    """Whether a file is as it was, as the command makes it, or as a rule lets it be."""
    found, after = now.get(name, ABSENT), world.after.get(name, ABSENT)
    if found in (world.before.get(name, ABSENT), after):
        return True
    if name.startswith("work/") and tells_of_settings(ran) and found == world.bare.get(name, ABSENT):
        return True  # the defaults were used, and told
    if ran.status == 1 and name in case.targets:
        if any(found == state.get(name, ABSENT) for state in world.fewer):
            return True  # the rows that did not fail
        if is_table(case, world, name, now):
            return True
    makes = [after] + ([world.bare.get(name, ABSENT)] if tells_of_settings(ran) else [])
    if any(lacks_comment(name, found, made, ran) for made in makes):
        ran.let_go = "comment that needs a look"
        return True
    return False


def judge_files(case, ran, world, now):
    """What lies there that should not, or no longer does."""
    findings = []
    for name in sorted(set(world.before) | set(world.after) | set(now)):
        allowed = [state.get(name, ABSENT) for state in (world.before, world.after)]
        found = now.get(name, ABSENT)
        if may_stand(case, ran, world, name, now):
            continue
        if (found is None and name in LASTING) or LOGS.match(name) or OWN_PART.match(name):
            continue
        if COPIES.match(name) and "Quenkit.tmp" in ran.err:
            continue
        if is_between(found, *allowed) or (RESORT.match(name) and tells_of_settings(ran)):
            continue
        if found is ABSENT:
            findings.append(f"lost: {name}")
        elif all(state is ABSENT for state in allowed):
            findings.append(f"left: {re.sub(r'[0-9]+', 'N', name)}")
        else:
            findings.append(f"changed: {name} is neither the old one nor the new")
    return findings


def lines_of(text):
    return set(text.splitlines()) if isinstance(text, str) else set()


def resort_holds(world, now, target):
    """Whether the change of these settings stands where they go when their own place fails."""
    old, new = lines_of(world.before.get(target)), lines_of(HEADING.sub("", world.after[target]))
    return any(new - old <= lines_of(found) and not (old - new) & lines_of(found)
               for name, found in now.items() if RESORT.match(name) and isinstance(found, str))


def judge_success(case, world, ran, now, server):
    """What status 0 promised and did not do."""
    findings, told = [], tells_of_settings(ran)
    for target in case.targets:
        found, after = now.get(target, ABSENT), world.after[target]
        bare = world.bare.get(target, ABSENT) if target.startswith("work/") and told else after
        if found in (after, bare) or any(lacks_comment(target, found, made, ran)
                                         for made in (after, bare)):
            continue
        if not target.startswith("work/") and told and resort_holds(world, now, target):
            continue
        findings.append(f"false success: {target} is not the new one")
    outs = {world.ran.out} | ({world.bare_out} if told else set())
    if ran.out not in outs and lists_without(case, ran):
        ran.let_go = "fonts that Fontconfig passed over"
    elif ran.out not in outs and not tells_of_place(case, world, ran, now):
        findings.append(f"false success: standard output is another: {ran.out[:150]!r}")
    if server and not any(case.sends in body for body in server.bodies):
        findings.append("false success: the server did not get all")
    return findings


# Of "settings path", where the usual place could not be had.
RESORT_REASONS = ["the program's folder is not for settings; this is the user's configuration folder",
                  "neither the program's nor a configuration folder can be written",
                  "the folder of the settings cannot be written; this is the temporary one"]
USUAL_REASONS = ["the folder Quenkit_Setting stands beside the program",
                 "the program's folder can be written"]


def tells_of_place(case, world, ran, now):
    """Whether another place of the settings is printed with its reason, and what lies there."""
    if case.words[:2] != ["settings", "path"]:
        return False
    lines, usual = ran.out.decode().splitlines(), world.ran.out.decode().splitlines()
    reasons = RESORT_REASONS + (USUAL_REASONS if tells_of_settings(ran) else [])
    if len(lines) < 2 or (lines[:2] != usual[:2] and lines[1] not in reasons):
        return False
    name = lines[0].removeprefix("(TOP)/")
    if name == lines[0] or not name.endswith("/Quenkit.ini") or len(lines) > 3:
        return False
    if lines[2:]:
        return lines[2].startswith("there is no file yet: ") and name not in now
    if name not in now and ran.fault and ran.fault.group == "look":
        ran.let_go = "no look at the settings"  # it cannot know, and leaves the line out
        return True
    return name in now


FONT_MESSAGE = re.compile(r"kerno: (/usr/share/(fonts|hershey-fonts)/\S+\.(ttf|otf|ttc|jhf)): \S")
ALLOCATES = re.compile(r"(malloc|calloc|realloc|posix_memalign|aligned_alloc|memalign|mmap|"
                       r"mprotect|mremap|brk)$")


def names_of(case, ran):
    """Words of which a message must hold one: what the command works on, or what failed."""
    names = [*case.names, *(os.path.basename(t) for t in case.targets)]
    if ran.path:
        names += [os.path.basename(ran.path.rstrip("/")), ran.path]
    if ran.path.startswith("pipe:") or (ran.fault and ran.fault.on and ran.fault.group == "write"):
        names.append("standard output")
    if ALLOCATES.match(ran.what) or (ran.fault and ran.fault.do == str(errno.ENOMEM)):
        names.append("memory")
    if ran.what in ("mmap", "pthread_create"):  # of a thread's stack
        names.append("thread")
    return [name for name in names if name]


def judge_message(case, ran):
    """Whether a failure names what failed, and why."""
    lines = [line for line in ran.err.splitlines() if line.startswith("kerno: ")]
    if not lines:
        return ["mute: status 1 without a message"]
    names = names_of(case, ran)
    # Of calls that fail from some one on, only the first is noted; a font may be a later one's.
    fonts_fail = ran.fault and ran.fault.on and ran.fault.of == "aside"
    for line in lines:
        parts = line.split(": ")
        if len(parts) >= 3 and parts[-1].strip() and any(name in line for name in names):
            return []
        if fonts_fail and FONT_MESSAGE.match(line):
            return []
    return [f"vague: {lines[-1][:150]}"]


# Without its configuration Fontconfig knows no face; it says so itself.
FONTCONFIG_FILES = ("/etc/fonts", "/usr/share/fontconfig")


def is_fontconfig(ran):
    """Whether a face is not there because a file of Fontconfig's configuration could not be read."""
    return (ran.status == 3 and "Fontconfig error: " in ran.err and ran.fault is not None
            and ran.fault.of == "aside" and not ran.out
            and (ran.path.endswith("/fonts.conf") or
                 any(ran.path.startswith(name) for name in FONTCONFIG_FILES)))


# What Fontconfig cannot read it passes over, and says nothing; Kerno looks itself for the folders and
# files of fonts that cannot be read, but finds no fault that has passed.
def passes_over(ran):
    """Whether a font is not there because a call of Fontconfig failed."""
    return (ran.fault is not None and ran.fault.of == "aside" and not ran.fault.on
            and ran.path.startswith("/usr/share/fonts"))


def lists_without(case, ran):
    """Whether a list of faces is another because calls of Fontconfig failed."""
    is_list = case.words[:1] == ["faces"] or (case.library and not case.words)
    return is_list and ran.fault is not None and ran.fault.of == "aside"


# The names that only a failing removal or a kill leaves, and that the next run removes.
OWN_NAMES = re.compile(r"left: .*(\.kerno-N-N\.tmp|WriteTst\.tmp(\.tmp)?)$")


NO_MEMORY = 4  # a KernoResult


def judge_library(case, ran):
    """Whether missing memory is told as such, and whether the library works again after a fault."""
    findings = []
    if "Fontconfig error: " in ran.err and ran.fault is not None and ran.fault.of == "aside":
        ran.let_go = "configuration of Fontconfig"
        return []
    lacks = ran.fault is not None and (ran.fault.group == "alloc" or ran.fault.do == str(errno.ENOMEM))
    if ran.status == NO_MEMORY and not lacks:
        findings.append("memory that is not missing")
    elif ran.status == 1 and lacks:
        findings.append("memory that is told as another failure: " + ran.err.strip()[:100])
    findings += judge_message(case, ran)
    lasts = ran.fault is not None and ran.fault.on
    if not lasts and "again: done" not in ran.err and "standard output" not in ran.err:
        findings.append("broken: a fault that has passed lasts")
    return findings


WRITES_SETTINGS = ["settings", "set", "Dec", "SvgOut::Precision", "7"]


def judge_again(place, case, world, findings):
    """What is left of findings when the command has run once more: names of its own are removed."""
    if not any(OWN_NAMES.match(finding) for finding in findings):
        return findings
    ran = place.run(case)
    after = judge_files(case, ran, world, place.look())
    if any(OWN_NAMES.match(finding) for finding in after):  # whoever writes there does it
        place.run(dataclasses.replace(case, words=WRITES_SETTINGS))
        after = judge_files(case, ran, world, place.look())
    kept = [finding for finding in findings if not OWN_NAMES.match(finding)]
    # In the temporary folder nobody may write again; the system clears it.
    after = [finding for finding in after if not finding.startswith("left: tmp/.kerno-")]
    kept += [f"{finding} (the next run does not remove it)" for finding in after
             if OWN_NAMES.match(finding)]
    return kept + ([f"next run: status {ran.status}"] if ran.status else [])


def judge(case, world, ran, now, server=None):
    """All that is wrong with a run, each in a line that begins with its kind."""
    if ran.hung:
        return [f"hang: no end within {LIMIT} s"]
    if "Sanitizer" in ran.err or "runtime error" in ran.err:
        return ["unsafe: " + next(line for line in ran.err.splitlines()
                                  if "Sanitizer" in line or "runtime error" in line)[:200]]
    if ran.seconds > SLOW:
        return [f"slow: {SLOW} s and more"]
    if ran.status < 0:
        return [f"crash: {signal.Signals(-ran.status).name}"]
    findings = judge_files(case, ran, world, now)
    if ran.status == 0:
        findings += judge_success(case, world, ran, now, server)
    elif case.library and ran.status in (1, NO_MEMORY):
        findings += judge_library(case, ran)
    elif ran.status == 1:
        findings += judge_message(case, ran)
        table = case.failed[0] if case.failed else None
        if table and now.get(table) != world.before[table] and not is_table(case, world, table, now):
            findings.append(f"false table: {table} lacks a row that failed")
    elif ran.status == 127 and TLS_GONE in ran.err:
        ran.let_go = "variables of a thread"
    elif is_fontconfig(ran):
        ran.let_go = "configuration of Fontconfig"
    elif ran.status == 3 and passes_over(ran) and "is not installed" in ran.err:
        ran.let_go = "fonts that Fontconfig passed over"
    else:
        findings.append(f"status {ran.status}: " + ran.err.strip()[:150])
    return findings


@functools.cache
def is_sanitized(program):
    with open(program, "rb") as file:
        return b"__asan_init" in file.read()


def scratch(folder):
    """A folder for the places of this campaign, gone at its end; in memory where there is enough of
    that (each place holds a copy of the program), since each run waits for the disk otherwise."""
    memory = "/dev/shm"
    if not folder and os.path.isdir(memory) and shutil.disk_usage(memory).free > 1 << 30:
        folder = memory
    tempfile.tempdir = tempfile.mkdtemp(prefix="kerno-campaign-", dir=folder)
    os.chmod(tempfile.tempdir, 0o755)
    atexit.register(shutil.rmtree, tempfile.tempdir, ignore_errors=True)
