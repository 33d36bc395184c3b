#!/usr/bin/env python3
"""Repeats what once went wrong with qmur-show, many times and a little differently each time: mutated pictures,
interruptions at any moment, disks that fill, memory that runs short. Whatever happens, the program ends with 0 and a
whole result, or with 2, 130 and the like and a line that says why; the old file stays, and nothing is left beside it.

Each case is drawn from a seed, which is the case's number and stands in what a failure says.
"""

import os
import random
import resource
import signal
import subprocess
import time
import zlib

import running
from pictures import (HEIC, WEBP, Picture, bmp_bytes, chunk, exif, iptc, jpeg_bytes, png_of, profile, read_png, segment,
                      with_exif)
from running import ShowTest, command, four_photos, limited

MUTATIONS = 200
BATCH = 40  # pictures that one run reads, since starting a program takes longer than reading a small picture


def pictures():
    """A small picture of each kind, with all that a reader has to look at."""
    colours = [[(x * 30 + 7, y * 30, 255 - 8 * (x + y)) for x in range(8)] for y in range(8)]
    pixels = [colours[y // 8][x // 8] for y in range(64) for x in range(64)]
    note = exif(6, "2024:07:01 10:00:00", b"At the sea", b"UNICODE\0\0a\0b")
    inks = [[(*colour, 200) for colour in row] for row in colours]
    clear = [b"".join(bytes((*pixels[64 * y + x], 4 * x)) for x in range(64)) for y in range(64)]
    palette = chunk(b"PLTE", bytes(range(3 * 64))) + chunk(b"tRNS", bytes(range(0, 256, 4)))
    other = profile(((0.1431, 0.0606, 0.7139), (0.3851, 0.7169, 0.0971), (0.4361, 0.2225, 0.0139)), 2.2)
    colour_segments = segment(0xE2, b"ICC_PROFILE\0\1\1" + other) + segment(0xED, iptc(b"At the sea"))
    return {
        "jpg": [with_exif(jpeg_bytes(colours, 3, markers=colour_segments), b"Exif\0\0" + note), jpeg_bytes(inks, 4)],
        "png": [png_of(64, 64, 8, 6, clear, chunk(b"eXIf", note), chunk(b"iCCP", b"x\0\0" + zlib.compress(other))),
                png_of(64, 64, 8, 3, [bytes(range(64))] * 64, palette)],
        "bmp": [bmp_bytes(Picture(64, 64, pixels))],
        "webp": [WEBP],
        "heic": [HEIC],
    }


def mutated(data, chance):
    data = bytearray(data)
    kind = chance.randrange(6)
    if kind == 0:
        del data[chance.randrange(len(data)) :]
    elif kind == 1:
        place = chance.randrange(len(data))
        del data[place : place + chance.randrange(1, 40)]
    elif kind == 2:
        place = chance.randrange(len(data))
        data[place:place] = chance.randbytes(chance.randrange(1, 40))
    elif kind == 3:
        place = chance.randrange(max(len(data) - 4, 1))
        data[place : place + 4] = chance.choice((b"\xff\xff\xff\xff", b"\0\0\0\0", b"\x7f\xff\xff\xff", b"\0\0\xff\xff"))
    else:
        # Headers and tables stand at the start, and most goes wrong there.
        for _ in range(chance.randrange(1, 12)):
            reach = len(data) if chance.randrange(2) else min(len(data), 400)
            data[chance.randrange(reach)] = chance.randrange(256)
    return bytes(data)


class Mutations(ShowTest):
    def assert_read_or_refused(self, kind, samples):
        for start in range(0, MUTATIONS, BATCH):
            names = []
            for case in range(start, start + BATCH):
                chance = random.Random(f"{kind} {case}")
                names.append(f"{case}.{kind}")
                (self.directory / names[-1]).write_bytes(mutated(chance.choice(samples), chance))
            # Of each file that is left out it is said why; the others are shown, and that at least one is, is seen to.
            (self.directory / "whole.png").write_bytes(pictures()["png"][0])
            result = self.run_program("whole.png", *names, "--skip-bad", "--max-megapixels", 30, "--size", "32x32",
                                      "--fps", 1, "--seconds", 1, "--effects", "pan", "-o", "f%d.png")
            context = f"{kind} {start} to {start + BATCH - 1}: {result.stderr}"
            self.assertEqual(result.returncode, 0, context)
            named = [line for line in result.stderr.splitlines() if "cannot read" in line]
            frames = list(self.directory.glob("f*.png"))
            self.assertEqual(len(frames), 1 + len(names) - len(named), context)
            self.assertGreater(len(named), 0, context)
            for line in named:
                self.assertRegex(line, r"^qmur-show: cannot read '[0-9]+\.\w+': \S", context)
            for frame in frames:
                frame.unlink()

    def test_each_kind(self):
        for kind, samples in pictures().items():
            with self.subTest(kind):
                self.assert_read_or_refused(kind, samples)


class Interruptions(ShowTest):
    def test_twenty_at_any_moment(self):
        chance = random.Random(1)
        for case in range(20):
            number = chance.choice((signal.SIGINT, signal.SIGTERM, signal.SIGHUP, signal.SIGQUIT, signal.SIGALRM))
            (self.directory / "out.mp4").write_text("old")
            process = subprocess.Popen(
                command(*four_photos(), "--size", "320x180", "--fps", 30, "--seconds", 60, "-o", "out.mp4", "-o", "s.png"),
                cwd=self.directory, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            time.sleep(chance.random() * (3 if running.is_sanitized() else 1.5))
            process.send_signal(number)
            process.wait(timeout=60)
            # Before anything is opened, a signal ends the program in the system's own way.
            self.assertIn(process.returncode, (128 + number, -number), f"case {case}")
            self.assertEqual(self.contents(), ["out.mp4"], f"case {case}")
            self.assertEqual((self.directory / "out.mp4").read_text(), "old", f"case {case}")


class FullDisk(ShowTest):
    """On a small file system of its own, where that may be set up."""

    def setUp(self):
        super().setUp()
        self.on_disk_of(8, "--list")

    def on_disk_of(self, kilobytes, *arguments):
        """Runs the program in a directory on a new file system; answers its result and what lies there in the end."""
        disk = self.directory / "disk"
        disk.mkdir(exist_ok=True)
        line = subprocess.list2cmdline(command(*arguments))
        script = (f"mount -t tmpfs -o size={kilobytes}k none '{disk}' || exit 99; cd '{disk}' && printf old >old.mp4 && "
                  f"printf old >old.png && {line}; status=$?; cd '{disk}' && ls -A >../left; cp old.mp4 old.png ..; "
                  "exit $status")
        with open(self.directory / "errors", "w+") as errors:
            user = [] if os.geteuid() == 0 else ["--user", "--map-root-user"]
            status = subprocess.run(["unshare", "--mount", *user, "sh", "-c", script], stderr=errors, timeout=300).returncode
            errors.seek(0)
            text = errors.read()
        if status == 99 or "unshare" in text:
            self.skipTest("no file system may be set up here")
        return status, text, (self.directory / "left").read_text().split()

    def test_what_does_not_fit_keeps_the_old_file(self):
        film = ("--fps", 15, "--seconds", 1, "--effects", "pan,cross-fade")
        sizes = (8, 16, 32, 48, 64, 80, 100, 120, 150, 200, 250, 300, 1000)
        for name, arguments, disks in (("old.mp4", film, sizes), ("new.webm", film, sizes),
                                       ("old.png", ("--fps", 2, "--effects", "pan"), (8, 100, 8000))):
            statuses = set()
            for kilobytes in disks:
                with self.subTest(f"{name} on {kilobytes} KB"):
                    status, errors, left = self.on_disk_of(kilobytes, *four_photos()[:2], "--size", "320x180", *arguments,
                                                           "-o", name)
                    statuses.add(status)
                    if status == 0:
                        self.assertIn(name, left)
                        continue
                    self.assertRegex(errors.splitlines()[-1],
                                     f"cannot write '{name}': {'No space left' if name == 'old.png' else ''}")
                    self.assertEqual(left, ["old.mp4", "old.png"])
                    for old in left:
                        self.assertEqual((self.directory / old).read_text(), "old")
            self.assertEqual(statuses, {0, 2}, name)
        read_png(self.directory / "old.png")


class LittleMemory(ShowTest):
    def test_it_is_said_and_never_called_damage(self):
        if running.is_sanitized():
            self.skipTest("a sanitizer needs room for its own books")
        large = {"png": png_of(1600, 1200, 8, 6, [bytes(range(256)) * 25] * 1200),
                 "jpg": running.bundled_photos()[0].read_bytes()}
        for kind, samples in pictures().items():
            name = f"a.{kind}"
            (self.directory / name).write_bytes(large.get(kind, samples[0]))
            arguments = (name, four_photos()[0], "--size", "640x360", "--fps", 1, "--seconds", 2, "--effects",
                         "snow,cross-fade", "-o", "s.png")
            if "it is no" in self.run_program(*arguments).stderr:
                continue  # this build lacks the library
            enough = 0
            for case in range(12):
                chance = random.Random(f"{kind} {case}")
                limit = (20 << 20) + chance.randrange(180 << 20)
                (self.directory / "out.mp4").write_text("old")
                film = ("-o", "out.mp4") if case % 2 else ()  # the encoder takes more than there is
                result = self.run_program(*arguments, *film, "--threads", chance.choice((1, 2, 5)),
                                          **limited(resource.RLIMIT_AS, limit))
                context = f"{kind} {case}, {limit >> 20} MB: {result.stderr}"
                if result.returncode == 0:
                    enough += 1
                    read_png(self.directory / "s.png")
                else:
                    self.assertEqual((self.directory / "out.mp4").read_text(), "old", context)
                    self.assertNotEqual(result.stderr, "", context)
                    # The system, or a library that it loads, may give up before the program begins, in its own words.
                    if result.returncode != 127 and ("qmur-show: " in result.stderr or result.returncode != 1):
                        self.assertEqual(result.returncode, 2, context)
                        self.assertRegex(result.stderr.splitlines()[-1], "^qmur-show: (cannot write 'out.mp4': |.*(there is "
                                         "not enough memory for|cannot start a thread))", context)
                (self.directory / "s.png").unlink(missing_ok=True)  # it may have been finished before the film failed
                self.assertEqual(self.contents(), sorted([name, "out.mp4"]), context)
            self.assertGreater(enough, 0, kind)
            (self.directory / name).unlink()


if __name__ == "__main__":
    running.run_tests([Mutations], [Interruptions, FullDisk, LittleMemory])
