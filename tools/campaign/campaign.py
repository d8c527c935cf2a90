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
LIMIT = 30  # seconds, after which a run hangs
SLOW = 15   # seconds; a file that somebody holds is waited for ten
# The C library ends a program that has no memory for variables of a thread; nobody can prevent it.
TLS_GONE = "cannot allocate memory for thread-local data: ABORT"

# What belongs to fonts and to the system: thousands of calls of libraries, counted apart.
ASIDE = ["/usr", "/var/cache", "/etc", "/lib", "/lib64", "/opt", str(FONTS)]
# What these make for themselves: Fontconfig a cache where it could not read its own.
FOREIGN = re.compile(r"(cache/fontconfig|home/\.cache/fontconfig)(/|$)")
# Empty folders that the program makes where it looks for a place, and keeps.
LOGS = re.compile(r"tmp/DbgDump(/\w+_\d{4}_\d\d\.txt)?$")  # the program's own, kept for ten days
# Where settings and copies of requests go when their own place fails, which a message must tell.
RESORT = re.compile(r"(tmp|tmp/___|cache/kerno)/(Quenkit\.(ini|tmp)(/.*)?|Quenkit_Setting/.*)$"
                    r"|(cache/kerno|tmp/___)$")
SETTINGS = ("Quenkit.ini", "registry.reg", "Quenkit_Setting", "/settings", "Quenkit.tmp")
LASTING = {"bin/Temp", "bin/Temp/Quenkit_Setting", "config", "config/kerno",
           "config/kerno/Quenkit_Setting", "tmp/Quenkit_Setting", "cache"}

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


@dataclasses.dataclass
class Case:
    name: str
    words: list                 # of the command; "{work}" is its folder
    prepare: object = None      # called with the Place before each run
    targets: tuple = ()         # files that success promises, from the place's top
    names: tuple = ()           # further words by which a message may name the thing
    env: dict = dataclasses.field(default_factory=dict)
    serves: bool = False        # wants a server
    groups: tuple = tuple(GROUPS)
    input: bytes = b""


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


class Place:
    """Folders of its own, with a copy of the program: bin, home, config, cache, tmp, work."""

    def __init__(self, program, injector, sanitized):
        self.top = pathlib.Path(tempfile.mkdtemp(prefix="place-"))
        self.program = self.top / "bin" / "kerno"
        self.program.parent.mkdir()
        try:  # a link is cheap where it can be had
            os.link(program, self.program)
        except OSError:
            shutil.copy2(program, self.program)
        self.log = self.top.with_name(self.top.name + ".log")
        self.injector = str(injector)
        self.work = self.top / "work"
        self.server = None
        self.env = {
            "PATH": os.environ["PATH"], "HOME": str(self.top / "home"), "LANG": "C.UTF-8",
            "XDG_CONFIG_HOME": str(self.top / "config"), "XDG_CACHE_HOME": str(self.top / "cache"),
            "XDG_DATA_HOME": str(self.top / "home" / "share"), "TMPDIR": str(self.top / "tmp"),
            "FONTCONFIG_FILE": str(FONTS), "SOURCE_DATE_EPOCH": "1700000000", "TZ": "UTC",
            "no_proxy": "*"}
        if sanitized:
            self.env["ASAN_OPTIONS"] = ("detect_leaks=0:verify_asan_link_order=0:"
                                        "alloc_dealloc_mismatch=0:allocator_may_return_null=1")

    def close(self):
        shutil.rmtree(self.top, ignore_errors=True)
        self.log.unlink(missing_ok=True)

    def reset(self, case):
        for entry in list(os.scandir(self.top)):
            if entry.name == "bin":
                for other in os.scandir(entry.path):
                    if other.name != "kerno":
                        shutil.rmtree(other.path) if other.is_dir() else os.unlink(other.path)
            elif entry.is_dir(follow_symlinks=False):
                shutil.rmtree(entry.path)
            else:
                os.unlink(entry.path)
        for name in ("home", "config", "cache", "tmp", "work"):
            (self.top / name).mkdir()
        if case.serves and not self.server:
            self.server = Server()
        if self.server:
            self.server.bodies.clear()
        if case.prepare:
            case.prepare(self)

    def words(self, case):
        return [str(self.program), *(w.replace("{work}", str(self.work)) for w in case.words)]

    def environment(self, case, fault=None):
        env = {**self.env, **{k: v.replace("{top}", str(self.top)) for k, v in case.env.items()}}
        if fault:
            own_cache = [str(self.top / "cache"), str(self.top / "home")]
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
                  time.monotonic() - began)
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
                if short == "bin/kerno" or FOREIGN.search(short):
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
    return re.sub(rb", \d+ bytes", b"", BYTE_TIMES.sub(b"N", content))


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
            and set(old) & set(new) <= set(found.splitlines()))


@dataclasses.dataclass
class World:
    before: dict
    after: dict
    ran: Ran


def world_of(place, case):
    """What the case makes without a fault, counted."""
    place.reset(case)
    before = place.look()
    ran = place.run(case, Fault("open"))
    if ran.status != 0:
        raise SystemExit(f"{case.name}: without a fault, status {ran.status}: {ran.err}")
    after = place.look()
    for target in case.targets:
        if target not in after:
            raise SystemExit(f"{case.name}: without a fault, there is no {target}")
    return World(before, after, ran)


def tells_of_settings(ran):
    """Whether a message says that settings could not be read or written where they belong."""
    return any(line.startswith("kerno: ") and any(name in line for name in SETTINGS)
               for line in ran.err.splitlines())


def judge_files(ran, world, now):
    """What lies there that should not, or no longer does."""
    findings = []
    for name in sorted(set(world.before) | set(world.after) | set(now)):
        allowed = [state.get(name, ABSENT) for state in (world.before, world.after)]
        found = now.get(name, ABSENT)
        if found in allowed or (found is None and name in LASTING) or LOGS.match(name):
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


def judge_message(case, ran):
    """Whether a failure names what failed, and why."""
    lines = [line for line in ran.err.splitlines() if line.startswith("kerno: ")]
    if not lines:
        return ["silent: a failure without a message"]
    names = [*case.names, *(os.path.basename(t) for t in case.targets), "memory",
             "standard output"]
    if ran.path:
        names += [os.path.basename(ran.path.rstrip("/")), ran.path]
    for line in lines:
        parts = line.split(": ")
        if len(parts) >= 3 and parts[-1].strip() and any(n and n in line for n in names):
            return []
    return [f"vague: {lines[-1][:150]}"]


# The names that only a failing removal or a kill leaves, and that the next run removes.
OWN_NAMES = re.compile(r"left: .*(\.kerno-N-N\.tmp|WriteTst\.tmp(\.tmp)?)$")


WRITES_SETTINGS = ["settings", "set", "Dec", "SvgOut::Precision", "7"]


def judge_again(place, case, world, findings):
    """What is left of findings when the command has run once more: names of its own are removed."""
    if not any(OWN_NAMES.match(finding) for finding in findings):
        return findings
    ran = place.run(case)
    after = judge_files(ran, world, place.look())
    if any(OWN_NAMES.match(finding) for finding in after):  # whoever writes there does it
        place.run(dataclasses.replace(case, words=WRITES_SETTINGS))
        after = judge_files(ran, world, place.look())
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
    if ran.status == 127 and TLS_GONE in ran.err:
        return []
    if ran.status < 0:
        return [f"crash: {signal.Signals(-ran.status).name}"]
    findings = judge_files(ran, world, now)
    if ran.status == 0 and tells_of_settings(ran):
        # The defaults, or the last resort, were used and told. A file is still whole.
        return [f for f in findings if not f.startswith("changed: work/")]
    if ran.status == 0:
        for target in case.targets:
            if now.get(target, ABSENT) != world.after[target]:
                findings.append(f"false success: {target} is not the new one")
        if ran.out != world.ran.out and b"cannot be written" not in ran.out:  # "settings path"
            findings.append("false success: standard output is another")
        if server and not server.bodies:
            findings.append("false success: the server got nothing")
    elif ran.status == 1:
        findings += judge_message(case, ran)
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
