#!/usr/bin/env python3
"""Runs qmur-show as a person would and looks at what it draws.

    show_test.py --program build/linux/bin/qmur-show --photos tests/show/photos [--emulator cmake/under-wine] [name of a test ...]
    show_test.py --program ... --photos ... --accept     writes the checksums of the frames down anew
"""

import fcntl
import hashlib
import math
import os
import pty
import signal
import struct
import subprocess
import termios
import time
from pathlib import Path

import running
from pictures import Picture, bmp_bytes, png_bytes, read_png, with_orientation
from running import ShowTest, bundled_photos, command, four_photos, sha256

CHECKSUMS = Path(__file__).with_name("frames.sha256")

# Pinned here, since what the default show consists of may change.
EFFECTS = "pan,cross-fade,snow,iris,pan,flash,pan,spin,pan,wipe,pan,fade-out"
OTHER_EFFECTS = ("bubbles,balls,night,sparks,wave,landscape,winter,"
                 "flood,pen,cylinder,roll,turn-page,flip,fly-in,triangles,dissolve,brush,cube,shatter")

class CommandLine(ShowTest):
    def effects(self):
        return [line.split(maxsplit=2) for line in self.show("--list").stdout.splitlines()]

    def test_list_prints_each_effect_with_its_kind_and_a_description(self):
        effects = self.effects()
        for effect in effects:
            self.assertEqual(len(effect), 3, effect)
        kinds = {name: kind for name, kind, _ in effects}
        self.assertEqual(len(kinds), len(effects), "a name stands twice")
        for kind, names in (("scene", "pan snow"), ("transition", "cross-fade wipe iris spin flash"), ("ending", "fade-out")):
            self.assertEqual({kinds[name] for name in names.split()}, {kind})

    def test_version_is_a_number(self):
        self.assertRegex(self.show("--version").stdout, r"^qmur-show [0-9]+\.[0-9]+\.[0-9]+\n$")

    def test_without_photographs_the_bundled_ones_are_shown(self):
        alone = self.frames("alone", "--size", "96x54", "--fps", 2, "--last", 3)
        named = self.frames("named", *bundled_photos(), "--size", "96x54", "--fps", 2, "--last", 3)
        self.assertEqual(alone, named)
        self.assertEqual(list(alone), [0, 1, 2, 3])


class Frames(ShowTest):
    small = ("--size", "160x90", "--fps", 6, "--seconds", 2)

    def every_effect(self):
        return ",".join(line.split()[0] for line in self.show("--list").stdout.splitlines())

    def test_one_and_three_threads_give_the_same_bytes_with_every_effect(self):
        arguments = (*four_photos(), "--size", "160x90", "--fps", 6, "--seconds", 2, "--effects", self.every_effect())
        one = self.frames("one", *arguments, "--threads", 1)
        three = self.frames("three", *arguments, "--threads", 3)
        self.assertGreater(len(one), 4 * 12)
        self.assertEqual([frame for frame in one if one[frame] != three.get(frame)], [])

    def test_every_effect_draws_frames_of_any_size(self):
        for size in ("16x16", "17x61", "401x33"):
            frames = self.frames(size, *four_photos(), "--size", size, "--fps", 3, "--seconds", 2, "--effects",
                                 self.every_effect())
            width, height = map(int, size.split("x"))
            picture = read_png(self.directory / size / f"{len(frames) // 2:04d}.png")
            self.assertEqual((picture.width, picture.height), (width, height))

    def test_a_frame_depends_on_no_other_frame(self):
        whole = self.frames("whole", *four_photos(), *self.small, "--effects", EFFECTS)
        for frame in range(11, len(whole), 12):
            alone = self.frames(f"frame{frame}", *four_photos(), *self.small, "--effects", EFFECTS, "--first", frame,
                                "--last", frame)
            self.assertEqual(alone, {frame: whole[frame]})

    def test_the_seed_governs_what_is_left_to_chance(self):
        arguments = (*four_photos()[:2], *self.small, "--effects", "snow", "--last", 3)
        first = self.frames("first", *arguments, "--seed", 11)
        again = self.frames("again", *arguments, "--seed", 11)
        other = self.frames("other", *arguments, "--seed", 12)
        self.assertEqual(first, again)
        for frame in first:
            self.assertNotEqual(first[frame], other[frame])

    def test_each_photograph_stands_for_its_seconds(self):
        frames = self.frames("f", *four_photos()[:3], "--size", "32x18", "--fps", 5, "--seconds", 1.2, "--effects",
                             "cross-fade")
        self.assertEqual(list(frames), list(range(3 * 6)))

    def test_photographs_come_round_until_every_effect_had_its_turn(self):
        frames = self.frames("f", *four_photos()[:1], "--size", "32x18", "--fps", 4, "--seconds", 1, "--effects",
                             "cross-fade,wipe,iris")
        self.assertEqual(len(frames), 4 * 4)

    def test_first_and_last_choose_frames_of_the_whole(self):
        arguments = (*four_photos()[:2], *self.small, "--effects", EFFECTS)
        whole = self.frames("whole", *arguments, "--last", 20)
        part = self.frames("part", *arguments, "--first", 9, "--last", 13)
        self.assertEqual(part, {frame: whole[frame] for frame in range(9, 14)})
        self.assertEqual(list(self.frames("end", *arguments, "--first", 70)), [70, 71])

    def test_the_show_moves_and_ends_in_black(self):
        frames = self.frames("f", *four_photos()[:2], *self.small, "--effects", "pan,cross-fade,fade-out")
        self.assertEqual(len(set(frames.values())), len(frames))
        last = read_png(self.directory / "f" / "0023.png")
        self.assertEqual(set(last.pixels), {(0, 0, 0)})

    def test_a_still_photograph_of_one_colour_stays_that_colour(self):
        colour = (200, 100, 50)
        for size in (1, 40, 700):
            (self.directory / "flat.png").write_bytes(png_bytes(Picture(size, size, [colour] * size * size)))
            self.show("flat.png", "--fit", "cover", "--size", "64x36", "--fps", 1, "--effects", "pan", "-o", "out%d.png")
            self.assertEqual(set(read_png(self.directory / "out0.png").pixels), {colour})

    def test_frames_are_those_that_were_written_down(self):
        self.assertEqual(render_checksums(self), CHECKSUMS.read_text())


def exact_photos(test):
    """PNG files: a JPEG file's pixels differ a little from decoder to decoder."""
    made = {
        "waves.png": lambda x, y: (128 + 127 * math.sin(x / 9) * math.cos(y / 14), x * 255 / 383, 40 + y * 200 / 255),
        "tiles.png": lambda x, y: (255 * ((x // 24 + y // 24) % 2), (x * y) % 256, 90 + 120 * ((x ^ y) & 32) / 32),
    }
    for name, colour in made.items():
        pixels = [tuple(map(int, colour(x, y))) for y in range(256) for x in range(384)]
        (test.directory / name).write_bytes(png_bytes(Picture(384, 256, pixels)))
    return [*four_photos()[:2], *made]


def render_checksums(test):
    """Frames of every effect but the title, whose letters are the system's; equal in every build."""
    runs = (
        ("160x90", 1, EFFECTS, [[frame, frame + 5] for frame in range(3, 54, 10)]),
        ("160x90", 3, OTHER_EFFECTS, moments_of_shots(18)),
        ("75x131", 7, OTHER_EFFECTS, moments_of_shots(18)),
    )
    lines = []
    for size, seed, effects, chosen in runs:
        frames = test.frames(f"{size}-{seed}", *exact_photos(test), "--size", size, "--fps", 2, "--seconds", 4.5, "--seed",
                             seed, "--effects", effects)
        for some in chosen:
            sums = [frames[frame] for frame in some if frame in frames]
            if sums:
                folded = hashlib.sha256("".join(sums).encode()).hexdigest()
                lines.append(f"{folded}  {size} seed {seed} frames {' '.join(map(str, some[: len(sums)]))}\n")
    return "".join(lines)


def moments_of_shots(count):
    """The middle of each shot of nine frames, and the two frames of the transition behind it."""
    return [[9 * shot + frame for frame in (4, 8, 9)] for shot in range(count)]


class Photographs(ShowTest):
    def picture(self):
        return Picture(37, 23, [(x * 6, y * 11, (x * y) % 256) for y in range(23) for x in range(37)])

    def test_png_and_bmp_of_the_same_pixels_give_the_same_frames(self):
        (self.directory / "a.png").write_bytes(png_bytes(self.picture()))
        (self.directory / "a.bmp").write_bytes(bmp_bytes(self.picture()))
        arguments = ("--size", "64x36", "--fps", 2, "--seconds", 1, "--effects", "pan")
        self.assertEqual(self.frames("png", "a.png", *arguments), self.frames("bmp", "a.bmp", *arguments))

    def test_a_photograph_stands_as_the_camera_was_held(self):
        # Where the stored first row and first column belong, for each orientation that Exif knows.
        sides = ["top left", "top right", "bottom right", "bottom left", "left top", "right top", "right bottom",
                 "left bottom"]
        quarters = {(0, 0): (220, 30, 30), (0, 1): (30, 200, 30), (1, 0): (30, 30, 220), (1, 1): (230, 230, 230)}
        stored = Picture(64, 64, [quarters[(y // 32, x // 32)] for y in range(64) for x in range(64)])
        (self.directory / "stored.png").write_bytes(png_bytes(stored))
        subprocess.run(["ffmpeg", "-loglevel", "error", "-i", "stored.png", "-q:v", "2", "stored.jpg"],
                       cwd=self.directory, check=True)
        jpeg = (self.directory / "stored.jpg").read_bytes()
        for orientation, places in enumerate(sides, 1):
            (self.directory / "photo.jpg").write_bytes(with_orientation(jpeg, orientation))
            self.show("photo.jpg", "--size", "64x64", "--fps", 1, "--effects", "pan", "-o", "out%d.png")
            frame = read_png(self.directory / "out0.png")
            first_row, first_column = places.split()
            for (row, column), colour in quarters.items():
                edges = {first_row if row == 0 else opposite(first_row),
                         first_column if column == 0 else opposite(first_column)}
                shown = frame.at(8 if "left" in edges else 55, 8 if "top" in edges else 55)
                for have, want in zip(shown, colour):
                    self.assertLess(abs(have - want), 25, f"orientation {orientation}: {shown} for {colour}")


def opposite(side):
    return {"top": "bottom", "bottom": "top", "left": "right", "right": "left"}[side]


class ContactSheet(ShowTest):
    gap = 16

    def test_the_sheet_holds_its_pictures_in_rows_of_four_with_even_margins(self):
        arguments = (*four_photos(), "--size", "64x36", "--fps", 10, "--seconds", 1, "--effects", EFFECTS)
        self.show(*arguments, "-o", "sheet.png", "-o", "%04d.png")
        sheet = read_png(self.directory / "sheet.png")
        self.assertEqual((sheet.width, sheet.height), (4 * (64 + self.gap) + self.gap, 5 * (36 + self.gap) + self.gap))
        # Six shots of ten frames each: the middles of twenty stretches of three frames.
        inside = set()
        for place in range(20):
            left = self.gap + place % 4 * (64 + self.gap)
            top = self.gap + place // 4 * (36 + self.gap)
            frame = read_png(self.directory / f"{3 * place + 1:04}.png")
            self.assertEqual(sheet.cut(left, top, 64, 36), frame, f"picture {place}")
            inside |= {(x, y) for x in range(left - 1, left + 65) for y in range(top - 1, top + 37)}
        outside = {sheet.at(x, y) for x in range(sheet.width) for y in range(sheet.height) if (x, y) not in inside}
        self.assertEqual(len(outside), 1)

    def test_pictures_are_at_most_320_by_240_pixels(self):
        for size, (width, height) in {"1280x720": (320, 180), "720x1440": (120, 240), "2560x16": (320, 2)}.items():
            self.show(*four_photos()[:1], "--size", size, "--fps", 2, "--seconds", 1, "--effects", "pan", "-o", "s.png")
            sheet = read_png(self.directory / "s.png")
            self.assertEqual((sheet.width, sheet.height),
                             (2 * (width + self.gap) + self.gap, height + 2 * self.gap))

    def test_a_reduced_picture_keeps_its_mean_colour(self):
        self.show(*four_photos()[:1], "--size", "1280x720", "--fps", 1, "--seconds", 1, "--effects", "pan", "-o", "s.png",
                  "-o", "%d.png")
        sheet = read_png(self.directory / "s.png").cut(self.gap, self.gap, 320, 180)
        frame = read_png(self.directory / "0.png")
        for channel in range(3):
            small = sum(pixel[channel] for pixel in sheet.pixels) / len(sheet.pixels)
            large = sum(pixel[channel] for pixel in frame.pixels) / len(frame.pixels)
            self.assertLess(abs(small - large), 2.5)


class Refusals(ShowTest):
    def base(self, **changes):
        arguments = {"size": "160x90", "fps": 2, "seconds": 1, **changes}
        flat = [part for name, value in arguments.items() for part in (f"--{name}", value)]
        return [four_photos()[0], *flat]

    def test_a_photograph_that_cannot_be_read(self):
        (self.directory / "text.jpg").write_text("no picture")
        (self.directory / "empty.png").write_bytes(b"")
        (self.directory / "cut.png").write_bytes(four_photos()[0].read_bytes()[:20000])
        (self.directory / "folder").mkdir()
        huge = struct.pack(">IIBBBBB", 1 << 20, 1 << 20, 8, 2, 0, 0, 0)
        (self.directory / "huge.png").write_bytes(png_bytes(Picture(1, 1, [(1, 2, 3)]))[:16] + huge)
        for name, reason in (("missing.jpg", "cannot read 'missing.jpg'"), ("text.jpg", "it is no JPEG, PNG"),
                             ("empty.png", "it is no JPEG, PNG"), ("cut.png", "the PNG picture is cut off"),
                             ("folder", "there are no pictures in this folder"),
                             ("huge.png", "the PNG picture is cut off")):
            self.assert_refused([four_photos()[0], name, "-o", "out.png"], reason)

    def test_effects_that_do_not_exist_or_do_not_go_together(self):
        self.assert_refused([*self.base(effects="pan,wobble"), "-o", "out.png"], "'wobble'")
        self.assert_refused([*self.base(effects="fade-out,fade-out"), "-o", "out.png"], "second ending")

    def test_targets_that_cannot_be_written(self):
        (self.directory / "folder.png").mkdir()
        for target, reason in (("nowhere/out.png", "cannot write 'nowhere"), ("nowhere/%d.png", "cannot write 'nowhere"),
                               ("folder.png", "it is a directory"), ("out.avi", "must end in"), ("out", "must end in"),
                               ("%d-%d.png", "one number"), ("%s.png", "one number"), ("100%.png", "one number")):
            self.assert_refused([*self.base(), "-o", target], reason)
        self.assert_refused([*self.base(), "-o", "good.png", "-o", "nowhere/bad.png"], "cannot write 'nowhere")
        self.assert_refused(self.base(), "nothing to write")

    def test_a_directory_that_may_not_be_written_to(self):
        if os.geteuid() == 0:
            target = Path("/proc/out.png")  # refuses everybody
        else:
            (self.directory / "sealed").mkdir(mode=0o555)
            target = self.directory / "sealed" / "out.png"
        self.assert_refused([*self.base(), "-o", target], "cannot write")

    def test_sizes_without_sense(self):
        for size in ("0x0", "-160x90", "160x0", "15x90", "7681x90", "99999x99999", "1000000000x1"):
            self.assert_refused([*self.base(size=size), "-o", "out.png"], f"--size {size}")
        for size in ("160", "160x", "x90", "axb", "160x90x2", ""):
            self.assert_refused([*self.base(size=size), "-o", "out.png"], "is no size")
        for name in ("out.mp4", "out.webm"):
            self.assert_refused([*self.base(size="161x90"), "-o", name], "161x90 is odd")
            self.assert_refused([*self.base(size="160x91"), "-o", name], "160x91 is odd")

    def test_numbers_without_sense(self):
        for name, values in {
            "fps": (0, -1, 241, "fast", "30/0", "30/-1", "1/2", "1e3", ""),
            "seconds": (0, -2, "0.0", 601, "long", "1e3", "nan", ""),
            "threads": (0, -1, 65, "all", ""),
            "seed": (-1, "x", "1234567890123456789", ""),
        }.items():
            for value in values:
                self.assert_refused([*self.base(**{name: value}), "-o", "out.png"], f"--{name} {value}")

    def test_ranges_that_contradict_themselves_or_the_show(self):
        self.assert_refused([*self.base(first=1, last=0), "-o", "out.png"], "--first 1 is behind --last 0")
        arguments = {"effects": "pan"}  # one photograph, one second, two frames
        self.assert_refused([*self.base(first=2, **arguments), "-o", "out.png"], "frames 0 to 1")
        self.assert_refused([*self.base(last=2, **arguments), "-o", "out.png"], "frames 0 to 1")
        self.assert_refused([*self.base(first=-1), "-o", "out.png"], "--first -1")
        self.assert_refused([*self.base(last="end"), "-o", "out.png"], "--last end")

    def test_options_that_do_not_exist(self):
        self.assert_refused([*self.base(), "--sharp", "-o", "out.png"], "--sharp")


class Progress(ShowTest):
    def test_plain_lines_where_nobody_watches(self):
        result = self.show(*four_photos()[:2], "--size", "64x36", "--fps", 20, "--seconds", 2, "-o", "out%d.png",
                           "--effects", "pan")
        self.assertEqual([line.split(",")[0] for line in result.stderr.splitlines()],
                         [f"frame {n} of 80" for n in (20, 40, 60, 80)] +
                         ["qmur-show: wrote 'out0.png' to 'out79.png'"])
        self.assertEqual(result.stdout, "")


class Video(ShowTest):
    arguments = ("--size", "160x90", "--fps", 10, "--seconds", 1, "--effects", "pan,cross-fade,fade-out")

    def probe(self, name):
        fields = "codec_name,width,height,nb_read_frames,r_frame_rate,pix_fmt"
        result = subprocess.run(
            ["ffprobe", "-loglevel", "error", "-count_frames", "-show_entries", f"stream={fields}", "-of",
             "default=noprint_wrappers=1", name], cwd=self.directory, capture_output=True, text=True, check=True)
        return dict(line.split("=") for line in result.stdout.splitlines())

    def test_each_kind_of_video_holds_all_frames(self):
        for name, codec in (("out.mp4", "h264"), ("out.webm", "vp9"), ("out.gif", "gif")):
            self.show(*four_photos()[:2], *self.arguments, "-o", name)
            stream = self.probe(name)
            self.assertEqual((stream["codec_name"], stream["width"], stream["height"], stream["r_frame_rate"],
                              stream["nb_read_frames"]), (codec, "160", "90", "10/1", "20"))
        self.assertEqual(self.contents(), ["out.gif", "out.mp4", "out.webm"])

    def test_a_video_shows_the_frames_in_their_colours_and_order(self):
        self.show(*four_photos()[:2], *self.arguments, "-o", "out.mp4", "-o", "%d.png")
        raw = subprocess.run(["ffmpeg", "-loglevel", "error", "-i", "out.mp4", "-vf",
                              "scale=in_color_matrix=bt709:in_range=tv", "-pix_fmt", "rgb24", "-f", "rawvideo", "-"],
                             cwd=self.directory, capture_output=True, check=True).stdout
        size = 160 * 90 * 3
        self.assertEqual(len(raw), 20 * size)
        for frame in (0, 10, 14, 19):
            expected = bytes(value for pixel in read_png(self.directory / f"{frame}.png").pixels for value in pixel)
            difference = sum(abs(a - b) for a, b in zip(raw[frame * size : (frame + 1) * size], expected)) / size
            self.assertLess(difference, 5, f"frame {frame}")

    def test_a_gif_may_be_odd(self):
        self.show(four_photos()[0], "--size", "33x17", "--fps", 2, "--seconds", 1, "-o", "out.gif", "--effects", "pan")
        self.assertEqual(self.probe("out.gif")["width"], "33")

    def test_a_finished_video_takes_the_place_of_an_older_file(self):
        (self.directory / "out.mp4").write_text("old")
        self.show(four_photos()[0], *self.arguments, "-o", "out.mp4")
        self.assertEqual(self.probe("out.mp4")["codec_name"], "h264")

    def fake_ffmpeg(self, script):
        tools = self.directory / "tools"
        tools.mkdir(exist_ok=True)
        (tools / "ffmpeg").write_text(f"#!/bin/sh\n{script}\n")
        (tools / "ffmpeg").chmod(0o755)
        return {**os.environ, "PATH": f"{tools}:{os.environ['PATH']}"}

    def test_a_missing_ffmpeg_is_named(self):
        (self.directory / "empty").mkdir()
        self.assert_refused([four_photos()[0], *self.arguments, "-o", "out.mp4"], "ffmpeg, which is not installed",
                            env={**os.environ, "PATH": str(self.directory / "empty")})

    def test_a_failing_ffmpeg_is_reported_with_its_last_words(self):
        scripts = {
            "at once": "echo 'first words' >&2; echo 'no such encoder' >&2; exit 1",
            "in between": "head -c 100000 >/dev/null; echo 'no such encoder' >&2; exit 1",
            "at the end": "cat >/dev/null; echo 'no such encoder' >&2; exit 1",
        }
        for moment, script in scripts.items():
            environment = self.fake_ffmpeg(script)
            with self.subTest(moment):
                before = self.contents()
                result = self.run_program(*four_photos()[:2], *self.arguments, "-o", "out.mp4", env=environment)
                self.assertEqual(result.returncode, 2)
                self.assertEqual(result.stderr.splitlines()[-1],
                                 "qmur-show: cannot write 'out.mp4': ffmpeg failed (no such encoder)")
                self.assertEqual(self.contents(), before)

    def test_an_interrupt_ends_a_run_whose_ffmpeg_does_not_listen(self):
        environment = self.fake_ffmpeg("exec sleep 300")
        process = subprocess.Popen(command(*four_photos(), "--size", "640x360", "-o", "out.mp4"), cwd=self.directory,
                                   stderr=subprocess.DEVNULL, env=environment)
        self.wait_for(lambda: list(self.directory.glob(".out.mp4.*.unfinished")))
        time.sleep(1)
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(timeout=20), 128 + signal.SIGTERM)
        self.assertEqual(self.contents(), ["tools", "tools/ffmpeg"])


class Terminal(ShowTest):
    def states(self, columns):
        """What the program writes to a terminal of so many columns, one state of the bar after the other."""
        ours, theirs = pty.openpty()
        fcntl.ioctl(theirs, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
        process = subprocess.Popen(
            command(*four_photos()[:2], "--size", "160x90", "--fps", 20, "--effects", "pan", "-o", "out%d.png"),
            cwd=self.directory, stderr=theirs, env={**os.environ, "TERM": "xterm"})
        os.close(theirs)
        output = b""
        try:
            while part := os.read(ours, 4096):
                output += part
        except OSError:  # the other side is closed
            pass
        os.close(ours)
        self.assertEqual(process.wait(), 0)
        bar, rest = output.decode().split("\n", 1)
        self.assertEqual(rest.strip(), "qmur-show: wrote 'out0.png' to 'out179.png'")
        states = bar.strip("\r").split("\r")
        for state in states:
            self.assertLess(len(state), columns or 80, "it would go on in the next line")
        return states

    def test_a_bar_with_rate_and_time_left(self):
        for columns in (0, 120):
            states = self.states(columns)
            for state in states:
                self.assertRegex(state, r"^\[[#.]{30}\] +[0-9]+%  [0-9]+/180  [0-9.]+ fps  [0-9]+:[0-9]{2} left *$")
            self.assertIn(f"[{'#' * 30}] 100%  180/180", states[-1])

    def test_in_a_narrow_terminal_the_bar_leaves_out_what_matters_least(self):
        for state in self.states(40):
            self.assertRegex(state, r"^\[[#.]{8,}\] +[0-9]+%  [0-9]+/180  [0-9]+:[0-9]{2} left *$")
        for state in self.states(20):
            self.assertRegex(state, r"^\[[#.]{8,}\] +[0-9]+% *$")


class Memory(ShowTest):
    def peak(self, seconds, environment):
        process = subprocess.Popen(
            command(four_photos()[0], "--size", "640x360", "--fps", 30, "--seconds", seconds, "--effects", "pan",
                    "--threads", 2, "-o", "out.mp4"),
            cwd=self.directory, stderr=subprocess.DEVNULL, env=environment)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        self.assertEqual(process.returncode, 0)
        return usage.ru_maxrss  # in KiB

    def test_a_slow_encoder_does_not_let_frames_pile_up(self):
        # It reads nothing until all frames of the longer show, 0.9 MB each, could have been drawn.
        environment = Video.fake_ffmpeg(self, """case "$*" in
            *pipe:0*) sleep 3; echo $(($(wc -c) / (640 * 360 * 4))) >frames ;;
            *) echo "#tb 0: 1/30"; echo "#dimensions 0: 640x360"; seq -f "0, 0, %g, 1, 9" 0 $(($(cat frames) - 1)) ;;
            esac""")
        environment["ASAN_OPTIONS"] = "quarantine_size_mb=1"  # a sanitizer keeps freed memory, which is not meant here
        self.assertLess(self.peak(10, environment) - self.peak(0.5, environment), 20 * 1024)


EVERYWHERE = [CommandLine, Frames, Photographs, ContactSheet, Refusals, Progress]
ELSEWHERE_THAN_ON_WINDOWS = [Video, Terminal, Memory]


def main():
    options = running.read_options(accept="write the checksums of the frames down anew")
    if options.accept:
        test = Frames("test_frames_are_those_that_were_written_down")
        test.setUp()
        CHECKSUMS.write_text(render_checksums(test))
        test.doCleanups()
        return
    running.run_tests(EVERYWHERE + ([] if running.is_for_windows() else ELSEWHERE_THAN_ON_WINDOWS), options.names)


if __name__ == "__main__":
    main()
