#!/usr/bin/env python3
"""Opens the gallery from the file system in a browser without a window, as wide as a phone: no page has an error on its
console, a picture that does not show or anything wider than the window; functions are found and calls are copied.

usage: browser_test.py Q_MUR_CATALOGUE Q_MUR_GALLERY_DRAW
"""

import pathlib
import re
import shutil
import sys
import tempfile
import unittest

import site_maker

site_maker.need(jinja2="Jinja", selenium="Selenium", tomllib="Python 3.11")

import tomllib  # noqa: E402

from selenium import webdriver  # noqa: E402
from selenium.common.exceptions import WebDriverException  # noqa: E402
from selenium.webdriver.chrome.service import Service  # noqa: E402
from selenium.webdriver.common.by import By  # noqa: E402
from selenium.webdriver.support.ui import WebDriverWait  # noqa: E402

PHONE = 390
MEASURE = """
const wide = [document.documentElement.scrollWidth, document.body.scrollWidth, innerWidth];
const broken = [...document.images].filter((image) => image.complete && !image.naturalWidth && image.src);
return [Math.max(...wide), broken.map((image) => image.src), document.querySelectorAll("h1").length];
"""
TYPE = """
const field = document.querySelector("#search input");
field.value = arguments[0];
field.dispatchEvent(new Event("input"));
return [...document.querySelectorAll("#found .card strong")].map((name) => name.textContent);
"""
FAULTY = """<!doctype html><link rel="icon" href="data:,"><h1>Faulty</h1><img src="missing.webp">
<div style="width: 500px">wide</div><script>nothing.there();</script>"""


def open_browser():
    options = webdriver.ChromeOptions()
    options.binary_location = shutil.which("chromium")
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage"):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    browser = webdriver.Chrome(service=Service(shutil.which("chromedriver")), options=options)
    browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                            {"width": PHONE, "height": 844, "deviceScaleFactor": 1, "mobile": False})
    return browser


def go_to(browser, address):
    """Opens a page. The driver at times answers before its scripts have run."""
    browser.get(address)
    is_there = ("const place = (address) => address.split(/[?#]/)[0];"
                "return place(location.href) === place(arguments[0]) && document.readyState === 'complete';")
    WebDriverWait(browser, 60, ignored_exceptions=[WebDriverException]).until(
        lambda page: page.execute_script(is_there, address))


class Browser(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        temporary = tempfile.TemporaryDirectory()
        cls.addClassCleanup(temporary.cleanup)
        cls.site = pathlib.Path(temporary.name)
        site_maker.make(cls.programs, cls.site, frames=3)
        cls.browser = open_browser()
        cls.addClassCleanup(cls.browser.quit)

    def open(self, page, question=""):
        go_to(self.browser, (self.site / page).as_uri() + question)

    def faults(self, page):
        """What is wrong with a page that is opened."""
        self.open(page)
        width, broken, headings = self.browser.execute_script(MEASURE)
        faults = [f"console: {entry['message']}" for entry in self.browser.get_log("browser")]
        faults += [f"not shown: {source}" for source in broken]
        if width > PHONE:
            faults.append(f"{width} pixels wide")
        if headings != 1:
            faults.append(f"{headings} headings")
        return faults

    def found(self, question):
        self.open("index.html")
        self.browser.find_element(By.CSS_SELECTOR, "#search input").send_keys(question)
        return [card.text for card in self.browser.find_elements(By.CSS_SELECTOR, "#found .card strong")]

    def test_every_page_loads_and_fits(self):
        pages = sorted(page.name for page in self.site.glob("*.html"))
        self.assertGreater(len(pages), 250)
        faulty = {page: faults for page in pages if (faults := self.faults(page))}
        self.assertEqual(faulty, {})

    def test_faults_are_seen(self):
        (self.site / "faulty.html").write_text(FAULTY, encoding="utf-8")
        try:
            faults = "\n".join(self.faults("faulty.html"))
        finally:
            (self.site / "faulty.html").unlink()
        for fault in ("nothing is not defined", "not shown: ", "pixels wide"):
            self.assertIn(fault, faults)

    def test_functions_are_found(self):
        for question, names in {
            "iBltFast32_KeySrc": {"iBltFast32_KeySrc"},
            "soft edge": {"Edge_Transparency", "Edge_Transparency_Circle"},
            "glow": {"Draw_Light", "Draw_Circle_Light"},
            "keyed": {"iBltFast32_KeySrc", "iBltNear32_KeySrc", "iBltBilinear32_KeySrc"},
            "clipped": {"iBltFast32_Advanced", "iBltNear32Safe", "iBltFast32SafeKeySrc"},
            "no bleed at the edge": {"iBltBilinear32_Add", "iBltBilinear32_KeySrc", "iBltBilinear32Safe"},
            "fill a shape": {"Region_Fill"},
            "rotate a picture": {"iRotate", "iRotateLinear"},
            "gaussian blur": {"Hor_GaussBlur", "Ver_GaussBlur"},
        }.items():
            with self.subTest(question):
                found = self.found(question)
                self.assertEqual(names - set(found[:12]), set(), found)

    def test_what_strangers_type_is_found(self):
        intents = tomllib.loads((pathlib.Path(__file__).parent / "intents.toml").read_text(encoding="utf-8"))
        self.assertGreaterEqual(len(intents), 25)
        self.open("index.html")
        for question, names in intents.items():
            with self.subTest(question):
                first = [name.split()[0] for name in self.browser.execute_script(TYPE, question)[:5]]
                self.assertTrue(set(first) & set(names), first)

    def test_the_words_of_the_guide_find_what_it_names(self):
        guide = (site_maker.ROOT / "docs" / "guide.md").read_text(encoding="utf-8")
        rows = re.findall(r"^\| ([^|]+) \| (`[^|]+) \|$", guide[guide.index("## I want to"):], re.MULTILINE)
        self.assertGreater(len(rows), 25)
        self.open("index.html")
        for words, functions in rows:
            names = set(re.findall(r"`(\w+)`", functions))
            for word in words.split(", "):
                with self.subTest(word):
                    first = [name.split()[0] for name in self.browser.execute_script(TYPE, word)[:5]]
                    self.assertTrue(set(first) & names, first)

    def test_a_question_in_the_address_is_answered(self):
        self.open("index.html", "?q=bubble")
        self.assertIn("DrawRealBubble", self.browser.find_element(By.ID, "found").text)
        self.open("index.html", "?q=qqqq")
        self.assertIn("Nothing is found", self.browser.find_element(By.ID, "found").text)

    def test_the_call_is_copied(self):
        self.open("iFillRect.html")
        self.browser.execute_cdp_cmd("Browser.grantPermissions", {
            "permissions": ["clipboardReadWrite", "clipboardSanitizedWrite"]})
        self.browser.find_element(By.CSS_SELECTOR, ".copy").click()
        copied = self.browser.execute_async_script(
            "navigator.clipboard.readText().then(arguments[0], (fault) => arguments[0](String(fault)));")
        self.assertEqual(copied.strip(), self.browser.find_element(By.ID, "call").text.strip())
        self.assertIn("iFillRect(", copied)


if __name__ == "__main__":
    if not shutil.which("chromium") or not shutil.which("chromedriver"):
        site_maker.skip("no Chromium with its driver")
    Browser.programs = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1], verbosity=2)
