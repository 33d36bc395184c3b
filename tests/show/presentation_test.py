#!/usr/bin/env python3
"""What people ask of a show: photographs whole or filling the frame, a title, captions, and effects without choosing."""

from pictures import Picture, exif, iptc, jpeg_bytes, png_bytes, read_png, segment, with_exif
from running import ShowTest, four_photos, run_tests

RED, GREEN, BLUE, WHITE = (220, 20, 20), (20, 200, 20), (20, 20, 220), (255, 255, 255)


def near(first, second, bound=12):
    return max(abs(a - b) for a, b in zip(first, second)) <= bound


class Presentation(ShowTest):
    def frame(self, *arguments, number=0):
        self.show(*arguments, "--first", number, "--last", number, "-o", "f%d.png")
        return read_png(self.directory / f"f{number}.png")

    def photograph(self, name, width, height):
        """White, with a red line at the top, a green one at the bottom and blue ones at both sides."""
        edge = min(width, height) // 20

        def at(x, y):
            if y < edge:
                return RED
            if y >= height - edge:
                return GREEN
            return BLUE if x < edge or x >= width - edge else WHITE

        pixels = [at(x, y) for y in range(height) for x in range(width)]
        (self.directory / name).write_bytes(png_bytes(Picture(width, height, pixels)))
        return name


class Fit(Presentation):
    arguments = ("--size", "320x180", "--fps", 2, "--seconds", 4, "--effects", "pan")

    def shows_all(self, picture):
        return all(any(near(pixel, colour) for pixel in picture.pixels) for colour in (RED, GREEN, BLUE))

    def test_a_portrait_photograph_is_shown_whole_all_the_time(self):
        name = self.photograph("portrait.png", 200, 300)
        for number in range(8):
            self.assertTrue(self.shows_all(self.frame(name, *self.arguments, number=number)), f"frame {number}")

    def test_beside_it_lies_a_dark_backdrop_without_edges(self):
        picture = self.frame(self.photograph("portrait.png", 200, 300), *self.arguments)
        for x in (*range(0, 60), *range(260, 319)):
            for y in range(0, 179):
                here = picture.at(x, y)
                self.assertLess(max(here), 140, (x, y))
                self.assertTrue(near(here, picture.at(x + 1, y)) and near(here, picture.at(x, y + 1)), (x, y))

    def test_a_landscape_photograph_fills_the_frame(self):
        picture = self.frame(self.photograph("landscape.png", 300, 200), *self.arguments)
        self.assertFalse(self.shows_all(picture))
        self.assertTrue(near(picture.at(160, 90), WHITE))
        self.assertGreater(min(map(max, picture.pixels)), 150, "some of it is dark")

    def test_the_choice_may_be_made_by_hand(self):
        portrait = self.photograph("portrait.png", 200, 300)
        landscape = self.photograph("landscape.png", 300, 200)
        self.assertTrue(self.shows_all(self.frame(landscape, *self.arguments, "--fit", "contain")))
        self.assertFalse(self.shows_all(self.frame(portrait, *self.arguments, "--fit", "cover")))
        self.assertTrue(self.shows_all(self.frame(portrait, *self.arguments, "--fit", "auto")))

    def test_in_an_upright_frame_it_is_the_landscape_that_is_mounted(self):
        arguments = ("--size", "180x320", "--fps", 1, "--seconds", 1, "--effects", "pan")
        self.assertTrue(self.shows_all(self.frame(self.photograph("landscape.png", 300, 200), *arguments)))
        self.assertFalse(self.shows_all(self.frame(self.photograph("portrait.png", 200, 300), *arguments)))


class Letters(Presentation):
    arguments = ("--size", "320x180", "--fps", 2, "--seconds", 4, "--effects", "pan,cross-fade")

    def setUp(self):
        super().setUp()
        for name, colour in (("a.png", (40, 60, 90)), ("b.png", (90, 60, 40))):
            (self.directory / name).write_bytes(png_bytes(Picture(320, 180, [colour] * 320 * 180)))
        result = self.show("a.png", "--title", "x", "--size", "16x16", "--fps", 1, "--seconds", 1, "-o", "x%d.png")
        (self.directory / "x0.png").unlink()
        if "there are no fonts" in result.stderr:
            self.skipTest("there are no fonts")

    def lettering(self, *arguments, number):
        """How many pixels differ from the same frame without letters, by rows of a third of the frame."""
        plain = self.frame("a.png", "b.png", *self.arguments, number=number)
        written = self.frame("a.png", "b.png", *self.arguments, *arguments, number=number)
        thirds = [range(0, 60), range(60, 120), range(120, 180)]
        return [sum(plain.at(x, y) != written.at(x, y) for y in rows for x in range(320)) for rows in thirds]

    def test_without_a_title_there_is_none(self):
        effects = self.show("--list").stdout
        self.assertIn("title", effects)
        self.assertEqual(self.frames("f", "a.png", "--size", "64x36", "--fps", 2, "--seconds", 4),
                         self.frames("g", "a.png", "--size", "64x36", "--fps", 2, "--seconds", 4, "--effects",
                                     "pan,fade-out"))

    def test_a_title_stands_on_the_first_photograph_alone(self):
        arguments = ("--title", "Holidays", "--subtitle", "by the sea")
        self.assertGreater(sum(self.lettering(*arguments, number=4)), 500)
        self.assertEqual(sum(self.lettering(*arguments, number=12)), 0)
        arguments = ("a.png", *self.arguments)
        self.assertNotEqual(self.frame(*arguments, "--title", "Holidays", number=4),
                            self.frame(*arguments, "--title", "Weekend", number=4))

    def test_captions_stand_below_their_own_photographs(self):
        (self.directory / "captions.txt").write_text("\nAt the sea\n", encoding="utf-8")
        self.assertEqual(self.lettering("--caption", "captions.txt", number=4), [0, 0, 0])
        upper, middle, lower = self.lettering("--caption", "captions.txt", number=12)
        self.assertEqual((upper, middle), (0, 0))
        self.assertGreater(lower, 200)

    def test_letters_beyond_ascii_are_written(self):
        captions = []
        for text in ("Früh — an", "Fr?h ? an"):
            (self.directory / "captions.txt").write_text(text, encoding="utf-8")
            captions.append(self.frame("a.png", *self.arguments, "--caption", "captions.txt", number=4))
        self.assertNotEqual(captions[0], captions[1])

    def test_what_somebody_wrote_into_a_photograph_is_its_caption(self):
        jpeg = jpeg_bytes([[(77,)] * 8] * 8, 1)

        def frame(data, *arguments):
            (self.directory / "a.jpg").write_bytes(data)
            return self.frame("a.jpg", *self.arguments, *arguments, number=4)

        def noted(**notes):
            return with_exif(jpeg, b"Exif\0\0" + exif(**notes))

        def captioned(text):
            (self.directory / "captions.txt").write_text(text, encoding="utf-8")
            return frame(jpeg, "--caption", "captions.txt")

        by_iptc = jpeg[:2] + segment(0xED, iptc("Früh am Meer".encode("latin-1"))) + noted(description=b"less")[2:]
        for data, text in ((noted(description=b"  At the\tsea \0"), "At the sea"), (noted(description=b"sea\0"), "sea"),
                           (noted(description="Früh".encode()), "Früh"), (noted(description=b"Fr\xfch"), "Früh"),
                           (noted(comment=b"ASCII\0\0\0At the sea", taken="2024:07:01 10:00:00"), "At the sea"),
                           (noted(comment=b"UNICODE\0" + "Früh —".encode("utf-16-be")), "Früh —"),
                           (by_iptc, "Früh am Meer")):
            self.assertEqual(frame(data, "--comments"), captioned(text), text)
        for data in (jpeg, noted(description=b"SONY DSC\0"), noted(comment=b"JIS\0\0\0\0\0abc"), noted(comment=b"ASCII")):
            self.assertEqual(frame(data, "--comments"), frame(jpeg))
        self.assertNotEqual(captioned("sea"), frame(jpeg))
        self.assertEqual(frame(noted(description=b"sea"), "--comments", "--caption", "captions.txt"), captioned("sea"))
        self.assertEqual(frame(noted(description=b"other"), "--comments", "--caption", "captions.txt"), captioned("sea"))
        self.assertEqual(frame(noted(description=b"other")), frame(jpeg), "nobody asked for it")


class Defaults(Presentation):
    def test_what_makes_no_sense_is_refused(self):
        for option, value, reason in (("--fit", "stretch", "--fit stretch"), ("--subtitle", "x", "--subtitle"),
                                      ("--caption", "none.txt", "none.txt")):
            self.assert_refused([four_photos()[0], option, value, "-o", "out.png"], reason)

    def test_each_photograph_is_shown_once(self):
        for count in (1, 2, 5, 23):
            names = [self.photograph(f"{i}.png", 32, 18) for i in range(count)]
            frames = self.frames(f"f{count}", *names, "--size", "16x16", "--fps", 1, "--seconds", 3)
            self.assertEqual(list(frames), list(range(3 * count)))

    def test_the_seed_chooses_the_effects(self):
        arguments = (*four_photos(), "--size", "64x36", "--fps", 2, "--seconds", 3)
        self.assertNotEqual(self.frames("one", *arguments, "--seed", 1), self.frames("two", *arguments, "--seed", 2))
        self.assertEqual(self.frames("again", *arguments, "--seed", 1), self.frames("same", *arguments, "--seed", 1))


if __name__ == "__main__":
    run_tests([Fit, Letters, Defaults])
