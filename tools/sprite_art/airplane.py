"""An airliner in the climb, from its right side and a little above."""

from .canvas import Canvas, clamp, cosine, curve, mix, moved, outline, ramp, rgb, sine, smooth, stroke

# Drawn level with the nose to the right about (78, 57), then turned up and put where there is room for it.
CLIMB = -17
SCALE = 0.955
CENTRE = (80, 45)

WHITE = rgb(0xFFFFFF)
SKIN = ramp(
    (0.0, 0xB9C9DC),
    (0.12, 0xE6EEF6),
    (0.30, 0xFFFFFF),
    (0.52, 0xE9EEF5),
    (0.78, 0x9DAFC6),
    (0.93, 0x74889F),
    (1.0, 0x93A9C2),
)
METAL_NEAR = ramp((0.0, 0xF3F7FB), (0.45, 0xC3D0DE), (1.0, 0x7F93AB))
METAL_FAR = ramp((0.0, 0x8598AF), (1.0, 0xC0CEDD))
CRIMSON = ramp((0.0, 0xFF5A4A), (0.4, 0xE0202F), (1.0, 0x8E0F2A))
BLUE, DEEP_BLUE, GLASS, GLASS_LIT = rgb(0x1F5FC4), rgb(0x133A86), rgb(0x16233F), rgb(0x9CCBF2)

FUSELAGE = (
    "M 149 59 C 147 52 135 47 121 46.5 L 44 46.5 C 28 47 14 49 4 50 C 3 52 4 54 7 55 C 20 62 34 69 48 69.5 "
    "L 121 69.5 C 137 69 149 65 149 59 Z"
)
FIN = "M 46 47.5 C 38 45 33 40 28 34 L 15 17 C 13 15 5 15 4 17 L 11 42 C 12 46 12 49 11 51 Z"
NEAR_TAIL = "M 30 54 C 24 57 18 61 12 66 C 9 69 2 69 1 67 L 8 55 C 12 52 22 51 30 54 Z"
FAR_TAIL = "M 26 49 L 10 39 C 8 38 3 38 3 40 L 11 50 Z"
NEAR_WING = (
    "M 98 61 C 94 66 88 70 81 76 L 48 105 C 45 107.5 37 107.5 35 105.5 L 55 74 C 58 69 59 65 60 61 "
    "C 72 58 88 58 98 61 Z"
)
FAR_WING = "M 97 48 L 66 20 C 63 17.5 55 17.5 54 19.5 L 68 48 Z"
NEAR_ENGINE = (
    "M 92 79 C 92 75.5 90 74 87 74 L 73 75 C 68 75.5 64 77.5 62 80 C 65 83 69 85.5 74 86 L 87 86 "
    "C 90 86 92 83.5 92 79 Z"
)
FAR_ENGINE = (
    "M 95 34.5 C 95 32 93.5 30.5 91.5 30.5 L 80 31.5 C 77 32 75 33.5 74 35 C 76 37.5 79 39.3 82 39.5 "
    "L 91.5 39.5 C 93.5 39.5 95 37.5 95 34.5 Z"
)


def draw(width, height):
    canvas = Canvas(width, height)
    c, s = cosine(-CLIMB), sine(-CLIMB)

    def level(x, y):
        """The place on the level drawing."""
        u, v = (x - CENTRE[0]) / SCALE, (y - CENTRE[1]) / SCALE
        return u * c - v * s + 78, u * s + v * c + 57

    def fill(polygons, paint, **more):
        if isinstance(polygons, str):
            polygons = outline(polygons)
        centred = [[(x - 78, y - 57) for x, y in polygon] for polygon in polygons]
        turned = moved(centred, SCALE, CLIMB, *CENTRE)
        canvas.fill(turned, (lambda x, y: paint(*level(x, y))) if callable(paint) else paint, **more)

    def line(points, width, colour, **more):
        fill(stroke(points, width, round_ends=False), colour, inside=True, **more)

    # Beyond the body
    fill(FAR_TAIL, lambda x, y: METAL_FAR((y - 38) / 14))
    fill(FAR_ENGINE, lambda x, y: SKIN((y - 30.5) / 9))
    fill(FAR_WING, lambda x, y: METAL_FAR(clamp((y - 18) / 34)))
    line([(66, 20), (97, 48)], 1.6, rgb(0xEAF1F8))

    # Fin
    fill(FIN, lambda x, y: CRIMSON(clamp((y - 15) / 36 + (20 - x) / 60)))
    fill(
        "M 30 36 L 24 28.5 L 7 31 L 9.5 39 Z",
        lambda x, y: mix(WHITE, rgb(0xC8D2E0), clamp((26 - x) / 24)),
        inside=True,
    )
    line([(15, 16.5), (28, 33.5), (46, 47.5)], 1.4, rgb(0xFF9A86))

    # Body: a tube, so every upright section is shaded alike
    top = [(4, 50)] + curve((4, 50), (14, 49), (28, 47), (44, 46.5)) + [(121, 46.5)]
    top += curve((121, 46.5), (135, 47), (147, 52), (149, 59))
    bottom = [(4, 50), (7, 55)] + curve((7, 55), (20, 62), (34, 69), (48, 69.5)) + [(121, 69.5)]
    bottom += curve((121, 69.5), (137, 69), (149, 65), (149, 59))

    def at(points, x):
        for (x0, y0), (x1, y1) in zip(points, points[1:]):
            if x0 <= x <= x1 and x1 > x0:
                return y0 + (y1 - y0) * (x - x0) / (x1 - x0)
        return points[-1][1] if x > points[-1][0] else points[0][1]

    def skin(x, y):
        above, below = at(top, x), at(bottom, x)
        t = clamp((y - above) / max(below - above, 1.0))
        colour = SKIN(t)
        if t > 0.60 and x > 24:  # a blue belly with a crimson line above it
            paint = mix(BLUE, DEEP_BLUE, clamp((t - 0.66) * 3.2))
            paint = mix(paint, rgb(0x5D8FE0), smooth(0.9, 1.0, t) * 0.6)
            colour = mix(colour, rgb(0xD8263A), smooth(0.60, 0.63, t))
            colour = mix(colour, paint, smooth(0.665, 0.70, t))
        return mix(colour, rgb(0x6F86A6), clamp((22 - x) / 40) * 0.5)

    fill(FUSELAGE, skin)
    line([(40, 50.5), (122, 50.5)], 1.8, WHITE, opacity=0.85)
    for i in range(13):
        x = 48 + i * 5.9
        if i != 4:  # there the emergency exit is
            fill(
                f"M {x} 53.2 L {x + 2.7} 53.2 L {x + 2.7} 57.2 L {x} 57.2 Z",
                lambda px, py: mix(GLASS_LIT, GLASS, clamp((py - 52.6) / 2.4)),
                inside=True,
            )
    for x in (42, 126.5):  # doors
        line([(x, 51.2), (x + 4, 51.2), (x + 4, 60), (x, 60), (x, 51.2)], 0.8, rgb(0x7D90A8), opacity=0.8)
    fill(
        "M 131 51.3 L 139.5 51.6 C 142 52.8 143.6 54.3 144.4 55.9 L 133.5 55.9 C 131.8 55 131 53 131 51.3 Z",
        lambda x, y: mix(GLASS_LIT, GLASS, clamp((y - 50.8) / 3.2 + (x - 138) / 30)),
        inside=True,
    )
    line([(137.2, 51.2), (138.4, 56)], 0.9, rgb(0xDFE8F2))

    # On the near side
    fill(NEAR_TAIL, lambda x, y: METAL_NEAR(clamp((y - 52) / 17)))
    line([(30, 54), (18, 61), (12, 66)], 1.3, WHITE)
    fill(NEAR_ENGINE, lambda x, y: mix(SKIN((y - 74) / 12), rgb(0x8292A8), clamp((70 - x) / 10)))
    fill(
        "M 92 79.5 C 92 76 91 74 89.4 74 C 87.6 74 86.6 76.5 86.6 80 "
        "C 86.6 83.5 87.6 86 89.4 86 C 91 86 92 83 92 79.5 Z",
        lambda x, y: mix(rgb(0xF4F8FC), rgb(0x8FA3BA), clamp((y - 74) / 12)),
        inside=True,
    )
    fill(
        "M 91.4 80 C 91.4 77.4 90.6 75.6 89.5 75.6 C 88.2 75.6 87.5 77.4 87.5 80 "
        "C 87.5 82.6 88.2 84.4 89.5 84.4 C 90.6 84.4 91.4 82.6 91.4 80 Z",
        rgb(0x1B2740),
        inside=True,
    )
    line([(73, 75.2), (74, 86)], 0.9, rgb(0x7C90AA))

    def near_wing(x, y):
        along = clamp((y - 60) / 46)
        forward = 98 - (y - 61) * 1.12  # the leading edge
        t = clamp((forward - x) / (40 - 30 * along))
        colour = mix(METAL_NEAR(0.10 + 0.75 * t), rgb(0x93A6BD), 0.25 * along)
        return mix(colour, rgb(0x5D7290), clamp(1 - (y - 58) / 9) * 0.35)  # in the shade of the body

    fill(NEAR_WING, near_wing)
    line([(98, 61), (89, 69.5), (81, 76), (48, 105)], 1.7, rgb(0xDCE7F2))
    line([(66, 67), (60, 78), (43, 104)], 0.8, rgb(0x6D829C), opacity=0.9)
    line([(58, 85), (68, 79)], 0.8, rgb(0x6D829C), opacity=0.8)
    fill(
        "M 48 105 C 45 107.5 37 107.5 35 105.5 L 37.5 101.5 L 52.5 101 Z",
        lambda x, y: CRIMSON(clamp((y - 100) / 9)),
        inside=True,
    )
    return canvas
