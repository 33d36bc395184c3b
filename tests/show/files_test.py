#!/usr/bin/env python3
"""Runs qmur-show where something is in its way, and looks whether anything is lost or wrong without a word."""

import contextlib
import os
import re
import resource
import signal
import struct
import subprocess
import time
import zlib

import running
from pictures import (DIFFERENCES, HEIC, QUARTERS, WEBP, Picture, bmp_bytes, chunk, exif, jpeg_bytes, png_bytes,
                      png_of, profile, read_png, segment, with_exif)
from running import ShowTest, command, four_photos, limited, sha256

GROUND = (0x17, 0x18, 0x1B)
STILL = ("--size", "64x64", "--fps", 1, "--seconds", 1, "--effects", "pan")
FILM = ("--size", "160x90", "--fps", 10, "--seconds", 1, "--effects", "pan,cross-fade")


def flat(colour, width=64, height=64):
    return Picture(width, height, [colour] * (width * height))


class Inputs(ShowTest):
    def frame(self, name, data=None):
        """The first frame of a show of one photograph."""
        if data is not None:
            (self.directory / name).write_bytes(data)
        self.show(name, *STILL, "-o", "frame%d.png")
        return read_png(self.directory / "frame0.png")

    def assert_unreadable(self, name, data, reason):
        (self.directory / name).write_bytes(data)
        self.assert_refused([name, *STILL, "-o", "out.png"], f"cannot read '{name}': {reason}")

    def assert_near(self, have, want):
        self.assertLess(max(abs(a - b) for a, b in zip(have, want)), 12, f"{have} for {want}")

    def assert_quarters(self, frame, colours):
        for place, colour in zip(((8, 8), (55, 8), (8, 55), (55, 55)), colours):
            self.assert_near(frame.at(*place), colour)

    def test_grey_colours_and_inks_of_jpeg_files(self):
        for name, value, colour in (("grey.jpg", (77,), (77, 77, 77)), ("colour.jpg", (200, 128, 128), (200, 200, 200)),
                                    ("inks.jpg", (50, 90, 200, 128), (25, 45, 100))):
            frame = self.frame(name, jpeg_bytes([[value] * 8] * 8, len(value)))
            self.assert_near(frame.at(32, 32), colour)

    def test_sixteen_bits_and_palettes_of_png_files(self):
        deep = b"".join(struct.pack(">HHH", 0xC8C8, 0x6464, 0x3232) for _ in range(64))
        self.assertEqual(self.frame("deep.png", png_of(64, 64, 16, 2, [deep] * 64)).at(32, 32), (200, 100, 50))
        palette = chunk(b"PLTE", bytes((1, 2, 3, 200, 100, 50)))
        self.assertEqual(self.frame("few.png", png_of(64, 64, 1, 3, [b"\xff" * 8] * 64, palette)).at(32, 32),
                         (200, 100, 50))

    def test_colours_that_a_profile_gives_another_meaning(self):
        red, green, blue = (0.4361, 0.2225, 0.0139), (0.3851, 0.7169, 0.0971), (0.1431, 0.0606, 0.7139)  # sRGB's own
        linear = round(255 * (1.055 * (60 / 255) ** (1 / 2.4) - 0.055))
        pixels = [bytes((60, 60, 60)) * 64] * 64
        blocks = [[(60, 128, 128)] * 8] * 8
        even = profile((red, green, blue))

        def png(*chunks):
            return png_of(64, 64, 8, 2, pixels, *chunks)

        def named(content):
            return chunk(b"iCCP", b"x\0\0" + zlib.compress(content))

        if self.frame("a.png", png(named(even))).at(32, 32) == (60, 60, 60):
            self.skipTest("this build lacks the library")
        parts = [segment(0xE2, b"ICC_PROFILE\0" + bytes((i, 2)) + half) for i, half in ((2, even[200:]), (1, even[:200]))]
        for name, data in (("a.png", png(named(even))), ("a.jpg", jpeg_bytes(blocks, 3, markers=b"".join(parts)))):
            for have in self.frame(name, data).at(32, 32):
                self.assertLessEqual(abs(have - linear), 2, name)
        # One channel is another, where the profile says so.
        pixels = [bytes((200, 100, 50)) * 64] * 64
        swapped = self.frame("b.png", png(named(profile((blue, green, red), 2.2)))).at(32, 32)
        self.assert_near(swapped, (50, 100, 200))
        # What is damaged, of the screen's own colours, or not whole changes nothing.
        for content in (even[:90], profile((blue, green, red), 2.2, b"sRGB of a test")):
            self.assertEqual(self.frame("c.png", png(named(content))).at(32, 32), (200, 100, 50))
        for have in self.frame("c.jpg", jpeg_bytes(blocks, 3, markers=parts[0])).at(32, 32):
            self.assertLessEqual(abs(have - 60), 2)

    def test_what_is_clear_shows_the_ground(self):
        for opacity, colour in ((255, (200, 100, 50)), (0, GROUND),
                                (102, tuple(round((a * 102 + b * 153) / 255) for a, b in zip((200, 100, 50), GROUND)))):
            row = bytes((200, 100, 50, opacity)) * 64
            self.assertEqual(self.frame("clear.png", png_of(64, 64, 8, 6, [row] * 64)).at(32, 32), colour)
        # A palette's entry, and one colour of all, may be clear as well.
        named = chunk(b"PLTE", bytes((200, 100, 50))) + chunk(b"tRNS", b"\0")
        self.assertEqual(self.frame("named.png", png_of(64, 64, 8, 3, [b"\0" * 64] * 64, named)).at(32, 32), GROUND)

    def test_webp_and_heic(self):
        if "WebP or HEIC" not in self.run_program(self.text_file(), *STILL, "-o", "out.png").stderr:
            self.skipTest("this build lacks the libraries")
        self.assert_quarters(self.frame("a.webp", WEBP), QUARTERS)
        self.assert_quarters(self.frame("a.heic", HEIC), QUARTERS)
        self.assert_unreadable("cut.webp", WEBP[:-8], "the WebP picture is cut off")
        self.assert_unreadable("cut.heic", HEIC[:-40], "the HEIC picture")

    def text_file(self):
        (self.directory / "text.jpg").write_text("no picture")
        return "text.jpg"

    def test_a_photograph_stands_as_it_was_held_in_png_and_behind_fill_bytes_in_jpeg(self):
        rows = [b"".join(bytes(QUARTERS[2 * (y // 32) + x // 32]) for x in range(64)) for y in range(64)]
        greys = (40, 100, 160, 220)
        plain = jpeg_bytes([[(greys[2 * (y // 4) + x // 4],) for x in range(8)] for y in range(8)], 1)
        # By the numbers of Exif, which of the stored quarters is shown at the upper left, the upper right, and below.
        orders = ("0123", "1032", "3210", "2301", "0213", "2031", "3120", "1302")
        for number, order in enumerate(orders, 1):
            with self.subTest(orientation=number):
                png = png_of(64, 64, 8, 2, rows, chunk(b"eXIf", exif(number)))
                self.assert_quarters(self.frame("a.png", png), [QUARTERS[int(i)] for i in order])
                jpeg = with_exif(plain, b"Exif\0\0" + exif(number))
                self.assert_quarters(self.frame("a.jpg", jpeg[:2] + b"\xff\xff\xff" + jpeg[2:]),
                                     [(greys[int(i)],) * 3 for i in order])

    def test_pictures_that_are_cut_off_are_named_as_such(self):
        jpeg = jpeg_bytes([[(x * 8 % 256,) for x in range(32)] for _ in range(32)], 1)
        for share in (0.9, 0.5):
            self.assert_unreadable("cut.jpg", jpeg[: int(len(jpeg) * share)], "the JPEG picture is cut off")
        bmp = bmp_bytes(flat((1, 2, 3)))
        for length in (len(bmp) - 1, len(bmp) // 2, 60):
            self.assert_unreadable("cut.bmp", bmp[:length], "the BMP picture is cut off")
        png = png_bytes(flat((1, 2, 3)))
        for length in (len(png) - 5, len(png) // 2):
            self.assert_unreadable("cut.png", png[:length], "the PNG picture is cut off")

    def test_headers_that_promise_more_than_the_file_holds_take_no_memory(self):
        huge = struct.pack(">IIBBBBB", 19000, 19000, 8, 2, 0, 0, 0)
        small = png_bytes(flat((1, 2, 3)))
        self.assert_unreadable("lies.png", small[:12] + chunk(b"IHDR", huge)[4:] + small[33:], "the PNG picture is cut off")
        jpeg = bytearray(jpeg_bytes([[(1,)] * 8] * 8, 1))
        frame = jpeg.index(b"\xff\xc0")
        jpeg[frame + 5 : frame + 9] = struct.pack(">HH", 19000, 19000)
        self.assert_unreadable("lies.jpg", jpeg, "the JPEG picture is cut off")
        bmp = bytearray(bmp_bytes(flat((1, 2, 3))))
        bmp[18:26] = struct.pack("<ii", 19000, 19000)
        self.assert_unreadable("lies.bmp", bmp, "the BMP picture is cut off")

    def test_tables_of_codes_that_overflow(self):
        forged = {
            "too many codes": b"\x10" + bytes([255] * 16) + bytes(255 * 16),
            "more codes than fit": b"\x10" + bytes([3] + [0] * 15) + bytes(3),
            "a fourth table": b"\x14" + bytes([1] + [0] * 15) + b"\0",
            "fewer symbols than codes": b"\x10" + bytes([1] + [0] * 14 + [90]) + b"\0",
        }
        for name, table in forged.items():
            with self.subTest(name):
                self.assert_unreadable("forged.jpg", jpeg_bytes([[(1,)] * 8] * 8, 1, DIFFERENCES + table),
                                       "the JPEG picture is")

    def test_more_pixels_than_are_allowed(self):
        (self.directory / "large.png").write_bytes(png_of(2000, 1001, 1, 0, [bytes(250)] * 1001))
        self.show("large.png", *STILL, "-o", "out.png", "--max-megapixels", 3)
        (self.directory / "out.png").unlink()
        self.assert_refused(["large.png", *STILL, "-o", "out.png", "--max-megapixels", 2],
                            "2000 x 1001 pixels are too many; --max-megapixels raises the limit")
        with open(self.directory / "long.bmp", "wb") as file:
            file.write(bmp_bytes(flat((1, 2, 3))))
            file.truncate(4_000_001 * 2)
        self.assert_refused(["long.bmp", *STILL, "-o", "out.png", "--max-megapixels", 2], "megabytes are too many")

    def test_all_bad_photographs_are_named_at_once_and_can_be_skipped(self):
        good = png_bytes(flat((200, 100, 50)))
        for name, data in (("1.png", good), ("2.png", good[:60]), ("3.jpg", b"text"), ("4.png", good)):
            (self.directory / name).write_bytes(data)
        arguments = ("1.png", "2.png", "3.jpg", "4.png", "5.png", *STILL, "-o", "f%d.png")
        result = self.assert_fails(arguments, "cannot read '5.png'")
        self.assertEqual([line.split("'")[1] for line in result.stderr.splitlines()], ["2.png", "3.jpg", "5.png"])

        result = self.show(*arguments, "--skip-bad")
        self.assertEqual([line.split("'")[1] for line in result.stderr.splitlines() if "cannot read" in line],
                         ["2.png", "3.jpg", "5.png"])
        self.assertEqual(len(list(self.directory.glob("f*.png"))), 2)
        self.assert_fails(["2.png", *STILL, "-o", "out.png", "--skip-bad"], "no photograph is left to show")

    def test_what_cannot_be_read_of_a_folder_is_left_out_and_named(self):
        folder = self.directory / "holiday"
        folder.mkdir()
        (folder / "1.png").write_bytes(png_bytes(flat((200, 100, 50))))
        (folder / "2.png").write_bytes(png_bytes(flat((1, 2, 3)))[:60])
        lines = self.show("holiday", *STILL, "-o", "f%d.png").stderr.splitlines()
        self.assertRegex(lines[0], "cannot read 'holiday.2.png': the PNG picture is cut off")
        self.assertEqual(lines[-2:], ["qmur-show: wrote 'f0.png'",
                                      "qmur-show: left out, since it cannot be read: 1 photograph"])
        result = self.assert_fails(["holiday", folder / "2.png", *STILL, "-o", "new.png"], "cannot read")
        self.assertEqual(len(result.stderr.splitlines()), 2)

    def test_reading_many_photographs_shows_how_far_it_has_come(self):
        (self.directory / "a.png").write_bytes(png_bytes(flat((1, 2, 3))))
        for threads in (1, 4):
            result = self.show(*["a.png"] * 20, *STILL, "--threads", threads, "--last", 0, "-o", "out.png")
            self.assertEqual([line.split(",")[0] for line in result.stderr.splitlines() if line.startswith("photo")],
                             [f"photograph {n} of 20" for n in (5, 10, 15, 20)])

    def test_a_folder_stands_in_the_order_in_which_it_was_taken(self):
        folder = self.directory / "holiday"
        folder.mkdir()
        greys = {"c.jpg": (40, "2024:07:01 10:00:00"), "a.jpg": (100, "2024:07:03 09:00:00"),
                 "b.jpg": (160, "2024:07:02 23:59:59"), "d.jpg": (220, None)}
        for name, (grey, taken) in greys.items():
            jpeg = jpeg_bytes([[(grey,)] * 8] * 8, 1)
            (folder / name).write_bytes(with_exif(jpeg, b"Exif\0\0" + exif(1, taken)) if taken else jpeg)
        (folder / "notes.txt").write_text("sunny")
        result = self.show("holiday", *STILL, "-o", "f%d.png")
        self.assertIn("'holiday' holds 1 thing that is no picture", result.stderr)
        shown = [read_png(self.directory / f"f{i}.png").at(32, 32)[0] for i in range(4)]
        for have, want in zip(shown, (40, 160, 100, 220)):
            self.assertLess(abs(have - want), 3, shown)
        (self.directory / "empty").mkdir()
        self.assert_refused(["empty", *STILL, "-o", "out.png"], "there are no pictures in this folder")

    def test_a_playlist_gives_each_photograph_its_seconds(self):
        folder = self.directory / "list"
        folder.mkdir()
        (folder / "2019 a.png").write_bytes(png_bytes(flat((200, 0, 0))))
        (folder / "b.png").write_bytes(png_bytes(flat((0, 200, 0))))
        (folder / "list.txt").write_text("# a comment\r\n\r\n1.5\t2019 a.png  \r\n- b.png\n.5 2019 a.png")
        self.show("--playlist", "list/list.txt", "--size", "64x64", "--fps", 4, "--seconds", 1, "--effects", "pan", "-o",
                  "f%02d.png")
        shown = [read_png(path).at(32, 32) for path in sorted(self.directory.glob("f*.png"))]
        self.assertEqual(shown, [(200, 0, 0)] * 6 + [(0, 200, 0)] * 4 + [(200, 0, 0)] * 2)
        for text in ("b.png", "0 b.png", "-1 b.png", "601 b.png", "1", "1e3 b.png"):
            (folder / "bad.txt").write_text("- b.png\n" + text)
            self.assert_refused(["--playlist", "list/bad.txt", *STILL, "-o", "out.png"], "line 2 is not seconds")
        self.assert_refused(["--playlist", "list/none.txt", *STILL, "-o", "out.png"], "cannot read 'list/none.txt'")

    def test_names_in_brackets_and_of_other_alphabets(self):
        (self.directory / "[a].png").write_bytes(png_bytes(flat((200, 100, 50))))
        self.assertEqual(self.frame("[a].png").at(32, 32), (200, 100, 50))
        for name in ("Ferien in Köln.png", "日本語.png"):
            self.assertEqual(self.frame(name, png_bytes(flat((200, 100, 50)))).at(32, 32), (200, 100, 50))
        result = self.show("日本語.png", *STILL, "-o", "Фильм.png")
        self.assertIn("wrote 'Фильм.png'", result.stderr)
        self.assertIn("Фильм.png", self.contents())
        self.assert_refused(["[b].png", *STILL, "-o", "out.png"], "cannot read '[b].png'")
        self.assert_refused(["日本語.png", "--effects", "[pan]", "-o", "out.png"], "there is no effect '[pan]'")


class Outputs(ShowTest):
    def setUp(self):
        super().setUp()
        for i in range(4):
            (self.directory / f"IMG_{i}.png").write_bytes(png_bytes(flat((i, 100, 50))))

    def test_a_photograph_is_never_replaced(self):
        os.link(self.directory / "IMG_0.png", self.directory / "other.png")
        photographs = ("IMG_0.png", "IMG_1.png")
        for target in ("IMG_0.png", "./IMG_0.png", "IMG_%d.png", f"../{self.directory.name}/IMG_1.png", "IMG_%01d.png"):
            self.assert_refused([*photographs, *STILL, "-o", target], "which is read")
        if not running.is_for_windows():
            self.assert_refused([*photographs, *STILL, "-o", "other.png"], "which is read")
        # Two photographs make frames 0 and 1; what has other numbers is safe.
        self.show("IMG_2.png", "IMG_3.png", *STILL, "-o", "IMG_%d.png")
        self.assertEqual(read_png(self.directory / "IMG_3.png").at(0, 0), (3, 100, 50))

    def test_two_outputs_are_never_one_file(self):
        for first, second in (("s.png", "./s.png"), ("f%d.png", "f1.png"), ("f0001.png", "f%04d.png"),
                              ("f%d.png", "f%01d.png"), ("./f%d.png", f"../{self.directory.name}/f%d.png")):
            self.assert_refused(["IMG_2.png", "IMG_3.png", *STILL, "-o", first, "-o", second], "it is one file with")
        self.show("IMG_2.png", "IMG_3.png", *STILL, "-o", "f%d.png", "-o", "f2.png", "-o", "f%04d.png")

    def test_names_of_finished_files_stand_at_the_end(self):
        result = self.show("IMG_2.png", "IMG_3.png", *STILL, "-o", "s.png", "-o", "f%d.png")
        self.assertEqual(result.stderr.splitlines()[-2:],
                         ["qmur-show: wrote 's.png'", "qmur-show: wrote 'f0.png' to 'f1.png'"])

    def test_long_names_and_names_that_are_too_long(self):
        for name in ("n" * 234 + ".png", "n" * 251 + ".png", "ü" * 125 + ".png"):
            self.show("IMG_2.png", *STILL, "-o", name)
            self.assertTrue((self.directory / name).exists())
            (self.directory / name).unlink()
        self.assert_refused(["IMG_2.png", *STILL, "-o", "n" * 252 + ".png"], "cannot write")
        self.assert_refused(["IMG_2.png", *STILL, "-o", "n" * 250 + "%04d.png"], "cannot write")


class CommandLine(ShowTest):
    def test_help_names_every_option_and_fits_eighty_columns(self):
        text = self.show("--help").stdout
        for line in text.splitlines():
            self.assertLess(len(line), 80, line)
        for option in ("output size fps seconds playlist music effects fit title subtitle caption comments seed first last "
                       "threads skip-bad max-megapixels timings profile play list version help").split():
            self.assertIn(f"--{option}", text)

    def test_seconds_and_rates_as_people_write_them(self):
        (self.directory / "a.png").write_bytes(png_bytes(flat((1, 2, 3), 16, 16)))
        for seconds, rate, frames in ((".5", "10", 5), ("2.", "10", 20), ("0.5", "12.5", 6), ("10", "30000/1001", 300),
                                      ("10", "29.97", 300), ("100", "23.976", 2398), ("1", "60/2", 30)):
            result = self.show("a.png", "--size", "16x16", "--seconds", seconds, "--fps", rate, "--effects", "pan", "-o",
                               "s.png", "--first", frames - 1)
            self.assert_refused(["a.png", "--size", "16x16", "--seconds", seconds, "--fps", rate, "--effects", "pan", "-o",
                                 "s.png", "--first", frames], f"frames 0 to {frames - 1}")
            self.assertIn("wrote", result.stderr)

    def test_timings_name_each_effect_and_count_its_frames(self):
        (self.directory / "a.png").write_bytes(png_bytes(flat((1, 2, 3), 16, 16)))
        rows = [line.split() for line in self.show("a.png", "--size", "640x360", "--fps", 10, "--seconds", 2, "--effects",
                                                   "pan,wipe,fade-out", "--timings").stdout.splitlines()]
        self.assertEqual(rows[0], ["effect", "frames", "ms/frame", "slowest"])
        frames = {row[0]: int(row[1]) for row in rows[1:]}
        # Two shots of 20 frames; of 40, a fifth of either belongs to the transition, and half of the last to the end.
        self.assertEqual(frames, {"pan": 22, "wipe": 8, "fade-out": 10, "all": 40})
        for row in rows[1:]:
            self.assertTrue(0 < float(row[2]) <= float(row[3]), row)
        times = [float(row[2]) for row in rows[1:-1]]
        self.assertEqual(times, sorted(times, reverse=True))
        self.assertEqual(self.contents(), ["a.png"])

    def test_a_profile_says_where_the_time_of_frames_shots_and_functions_goes(self):
        (self.directory / "a.png").write_bytes(png_bytes(flat((1, 2, 3), 16, 16)))
        result = self.show("a.png", "--size", "640x360", "--fps", 10, "--seconds", 2, "--effects", "pan,wipe,fade-out",
                           "--profile", "--threads", 1)
        frames, histogram, shots, functions = result.stdout.split("\n\n")
        each, half, most, slowest, longest = map(float, re.fullmatch(
            r"40 frames: (\S+) ms each; half take up to (\S+), 95 in 100 up to (\S+), the slowest, (\d+), (\S+)",
            frames).groups())
        self.assertTrue(0 < half <= most <= longest and each <= longest, frames)
        self.assertIn(slowest, range(40))
        bars = [line.split() for line in histogram.splitlines()]
        self.assertEqual(bars[0], ["ms", "frames"])
        self.assertEqual([int(bar[1]) for bar in bars[1:]], [2 ** i for i in range(len(bars) - 1)])
        self.assertEqual(sum(int(bar[2]) for bar in bars[1:]), 40)
        # Two shots of 20 frames; of 40, a fifth of either belongs to the transition, and half of the last to the end.
        parts = [(match["shot"], int(match["first"]), int(match["last"]), match["effect"]) for match in re.finditer(
            r"^(?P<shot>\d( to \d)?) +(?P<first>\d+) to (?P<last>\d+) +(?P<effect>[a-z-]+) +\d", shots, re.M)]
        self.assertEqual(parts, [("1", 0, 15, "pan"), ("1 to 2", 16, 23, "wipe"), ("2", 24, 29, "pan"),
                                 ("2", 30, 39, "fade-out")])
        if running.is_for_windows():
            self.assertEqual(functions, "This build cannot tell how long the library's functions take.\n")
            return
        rows = {match[1]: match for match in re.finditer(
            r"^(the show itself|\d+ others?|\w+) +(?:(\S+) +(\S+) +)?(\S+) +(\S+) %$", functions, re.M)}
        self.assertEqual(len(rows), len(functions.splitlines()) - 1)
        for name in ("iBltPerfect32", "iFadeOut32", "the show itself"):
            self.assertIn(name, rows)
        calls, each_call = map(float, rows["iBltPerfect32"].groups()[1:3])
        self.assertTrue(1 <= calls <= 20, calls)  # one for a photograph, and two within the transition
        milliseconds = [float(row[4]) for name, row in rows.items()]
        self.assertAlmostEqual(calls * each_call / 1000, float(rows["iBltPerfect32"][4]), delta=0.02 * each)
        self.assertAlmostEqual(sum(milliseconds), each, delta=0.05 * each)
        self.assertAlmostEqual(sum(float(row[5]) for row in rows.values()), 100, delta=2)
        self.assertEqual(self.contents(), ["a.png"])

    def test_more_frames_than_can_be_counted(self):
        (self.directory / "a.png").write_bytes(png_bytes(flat((1, 2, 3), 1, 1)))
        (self.directory / "list.txt").write_text("600 a.png\n" * 70)
        self.assert_fails(["--playlist", "list.txt", "--fps", 240, "--effects", "pan", "-o", "s.png"],
                          "the show would have more than 9999999 frames")

    def test_a_missing_ffmpeg_is_named(self):
        nowhere = {"WINEPATH": ""} if running.is_for_windows() else {"PATH": str(self.directory)}
        self.assert_refused([four_photos()[0], *FILM, "-o", "out.mp4"], "ffmpeg, which is not installed",
                            env={**os.environ, **nowhere})

    def test_options_that_are_not_as_they_should_be(self):
        for arguments, reason in ((["--size"], "--size lacks its value"), (["--fps", "--seed", "1"], "--fps lacks"),
                                  (["--list=all"], "--list takes no value"), (["--fps", "5", "--fps=6"], "stands twice"),
                                  (["-x"], "no option '-x'"), (["--seconds", "music", "-o", "a.png"], "needs --music"),
                                  (["--no\nsense"], "no option '--no\\nsense'")):
            self.assert_refused(arguments, reason)


class Film(ShowTest):
    """Where ffmpeg is called for."""

    def test_an_encoder_that_fails_in_words_or_without_keeps_the_old_film(self):
        said = "cannot write 'out.mp4': ffmpeg failed (no such encoder)"
        scripts = {
            "at once": ("echo 'first words' >&2; echo 'no such encoder' >&2; exit 1", said),
            "in between": ("head -c 100000 >/dev/null; echo 'no such encoder' >&2; exit 1", said),
            "at the end": ("cat >/dev/null; echo 'no such encoder' >&2; exit 1", said),
            "says so": ('"$real" "$@"; echo "[out#0/mp4 @ 0x1] [error] Error writing trailer: No space left on device" >&2',
                        "Error writing trailer: No space left on device"),
            "says nothing and is cut": ('"$real" "$@"; truncate -s 900 "$file"', "it was written, but"),
            "says nothing and is empty": ('cat >/dev/null', "it was written, but"),
            "lacks frames": ('head -c 600000 | "$real" "$@" 2>/dev/null; cat >/dev/null', "it was written, but holds 10 of 20"),
        }
        (self.directory / "out.mp4").write_text("old")
        for name, (script, reason) in scripts.items():
            with self.subTest(name):
                self.assert_fails([*four_photos()[:2], *FILM, "-o", "out.mp4"], reason, env=self.fake_ffmpeg(script))

    def test_a_full_disk_keeps_the_old_file(self):
        # A limit on the size of files is as good as a full disk, and every user may set it.
        film = ("--size", "320x180", "--fps", 30, "--seconds", 2, "--effects", "pan")
        for name, arguments, sizes in (("out.mp4", film, (4096, 40000, 100000)), ("out.png", FILM, (5000,))):
            (self.directory / name).write_text("old")
            for size in sizes:
                self.assert_fails([*four_photos()[:2], *arguments, "-o", name], f"cannot write '{name}': ",
                                  **limited(resource.RLIMIT_FSIZE, size))

    def test_two_outputs_that_do_not_exist_yet_are_never_one_film(self):
        self.assert_refused([four_photos()[0], *FILM, "-o", "s.mp4", "-o", "./s.mp4"], "it is one file with")

    def test_a_gif_has_fifty_frames_a_second_at_most(self):
        result = self.show(four_photos()[0], "--size", "33x17", "--fps", 100, "--seconds", 1, "--effects", "pan", "-o",
                           "out.gif")
        self.assertIn(("width", "33"), self.probe("out.gif"))
        self.assertIn("qmur-show: 'out.gif' shows 50 frames a second", result.stderr)
        self.assertIn(("nb_read_packets", "50"), self.probe("out.gif"))
        self.assertIn(("duration", "1.000000"), self.probe("out.gif"))

    def test_music_lasts_as_the_film_or_the_film_as_the_music(self):
        subprocess.run(["ffmpeg", "-loglevel", "error", "-f", "lavfi", "-i", "sine=d=1.5", "tune.wav"], cwd=self.directory,
                       check=True)
        for kind in ("mp4", "webm"):
            self.show(*four_photos()[:2], *FILM, "--music", "tune.wav", "-o", f"out.{kind}")
            found = self.probe(f"out.{kind}")
            self.assertEqual([value for name, value in found if name == "codec_type"], ["video", "audio"])
            self.assertAlmostEqual(float([value for name, value in found if name == "duration"][-1]), 2, delta=0.1)
        # It fades: the last tenth of a second is quieter than the first.
        volume = [self.volume("out.mp4", start) for start in (0.2, 1.9)]
        self.assertLess(volume[1], volume[0] - 10)
        self.show(*four_photos()[:2], *FILM[:4], "--seconds", "music", "--effects", "pan", "--music", "tune.wav", "-o",
                  "short.mp4")
        self.assertIn(("nb_read_packets", "16"), self.probe("short.mp4"))  # twice 0.75 s of 10 frames, rounded
        self.assert_refused([four_photos()[0], *FILM, "--music", four_photos()[2], "-o", "new.mp4"], "cannot read")
        self.assert_refused([four_photos()[0], *FILM, "--music", "none.mp3", "-o", "new.mp4"], "cannot read 'none.mp3'")

    def volume(self, name, start):
        text = subprocess.run(["ffmpeg", "-hide_banner", "-ss", str(start), "-t", "0.1", "-i", name, "-af", "volumedetect",
                               "-vn", "-f", "null", "-"], cwd=self.directory, capture_output=True, text=True).stderr
        return float(text.split("mean_volume: ")[1].split()[0])


class WindowsAlone(ShowTest):
    """With a stand-in for ffmpeg, which writes down how much it was fed."""

    def environment(self, **more):
        # What it is called under an emulator, and where there is none.
        return {**os.environ, "WINEPATH": "Z:" + str(running.tools).replace("/", "\\"),
                "PATH": f"{running.tools}{os.pathsep}{os.environ['PATH']}", **more}

    def test_a_film_goes_through_ffmpeg_where_it_is_found(self):
        for name in ("out.mp4", "Ein 'Фильм'.webm"):
            self.show(*four_photos()[:2], *FILM, "-o", name, env=self.environment())
            self.assertEqual((self.directory / name).read_text(), f"160x90 {20 * 160 * 90 * 4}\n")
        self.assertEqual(len(self.contents()), 2)

    def test_an_error_that_ffmpeg_reports_as_a_success_keeps_the_old_film(self):
        (self.directory / "out.mp4").write_text("old")
        self.assert_fails([*four_photos()[:2], *FILM, "-o", "out.mp4"],
                          "cannot write 'out.mp4': ffmpeg failed (Error writing trailer)",
                          env=self.environment(STAND_IN_COMPLAINS="yes"))

    def test_wildcards_stand_for_the_files_that_match(self):
        for i, name in enumerate(("bä.png", "a.png", "c.jpg")):
            (self.directory / name).write_bytes(png_bytes(flat((i, 0, 0))))
        self.show("*.png", *STILL, "-o", "f%d.png", "--max-megapixels", 1)
        self.assertEqual([read_png(self.directory / f"f{i}.png").at(32, 32)[0] for i in range(2)], [1, 0])
        self.assert_refused(["*.bmp", *STILL, "-o", "out.png"], "cannot read '*.bmp'")


class Surroundings(ShowTest):
    """What a system other than Windows may start the program with."""

    def test_closed_standard_files(self):
        for closed in ("0<&-", "1>&-", "2>&-", "0<&- 1>&-", "0<&- 2>&-", "0<&- 1>&- 2>&-"):
            line = subprocess.list2cmdline(command(*four_photos()[:2], *FILM, "-o", "out.mp4", "-o", "s.png"))
            status = subprocess.run(["sh", "-c", f"{line} {closed}"], cwd=self.directory, stderr=subprocess.DEVNULL,
                                    timeout=120).returncode
            self.assertEqual(status, 0, closed)
            read_png(self.directory / "s.png")
            subprocess.run(["ffmpeg", "-loglevel", "error", "-xerror", "-i", "out.mp4", "-f", "null", "-"],
                           cwd=self.directory, check=True)
            for name in ("out.mp4", "s.png"):
                self.assertNotIn(b"frame ", (self.directory / name).read_bytes())
                (self.directory / name).unlink()

    def test_a_list_that_does_not_arrive(self):
        for option in ("--list", "--help", "--version"):
            with open("/dev/full", "w") as full:
                result = subprocess.run(command(option), stdout=full, stderr=subprocess.PIPE, text=True)
            self.assertEqual(result.returncode, 2)
            self.assertIn("cannot write to standard output", result.stderr)

    def start(self, left=frozenset(), **options):
        """Returns once the run writes, and what was left before is gone."""
        process = subprocess.Popen(command(*four_photos(), "--size", "320x180", "--seconds", 600, "-o", "out.mp4"),
                                   cwd=self.directory, stderr=subprocess.PIPE, text=True, **options)

        def writes():
            with contextlib.suppress(FileNotFoundError):  # the attempt to write, which comes first, is soon gone
                return any(path.stat().st_size and path.name not in left
                           for path in self.directory.glob(".out.mp4.*.unfinished")) and not left & set(self.contents())

        self.wait_for(writes)
        return process

    def test_every_signal_that_can_be_caught_leaves_nothing(self):
        for name in ("SIGHUP", "SIGINT", "SIGQUIT", "SIGTERM", "SIGALRM", "SIGUSR1", "SIGUSR2", "SIGXCPU", "SIGVTALRM",
                     "SIGPROF"):
            (self.directory / "out.mp4").write_text("old")
            process = self.start()
            process.send_signal(getattr(signal, name))
            _, errors = process.communicate(timeout=20)
            self.assertEqual(process.returncode, 128 + getattr(signal, name), name)
            self.assertEqual(errors.splitlines()[-1], "qmur-show: interrupted")
            self.assertEqual(self.contents(), ["out.mp4"], name)
            self.assertEqual((self.directory / "out.mp4").read_text(), "old", name)

    def test_what_was_ignored_before_stays_ignored(self):
        process = self.start(preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_IGN))
        process.send_signal(signal.SIGINT)
        time.sleep(0.5)
        self.assertIsNone(process.poll())
        process.terminate()
        process.communicate(timeout=20)
        self.assertEqual(process.returncode, 128 + signal.SIGTERM)

    def test_what_a_kill_leaves_is_removed_by_the_next_run_and_what_another_run_writes_is_not(self):
        killed = self.start()
        killed.kill()
        killed.communicate()
        left = set(self.contents())
        self.assertEqual(len(left), 1)
        alive = self.start(left)
        others = set(self.contents())
        self.assertTrue(left.isdisjoint(others), "what was left is gone")
        (self.directory / ".out.mp4.notes.unfinished").write_text("a person's own file")
        self.show(four_photos()[0], *FILM, "-o", "out.mp4")
        self.assertEqual(set(self.contents()), others | {"out.mp4", ".out.mp4.notes.unfinished"})
        alive.terminate()
        alive.communicate(timeout=20)

    def test_frames_that_a_kill_left_are_removed_by_the_next_run(self):
        (self.directory / ".f%d.png.123.unfinished").write_text("half a frame")
        self.show(four_photos()[0], *STILL, "-o", "f%d.png")
        self.assertEqual(self.contents(), ["f0.png"])

    def test_only_regular_files_are_read_and_replaced(self):
        os.mkfifo(self.directory / "pipe.png")
        os.symlink("/dev/zero", self.directory / "zero.png")
        for name in ("/dev/zero", "/dev/null", "/dev/stdin", "pipe.png", "zero.png"):
            self.assert_refused([name, *STILL, "-o", "out.png"], "it is no regular file")
        for name in ("pipe.png", "zero.png"):
            self.assert_refused([four_photos()[0], *STILL, "-o", name], "it is no regular file")

    def test_a_link_stays_and_a_mode_stays(self):
        (self.directory / "films").mkdir()
        target = self.directory / "films" / "real.png"
        target.write_text("old")
        target.chmod(0o640)
        os.symlink("films/real.png", self.directory / "link.png")
        os.symlink("films/new.png", self.directory / "dangling.png")
        self.show(four_photos()[0], *STILL, "-o", "link.png", "-o", "dangling.png")
        self.assertTrue((self.directory / "link.png").is_symlink())
        self.assertTrue((self.directory / "dangling.png").is_symlink())
        read_png(target)
        self.assertEqual(target.stat().st_mode & 0o777, 0o640)
        read_png(self.directory / "films" / "new.png")
        mask = os.umask(0)
        os.umask(mask)
        self.assertEqual((self.directory / "films" / "new.png").stat().st_mode & 0o777, 0o666 & ~mask)

    def test_a_file_that_may_not_be_written_to_stays(self):
        target = self.directory / "out.png"
        target.write_text("precious")
        target.chmod(0o444)
        self.assert_refused([four_photos()[0], *STILL, "-o", "out.png"], "it may not be written to")

    def test_a_line_break_in_a_name_breaks_no_line(self):
        self.assert_refused(["no\nsuch.png", *STILL, "-o", "out.png"], "cannot read 'no\\nsuch.png'")
        self.assert_refused([four_photos()[0], *STILL, "-o", "no\nsuch"], "cannot write 'no\\nsuch'")
        result = self.show(four_photos()[0], *STILL, "-o", "a\nb.png")
        self.assertEqual(result.stderr.splitlines()[-1], "qmur-show: wrote 'a\\nb.png'")

    def test_without_fonts_a_title_is_warned_of(self):
        (self.directory / "fonts.conf").write_text("<fontconfig></fontconfig>")
        environment = {**os.environ, "FONTCONFIG_FILE": str(self.directory / "fonts.conf")}
        arguments = (four_photos()[0], "--size", "64x64", "--fps", 1, "--seconds", 1, "--title", "x", "-o", "s.png")
        self.assertIn("there are no fonts", self.show(*arguments, env=environment).stderr)

    def test_memory_does_not_grow_with_the_number_of_photographs(self):
        if running.is_sanitized():
            self.skipTest("a sanitizer keeps what was freed")
        names = [f"{i}.png" for i in range(40)]
        for i, name in enumerate(names):  # 100 x 100 pixels, 40 KB in memory, are nothing; these are 2 MB each
            (self.directory / name).write_bytes(png_bytes(flat((i, i, i), 127, 4100)))
        arguments = (*STILL, "-o", "s.png", "--threads", 1)
        self.assertLess(self.peak(*names, *arguments) - self.peak(*names[:8], *arguments), 8 * 1024)

    def test_as_many_threads_draw_as_there_is_memory_for(self):
        if running.is_sanitized():
            self.skipTest("a sanitizer needs room for its own books")
        # The stacks of 64 threads alone take 512 MB.
        arguments = (four_photos()[0], "--size", "320x180", "--fps", 32, "--seconds", 2, "--effects", "pan", "-o")
        want = self.frames("want", *arguments[:-1])
        self.assertEqual(len(want), 64)
        for megabytes in range(150, 601, 50):
            (self.directory / str(megabytes)).mkdir()
            self.show(*arguments, f"{megabytes}/%d.png", "--threads", 64, **limited(resource.RLIMIT_AS, megabytes << 20))
            self.assertEqual({int(file.stem): sha256(file) for file in (self.directory / str(megabytes)).iterdir()}, want)


if __name__ == "__main__":
    running.run_tests([Inputs, Outputs, CommandLine], [Film, Surroundings], [WindowsAlone])
