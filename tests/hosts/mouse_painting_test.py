#!/usr/bin/env python3
"""Paints in the window of qmur-mouse-painting: what the mouse draws is shown and saved, keys clear it and end.

usage: mouse_painting_test.py PROGRAM
"""

import os
import struct
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from screen import Screen, wait_for

WIDTH, HEIGHT = 640, 400
NIGHT = bytes([0x0C, 0x10, 0x20])
program = None


def read_bmp(path):
    """The rows of a bitmap without compression, top row first, as bytes of red, green and blue."""
    data = path.read_bytes()
    (offset,) = struct.unpack_from("<I", data, 10)
    width, height, _, bits = struct.unpack_from("<iiHH", data, 18)
    assert (width, height) == (WIDTH, HEIGHT) and bits in (24, 32), (width, height, bits)
    size, step = bits // 8, (width * bits // 8 + 3) // 4 * 4
    rows = [data[offset + y * step : offset + y * step + width * size] for y in reversed(range(height))]
    return [b"".join(row[i : i + 3][::-1] for i in range(0, len(row), size)) for row in rows]


class MousePainting(unittest.TestCase):
    def saved(self, key):
        """What the window's program saves after a key."""
        file = self.directory / "mouse-painting.bmp"
        file.unlink(missing_ok=True)
        self.screen.do("key", key)
        self.screen.do("key", "s")
        wait_for(lambda: file.exists() and file.stat().st_size >= 54 + 3 * WIDTH * HEIGHT, "a saved painting", 20)
        return read_bmp(file)

    def test_paints_shows_saves_and_ends(self):
        with tempfile.TemporaryDirectory() as directory, Screen() as screen:
            self.directory, self.screen = Path(directory), screen
            # A sanitizer's leak detector fails itself where the window's libraries are loaded.
            environment = {**screen.environment, "SDL_VIDEODRIVER": "x11", "SDL_AUDIODRIVER": "dummy",
                           "ASAN_OPTIONS": "detect_leaks=0"}
            with open(self.directory / "errors", "w+") as errors:
                host = subprocess.Popen([program], cwd=directory, env=environment, stderr=errors)
                try:
                    self.paint()
                    self.assertEqual(host.wait(20), 0, (self.directory / "errors").read_text())
                finally:
                    host.kill()
                    host.wait()

    def paint(self):
        window, left, top = self.screen.place_of("q_Mur")
        self.screen.do("windowfocus", "--sync", window)
        self.assertEqual(self.saved("Shift_L"), [NIGHT * WIDTH] * HEIGHT)

        self.screen.do("mousemove", left + 60, top + 300, "mousedown", 1)
        for x in range(80, 420, 20):
            self.screen.do("mousemove", left + x, top + 300)
        self.screen.do("mouseup", 1, "mousemove", left + 500, top + 40)
        painted = self.saved("Shift_L")
        night = [x for x in range(90, 400) if sum(painted[300][3 * x : 3 * x + 3]) < 300]
        self.assertEqual(night, [], "the stroke has gaps")
        for y in [*range(0, 250), *range(350, HEIGHT)]:
            self.assertEqual(painted[y], NIGHT * WIDTH, f"row {y} is far from the stroke")

        def is_shown():
            shown = self.screen.picture()
            return [row[3 * left : 3 * (left + WIDTH)] for row in shown[top : top + HEIGHT]] == painted

        wait_for(is_shown, "the painting in the window", 20)

        self.screen.do("mousemove", left + 200, top + 300, "mousedown", 3, "mousemove", left + 204, top + 300, "mouseup", 3)
        blurred = self.saved("Shift_L")
        self.assertNotEqual(blurred, painted)
        self.assertEqual([row[: 3 * 150] for row in blurred], [row[: 3 * 150] for row in painted])
        self.assertEqual(self.saved("c"), [NIGHT * WIDTH] * HEIGHT)
        self.screen.do("key", "q")


if __name__ == "__main__":
    if Screen.lacking:
        print(f"not installed: {', '.join(Screen.lacking)}")
        sys.exit(77)
    program = os.path.abspath(sys.argv.pop(1))
    unittest.main()
