#!/usr/bin/env python3
"""Looks for what spoils moving pictures: jumps from frame to frame, specks, and seams."""

import running
from pictures import Picture, png_bytes, read_png
from running import ShowTest, four_photos, run_tests

# A flash is meant to jump; the ending has a test of its own.
TRANSITIONS = ("cross-fade wipe iris spin flood pen cylinder roll turn-page flip fly-in triangles dissolve brush cube "
               "shatter").split()
SCENES = "pan bubbles balls night sparks wave landscape winter snow title".split()

# The frames of a transition, and of a scene, that are looked at, and how far a pixel may stand out. Effects that are
# made of points and fine lines are left out. What has thin bright rims may end in a tip.
MOMENTS = (100, 112, 124)
SCENE_MOMENTS = (46, 60)
EVEN = {
    **dict.fromkeys("cross-fade wipe iris spin turn-page flip dissolve cube".split(), (MOMENTS, 20)),
    **dict.fromkeys("cylinder roll".split(), (MOMENTS, 40)),
    "pen": (MOMENTS[2:], 20),  # when the pen has left
    "triangles": (MOMENTS[2:], 30),
    **dict.fromkeys("landscape wave".split(), (SCENE_MOMENTS, 20)),
}


def difference(first, second):
    """The mean over all channels."""
    return sum(abs(a - b) for p, q in zip(first.pixels, second.pixels) for a, b in zip(p, q)) / (3 * len(first.pixels))


def jumps(pictures, factor, allowance):
    """Frames that differ from the last one much more than their neighbours do."""
    steps = [difference(a, b) for a, b in zip(pictures, pictures[1:])]
    found = []
    for i, step in enumerate(steps):
        around = sorted(steps[max(i - 3, 0) : i] + steps[i + 1 : i + 4])
        usual = around[len(around) // 2]
        if step > factor * usual + allowance:
            found.append((i + 1, round(step, 1), round(usual, 1)))
    return found


def far(first, second):
    return max(abs(a - b) for a, b in zip(first, second))


def brightness(colour):
    return (3 * colour[0] + 6 * colour[1] + colour[2]) / 10


def specks(picture, bound):
    """Pixels that are so much brighter, or darker, than each of the eight around them."""
    levels = list(map(brightness, picture.pixels))
    width = picture.width
    around = [dy * width + dx for dy in (-1, 0, 1) for dx in (-1, 0, 1) if dx or dy]
    found = []
    for y in range(1, picture.height - 1):
        for x in range(1, width - 1):
            place = y * width + x
            here = levels[place]
            beside = levels[place + 1]
            if abs(here - beside) > bound:
                neighbours = [levels[place + offset] for offset in around]
                if here > max(neighbours) + bound or here < min(neighbours) - bound:
                    found.append((x, y))
    return found


def seams(picture, bound):
    """Columns and rows one pixel wide that stand out from both sides over much of their length."""

    def stands_out(here, before, behind):
        return far(here, before) > bound and far(here, behind) > bound and far(before, behind) < bound / 2

    found = []
    for kind, count, length, at in (("column", picture.width, picture.height, picture.at),
                                    ("row", picture.height, picture.width, lambda y, x: picture.at(x, y))):
        for i in range(2, count - 2):
            if sum(stands_out(at(i, j), at(i - 1, j), at(i + 1, j)) for j in range(length)) > length / 3:
                found.append((kind, i))
    return found


def smooth(width, height, first, second):
    """A photograph without any edge."""
    pixels = [
        tuple(a + (b - a) * (x * height + y * width) // (2 * width * height) for a, b in zip(first, second))
        for y in range(height)
        for x in range(width)
    ]
    return Picture(width, height, pixels)


class FlawTest(ShowTest):
    def setUp(self):
        super().setUp()
        # The frames' checksums say that all builds draw the same. It is enough to look at them once.
        if running.is_sanitized() or running.is_for_windows():
            self.skipTest("the pictures are those of the plain build")


class Jumps(FlawTest):
    def pictures(self, *arguments):
        self.show(*arguments, "--size", "160x90", "-o", "%04d.png")
        files = sorted(self.directory.iterdir())
        pictures = [read_png(file) for file in files]
        for file in files:
            file.unlink()
        return pictures

    def photos(self):
        return [four_photos()[0], four_photos()[2]]

    def test_no_transition_jumps(self):
        for effect in TRANSITIONS:
            with self.subTest(effect):
                pictures = self.pictures(*self.photos(), "--fps", 20, "--seconds", 3, "--effects", f"pan,{effect}",
                                         "--first", 44, "--last", 76)
                self.assertEqual(jumps(pictures, 3.2, 2.5), [])

    def test_transitions_set_off_from_photographs_and_end_with_them(self):
        for effect in TRANSITIONS:
            for first, last in ((68, 72), (106, 110)):
                with self.subTest(effect, first=first):
                    pictures = self.pictures(*self.photos(), "--fps", 30, "--seconds", 3, "--effects", f"pan,{effect}",
                                             "--first", first, "--last", last)
                    steps = [difference(a, b) for a, b in zip(pictures, pictures[1:])]
                    into, plain = (steps[3], steps[:3]) if first == 68 else (steps[1], steps[2:])
                    self.assertLess(into, 1.5 * max(plain) + 0.7)

    def test_no_scene_jumps(self):
        for effect in SCENES:
            with self.subTest(effect):
                pictures = self.pictures(self.photos()[0], "--fps", 20, "--seconds", 3.5, "--effects", effect)
                self.assertEqual(jumps(pictures, 2.2, 2.5), [])


class Specks(FlawTest):
    def setUp(self):
        super().setUp()
        for name, colours in {"a.png": ((150, 60, 20), (240, 170, 90)), "b.png": ((10, 30, 90), (60, 110, 190))}.items():
            (self.directory / name).write_bytes(png_bytes(smooth(320, 180, *colours)))

    def frame(self, effect, number):
        self.show("a.png", "b.png", "--size", "320x180", "--fps", 30, "--seconds", 3.75, "--effects",
                  effect if effect in SCENES else f"pan,{effect}", "--first", number, "--last", number, "-o", "f%d.png")
        return read_png(self.directory / f"f{number}.png")

    def test_where_photographs_are_smooth_no_pixel_stands_alone(self):
        for effect, (moments, bound) in EVEN.items():
            for number in moments:
                with self.subTest(effect, frame=number):
                    self.assertEqual(specks(self.frame(effect, number), bound), [])

    def test_the_inside_of_a_cylinder_does_not_show_beside_its_outside(self):
        """A warm photograph is wound around a cool one: no pixel across is cooler than those beside it."""
        for number in (112, 114, 116):
            with self.subTest(frame=number):
                picture = self.frame("cylinder", number)
                for y in range(50, 130):
                    cool = [blue - red for red, _, blue in picture.cut(0, y, picture.width, 1).pixels]
                    self.assertFalse([x for x in range(1, 319) if cool[x] > max(cool[x - 1], cool[x + 1]) + 5])

    def test_no_seam_runs_through_the_frame(self):
        for effect in EVEN:
            for number in SCENE_MOMENTS if effect in SCENES else (106, 112, 115):
                with self.subTest(effect, frame=number):
                    self.assertEqual(seams(self.frame(effect, number), 12), [])

    def test_an_even_photograph_is_reduced_without_gaps(self):
        """Stripes of one pixel, at just under twice the frame's width, come out grey."""
        stripes = [(255 * (x % 2),) * 3 for _ in range(180) for x in range(318)]
        (self.directory / "stripes.png").write_bytes(png_bytes(Picture(318, 180, stripes)))
        self.show("stripes.png", "--size", "160x90", "--fps", 1, "--seconds", 1, "--effects", "pan", "-o", "s%d.png")
        levels = [pixel[0] for pixel in read_png(self.directory / "s0.png").pixels]
        self.assertLess(max(levels) - min(levels), 100)


if __name__ == "__main__":
    run_tests([Jumps, Specks])
