#!/usr/bin/env python3
"""Makes the gallery and looks into it: a page with picture, text and call for each export, nothing from elsewhere; and
makes it of faulty data, which must be refused.

usage: gallery_test.py Q_MUR_CATALOGUE Q_MUR_GALLERY_DRAW
"""

import copy
import hashlib
import html
import os
import pathlib
import re
import sys
import tempfile
import unittest

import site_maker
from site_maker import pages

ROOT = pathlib.Path(__file__).resolve().parents[2]
ARRAYS = {"iSin", "iCos", "iSqrt"}


class Gallery(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.temporary = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.temporary.cleanup)
        cls.site = pathlib.Path(cls.temporary.name)
        cls.catalogue, cls.pictures = site_maker.make(cls.programs, cls.site, frames=4)
        cls.functions = [f for subsystem in cls.catalogue["subsystems"] for f in subsystem["functions"]]
        cls.pages = {page.name: page.read_text(encoding="utf-8") for page in cls.site.glob("*.html")}

    def test_every_export_has_a_page(self):
        signatures = (ROOT / "exports" / "q_Mur.exports").read_text(encoding="utf-8")
        exported = set(re.findall(r"^(?![#\s]).*?(\w+)[(\[]", signatures, re.MULTILINE)) - ARRAYS
        self.assertGreater(len(exported), 200)
        shown = {name for f in self.functions for name in [f["name"], *f["aliases"]]
                 if re.search(rf"\b{name}\b", self.pages[pages.page_of(f)])}
        self.assertEqual(exported - shown, set())

    def test_every_page_shows_picture_text_and_call(self):
        for function in self.functions:
            page = self.pages[pages.page_of(function)]
            with self.subTest(pages.full_name(function)):
                picture = re.search(r'<figure>\s*<img src="(pictures/[^"]+)"', page).group(1)
                self.assertEqual((self.site / picture).read_bytes()[8:12], b"WEBP")
                words = re.findall(r"[a-z]{4,}", re.sub(r"\\\S+", "", function["text"]))[:8]
                body = html.unescape(re.sub(r"<[^>]+>", "", page))
                self.assertEqual([word for word in words if word not in body], [])
                self.assertIn(f"{function['name']}(", re.search(r'<pre id="call">(.*?)</pre>', page, re.DOTALL).group(1))
                for argument in function["arguments"]:
                    self.assertIn(f'<th scope="row"><code>{argument["name"]}</code>', page)

    def test_equal_files_have_a_reason(self):
        alike = {}
        for picture in self.pictures:
            digest = hashlib.sha256((self.site / "pictures" / picture["file"]).read_bytes()).hexdigest()
            alike.setdefault(digest, []).append(" ".join(filter(None, [picture["name"], picture["overload"]])))
        reasons = {pages.full_name(f): f["looksLike"] for f in self.functions}
        for names in alike.values():
            self.assertLessEqual(sum(not reasons[name] for name in names), 1, names)

    def test_the_reference_is_linked_where_it_was_made(self):
        self.assertNotIn("reference/", self.pages["index.html"])
        with tempfile.TemporaryDirectory() as directory:
            site = pathlib.Path(directory)
            (site / "reference").mkdir()
            (site / "reference" / "files.html").write_text("made by another program", encoding="utf-8")
            pages.write_pages(copy.deepcopy(self.catalogue), self.pictures, site)
            self.assertIn('href="reference/files.html"', (site / "index.html").read_text(encoding="utf-8"))

    def test_lists_and_tables_of_comments_are_lists_and_tables(self):
        texts = pages.Texts(self.functions)
        self.assertEqual(texts.paragraphs("Two:\n- of `a`\nand b\n- c\n\n1. One.\n2. Two."),
                         "<p>Two:</p>\n<ul><li>of <code>a</code> and b</li><li>c</li></ul>\n<ol><li>One.</li><li>Two.</li></ol>")
        self.assertEqual(texts.paragraphs("| A | B |\n|---|---|\n| 1 | 2 |"),
                         '<div class="wide"><table><thead><tr><th>A<th>B</tr></thead>'
                         "<tbody><tr><td>1<td>2</tr></tbody></table></div>")
        self.assertEqual(texts.paragraphs("Draws.\n\\param x column\n\\return 1"),
                         "<p>Draws.</p>\n<p><code>x</code>: column</p>\n<p>Returns 1</p>")
        self.assertIn("<ol><li>Once: ", self.pages["subsystem-pipeline.html"])
        self.assertIn("<td>0x10100<td>filtered<td>", self.pages["i3D_Blt_Rect.html"])

    def test_links_lead_somewhere_in_the_directory(self):
        self.assertGreater(len(self.pages), 250)
        for name, page in self.pages.items():
            for link in set(re.findall(r'(?:href|src)="([^"]*)"', page)) - {"data:,"}:
                self.assertTrue((self.site / link.partition("?")[0]).is_file(), f"{name}: {link}")

    def test_nothing_comes_from_a_network(self):
        for file in self.site.glob("*.*"):
            self.assertIsNone(re.search(r"https?://|@import|fetch\(", file.read_text(encoding="utf-8")), file.name)


class Refusals(unittest.TestCase):
    """What is wrong with data is named, and nothing is written."""

    def setUp(self):
        self.catalogue = copy.deepcopy(Gallery.catalogue)
        self.pictures = copy.deepcopy(Gallery.pictures)

    def function(self, name):
        return next(f for f in Gallery.functions if f["name"] == name)

    def picture(self, name):
        return next(p for p in self.pictures if p["name"] == name)

    def assert_refused(self, complaint):
        with tempfile.TemporaryDirectory() as directory:
            with self.assertRaises(pages.Refusal) as caught:
                pages.write_pages(self.catalogue, self.pictures, pathlib.Path(directory))
            self.assertEqual(str(caught.exception), complaint)
            self.assertEqual(os.listdir(directory), [])

    def test_no_picture(self):
        self.pictures.remove(self.picture("iFillRect"))
        self.assert_refused("iFillRect has no picture")

    def test_no_text(self):
        for subsystem in self.catalogue["subsystems"]:
            for function in subsystem["functions"]:
                if function["name"] == "iFillRect":
                    function["text"] = " "
        self.assert_refused("iFillRect has no text")

    def test_one_colour(self):
        self.picture("iFillRect")["isPlain"] = True
        self.assert_refused("iFillRect: its picture has one colour only")

    def test_call_without_effect(self):
        self.picture("iFillRect")["changes"] = False
        self.assert_refused("iFillRect: its picture shows nothing of what the call does")

    def test_two_alike(self):
        self.picture("iFillRect")["checksum"] = self.picture("iBltFast32")["checksum"]
        self.assert_refused("these look alike and give no reason: iBltFast32, iFillRect")


if __name__ == "__main__":
    Gallery.programs = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1], verbosity=2)
