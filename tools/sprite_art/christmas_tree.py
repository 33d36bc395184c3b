"""A decorated Christmas tree in the snow, with presents under it and a snowman beside it."""

import math

from .canvas import Canvas, Noise, Random, clamp, cosine, curve, ellipse, mix, outline, ramp, rgb, shade, sine, smooth
from .canvas import star, stroke

WHITE = rgb(0xFFFFFF)
SNOW = ramp((0.0, 0x8FB0DC), (0.35, 0xC3D8F0), (0.7, 0xEAF2FB), (1.0, 0xFFFFFF))
GOLD = ramp((0.0, 0x8A5208), (0.35, 0xE29A18), (0.65, 0xFFD24A), (1.0, 0xFFF6C4))

NEAR_GREENS = (rgb(0x06281C), rgb(0x0E4A2C), rgb(0x1E7438), rgb(0x4BA648))
FAR_GREENS = (rgb(0x153B45), rgb(0x23545A), rgb(0x3A7475), rgb(0x6BA39A))

LAMPS = (rgb(0xFFC23A), rgb(0xFF7A3A), rgb(0x7FE0FF), rgb(0xFF6FA8))
RED, BLUE, AMBER, SILVER, PINK = rgb(0xE0182C), rgb(0x2466E8), rgb(0xF7A81B), rgb(0xC9D6E6), rgb(0xE83E9C)


def greens(table, t):
    t = clamp(t) * (len(table) - 1)
    index = min(int(t), len(table) - 2)
    return mix(table[index], table[index + 1], t - index)


def ground(canvas):
    hills = Noise(3)

    def paint(x, y):
        top = 334 + 40 * ((x - 256) / 256) * ((x - 256) / 256)
        t = 0.98 - 0.55 * smooth(0, 56, y - top) + 0.22 * (hills.at(x / 46, y / 11) - 0.5)
        shadow = 1 - ((x - 276) / 168) * ((x - 276) / 168) - ((y - 356) / 17) * ((y - 356) / 17)
        t -= 0.50 * smooth(0, 0.9, shadow)
        shadow = 1 - ((x - 108) / 58) * ((x - 108) / 58) - ((y - 364) / 9) * ((y - 364) / 9)
        return SNOW(t - 0.4 * smooth(0, 0.9, shadow))

    canvas.fill(
        outline(
            "M 3 369 C 22 350 52 347 84 344 C 138 339 190 329 256 329 C 330 329 380 341 426 345 "
            "C 466 347 492 354 509 369 C 507 378 428 383 256 383 C 86 383 6 379 3 369 Z"
        ),
        paint,
    )


def fir(canvas, middle, top, bottom, half, tiers, boughs, table, snow, random):
    """Tiers of boughs from the lowest to the highest, each laid over the one below. Answers the tiers' edges."""
    height = bottom - top
    trunk = half * 0.12
    canvas.fill(
        outline(
            f"M {middle - trunk} {bottom - height * 0.2} L {middle + trunk} {bottom - height * 0.2} "
            f"L {middle + trunk * 1.25} {bottom + height * 0.05} L {middle - trunk * 1.25} {bottom + height * 0.05} Z"
        ),
        lambda x, y: mix(rgb(0x7A4A26), rgb(0x2C1710), clamp((x - middle + trunk) / (2 * trunk))),
    )
    edges = []
    for tier in reversed(range(tiers)):
        low = top + height * (0.24 + 0.76 * (tier + 0.0) / (tiers - 1)) if tiers > 1 else bottom
        high = top if tier == 0 else top + (low - top) * (0.30 if tier == 1 else 0.46)
        reach = half * (0.27 + 0.73 * tier / (tiers - 1))
        drop = (low - high) * 0.24  # from the side tips to the middle of the lower edge
        edges.append((low, reach, drop))

        canvas.fill(
            outline(
                f"M {middle} {high} C {middle + reach * 0.22} {high + (low - high) * 0.42} {middle + reach * 0.55} "
                f"{low - drop * 1.8} {middle + reach * 0.90} {low - drop} C {middle + reach * 0.5} {low - 2} "
                f"{middle - reach * 0.5} {low - 2} {middle - reach * 0.90} {low - drop} C {middle - reach * 0.55} "
                f"{low - drop * 1.8} {middle - reach * 0.22} {high + (low - high) * 0.42} {middle} {high} Z"
            ),
            lambda x, y, high=high, low=low: greens(table, 0.12 + 0.20 * (y - high) / (low - high)),
        )
        # From the outermost boughs inwards, so that those in the middle hang over their neighbours.
        spots = [2 * (i + 0.5) / boughs - 1 for i in range(boughs)]
        for spot in sorted(spots, key=lambda s: -abs(s)):
            spot += random.between(-0.5, 0.5) / boughs
            end_x = middle + reach * spot
            end_y = low - drop * spot * spot + random.between(-1, 1) * height * 0.008
            # The boughs of the top fall steeply, the others spread out first.
            spread, fall = (0.30, 0.50) if tier == 0 else (0.55, 0.32)
            start = (middle + reach * spot * (0.04 if tier == 0 else 0.16), high + (low - high) * 0.30)
            if tier == 0:
                start = (start[0], high + (low - high) * (0.02 + 0.16 * (1 - abs(spot))))
            bend = (start[0] + (end_x - start[0]) * spread, start[1] + (end_y - start[1]) * fall)
            twig = [start] + curve(start, bend, (end_x, end_y - height * 0.045), (end_x, end_y), steps=14)
            light = 0.54 - 0.20 * spot + random.between(-0.07, 0.07)
            size = 0.040 * height
            for i in range(1 if tier == 0 else 3, len(twig)):
                (x0, y0), (x1, y1) = twig[i - 1], twig[i]
                way = math.sqrt((x1 - x0) * (x1 - x0) + (y1 - y0) * (y1 - y0)) or 1.0
                u, v = (x1 - x0) / way, (y1 - y0) / way
                t = i / (len(twig) - 1)
                for side in (-1, 1, -1, 1, 0):
                    spread = side * random.between(0.45, 1.0)
                    length = size * random.between(0.75, 1.2) * (0.35 + 0.65 * t if tier == 0 else 1.12 - 0.3 * t)
                    du, dv = u - v * spread, v + u * spread
                    norm = math.sqrt(du * du + dv * dv)
                    x, y = x0 + random.between(-1, 1), y0 + random.between(-1, 1)
                    tip = (x + du / norm * length, y + dv / norm * length)
                    shine = light - 0.34 + 0.52 * t + (0.10 if side < 0 else -0.06) + random.between(-0.10, 0.10)
                    canvas.fill(
                        stroke([(x, y), tip], size * 0.25, size * 0.05, round_ends=False), greens(table, shine)
                    )
            # Snow lies where a bough levels out, thicker towards its end.
            if random.unit() < snow * (0.35 + 0.9 * abs(spot)):
                wide = size * (0.66 + 0.3 * abs(spot)) * random.between(0.85, 1.2)
                ridge = [(x, y - size * 0.2) for x, y in twig[random.choice((9, 10, 11)) : 14]]
                lumps = stroke(ridge, wide * 0.5, wide)
                x, y = ridge[len(ridge) // 2]
                long = abs(ridge[-1][0] - ridge[0][0]) + abs(ridge[-1][1] - ridge[0][1]) + wide

                def paint(px, py, x=x, y=y, long=long):
                    return SNOW(0.74 - 0.85 * ((px - x) * 0.45 + (py - y) * 0.75) / long)

                canvas.fill([[(px + 1, py + size * 0.16) for px, py in lump] for lump in lumps], SNOW(0.0), inside=True)
                canvas.fill(lumps, paint)
        # The next tier's shade
        if tier:
            above = top + height * (0.24 + 0.76 * (tier - 1) / (tiers - 1))

            def shadow(x, y, above=above, reach=reach):
                side = (x - middle) / (reach * 0.9)
                depth = smooth(above + height * 0.12, above - height * 0.02, y) * clamp(1 - side * side)
                return (4, 36, 58, 0.62 * depth)

            canvas.fill(ellipse(middle, above, reach * 0.85, height * 0.13), shadow, inside=True)
    return edges[::-1]


def bauble(canvas, x, y, radius, colour, random):
    canvas.fill(ellipse(x + 1.5, y + 2.5, radius * 1.1, radius * 1.1), (2, 18, 16), opacity=0.45, inside=True)
    canvas.ball(x, y, radius, colour)
    if random.unit() < 0.5:  # a band of stars
        for step in (-0.62, -0.21, 0.21, 0.62):
            canvas.fill(
                star(x + step * radius, y + radius * (0.22 - 0.20 * step * step), radius * 0.20, radius * 0.08, 4),
                mix(colour, (255, 246, 214), 0.85),
            )
    canvas.fill(
        outline(
            f"M {x - radius * 0.27} {y - radius * 0.92} L {x + radius * 0.27} {y - radius * 0.92} "
            f"L {x + radius * 0.24} {y - radius * 1.24} L {x - radius * 0.24} {y - radius * 1.24} Z"
        ),
        lambda px, py: GOLD(0.85 - 0.5 * (px - x + radius * 0.27) / (radius * 0.54)),
    )
    canvas.fill(stroke(ellipse(x, y - radius * 1.36, radius * 0.13, steps=10)[0], 1.0), GOLD(0.7))


def lamp(canvas, x, y, colour):
    canvas.glow(x, y, 11, mix(colour, (255, 230, 170), 0.35), 0.62)
    canvas.fill(ellipse(x, y, 2.1, 3.0, steps=14), lambda px, py: mix(WHITE, colour, clamp((py - y + 2.4) / 5)))


def topper(canvas, x, y):
    outer, inner = 31, 13
    canvas.glow(x, y + 14, 50, (255, 222, 110), 0.55)
    corners = star(x, y, outer, inner, 5)[0]
    for i, (corner, following) in enumerate(zip(corners, corners[1:] + corners[:1])):
        u, v = (corner[0] + following[0]) / 2 - x, (corner[1] + following[1]) / 2 - y
        facing = -0.5 * u / outer - 0.6 * v / outer
        tone = 0.58 + 0.30 * facing + (0.19 if i % 2 else -0.13)

        def paint(px, py, tone=tone):
            far = math.sqrt((px - x) * (px - x) + (py - y) * (py - y)) / outer
            return GOLD(tone + 0.28 * (1 - far) * (1 - far))

        # Each facet a little over its neighbours, so that no seam shows between them.
        grown = [(px + (px - x) * 0.015, py + (py - y) * 0.015) for px, py in (corner, following)]
        canvas.fill([[(x, y)] + grown], paint)
        fold = stroke([(x, y), corner], 0.9, 0.5, round_ends=False)
        canvas.fill(fold, GOLD(0.3 if i % 2 else 0.92), opacity=0.55)
    canvas.glow(x - 3, y - 4, 12, (255, 255, 255), 0.9)


def present(canvas, x, y, width, height, colour, ribbon):
    """A parcel that stands on (x, y) with the middle of its foot."""
    left, right, top = x - width / 2, x + width / 2, y - height
    lid = height * 0.26
    canvas.fill(ellipse(x + 5, y, width * 0.62, 5), rgb(0x5F83B8), opacity=0.6, inside=True)

    def face(px, py):
        t = clamp((px - left) / width * 0.8 + (py - top) / height * 0.25)
        return mix(mix(colour, WHITE, 0.16), shade(colour, 0.50), t)

    def band(px, py):
        return mix(mix(ribbon, WHITE, 0.35), shade(ribbon, 0.62), clamp((px - x + width * 0.1) / (width * 0.2)))

    def box(x0, y0, x1, y1):
        return [[(x0, y0), (x1, y0), (x1, y1), (x0, y1)]]

    canvas.fill(box(left, top, right, y), face)
    for i in (0.16, 0.50, 0.84):
        for j in (0.28, 0.70):
            dot = ellipse(left + width * i, top + lid + (height - lid) * j, 1.9, steps=10)
            canvas.fill(dot, mix(ribbon, WHITE, 0.2), opacity=0.75)
    canvas.fill(box(x - width * 0.09, top, x + width * 0.09, y), band)
    canvas.fill(
        box(left - 3, top, right + 3, top + lid),
        lambda px, py: mix(face(px, py), WHITE, 0.22 * (1 - (py - top) / lid)),
    )
    canvas.fill(box(left, top + lid, right, top + lid + 3), shade(colour, 0.35), opacity=0.7)
    canvas.fill(box(x - width * 0.09, top, x + width * 0.09, top + lid), band)

    def satin(px, py):
        return mix(mix(ribbon, WHITE, 0.35), shade(ribbon, 0.6), clamp((py - top + 15) / 16))

    for loop, hole in (
        ("M 0 0 C 5 -16 20 -18 20 -8 C 20 -1 8 1 0 0 Z", "M 3 -2 C 7 -11 15 -13 15 -7 C 14 -3 8 -2 3 -2 Z"),
        ("M 0 0 C -5 -16 -20 -18 -20 -8 C -20 -1 -8 1 0 0 Z", "M -3 -2 C -7 -11 -15 -13 -15 -7 C -14 -3 -8 -2 -3 -2 Z"),
    ):
        canvas.fill(outline(loop, x, top), satin)
        canvas.fill(outline(hole, x, top), shade(ribbon, 0.45))
    canvas.ball(x, top - 3, 4.4, ribbon, 0.5)


def snowball(canvas, x, y, radius):
    def paint(px, py):
        u, v = (px - x) / radius, (py - y) / radius
        w = math.sqrt(max(0.0, 1 - u * u - v * v))
        return SNOW(0.50 - 0.30 * u - 0.38 * v + 0.28 * w + 0.10 * clamp(u + v - 0.9))

    canvas.fill(ellipse(x, y, radius, radius * 0.95), paint)


def snowman(canvas, x, y):
    twig = rgb(0x5B371D)
    for side, tip in ((-1, (x - 54, y - 104)), (1, (x + 50, y - 96))):
        elbow = (x + side * 34, y - 78)
        canvas.fill(stroke([(x + side * 18, y - 72), elbow, tip], 4.2, 2.4), twig)
        canvas.fill(stroke([elbow, (tip[0] + side * 4, tip[1] + 16)], 2.4, 1.4), twig)
        canvas.fill(stroke([tip, (tip[0] - side * 6, tip[1] - 8)], 2.0, 1.2), twig)
        canvas.fill(stroke([tip, (tip[0] + side * 7, tip[1] - 4)], 2.0, 1.2), twig)
    snowball(canvas, x, y - 28, 35)
    canvas.fill(ellipse(x + 2, y - 52, 24, 7), rgb(0x6F93C8), opacity=0.35, inside=True)
    snowball(canvas, x, y - 74, 26)
    canvas.fill(ellipse(x + 2, y - 92, 17, 5), rgb(0x6F93C8), opacity=0.4, inside=True)
    snowball(canvas, x, y - 109, 19.5)
    for row in (-82, -68, -52):
        canvas.ball(x - 2, y + row, 2.9, rgb(0x2A2F3A))

    def wool(px, py):
        stripe = math.floor((px - x) / 7 + (py - y) / 26)
        base = RED if stripe % 2 else rgb(0xF4EFE4)
        return mix(mix(base, WHITE, 0.12), shade(base, 0.55), clamp((px - x + 16) / 40 + (py - y + 96) / 40))

    canvas.fill(outline("M 9 -92 L 21 -90 L 25 -58 L 12 -56 Z", x, y), wool)
    scarf = "M -19 -99 C -8 -90 9 -90 19 -99 L 20 -90 C 10 -80 -10 -80 -20 -90 Z"
    canvas.fill(outline(scarf, x, y), wool)

    for side in (-1, 1):
        canvas.ball(x + side * 6.6 + 1, y - 114, 2.8, rgb(0x20242E))
    for step in range(-2, 3):
        canvas.fill(ellipse(x + 1 + step * 3.6, y - 100.5 - 0.55 * step * step, 1.25, steps=10), rgb(0x20242E))
    carrot = "M 0 -111 C 8 -111 17 -107 24 -104.5 C 16 -103.5 7 -103.5 0 -105 C -3 -107 -3 -110 0 -111 Z"
    canvas.fill(
        outline(carrot, x, y), lambda px, py: mix(rgb(0xFFB347), rgb(0xD9560F), clamp((py - y + 111) / 6))
    )

    def felt(px, py):
        return mix(rgb(0x4E5668), rgb(0x171A24), clamp((px - x + 13) / 24))

    def hatband(px, py):
        return mix(rgb(0xF23B45), rgb(0x8E0F22), clamp((px - x + 14) / 28))

    crown = "M -15 -125 L -14 -149 C -6 -152.5 6 -153.5 14 -151 L 15 -126 C 6 -121.5 -6 -121 -15 -125 Z"
    band = "M -15 -126 L -14.7 -132 C -6 -128 6 -128.5 14.8 -132.5 L 15 -126.5 C 6 -122 -6 -121.5 -15 -126 Z"
    canvas.fill(ellipse(x, y - 124, 24, 5.5, -4), felt)
    canvas.fill(outline(crown, x, y), felt)
    canvas.fill(outline(band, x, y), hatband)
    canvas.fill(ellipse(x - 2, y - 151.5, 12, 3.2, -3, steps=20), lambda px, py: SNOW(0.8 - 0.2 * (py - y + 151) / 3))


def flake(canvas, x, y, radius, turn):
    colour = rgb(0xBFD9F5)
    for arm in range(3 if radius > 4 else 0):
        u, v = cosine(turn + 60 * arm), sine(turn + 60 * arm)
        canvas.fill(stroke([(x - u * radius, y - v * radius), (x + u * radius, y + v * radius)], 1.7), colour)
        for end in (-1, 1):
            root = (x + u * radius * 0.55 * end, y + v * radius * 0.55 * end)
            for way in (-1, 1):
                p, q = cosine(turn + 60 * arm + 52 * way), sine(turn + 60 * arm + 52 * way)
                barb = (root[0] + p * radius * 0.38 * end, root[1] + q * radius * 0.38 * end)
                canvas.fill(stroke([root, barb], 1.5), colour)
    if radius <= 4:
        canvas.fill(ellipse(x, y, radius, steps=16), lambda px, py: SNOW(0.8 - 0.35 * (px + py - x - y) / radius))


def garland(canvas, middle, low, reach, drop, lift):
    """A chain of beads that swings from one side of a tier to the other."""
    beads = max(8, int(reach * 2 / 6.2))
    for i in range(beads + 1):
        t = 2 * i / beads - 1
        x = middle + reach * 0.80 * t
        sag = 0.5 + 0.5 * cosine(540 * t)  # three swags
        y = low - lift - drop * 0.95 * t * t - 9 * sag
        canvas.fill(ellipse(x + 0.7, y + 1.4, 2.9, steps=12), (2, 18, 16), opacity=0.4, inside=True)
        canvas.ball(x, y, 2.5, rgb(0xF4B428))


def draw(width, height):
    canvas = Canvas(width, height)
    random = Random(7)
    middle = 262

    fir(canvas, 46, 232, 346, 40, 4, 9, FAR_GREENS, 0.8, random)
    fir(canvas, 470, 190, 350, 40, 5, 9, FAR_GREENS, 0.8, random)
    fir(canvas, 424, 250, 346, 30, 4, 9, FAR_GREENS, 0.8, random)
    ground(canvas)
    edges = fir(canvas, middle, 44, 346, 132, 6, 15, NEAR_GREENS, 0.74, random)

    for low, reach, drop in edges[1:]:
        garland(canvas, middle, low, reach, drop, 21)
    colours = (RED, AMBER, BLUE, PINK, SILVER)
    for tier, (low, reach, drop) in enumerate(edges):
        count = (1, 2, 3, 4, 4, 5)[tier]
        for i in range(count):
            spot = (2 * (i + 0.5) / count - 1) * 0.82 + random.between(-0.05, 0.05)
            y = low - drop * spot * spot - 5 + random.between(-3, 3)
            colour = colours[(i * 2 + tier * 3) % len(colours)]
            bauble(canvas, middle + reach * spot, y, 6.4 + 0.65 * tier + random.between(0, 1), colour, random)
        for i in range(count + 2):
            spot = (2 * (i + 0.5) / (count + 2) - 1) * 0.74 + random.between(-0.06, 0.06)
            y = low - drop * spot * spot - 30 - random.between(-3, 5)
            if tier:
                lamp(canvas, middle + reach * spot, y, LAMPS[i % 4])
    topper(canvas, middle, 33)

    present(canvas, 350, 372, 50, 40, rgb(0x1F57C8), rgb(0xF4C430))
    present(canvas, 300, 378, 42, 28, rgb(0xC8182C), rgb(0xF6F0E0))
    present(canvas, 204, 376, 46, 34, rgb(0x7A35B8), rgb(0x6FD8C0))
    snowman(canvas, 98, 368)

    for _ in range(70):
        x, y = random.between(14, width - 14), random.between(12, 300)
        radius = random.between(1.6, 3.2) if random.unit() < 0.68 else random.between(5.5, 8.5)
        margin = radius + 5
        spots = [(x + u * margin, y + v * margin) for u in (-1, -0.5, 0, 0.5, 1) for v in (-1, -0.5, 0, 0.5, 1)]
        inside = [(u, v) for u, v in spots if 0 <= u < width and 0 <= v < height]
        if len(inside) == len(spots) and not any(canvas.cover[int(v) * width + int(u)] for u, v in inside):
            flake(canvas, x, y, radius, random.between(0, 60))
    return canvas
