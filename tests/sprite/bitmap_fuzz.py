#!/usr/bin/env python3
"""Runs the fuzz target of the bitmap reader, from a corpus of small true and false bitmap files made here.

usage: bitmap_fuzz.py PROGRAM [--runs N] [--seconds N]

All files are in memory where the system has a place for that. An input that fails is left in the current directory.
"""

import argparse
import os
import pathlib
import struct
import subprocess
import sys
import tempfile

MEMORY = "/dev/shm"


def bitmap(width, height, stride, offset=54, bits=24, size=None, cut=0):
    data = bytes(i * 37 & 255 for i in range(abs(height) * stride))
    size = offset + len(data) if size is None else size
    head = struct.pack("<2sIII", b"BM", size & 0xFFFFFFFF, 0, offset & 0xFFFFFFFF)
    head += struct.pack("<IiiHHIIiiII", 40, width, height, 1, bits, 0, 0, 2835, 2835, 0, 0)
    file = head + bytes(max(0, min(offset, 200) - 54)) + data
    return b"\x01\x01" + file[: len(file) - cut]


def corpus():
    yield from (bitmap(w, h, (w * 3 + 3) // 4 * 4) for w, h in ((1, 1), (3, 2), (4, 4), (5, 3), (17, 9), (64, 2)))
    yield bitmap(3, 2, 9)
    yield bitmap(3, 2, 12, cut=7)
    yield bitmap(3, 2, 12, offset=70)
    yield bitmap(3, 2, 12, offset=10)
    yield bitmap(3, 2, 9, size=54 + 17)
    yield bitmap(3, 2, 12, size=0)
    yield bitmap(3, 2, 12, size=0xFFFFFFFF)
    yield bitmap(3, 2, 12, offset=0x7FFFFFF0, size=0x80000020)
    yield bitmap(3, 2, 12, offset=0xFFFFFFF0, size=0xFFFFFFFF)
    yield bitmap(3, -2, 12)
    yield bitmap(0, 2, 4)
    yield bitmap(3, 2, 12, bits=32)
    yield bitmap(0x7FFFFFFF, 0x7FFFFFFF, 0)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program")
    parser.add_argument("--runs", type=int, default=-1)
    parser.add_argument("--seconds", type=int, default=0)
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory(dir=MEMORY if os.access(MEMORY, os.W_OK) else None) as scratch:
        seeds = pathlib.Path(scratch) / "corpus"
        seeds.mkdir()
        for number, file in enumerate(corpus()):
            (seeds / str(number)).write_bytes(file)
        command = [arguments.program, str(seeds), f"-runs={arguments.runs}", f"-max_total_time={arguments.seconds}"]
        command += ["-max_len=1200", "-seed=1", "-print_final_stats=1"]
        return subprocess.run(command, env={**os.environ, "TMPDIR": scratch}).returncode


if __name__ == "__main__":
    sys.exit(main())
