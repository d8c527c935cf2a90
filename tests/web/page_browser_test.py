#!/usr/bin/env python3
"""Opens pages of outputs in a real browser and uses them.

usage: page_browser_test.py WRITE_PAGE [--screenshots FOLDER]

WRITE_PAGE BASE TEXT FACE HEIGHT writes the page of the outputs that begin with BASE.
"""
import argparse
import base64
import functools
import hashlib
import http.server
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import threading
import unittest
import urllib.error
import urllib.parse
import urllib.request

WRITE_PAGE = None
SCREENSHOTS = None
ATTACK = '</script><img src=x onerror="window.attacked=1"><script>window.attacked=2</script>\' & <b>'
SVG = ('<svg xmlns="http://www.w3.org/2000/svg" width="200" height="100" viewBox="0 0 200 100">'
       '<path d="M10 90 L60 10 L110 90 Z M130 20 H190 V80 H130 Z" fill="none" stroke="#c00"'
       ' stroke-width="3"/></svg>')
ELEMENT = "element-6066-11e4-a52e-4f735466cecf"
DIRECT = urllib.request.build_opener(urllib.request.ProxyHandler({}))


def bitmap():
    """A BMP of 60 by 30 pixels with a blue frame."""
    return subprocess.run(["convert", "-size", "58x28", "xc:white", "-bordercolor", "#0040c0",
                           "-border", "1", "BMP3:-"], check=True, stdout=subprocess.PIPE).stdout


class Browser:
    """A session of headless Chromium, driven over WebDriver."""

    def __init__(self, script=True, width=1000, height=900):
        self.folder = tempfile.mkdtemp(prefix="kerno-browser-")
        self.driver = subprocess.Popen(
            ["chromedriver", "--port=0", "--log-level=SEVERE"], stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL, text=True)
        port = None
        for line in self.driver.stdout:
            port = re.search(r"started successfully on port (\d+)", line)
            if port:
                break
        self.root = f"http://127.0.0.1:{port.group(1)}/session"
        options = {
            "args": ["--headless=new", "--no-sandbox", "--disable-gpu", "--no-first-run",
                     "--disable-background-networking", "--disable-dev-shm-usage",
                     "--no-proxy-server", "--hide-scrollbars", f"--window-size={width},{height}",
                     f"--user-data-dir={self.folder}"],
            "perfLoggingPrefs": {"enableNetwork": True},
        }
        if not script:
            options["prefs"] = {"profile.managed_default_content_settings.javascript": 2}
        capabilities = {"browserName": "chrome", "goog:chromeOptions": options,
                        "goog:loggingPrefs": {"browser": "ALL", "performance": "ALL"}}
        self.session = ""
        try:
            made = self.call("POST", "", {"capabilities": {"alwaysMatch": capabilities}})
        except Exception:
            self.close()
            raise
        self.session = "/" + made["sessionId"]

    def call(self, method, path, data=None):
        body = None if data is None else json.dumps(data).encode()
        request = urllib.request.Request(self.root + self.session + path, body, method=method,
                                         headers={"Content-Type": "application/json"})
        try:
            with DIRECT.open(request, timeout=60) as answer:
                return json.load(answer)["value"]
        except urllib.error.HTTPError as error:
            raise RuntimeError(json.load(error)["value"]["message"]) from None

    def close(self):
        try:
            if self.session:
                self.call("DELETE", "")
        finally:
            self.driver.terminate()
            self.driver.wait()
            self.driver.stdout.close()
            shutil.rmtree(self.folder, ignore_errors=True)

    def open(self, url):
        self.log("performance")
        self.call("POST", "/url", {"url": url})

    def run(self, script, *arguments):
        return self.call("POST", "/execute/sync", {"script": script, "args": list(arguments)})

    def devtools(self, command, **params):
        return self.call("POST", "/goog/cdp/execute", {"cmd": command, "params": params})

    def log(self, kind):
        return self.call("POST", "/se/log", {"type": kind})

    def requests(self):
        """The addresses asked for since the page was opened."""
        messages = (json.loads(entry["message"])["message"] for entry in self.log("performance"))
        return [m["params"]["request"]["url"] for m in messages
                if m["method"] == "Network.requestWillBeSent"]

    def press(self, key):
        self.call("POST", "/actions", {"actions": [{"type": "key", "id": "keys", "actions": [
            {"type": "keyDown", "value": key}, {"type": "keyUp", "value": key}]}]})

    def click(self, selector):
        found = self.call("POST", "/element", {"using": "css selector", "value": selector})
        self.call("POST", f"/element/{found[ELEMENT]}/click", {})

    def swipe(self, selector, distance):
        box = self.run("const b = document.querySelector(arguments[0]).getBoundingClientRect();"
                       "return [b.x + b.width / 2, b.y + b.height / 2]", selector)
        x, y = map(int, box)
        move = {"type": "pointerMove", "duration": 50, "x": x + distance, "y": y}
        self.call("POST", "/actions", {"actions": [
            {"type": "pointer", "id": "finger", "parameters": {"pointerType": "touch"},
             "actions": [{"type": "pointerMove", "x": x, "y": y},
                         {"type": "pointerDown", "button": 0}, move,
                         {"type": "pointerUp", "button": 0}]}]})

    def set_view(self, width, height, scheme):
        self.devtools("Emulation.setDeviceMetricsOverride", width=width, height=height,
                      deviceScaleFactor=1, mobile=False)
        self.devtools("Emulation.setEmulatedMedia",
                      features=[{"name": "prefers-color-scheme", "value": scheme}])


KEY_HOME, KEY_END, KEY_LEFT, KEY_RIGHT, KEY_TAB = "\ue011", "\ue010", "\ue012", "\ue014", "\ue004"


class Folder(tempfile.TemporaryDirectory):
    """A folder with the outputs of a run, and its page."""

    def __init__(self, base, text, face="DejaVu Sans", height="100", svg=SVG,
                 kinds=("dxf", "emf", "ipx", "ipl", "rtf", "bmp")):
        super().__init__(prefix="kerno-page-")
        self.base = base
        files = {kind: b"x" * 1500 for kind in kinds}
        if "bmp" in files:
            files["bmp"] = bitmap()
        if svg is not None:
            files["svg"] = svg.encode()
        for kind, content in files.items():
            with open(os.path.join(self.name, f"{base}.{kind}"), "wb") as out:
                out.write(content)
        subprocess.run([WRITE_PAGE, os.path.join(self.name, base), text, face, height], check=True)

    @property
    def page(self):
        return os.path.join(self.name, self.base + ".html")

    @property
    def url(self):
        return "file://" + urllib.parse.quote(self.page)

    def html(self):
        with open(self.page, encoding="utf-8", newline="") as page:
            return page.read()


class PageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.browser = Browser()

    @classmethod
    def tearDownClass(cls):
        cls.browser.close()

    def open(self, *run, **more):
        """The folder of a run whose page the browser shows."""
        folder = Folder(*run, **more)
        self.addCleanup(folder.cleanup)
        self.browser.open(folder.url)
        return folder

    def assert_quiet(self, browser=None):
        self.assertEqual((browser or self.browser).log("browser"), [])

    def shown(self, browser=None):
        """The numbers of the pictures that can be seen."""
        return (browser or self.browser).run(
            "return [...document.querySelectorAll('.slides > li')].flatMap("
            "(s, i) => s.checkVisibility() ? [i + 1] : [])")

    def dot(self):
        return self.browser.run(
            "return [...document.querySelectorAll('.dots button')].flatMap("
            "(d, i) => d.getAttribute('aria-current') === 'true' ? [i + 1] : [])")

    def wait_for_pictures(self, browser=None):
        return (browser or self.browser).call("POST", "/execute/async", {"script": """
            const done = arguments[0], images = [...document.images];
            Promise.all(images.map((i) => i.decode().catch(() => 0))).then(
                () => done(images.map((i) => [i.currentSrc.split('.').pop(), i.naturalWidth])))""",
            "args": []})

    def test_slider_turns_by_keys_clicks_and_touch(self):
        self.open("a_100_b", "text")
        self.assertEqual(self.shown(), [1])
        self.assertEqual(self.wait_for_pictures(), [["svg", 200], ["bmp", 60]])
        steps = [
            ("right", lambda: self.browser.press(KEY_RIGHT), 2),
            ("right, round the end", lambda: self.browser.press(KEY_RIGHT), 1),
            ("left, round the start", lambda: self.browser.press(KEY_LEFT), 2),
            ("next", lambda: self.browser.click(".next"), 1),
            ("previous", lambda: self.browser.click(".previous"), 2),
            ("home, the focus on a button", lambda: self.browser.press(KEY_HOME), 1),
            ("end", lambda: self.browser.press(KEY_END), 2),
            ("first dot", lambda: self.browser.click(".dots button:nth-child(1)"), 1),
            ("second dot", lambda: self.browser.click(".dots button:nth-child(2)"), 2),
            ("swipe to the right", lambda: self.browser.swipe(".slides", 150), 1),
            ("swipe to the left", lambda: self.browser.swipe(".slides", -150), 2),
            ("a short touch", lambda: self.browser.swipe(".slides", -10), 2),
        ]
        for name, act, expected in steps:
            with self.subTest(name):
                act()
                self.assertEqual(self.shown(), [expected])
                self.assertEqual(self.dot(), [expected])
        state = self.browser.run("return document.querySelector('[role=status]').textContent")
        self.assertEqual(state, "Picture 2 of 2: a_100_b.bmp")
        self.assert_quiet()

    def test_texts_that_attack_are_shown(self):
        name = "a';\"<img src=x onerror=alert(1)>&amp;#?%41 \\"
        cases = [("plain", ATTACK, ATTACK), (name, ATTACK, ATTACK), ("永遠", ATTACK, ATTACK),
                 ("ends", '"><!--', "--> ]]> \u202e {{x}} ${y}")]
        for base, text, face in cases:
            with self.subTest(base):
                self.open(base, text, face)
                self.assertEqual(self.browser.run("return document.querySelector('h1').textContent"), text)
                self.assertIn(face, self.browser.run(
                    "return document.querySelector('.source').textContent"))
                self.assertTrue(self.browser.run("return document.title").startswith(text[:75]))
                self.assertEqual(self.browser.run(
                    "return [window.attacked ?? 0, document.scripts.length, document.images.length,"
                    " document.querySelectorAll('[onerror], b').length]"), [0, 1, 2, 0])
                self.assertEqual([w for _, w in self.wait_for_pictures()], [200, 60])
                rows = self.browser.run(
                    "return [...document.querySelectorAll('tbody a')].map((a) => a.textContent)")
                self.assertEqual(rows, [f"{base}.{kind}" for kind in
                                        ("svg", "bmp", "dxf", "emf", "ipx", "ipl", "rtf")])
                self.assert_quiet()

    def test_nothing_is_asked_for_outside_the_folder(self):
        folder = self.open("a b", ATTACK)
        asked = []

        class Handler(http.server.SimpleHTTPRequestHandler):
            def do_GET(self):
                asked.append(self.path)
                super().do_GET()

            def log_message(self, *_):
                pass

        os.makedirs(os.path.join(folder.name, "moved"))
        for file in os.listdir(folder.name):
            if file != "moved":
                shutil.copy(os.path.join(folder.name, file), os.path.join(folder.name, "moved"))
        server = http.server.ThreadingHTTPServer(
            ("127.0.0.1", 0), functools.partial(Handler, directory=folder.name))
        thread = threading.Thread(target=server.serve_forever)
        thread.start()
        self.addCleanup(lambda: (server.shutdown(), thread.join(), server.server_close()))
        root = f"http://127.0.0.1:{server.server_address[1]}/moved/"
        for start in (root, folder.url.rsplit("/", 1)[0] + "/"):
            self.browser.open(start + "a%20b.html")
            self.wait_for_pictures()
            self.browser.press(KEY_RIGHT)
            requests = self.browser.requests()
            self.assertEqual(sorted(u.removeprefix(start) for u in requests if u != "data:,"),
                             ["a%20b.bmp", "a%20b.html", "a%20b.svg"])
            self.assert_quiet()
        self.assertEqual({p.rsplit("/", 1)[0] for p in asked}, {"/moved"}, asked)
        links = self.browser.run(
            "return [...document.querySelectorAll('a')].map((a) => a.getAttribute('href'))")
        self.assertEqual(len(links), 7)
        for link in links:
            with DIRECT.open(urllib.parse.urljoin(root, link)) as answer:
                self.assertEqual(answer.status, 200)

    def test_without_script_the_pictures_are_a_list(self):
        folder = self.open("a", "text")
        browser = Browser(script=False)
        self.addCleanup(browser.close)
        browser.open(folder.url)
        self.assertEqual(self.shown(browser), [1, 2])
        self.assertFalse(browser.run("return document.querySelector('.turn').checkVisibility()"))
        tops = browser.run("return [...document.images].map((i) => i.getBoundingClientRect().top)")
        self.assertLess(tops[0], tops[1])

    def test_the_bitmap_stands_in_for_a_drawing_that_does_not_load(self):
        cases = [("broken", "<svg", [["bmp", 60], ["bmp", 60]], [1]),
                 ("missing", None, [["bmp", 60]], [1])]
        for name, svg, pictures, shown in cases:
            with self.subTest(name):
                self.open("a", "text", svg=svg)
                self.browser.run("return 0")
                self.wait_for_pictures()
                self.assertEqual(self.wait_for_pictures(), pictures)
                self.assertEqual(self.shown(), shown)
        self.open("a", "text", kinds=("dxf",), svg=None)
        self.assertEqual(self.browser.run("return document.getElementById('pictures')"), None)
        self.assert_quiet()

    def test_readers_are_told_what_there_is(self):
        self.open("a", "うたう", "IPAMincho")
        nodes = self.browser.devtools("Accessibility.getFullAXTree")["nodes"]
        told = [(n["role"]["value"], n.get("name", {}).get("value", ""))
                for n in nodes if not n.get("ignored")]
        for expected in [("heading", "うたう"), ("region", "Pictures"), ("table", "Files"),
                         ("image", "うたう (SVG drawing)"), ("button", "Previous picture"),
                         ("button", "Next picture"), ("button", "Picture 2"),
                         ("columnheader", "Kind"), ("rowheader", "a.dxf"), ("link", "a.dxf")]:
            self.assertIn(expected, told)
        self.assertNotIn(("button", ""), told)
        self.assertNotIn(("image", ""), told)

    def test_it_fits_narrow_and_wide_windows_and_one_printed_page(self):
        cases = [("short_100_text", "永遠 Kerno", "IPA Mincho"), ("n" * 200, "M" * 5000, "F" * 300),
                 ("attack", ATTACK, "DejaVu Sans")]
        for base, text, face in cases:
            self.open(base, text, face)
            self.wait_for_pictures()
            for width in (320, 1280):
                for scheme in ("light", "dark"):
                    self.browser.set_view(width, 900, scheme)
                    wide = self.browser.run("return document.scrollingElement.scrollWidth")
                    self.assertLessEqual(wide, width, base)
                    self.picture(f"{base[:10]}-{width}-{scheme}.png")
            backs = []
            for scheme in ("light", "dark"):
                self.browser.set_view(1280, 900, scheme)
                backs.append(self.browser.run("return getComputedStyle(document.body).backgroundColor"))
            self.assertNotEqual(*backs)
            self.browser.devtools("Emulation.clearDeviceMetricsOverride")
            self.browser.devtools("Emulation.setEmulatedMedia", features=[])
            pdf = base64.b64decode(self.browser.call("POST", "/print", {"background": True}))
            self.keep(f"{base[:10]}.pdf", pdf)
            self.assertEqual(len(re.findall(rb"/Type\s*/Page\b", pdf)), 1, base)

    def test_the_page_is_valid_and_allows_exactly_its_own_script(self):
        cases = [("a", "text", SVG), ("b", ATTACK, None), ("永'\"&<", "う\r\nう\0\x01".replace("\0", ""), SVG)]
        for base, text, svg in cases:
            folder = self.open(base, text, svg=svg)
            html = folder.html()
            for tag in ("style", "script"):
                content = re.search(f"<{tag}>(.*?)</{tag}>", html, re.S).group(1)
                digest = base64.b64encode(hashlib.sha256(content.encode()).digest()).decode()
                self.assertIn(f"{tag}-src 'sha256-{digest}'", html,
                              f"the hash of the {tag} is out of date: {digest}")
            checked = subprocess.run(["tidy", "-q", "-e", "-utf8", folder.page],
                                     stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
            self.assertEqual((checked.returncode, checked.stdout), (0, ""))

    def picture(self, name):
        if SCREENSHOTS:
            shot = self.browser.devtools("Page.captureScreenshot", captureBeyondViewport=True)
            self.keep(name, base64.b64decode(shot["data"]))

    def keep(self, name, content):
        if SCREENSHOTS:
            with open(os.path.join(SCREENSHOTS, name), "wb") as out:
                out.write(content)


def main():
    global WRITE_PAGE, SCREENSHOTS
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("write_page")
    parser.add_argument("--screenshots")
    options, rest = parser.parse_known_args()
    WRITE_PAGE = options.write_page
    SCREENSHOTS = options.screenshots
    if SCREENSHOTS:
        os.makedirs(SCREENSHOTS, exist_ok=True)
    unittest.main(argv=[sys.argv[0], *rest])


if __name__ == "__main__":
    main()
