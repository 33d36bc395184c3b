"""A small painter: filled and stroked outlines with soft inner edges, colours that may vary from pixel to pixel.

The same pixels come out on every machine: beyond + - * / there is only the square root, which is exact to the last bit
everywhere, and sines are a sum of ours.
"""

import math

SUBROWS = 4  # rows of samples in a pixel; columns are covered exactly


# Numbers


def clamp(value, low=0.0, high=1.0):
    return low if value < low else high if value > high else value


def smooth(low, high, value):
    """0 up to `low`, 1 from `high` on, and a soft step between."""
    t = clamp((value - low) / (high - low))
    return t * t * (3 - 2 * t)


def sine(degrees):
    x = (degrees - 360 * math.floor(degrees / 360 + 0.5)) * 0.017453292519943295
    if x > 1.5707963267948966:
        x = 3.141592653589793 - x
    elif x < -1.5707963267948966:
        x = -3.141592653589793 - x
    term = total = x
    for n in (6, 20, 42, 72, 110, 156, 210, 272):
        term *= -x * x / n
        total += term
    return total


def cosine(degrees):
    return sine(degrees + 90)


class Random:
    """Evenly spread numbers, the same everywhere."""

    def __init__(self, seed):
        self.state = seed * 2654435761 % 4294967296

    def unit(self):
        self.state = (self.state * 1664525 + 1013904223) % 4294967296
        x = self.state
        x = (x ^ x >> 15) * 739982445 % 4294967296
        return (x ^ x >> 13) / 4294967296

    def between(self, low, high):
        return low + (high - low) * self.unit()

    def choice(self, things):
        return things[int(self.unit() * len(things))]


class Noise:
    """Smooth random hills, from 0 to 1, about one unit apart; they repeat after 64 units."""

    def __init__(self, seed):
        random = Random(seed)
        self.grid = [random.unit() for _ in range(64 * 64)]

    def at(self, x, y):
        column, row = math.floor(x), math.floor(y)
        u, v = x - column, y - row
        u *= u * (3 - 2 * u)
        v *= v * (3 - 2 * v)
        left, right = column & 63, column + 1 & 63
        above, below = (row & 63) * 64, (row + 1 & 63) * 64
        grid = self.grid
        a = grid[above + left]
        c = grid[below + left]
        a += (grid[above + right] - a) * u
        c += (grid[below + right] - c) * u
        return a + (c - a) * v


# Colours: red, green and blue from 0 to 255


def rgb(number):
    return (number >> 16 & 255, number >> 8 & 255, number & 255)


def mix(a, b, t):
    return (a[0] + (b[0] - a[0]) * t, a[1] + (b[1] - a[1]) * t, a[2] + (b[2] - a[2]) * t)


def shade(colour, factor):
    return (colour[0] * factor, colour[1] * factor, colour[2] * factor)


def ramp(*stops):
    """A function from a position to the colour there; stops are (position, colour number)."""
    table = [(position, rgb(number)) for position, number in stops]

    def colour_at(t):
        if t <= table[0][0]:
            return table[0][1]
        for (start, a), (end, b) in zip(table, table[1:]):
            if t < end:
                return mix(a, b, (t - start) / (end - start))
        return table[-1][1]

    return colour_at


# Outlines: lists of closed polygons, each a list of points


def outline(text, x=0.0, y=0.0):
    """Reads M, L, C and Z with coordinates from (x, y) on, otherwise as in SVG."""
    polygons, points, command, numbers = [], [], "", []
    for word in text.replace(",", " ").split() + ["Z"]:
        if word in ("M", "L", "C", "Z"):
            command = word
            if word in ("M", "Z") and points:
                polygons.append(points)
                points = []
            continue
        numbers.append(float(word) + (y if len(numbers) % 2 else x))
        if len(numbers) == (6 if command == "C" else 2):
            if command == "C":
                points += curve(points[-1], numbers[0:2], numbers[2:4], numbers[4:6])
            else:
                points.append((numbers[0], numbers[1]))
            numbers = []
    return polygons


def curve(start, handle1, handle2, end, steps=12):
    """Points of a cubic curve behind its start."""
    points = []
    for i in range(1, steps + 1):
        t = i / steps
        s = 1 - t
        a, b, c, d = s * s * s, 3 * s * s * t, 3 * s * t * t, t * t * t
        points.append(
            (
                a * start[0] + b * handle1[0] + c * handle2[0] + d * end[0],
                a * start[1] + b * handle1[1] + c * handle2[1] + d * end[1],
            )
        )
    return points


def ellipse(x, y, radius_x, radius_y=None, angle=0.0, steps=40):
    radius_y = radius_x if radius_y is None else radius_y
    c, s = cosine(angle), sine(angle)
    points = []
    for i in range(steps):
        u, v = radius_x * cosine(360 * i / steps), radius_y * sine(360 * i / steps)
        points.append((x + u * c - v * s, y + u * s + v * c))
    return [points]


def star(x, y, outer, inner, points, angle=-90.0):
    corners = []
    for i in range(2 * points):
        radius = inner if i % 2 else outer
        corners.append((x + radius * cosine(angle + 180 * i / points), y + radius * sine(angle + 180 * i / points)))
    return [corners]


def stroke(points, width, end_width=None, round_ends=True):
    """The outline of a line through points; its width goes evenly from one end to the other."""
    end_width = width if end_width is None else end_width
    count = len(points) - 1
    polygons = []
    for i in range(count):
        (x0, y0), (x1, y1) = points[i], points[i + 1]
        length = math.sqrt((x1 - x0) * (x1 - x0) + (y1 - y0) * (y1 - y0)) or 1.0
        a = (width + (end_width - width) * i / count) / 2
        b = (width + (end_width - width) * (i + 1) / count) / 2
        u, v = (y0 - y1) / length, (x1 - x0) / length
        polygons.append(
            [(x0 + u * a, y0 + v * a), (x0 - u * a, y0 - v * a), (x1 - u * b, y1 - v * b), (x1 + u * b, y1 + v * b)]
        )
        if round_ends or i:
            polygons += ellipse(x0, y0, a, steps=12)
    if round_ends:
        polygons += ellipse(points[-1][0], points[-1][1], end_width / 2, steps=12)
    return one_way(polygons)


def one_way(polygons):
    """All drawn the same way round, so that one fills where they overlap, and none cuts a hole into another."""

    def area(polygon):
        return sum(x0 * y1 - x1 * y0 for (x0, y0), (x1, y1) in zip(polygon, polygon[1:] + polygon[:1]))

    return [polygon if area(polygon) > 0 else polygon[::-1] for polygon in polygons]


def moved(polygons, scale, angle, x, y):
    """Turned about the origin (clockwise on the screen), scaled, and moved."""
    c, s = cosine(angle) * scale, sine(angle) * scale
    return [[(px * c - py * s + x, px * s + py * c + y) for px, py in polygon] for polygon in polygons]


class Canvas:
    def __init__(self, width, height):
        self.width = width
        self.height = height
        count = width * height
        self.red, self.green, self.blue = [0.0] * count, [0.0] * count, [0.0] * count  # times what is covered
        self.cover = [0.0] * count

    def coverage(self, polygons):
        """Yields row, first column and how far each pixel from there on is covered."""
        edges = []
        for polygon in polygons:
            for (x0, y0), (x1, y1) in zip(polygon, polygon[1:] + polygon[:1]):
                if y0 != y1:
                    edges.append((y0, y1, x0, (x1 - x0) / (y1 - y0), 1) if y0 < y1 else
                                 (y1, y0, x1, (x0 - x1) / (y0 - y1), -1))
        if not edges:
            return
        edges.sort()
        columns = [x for polygon in polygons for x, _ in polygon]
        first = max(0, math.floor(min(columns)))
        end = min(self.width, math.floor(max(columns)) + 1)
        top = max(0, math.floor(edges[0][0]))
        bottom = min(self.height, math.floor(max(edge[1] for edge in edges)) + 1)
        width = end - first
        if width <= 0:
            return
        active, upcoming = [], 0
        for row in range(top, bottom):
            while upcoming < len(edges) and edges[upcoming][0] < row + 1:
                active.append(edges[upcoming])
                upcoming += 1
            active = [edge for edge in active if edge[1] > row]
            change = [0.0] * (width + 2)
            for sub in range(SUBROWS):
                y = row + (sub + 0.5) / SUBROWS
                crossings = sorted((x + (y - y0) * slope, way) for y0, y1, x, slope, way in active if y0 <= y < y1)
                winding = 0
                for x, way in crossings:
                    before, winding = winding, winding + way
                    if (before == 0) == (winding == 0):
                        continue
                    x = clamp(x - first, 0.0, width)
                    column = int(x)
                    part = (x - column) / SUBROWS
                    if winding:
                        change[column] += 1 / SUBROWS - part
                        change[column + 1] += part
                    else:
                        change[column] -= 1 / SUBROWS - part
                        change[column + 1] -= part
            yield row, first, width, change

    def fill(self, polygons, paint, opacity=1.0, inside=False):
        """Paints a colour, or what `paint(x, y)` answers, a fourth number in it being its opacity. With `inside`, what
        is there is painted over and nothing is added around it."""
        red, green, blue, cover = self.red, self.green, self.blue, self.cover
        varies = callable(paint)
        if not varies:
            r, g, b = paint
        for row, first, width, change in self.coverage(polygons):
            covered = 0.0
            index = row * self.width + first
            for column in range(width):
                covered += change[column]
                if covered > 0.004:
                    weight = (covered if covered < 1 else 1.0) * opacity
                    if varies:
                        colour = paint(first + column + 0.5, row + 0.5)
                        r, g, b = colour[0], colour[1], colour[2]
                        if len(colour) > 3:
                            weight *= colour[3]
                    rest = 1 - weight
                    below = cover[index]
                    if inside:
                        weight *= below
                    red[index] = red[index] * rest + r * weight
                    green[index] = green[index] * rest + g * weight
                    blue[index] = blue[index] * rest + b * weight
                    cover[index] = below * rest + weight
                index += 1

    def box(self):
        return [[(0, 0), (self.width, 0), (self.width, self.height), (0, self.height)]]

    def glow(self, x, y, radius, colour, opacity):
        """Light around a point, on what is there."""

        def paint(px, py):
            d = 1 - ((px - x) * (px - x) + (py - y) * (py - y)) / (radius * radius)
            return (*colour, d * d if d > 0 else 0.0)

        self.fill(ellipse(x, y, radius, steps=24), paint, opacity, inside=True)

    def ball(self, x, y, radius, colour, gloss=1.0):
        """A shining ball, lit from the upper left."""
        dark, light = shade(colour, 0.28), mix(colour, (255, 255, 255), 0.25)

        def paint(px, py):
            u, v = (px - x) / radius, (py - y) / radius
            square = u * u + v * v
            w = math.sqrt(1 - square) if square < 1 else 0.0
            facing = -0.45 * u - 0.55 * v + 0.7 * w
            c = mix(dark, colour, clamp(facing * 1.5 + 0.25))
            c = mix(c, light, clamp(facing * 1.6 - 0.85))
            bounce = clamp(0.5 * u + 0.6 * v + 0.25 - w * 0.5) * 0.55  # the ground's light from below
            c = mix(c, light, bounce)
            spot = clamp(1 - ((u + 0.36) * (u + 0.36) + (v + 0.42) * (v + 0.42)) / 0.075)
            return mix(c, (255, 255, 255), spot * spot * 0.95 * gloss)

        self.fill(ellipse(x, y, radius, steps=32), paint)

    def pixels(self):
        """Rows of colours, None where nothing is. What is half covered or more is so wholly, in the figure's own
        colour: no ground is mixed into its edge."""
        rows = []
        for row in range(self.height):
            line = []
            for index in range(row * self.width, (row + 1) * self.width):
                covered = self.cover[index]
                if covered < 0.5:
                    line.append(None)
                else:
                    channels = (self.red[index], self.green[index], self.blue[index])
                    line.append(tuple(max(1, min(255, int(channel / covered + 0.5))) for channel in channels))
            rows.append(line)
        return rows
