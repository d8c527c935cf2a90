#!/usr/bin/python3
"""Tries the Debian packages of build/packages in a fresh Debian 12: installs, runs, upgrades, removes them.

The system lies in build/try-deb and is made by debootstrap; that, and the archives that apt fetches, are kept in
$XDG_CACHE_HOME/kerno-sources for the next time. Needs root. Everything runs in namespaces of its own, which end
with this program: no mount and no process is left. Each line of the result is one thing that was tried, with
what was said there; the last line counts those that failed.
"""
import glob
import hashlib
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parents[1]
SUITE = "bookworm"
SYSTEM = ROOT / "build/try-deb"
CACHE = pathlib.Path(os.environ.get("XDG_CACHE_HOME") or pathlib.Path.home() / ".cache") / "kerno-sources"
PACKAGES = ["kerno", "kerno-desktop", "kerno-doc", "libkerno1", "libkerno-dev", "python3-kerno"]
# What a desktop has whose caches an installed program enters, and what the trial itself needs.
SURROUNDINGS = ["man-db", "bash-completion", "desktop-file-utils", "shared-mime-info", "hicolor-icon-theme",
                "gtk-update-icon-cache", "fonts-dejavu-core", "doc-base", "gcc", "libc6-dev", "pkg-config"]
# What dpkg, apt and the makers of caches write for themselves, and what the trial puts there.
NOT_KERNOS = re.compile(
    r"/(var/lib/dpkg/(status|available|diversions|statoverride|lock|triggers/|alternatives|updates)"
    r"|var/lib/(apt|doc-base/info)/|var/log/|var/cache/|etc/ld\.so\.cache"
    r"|usr/share/icons/hicolor/icon-theme\.cache|root/\.|tmp/|packages(/|$)|home/tester/)")
LONG = 1800  # seconds for apt and debootstrap


class Results:
    def __init__(self):
        self.failed = 0
        self.count = 0

    def tell(self, name, good, said=""):
        self.count += 1
        self.failed += not good
        print(f"{'pass' if good else 'FAIL'}  {name}", flush=True)
        lines = said.strip().splitlines()
        for line in lines[-3:] if good else lines[-30:]:
            print(f"        {line[:160]}", flush=True)


results = Results()


def chroot(user, *command, **variables):
    """What runs a command in the system: its arguments and its surroundings."""
    home = "/root" if user == "root" else f"/home/{user}"
    identity = [] if user == "root" else [f"--userspec={user}:{user}"]
    environment = {"PATH": "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin", "HOME": home,
                   "LC_ALL": "C.UTF-8", "DEBIAN_FRONTEND": "noninteractive", **variables}
    return ["chroot", *identity, SYSTEM, "env", f"--chdir={home}", *command], environment


def inside(command, user="root", timeout=120, **variables):
    """Runs a shell command in the system; returns its status and what it said on both streams."""
    arguments, environment = chroot(user, "sh", "-c", command, **variables)
    done = subprocess.run(arguments, env=environment, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          stdin=subprocess.DEVNULL, encoding="utf-8", errors="replace", timeout=timeout,
                          check=False)
    return done.returncode, done.stdout


def attempt(name, command, status=0, pattern="", **more):
    """Runs a command and tells whether it ended with that status and said what the pattern looks for."""
    ended, said = inside(command, **more)
    good = ended == status and re.search(pattern, said, re.MULTILINE) is not None
    if not good:
        said += f"\n(status {ended}, wanted {status} and \"{pattern}\")"
    results.tell(name, good, said)
    return said


def apt(name, arguments, pattern="", status=0):
    return attempt(name, f"apt-get -q -y {arguments}", status, pattern, timeout=LONG)


def needed(packages, recommends):
    """The packages that apt would install with those, without Kerno's own."""
    option = "" if recommends else "--no-install-recommends"
    status, said = inside(f"apt-get -s -y {option} install {packages}", timeout=LONG)
    if status:
        sys.exit(f"try_deb: apt finds no way to install {packages}:\n{said}")
    names = re.findall(r"^Inst (\S+)", said, re.MULTILINE)
    return [name for name in names if name not in PACKAGES]


def make_system():
    """A fresh Debian 12 in SYSTEM, with the faces and programs of SURROUNDINGS and a user "tester"."""
    base = CACHE / f"debian-{SUITE}.tar"
    archives = CACHE / f"debian-{SUITE}-archives"
    (archives / "partial").mkdir(parents=True, exist_ok=True)
    shutil.rmtree(SYSTEM, ignore_errors=True)
    SYSTEM.mkdir(parents=True)
    if not base.exists():
        mirror = subprocess.run(["apt-get", "indextargets", "--format", "$(SITE)", f"Codename: {SUITE}"],
                                stdout=subprocess.PIPE, encoding="utf-8", check=True).stdout.split()[0]
        print(f"try_deb: debootstrap of {SUITE}, once", flush=True)
        subprocess.run(["debootstrap", "--variant=minbase", SUITE, SYSTEM, mirror], check=True,
                       stdout=subprocess.DEVNULL)
        fresh = base.with_suffix(".part")
        subprocess.run(["tar", "-C", SYSTEM, "--exclude=./var/cache/apt/archives/*.deb", "-cf", fresh, "."],
                       check=True)
        fresh.rename(base)
    else:
        subprocess.run(["tar", "-C", SYSTEM, "-xpf", base], check=True)
    subprocess.run(["mount", "-t", "proc", "proc", SYSTEM / "proc"], check=True)
    subprocess.run(["mount", "-t", "devpts", "devpts", SYSTEM / "dev/pts"], check=True)
    subprocess.run(["mount", "--bind", archives, SYSTEM / "var/cache/apt/archives"], check=True)
    shutil.copy("/etc/resolv.conf", SYSTEM / "etc/resolv.conf")
    # No daemon is started, man pages are kept, and archives stay for the next time.
    (SYSTEM / "usr/sbin/policy-rc.d").write_text("#!/bin/sh\nexit 101\n")
    (SYSTEM / "usr/sbin/policy-rc.d").chmod(0o755)
    (SYSTEM / "etc/apt/apt.conf.d/90trial").write_text(
        'APT::Keep-Downloaded-Packages "true";\nAPT::Sandbox::User "root";\n')
    for command in ("apt-get -q update", "apt-get -q -y --no-install-recommends install "
                    + " ".join(SURROUNDINGS), "useradd --create-home tester"):
        status, said = inside(command, timeout=LONG)
        if status:
            sys.exit(f"try_deb: the system cannot be made ready: {command}\n{said}")
    shutil.copytree(ROOT / "packaging/debian/tests", SYSTEM / "packages/tests")


def bring(folder, version):
    """Puts the packages of a version where apt finds them, by their names and as files: /packages."""
    for package in PACKAGES:
        files = glob.glob(f"{folder}/{package}_{version}-*.deb")
        if len(files) != 1:
            sys.exit(f"try_deb: no package {package} {version} in {folder}: run \"make deb\"")
        shutil.copy(files[0], SYSTEM / "packages")
    with open(SYSTEM / "packages/Packages", "wb") as index:
        subprocess.run(["dpkg-scanpackages", "--multiversion", "."], cwd=SYSTEM / "packages", stdout=index,
                       stderr=subprocess.DEVNULL, check=True)
    (SYSTEM / "etc/apt/sources.list.d/kerno.list").write_text("deb [trusted=yes] file:/packages ./\n")
    status, said = inside("apt-get -q update", timeout=LONG)
    if status:
        sys.exit(f"try_deb: apt does not read the packages:\n{said}")


def listing():
    """Each path of the system with its kind, rights and content, without what NOT_KERNOS names."""
    seen = {}
    for folder, folders, files in os.walk(SYSTEM):
        folders[:] = [name for name in folders if not os.path.ismount(os.path.join(folder, name))]
        for name in folders + files:
            path = pathlib.Path(folder, name)
            inner = "/" + str(path.relative_to(SYSTEM))
            if NOT_KERNOS.match(inner):
                continue
            facts = path.lstat()
            content = ""
            if path.is_symlink():
                content = os.readlink(path)
            elif path.is_file():
                content = hashlib.sha256(path.read_bytes()).hexdigest()
            seen[inner] = (facts.st_mode, facts.st_uid, facts.st_gid, content)
    return seen


def compare(name, before, after):
    changed = [f"{'+' if path not in before else '-' if path not in after else '~'} {path}"
               for path in sorted(before.keys() | after.keys()) if before.get(path) != after.get(path)]
    results.tell(f"{name}: {len(before)} paths before, {len(after)} after", not changed, "\n".join(changed))


def receive(folder):
    """A receiver of uploads outside the system, on the loopback that both share."""
    process = subprocess.Popen([sys.executable, "-u", ROOT / "examples/receiver/receiver.py", "--folder",
                                folder, "--port", "0"], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                               encoding="utf-8")
    line = process.stdout.readline()
    port = re.search(r":(\d+)", line)
    if not port:
        sys.exit(f"try_deb: the receiver names no port: {line}")
    settings = SYSTEM / "home/tester/.config/kerno/UpFile.ini"
    settings.parent.mkdir(parents=True, exist_ok=True)
    settings.write_text(f"[UpFile]\nserver=127.0.0.1:{port[1]}\nopen_http=http\n")
    subprocess.run(["chroot", SYSTEM, "chown", "-R", "tester:tester", "/home/tester"], check=True)
    return process


def try_command_line_alone(version):
    """The package kerno on a small system: no window, no libcurl."""
    dependencies = needed("kerno", False)
    print(f"        kerno needs {len(dependencies)} packages: {' '.join(dependencies)}")
    apt("kerno alone is installed from its file, with what it depends on",
        "--no-install-recommends install /packages/kerno_*.deb", r"Setting up kerno ")
    attempt("kerno --version", "kerno --version", 0, re.escape(version.split("~")[0]), user="tester")
    attempt("no command, no display: says what to do", "kerno", 2, "no display", user="tester")
    attempt("no command, a display, no window: names the package", "kerno", 1, "package kerno-desktop",
            user="tester", DISPLAY=":77")
    attempt("kerno cut writes a drawing",
            "kerno cut 'Kerno 12' --face 'DejaVu Sans' --fit 80mm -o sign.dxf -o sign.svg && ls -l sign.*",
            0, "sign.svg", user="tester")
    attempt("an upload without libcurl says what is missing", "kerno upload sign.svg", 1, "libcurl",
            user="tester")
    attempt("kerno runs drawings (debian/tests)", "sh /packages/tests/drawings", 0, "files written",
            user="tester")
    apt("kerno is removed", "remove kerno", "Removing kerno ")


def try_everything(received):
    """All six packages, kerno with what it recommends; the system must be as before in the end."""
    dependencies = sorted({*needed("kerno", True), *needed(" ".join(PACKAGES), False)})
    results.tell("libcurl is what kerno recommends", "libcurl4" in dependencies)
    apt(f"their {len(dependencies)} dependencies are installed first",
        f"--no-install-recommends install {' '.join(dependencies)}")
    before = listing()
    said = apt("all packages are installed", f"install --no-install-recommends {' '.join(PACKAGES)}",
               "Setting up kerno-desktop ")
    new = set(re.findall(r"^Setting up ([\w.+-]+)", said, re.MULTILINE))
    results.tell("nothing else came with them", new == set(PACKAGES), " ".join(sorted(new)))
    attempt("an upload works with libcurl", "kerno upload sign.svg", 0, user="tester")
    results.tell("the receiver has the file", (received / "sign.svg").is_file())
    for page in ("kerno", "kerno-cut", "kerno-desktop"):
        attempt(f"man {page}", f"man {page} | head -n 8", 0, "^NAME$", MANPAGER="cat", MANWIDTH="80")
    attempt("completion by bash", "bash -c '. /usr/share/bash-completion/bash_completion; "
            "_completion_loader kerno; COMP_WORDS=(kerno cu); COMP_CWORD=1; COMP_LINE=\"kerno cu\"; "
            "COMP_POINT=8; $(complete -p kerno | sed \"s/.*-F \\([^ ]*\\).*/\\1/\") kerno cu kerno; "
            "echo \"${COMPREPLY[@]}\"'", 0, r"\bcut\b")
    attempt("the window runs (debian/tests)", "sh /packages/tests/window", 0, "ran for", user="tester")
    attempt("a program in C uses the library (debian/tests)", "sh /packages/tests/library", 0, "wrote its",
            user="tester")
    attempt("a script in Python uses it (debian/tests)", "sh /packages/tests/module", 0, "wrote its",
            user="tester")
    attempt("the menu knows who opens parts files",
            "grep kerno /usr/share/applications/mimeinfo.cache", 0, "x-kerno-ipx=kerno.desktop")
    attempt("documents have their entry", "cat /var/lib/doc-base/documents/kerno", 0, "docs/")
    return before


def window_of(user):
    """The process of a running window in the system."""
    arguments, environment = chroot(user, "kerno-desktop", QT_QPA_PLATFORM="offscreen",
                                    XDG_RUNTIME_DIR=f"/home/{user}")
    return subprocess.Popen(arguments, env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def try_upgrade(folder, newer):
    """A newer version over a running window; settings of the user and of the system stay."""
    beside = SYSTEM / "usr/bin/Quenkit_Setting"
    beside.mkdir()
    attempt("a setting of the system is set", "kerno settings set Dialog Height 321 && kerno settings path",
            0, "/usr/bin/Quenkit_Setting")
    set_aside = beside.rename(SYSTEM / "usr/bin/Quenkit_Setting.aside")
    attempt("a setting of the user is set", "kerno settings set Dialog Height 123 && kerno settings path",
            0, "/home/tester/.config/kerno", user="tester")
    window = window_of("tester")
    time.sleep(3)
    results.tell("a window runs", window.poll() is None)
    set_aside.rename(beside)
    bring(folder, newer)
    apt("the newer packages are installed over it", "upgrade", "Unpacking kerno-desktop .* over ")
    program = os.readlink(f"/proc/{window.pid}/exe")
    results.tell("the window still runs, from the file that it was", window.poll() is None
                 and program.endswith("(deleted)"), program)
    window.send_signal(signal.SIGTERM)
    try:
        results.tell("it leaves when it is told to", window.wait(20) in (0, -signal.SIGTERM, 143),
                     f"status {window.returncode}")
    except subprocess.TimeoutExpired:
        window.kill()
        results.tell("it leaves when it is told to", False)
    attempt("the newer version is there", f"dpkg-query -W {' '.join(PACKAGES)}", 0,
            rf"^kerno-desktop\s+{re.escape(newer)}-")
    attempt("the system's setting is kept", "kerno settings get Dialog Height", 0, "^321$")
    shutil.move(beside, SYSTEM / "root/Quenkit_Setting")
    attempt("the user's setting is kept", "kerno settings get Dialog Height", 0, "^123$", user="tester")
    shutil.move(SYSTEM / "root/Quenkit_Setting", beside)


def try_removal(before):
    apt("the packages are removed", f"remove {' '.join(PACKAGES)}", "Removing kerno-desktop ")
    kept = SYSTEM / "usr/bin/Quenkit_Setting"
    results.tell("the system's settings outlive that", (kept / "Quenkit.ini").is_file())
    apt("and purged", f"purge {' '.join(PACKAGES)}", "purge|not installed")
    own = SYSTEM / "home/tester/.config/kerno"
    results.tell("the user's settings outlive both", any(own.rglob("Quenkit.ini")))
    shutil.rmtree(kept)
    compare("nothing is left behind", before, listing())
    attempt("the desktop's caches name it no more",
            "cd /usr/share && ! grep -rs kerno mime applications icons/hicolor")
    apt("removing twice is harmless", "remove kerno", "is not installed, so not removed")
    apt("purging twice is harmless", "purge kerno kerno-desktop", "is not installed, so not removed")


def main():
    if os.geteuid() != 0:
        sys.exit("try_deb: needs root: debootstrap and chroot do")
    if os.environ.get("KERNO_TRIAL_NAMESPACES") != "1":
        os.environ["KERNO_TRIAL_NAMESPACES"] = "1"
        os.execvp("unshare", ["unshare", "--mount", "--pid", "--fork", "--kill-child", "--mount-proc",
                              sys.executable, __file__, *sys.argv[1:]])
    version = re.search(r"^project\(kerno VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text(),
                        re.MULTILINE)[1]
    newer = f"{version}+1~test"
    subprocess.run(["sh", ROOT / "tools/make_deb.sh", newer], check=True, stdout=subprocess.DEVNULL)
    make_system()
    bring(ROOT / "build/packages", version)
    received = SYSTEM.parent / "try-deb-received"
    shutil.rmtree(received, ignore_errors=True)
    receiver = receive(received)
    try:
        try_command_line_alone(version)
        before = try_everything(received)
        try_upgrade(ROOT / "build/deb/packages", newer)
        try_removal(before)
    finally:
        receiver.terminate()
    print(f"try_deb: {results.count} tried, {results.failed} failed")
    return 1 if results.failed else 0


if __name__ == "__main__":
    sys.exit(main())
