"""Picture files read and written by hand, so that what the program reads and writes is checked by other code."""

import base64
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
    rows = [b"".join(map(bytes, picture.cut(0, y, picture.width, 1).pixels)) for y in range(picture.height)]
    return png_of(picture.width, picture.height, 8, 2, rows)


def bmp_bytes(picture):
    padding = b"\0" * (-3 * picture.width % 4)
    rows = b"".join(b"".join(bytes(reversed(picture.at(x, y))) for x in range(picture.width)) + padding
                    for y in reversed(range(picture.height)))
    sizes = (40, picture.width, picture.height, 1, 24, 0, len(rows), 2835, 2835, 0, 0)
    return b"BM" + struct.pack("<IHHI", 54 + len(rows), 0, 0, 54) + struct.pack("<IiiHHIIiiII", *sizes) + rows


def paeth(left, above, corner):
    guess = left + above - corner
    distances = [abs(guess - left), abs(guess - above), abs(guess - corner)]
    return [left, above, corner][distances.index(min(distances))]


def read_png(path):
    data = path.read_bytes()
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


def with_exif(jpeg, segment):
    return jpeg[:2] + b"\xff\xe1" + struct.pack(">H", len(segment) + 2) + segment + jpeg[2:]


def exif(orientation=1, taken=None, description=b"", comment=b""):
    """An Exif structure that notes how the camera was held, and when, and what somebody wrote of the picture."""

    def directory(place, entries):
        """Text stands behind the directory, unless it is short enough for its entry."""
        entries = [entry for entry in entries if entry[2]]
        text_place = place + 2 + 12 * len(entries) + 4
        rows, texts = b"", b""
        for tag, kind, value in entries:
            if not isinstance(value, bytes):
                rows += struct.pack(">HHI", tag, kind, 1) + (struct.pack(">HH", value, 0) if kind == 3 else struct.pack(">I", value))
                continue
            inline = len(value) <= 4
            rows += struct.pack(">HHI", tag, kind, len(value))
            rows += value.ljust(4, b"\0") if inline else struct.pack(">I", text_place + len(texts))
            texts += b"" if inline else value
        return struct.pack(">H", len(entries)) + rows + struct.pack(">I", 0) + texts

    first = [(0x010E, 2, description), (0x0112, 3, orientation)]
    second = [(0x9003, 2, taken and taken.encode() + b"\0"), (0x9286, 7, comment)]
    behind = 0
    if taken or comment:
        behind = 8 + len(directory(8, [*first, (0x8769, 4, 1)]))
    inner = directory(behind, second) if behind else b""
    return b"MM" + struct.pack(">HI", 42, 8) + directory(8, [*first, (0x8769, 4, behind)]) + inner


def iptc(caption):
    """A JPEG segment's content with an IPTC record, as Photoshop writes it, whose caption stands behind its title."""
    record = b"".join(b"\x1c\x02" + bytes([kind]) + struct.pack(">H", len(text)) + text
                      for kind, text in ((5, b"a title"), (120, caption)))
    blocks = ((0x0425, b"", b"odd"), (0x0404, b"name", record))
    return b"Photoshop 3.0\0" + b"".join(
        b"8BIM" + struct.pack(">HB", kind, len(name)) + name + b"\0" * ((len(name) + 1) % 2)
        + struct.pack(">I", len(data)) + data + b"\0" * (len(data) % 2) for kind, name, data in blocks)


def profile(columns, gamma=None, name=b"of a test"):
    """An ICC profile whose channels are such columns of XYZ; straight lines lead to them, or powers of `gamma`."""

    def fixed(value):
        return struct.pack(">i", round(value * 65536))

    text = struct.pack(">I", len(name) + 1) + name + bytes(1 + 8 + 3 + 67)
    curve = b"curv" + bytes(4) + (struct.pack(">I", 0) if gamma is None else struct.pack(">IHH", 1, round(gamma * 256), 0))
    contents = {b"desc": b"desc" + bytes(4) + text, b"wtpt": b"XYZ " + bytes(4) + b"".join(map(fixed, (0.9642, 1, 0.8249)))}
    for channel, column in zip((b"r", b"g", b"b"), columns):
        contents[channel + b"XYZ"] = b"XYZ " + bytes(4) + b"".join(map(fixed, column))
        contents[channel + b"TRC"] = curve
    table, data = struct.pack(">I", len(contents)), b""
    for tag, content in contents.items():
        table += tag + struct.pack(">II", 128 + 4 + 12 * len(contents) + len(data), len(content))
        data += content + bytes(-len(content) % 4)
    header = (struct.pack(">I4sI4s4s4s", 128 + len(table) + len(data), b"test", 0x02100000, b"mntr", b"RGB ", b"XYZ ")
              + bytes(12) + b"acsp" + bytes(28) + b"".join(map(fixed, (0.9642, 1, 0.8249))))
    return header + bytes(128 - len(header)) + table + data


def png_of(width, height, depth, colour, rows, *chunks):
    """A PNG file of rows that are bytes already, with further chunks between header and picture."""
    header = struct.pack(">IIBBBBB", width, height, depth, colour, 0, 0, 0)
    data = zlib.compress(b"".join(b"\0" + row for row in rows))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + b"".join(chunks) + chunk(b"IDAT", data)
            + chunk(b"IEND", b""))


class BitWriter:
    def __init__(self):
        self.text = ""

    def put(self, value, bits):
        if bits:
            self.text += format(value, f"0{bits}b")

    def bytes(self):
        text = self.text + "1" * (-len(self.text) % 8)
        return bytes(int(text[i : i + 8], 2) for i in range(0, len(text), 8)).replace(b"\xff", b"\xff\0")


def segment(marker, data):
    return bytes([0xFF, marker]) + struct.pack(">H", len(data) + 2) + data


# Codes of four bits for each length that the difference of two means may have, and one of a single bit for "all else 0".
DIFFERENCES = b"\0" + bytes([0, 0, 0, 12] + [0] * 12) + bytes(range(12))
REST = b"\x10" + bytes([1] + [0] * 15) + b"\0"


def jpeg_bytes(blocks, components, tables=DIFFERENCES + REST, markers=b""):
    """A JPEG file of even squares of 8 pixels. `blocks` are rows of tuples, a value for each of the components; four of
    them are inks, as Adobe stores them. `markers` stand behind the start."""
    numbers = range(1, components + 1)
    frame = struct.pack(">BHHB", 8, 8 * len(blocks), 8 * len(blocks[0]), components)
    frame += b"".join(bytes([number, 0x11, 0]) for number in numbers)
    scan = bytes([components]) + b"".join(bytes([number, 0]) for number in numbers) + b"\0\x3f\0"
    bits = BitWriter()
    before = [0] * components
    for row in blocks:
        for block in row:
            for i, value in enumerate(block):
                difference = value - 128 - before[i]
                before[i] = value - 128
                length = abs(difference).bit_length()
                bits.put(length, 4)
                bits.put(difference if difference >= 0 else difference + (1 << length) - 1, length)
                bits.put(0, 1)
    return (b"\xff\xd8" + markers
            + (segment(0xEE, b"Adobe\0\x64\0\0\0\0\0") if components == 4 else b"")
            + segment(0xDB, b"\0" + b"\x08" * 64) + segment(0xC0, frame) + segment(0xC4, tables)
            + segment(0xDA, scan) + bits.bytes() + b"\xff\xd9")


# 64 x 64 pixels in four squares: red, green, blue and white. WebP is lossless, the others are not quite.
QUARTERS = [(220, 30, 30), (30, 200, 30), (30, 30, 220), (230, 230, 230)]
WEBP = base64.b64decode("""
    UklGRkYAAABXRUJQVlA4TDkAAAAvP8APAB8gECBkaRamSUhA2Ob/DhNkIQFxSzbcHDvmP+4OTAhEAiSe9KQnTQygRfR/AopH34ZB3wAA
""")
HEIC = base64.b64decode("""
    AAAAHGZ0eXBoZWljAAAAAG1pZjFoZWljbWlhZgAAAUJtZXRhAAAAAAAAACFoZGxyAAAAAAAAAABwaWN0AAAAAAAAAAAAAAAAAAAAAA5waXRtAA
    AAAAABAAAAImlsb2MAAAAAREAAAQABAAAAAAFmAAEAAAAAAAAAQAAAACNpaW5mAAAAAAABAAAAFWluZmUCAAAAAAEAAGh2YzEAAAAAwmlwcnAA
    AACkaXBjbwAAAHhodmNDAQNwAAAAAAAAAAAAHvAA/P34+AAADwMgAAEAGEABDAH//wNwAAADAJAAAAMAAAMAHroCQCEAAQArQgEBA3AAAAMAkA
    AAAwAAAwAeoCCBBZbqSSmubgQEDAgAAAMACAAAAwAIQCIAAQAHRAHBcrAiQAAAABRpc3BlAAAAAAAAAEAAAABAAAAAEHBpeGkAAAAAAwgICAAA
    ABZpcG1hAAAAAAAAAAEAAQOBAoMAAABIbWRhdAAAADwoAa8J4CE5dV///II///xiNyH8Ch9nnn397p/2xb//zoOcJ//l4RAfzz01/8g4Ns7//v
    VqdPptrhfYUiw=
""")
