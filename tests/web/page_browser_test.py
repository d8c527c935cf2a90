#!/usr/bin/env python3
"""Opens pages of outputs in a real browser and uses them.

usage: page_browser_test.py WRITE_PAGE

WRITE_PAGE BASE TEXT FACE HEIGHT writes the page of the outputs that begin with BASE.
"""
import base64
import fcntl
import functools
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
# In the page: the numbers of the pictures that can be seen and of the dots that are marked.
SHOWN = """[['.slides > li', (s) => s.checkVisibility()],
            ['.dots button', (d) => d.getAttribute('aria-current') === 'true']].map(([all, is]) =>
    [...document.querySelectorAll(all)].flatMap((one, i) => is(one) ? [i + 1] : []))"""
# Which pictures the page shows, and how wide they are of themselves, once they are loaded.
PICTURES = """Promise.all([...document.images].map((i) => i.decode().catch(() => 0))).then(() =>
    [...document.images].map((i) => [i.currentSrc.split('.').pop(), i.naturalWidth]))"""


class Browser:
    """One page of headless Chromium, driven over its pipe."""

    def __init__(self):
        self.folder = tempfile.TemporaryDirectory(prefix="kerno-browser-", ignore_cleanup_errors=True)
        theirs, self.to = os.pipe()
        ours, back = os.pipe()
        self.answers = os.fdopen(ours, "rb")

        def give_ends():  # as 3 and 4, where Chromium expects them
            high = [fcntl.fcntl(end, fcntl.F_DUPFD, 10) for end in (theirs, back)]
            for end, number in zip(high, (3, 4)):
                os.dup2(end, number)

        self.process = subprocess.Popen(
            ["chromium", "--headless=new", "--remote-debugging-pipe", "--no-sandbox", "--disable-gpu",
             "--no-first-run", "--disable-background-networking", "--disable-dev-shm-usage",
             "--no-proxy-server", f"--user-data-dir={self.folder.name}"],
            close_fds=False, preexec_fn=give_ends, stderr=subprocess.DEVNULL)
        os.close(theirs)
        os.close(back)
        self.session, self.number, self.events = None, 0, []
        target = self.send("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.send("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        for domain in ("Page", "Log", "Network", "Runtime"):
            self.send(domain + ".enable")

    def message(self):
        text = bytearray()
        while (byte := self.answers.read(1)) != b"\0":
            if not byte:
                raise EOFError("Chromium ended")
            text += byte
        return json.loads(text)

    def send(self, method, **params):
        self.number += 1
        wanted = {"id": self.number, "method": method, "params": params}
        os.write(self.to, json.dumps(wanted | ({"sessionId": self.session} if self.session else {})
                                     ).encode() + b"\0")
        while (answer := self.message()).get("id") != self.number:
            self.events.append(answer)
        if "error" in answer:
            raise RuntimeError(answer["error"])
        return answer["result"]

    def told(self, *methods):
        return [event["params"] for event in self.events if event["method"] in methods]

    def run(self, expression):
        done = self.send("Runtime.evaluate", expression=expression, returnByValue=True, awaitPromise=True)
        if "exceptionDetails" in done:
            raise RuntimeError(done["exceptionDetails"])
        return done["result"].get("value")

    def open(self, url):
        self.events.clear()
        self.send("Page.navigate", url=url)
        while not self.told("Page.loadEventFired"):
            self.events.append(self.message())
        return self.run(PICTURES)

    def press(self, key):
        for kind in ("rawKeyDown", "keyUp"):
            self.send("Input.dispatchKeyEvent", type=kind, key=key)

    def swipe(self, distance):
        x, y = self.run("(b => [b.x + b.width / 2, b.y + b.height / 2])("
                        "document.querySelector('.slides').getBoundingClientRect())")
        for kind, at in (("touchStart", [x]), ("touchMove", [x + distance]), ("touchEnd", [])):
            self.send("Input.dispatchTouchEvent", type=kind, touchPoints=[{"x": x, "y": y} for x in at])

    def close(self):
        self.process.kill()
        self.process.wait()
        self.answers.close()
        os.close(self.to)
        self.folder.cleanup()


class PageTest(unittest.TestCase):
    def setUp(self):
        self.browser = Browser()
        self.addCleanup(self.browser.close)

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

    def open(self, *run, **more):
        page = self.make(*run, **more)
        return page, self.browser.open("file://" + urllib.parse.quote(str(page)))

    def assert_quiet(self):
        self.assertEqual(self.browser.told("Log.entryAdded", "Runtime.exceptionThrown",
                                           "Runtime.consoleAPICalled"), [])

    def test_slider_turns_by_keys_clicks_and_touch(self):
        _, pictures = self.open("a_100_b", "text")
        self.assertEqual(pictures, [["svg", 200], ["bmp", 60]])

        def click(selector):
            self.browser.run(f"(b => {{ b.focus(); b.click(); }})(document.querySelector('{selector}'))")

        steps = [(self.browser.press, "ArrowRight", 2), (self.browser.press, "ArrowRight", 1),
                 (self.browser.press, "ArrowLeft", 2), (click, ".next", 1), (click, ".previous", 2),
                 (self.browser.press, "Home", 1), (self.browser.press, "End", 2),
                 (click, ".dots button:nth-child(1)", 1), (click, ".dots button:nth-child(2)", 2),
                 (self.browser.swipe, 150, 1), (self.browser.swipe, -150, 2), (self.browser.swipe, -10, 2)]
        for act, what, expected in steps:
            act(what)
            self.assertEqual(self.browser.run(SHOWN), [[expected]] * 2, what)
        self.assertEqual(self.browser.run("document.querySelector('[role=status]').textContent"),
                         "Picture 2 of 2: a_100_b.bmp")
        self.assert_quiet()

    def test_texts_that_attack_are_shown_and_the_page_is_valid(self):
        name = "a';\"<img src=x onerror=alert(1)>&amp;#?%41 \\"
        for base, text, face in [(name, ATTACK, ATTACK), ("永遠", "う\r\nう\x01", "IPAMincho"),
                                 ("ends", '"><!--', "--> ]]> \u202e {{x}} ${y}")]:
            page, pictures = self.open(base, text, face)
            self.assertEqual(pictures, [["svg", 200], ["bmp", 60]], base)
            shown = text.replace("\r", "").replace("\x01", "\ufffd")
            self.assertEqual(self.browser.run(
                "[document.querySelector('h1').textContent,"
                " window.attacked ?? 0, document.scripts.length, document.images.length,"
                " document.querySelectorAll('[onerror], b').length]"), [shown, 0, 1, 2, 0])
            self.assertIn(face, self.browser.run("document.querySelector('.source').textContent"))
            self.assertTrue(self.browser.run("document.title").startswith(shown.replace("\n", " ")[:75]))
            self.assertEqual(self.browser.run(
                "[...document.querySelectorAll('tbody a')].map((a) => a.textContent)"),
                [f"{base}.{kind}" for kind in KINDS])
            self.assert_quiet()
            checked = subprocess.run(["tidy", "-q", "-e", "-utf8", page], stdout=subprocess.PIPE,
                                     stderr=subprocess.STDOUT, text=True)
            self.assertEqual((checked.returncode, checked.stdout), (0, ""))

    def test_nothing_is_asked_for_outside_the_folder(self):
        page = self.make("a b", ATTACK)
        moved = page.parent.rename(str(page.parent) + "-moved")
        self.addCleanup(lambda: moved.rename(page.parent))
        handler = functools.partial(http.server.SimpleHTTPRequestHandler, directory=moved)
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        for start in (f"http://127.0.0.1:{server.server_port}/", f"file://{moved}/"):
            self.browser.open(start + "a%20b.html")
            self.browser.press("ArrowRight")
            asked = {sent["request"]["url"] for sent in self.browser.told("Network.requestWillBeSent")}
            self.assertEqual(asked - {"data:,"}, {start + f"a%20b.{kind}" for kind in ("html", "svg", "bmp")})
            self.assert_quiet()
        links = self.browser.run("[...document.querySelectorAll('a')].map((a) => a.getAttribute('href'))")
        for link, kind in zip(links, KINDS, strict=True):
            self.assertEqual((moved / urllib.parse.unquote(link)).resolve(), moved / f"a b.{kind}")

    def test_pictures_that_are_missing_and_no_script(self):
        for more, pictures in [({"svg": "<svg"}, [["bmp", 60], ["bmp", 60]]),
                               ({"kinds": KINDS[1:]}, [["bmp", 60]]), ({"kinds": KINDS[2:]}, [])]:
            self.open("a", "text", **more)
            self.assertEqual(self.browser.run(PICTURES), pictures)
            self.assertEqual(self.browser.run(SHOWN)[0], [1] if pictures else [])
        self.assertIsNone(self.browser.run("document.getElementById('pictures')"))
        self.browser.send("Emulation.setScriptExecutionDisabled", value=True)
        self.open("a", "text")
        self.assertEqual(self.browser.run(SHOWN)[0], [1, 2])
        self.assertFalse(self.browser.run("document.querySelector('.turn').checkVisibility()"))

    def test_readers_are_told_what_there_is(self):
        self.open("a", "うたう", "IPAMincho")
        nodes = self.browser.send("Accessibility.getFullAXTree")["nodes"]
        told = {(n["role"]["value"], n.get("name", {}).get("value", ""))
                for n in nodes if not n.get("ignored")}
        self.assertLessEqual(
            {("heading", "うたう"), ("region", "Pictures"), ("table", "Files"),
             ("image", "うたう (SVG drawing)"), ("button", "Previous picture"), ("button", "Next picture"),
             ("button", "Picture 2"), ("columnheader", "Kind"), ("rowheader", "a.dxf"), ("link", "a.dxf")},
            told)
        self.assertFalse({("button", ""), ("image", "")} & told)

    def test_it_fits_narrow_and_wide_windows_and_one_printed_page(self):
        for base, text, face in [("n" * 200, "M" * 5000, "F" * 300), ("attack", ATTACK, "DejaVu Sans")]:
            self.open(base, text, face)
            backs = set()
            for width, scheme in ((320, "light"), (1280, "dark")):
                self.browser.send("Emulation.setDeviceMetricsOverride", width=width, height=900,
                                  deviceScaleFactor=1, mobile=False)
                self.browser.send("Emulation.setEmulatedMedia",
                                  features=[{"name": "prefers-color-scheme", "value": scheme}])
                self.assertLessEqual(self.browser.run("document.scrollingElement.scrollWidth"), width)
                backs.add(self.browser.run("getComputedStyle(document.body).backgroundColor"))
            self.assertEqual(len(backs), 2)
            pdf = base64.b64decode(self.browser.send("Page.printToPDF", printBackground=True)["data"])
            self.assertEqual(len(re.findall(rb"/Type\s*/Page\b", pdf)), 1, base)


if __name__ == "__main__":
    WRITE_PAGE = sys.argv.pop(1)
    unittest.main()
