"""Red flames that leap from a bed of fire, with sparks above them."""

import math

from .canvas import Canvas, Noise, Random, clamp, ellipse, mix, ramp, smooth

HEAT = ramp(
    (0.00, 0xB00A0A),
    (0.16, 0xD3140A),
    (0.34, 0xEE330C),
    (0.50, 0xFB6512),
    (0.64, 0xFF961E),
    (0.78, 0xFFC63A),
    (0.90, 0xFFE878),
    (1.00, 0xFFFAD8),
)

# Where a tongue stands, how high it reaches, its width at the foot, how far its tip bends over and how much it sways.
TONGUES = (
    (165, 348, 74, 10, 20),
    (112, 268, 56, -26, 16),
    (222, 282, 58, 24, -18),
    (62, 182, 46, -12, -13),
    (272, 196, 46, 14, 14),
    (140, 214, 50, 22, -14),
    (194, 206, 50, -20, 12),
    (90, 118, 40, 14, 8),
    (246, 122, 40, -14, -8),
)


def draw(width, height):
    canvas = Canvas(width, height)
    slow, quick, fine = Noise(11), Noise(12), Noise(13)
    foot = height - 12

    def heat(x, y):
        # The air drags the flames about, more so further up.
        rise = (foot - y) / height
        pull = 8 + 40 * clamp(rise)
        x += pull * (slow.at(x / 58, y / 74) - 0.5) + 13 * (quick.at(x / 24 + 7, y / 36) - 0.5)
        y += 26 * (slow.at(x / 46 + 31, y / 58 + 17) - 0.5)
        best = rest = 0.0
        for place, reach, breadth, bend, sway in TONGUES:
            t = (foot - y) / reach
            if t < -0.2 or t >= 1:
                continue
            t = t if t > 0 else 0.0
            middle = place + bend * t * t + sway * t * (1 - t) * (1 - 2 * t) * 6
            # A belly low down, hollow flanks above it and a sharp tip.
            half = breadth * (1 - t) * (0.62 + 1.25 * t * (1 - t)) * (1 - 0.25 * t)
            across = (x - middle) / half if half > 0.3 else 9.0
            value = 1 - across * across
            if value <= 0:
                continue
            value *= 1.06 - 0.62 * t
            if value > best:
                best, rest = value, best
            elif value > rest:
                rest = value
        return best + 0.28 * rest

    def bed(x, y):
        """How far a place lies above the round, uneven underside of the fire, 0 to 1."""
        u = (x - width / 2) / (width / 2 - 3)
        underside = foot + 8 - 66 * u * u * u * u - 30 * u * u + 16 * (quick.at(x / 21 + 40, 3) - 0.5)
        return smooth(0, 44, underside - y) * smooth(0.0, 0.12, 1 - u * u)

    cut = 0.2

    def paint(x, y):
        value = heat(x, y) * bed(x, y)
        value += 0.10 * (fine.at(x / 9, y / 22) - 0.5) * smooth(0.15, 0.5, value)
        if value < cut:
            return (0, 0, 0, 0.0)
        t = clamp((value - cut) / (1.16 - cut))
        return (*HEAT(t * (1.1 - 0.1 * t)), 1.0)

    canvas.fill(canvas.box(), paint)

    random = Random(21)
    for _ in range(48):
        x, y = random.between(24, width - 24), random.between(14, 250)
        if max(canvas.cover[int(y + v) * width + int(x + u)] for u in (-5, 0, 5) for v in (-5, 0, 5)) > 0:
            continue  # in the flames
        size = random.between(1.2, 3.6)
        heart = HEAT(random.between(0.45, 0.8))

        def spark(px, py, x=x, y=y, size=size, heart=heart):
            d = math.sqrt((px - x) * (px - x) + (py - y) * (py - y)) / size
            return mix(heart, HEAT(0.3), clamp(d * 0.9))

        canvas.fill(ellipse(x, y, size * 0.75, size * 1.35, random.between(-25, 25), steps=16), spark)
    return canvas
