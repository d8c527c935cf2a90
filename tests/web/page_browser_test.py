#!/usr/bin/env python3
"""Opens pages of outputs in a real browser and uses them.

usage: page_browser_test.py WRITE_PAGE

WRITE_PAGE BASE TEXT FACE HEIGHT writes the page of the outputs that begin with BASE.
"""
import functools
import html
import http.server
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import threading
import unittest
import urllib.parse

WRITE_PAGE = ""
ATTACK = '</script><img src=x onerror="window.attacked=1"><script>window.attacked=2</script>\' & <b>'
SVG = '<svg xmlns="http://www.w3.org/2000/svg" width="200" height="100"><path d="M10 90 L60 10"/></svg>'
KINDS = ("svg", "bmp", "dxf", "emf", "ipx", "ipl", "rtf")
# A page around the page under test, which uses it and tells in its title what came of it.
FRAME = """<script>onload = async () => {
  const page = frames[0], d = page.document, all = (s) => [...d.querySelectorAll(s)];
  const pictures = async () => (await Promise.all([...d.images].map((i) => i.decode().catch(() => 0))),
      [...d.images].map((i) => [i.currentSrc.split('.').pop(), i.naturalWidth]));
  const shown = () => [['.slides > li', (s) => s.checkVisibility()],
                       ['.dots button', (b) => b.getAttribute('aria-current') === 'true']].map(
      ([what, is]) => all(what).flatMap((one, i) => is(one) ? [i + 1] : []));
  const press = (key) => d.activeElement.dispatchEvent(new page.KeyboardEvent('keydown', {key, bubbles: true}));
  const click = (what) => { all(what)[0].focus(); all(what)[0].click(); };
  const swipe = (way) => [['touchstart', 0], ['touchend', way]].forEach(([kind, clientX]) => {
    const touch = new page.Touch({identifier: 1, target: all('.slides')[0], clientX, clientY: 0});
    touch.target.dispatchEvent(new page.TouchEvent(kind, {changedTouches: [touch], bubbles: true,
                                                          touches: kind === 'touchend' ? [] : [touch]}));
  });
  await pictures();
  document.title = JSON.stringify(await (%s));
};</script><iframe width=800 height=800 src="%s"></iframe>"""


class PageTest(unittest.TestCase):
    def make(self, base, text, face="DejaVu Sans", svg=SVG, kinds=KINDS):
        """The page of a run in a folder of its own."""
        folder = tempfile.TemporaryDirectory(prefix="kerno-page-")
        self.addCleanup(folder.cleanup)
        bitmap = subprocess.run(["convert", "-size", "60x30", "xc:blue", "BMP3:-"], check=True,
                                stdout=subprocess.PIPE).stdout
        content = {"svg": svg.encode(), "bmp": bitmap}
        for kind in kinds:
            pathlib.Path(folder.name, f"{base}.{kind}").write_bytes(content.get(kind, b"x" * 1500))
        start = os.path.join(folder.name, base)
        subprocess.run([WRITE_PAGE, start, text, face, "100"], check=True)
        return pathlib.Path(start + ".html")

    def ask(self, page, question, where="file://", script=True):
        """What the page answers to a question in JavaScript, and nothing in the console."""
        sandbox = "" if script else " sandbox='allow-same-origin'"
        frame = page.parent / "frame.html"
        frame.write_text(FRAME % (question, urllib.parse.quote(page.name) + '"' + sandbox + ' title="'))
        where += urllib.parse.quote(str(frame)) if where == "file://" else frame.name
        with tempfile.TemporaryDirectory(prefix="kerno-browser-", ignore_cleanup_errors=True) as profile:
            done = subprocess.run(
                ["chromium", "--headless=new", "--no-sandbox", "--disable-gpu", "--no-first-run",
                 "--disable-background-networking", "--disable-dev-shm-usage", "--no-proxy-server",
                 "--allow-file-access-from-files", "--enable-logging=stderr", "--touch-events=enabled",
                 "--virtual-time-budget=5000", f"--user-data-dir={profile}", "--dump-dom", where],
                stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        if script:
            self.assertNotIn("CONSOLE", done.stderr)
        return json.loads(html.unescape(re.search("<title>(.*?)</title>", done.stdout, re.S)[1]))

    def test_slider_turns_by_keys_clicks_and_touch(self):
        steps = [("press('ArrowRight')", 2), ("press('ArrowRight')", 1), ("press('ArrowLeft')", 2),
                 ("click('.next')", 1), ("click('.previous')", 2), ("press('Home')", 1), ("press('End')", 2),
                 ("click('.dots button')", 1), ("swipe(-150)", 2), ("swipe(150)", 1), ("swipe(10)", 1)]
        answers = self.ask(self.make("a_100_b", "text"), "[" + ",".join(
            f"({step}, shown())" for step, _ in steps) + ", all('[role=status]')[0].textContent]")
        self.assertEqual(answers.pop(), "Picture 1 of 2: a_100_b.svg")
        for (step, expected), answer in zip(steps, answers, strict=True):
            self.assertEqual(answer, [[expected]] * 2, step)

    def test_texts_that_attack_are_shown_and_the_page_is_valid(self):
        name = "a';\"<img src=x onerror=alert(1)>&amp;#?%41 \\"
        for base, text, face in [(name, ATTACK, ATTACK), ("永遠", "う\r\nう\x01", "IPAMincho"),
                                 ("javascript:alert(1)", '"><!--', "--> ]]> \u202e {{x}} ${y}")]:
            page = self.make(base, text, face)
            told = self.ask(page, "[await pictures(), all('h1')[0].textContent, page.attacked ?? 0,"
                                  " d.scripts.length, all('[onerror], b').length,"
                                  " all('tbody a').map((a) => a.textContent), all('tbody a').map((a) =>"
                                  "    a.protocol + decodeURIComponent(a.pathname).split('/').pop()),"
                                  " all('.source')[0].textContent, d.title]")
            shown = text.replace("\r", "").replace("\x01", "\ufffd")
            names = [f"{base}.{kind}" for kind in KINDS]
            self.assertEqual(told[:7], [[["svg", 200], ["bmp", 60]], shown, 0, 1, 0, names,
                                        ["file:" + name for name in names]])
            self.assertIn(face, told[7])
            self.assertTrue(told[8].startswith(shown.replace("\n", " ")[:75]))
            checked = subprocess.run(["tidy", "-q", "-e", "-utf8", page], stdout=subprocess.PIPE,
                                     stderr=subprocess.STDOUT, text=True)
            self.assertEqual((checked.returncode, checked.stdout), (0, ""))

    def test_nothing_is_asked_for_outside_the_folder(self):
        page = self.make("a b", ATTACK)
        handler = functools.partial(http.server.SimpleHTTPRequestHandler, directory=page.parent)
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        start = f"http://127.0.0.1:{server.server_port}/"
        asked = self.ask(page, "page.performance.getEntriesByType('resource').map((e) => e.name)", start)
        self.assertEqual(set(asked) - {"data:,"}, {start + f"a%20b.{kind}" for kind in ("svg", "bmp")})

    def test_pictures_that_are_missing_and_no_script(self):
        for more, pictures in [({"svg": "<svg"}, [["bmp", 60], ["bmp", 60]]),
                               ({"kinds": KINDS[1:]}, [["bmp", 60]]), ({"kinds": KINDS[2:]}, [])]:
            told = self.ask(self.make("a", "text", **more), "[await pictures(), shown()[0]]")
            self.assertEqual(told, [pictures, [1] if pictures else []])
        told = self.ask(self.make("a", "text"), "[shown()[0], all('.turn')[0].checkVisibility()]",
                        script=False)
        self.assertEqual(told, [[1, 2], False])


if __name__ == "__main__":
    WRITE_PAGE = sys.argv.pop(1)
    unittest.main()
