#!/usr/bin/env python3
"""Plays the show on a screen that nobody sees, presses keys and looks at what stands there.

    play_test.py --program ... --photos ... --without-window     for a build without SDL2
"""

import os
import re
import shutil
import signal
import struct
import subprocess
import tempfile
import time
from pathlib import Path

import running
from pictures import Picture, png_bytes, read_png
from running import ShowTest, command, four_photos

NEEDED = ("Xvfb", "xdotool", "jwm")
SMALL = ("--size", "320x180", "--fps", 10, "--seconds", 8, "--effects", "pan,iris")


class Screen:
    """An X server whose picture lies in a file, in the format of xwd."""

    width, height = 1024, 768

    def __init__(self):
        self.directory = tempfile.TemporaryDirectory(prefix="qmur-screen-")
        reading, writing = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", f"{self.width}x{self.height}x24", "-fbdir",
             self.directory.name, "-nolisten", "tcp", "-noreset"], pass_fds=[writing], stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as answer:
            number = answer.readline().strip()
        # libdbus, which SDL loads, keeps some memory to the end.
        suppressions = Path(self.directory.name) / "suppressions"
        suppressions.write_text("leak:libdbus-1.so\n")
        self.environment = {**os.environ, "DISPLAY": f":{number}", "SDL_VIDEODRIVER": "x11",
                            "LSAN_OPTIONS": f"suppressions={suppressions}:print_suppressions=0"}
        self.programs = []

    def start(self, *arguments):
        self.programs.append(subprocess.Popen(arguments, env=self.environment, stdout=subprocess.DEVNULL,
                                              stderr=subprocess.DEVNULL))

    def close(self):
        for program in [*self.programs, self.server]:
            program.terminate()
            program.wait()
        self.directory.cleanup()

    def tool(self, *arguments):
        return subprocess.run(["xdotool", *map(str, arguments)], env=self.environment, capture_output=True, text=True)

    def picture(self, left, top, width, height):
        data = (Path(self.directory.name) / "Xvfb_screen0").read_bytes()
        header = struct.unpack(">25I", data[:100])
        bits, stride, colours = header[11], header[12], header[19]
        assert (header[4], header[5], bits) == (self.width, self.height, 32), header
        start = header[0] + 12 * colours
        order = "<" if header[7] == 0 else ">"
        pixels = []
        for y in range(top, top + height):
            row = struct.unpack_from(f"{order}{width}I", data, start + y * stride + 4 * left)
            pixels += [(pixel >> 16 & 255, pixel >> 8 & 255, pixel & 255) for pixel in row]
        return Picture(width, height, pixels)


class WindowTest(ShowTest):
    def setUp(self):
        super().setUp()
        lacking = [name for name in NEEDED if not shutil.which(name)]
        if lacking:
            self.skipTest(f"{', '.join(lacking)} cannot be found")
        self.screen = Screen()
        self.addCleanup(self.screen.close)
        self.process = None

    def play(self, *arguments):
        self.errors = tempfile.TemporaryFile("w+")
        self.addCleanup(self.errors.close)
        self.process = subprocess.Popen(command(*arguments, "--play"), cwd=self.directory, env=self.screen.environment,
                                        stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=self.errors)
        self.addCleanup(self.process.kill)
        self.wait_for(self.find_window)

    def find_window(self):
        self.assertIsNone(self.process.poll(), f"it ended before it was to be seen: {self.said()}")
        found = self.screen.tool("search", "--onlyvisible", "--name", "^qmur-show").stdout.split()
        self.window = found[-1] if found else None
        return self.window and self.screen.tool("windowfocus", self.window).returncode == 0

    def press(self, *keys):
        self.screen.tool("key", *keys)

    def title(self):
        return self.screen.tool("getwindowname", self.window).stdout.strip()

    def geometry(self):
        text = self.screen.tool("getwindowgeometry", "--shell", self.window).stdout
        return tuple(int(re.search(rf"^{name}=(-?\d+)$", text, re.M).group(1)) for name in ("X", "Y", "WIDTH", "HEIGHT"))

    def in_window(self):
        return self.screen.picture(*self.geometry())

    def pause_at_start(self):
        self.wait_for(lambda: "frames a second" in self.title())
        self.press("space")
        self.wait_for(lambda: "paused" in self.title())
        self.press("Left")  # to the first frame, since fewer than five seconds have passed, or a few more

    def wait_for_picture(self, picture):
        self.wait_for(lambda: self.in_window().pixels == picture.pixels)

    def end(self, status=0):
        """Waits for it, and answers its last line."""
        self.assertEqual(self.process.wait(60), status, self.said())
        return self.said().splitlines()[-1]

    def said(self):
        self.errors.seek(0)
        return self.errors.read()

    def rendered(self, *arguments):
        """The frames as they are written, and their files."""
        (self.directory / "rendered").mkdir()
        self.show(*arguments, "-o", "rendered/%d.png")
        return lambda number: self.directory / "rendered" / f"{number}.png"


class Playing(WindowTest):
    def test_a_show_is_played_to_its_end(self):
        self.play(*four_photos()[:2], "--size", "320x180", "--fps", 20, "--seconds", 1, "--effects", "pan")
        showed, dropped = re.fullmatch(r"qmur-show: showed (\d+) frames? and dropped (none|\d+)", self.end()).groups()
        dropped = 0 if dropped == "none" else int(dropped)
        self.assertEqual(int(showed) + dropped, 40)
        self.assertEqual(self.contents(), [])

    def test_what_cannot_be_drawn_in_time_is_left_out(self):
        start = time.monotonic()
        self.play(*four_photos()[:2], "--size", "1920x1080", "--fps", 240, "--seconds", 2, "--effects", "pan,shatter",
                  "--threads", 1, "--first", 400)
        showed, dropped = re.fullmatch(r"qmur-show: showed (\d+) frames? and dropped (\d+)", self.end()).groups()
        self.assertEqual(int(showed) + int(dropped), 2 * 2 * 240 - 400)
        self.assertGreater(int(dropped), 0)
        self.assertGreater(time.monotonic() - start, 560 / 240)

    def test_the_window_shows_the_frames_that_are_written(self):
        arguments = [*four_photos()[:2], *SMALL]
        frame = self.rendered(*arguments, "--last", 85)
        self.play(*arguments)
        self.pause_at_start()
        self.press("Up")
        self.wait_for_picture(read_png(frame(0)))
        self.assertRegex(self.title(), r"^qmur-show 0:00 of 0:16, ")
        self.press("Right")
        self.wait_for_picture(read_png(frame(50)))
        self.press("Down")
        self.wait_for_picture(read_png(frame(80)))
        self.wait_for(lambda: self.title() == "qmur-show 0:08 of 0:16, paused")
        self.press("Down")  # there is no further one
        self.press("Left")
        self.wait_for_picture(read_png(frame(30)))
        self.press("Up")
        self.wait_for_picture(read_png(frame(0)))
        self.press("Left")
        time.sleep(0.5)
        self.assertEqual(self.in_window().pixels, read_png(frame(0)).pixels, "it stands still")
        self.press("space")
        self.wait_for(lambda: self.in_window().pixels != read_png(frame(0)).pixels)
        self.wait_for(lambda: re.fullmatch(r"qmur-show 0:\d\d of 0:16, [1-9]\d?\.\d frames a second", self.title()))
        self.press("q")
        self.end()

    def test_frames_are_saved_and_nothing_is_replaced(self):
        arguments = [*four_photos()[:2], *SMALL]
        frame = self.rendered(*arguments, "--first", 50, "--last", 50)
        (self.directory / "qmur-show-000050.png").write_text("mine")
        self.play(*arguments)
        self.pause_at_start()
        self.press("Up")
        self.press("Right")
        self.wait_for_picture(read_png(frame(50)))
        for copy in (2, 3):
            self.press("s")
            file = self.directory / f"qmur-show-000050-{copy}.png"
            self.wait_for(file.exists)
            self.wait_for(lambda: f"wrote '{file.name}'" in self.said())
            self.assertEqual(file.read_bytes(), frame(50).read_bytes())
        self.assertEqual((self.directory / "qmur-show-000050.png").read_text(), "mine")
        self.press("Escape")
        self.end()
        self.assertEqual(len(self.contents()), 5, self.contents())

    def test_a_resized_window_shows_all_of_the_frame_in_its_proportions(self):
        (self.directory / "a.png").write_bytes(png_bytes(Picture(64, 36, [(200, 100, 50)] * 64 * 36)))
        self.play("a.png", *SMALL[:-2], "--effects", "pan", "--fit", "cover")
        for width, height, area in ((480, 400, (0, 65, 480, 270)), (600, 180, (140, 0, 320, 180)),
                                    (100, 60, (0, 2, 100, 56))):
            self.screen.tool("windowsize", self.window, width, height)
            left, top, wide, high = area
            expected = [(200, 100, 50) if left <= x < left + wide and top <= y < top + high else (0, 0, 0)
                        for y in range(height) for x in range(width)]
            self.wait_for(lambda: self.geometry()[2:] == (width, height) and self.in_window().pixels == expected)
        self.press("q")
        self.end()

    def test_f_fills_the_screen_and_gives_it_back(self):
        self.screen.start("jwm", "-f", self.configuration())
        time.sleep(1)
        self.play(*four_photos()[:2], *SMALL)
        before = self.geometry()
        self.press("f")
        self.wait_for(lambda: self.geometry() == (0, 0, self.screen.width, self.screen.height))
        self.press("f")
        self.wait_for(lambda: self.geometry()[2:] == before[2:] == (320, 180))
        self.press("q")
        self.end()

    def configuration(self):
        file = Path(self.screen.directory.name) / "jwmrc"
        file.write_text('<?xml version="1.0"?><JWM><FocusModel>click</FocusModel></JWM>')
        return file

    def test_a_signal_ends_it(self):
        self.play(*four_photos()[:2], *SMALL)
        self.process.send_signal(signal.SIGTERM)
        self.assertEqual(self.end(128 + signal.SIGTERM), "qmur-show: interrupted")

    def test_without_a_screen_it_says_so(self):
        environment = {name: value for name, value in os.environ.items()
                       if name not in ("DISPLAY", "WAYLAND_DISPLAY", "SDL_VIDEODRIVER")}
        self.assert_refused([four_photos()[0], "--play"], "there is no screen for --play",
                            env={**environment, "SDL_VIDEODRIVER": "x11"})


class Refusals(ShowTest):
    def test_what_makes_no_sense_with_play_is_refused(self):
        for arguments, reason in ((["-o", "a.png"], "--play shows the film and writes none"),
                                  (["--music", "a.ogg"], "--play plays no music"),
                                  (["--seconds", "music"], "--seconds music needs --music")):
            self.assert_refused([four_photos()[0], "--play", *arguments], reason)


class WithoutWindow(ShowTest):
    def test_it_says_what_it_lacks(self):
        self.assert_refused([four_photos()[0], "--play"], "--play needs SDL2")


if __name__ == "__main__":
    options = running.read_options(without_window="the program was built without SDL2")
    running.run_tests([Refusals, WithoutWindow if options.without_window else Playing], options=options)
