#!/usr/bin/env python3
"""Runs the example hosts that write pictures and films, and looks at what they have written.

usage: hosts_test.py --programs DIRECTORY [--ending .exe] [--emulator PROGRAM] [--tools DIRECTORY]
                     [--checked LIBRARY] [--without-letters] [--pictures]
"""

import argparse
import math
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tests" / "show"))
from pictures import Picture, png_bytes, read_png  # noqa: E402

given = None


def is_near(pixel, wanted, tolerance):
    return all(abs(a - b) <= tolerance for a, b in zip(pixel, wanted))


class HostTest(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory(prefix="qmur-hosts-")
        self.addCleanup(temporary.cleanup)
        self.directory = Path(temporary.name)

    def run_host(self, name, *arguments, **more):
        """Its status and what it says of mistakes."""
        command = [given.emulator] * bool(given.emulator) + [f"{given.programs}/qmur-{name}{given.ending}", *arguments]
        # fontconfig keeps its settings behind offsets that a leak detector does not follow.
        known = self.directory / "known-leaks"
        known.write_text("leak:libfontconfig\n")
        environment = {**os.environ, "LSAN_OPTIONS": f"suppressions={known}:print_suppressions=0", **more}
        if given.tools:
            environment |= {"WINEPATH": "Z:" + given.tools.replace("/", "\\"), "PATH": f"{given.tools}:{os.environ['PATH']}"}
        # Into a file: what an emulator leaves running in the background would hold a pipe open.
        with tempfile.TemporaryFile("w+") as errors:
            status = subprocess.run(command, cwd=self.directory, env=environment, stdin=subprocess.DEVNULL,
                                    stdout=subprocess.DEVNULL, stderr=errors, timeout=120).returncode
            errors.seek(0)
            known.unlink()
            return status, errors.read()

    def drawn(self, name, *arguments):
        status, errors = self.run_host(name, *arguments)
        self.assertEqual((status, errors), (0, ""))
        return read_png(self.directory / f"{name}.png")

    def plain(self, name, width, height, colour):
        (self.directory / name).write_bytes(png_bytes(Picture(width, height, [colour] * (width * height))))
        return name

    def assert_refuses(self, status, name, *arguments):
        answer, errors = self.run_host(name, *arguments)
        self.assertEqual((answer, errors.count("\n")), (status, 1), errors)


class Wipe(HostTest):
    def test_begins_and_ends_whole(self):
        red, blue = (255, 0, 0), (0, 0, 255)
        sheet = self.drawn("wipe", self.plain("red.png", 430, 280, red), self.plain("blue.png", 520, 270, blue))
        self.assertEqual((sheet.width, sheet.height), (3 * 400 + 16, 2 * 260 + 8))
        stages = [sheet.cut(408 * column, 268 * row, 400, 260) for row in range(2) for column in range(3)]
        # A mean may come out one low in either direction.
        self.assertTrue(all(is_near(pixel, red, 3) for pixel in stages[0].pixels))
        self.assertTrue(all(is_near(pixel, blue, 3) for pixel in stages[5].pixels))
        shares = [sum(pixel[2] for pixel in stage.pixels) for stage in stages]
        self.assertEqual(shares, sorted(set(shares)), "the second photograph does not grow")

    def test_the_edge_is_soft_and_round(self):
        colours = self.plain("black.png", 400, 260, (0, 0, 0)), self.plain("white.png", 400, 260, (255, 255, 255))
        stage = self.drawn("wipe", *colours).cut(816, 0, 400, 260)
        # The third stage: a radius of 2/5 of the way from -60 to the far corner's distance + 60, the edge 60 to each side.
        radius = -60 + 0.4 * (math.ceil(math.hypot(266, 174)) + 120)
        for y in range(0, 260, 7):
            for x in range(0, 400, 7):
                share = min(1, max(0, (radius + 60 - math.hypot(x - 266, y - 86)) / 120))
                self.assertTrue(is_near(stage.at(x, y), [255 * share] * 3, 20), (x, y, stage.at(x, y), share))

    def test_refuses_what_is_no_photograph(self):
        (self.directory / "text.jpg").write_text("no picture")
        self.assert_refuses(2, "wipe")
        good = self.plain("good.png", 40, 26, (1, 2, 3))
        self.assert_refuses(1, "wipe", "text.jpg", good)
        self.assert_refuses(1, "wipe", good, "missing.jpg")


class StarChart(HostTest):
    def test_shows_stars_at_their_places(self):
        chart = self.drawn("star-chart")
        self.assertEqual((chart.width, chart.height), (720, 720))
        # Dubhe, Merak, Kochab, Caph and Alderamin from a catalogue, the pole in the middle and 7.6 pixels to a degree.
        for hours, degrees in ((11.062, 61.751), (11.031, 56.382), (14.845, 74.155), (0.153, 59.150), (21.310, 62.585)):
            x = 360 - (90 - degrees) * 7.6 * math.sin(math.radians(15 * hours))
            y = 360 - (90 - degrees) * 7.6 * math.cos(math.radians(15 * hours))
            around = [sum(chart.at(round(x) + i, round(y) + j)) for i in range(-4, 5) for j in range(-4, 5)]
            self.assertGreater(max(around), 600, (hours, degrees))
        self.assertEqual(chart.at(700, 700), (10, 16, 48))
        self.assertEqual(chart.at(100, 330), (10, 16, 48))

    def test_has_letters_in_the_colour_as_a_pixel_has_it(self):
        if given.without_letters:
            self.skipTest("this build has no letters")
        title = self.drawn("star-chart").cut(20, 16, 300, 48)
        self.assertGreater(title.pixels.count((0xFF, 0xE9, 0xB0)), 300)


class TurningMesh(HostTest):
    def test_shows_a_torus_lit_from_the_upper_left(self):
        sheet = self.drawn("turning-mesh")
        self.assertEqual((sheet.width, sheet.height), (4 * 300, 260))
        ground = (0x18, 0x1C, 0x28)
        stages = [sheet.cut(300 * i, 0, 300, 260) for i in range(4)]
        for stage in stages:
            self.assertEqual({stage.at(x, y) for x in (0, 299) for y in (0, 259)}, {ground})
            covered = 1 - stage.pixels.count(ground) / len(stage.pixels)
            self.assertTrue(0.2 < covered < 0.6, covered)
        first = stages[0]
        self.assertEqual(first.at(150, 130), ground, "the torus has no hole")
        # The outer side of the ring on either end of a diagonal.
        upper, lower = ([sum(pixel) for pixel in (first.at(150 + sign * i, 130 + sign * i) for i in range(129, 0, -1))
                         if pixel != ground][4:20] for sign in (-1, 1))
        self.assertGreater(sum(upper), 1.5 * sum(lower))
        self.assertEqual(len({tuple(stage.pixels) for stage in stages}), 4, "it does not turn")


class Relief(HostTest):
    def test_stands_out_on_the_left_and_is_hollow_on_the_right(self):
        grey = (128, 128, 128)
        relief = self.drawn("relief", self.plain("grey.png", 640, 320, grey))
        self.assertEqual((relief.width, relief.height), (640, 320))
        self.assertEqual({relief.at(x, y) for x, y in ((0, 0), (160, 60), (320, 160), (639, 319))}, {grey})
        # The outer slope of the medal's rim, upper left and lower right.
        slope = round(125 * math.sqrt(0.5))
        self.assertGreater(relief.at(160 - slope, 160 - slope)[0], 140)
        self.assertLess(relief.at(160 + slope, 160 + slope)[0], 110)
        # A flat spot has the light 279/279 and the highlight 2: 128 becomes 130. The sole of a foot is flat.
        self.assertGreater(relief.cut(350, 134, 122, 166).pixels.count((130, 130, 130)), 1500)
        # Its row through the heel goes down at the left and up at the right.
        heel = [relief.at(x, 134 + 135)[0] for x in range(350, 472)]
        inside = [i for i, value in enumerate(heel) if value != 128]
        self.assertLess(sum(heel[i] for i in inside[:4]), 4 * 110)
        self.assertGreater(sum(heel[i] for i in inside[-4:]), 4 * 135)

    def test_refuses_what_is_too_small(self):
        self.assert_refuses(2, "relief", self.plain("small.png", 639, 320, (1, 2, 3)))
        self.assert_refuses(2, "relief", "missing.jpg")


class FloodFill(HostTest):
    def test_every_pane_has_one_colour_up_to_its_lead(self):
        glass = self.drawn("flood-fill")
        lead, width, height = (0x10, 0x10, 0x14), glass.width, glass.height
        pixels = glass.pixels
        border = [glass.at(x, y) for x in range(width) for y in (0, height - 1)]
        border += [glass.at(x, y) for x in (0, width - 1) for y in range(height)]
        self.assertEqual(set(border), {lead})
        seen = [pixel == lead for pixel in pixels]
        colours = []
        for seed in range(width * height):
            if seen[seed]:
                continue
            seen[seed] = True
            region = [seed]
            for place in region:
                for neighbour in (place - 1, place + 1, place - width, place + width):
                    if not seen[neighbour]:
                        seen[neighbour] = True
                        region.append(neighbour)
            self.assertEqual({pixels[place] for place in region}, {pixels[seed]})
            colours.append(pixels[seed])
        self.assertGreater(len(colours), 50)
        self.assertGreater(len(set(colours)), 0.9 * len(colours))


class Film(HostTest):
    def test_hands_over_every_frame(self):
        self.assertEqual(self.run_host("film", "film.mp4", "1.5"), (0, ""))
        film = self.directory / "film.mp4"
        if given.tools:
            self.assertEqual(film.read_text(), f"640x360 {45 * 640 * 360 * 4}\n")
            return
        decoded = subprocess.run(["ffmpeg", "-loglevel", "error", "-i", film, "-f", "rawvideo", "-pix_fmt", "rgb24", "-"],
                                 stdout=subprocess.PIPE, check=True).stdout
        size = 3 * 640 * 360
        frames = [decoded[i : i + size] for i in range(0, len(decoded), size)]
        self.assertEqual((len(frames), len(set(frames)), len(frames[-1])), (45, 45, size))
        for frame in frames:
            self.assertGreater(max(frame), 120)
            self.assertTrue(is_near(frame[:3], (8, 10, 24), 8), frame[:3])

    def test_refuses_what_it_cannot_do(self):
        for arguments in ((), ("a.mp4", "0"), ("a.mp4", "x"), ('"; true', "1")):
            self.assert_refuses(2, "film", *arguments)

    def test_tells_that_the_encoder_failed(self):
        status, errors = self.run_host("film", "missing/film.mp4", "0.1")
        self.assertEqual(status, 1)
        self.assertEqual(list(self.directory.iterdir()), [])


class Contracts(HostTest):
    def test_the_checked_library_has_nothing_to_say(self):
        if not given.checked:
            self.skipTest("this build has no checked library")
        photos = self.plain("first.png", 700, 400, (9, 99, 199)), self.plain("second.png", 700, 400, (200, 100, 0))
        for name, *arguments in (("wipe", *photos), ("star-chart",), ("turning-mesh",), ("relief", photos[0]),
                                 ("flood-fill",), ("film", "film.mp4", "0.2")):
            with self.subTest(name):
                self.assertEqual(self.run_host(name, *arguments, LD_PRELOAD=given.checked), (0, ""))


class GuidePictures(HostTest):
    """What the guide shows is what the hosts draw: tools/guide-pictures makes the pictures anew."""

    def test_pictures_are_those_of_the_hosts(self):
        if given.ending or not given.pictures:
            self.skipTest("letters and photographs are compared where the pictures were made")
        photos = ROOT / "examples" / "show" / "photos"
        for name, arguments in {"wipe": [photos / "mountains.jpg", photos / "sunset.jpg"], "star-chart": [],
                                "turning-mesh": [], "relief": [photos / "fig.jpg"], "flood-fill": []}.items():
            with self.subTest(name):
                self.assertEqual(self.run_host(name, *arguments), (0, ""))
                drawn, shown = map(self.pixels_of, (f"{name}.png", ROOT / "docs" / "images" / "hosts" / f"{name}.webp"))
                self.assertEqual(len(drawn), len(shown))
                # A loss in packing, but no other picture.
                self.assertLess(sum(abs(a - b) for a, b in zip(drawn, shown)) / len(drawn), 5)

    def pixels_of(self, file):
        """At a quarter of the size."""
        return subprocess.run(["ffmpeg", "-loglevel", "error", "-i", file, "-vf", "scale=iw/4:-1", "-f", "rawvideo", "-pix_fmt",
                               "rgb24", "-"], cwd=self.directory, stdout=subprocess.PIPE, check=True).stdout


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--programs", type=os.path.abspath)
    parser.add_argument("--ending", default="")
    parser.add_argument("--emulator")
    parser.add_argument("--tools")
    parser.add_argument("--checked", type=os.path.abspath, help="the checked library, on which the hosts run as well")
    parser.add_argument("--without-letters", action="store_true", help="of a build that has none")
    parser.add_argument("--pictures", action="store_true", help="compare those of the guide as well")
    given, rest = parser.parse_known_args()
    unittest.main(argv=sys.argv[:1] + rest)
