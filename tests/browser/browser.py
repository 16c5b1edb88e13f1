# SPDX-License-Identifier: Apache-2.0
"""A real browser for tests of pages that the programs write.

Browser starts one headless Chromium with an empty profile, kept for many checks since a start takes
seconds. It records what goes wrong behind a page's back: errors on the console, and every request
that leaves the machine's own files. BrowserTest is the test case to derive from: it shares one
Browser among its tests and fails each test that such a thing happened in.

QV_SCREENSHOTS=DIR keeps a picture of every page that a test calls `picture` on.
"""
import json
import os
import pathlib
import shutil
import tempfile
import unittest

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.support.wait import WebDriverWait

DESKTOP = (1280, 900)
PHONE = (390, 844)
LOCAL_SCHEMES = ("file:", "data:", "blob:", "about:", "chrome:")
FLAGS = ("--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
         "--disable-background-networking", "--disable-component-update", "--disable-sync",
         "--disable-dev-shm-usage", "--no-proxy-server", "--force-color-profile=srgb")


class Browser:
    """One Chromium. `origins`: web addresses that pages may ask, for pages that are served."""

    def __init__(self, origins=()):
        self.origins = tuple(origins)
        self.profile = tempfile.mkdtemp(prefix="qvbrowser-")
        options = Options()
        options.binary_location = shutil.which("chromium") or "chromium"
        for flag in (*FLAGS, f"--user-data-dir={self.profile}"):
            options.add_argument(flag)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
        self.driver = webdriver.Chrome(
            service=Service(shutil.which("chromedriver") or "chromedriver"), options=options)
        self.driver.set_script_timeout(60)

    def close(self):
        self.driver.quit()
        shutil.rmtree(self.profile, ignore_errors=True)

    def open(self, page, size=DESKTOP, scheme="light"):
        """Loads `page` (a file or an address) on a screen of `size`, in a colour scheme."""
        self.show(size, scheme)
        address = str(page)
        self.driver.get(address if "://" in address else pathlib.Path(page).resolve().as_uri())

    def show(self, size=DESKTOP, scheme="light"):
        """Changes screen and colour scheme under the page that is open."""
        self.size = size
        self.set_screen(*size)
        self.command("Emulation.setEmulatedMedia", media="screen",
                     features=[{"name": "prefers-color-scheme", "value": scheme}])

    def set_screen(self, width, height):
        self.command("Emulation.setDeviceMetricsOverride", width=width, height=height,
                     deviceScaleFactor=1, mobile=width < 600)

    def command(self, name, **arguments):
        """A command of the DevTools protocol."""
        return self.driver.execute_cdp_cmd(name, arguments)

    def run(self, script, *arguments):
        """The value that a piece of JavaScript returns."""
        return self.driver.execute_script(script, *arguments)

    def find(self, selector):
        return self.driver.find_element(By.CSS_SELECTOR, selector)

    def find_all(self, selector):
        return self.driver.find_elements(By.CSS_SELECTOR, selector)

    def overflow(self):
        """Pixels by which the page is wider than the screen: above 0, it scrolls sideways."""
        # Not window.innerWidth: a phone zooms out until everything fits.
        return self.run("return document.scrollingElement.scrollWidth") - self.size[0]

    def widen_text(self):
        """Sets the text of all drawings as wide as the widest fonts that people read."""
        self.run("""
            for (const text of document.querySelectorAll('svg text')) {
              text.style.letterSpacing = '2px';
            }""")

    def touching_labels(self):
        """Pairs of texts in one drawing that lie upon each other, and texts beside the drawing."""
        return self.run("""
            const touching = [];
            for (const drawing of document.querySelectorAll('svg')) {
              const frame = drawing.getBoundingClientRect();
              const labels = [...drawing.querySelectorAll('text')]
                  .map((text) => ({words: text.textContent, box: text.getBoundingClientRect()}))
                  .filter(({box}) => box.width > 0);
              for (const [i, {words, box}] of labels.entries()) {
                if (box.right > frame.right + 3 || box.left < frame.left - 3) {
                  touching.push([words]);
                }
                for (const other of labels.slice(i + 1)) {
                  const wide = Math.min(box.right, other.box.right) -
                      Math.max(box.left, other.box.left);
                  const high = Math.min(box.bottom, other.box.bottom) -
                      Math.max(box.top, other.box.top);
                  if (wide > 0 && high > 4) { // lines have room above their letters
                    touching.push([words, other.words]);
                  }
                }
              }
            }
            return touching;""")

    def screenshot(self, path, whole=False):
        """A PNG of the screen, or of the whole page (8,000 pixels of it at most)."""
        width, height = self.size
        if whole:
            height = self.run("return document.scrollingElement.scrollHeight")
        self.set_screen(width, min(height, 8000))
        self.driver.save_screenshot(str(path))
        self.set_screen(*self.size)

    def problems(self):
        """What went wrong since the last call, as lines: console errors, forbidden requests."""
        found = [entry["message"] for entry in self.driver.get_log("browser")
                 if entry["level"] in ("SEVERE", "WARNING")]
        for entry in self.driver.get_log("performance"):
            message = json.loads(entry["message"])["message"]
            if message["method"] == "Network.requestWillBeSent":
                url = message["params"]["request"]["url"]
                if not url.startswith(LOCAL_SCHEMES) and not self.allows(url):
                    found.append(f"request to {url}")
        return found

    def allows(self, url):
        return any(url == origin or url.startswith(origin + "/") for origin in self.origins)


class BrowserTest(unittest.TestCase):
    """Tests that share one browser and a temporary folder. Set `origins` for served pages."""

    origins = ()

    @classmethod
    def setUpClass(cls):
        cls.browser = Browser(cls.origins)
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="qvpage-"))

    @classmethod
    def tearDownClass(cls):
        cls.browser.close()
        shutil.rmtree(cls.folder, ignore_errors=True)

    def tearDown(self):
        self.assertEqual(self.browser.problems(), [])

    def write(self, name, text):
        """A file of the test's own; its path."""
        path = self.folder / name
        path.write_text(text, encoding="utf-8")
        return path

    def assert_fits(self):
        """No part of the page is beside the screen."""
        self.assertLessEqual(self.browser.overflow(), 0, "the page scrolls sideways")

    def wait_for(self, holds):
        """Waits until a condition holds; a page that never gets there fails the test."""
        WebDriverWait(self.browser.driver, 30).until(lambda _: holds())

    def picture(self, name, whole=False):
        """Keeps a picture for people, when QV_SCREENSHOTS names a folder."""
        folder = os.environ.get("QV_SCREENSHOTS")
        if folder:
            pathlib.Path(folder).mkdir(parents=True, exist_ok=True)
            self.browser.screenshot(pathlib.Path(folder) / f"{name}.png", whole)
