#!/usr/bin/env python3
"""The example names its mistake and leaves pictures with something in them.

usage: pictures_test.py EXAMPLE DIRECTORY
"""

import pathlib
import struct
import subprocess
import sys
import zlib

# What is to be seen in each picture: size, and places with the colours that stand there.
PICTURES = {
    "1-sky": (480, 320, {(0, 0): (0, 0, 96), (479, 319): (95, 127, 223)}),
    "2-rose": (320, 320, {(0, 0): (0, 0, 0)}),
    "3-over-the-sky": (480, 320, {(0, 0): (0, 0, 96), (479, 319): (95, 127, 223)}),
    "4-lights": (480, 320, {(20, 20): (255, 192, 64), (59, 59): (255, 192, 64), (479, 319): (95, 127, 223)}),
}


def pixels_of(path):
    data = path.read_bytes()
    width, height = struct.unpack(">II", data[16:24])
    at, body = 8, b""
    while at < len(data):
        (length,) = struct.unpack(">I", data[at : at + 4])
        if data[at + 4 : at + 8] == b"IDAT":
            body += data[at + 8 : at + 8 + length]
        at += 12 + length
    rows = zlib.decompress(body)
    line = 1 + 3 * width
    return width, height, lambda x, y: tuple(rows[y * line + 1 + 3 * x :][:3]), rows


def main():
    example, directory = sys.argv[1:]
    said = subprocess.run([sys.executable, example, directory], capture_output=True, text=True, check=True).stdout
    faults = [] if said == "iFillRect: rect.right 481 exceeds pitch 480\n" else [f"it says {said!r}"]
    for name, (width, height, places) in PICTURES.items():
        found_width, found_height, pixel, rows = pixels_of(pathlib.Path(directory) / f"{name}.png")
        if (found_width, found_height) != (width, height):
            faults.append(f"{name}: {found_width} x {found_height}")
        faults += [f"{name}: {pixel(*at)} at {at}" for at, colour in places.items() if pixel(*at) != colour]
        if len(set(rows)) < 50:
            faults.append(f"{name}: {len(set(rows))} different bytes")
    for fault in faults:
        print(fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
