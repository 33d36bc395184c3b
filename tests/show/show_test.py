#!/usr/bin/env python3
"""Runs qmur-show as a person would and looks at what it draws.

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
from pictures import Picture, bmp_bytes, png_bytes, read_png
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

    def test_first_and_last_choose_frames_of_the_whole_which_depend_on_no_others(self):
        arguments = (*four_photos(), *self.small, "--effects", EFFECTS)
        whole = self.frames("whole", *arguments)
        for first, last in ((9, 13), *((frame, frame) for frame in range(11, len(whole), 12))):
            part = self.frames(f"from{first}", *arguments, "--first", first, "--last", last)
            self.assertEqual(part, {frame: whole[frame] for frame in range(first, last + 1)})
        self.assertEqual(list(self.frames("end", *arguments, "--first", 70)), [70, 71])

    def test_the_seed_governs_what_is_left_to_chance(self):
        arguments = (*four_photos()[:2], *self.small, "--effects", "snow", "--last", 3)
        first = self.frames("first", *arguments, "--seed", 11)
        again = self.frames("again", *arguments, "--seed", 11)
        other = self.frames("other", *arguments, "--seed", 12)
        self.assertEqual(first, again)
        for frame in first:
            self.assertNotEqual(first[frame], other[frame])

    def test_photographs_stand_for_their_seconds_and_come_round_until_every_effect_had_its_turn(self):
        for count, effects, shots in ((3, "cross-fade", 3), (1, "cross-fade,wipe,iris", 4)):
            frames = self.frames(effects, *four_photos()[:count], "--size", "32x18", "--fps", 5, "--seconds", 1.2,
                                 "--effects", effects)
            self.assertEqual(list(frames), list(range(shots * 6)))

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

    def test_png_and_bmp_of_the_same_pixels_give_the_same_frames(self):
        picture = Picture(37, 23, [(x * 6, y * 11, (x * y) % 256) for y in range(23) for x in range(37)])
        (self.directory / "a.png").write_bytes(png_bytes(picture))
        (self.directory / "a.bmp").write_bytes(bmp_bytes(picture))
        arguments = ("--size", "64x36", "--fps", 2, "--seconds", 1, "--effects", "pan")
        self.assertEqual(self.frames("png", "a.png", *arguments), self.frames("bmp", "a.bmp", *arguments))

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
        huge = struct.pack(">IIBBBBB", 1 << 20, 1 << 20, 8, 2, 0, 0, 0)
        (self.directory / "huge.png").write_bytes(png_bytes(Picture(1, 1, [(1, 2, 3)]))[:16] + huge)
        for name, reason in (("missing.jpg", "cannot read 'missing.jpg'"), ("text.jpg", "it is no JPEG, PNG"),
                             ("empty.png", "it is no JPEG, PNG"), ("huge.png", "the PNG picture is cut off")):
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
        for name, kind in (("out.mp4", "an MP4"), ("out.webm", "a WebM")):
            for size in ("161x90", "160x91"):
                self.assert_refused([*self.base(size=size), "-o", name],
                                    f"{kind} video needs an even width and height, and {size} is odd")

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

    def test_each_kind_of_video_holds_all_frames_and_takes_the_place_of_an_older_file(self):
        (self.directory / "out.mp4").write_text("old")
        for name, codec in (("out.mp4", "h264"), ("out.webm", "vp9"), ("out.gif", "gif"), ("out.mkv", "ffv1")):
            self.show(*four_photos()[:2], *self.arguments, "-o", name)
            wanted = {"codec_name": codec, "width": "160", "height": "90", "r_frame_rate": "10/1", "nb_read_packets": "20"}
            self.assertLessEqual(wanted.items(), set(self.probe(name)))
        self.assertEqual(self.contents(), ["out.gif", "out.mkv", "out.mp4", "out.webm"])
        self.show(four_photos()[0], "--size", "32x32", "--fps", "30000/1001", "--seconds", 1, "-o", "out.mp4")
        self.assertIn(("r_frame_rate", "30000/1001"), self.probe("out.mp4"))

    def frames_of(self, name, *options):
        """Each frame of a film, and what was written of it to a file of its own."""
        self.show(*four_photos()[:2], *self.arguments, "-o", name, "-o", "%d.png")
        raw = subprocess.run(["ffmpeg", "-loglevel", "error", "-i", name, *options, "-pix_fmt", "rgb24", "-f", "rawvideo",
                              "-"], cwd=self.directory, capture_output=True, check=True).stdout
        size = 160 * 90 * 3
        self.assertEqual(len(raw), 20 * size)
        for frame in range(20):
            written = read_png(self.directory / f"{frame}.png").pixels
            yield raw[frame * size : (frame + 1) * size], bytes(value for pixel in written for value in pixel)

    def test_a_video_shows_the_frames_in_their_colours_and_order(self):
        for shown, written in self.frames_of("out.mp4", "-vf", "scale=in_color_matrix=bt709:in_range=tv"):
            self.assertLess(sum(abs(a - b) for a, b in zip(shown, written)) / len(written), 5)

    def test_a_matroska_video_loses_nothing(self):
        for shown, written in self.frames_of("out.mkv"):
            self.assertEqual(shown, written)

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
    def test_a_slow_encoder_does_not_let_frames_pile_up(self):
        # It reads nothing until all frames of the longer show, 0.9 MB each, could have been drawn.
        environment = self.fake_ffmpeg(
            "sleep 3; echo $(($(wc -c) / (640 * 360 * 4))) >frames",
            'echo "#tb 0: 1/30"; echo "#dimensions 0: 640x360"; seq -f "0, 0, %g, 1, 9" 0 $(($(cat frames) - 1))')
        environment["ASAN_OPTIONS"] = "quarantine_size_mb=1"  # a sanitizer keeps freed memory, which is not meant here
        long, short = (self.peak(four_photos()[0], "--size", "640x360", "--fps", 30, "--seconds", seconds, "--effects", "pan",
                                 "--threads", 2, "-o", "out.mp4", env=environment) for seconds in (10, 0.5))
        self.assertLess(long - short, 20 * 1024)


if __name__ == "__main__":
    options = running.read_options(accept="write the checksums of the frames down anew")
    if options.accept:
        test = Frames("test_frames_are_those_that_were_written_down")
        test.setUp()
        CHECKSUMS.write_text(render_checksums(test))
        test.doCleanups()
    else:
        running.run_tests([CommandLine, Frames, ContactSheet, Refusals, Progress], [Video, Terminal, Memory], (), options)
