"""How the tests of qmur-show run it: as a person would, in an empty directory."""

import argparse
import hashlib
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

program = None
emulator = None
photos = None
tools = None  # where a stand-in for ffmpeg is, for builds that the real one cannot be had for


def command(*arguments):
    return ([emulator] if emulator else []) + [str(program), *map(str, arguments)]


def four_photos():
    return [photos / name for name in ("coffee.png", "chelsea.png", "rocket.jpg", "hubble_deep_field.jpg")]


def bundled_photos():
    """In the order of the default show."""
    directory = Path(__file__).resolve().parents[2] / "examples" / "show" / "photos"
    names = "dandelion mountains stream dogs fig meadow brushes sunset"
    return [directory / f"{name}.jpg" for name in names.split()]


def is_for_windows():
    return program.suffix == ".exe"


def is_sanitized():
    return b"__asan_init" in program.read_bytes()


def sha256(path):
    return hashlib.sha256(path.read_bytes()).hexdigest()


class ShowTest(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory(prefix="qmur-show-")
        self.addCleanup(temporary.cleanup)
        self.directory = Path(temporary.name)

    def run_program(self, *arguments, **options):
        # Into files: what an emulator leaves running in the background would hold a pipe open.
        with tempfile.TemporaryFile("w+") as output, tempfile.TemporaryFile("w+") as errors:
            result = subprocess.run(command(*arguments), cwd=self.directory, stdin=subprocess.DEVNULL, stdout=output,
                                    stderr=errors, timeout=120, **options)
            output.seek(0)
            errors.seek(0)
            return subprocess.CompletedProcess(result.args, result.returncode, output.read(), errors.read())

    def show(self, *arguments, **options):
        result = self.run_program(*arguments, **options)
        self.assertEqual(result.returncode, 0, result.stderr)
        return result

    def frames(self, name, *arguments):
        """Renders a sequence into a directory of its own and returns its files' checksums by frame number."""
        (self.directory / name).mkdir()
        self.show(*arguments, "-o", f"{name}/%04d.png")
        files = sorted((self.directory / name).iterdir())
        for file in files:
            self.assertRegex(file.name, r"^[0-9]{4}\.png$")
        return {int(file.stem): sha256(file) for file in files}

    def contents(self):
        return sorted(str(path.relative_to(self.directory)) for path in self.directory.rglob("*"))

    def wait_for(self, condition):
        deadline = time.monotonic() + 60
        while not condition():
            self.assertLess(time.monotonic(), deadline, "nothing happened for a minute")
            time.sleep(0.02)

    def assert_refused(self, arguments, reason, **options):
        before = self.contents()
        result = self.run_program(*arguments, **options)
        self.assertEqual(result.returncode, 2, f"{arguments}: {result.stderr}")
        lines = result.stderr.splitlines()
        self.assertEqual(len(lines), 1, result.stderr)
        self.assertTrue(lines[0].startswith("qmur-show: "), lines[0])
        self.assertIn(reason, lines[0])
        self.assertEqual(result.stdout, "")
        self.assertEqual(self.contents(), before)


def read_options(**flags):
    """Reads the command line; a flag is given as name="what it does"."""
    global program, emulator, photos, tools
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", type=lambda text: Path(text).resolve(), required=True)
    parser.add_argument("--photos", type=lambda text: Path(text).resolve(), required=True)
    parser.add_argument("--emulator", default="")
    parser.add_argument("--tools", type=lambda text: Path(text).resolve())
    for name, description in flags.items():
        parser.add_argument(f"--{name}", action="store_true", help=description)
    parser.add_argument("names", nargs="*", help="run the tests whose names contain one of these")
    options = parser.parse_args()
    program, photos, tools = options.program, options.photos, options.tools
    emulator = options.emulator and Path(options.emulator).resolve()
    return options


def run_tests(classes, names):
    suite = unittest.TestSuite()
    for tests in map(unittest.defaultTestLoader.loadTestsFromTestCase, classes):
        suite.addTests(test for test in tests if not names or any(name in test.id() for name in names))
    result = unittest.TextTestRunner(verbosity=2).run(suite)
    sys.exit(0 if result.wasSuccessful() and result.testsRun > 0 else 1)
