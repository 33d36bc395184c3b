#!/usr/bin/env python3
"""Runs qmur-hello in an empty directory and looks at the picture that it writes: a moon on an evening sky."""

import subprocess
import sys
import tempfile
from pathlib import Path


def main(command):
    with tempfile.TemporaryDirectory(prefix="qmur-hello-") as directory:
        # Into a file: what an emulator leaves running in the background would hold a pipe open.
        with tempfile.TemporaryFile("w+") as errors:
            status = subprocess.run(command, cwd=directory, stderr=errors).returncode
            errors.seek(0)
            assert status == 0, f"status {status}: {errors.read()}"
        header, pixels = (Path(directory) / "hello.ppm").read_bytes().split(b"\n", 1)
    assert header == b"P6 640 360 255", header
    assert len(pixels) == 640 * 360 * 3, len(pixels)

    def at(x, y):
        return tuple(pixels[(y * 640 + x) * 3 :][:3])

    assert at(450, 110) == (0xFF, 0xF4, 0xD6), at(450, 110)
    assert at(0, 0) == (0, 0, 40), at(0, 0)
    assert at(639, 359) == (359 // 8, 359 // 5, 40 + 359 // 3), at(639, 359)


if __name__ == "__main__":
    main([part for part in sys.argv[1:] if part])
