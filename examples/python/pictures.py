#!/usr/bin/env python3
"""Pictures in NumPy arrays, cell by cell as in a notebook; each cell leaves a file.

usage: pictures.py [DIRECTORY]
"""

# %% What is needed: importing the package sets the library up.
import pathlib
import struct
import sys
import zlib

import numpy as np
import q_mur

OUT = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else "out/python")
OUT.mkdir(parents=True, exist_ok=True)


def save(name: str, picture: "np.ndarray[tuple[int, int], np.dtype[np.uint32]]") -> None:
    """Writes an array of pixels as a PNG."""
    height, width = picture.shape
    bytes_of = picture.view(np.uint8).reshape(height, width, 4)
    rows = np.zeros((height, 1 + 3 * width), np.uint8)
    rows[:, 1:] = bytes_of[:, :, 2::-1].reshape(height, 3 * width)

    def chunk(kind: bytes, data: bytes) -> bytes:
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    head = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    body = chunk(b"IHDR", head) + chunk(b"IDAT", zlib.compress(rows.tobytes())) + chunk(b"IEND", b"")
    (OUT / f"{name}.png").write_bytes(b"\x89PNG\r\n\x1a\n" + body)


# %% An array of uint32 is a surface: blue in the lowest byte. NumPy and the library draw into the same memory.
WIDTH, HEIGHT = 480, 320
y, x = np.mgrid[0:HEIGHT, 0:WIDTH]
sky = ((x * 96 // WIDTH) << 16 | (y * 128 // HEIGHT) << 8 | 96 + (y * 128 // HEIGHT)).astype(np.uint32)
save("1-sky", sky)

# %% Sheets of light, turned and shrunk step by step, added up.
rose = np.zeros((HEIGHT, HEIGHT), np.uint32)
sheet = np.empty((160, 160), np.uint32)
for step in range(48):
    sheet[:] = (0x030206, 0x080307, 0x060501)[step // 16]
    q_mur.iBltNear32_Z_Roto_KeySrc_Add(
        rose, sheet, (0, 0, HEIGHT, HEIGHT), (0, 0, 160, 160), HEIGHT // 2, HEIGHT // 2, 0.09 * step, 1.4 * 0.94**step
    )
save("2-rose", rose)

# %% A part of an array is a surface, too. Half of the rose is seen over the sky.
scene = sky.copy()
q_mur.iBltFast32Alpha(scene[:, 80:400], rose, 0, 0, (0, 0, HEIGHT, HEIGHT), 0.5)
save("3-over-the-sky", scene)

# %% Bytes in the order blue, green, red, top are the same pixels.
channels = scene.view(np.uint8).reshape(HEIGHT, WIDTH, 4)
q_mur.iFillRect(channels, (20, 20, 60, 60), 0xFFC040)
assert scene[30, 30] == 0xFFC040 and list(channels[30, 30]) == [0x40, 0xC0, 0xFF, 0]
for radius in range(60, 4, -8):
    q_mur.Draw_Light(channels, 400, 240, radius, 0x2040A0, 40)
save("4-lights", scene)

# %% A mistake is named, and nothing is drawn.
try:
    q_mur.iFillRect(scene, (0, 0, WIDTH + 1, HEIGHT), 0)
except ValueError as mistake:
    print(mistake)
assert scene[30, 30] == 0xFFC040
