#!/usr/bin/env python3
"""Types command lines into bash, zsh and fish, presses Tab, and compares what they offer with what
"kerno help" and "kerno faces" tell.

usage: completions_test.py KERNO SCRIPTS
"""
import fcntl
import os
import pathlib
import pty
import re
import select
import struct
import subprocess
import sys
import termios
import time

import manual_pages_test
import programs

KERNO = ""
SCRIPTS = pathlib.Path()
ROMAN = {"rowmand", "rowmans", "rowmant"}
BOLD = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf"
VARIABLE = "/usr/share/fonts/truetype/inter-vf/Inter.var.ttf"
FORMATS = {"svg", "bmp", "dxf", "emf", "x3d", "ipx", "ipl", "plt", "pdf"}


class Terminal:
    """An interactive shell. Tab completes, Control-T prints the line that is being typed."""

    def __init__(self, words, env, folder, start):
        self.child, self.end = pty.fork()
        if self.child == 0:
            os.chdir(folder)
            os.execvpe(words[0], words, env)
        fcntl.ioctl(self.end, termios.TIOCSWINSZ, struct.pack("HHHH", 400, 250, 0, 0))
        self.send(start + "\n")
        self.send("printf 'rea''dy\\n'\n")
        self.wait_for("ready")

    def send(self, text):
        os.write(self.end, text.encode())

    def wait_for(self, mark, seconds=60):
        text, last = b"", time.monotonic() + seconds
        while mark.encode() not in text:
            if not select.select([self.end], [], [], max(0, last - time.monotonic()))[0]:
                raise AssertionError(f"no {mark!r} in {text!r}")
            text += os.read(self.end, 65536)
        return text.decode("utf-8", "replace")

    def complete(self, typed, tabs):
        """The line after Tab, and all that was shown meanwhile."""
        self.send(typed + "\t" * tabs + "\x14")
        shown = self.wait_for(">>")
        self.send("\x15")
        line = re.search(r"<<(.*?)>>", shown, re.S)[1]
        return line, re.sub(r"\x1b\[[0-9;?]*[A-Za-z]|.\x08", "", shown[:shown.rindex("<<")])

    def close(self):
        os.close(self.end)
        os.waitpid(self.child, 0)


def options_of(*words):
    """Name and value of every option, as the help of a command has them."""
    entries = [entry for heading in ("Options", "Series")
               for entry in manual_pages_test.listed(manual_pages_test.help_of(*words), heading)]
    return [(left.split()[0], " ".join(left.split()[1:]).split("=")[0]) for left, _ in entries]


class CompletionsTest(programs.FolderTest):
    def setUp(self):
        super().setUp()
        place = self.folder / "bin"
        place.mkdir()
        (place / "kerno").symlink_to(KERNO)
        other = self.folder / "signs" / "kerno-elsewhere" / "kerno"  # has a face of its own
        other.parent.mkdir(parents=True)
        other.write_text("#!/bin/sh\necho QX\n")
        other.chmod(0o755)
        self.work = self.folder / "signs"
        self.work.mkdir(exist_ok=True)
        for name in ("old sign.ipx", "notes.md", "plate.dxf"):
            (self.work / name).write_text("")
        for name in ("outputs", "IPAGothic"):
            (self.work / name).mkdir()
        self.env = {**os.environ, "PATH": f"{place}:{os.environ['PATH']}", "LC_ALL": "C.UTF-8", "TERM": "dumb",
                    "HOME": str(self.folder), "XDG_CONFIG_HOME": str(self.folder), "ZDOTDIR": str(self.folder),
                    "XDG_DATA_HOME": str(self.folder), "HISTFILE": ""}

    # Each gives what a shell offers after a line, without a terminal.

    def bash_offers(self, line):
        words = [*line.split(" ")]
        script = ('source "$1"; shift; compopt() { :; }; COMP_LINE="$*"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _kerno; '
                  'printf "%s\\n" "${COMPREPLY[@]}"')
        done = subprocess.run(["bash", "--norc", "-c", script, "bash", SCRIPTS / "kerno.bash", *words],
                              capture_output=True, cwd=self.work, env=self.env)
        self.assertEqual(b"", done.stderr, line)
        return set(done.stdout.decode().replace("\\ ", " ").split("\n")) - {""}

    def fish_offers(self, line):
        script = 'source $argv[1]; complete -C $argv[2]'
        done = subprocess.run(["fish", "--no-config", "-c", script, SCRIPTS / "kerno.fish", line],
                              capture_output=True, cwd=self.work, env=self.env)
        self.assertEqual(b"", done.stderr, line)
        return {offer.split("\t")[0] for offer in done.stdout.decode().splitlines()}

    def zsh(self):
        (self.folder / "_kerno").write_bytes((SCRIPTS / "_kerno").read_bytes())
        start = (f"PS1=; fpath=({self.folder} $fpath); autoload -Uz compinit; compinit -u; bindkey -e; setopt noalwayslastprompt; "
                 "LISTMAX=0; show-line() { print -rn -- \"<<$BUFFER>>\"; }; zle -N show-line; bindkey '^T' show-line; "
                 "unset zle_bracketed_paste; bindkey '^I' complete-word; stty -echo")
        terminal = Terminal(["zsh", "-f", "-i"], self.env, self.work, start)
        self.addCleanup(terminal.close)
        return terminal

    def bash(self):
        start = (f"PS1=; source {SCRIPTS}/kerno.bash; bind 'set completion-query-items 0' 'set page-completions off' "
                 "'set enable-bracketed-paste off'; bind 'set completion-query-items 0'; bind 'set page-completions off'; "
                 "bind 'set enable-bracketed-paste off'; bind -x '\"\\C-t\": printf \"<<%s>>\" \"$READLINE_LINE\"'; stty -echo")
        terminal = Terminal(["bash", "--norc", "--noprofile", "-i"], self.env, self.work, start)
        self.addCleanup(terminal.close)
        return terminal

    def test_bash_and_fish_offer_every_command_option_and_choice(self):
        names = manual_pages_test.commands()
        for offers in (self.bash_offers, self.fish_offers):
            self.assertEqual(set(names), offers("kerno "))
            self.assertEqual(set(names), offers("kerno help "))
            self.assertEqual({"path", "list", "get", "set", "unset"}, offers("kerno settings "))
            choices = 0
            for name in names:
                options = options_of(name)
                offered = offers(f"kerno {name} -")
                self.assertEqual({option for option, _ in options}, offered, name)
                for option, value in options if name in ("cut", "convert") else ():
                    words = set(value.split("|"))
                    if option == "--anchor":
                        words = {f"{up}-{across}" for up in ("top", "middle", "bottom")
                                 for across in ("left", "centre", "right")}
                    elif len(words) < 2 or not re.fullmatch(r"[a-z0-9-]+(\|[a-z0-9-]+)+|UTF.*", value):
                        continue
                    self.assertEqual(words, offers(f"kerno {name} {option} "), option)
                    choices += 1
            self.assertGreaterEqual(choices, 15)

    def test_bash_and_fish_offer_what_belongs_to_an_option(self):
        styles = {"Bold", "Bold Oblique"}
        files = {"old sign.ipx", "outputs"}
        for offers in (self.bash_offers, self.fish_offers):
            is_bash = offers == self.bash_offers
            cases = [
                ("kerno cut --face Deja", {"DejaVu Sans", "DejaVu Serif", "DejaVu Sans Mono"}, {"IPAGothic"}),
                ("kerno cut x --fallback deja", {"DejaVu Sans"}, {"IPAGothic"}),
                ("kerno convert --face IPAゴ", {"IPAゴシック"}, {"IPAGothic"}),
                ("kerno cut --stroke-font row", ROMAN, {"romans"}),
                ("kerno convert --format ", FORMATS, {"gif"}),
                ("kerno cut x -o sign", {f"sign.{ending}" for ending in FORMATS}, {"plate.dxf", "notes.md"}),
                ("kerno cut x -o sign.d", {"sign.dxf"}, {"sign.svg"}),
                ("kerno cut x -o pla", {"plate.dxf", "pla.svg"}, {"plate.svg"}),
                ("kerno settings get De", {"Dec", "Debug"}, {"Parts"}),
                ("kerno settings get Dec ", {"SvgOut::Precision"}, {"Log"}),
                ("kerno settings set Parts 横", {"横書フェイス名"}, {"縦書フェイス名"}),
                ("kerno page ", {"outputs"} if is_bash else {"outputs/"}, {"notes.md"}),
                ("kerno cut --ipx ", set(), {"old sign.ipx"}),
                (f"kerno cut --font-file {BOLD} --style ", {"Bold"}, {"Oblique", "Book"}),
                (f"kerno cut --font-file {BOLD} --features ", {"liga", "kern"}, {"Bold"}),
                (f"kerno cut --font-file {BOLD} --features liga=0,k", {"liga=0,kern"}, {"liga=0,liga"}),
                (f"kerno cut --font-file {BOLD} --variation ", set(), {"wght="}),
                (f"kerno cut --font-file {VARIABLE} --variation ", {"wght="}, {"liga"}),
                ("kerno cut x --language sr", {"sr", "sr-Latn"}, {"ja"}),
                ("kerno cut --height ", set(), {"notes.md", "outputs", "outputs/"})]
            if is_bash:
                cases += [("kerno convert --ipx ", files, {"notes.md"}), ("kerno faces > no", {"notes.md"}, set()),
                          ("kerno cut x > log --al", {"--align"}, {"notes.md"}),
                          ("kerno-is-not-here cut --face D", set(), {"DejaVu Sans"})]
            else:
                cases += [("kerno cut --face 'DejaVu Sans' --style B", styles, {"Book Condensed"}),
                          ("kerno cut --face \"DejaVu Se", {"DejaVu Serif"}, {"DejaVu Sans"}),
                          ("kerno cut --face DejaVu\\ Sans\\ M", {"DejaVu Sans Mono"}, {"DejaVu Sans"}),
                          ("kerno cut x -o \"a sign.d", {"a sign.dxf"}, set()),
                          ("kerno cut --face='DejaVu Sans' x --style B", styles, set()),
                          ("kerno convert --ipx ", {"old sign.ipx"}, set()),
                          ("kerno cut --align=ri", {"--align=right"}, set())]
            for line, wanted, unwanted in cases:
                with self.subTest(f"{offers.__name__} {line}"):
                    offered = offers(line)
                    self.assertLessEqual(wanted, offered)
                    self.assertFalse(unwanted & offered)
            start = time.monotonic()
            offers("kerno cut --face D")
            self.assertLess(time.monotonic() - start, 5)  # of a build with checks, on a machine at work

    def test_lines_typed_into_bash_and_zsh_are_completed(self):
        japanese = "kerno cut --face IPAゴシック "
        for shell in (self.bash, self.zsh):
            is_zsh = shell == self.zsh
            cases = [  # what is typed, what it becomes
                ("kerno conv", "kerno convert "),
                ("kerno cut --al", "kerno cut --align=" if is_zsh else "kerno cut --align "),  # a blank takes "=" away
                ("kerno cut --align ri", "kerno cut --align right "),
                ("kerno cut --face Loh", "kerno cut --face Lohit\\ Devanagari "),
                ("kerno cut --face lohit\\ d", "kerno cut --face Lohit\\ Devanagari "),
                ("kerno cut --face \"Lohit D", "kerno cut --face \"Lohit Devanagari\" "),
                ("kerno cut --face 'Lohit", "kerno cut --face 'Lohit Devanagari' "),
                ("kerno cut --face=Lohit", "kerno cut --face=Lohit\\ Devanagari "),
                ("kerno cut --face IPAゴ", japanese),
                ("kerno cut --face 'IPA ", "kerno cut --face 'IPA P"),
                ("kerno cut --face Lohit\\ Devanagari --style R", "kerno cut --face Lohit\\ Devanagari --style Regular "),
                ("kerno cut \"--face=DejaVu Sans\" x --style \"Bold O", "kerno cut \"--face=DejaVu Sans\" x --style \"Bold Oblique\" "),
                ("kerno cut --face 'DejaVu Sans Mono' --style Bold\\ ", "kerno cut --face 'DejaVu Sans Mono' --style Bold\\ Oblique "),
                ("kerno cut x -o sign.d", "kerno cut x -o sign.dxf "),
                ("kerno cut x -o \"a sign.d", "kerno cut x -o \"a sign.dxf\" "),
                ("kerno convert --ipx o", None),
                ("kerno page o", "kerno page outputs/"),
                ("kerno page ~/sig", "kerno page ~/signs/" if is_zsh else f"kerno page {self.folder}/signs/"),
                ("kerno settings get Dec S", "kerno settings get Dec SvgOut::Precision "),
                ("kerno settings get Dec SvgOut::P", "kerno settings get Dec SvgOut::Precision "),
                ("kerno cut --align=ri", "kerno cut --align=right "),
                (f"kerno cut --font-file {VARIABLE} --variation w", f"kerno cut --font-file {VARIABLE} --variation wght="),
                ("kerno cut --face 'DejaVu Sans' --features=case,lo", "kerno cut --face 'DejaVu Sans' --features=case,locl"),
                ("kerno cut --language zh-Hant", "kerno cut --language zh-Hant "),
                ("kerno-elsewhere/kerno cut --face Q", "kerno-elsewhere/kerno cut --face QX"),
                ("kerno faces 2>not", "kerno faces 2>notes.md "),
                ("kerno cut --face IPAGo", "kerno cut --face IPAGothic "),
                ("kerno cut --face \"$(touch ran)", None),
                ("kerno cut --face '$(touch ran)' --style B", None)]
            terminal = shell()
            for typed, wanted in cases:
                line, _ = terminal.complete(typed, 1)
                if wanted:
                    with self.subTest(f"{shell.__name__} {typed}"):
                        self.assertEqual(wanted.rstrip(), line.rstrip())
            self.assertFalse((self.work / "ran").exists())

    def test_zsh_lists_options_and_names(self):
        terminal = self.zsh()
        for name in manual_pages_test.commands():
            _, shown = terminal.complete(f"kerno {name} --", 2)
            for option, _ in options_of(name):
                if option.startswith("--") and name not in ("page", "upload", "help", "settings"):
                    self.assertRegex(shown, rf"(?m)(^|\s){re.escape(option)}(\s|$)", name)
        for typed, wanted in (
                ("kerno ", manual_pages_test.commands()), ("kerno cut --face ", ["DejaVu Sans Mono", "IPAゴシック"]),
                ("kerno cut --face 'DejaVu Sans' --style ", ["Bold", "Bold Oblique", "Book"]),
                ("kerno cut --anchor ", ["top-left", "middle-centre"]), ("kerno cut --stroke-font row", ROMAN),
                ("kerno cut x -o sign", [f"sign.{ending}" for ending in FORMATS]),
                ("kerno settings ", ["unset"]), ("kerno convert --ipx ", ["old sign.ipx"])):
            with self.subTest(typed):
                _, shown = terminal.complete(typed, 2)
                for name in wanted:
                    self.assertIn(name, shown.replace("\\", ""))


if __name__ == "__main__":
    KERNO, SCRIPTS = os.path.abspath(sys.argv.pop(1)), pathlib.Path(sys.argv.pop(1)).resolve()
    manual_pages_test.KERNO = KERNO
    programs.unittest.main()
