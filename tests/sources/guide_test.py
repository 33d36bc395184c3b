#!/usr/bin/env python3
"""The guide is true: its code stands in the example hosts, its names are exported, its words are among those that
the gallery finds functions by, and every host is short and has its picture.

usage: guide_test.py
"""

import re
import sys
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
GUIDE = (ROOT / "docs" / "guide.md").read_text(encoding="utf-8")
HOSTS = {path.stem: path.read_text(encoding="utf-8") for path in (ROOT / "examples").glob("*.cpp")}
SIGNATURES = (ROOT / "exports" / "q_Mur.exports").read_text(encoding="utf-8")
EXPORTED = set(re.findall(r"^(?![#\s]).*?(\w+)[(\[]", SIGNATURES, re.MULTILINE))


def without_spaces(text):
    return re.sub(r"\s+", "", text)


def names_in(text):
    """What stands in backquotes by itself."""
    return set(re.findall(r"`(\w+)`", text))


class Guide(unittest.TestCase):
    def test_hosts_are_short(self):
        self.assertEqual(len(HOSTS), 8)
        for name, text in HOSTS.items():
            self.assertLessEqual(text.count("\n"), 90, name)

    def test_every_host_is_linked_and_has_its_picture(self):
        for name in HOSTS:
            self.assertIn(f"(../examples/{name}.cpp)", GUIDE)
            picture = f"images/hosts/{name.replace('_', '-')}.webp"
            self.assertIn(f"]({picture})", GUIDE)
            self.assertEqual((ROOT / "docs" / picture).read_bytes()[8:12], b"WEBP", picture)

    def test_code_stands_in_a_host(self):
        blocks = re.findall(r"^```cpp\n(.*?)^```", GUIDE, re.DOTALL | re.MULTILINE)
        self.assertGreater(len(blocks), 10)
        for block in blocks:
            self.assertTrue(any(without_spaces(block) in without_spaces(text) for text in HOSTS.values()), block)

    def test_names_are_exported(self):
        index = GUIDE[GUIDE.index("## I want to"):]
        self.assertGreater(len(names_in(index)), 80)
        self.assertEqual(names_in(index) - EXPORTED, set())
        # Elsewhere whatever looks like one of the library's functions.
        like = {name for name in names_in(GUIDE) if re.match(r"VKD_[A-Za-z0-9]|[ifb]?[A-Z]+[a-z0-9]+_?[A-Z]", name)}
        self.assertGreater(len(like), 60)
        self.assertEqual(like - EXPORTED - {"KeySrc", "SetDIBitsToDevice"}, set())

    def test_words_of_the_index_are_the_gallery_s(self):
        words = (ROOT / "site" / "words.toml").read_text(encoding="utf-8")
        section = re.search(r"^\[intents\]\n(.*?)^\[", words, re.DOTALL | re.MULTILINE)[1]
        intents = {word.strip('"') for word in re.findall(r'^("[^"]+"|[\w-]+) =', section, re.MULTILINE)}
        self.assertGreater(len(intents), 200)
        rows = re.findall(r"^\| ([^|]+) \| `", GUIDE[GUIDE.index("## I want to"):], re.MULTILINE)
        indexed = {word.strip() for row in rows for word in row.split(",")}
        self.assertGreater(len(indexed), 70)
        self.assertEqual(indexed - intents, set())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
