"""How the tests of qmur-show run it: as a person would, in an empty directory. Each of them is called so:

    files_test.py --program build/linux/bin/qmur-show --photos photos [--emulator cmake/under-wine] [name of a test ...]
"""

import argparse
import hashlib
import os
import re
import resource
import shutil
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


def limited(kind, size):
    """What lets run_program() run the program under a limit."""
    return {"preexec_fn": lambda: resource.setrlimit(kind, (size, size))}


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

    def assert_fails(self, arguments, reason, **options):
        """The last line says why, and all files are as before."""
        before = self.contents()
        data = {path: path.read_bytes() for path in self.directory.iterdir() if path.is_file()}
        result = self.run_program(*arguments, **options)
        self.assertEqual(result.returncode, 2, f"{arguments}: {result.stderr}")
        self.assertRegex(result.stderr.splitlines()[-1], f"^qmur-show: .*{re.escape(reason)}")
        self.assertEqual(result.stdout, "")
        self.assertEqual(self.contents(), before)
        for path, content in data.items():
            self.assertEqual(path.read_bytes(), content, path)
        return result

    def assert_refused(self, arguments, reason, **options):
        """As early as that, and in one line."""
        result = self.assert_fails(arguments, reason, **options)
        self.assertEqual(len(result.stderr.splitlines()), 1, result.stderr)

    def probe(self, name):
        """What ffprobe finds in a film, as pairs of a name and a value."""
        fields = "codec_type,codec_name,width,height,r_frame_rate,nb_read_packets,duration"
        text = subprocess.run(["ffprobe", "-loglevel", "error", "-count_packets", "-show_entries",
                               f"stream={fields}:format=duration", "-of", "default=noprint_wrappers=1", name],
                              cwd=self.directory, capture_output=True, text=True, check=True).stdout
        return [tuple(line.split("=")) for line in text.splitlines()]

    def fake_ffmpeg(self, script, otherwise='exec "$real" "$@"'):
        """The environment with a program of the real one's name that does something else when it is fed with frames."""
        tools = self.directory / "tools"
        tools.mkdir(exist_ok=True)
        (tools / "ffmpeg").write_text(f'#!/bin/sh\nfor file; do :; done; file=${{file#file:}}; real="{shutil.which("ffmpeg")}"\n'
                                      f'case "$*" in *pipe:0*) {script} ;; *) {otherwise} ;; esac\n')
        (tools / "ffmpeg").chmod(0o755)
        return {**os.environ, "PATH": f"{tools}:{os.environ['PATH']}"}

    def peak(self, *arguments, **options):
        """The most memory that a run takes, in KiB."""
        process = subprocess.Popen(command(*arguments), cwd=self.directory, stderr=subprocess.DEVNULL, **options)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        self.assertEqual(process.returncode, 0)
        return usage.ru_maxrss


def read_options(**flags):
    """Reads the command line; a flag is given as name="what it does"."""
    global program, emulator, photos, tools
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", type=lambda text: Path(text).resolve(), required=True)
    parser.add_argument("--photos", type=lambda text: Path(text).resolve(), required=True)
    parser.add_argument("--emulator", default="")
    parser.add_argument("--tools", type=lambda text: Path(text).resolve())
    for name, description in flags.items():
        parser.add_argument(f"--{name.replace(chr(95), chr(45))}", action="store_true", help=description)
    parser.add_argument("names", nargs="*", help="run the tests whose names contain one of these")
    options = parser.parse_args()
    program, photos, tools = options.program, options.photos, options.tools
    emulator = options.emulator and Path(options.emulator).resolve()
    return options


def run_tests(everywhere, elsewhere=(), on_windows=(), options=None):
    """Runs the tests of classes, some of which are for builds for other systems than Windows, or for Windows alone."""
    names = (options or read_options()).names
    classes = [*everywhere, *(on_windows if is_for_windows() else elsewhere)]
    suite = unittest.TestSuite()
    for tests in map(unittest.defaultTestLoader.loadTestsFromTestCase, classes):
        suite.addTests(test for test in tests if not names or any(name in test.id() for name in names))
    result = unittest.TextTestRunner(verbosity=2).run(suite)
    sys.exit(0 if result.wasSuccessful() and result.testsRun > 0 else 1)
