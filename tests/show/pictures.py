"""Picture files read and written by hand, so that what the program reads and writes is checked by other code."""

import struct
import zlib


class Picture:
    """Rows of (red, green, blue)."""

    def __init__(self, width, height, pixels):
        self.width = width
        self.height = height
        self.pixels = pixels

    def at(self, x, y):
        return self.pixels[y * self.width + x]

    def cut(self, left, top, width, height):
        return Picture(width, height, [self.at(left + x, top + y) for y in range(height) for x in range(width)])

    def __eq__(self, other):
        return (self.width, self.height, self.pixels) == (other.width, other.height, other.pixels)


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def png_bytes(picture):
    rows = b"".join(
        b"\0" + b"".join(bytes(picture.at(x, y)) for x in range(picture.width)) for y in range(picture.height)
    )
    header = struct.pack(">IIBBBBB", picture.width, picture.height, 8, 2, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b"")


def bmp_bytes(picture):
    padding = b"\0" * (-3 * picture.width % 4)
    rows = b"".join(
        b"".join(bytes(reversed(picture.at(x, y))) for x in range(picture.width)) + padding
        for y in reversed(range(picture.height))
    )
    return (
        b"BM"
        + struct.pack("<IHHI", 54 + len(rows), 0, 0, 54)
        + struct.pack("<IiiHHIIiiII", 40, picture.width, picture.height, 1, 24, 0, len(rows), 2835, 2835, 0, 0)
        + rows
    )


def paeth(left, above, corner):
    guess = left + above - corner
    distances = [abs(guess - left), abs(guess - above), abs(guess - corner)]
    return [left, above, corner][distances.index(min(distances))]


def read_png(path):
    with open(path, "rb") as file:
        data = file.read()
    assert data[:8] == b"\x89PNG\r\n\x1a\n", f"{path} is no PNG file"
    place = 8
    compressed = b""
    while place < len(data):
        (length,) = struct.unpack(">I", data[place : place + 4])
        kind = data[place + 4 : place + 8]
        body = data[place + 8 : place + 8 + length]
        (checksum,) = struct.unpack(">I", data[place + 8 + length : place + 12 + length])
        assert checksum == zlib.crc32(kind + body), f"{path} has a damaged {kind}"
        if kind == b"IHDR":
            width, height, depth, colour, _, _, interlaced = struct.unpack(">IIBBBBB", body)
            assert (depth, colour, interlaced) == (8, 2, 0), f"{path} is not plain RGB"
        elif kind == b"IDAT":
            compressed += body
        place += 12 + length
    assert kind == b"IEND", f"{path} is cut off"

    raw = zlib.decompress(compressed)
    size = 3 * width
    previous = bytearray(size)
    pixels = []
    for y in range(height):
        method = raw[y * (size + 1)]
        row = bytearray(raw[y * (size + 1) + 1 : (y + 1) * (size + 1)])
        for i in range(size):
            left = row[i - 3] if i >= 3 else 0
            corner = previous[i - 3] if i >= 3 else 0
            above = previous[i]
            predicted = [0, left, above, (left + above) // 2, paeth(left, above, corner)][method]
            row[i] = (row[i] + predicted) & 0xFF
        pixels += [tuple(row[i : i + 3]) for i in range(0, size, 3)]
        previous = row
    return Picture(width, height, pixels)


def with_orientation(jpeg, orientation):
    """The JPEG file with an Exif segment that notes how the camera was held."""
    entry = struct.pack(">HHIHH", 0x0112, 3, 1, orientation, 0)
    tiff = b"MM" + struct.pack(">HIH", 42, 8, 1) + entry + struct.pack(">I", 0)
    segment = b"Exif\0\0" + tiff
    return jpeg[:2] + b"\xff\xe1" + struct.pack(">H", len(segment) + 2) + segment + jpeg[2:]
