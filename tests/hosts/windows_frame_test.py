#!/usr/bin/env python3
"""Looks at the window of qmur-windows-frame under Wine: its pixels are those that the host has drawn, and Escape ends it.

usage: windows_frame_test.py PROGRAM
"""

import os
import subprocess
import sys
import unittest

from screen import HEIGHT, WIDTH, Screen, wait_for

program = None
# Below the lights and left of the ball nothing but the ground is to be seen.
ROWS = range(180, 300)


def ground(y):
    return bytes([20 + y // 4, 60 + y // 3, 150])


def find_frame(picture):
    """Left and top of a frame whose first columns show the ground in the rows that do."""
    for top in range(HEIGHT - 300 + 1):
        row = picture[top + ROWS[0]]
        for x in range(WIDTH - 480 + 1):
            if row.startswith(ground(ROWS[0]) * 150, 3 * x):
                if all(picture[top + y].startswith(ground(y) * 150, 3 * x) for y in ROWS):
                    return x, top
    return None


class WindowsFrame(unittest.TestCase):
    def test_shows_the_frame_and_ends(self):
        # On a desktop of its own: what was started before may have left one that has no screen.
        with Screen() as screen:
            desktop = ["wine", "explorer", f"/desktop=frame,{WIDTH}x{HEIGHT}", program]
            host = subprocess.Popen(desktop, env=screen.environment, stdin=subprocess.DEVNULL,
                                    stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            try:
                left, top = wait_for(lambda: find_frame(screen.picture()), "the frame in a window", 120)
                picture = screen.picture()
                # The ball is lit from the upper left and dark at the lower right.
                light, dark = ([picture[top + y][3 * (left + x) + i] for i in range(3)] for x, y in ((215, 165), (285, 235)))
                self.assertGreater(light[0], 200)
                self.assertLess(max(dark), 100)
                screen.do("mousemove", left + 40, top + 280, "click", 1, "key", "Escape")
                self.assertEqual(host.wait(60), 0)
            finally:
                host.kill()
                host.wait()


if __name__ == "__main__":
    if Screen.lacking:
        print(f"not installed: {', '.join(Screen.lacking)}")
        sys.exit(77)
    program = os.path.abspath(sys.argv.pop(1))
    unittest.main()
