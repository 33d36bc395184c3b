"""The print of a bare right foot in wet sand."""

from .canvas import Canvas, Noise, clamp, ellipse, mix, outline, ramp, rgb, smooth
from .relief import relief

SAND = ramp((0.0, 0xD2A56C), (0.55, 0xC0915A), (1.0, 0xAD7D4A))
WET, SHADOW, LIT = rgb(0x7A532E), rgb(0x3F2613), rgb(0xEBC587)

SOLE = (
    "M 67 164 C 50 164 40 152 41 137 C 42 124 46 115 41 105 C 35 93 19 86 16 71 C 14 56 29 48 47 49 "
    "C 66 49 88 55 101 66 C 112 76 108 93 102 106 C 96 119 94 128 93 139 C 92 155 83 164 67 164 Z"
)
TOES = (  # x, y, radii, angle
    (27, 25, 15, 20, -9),
    (55, 18, 9.5, 14, 2),
    (76, 24, 8.5, 12, 9),
    (93, 37, 7.8, 10.5, 18),
    (108, 53, 7.2, 9.5, 26),
)


def draw(width, height):
    canvas = Canvas(width, height)
    canvas.fill(outline(SOLE), (255, 255, 255))
    for toe in TOES:
        canvas.fill(ellipse(*toe), (255, 255, 255))
    light = relief(canvas, (1, 2, 3, 6), 15)
    slow, grain, speck = Noise(5), Noise(6), Noise(8)

    def hollow(x, y, centre_x, centre_y, radius_x, radius_y):
        u, v = (x - centre_x) / radius_x, (y - centre_y) / radius_y
        return clamp(1 - u * u - v * v)

    def paint(x, y):
        facing, _, depth = light(x, y)
        # Pressed in, not raised: what would face the light lies in the shadow of the edge.
        facing = 1.28 - facing
        # Where the foot stood hardest the sand is wet and dark.
        weight = hollow(x, y, 62, 76, 52, 30) + hollow(x, y, 67, 141, 28, 28) + 0.8 * hollow(x, y, 27, 27, 16, 20)
        weight = 0.65 * clamp(weight) * smooth(0.35, 0.95, depth) + 0.25 * (slow.at(x / 13, y / 15) - 0.5)
        base = mix(SAND(y / height), WET, clamp(weight))
        facing += 0.16 * (grain.at(x / 1.4, y / 1.4) - 0.5) + 0.10 * (slow.at(x / 6 + 20, y / 5) - 0.5)
        colour = mix(base, SHADOW, clamp(0.60 - facing) * 1.75)
        colour = mix(colour, LIT, clamp(facing - 0.68) * 1.8)
        glitter = speck.at(x * 0.93, y * 0.93)
        return mix(colour, LIT, 0.6 * smooth(0.86, 0.98, glitter))

    canvas.fill(canvas.box(), paint, inside=True)
    return canvas
