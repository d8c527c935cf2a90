#!/usr/bin/env python3
"""Installs, uses, upgrades and uninstalls the Windows programs under Wine, in a prefix of its own.

usage: try_windows_installer.py BUILD KERNO SETUP OUT

BUILD is the build folder of the Windows programs, KERNO the program of this system, whose drawing must be
the same, SETUP the installer. OUT gets pictures of the installer's pages and of a parts file opened by its
type. Each check prints "pass" or "FAIL"; the exit status is 1 where one failed.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parents[1]
RUNNER = str(ROOT / "tools/run_windows.sh")
UNINSTALL = r"HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Uninstall\Kerno"
CLASSES = r"HKEY_CURRENT_USER\Software\Classes"
ENVIRONMENT = r"HKEY_CURRENT_USER\Environment"
OLD_VERSION = "0.9.0"
MOST_SECONDS = 180
DONE, IN_USE, NEWER, NOT_WRITABLE, NOT_INSTALLED, OLD_WINDOWS, PATH_LEFT, FOREIGN_FILE = 0, 3, 4, 5, 6, 7, 8, 9
# Keys in which Wine itself notes what it does.
NOISE = re.compile(r"\\Software\\Wine|\\Explorer|\\Volatile Environment|\\Control Panel|\\Console|\\MUICache", re.I)


class Checks:
    def __init__(self):
        self.failed = 0

    def __call__(self, name, is_true, detail=""):
        self.failed += not is_true
        print(f"{'pass' if is_true else 'FAIL'}  {name}" + (f": {detail}" if detail and not is_true else ""),
              flush=True)

    def equal(self, name, wanted, found):
        self(name, wanted == found, f"wanted {wanted!r}, found {found!r}")


class Display:
    """A display with nothing on it."""

    def __init__(self):
        read_end, write_end = os.pipe()
        self.server = subprocess.Popen(["Xvfb", "-noreset", "-displayfd", str(write_end), "-screen", "0", "900x700x24"],
                                       pass_fds=[write_end], stderr=subprocess.DEVNULL)
        os.close(write_end)
        with os.fdopen(read_end) as answer:
            self.name = ":" + answer.readline().strip()

    def end(self):
        self.server.terminate()
        self.server.wait(20)


class Prefix:
    """A Windows of its own: programs that run in it, its registry and its files."""

    def __init__(self, folder, display):
        self.folder = folder / "prefix"
        home = folder / "home"
        self.desktop = home / "Desktop"  # where Wine has the user's
        self.desktop.mkdir(parents=True)
        self.environment = {k: v for k, v in os.environ.items() if k not in ("TMP", "TEMP", "TMPDIR", "WAYLAND_DISPLAY")}
        self.environment.update(KERNO_WINEPREFIX=str(self.folder), HOME=str(home), DISPLAY=display,
                                FONTCONFIG_FILE=str(ROOT / "tests/fonts.conf"))
        self.run("cmd", "/c", "exit")
        self.user = next(user for user in (self.folder / "drive_c/users").iterdir() if user.name != "Public")
        self.local = self.user / "AppData/Local"

    def start(self, program, *arguments, **more):
        return subprocess.Popen([RUNNER, str(program), *map(str, arguments)], env=self.environment,
                                stdin=subprocess.DEVNULL, **more)

    def run(self, program, *arguments):
        """Exit status and output."""
        output = self.folder.with_name("output")
        with open(output, "w+b") as out:  # a file: what Wine starts besides may keep a pipe open
            status = self.start(program, *arguments, stdout=out, stderr=subprocess.STDOUT).wait(MOST_SECONDS)
            out.seek(0)
            return status, out.read().decode("utf-8", "replace")

    def registry(self, key="HKEY_CURRENT_USER"):
        """Keys with their values, as the registry editor exports them."""
        file = self.folder / "drive_c/export.reg"
        file.unlink(missing_ok=True)
        self.run("reg", "export", key, r"C:\export.reg", "/y")
        if not file.exists():
            return {}
        lines = file.read_bytes().decode("utf-16").replace("\\\r\n  ", "").split("\r\n")
        file.unlink()
        keys = {}
        for line in lines[1:]:
            if line.startswith("["):
                values = keys.setdefault(line[1:-1], {})
            elif "=" in line:
                name, value = re.fullmatch(r'(@|"(?:[^"\\]|\\.)*")=(.*)', line).groups()
                values[name.strip('"')] = value
        return keys

    def set_registry(self, lines):
        file = self.folder / "drive_c/import.reg"
        file.write_bytes(("Windows Registry Editor Version 5.00\r\n\r\n" + "\r\n".join(lines) + "\r\n").encode("utf-16"))
        self.run("reg", "import", r"C:\import.reg")
        file.unlink()

    def path(self):
        """The user's search path and its type; ("", "") without one."""
        values = {name.lower(): value for name, value in self.registry(ENVIRONMENT).get(ENVIRONMENT, {}).items()}
        value = values.get("path", "")
        if value.startswith("hex(2):"):
            data = bytes.fromhex(value[7:].replace(",", "").replace(" ", ""))
            return data.decode("utf-16-le").rstrip("\0"), "REG_EXPAND_SZ"
        return value.strip('"').replace("\\\\", "\\"), "REG_SZ" if value else ""

    def set_path(self, text, kind="hex(2)"):
        data = (text + "\0").encode("utf-16-le")
        value = ",".join(f"{byte:02x}" for byte in data)
        self.set_registry([f"[{ENVIRONMENT}]", f'"Path"={kind}:{value}' if text else '"Path"=-'])

    def files(self):
        """Everything that a user has there, without what is temporary."""
        top = self.user
        return {str(path.relative_to(top)) for path in top.rglob("*")
                if not str(path.relative_to(top)).startswith(("AppData/Local/Temp", "Temp"))} | {
                    f"Desktop/{path.name}" for path in self.desktop.iterdir()}

    def shortcuts(self):
        return sorted(name for name in self.files() if name.endswith("/Kerno.lnk"))

    def end(self):
        for order in ("-k", "-w"):
            subprocess.run(["wineserver", order], check=False, stderr=subprocess.DEVNULL,
                           env={**self.environment, "WINEPREFIX": str(self.folder)})


def windows_name(path):
    return "Z:" + str(path).replace("/", "\\")


def wait_for(question, seconds=60):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        answer = question()
        if answer:
            return answer
        time.sleep(0.2)
    return None


def contents(folder):
    return {str(path.relative_to(folder)): path.read_bytes() for path in folder.rglob("*") if path.is_file()}


class Trial:
    def __init__(self, build, kerno, setup, out):
        self.check = Checks()
        self.build = build
        self.kerno = kerno
        self.setup = setup
        self.out = out
        self.version = re.search(r"kerno-([0-9.]+)-setup", setup.name).group(1)
        self.old_setup = out / f"kerno-{OLD_VERSION}-setup.exe"
        subprocess.run(["sh", str(ROOT / "packaging/windows/make_installer.sh"), str(build), OLD_VERSION,
                        str(self.old_setup)], check=True, stdout=subprocess.DEVNULL)
        self.display = Display()
        self.prefix = Prefix(out, self.display.name)
        self.home = self.prefix.local / "Programs/Kerno"

    # What is done again and again.

    def install(self, *switches, setup=None, folder=None):
        words = list(switches)
        if folder:  # the last of the line, without quotes
            words += f"/D={folder}".split(" ")
        return self.prefix.run(setup or self.setup, "/S", *words)[0]

    def uninstall(self, *switches, folder=None):
        """The uninstaller goes on in a copy of itself, so its end shows in what it removes."""
        folder = folder or self.home
        self.prefix.run(folder / "uninstall.exe", "/S", *switches)
        gone = wait_for(lambda: not (folder / "installed.txt").exists())
        wait_for(lambda: UNINSTALL not in self.prefix.registry(UNINSTALL))
        time.sleep(1)
        return gone

    def entry(self, name):
        return self.prefix.registry(UNINSTALL).get(UNINSTALL, {}).get(name, "").strip('"')

    def opens_with(self):
        return self.prefix.registry(CLASSES + r"\.ipx").get(CLASSES + r"\.ipx", {}).get("@", "").strip('"')

    def state(self):
        keys = {key: values for key, values in self.prefix.registry().items() if not NOISE.search(key)}
        return keys, self.prefix.files()

    def check_state(self, name, before, more_files=(), more_keys=()):
        keys, files = self.state()
        old_keys, old_files = before
        left = sorted(files - old_files - set(more_files))
        changed = sorted(key for key in keys.keys() | old_keys.keys()
                         if keys.get(key) != old_keys.get(key) and not key.startswith(tuple(more_keys) or ("-",)))
        self.check(f"{name}: no file is left or lost", not left and not old_files - files,
                   f"left {left[:9]}, lost {sorted(old_files - files)[:9]}")
        self.check(f"{name}: the registry is as before", not changed,
                   str([(key, old_keys.get(key), keys.get(key)) for key in changed[:5]]))

    # The checks, in the order in which they build on each other.

    def first_installation(self):
        self.check.equal("a silent installation ends with 0", DONE, self.install(setup=self.old_setup))
        listed = (self.home / "installed.txt").read_text(encoding="utf-8").split()
        found = {str(p.relative_to(self.home)) for p in self.home.rglob("*") if p.is_file()}
        self.check("the files are those of the list", found == {*listed, "installed.txt"},
                   str(found ^ {*listed, "installed.txt"}))
        self.check.equal("the search path has the folder, in a value that is expanded",
                         (self.windows_home(), "REG_EXPAND_SZ"), self.prefix.path())
        self.check.equal("the entry among the programs tells the version", OLD_VERSION, self.entry("DisplayVersion"))
        self.check.equal("the entry tells how to uninstall silently",
                         rf'\"{self.windows_home()}\uninstall.exe\" /S'.replace("\\\\", "\\"),
                         self.entry("QuietUninstallString").replace("\\\\", "\\"))
        self.check.equal("the start menu has an entry, the desktop none",
                         ["AppData/Roaming/Microsoft/Windows/Start Menu/Programs/Kerno.lnk"], self.prefix.shortcuts())
        self.check.equal("parts files belong to Kerno", "Kerno.Parts", self.opens_with())

    def windows_home(self):
        return "C:" + str(self.home)[len(str(self.prefix.folder / "drive_c")):].replace("/", "\\")

    def use(self):
        status, out = self.prefix.run("cmd", "/c", "kerno --version")
        self.check("the command is found by the search path", status == 0 and out.startswith("kerno "), out)
        words = ["cut", "Öffnungszeiten 9–17 h", "--face", "DejaVu Sans", "--fit", "120mm", "--quiet", "-o"]
        ours, theirs = self.out / "linux.dxf", self.out / "windows.dxf"
        subprocess.run([self.kerno, *words, str(ours)], check=True, env=self.prefix.environment)
        status, out = self.prefix.run("cmd", "/c", "kerno", *words, windows_name(theirs))
        self.check("it writes the drawing that it writes on Linux",
                   status == 0 and ours.read_bytes() == theirs.read_bytes(), out)
        status, out = self.prefix.run("cmd", "/c", "kerno", "settings", "set", "Dialog", "Height", "77")
        self.check("settings are written", status == 0, out)

    def settings_file(self):
        return self.home / "Temp/Quenkit_Setting/Quenkit.ini"

    def open_parts_file(self):
        parts = self.prefix.folder / "drive_c/sign 花.ipx"
        subprocess.run([self.kerno, "convert", "東 Kerno", "--face", "IPAGothic", "--quiet", "-o", str(parts)], check=True,
                       env=self.prefix.environment)
        self.mirror_classes()
        opened = self.prefix.start("start", r"C:\sign 花.ipx")
        window = wait_for(lambda: self.tool("search", "--onlyvisible", "--name", "Kerno"), 60)
        time.sleep(5)
        self.picture("parts-file.png")
        self.check("a parts file opens in the window", window)
        opened.wait(60)
        self.while_it_runs()
        if window:
            self.tool("windowfocus", "--sync", window.split()[-1])
            self.tool("key", "ctrl+q")
        self.check("the window closes", wait_for(lambda: not self.tool("search", "--onlyvisible", "--name", "Kerno"), 30))
        time.sleep(2)
        self.forget_classes()
        parts.unlink()

    def mirror_classes(self):
        """Wine looks for file types in the machine's part of the registry alone, Windows in the user's first."""
        lines = []
        for key, values in self.prefix.registry(CLASSES).items():
            if key.startswith((CLASSES + r"\.ipx", CLASSES + r"\Kerno.Parts")):
                lines.append(f"[{key.replace('HKEY_CURRENT_USER', 'HKEY_LOCAL_MACHINE')}]")
                lines += [f"{name if name == '@' else chr(34) + name + chr(34)}={value}" for name, value in values.items()]
        self.prefix.set_registry(lines)

    def forget_classes(self):
        classes = CLASSES.replace("HKEY_CURRENT_USER", "HKEY_LOCAL_MACHINE")
        self.prefix.set_registry([rf"[-{classes}\.ipx]", rf"[-{classes}\Kerno.Parts]"])

    def while_it_runs(self):
        before = contents(self.home)
        keys = self.prefix.registry(UNINSTALL)
        self.check.equal("installing over a running Kerno ends with 3", IN_USE, self.install())
        self.check("and nothing is replaced", contents(self.home) == before and keys == self.prefix.registry(UNINSTALL))
        status, _ = self.prefix.run(self.home / "uninstall.exe", "/S", *f"_?={self.windows_home()}".split(" "))
        self.check.equal("uninstalling a running Kerno ends with 3", IN_USE, status)
        self.check("and nothing is removed", contents(self.home) == before and keys == self.prefix.registry(UNINSTALL))

    def upgrade(self):
        settings = self.settings_file().read_bytes()
        self.check.equal("the upgrade ends with 0", DONE, self.install())
        self.check.equal("the entry tells the new version", self.version, self.entry("DisplayVersion"))
        self.check.equal("the settings are kept", settings, self.settings_file().read_bytes())
        self.check.equal("the search path has the folder once", self.windows_home(), self.prefix.path()[0])
        self.check.equal("an older version is refused with 4", NEWER, self.install(setup=self.old_setup))
        self.check.equal("and the newer one stays", self.version, self.entry("DisplayVersion"))
        self.check.equal("by /DOWNGRADE it is installed", DONE, self.install("/DOWNGRADE", setup=self.old_setup))
        self.check.equal("and told", OLD_VERSION, self.entry("DisplayVersion"))
        self.check.equal("a choice of before is remembered", DONE, self.install("/NOPATH", "/NOMENU", "/DESKTOP"))
        self.check.equal("the next installation", DONE, self.install())
        self.check("leaves the search path alone", self.prefix.path()[0] == "", self.prefix.path())
        self.check.equal("and has its icon on the desktop", ["Desktop/Kerno.lnk"], self.prefix.shortcuts())

    def uninstallation(self, before):
        keep = self.out / "kept-uninstall.exe"
        shutil.copy(self.home / "uninstall.exe", keep)
        (self.home / "docs/mine.txt").write_text("mine", encoding="utf-8")
        self.check("uninstalling ends", self.uninstall())
        mine = {"AppData/Local/Programs", *(f"AppData/Local/Programs/Kerno{name}" for name in (
            "", "/docs", "/docs/mine.txt", "/Temp", "/Temp/Quenkit_Setting", "/Temp/Quenkit_Setting/Quenkit.ini",
            "/Temp/Quenkit_Setting/Kerno_Text.txt"))}
        self.check_state("what stays is the user's own", before, mine, [r"HKEY_CURRENT_USER\Software\Quenkit"])
        self.check("the settings are still there", self.settings_file().exists())
        status, _ = self.prefix.run(keep, "/S", *f"_?={self.windows_home()}".split(" "))
        self.check.equal("uninstalling twice ends with 6", NOT_INSTALLED, status)
        (self.home / "docs/mine.txt").unlink()
        self.install("/NOIPX")
        status, _ = self.prefix.run(self.home / "uninstall.exe", "/S", *f"_?={self.windows_home()}".split(" "))
        self.check("uninstalling in place ends with 0 and leaves the uninstaller", status == DONE and
                   {"uninstall.exe"} == {name for name in contents(self.home) if not name.startswith("Temp/Quenkit_Setting/")},
                   f"{status} {list(contents(self.home))}")
        (self.home / "uninstall.exe").unlink()
        self.check.equal("installing again ends with 0", DONE, self.install())
        status, out = self.prefix.run("cmd", "/c", "kerno", "settings", "get", "Dialog", "Height")
        self.check("and finds the settings", "77" in out, out)
        self.check("uninstalling with /DELETESETTINGS ends", self.uninstall("/DELETESETTINGS"))
        self.check_state("nothing is left", before, {"AppData/Local/Programs"})

    def other_folder(self, before):
        folder = self.prefix.folder / "drive_c/花子 の Kerno; 2"
        name = "C:\\花子 の Kerno; 2"
        self.check.equal("a folder with blanks and Japanese", DONE, self.install(folder=name))
        self.check.equal("stands in the search path in quotes", f'"{name}"',
                         self.prefix.path()[0].replace('\\"', '"'))
        key = CLASSES + r"\Kerno.Parts\shell\open\command"
        self.check.equal("the file type names it in quotes", f'"{name}\\kerno-desktop.exe" "%1"',
                         self.prefix.registry(key)[key]["@"][1:-1].replace('\\"', '"').replace("\\\\", "\\"))
        (folder / "notes.txt").write_text("mine", encoding="utf-8")
        self.prefix.run(folder / "kerno.exe", "settings", "set", "Dialog", "Height", "88")
        presets = "preset\tone\n"
        (folder / "Temp/Quenkit_Setting/Kerno_Cut.txt").write_text(presets, encoding="utf-16")
        self.check.equal("installing to another folder", DONE, self.install(folder="C:\\Kerno"))
        self.check.equal("leaves the files of others alone in the first", ["notes.txt"], sorted(contents(folder)))
        moved = self.prefix.folder / "drive_c/Kerno/Temp/Quenkit_Setting/Quenkit.ini"
        self.check("takes the settings along", moved.exists() and "88" in moved.read_bytes().decode("utf-16"))
        cut = moved.with_name("Kerno_Cut.txt")
        self.check("and the presets of the Cut page", cut.exists() and cut.read_text(encoding="utf-16") == presets)
        self.check.equal("and the entry of the search path", "C:\\Kerno", self.prefix.path()[0])
        self.check("uninstalling ends", self.uninstall("/DELETESETTINGS", folder=moved.parents[2]))
        self.check("the second folder is gone", not moved.parents[2].exists())
        shutil.rmtree(folder)
        self.check_state("after two folders", before, {"AppData/Local/Programs"})

    def other_program(self, before):
        key = CLASSES + r"\.ipx"
        self.prefix.set_registry([f"[{key}]", '@="Other.App"', f"[{CLASSES}\\Other.App]", '@="Other"'])
        self.check.equal("where another program opens parts files", DONE, self.install())
        self.check.equal("it keeps them", "Other.App", self.opens_with())
        self.check("Kerno is among those of Open with",
                   "Kerno.Parts" in self.prefix.registry(key).get(key + r"\OpenWithProgids", {}))
        self.check.equal("by /IPX", DONE, self.install("/IPX"))
        self.check.equal("Kerno takes them", "Kerno.Parts", self.opens_with())
        self.uninstall("/DELETESETTINGS")
        self.check.equal("and gives them back", "Other.App", self.opens_with())
        self.prefix.set_registry([f"[-{key}]", f"[-{CLASSES}\\Other.App]"])
        self.check_state("after another program", before, {"AppData/Local/Programs"})

    def long_path(self):
        for length, status in ((3000, DONE), (32760, PATH_LEFT)):
            text = ("%USERPROFILE%\\bin;;" + "C:\\tools 日本;" * 4000)[:length - 1] + "z"
            self.prefix.set_path(text)
            self.check.equal(f"a search path of {length} characters: the exit status", status, self.install())
            wanted = f"{text};{self.windows_home()}" if status == DONE else text
            self.check("it is kept whole, and its type", self.prefix.path() == (wanted, "REG_EXPAND_SZ"),
                       f"{len(self.prefix.path()[0])} characters")
            self.uninstall("/DELETESETTINGS")
            self.check("and is as before after uninstalling", self.prefix.path() == (text, "REG_EXPAND_SZ"),
                       f"{len(self.prefix.path()[0])} characters")
        self.prefix.set_path("")

    def bad_places(self, before):
        self.check.equal("a folder that cannot be written: exit 5", NOT_WRITABLE, self.install(folder="Z:\\proc\\Kerno"))
        self.check.equal("a name that is too long: exit 5", NOT_WRITABLE, self.install(folder="C:\\" + "k" * 160))
        self.check_state("after both", before, {"AppData/Local/Programs"})
        folder = self.prefix.folder / "drive_c/mine"
        folder.mkdir()
        (folder / "README.md").write_text("mine", encoding="utf-8")
        self.check.equal("a foreign file in the way: exit 9", FOREIGN_FILE, self.install(folder="C:\\mine"))
        self.check.equal("and it is untouched", {"README.md": b"mine"}, contents(folder))
        shutil.rmtree(folder)
        if os.geteuid() != 0:  # nothing is read-only for root
            self.install()
            before = contents(self.home)
            self.home.chmod(0o555)
            self.check.equal("an installation that became read-only: exit 5", NOT_WRITABLE, self.install())
            self.check("nothing of it is lost", contents(self.home) == before)
            self.home.chmod(0o755)
            self.uninstall("/DELETESETTINGS")

    def signature(self):
        """With a certificate of our own making."""
        key, certificate, password, setup = (self.out / name for name in ("key", "certificate", "password", "signed.exe"))
        password.write_text("not to be seen\n", encoding="ascii")
        subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-keyout", key, "-out", certificate, "-days", "30",
                        "-subj", "/CN=Kerno trial", "-addext", "extendedKeyUsage=codeSigning", "-passout",
                        f"file:{password}"], check=True, capture_output=True)
        done = subprocess.run(["make", "--no-print-directory", "-C", str(ROOT),
                               f"SIGN_KEY={key}", f"SIGN_CERTIFICATE={certificate}", f"SIGN_PASSWORD_FILE={password}",
                               f"WINDOWS_BUILD={self.build}", f"WINDOWS_SETUP={setup}", "pack-windows-installer"],
                              check=False, capture_output=True, text=True)
        self.check("a signed installer is made", done.returncode == 0, done.stderr)
        said = done.stdout + done.stderr
        self.check("neither key nor password is printed", "not to be seen" not in said and str(key) not in said, said)
        self.prefix.run(setup, "/S")
        for program in (setup, *(self.home / f"{name}.exe" for name in ("kerno", "kerno-desktop", "uninstall"))):
            done = subprocess.run(["osslsigncode", "verify", "-CAfile", certificate, "-in", program], check=False,
                                  capture_output=True, text=True)
            self.check(f"{program.name} is signed", done.returncode == 0 and "Signature verification: ok" in done.stdout,
                       done.stdout)
        self.uninstall("/DELETESETTINGS")
        signed = self.unpacked_zip("signed", SIGN_KEY=str(key), SIGN_CERTIFICATE=str(certificate),
                                   SIGN_PASSWORD_FILE=str(password)) / "library/kerno.dll"
        done = subprocess.run(["osslsigncode", "verify", "-CAfile", certificate, "-in", signed], check=False,
                              capture_output=True, text=True)
        self.check("the library of the zip is signed", done.returncode == 0, done.stdout)

    def unpacked_zip(self, name, **signing):
        """The folder that a zip unpacks to."""
        packed = self.out / f"{name}.zip"
        subprocess.run(["sh", str(ROOT / "packaging/windows/make_zip.sh"), str(self.build), str(packed)], check=True,
                       stdout=subprocess.DEVNULL, env={**os.environ, **signing})
        shutil.unpack_archive(packed, self.out / name)
        return self.out / name / "kerno"

    def library(self):
        """A program built with what the zip has, and nothing else of Kerno's."""
        home = self.unpacked_zip("unpacked")
        files = home / "library"
        program, made, wanted = files / "sign.exe", self.out / "sign.dxf", self.out / "wanted.dxf"
        subprocess.run(["x86_64-w64-mingw32-gcc", "-I", files, home / "examples/c/sign.c", "-L", files, "-lkerno", "-o",
                        program], check=True)
        status, out = self.prefix.run(program, windows_name(made))
        subprocess.run([self.kerno, "cut", "Open", "--face", "DejaVu Sans", "--cap-height", "40mm", "--quiet", "-o", wanted],
                       check=True, env=self.prefix.environment)
        self.check("a program with the library of the zip draws as on Linux",
                   status == DONE and made.read_bytes() == wanted.read_bytes(), out)
        self.check("the list of functions for other linkers is that of the library",
                   set((files / "kerno.def").read_text(encoding="ascii").split()[3:]) ==
                   set(re.findall(r"^    (\w+);", (ROOT / "src/api/kerno.map").read_text(encoding="utf-8"), re.M)))

    def programs(self):
        """The loader may place them anywhere, their data never runs, and no time of the build is in them."""
        for name in ("cli/kerno.exe", "ui/win32/kerno-desktop.exe", "setup/kerno-setup-helper.exe", "api/kerno.dll"):
            listing = subprocess.run(["x86_64-w64-mingw32-objdump", "-p", self.build / "src" / name], check=True,
                                     capture_output=True, text=True).stdout
            flags = {"DYNAMIC_BASE", "NX_COMPAT", "HIGH_ENTROPY_VA"} - set(listing.split())
            self.check(f"{name} has the loader's safeguards", not flags, str(flags))
        for name in ("setup.exe", "zip"):
            made = []
            for run in (1, 2):
                made.append(self.out / f"again-{run}.{name}")
                script, words = ("make_installer.sh", [self.version]) if name == "setup.exe" else ("make_zip.sh", [])
                subprocess.run(["sh", str(ROOT / "packaging/windows" / script), str(self.build), *words, str(made[-1])],
                               check=True, stdout=subprocess.DEVNULL)
                time.sleep(2 * (run == 1))
            self.check(f"two runs make the same {name}", made[0].read_bytes() == made[1].read_bytes())

    # The pages, with real keys.

    def tool(self, *words):
        environment = {**self.prefix.environment, "LC_ALL": "C.UTF-8"}
        return subprocess.run(["xdotool", *words], env=environment, capture_output=True, text=True,
                              check=False).stdout.strip()

    def picture(self, name):
        subprocess.run(["import", "-window", "root", str(self.out / name)], env=self.prefix.environment, check=True)

    def pages(self, language, number):
        process = self.prefix.start(self.setup, f"/LANGUAGE={number}")
        window = wait_for(lambda: self.tool("search", "--onlyvisible", "--name", "Kerno"), 60)
        self.check(f"{language}: the installer shows a window", window)
        if not window:
            process.kill()
            return
        window = window.split()[-1]
        time.sleep(1)
        for page in ("licence", "components", "folder", "done"):
            self.tool("windowfocus", "--sync", window)
            self.tool("mousemove", "5", "5")
            self.picture(f"{language}-{page}.png")
            if page == "done":
                break
            self.tool("key", "Return")
            if page == "folder":
                wait_for(lambda: (self.home / "installed.txt").exists())
                wait_for(lambda: self.entry("DisplayVersion") == self.version)
                time.sleep(3)
            time.sleep(1)
        self.tool("key", "space")  # on the tick for starting the program
        self.tool("key", "Return")
        ended = wait_for(lambda: process.poll() is not None, 30)
        self.check(f"{language}: the pages lead to an installation", ended and process.poll() == 0 and
                   self.entry("DisplayVersion") == self.version, str(process.poll()))
        if not ended:
            process.kill()
        self.uninstaller_pages(language, number)

    def uninstaller_pages(self, language, number):
        self.prefix.run(self.home / "uninstall.exe", f"/LANGUAGE={number}")
        window = wait_for(lambda: self.tool("search", "--onlyvisible", "--name", "Kerno"), 60)
        self.check(f"{language}: the uninstaller shows a window", window)
        if not window:
            return
        time.sleep(1)
        self.picture(f"{language}-uninstall.png")
        self.tool("windowfocus", "--sync", window.split()[-1])
        self.tool("key", "Return")
        self.check(f"{language}: the uninstaller removes Kerno",
                   wait_for(lambda: not (self.home / "installed.txt").exists()))
        time.sleep(2)
        self.picture(f"{language}-uninstalled.png")
        self.tool("key", "Return")
        wait_for(lambda: not self.tool("search", "--onlyvisible", "--name", "Kerno"), 30)

    def an_old_windows(self):
        """Wine is one until it is told otherwise."""
        for name, status in (("win7", OLD_WINDOWS), ("win10", DONE)):
            self.prefix.set_registry([r"[HKEY_CURRENT_USER\Software\Wine]", f'"Version"="{name}"'])
            if status != DONE:
                self.check.equal("Windows 7 is refused with 7", status, self.install())

    def run(self):
        self.an_old_windows()
        # Keys that every Windows has.
        self.prefix.set_registry([f"[{UNINSTALL.rsplit(chr(92), 1)[0]}]", f"[{CLASSES}]", f"[{ENVIRONMENT}]"])
        before = self.state()
        for step, *words in (
                (self.first_installation,), (self.use,), (self.open_parts_file,), (self.upgrade,),
                (self.uninstallation, before), (self.other_folder, before), (self.other_program, before),
                (self.long_path,), (self.bad_places, before), (self.signature,), (self.library,), (self.programs,),
                (self.pages, "english", 1033), (self.pages, "japanese", 1041), (self.pages, "german", 1031)):
            try:
                step(*words)
            except (OSError, subprocess.SubprocessError, KeyError, AssertionError) as error:
                self.check(f"{step.__name__} comes to its end", False, repr(error))

    def end(self):
        self.prefix.end()
        self.display.end()


def main():
    build, kerno, setup, out = (pathlib.Path(word).resolve() for word in sys.argv[1:5])
    shutil.rmtree(out, ignore_errors=True)
    out.mkdir(parents=True)
    trial = Trial(build, kerno, setup, out)
    try:
        trial.run()
    finally:
        trial.end()
    print(f"{trial.check.failed} checks failed")
    return 1 if trial.check.failed else 0


if __name__ == "__main__":
    sys.exit(main())
